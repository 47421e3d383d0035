#include "quindle/runtime/QuindleRuntime.h"

#include "quindle/core/Guarded.h"
#include "quindle/runtime/Run.h"

namespace Zamt {

QuindleRuntime::QuindleRuntime(QuindleOps& ops) : ops_(ops) {}

QuindleRuntime::~QuindleRuntime() = default;

bool QuindleRuntime::run(const QuindleDocument& doc, const std::map<std::string, std::string>& args,
                         bool preview, QuindleRunResult& result, Diag& diag) {
  return Run(*this, doc, args, preview, result, diag).perform();
}

/// The kept program if it still is the document's, else a new one; null if that can't be compiled.
std::shared_ptr<const QuindleRuntime::Program>
QuindleRuntime::programFor(const QuindleDocument& doc, QuindleRunResult& result, Diag& diag) {
  if (const auto kept = programs_.find(doc.name); kept != programs_.end()) {
    if (kept->second->revision == doc.revision) return kept->second;
    programs_.erase(kept);
  }
  auto program = std::make_shared<Program>();
  if (!build(doc, *program, diag)) return nullptr;
  programs_[doc.name] = program;
  result.compiled = true;
  return program;
}

void QuindleRuntime::forget(const std::string& name) { programs_.erase(name); }

std::string QuindleRuntime::objectNamed(const std::string& name) const {
  const auto found = objectNames_.find(name);
  return found == objectNames_.end() ? name : found->second;
}

void QuindleRuntime::setBrushObject(const std::string& name) {
  if (name.empty() || name == brushObject_) return;
  brushObject_ = name;
  brushPinned_ = true;
  programs_.clear();
}

std::string QuindleRuntime::ensureBrushObject(Diag& diag) {
  return guarded(diag, std::string(), [&] { return findBrush(diag); });
}

std::string QuindleRuntime::findBrush(Diag& diag) {
  if (brushPinned_ || ops_.exists(brushObject_)) return brushObject_;
  const std::vector<std::string> brushes = sceneObjectsPublishing(sceneWords::brushKind);
  std::string found = brushes.empty() ? makeBrush(diag) : brushes.front();
  if (!found.empty()) brushObject_ = found;
  return found;
}

/// A new brush, switched on for drawing if there is something to draw with. That nothing draws into it is no
/// failure: the selection then is what the user draws later.
std::string QuindleRuntime::makeBrush(Diag& diag) {
  std::string made = ops_.create(sceneWords::madeBrushCreator, sceneWords::madeBrush, diag);
  if (made.empty()) {
    diag.error("Nothing in the scene publishes a brush to select from, and one could not be made.",
               sceneWords::madeBrushCreator);
    return made;
  }
  // The new object's inputs may connect themselves to what is in the scene.
  ops_.settle();
  std::string source = ops_.sourceOf(made, sceneWords::screenPointsSlot);
  if (source.empty()) {
    const std::vector<std::string> drawing = ops_.objectsPublishing(sceneWords::screenPointsKind);
    if (!drawing.empty()) source = drawing.front();
  }
  if (source.empty())
    diag.warning(
        "The brush was made but nothing is drawing into it, so there will be nothing to select until "
        "something does.",
        made);
  else if (ops_.setParam(source, sceneWords::modeSlot, sceneWords::brushMode, diag))
    diag.note("Nothing in the scene published a brush, so \"" + made + "\" was made and \"" + source +
                  "\" switched on - draw on the view to select.",
              made);
  else
    diag.warning(
        "The brush was made but its lasso could not be switched on, so drawing on the screen will not "
        "select anything yet.",
        source);
  return made;
}

std::vector<std::string> QuindleRuntime::sceneObjectsPublishing(const std::string& kind) {
  std::vector<std::string> names = ops_.objectsPublishing(kind);
  std::erase_if(names, [](const std::string& name) { return name.starts_with(sceneWords::ownPrefix); });
  return names;
}

std::vector<std::string> QuindleRuntime::sceneObjectsOfKind(const std::string& kind) {
  std::vector<std::string> names = sceneObjectsPublishing(kind);
  std::erase_if(names, [&](const std::string& name) {
    const std::string creator = ops_.creatorOf(name);
    const std::size_t slash = creator.rfind('/');
    return slash == std::string::npos || creator.compare(slash + 1, std::string::npos, kind) != 0;
  });
  return names;
}

} // namespace Zamt
