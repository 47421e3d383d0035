#include "quindle/plan/diagnoseQuindle.h"

#include "quindle/check/unguarded.h"
#include "quindle/plan/unguarded.h"
#include "quindle/text/noteForeignSigns.h"
#include "quindle/text/parseQuindle.h"

#include <utility>

namespace Zamt {

bool diagnoseQuindle(const std::string& text, const std::string& file, QuindleDocument& doc, Diag& diag) {
  return guarded(diag, false, [&] {
    Diag found; // since the parser counts the errors from before
    QuindleDocument read;
    const bool parsed = parseQuindle(text, file, read, found);
    if (parsed) {
      Unguarded::checkQuindle(read, found);
      Unguarded::planQuindle(read, found);
    } else {
      noteForeignSigns(text, found);
    }
    diag.absorb(found);
    doc = std::move(read); // last, since text and file may be the document's own
    return parsed && found.errorCount == 0;
  });
}

} // namespace Zamt
