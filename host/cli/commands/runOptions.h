#pragma once

#include <CLI/App.hpp>

#include <map>
#include <string>
#include <vector>

namespace Zamt::Host {

/// What "run" and "preview" have in common.
struct RunOptions {
  std::string quindle;
  std::vector<std::string> clouds;
  std::vector<std::string> settings; ///< "name=value", as written.
  std::string region;                ///< The text of a region, or "@" and the file that holds it.
  std::string classes;               ///< The only classes whose points may change; empty for all.
  unsigned threads = 0;              ///< 0 for as many as the machine has.
  bool json = false;
};

/// Adds the options to a verb; `options` must outlive it.
void addRunOptions(CLI::App& verb, RunOptions& options);

/// The values of "--set" by parameter. False, with a sentence in `problem`, when one is no "name=value".
bool readSettings(const RunOptions& options, std::map<std::string, std::string>& values,
                  std::string& problem);

/// The text of "--region", read from its file if it names one; empty if there is none. False, with a sentence
/// in `problem`, when it is no region.
bool readRegionText(const RunOptions& options, std::string& text, std::string& problem);

} // namespace Zamt::Host
