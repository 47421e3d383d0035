#include "quindle/runtime/QuindleRuntime.h"

namespace Zamt {

QuindleRuntime::QuindleRuntime(QuindleOps& scene) : ops(scene) {}

QuindleRuntime::~QuindleRuntime() = default;

void QuindleRuntime::forget(const std::string& name) { programs.erase(name); }

std::string QuindleRuntime::objectNamed(const std::string& name) const {
  const auto found = objectNames.find(name);
  return found == objectNames.end() ? name : found->second;
}

void QuindleRuntime::setBrushObject(const std::string& name) {
  if (name.empty() || name == brushObject) return;
  brushObject = name;
  brushPinned = true;
  programs.clear();
}

std::string QuindleRuntime::ensureBrushObject(Diag& diag) {
  if (brushPinned || ops.exists(brushObject)) return brushObject;
  const std::vector<std::string> brushes = sceneObjectsPublishing(sceneWords::brushKind);
  std::string found = brushes.empty() ? makeBrush(diag) : brushes.front();
  if (!found.empty()) brushObject = found;
  return found;
}

/// A new brush, switched on for drawing if there is something to draw with. That nothing draws into it is no
/// failure: the selection then is what the user draws later.
std::string QuindleRuntime::makeBrush(Diag& diag) {
  std::string made = ops.create(sceneWords::madeBrushCreator, sceneWords::madeBrush, diag);
  if (made.empty()) {
    diag.error("Nothing in the scene publishes a brush to select from, and one could not be made.",
               sceneWords::madeBrushCreator);
    return made;
  }
  // The new object's inputs may connect themselves to what is in the scene.
  ops.settle();
  std::string source = ops.sourceOf(made, sceneWords::screenPointsSlot);
  if (source.empty()) {
    const std::vector<std::string> drawing = ops.objectsPublishing(sceneWords::screenPointsKind);
    if (!drawing.empty()) source = drawing.front();
  }
  if (source.empty())
    diag.warning(
        "The brush was made but nothing is drawing into it, so there will be nothing to select until "
        "something does.",
        made);
  else if (ops.setParam(source, sceneWords::modeSlot, sceneWords::brushMode, diag))
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
  std::vector<std::string> names = ops.objectsPublishing(kind);
  std::erase_if(names, [](const std::string& name) { return name.starts_with(sceneWords::ownPrefix); });
  return names;
}

std::vector<std::string> QuindleRuntime::sceneObjectsOfKind(const std::string& kind) {
  std::vector<std::string> names = sceneObjectsPublishing(kind);
  std::erase_if(names, [&](const std::string& name) {
    const std::string creator = ops.creatorOf(name);
    const std::size_t slash = creator.rfind('/');
    return slash == std::string::npos || creator.compare(slash + 1, std::string::npos, kind) != 0;
  });
  return names;
}

} // namespace Zamt
