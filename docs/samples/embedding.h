#pragma once

#include "quindle/Quindle.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

/// The code of docs/embedding.md, which quotes this file piece by piece.
namespace Zamt::Testing {

/// Runs a text. The lines for the user come back; what went wrong is in `diag`.
inline std::vector<std::string> runText(QuindleRuntime& runtime, const std::string& text,
                                        const std::string& file,
                                        const std::map<std::string, std::string>& args, bool preview,
                                        Diag& diag) {
  QuindleDocument document;
  QuindleRunResult result;
  if (parseQuindle(text, file, document, diag) && checkQuindle(document, diag))
    runtime.run(document, args, preview, result, diag);
  return result.report;
}

/// The values that only the application knows: which objects it has in hand under what purpose.
inline std::map<std::string, std::string>
suppliedValues(const QuindleDocument& document, const std::string& active, const std::string& brush) {
  std::map<std::string, std::string> args;
  for (const QuindleParam& param : document.params) {
    if (param.defaultSource == QuindleParam::DefaultSource::Active) args[param.name] = active;
    if (param.defaultSource == QuindleParam::DefaultSource::Brush) args[param.name] = brush;
  }
  return args;
}

/// A document that the user edits, run again and again.
class OpenQuindle {
public:
  explicit OpenQuindle(QuindleRuntime& on) : runtime(on) {}

  /// Takes a text in place of the old one. A new document begins at revision 0, as the old one did, so the
  /// runtime has to be told.
  bool load(const std::string& text, Diag& diag) {
    QuindleDocument fresh;
    if (!parseQuindle(text, "open.quindle", fresh, diag)) return false;
    runtime.forget(document.name);
    runtime.forget(fresh.name);
    document = std::move(fresh);
    return true;
  }

  /// Changes it in place, which `touch` tells the runtime.
  void setEnabled(bool enabled) {
    document.enabled = enabled;
    document.touch();
  }

  QuindleDocument document;

private:
  QuindleRuntime& runtime;
};

/// A scene with its runtime and a collection of Quindles, bound to keys.
class KeyBoundQuindles {
public:
  explicit KeyBoundQuindles(QuindleOps& scene) : runtime(scene) { runtime.resolver = library.resolver(); }
  KeyBoundQuindles(const KeyBoundQuindles&) = delete; // the resolver points to this library

  /// Reads the collection anew; what stands in `diag` is worth showing.
  void reload(const std::vector<std::string>& directories, Diag& diag) {
    for (const QuindleLibraryEntry* const entry : library.search("")) runtime.forget(entry->document.name);
    library.clear();
    library.scan(directories, diag);
  }

  /// The keys to bind, each to the name of its Quindle. One that several ask for is given to none.
  std::map<std::string, std::string> bindings() const {
    std::map<std::string, std::string> keys;
    for (const QuindleShortcut& shortcut : quindleShortcuts(library)) keys[shortcut.key] = shortcut.name;
    for (const auto& [key, names] : shortcutConflicts(library)) keys.erase(key);
    return keys;
  }

  bool press(const std::string& name, const std::map<std::string, std::string>& args,
             QuindleRunResult& result, Diag& diag) {
    const QuindleLibraryEntry* const entry = library.find(name);
    return entry && entry->usable && runtime.run(entry->document, args, false, result, diag);
  }

private:
  QuindleLibrary library; // before the runtime, whose resolver points to it
  QuindleRuntime runtime;
};

} // namespace Zamt::Testing
