#include "quindle/plan/diagnoseQuindle.h"

#include "quindle/check/checkQuindle.h"
#include "quindle/plan/planQuindle.h"
#include "quindle/text/noteForeignSigns.h"
#include "quindle/text/parseQuindle.h"

#include <utility>

namespace Zamt {

bool diagnoseQuindle(const std::string& text, const std::string& file, QuindleDocument& doc, Diag& diag) {
  Diag found; // since the parser counts the errors from before
  QuindleDocument read;
  if (parseQuindle(text, file, read, found)) {
    checkQuindle(read, found);
    planQuindle(read, found);
  } else {
    noteForeignSigns(text, found);
  }
  diag.absorb(found);
  doc = std::move(read); // last, since text and file may be the document's own
  return found.errorCount == 0;
}

} // namespace Zamt
