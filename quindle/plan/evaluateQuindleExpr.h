#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

#include <map>
#include <string>

namespace Zamt {

/// Works out the expression of a "let" or an "if", without any scene. A word is an earlier "let", a value
/// supplied for this run, or a parameter's default, in this order; a supplied text that reads as a number
/// is one. `and` and `or` stop at the first operand that decides, and what comes after it is not looked at.
///
/// Two numbers are compared as numbers; a number and anything else can't be compared. Texts and bare words
/// are compared byte by byte, as they stand. Where a boolean or a tuple stands on either side, what both
/// sides look like as source text is compared instead, so that `true == true` holds.
///
/// Returns false after the first fault, reported in the document's `sourceFile`; `result` is untouched then.
QUINDLE_API bool evaluateQuindleExpr(const QuindleExpr& expression, const QuindleDocument& document,
                                     const std::map<std::string, std::string>& params,
                                     const std::map<std::string, QuindleValue>& lets, QuindleValue& result,
                                     Diag& diag);

/// Works out an expression as above, and whether its value counts as true: a number other than 0, a text or
/// word that is not empty, whatever it says, true itself, a tuple that is not empty.
QUINDLE_API bool evaluateQuindleCondition(const QuindleExpr& expression, const QuindleDocument& document,
                                          const std::map<std::string, std::string>& params,
                                          const std::map<std::string, QuindleValue>& lets, bool& result,
                                          Diag& diag);

} // namespace Zamt
