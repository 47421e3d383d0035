#include "fuzz/require.h"
#include "quindle/Quindle.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/dumpDocument.h"

#include <cstdint>
#include <string>

using Zamt::Fuzz::require;

namespace {

/// What the library should say of a text, worked out from all of its faults.
std::string expectedError(const std::string& text, const std::string& path, Zamt::QuindleDocument& doc) {
  Zamt::Diag diag;
  if (Zamt::parseQuindle(text, path, doc, diag) && Zamt::checkQuindle(doc, diag)) return {};
  for (const Zamt::Diag::Entry& entry : diag.entries)
    if (entry.severity == Zamt::Diag::Severity::Error)
      return (entry.line > 0 ? "line " + std::to_string(entry.line) + ": " : std::string()) + entry.message;
  return "is not a usable Quindle";
}

void requireEntry(const std::string& text) {
  static const Zamt::Testing::TemporaryDirectory directory;
  const std::string path = directory.write("fuzz.quindle", text);
  Zamt::QuindleDocument doc;
  const std::string error = expectedError(text, path, doc);
  if (doc.name.empty()) doc.name = "fuzz";

  Zamt::QuindleLibrary library;
  Zamt::Diag diag;
  require(library.scan(directory.path(), diag) == 1, "a file of any bytes is listed");
  const Zamt::QuindleLibraryEntry* const entry = library.find(doc.name);
  require(entry != nullptr, "an entry bears the name in its file");
  require(entry->usable == error.empty() && entry->error == error, "an entry tells its first fault");
  require(Zamt::Testing::dumpDocument(entry->document) == Zamt::Testing::dumpDocument(doc),
          "an entry holds what the parser reads");
}

void requireSwitch(const std::string& text) {
  std::string off = text;
  if (!Zamt::setQuindleEnabled(off, false)) {
    require(off == text && text.find('{') == std::string::npos, "only a text without a block has no switch");
    return;
  }
  std::string again = off;
  require(Zamt::setQuindleEnabled(again, false) && again == off, "what is off is not changed");
}

void requireKeys(const std::string& text) {
  for (const std::string& key : Zamt::shortcutKeys(text)) {
    require(!key.empty() && key.find(' ') == std::string::npos, "a key is one word");
    require(Zamt::normalizedShortcut(key) == key, "a normal form is its own");
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  requireEntry(text);
  requireSwitch(text);
  requireKeys(text);
  return 0;
}
