#pragma once

#include "quindle/plan/ParamIndex.h"
#include "quindle/plan/compileSelect.h"

namespace Zamt {

/// `compileSelect` for a caller that compiles every "select" of a document and so keeps its parameters in an
/// index.
bool compileIndexedSelect(const QuindlePlanNode& plan, const ParamIndex& params, QuindleOps& ops,
                          const std::string& source, const std::string& prefix, std::string& out,
                          std::vector<QuindleBinding>& bindings, Diag& diag);

} // namespace Zamt
