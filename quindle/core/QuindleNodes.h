#pragma once

#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

#include <vector>

/// @file
/// The records of a document as flat lists, however deep they nest, so that a pass over them is a loop. The
/// lists point into the document and are good until it is changed. std::bad_alloc passes through.
namespace Zamt {

/// All steps of all triggers in the order of the text: a step before those of its blocks. What is no "if" and
/// no "for each" has no blocks, whatever its lists hold.
QUINDLE_API std::vector<const QuindleStep*> quindleSteps(const QuindleDocument& document);

/// An expression and all that it is made of: a node before its operands, those in the order of the text.
QUINDLE_API std::vector<const QuindleExpr*> quindleExprs(const QuindleExpr& root);

} // namespace Zamt
