#include "quindle/core/Guarded.h"
#include "quindle/core/QuindleParamTypes.h"
#include "quindle/plan/parameterValue.h"
#include "quindle/runtime/QuindleRuntime.h"

#include <algorithm>
#include <utility>

namespace Zamt {

namespace {

constexpr const char* maskBase = "PreviewMask";

/// The first parameter that names the data and has a value; empty if there is none.
std::string dataOf(const QuindleDocument& doc, const std::map<std::string, std::string>& args) {
  for (const QuindleParam& param : doc.params) {
    const QuindleParamType* const type = findQuindleParamType(param.type);
    if (!type || !type->isData) continue;
    std::string value = parameterValue(param.name, doc.findParam(param.name), args).value_or("");
    if (!value.empty()) return value;
  }
  return {};
}

std::vector<std::string> displaysOf(QuindleOps& ops, const std::string& target) {
  std::vector<std::string> names = ops.consumersOf(target);
  std::erase_if(names, [&](const std::string& name) {
    return !ops.creatorOf(name).starts_with(sceneWords::displayPrefix);
  });
  return names;
}

std::string maskFieldOf(QuindleOps& ops, const std::string& editor) {
  std::string field;
  Diag unread;
  const bool named = ops.getParam(editor, sceneWords::maskFieldSlot, field, unread) && !field.empty();
  passOnLackOfMemory(unread);
  return named ? field : sceneWords::usualMaskField;
}

/// Whether any of the displays took the mask. One that refuses does not stop the others; the errors go to
/// `attempts`.
bool attachMask(QuindleOps& ops, const std::vector<std::string>& displays, const std::string& mask,
                Diag& attempts) {
  bool attached = false;
  for (const std::string& display : displays) {
    Diag attempt;
    if (ops.connect(display, sceneWords::maskSlot, mask, {}, attempt)) attached = true;
    attempts.absorb(attempt);
  }
  return attached;
}

} // namespace

void QuindleRuntime::showWhatWouldChange(const QuindleDocument& doc,
                                         const std::map<std::string, std::string>& args,
                                         const std::string& editor, Diag& diag) {
  guarded(diag, [&] { attachPreview(doc, args, editor, diag); });
}

void QuindleRuntime::attachPreview(const QuindleDocument& doc, const std::map<std::string, std::string>& args,
                                   const std::string& editor, Diag& diag) {
  if (editor.empty()) return;
  const std::string target = dataOf(doc, args);
  if (target.empty()) return;
  const std::vector<std::string> displays = displaysOf(ops_, target);
  if (displays.empty()) {
    diag.note("Nothing is displaying \"" + target +
                  "\", so there is no way to show what this would affect. The counts above are the whole of "
                  "what this preview can tell you.",
              doc.name);
    return;
  }

  const std::string field = maskFieldOf(ops_, editor);
  Diag local;
  previewObjects_.reserve(previewObjects_.size() + 1);
  std::string made =
      ops_.create(sceneWords::fieldCreator, std::string(sceneWords::ownPrefix) + maskBase, local);
  if (made.empty()) {
    diag.note("The preview was worked out, but the mask could not be published for a display to show: " +
                  local.firstError(),
              doc.name);
    return;
  }
  // Kept at once, so that the next run removes it whatever happens to it here.
  const std::string& mask = previewObjects_.emplace_back(std::move(made));
  if (!ops_.connect(mask, sceneWords::gridSlot, target, {}, local) ||
      !ops_.setParam(mask, sceneWords::fieldNameSlot, sceneWords::fieldName(field), local)) {
    diag.note("The preview was worked out, but the mask could not be pointed at \"" + target +
                  "\": " + local.firstError(),
              doc.name);
    return;
  }

  Diag attempts;
  if (attachMask(ops_, displays, mask, attempts))
    diag.note("The selection is attached to the display of \"" + target +
                  "\" as its mask, so the affected points are drawn in its mask colour. If nothing looks "
                  "different, that display is not drawing the mask: its \"maskdisplay\" decides whether a "
                  "masked point is filled or only outlined, and an outline does not show on a distant dot. "
                  "The counts above are exact either way. It goes away on the next run.",
              doc.name);
  else
    diag.note("The preview was worked out, but nothing displaying \"" + target +
                  "\" would take the mask, so there is no picture of it: " + attempts.firstError(),
              doc.name);
}

void QuindleRuntime::forgetPreviewDisplay(Diag& diag) {
  guarded(diag, [this] { detachPreview(); });
}

void QuindleRuntime::detachPreview() {
  while (!previewObjects_.empty()) {
    const std::string name = std::move(previewObjects_.back());
    previewObjects_.pop_back();
    Diag unread;
    ops_.removeObject(name, unread);
  }
}

} // namespace Zamt
