#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/plan/QuindlePlanNode.h"
#include "quindle/plan/compileSelect.h"
#include "quindle/runtime/QuindleOps.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Zamt {

/// Makes the editor object of a "classify into", attached to the selection `source`, gives it the labels that
/// the step needs, and wires it to the first parameter of type Field, or else of type Grid.
/// `selectedClasses` are the classes that the "select" before it keeps. `out` receives the editor's name.
///
/// Returns false after reporting what went wrong; `out` is untouched then, and objects made before the
/// failure stay in the scene.
QUINDLE_API bool compileClassify(const QuindleStep& step, const std::vector<std::string>& selectedClasses,
                                 const QuindleDocument& document, QuindleOps& ops, const std::string& source,
                                 const std::string& prefix, std::string& out,
                                 std::vector<QuindleBinding>& bindings, Diag& diag);

/// Works out the label set for putting points of the selected classes into the class `className`: the number
/// it has or gets, and which classes may be changed. Pure text to text.
///
/// `existingLabels` is the text form of the label set that the data has, empty for none. `number` is the
/// class number asked for, negative for none. `colour` is used for a new class, if it is a tuple of at least
/// three numbers from 0 to 1; grey otherwise.
///
/// Returns false with an error when the step can't change anything or contradicts the data; `plannedLabels`
/// and `assigned`, which receive the new text form and the class's number, are untouched then.
QUINDLE_API bool planClassLabels(const std::string& existingLabels, const std::string& className,
                                 std::int32_t number, const std::vector<std::string>& selectedClasses,
                                 const QuindleValue& colour, std::string& plannedLabels,
                                 std::int32_t& assigned, Diag& diag);

/// Appends the classes that a plan is known to keep: those written out in conditions on the class that every
/// selected point has to meet. Lets std::bad_alloc through.
QUINDLE_API void collectPlanClasses(const QuindlePlanNode& plan, std::vector<std::string>& classes);

/// The number of the class that a label set, as text, says points are put into; -1 if the text is empty.
/// Lets std::bad_alloc through.
QUINDLE_API std::int32_t assignedClassOf(const std::string& labels);

/// Whether the values of parameters of this type are names of objects: Grid, Field, Region and Brush.
QUINDLE_API bool isQuindleObjectType(const std::string& typeName);

} // namespace Zamt
