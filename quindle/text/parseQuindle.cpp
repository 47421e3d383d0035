#include "quindle/text/parseQuindle.h"

#include "quindle/core/Guarded.h"
#include "quindle/text/FileReader.h"
#include "quindle/text/parseBriefly.h"

namespace Zamt {

bool parseQuindle(const std::string& text, const std::string& file, QuindleDocument& doc, Diag& diag) {
  return guarded(diag, false, [&] { return FileReader(text, file, doc, diag, FaultSink::Keep::All).read(); });
}

bool parseBriefly(const std::string& text, const std::string& file, QuindleDocument& doc, Diag& diag) {
  return FileReader(text, file, doc, diag, FaultSink::Keep::UpToFirstError).read();
}

} // namespace Zamt
