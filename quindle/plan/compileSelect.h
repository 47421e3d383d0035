#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/plan/QuindlePlanNode.h"
#include "quindle/runtime/QuindleOps.h"

#include <string>
#include <vector>

namespace Zamt {

/// A slot that gets the value of a parameter each time the Quindle runs.
struct QUINDLE_API QuindleBinding {
  std::string object;   ///< The name that the scene gave the object.
  std::string slot;     ///< The input of that object.
  std::string param;    ///< The name of the parameter that supplies the value.
  bool connect = false; ///< The value is the name of an object to attach, not a text to write.
};

/// Makes the filters of a plan in the scene, each reading the one before it: an And becomes a chain, an Or
/// branches that are joined in pairs. What is written out is set at once; what is a parameter of `document`
/// is appended to `bindings`. An "inside" of the region that the user paints makes nothing, since the chain
/// starts there; negated, it makes a filter that keeps what lies outside.
///
/// `plan` is one for which planning returned true. The chain starts at the object `source`, or with an
/// unconnected input if that is empty. `prefix` goes in front of every object's name. `out` receives the
/// object at the end of the chain, and may be `source` itself.
///
/// Returns false after reporting what went wrong, having gone on as far as it could. Objects made before a
/// failure stay in the scene.
QUINDLE_API bool compileSelect(const QuindlePlanNode& plan, const QuindleDocument& document, QuindleOps& ops,
                               const std::string& source, const std::string& prefix, std::string& out,
                               std::vector<QuindleBinding>& bindings, Diag& diag);

} // namespace Zamt
