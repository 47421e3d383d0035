#include "quindle/plan/compileClassify.h"

#include "quindle/core/ClassList.h"
#include "quindle/core/Guarded.h"
#include "quindle/core/QuindleParamTypes.h"
#include "quindle/core/Refusals.h"
#include "quindle/core/Tree.h"
#include "quindle/runtime/QuindleSceneWords.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace Zamt {

namespace {

constexpr const char* editorBase = "classify";
constexpr const char* fieldBase = "classfield";
constexpr const char* classCondition = "class";

constexpr std::int32_t noNumber = -1;

bool refuse(const QuindleStep& step, const std::string& message, Diag& diag) {
  diag.at(Diag::Severity::Error, message, {}, step.line, 0);
  return false;
}

/// The class number that a step asks for, negative for none. Nothing if it is no number, or none that a
/// class can have.
std::optional<std::int32_t> classNumberOf(const QuindleValue& written) {
  if (written.kind == QuindleValue::Kind::None) return noNumber;
  if (written.kind != QuindleValue::Kind::Number) return std::nullopt;
  const double whole = std::trunc(written.numberValue);
  using Limits = std::numeric_limits<std::int32_t>;
  // Written so that a value that is no number at all is out of range too.
  if (!(whole >= Limits::min() && whole <= Limits::max())) return std::nullopt;
  return static_cast<std::int32_t>(whole);
}

const QuindleParam* firstOfType(const QuindleDocument& document, const QuindleParamType& type) {
  const auto found = std::find_if(document.params.begin(), document.params.end(),
                                  [&](const QuindleParam& param) { return param.type == type.word; });
  return found == document.params.end() ? nullptr : &*found;
}

bool labelEditor(const std::string& editor, const std::string& className, std::int32_t number,
                 const std::vector<std::string>& selectedClasses, const QuindleValue& colour, QuindleOps& ops,
                 Diag& diag) {
  // A scene with no labels to read is no fault: the set then starts empty.
  std::string current;
  Diag harmless;
  if (!ops.getParam(editor, sceneWords::labelsSlot, current, harmless)) {
    passOnLackOfMemory(harmless);
    current.clear();
  }
  std::string planned;
  std::int32_t assigned = noNumber;
  return planClassLabels(current, className, number, selectedClasses, colour, planned, assigned, diag) &&
         ops.setParam(editor, sceneWords::labelsSlot, planned, diag);
}

/// Makes the object that reads the usual classification of a cloud and feeds it to the editor. Returns its
/// name, or empty text.
std::string readUsualField(const std::string& editor, const std::string& prefix, QuindleOps& ops,
                           Diag& diag) {
  const std::string field = ops.create(sceneWords::fieldCreator, prefix + fieldBase, diag);
  const std::string name = sceneWords::fieldName(sceneWords::usualClassField);
  const bool wired = !field.empty() && ops.setParam(field, sceneWords::fieldNameSlot, name, diag) &&
                     ops.connect(editor, sceneWords::labelFieldSlot, field, sceneWords::fieldSlot, diag);
  return wired ? field : std::string();
}

bool namesClasses(const QuindlePlanNode& node) {
  return node.kind == QuindlePlanNode::Kind::Condition && node.operation &&
         node.operation->name == classCondition && !node.negated && !node.arguments.empty() &&
         node.arguments.front().kind == QuindleExpr::Kind::Literal;
}

bool makeEditor(const QuindleStep& step, const std::vector<std::string>& selectedClasses,
                const QuindleDocument& document, QuindleOps& ops, const std::string& source,
                const std::string& prefix, std::string& out, std::vector<QuindleBinding>& bindings,
                Diag& diag) {
  if (step.value.kind != QuindleExpr::Kind::Literal || step.value.value.kind != QuindleValue::Kind::Text)
    return refuse(step, refusal::noClassInQuotes, diag);
  const std::optional<std::int32_t> number = classNumberOf(step.classNumber);
  if (!number) return refuse(step, "The class number after \"as\" has to be a plain number.", diag);
  const QuindleParam* const field = firstOfType(document, fieldType);
  const QuindleParam* const grid = firstOfType(document, gridType);
  if (!field && !grid) return refuse(step, refusal::noDataToClassify, diag);

  const std::string editor = ops.create(sceneWords::editorCreator, prefix + editorBase, diag);
  // The labels are read only when the selection is attached, since it may bring them along.
  if (editor.empty() || !ops.connect(editor, sceneWords::brushSlot, source, "", diag) ||
      !labelEditor(editor, step.value.value.textValue, *number, selectedClasses, step.color, ops, diag))
    return false;
  if (field) {
    bindings.push_back({editor, sceneWords::labelFieldSlot, field->name, true});
  } else {
    const std::string reader = readUsualField(editor, prefix, ops, diag);
    if (reader.empty()) return false;
    bindings.push_back({reader, sceneWords::gridSlot, grid->name, true});
  }
  out = editor;
  return true;
}

} // namespace

bool compileClassify(const QuindleStep& step, const std::vector<std::string>& selectedClasses,
                     const QuindleDocument& document, QuindleOps& ops, const std::string& source,
                     const std::string& prefix, std::string& out, std::vector<QuindleBinding>& bindings,
                     Diag& diag) {
  return guarded(diag, false, [&] {
    return makeEditor(step, selectedClasses, document, ops, source, prefix, out, bindings, diag);
  });
}

void collectPlanClasses(const QuindlePlanNode& plan, std::vector<std::string>& classes) {
  static const std::vector<QuindlePlanNode> none;
  const auto required = [](const QuindlePlanNode& node) -> const std::vector<QuindlePlanNode>& {
    return node.kind == QuindlePlanNode::Kind::And ? node.children : none;
  };
  tree::each(plan, required, [&](const QuindlePlanNode& node) {
    if (!namesClasses(node)) return;
    const std::vector<std::string_view> named = classesIn(node.arguments.front().value.textValue);
    classes.insert(classes.end(), named.begin(), named.end());
  });
}

bool isQuindleObjectType(const std::string& typeName) {
  const QuindleParamType* const type = findQuindleParamType(typeName);
  return type && type->isObject;
}

} // namespace Zamt
