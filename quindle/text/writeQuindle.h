#pragma once

#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

#include <string>

namespace Zamt {

/// The whole document in its one canonical layout, ending in one newline. The same document always gives the
/// same bytes; `sourceFile`, `revision`, listeners and positions are not written. It cannot fail,
/// but lets std::bad_alloc through.
///
/// What was read without errors reads back as the same document, and is then written as the same bytes, but
/// for these: a Comment without text is dropped by the reader; an "and" right inside an "and" (an "or" inside
/// an "or") had parentheses that the layout does not keep, and comes back flat; a Call whose action is an
/// empty text is written without it, which the reader refuses.
///
/// In a document built in memory names are written as they stand, so one that is no word does not read back.
/// A comment of several lines becomes a Comment a line.
///
/// Each level of blocks is indented by four more blanks: the text of n blocks inside one another has some
/// 4 n^2 bytes, and the cost is linear in that.
QUINDLE_API std::string writeQuindle(const QuindleDocument& doc);

} // namespace Zamt
