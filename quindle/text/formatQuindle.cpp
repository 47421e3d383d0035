#include "quindle/text/formatQuindle.h"

#include "quindle/core/Guarded.h"
#include "quindle/text/FileReader.h"
#include "quindle/text/writeQuindle.h"
#include "quindle/text/writeWithin.h"

namespace Zamt {

namespace {

// What a file may hold that is taken for a Quindle, so that the result can be read again.
constexpr std::uint64_t maxIndentation = std::uint64_t{256} * 1024 * 1024;

void warnOf(const QuindleStrayComment& comment, const std::string& file, Diag& diag) {
  const std::string message =
      comment.movedTo == 0
          ? "The canonical layout drops this comment, as no step or block end follows it on a later line. "
            "To keep it, put it on a line of its own inside a block."
          : "The canonical layout moves this comment to the start of the block of line " +
                std::to_string(comment.movedTo) +
                ". To choose its place, put it on a line of its own inside a block.";
  diag.at(Diag::Severity::Warning, message, file, comment.line, 0);
}

/// Writes the document, reads that back and writes it again: the same bytes come out however often that is
/// done, though a line of a comment that holds no text is only lost the second time. It also keeps what the
/// layout can't express from being taken for the Quindle.
bool writeCanonical(const QuindleDocument& doc, const std::string& file, std::string& formatted, Diag& diag) {
  std::string once;
  if (!writeWithin(doc, maxIndentation, once)) {
    diag.error("Its blocks lie so deep inside one another that the indentation would take more than "
               "268,435,456 bytes. Nest them less deeply.",
               file);
    return false;
  }
  Diag again;
  QuindleDocument reread;
  if (!FileReader(once, file, reread, again, FaultSink::Keep::All).read()) {
    diag.error("The canonical layout of this Quindle can't be read back: " + again.firstError() +
                   " It is left as it is; write that step in another way.",
               file);
    return false;
  }
  formatted = writeQuindle(reread);
  return true;
}

bool format(const std::string& text, const std::string& file, QuindleDocument& doc, std::string& formatted,
            std::vector<QuindleStrayComment>& strays, Diag& diag) {
  const std::string label = file;
  FileReader reader(text, label, doc, diag, FaultSink::Keep::All);
  formatted.clear(); // only now, for it may be the text
  strays.clear();
  if (!reader.read()) return false;
  if (const std::int32_t line = reader.lineBehind(); line != 0) {
    diag.at(Diag::Severity::Error,
            "This stands behind the end of the Quindle, where nothing reads it. Remove it before formatting.",
            label, line, 0);
    return false;
  }
  strays = reader.strayComments();
  for (const QuindleStrayComment& comment : strays) warnOf(comment, label, diag);
  return writeCanonical(doc, label, formatted, diag);
}

} // namespace

bool formatQuindle(const std::string& text, const std::string& file, QuindleDocument& doc,
                   std::string& formatted, std::vector<QuindleStrayComment>& strays, Diag& diag) {
  return guarded(diag, false, [&] { return format(text, file, doc, formatted, strays, diag); });
}

} // namespace Zamt
