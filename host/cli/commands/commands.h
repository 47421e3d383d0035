#pragma once

#include "host/cli/Console.h"

#include <CLI/App.hpp>

#include <string>

namespace Zamt::Host {

/// What the verbs share: where to print, and how it ended.
struct Session {
  Console console;
  Exit exit = Exit::Done;
};

/// Adds a verb without options to `app`, which owns it. Not left to each verb, since making one compiles much
/// of the command line's library.
CLI::App* addVerb(CLI::App& app, const std::string& name, const std::string& description);

/// Each adds one verb with its options to `app`. The verb runs when the command line is parsed, prints to
/// `session.console` and leaves its end in `session.exit`; `session` must outlive `app`.
void addRunCommand(CLI::App& app, Session& session);
void addPreviewCommand(CLI::App& app, Session& session);
void addCheckCommand(CLI::App& app, Session& session);
void addFmtCommand(CLI::App& app, Session& session);
void addExplainCommand(CLI::App& app, Session& session);
void addPlanCommand(CLI::App& app, Session& session);
void addListCommand(CLI::App& app, Session& session);
void addSearchCommand(CLI::App& app, Session& session);
void addShowCommand(CLI::App& app, Session& session);
void addSaveCommand(CLI::App& app, Session& session);
void addDeleteCommand(CLI::App& app, Session& session);
void addEnableCommand(CLI::App& app, Session& session);
void addDisableCommand(CLI::App& app, Session& session);
void addKeysCommand(CLI::App& app, Session& session);
void addInfoCommand(CLI::App& app, Session& session);
void addSampleCommand(CLI::App& app, Session& session);
void addReferenceCommand(CLI::App& app, Session& session);
void addConditionsCommand(CLI::App& app, Session& session);
void addRegistryCommand(CLI::App& app, Session& session);
void addHelpCommand(CLI::App& app, Session& session);

} // namespace Zamt::Host
