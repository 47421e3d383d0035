#include "host/session/Scene.h"

#include "host/clouds/ClassMoves.h"
#include "host/objects/registerHostObjects.h"
#include "host/objects/values.h"
#include "host/session/ClassTable.h"
#include "host/session/checkValues.h"
#include "host/session/classNames.h"
#include "host/views/renderCloud.h"

#include "sorbine/VManagedObject.h"
#include "sorbine/ValuePool.h"

#include <fmt/format.h>

namespace Zamt::Host {

namespace {

constexpr const char* cloudName = "Cloud";
constexpr const char* ownPrefix = "Quindle_"; // how the names of what the runtime builds begin

using Source = QuindleParam::DefaultSource;

/// Whether the user left it to the application to supply the value.
bool leftToApplication(const QuindleParam& param) {
  return param.defaultSource != Source::Written || param.defaultValue.kind == QuindleValue::Kind::None;
}

} // namespace

Scene::Scene(const Stop& stop, CloudFormats formats) : stop_(stop) {
  VManagedObject::clear();
  registerHostObjects({stop, formats, files_});
  ops_ = std::make_unique<TolvenQuindleOps>(std::make_shared<ValuePool>());
  runtime_ = std::make_unique<QuindleRuntime>(*ops_);
  Diag diag;
  cloud_ = ops_->create("Lattix/PointCloud", cloudName, diag);
}

Scene::~Scene() {
  runtime_.reset();
  VManagedObject::clear();
}

Rethold::StrongPtr<Grid> Scene::grid() const {
  const auto source = VManagedObject::find<VObject>(cloud_);
  const auto cloud = std::dynamic_pointer_cast<CloudSource>(source);
  return cloud ? cloud->grid() : nullptr;
}

bool Scene::setRegion(const std::string& text, std::string& problem) {
  Region region;
  if (!parseRegion(text, region, problem)) return false;
  const bool box = region.polygons.empty();
  Diag diag;
  region_ = ops_->create(box ? "Compute/BrushFromBox" : "Compute/BrushFromPolygon", "Region", diag);
  if (!ops_->setParam(region_, box ? "box" : "polygon", text, diag)) {
    problem = diag.firstError();
    return false;
  }
  ops_->settle();
  brush_ = region_;
  runtime_->setBrushObject(brush_);
  return true;
}

void Scene::setClasses(const std::string& classes) {
  Diag diag;
  const std::string filter = ops_->create("Selection/BrushFilterByClass", "Classes", diag);
  ops_->setParam(filter, "classes", classes, diag);
  ops_->connect(filter, "brush", brush_, "", diag);
  brush_ = filter;
  runtime_->setBrushObject(brush_);
}

void Scene::setResolver(QuindleResolver resolver) {
  runtime_->resolver = [this, resolver = std::move(resolver)](const std::string& name,
                                                              QuindleDocument& document, std::string& error) {
    return mayNest(error) && resolver(name, document, error);
  };
}

bool Scene::mayNest(std::string& error) {
  if (stop_.requested())
    error = stoppedMessage;
  else if (++nestedRuns_ > mostNestedRuns)
    error = fmt::format("one run has started {} of them already. Let Quindles run one another fewer times.",
                        mostNestedRuns);
  return error.empty();
}

bool Scene::openCloud(const std::string& path, const QuindleDocument& document, Diag& diag) {
  if (!ops_->setParam(cloud_, "file", path, diag)) return false;
  ops_->settle();
  const Rethold::StrongPtr<Grid> open = grid();
  if (!open) {
    std::string problem;
    ops_->getParam(cloud_, "problem", problem, diag);
    diag.error(problem, path);
    return false;
  }
  open->everything = VManagedObject::find<VObject>(brush_);
  nestedRuns_ = 0;
  if (!findLabels(document, *open->cloud, open->labels, diag)) return false;
  if (!(open->labels == compiledFor_)) forgetCompiled();
  compiledFor_ = open->labels;
  return true;
}

bool Scene::findLabels(const QuindleDocument& document, const PointCloud& cloud, LabelSet& labels,
                       Diag& diag) {
  if (labels_) {
    labels = *labels_;
    return true;
  }
  const auto findUse = [&](ClassUse& use) { return addClassUse(cloud, stop_, use); };
  return makeClassTable({classesOf(cloud)}, saidClasses(document, {}, runtime_->resolver), findUse, labels,
                        diag);
}

/// Programs are compiled with class numbers worked out from the classes of the data. With others they would
/// put points into the wrong ones.
void Scene::forgetCompiled() {
  const QuindleResolver resolver = runtime_->resolver;
  runtime_ = std::make_unique<QuindleRuntime>(*ops_);
  runtime_->resolver = resolver;
  runtime_->setBrushObject(brush_);
  std::vector<std::string> own;
  VManagedObject::iterate(Rethold::typeOf<VObject>(), [&own](int, const auto&, const std::string& name) {
    if (name.starts_with(ownPrefix)) own.push_back(name);
    return true;
  });
  Diag ignored;
  for (const std::string& name : own) ops_->removeObject(name, ignored);
}

bool Scene::makeField(const QuindleParam& param, const std::string& field, std::string& object, Diag& diag) {
  std::string& made = made_["field " + field];
  if (made.empty()) {
    made = ops_->create("Lattix/Field", "Field_" + param.name, diag);
    if (made.empty() || !ops_->setParam(made, "fieldname", field + "@" + field, diag) ||
        !ops_->connect(made, "grid", cloud_, "", diag))
      return false;
    ops_->settle();
  }
  object = made;
  return true;
}

bool Scene::makeRegion(const QuindleParam& param, const std::string& text, std::string& object, Diag& diag) {
  Region region;
  std::string problem;
  if (!parseRegion(text, region, problem)) {
    diag.error("The value of \"" + param.name + "\" can't be used: " + problem, param.name);
    return false;
  }
  const bool box = region.polygons.empty();
  std::string& made = made_["region " + text];
  if (made.empty()) {
    made =
        ops_->create(box ? "Compute/BrushFromBox" : "Compute/BrushFromPolygon", "Region_" + param.name, diag);
    if (made.empty() || !ops_->setParam(made, box ? "box" : "polygon", text, diag)) return false;
    ops_->settle();
  }
  object = made;
  return true;
}

/// Gives one parameter its value from the application where it takes one, and an object where the user, or
/// the default, wrote what stands for one.
bool Scene::supply(const QuindleParam& param, std::map<std::string, std::string>& args, Diag& diag) {
  std::string written;
  if (const auto given = args.find(param.name); given != args.end())
    written = given->second;
  else if (!leftToApplication(param))
    written = param.defaultValue.toPlainText();
  if (ops_->exists(written)) return true;

  if (param.type == "Field")
    return makeField(param, written.empty() ? "Classification" : written, args[param.name], diag);
  if (param.type == "Region" || param.type == "Brush") {
    if (!written.empty()) return makeRegion(param, written, args[param.name], diag);
    if (!region_.empty()) args[param.name] = region_;
  }
  if (param.type == "Grid" && !written.empty()) {
    diag.error(
        fmt::format("\"{}\" takes a cloud, and there is none called \"{}\" here. Leave it out: it is the "
                    "cloud that is being worked on.",
                    param.name, written),
        param.name);
    return false;
  }
  if (param.type == "Grid") args[param.name] = cloud_;
  return true;
}

bool Scene::run(const QuindleDocument& document, const std::map<std::string, std::string>& values,
                bool preview, QuindleRunResult& result, Diag& diag) {
  for (const auto& editor : MaskedLabels::all()) editor->unselectAll();
  result = {};
  if (!checkValues(document, values, diag)) return false;
  std::map<std::string, std::string> args = values;
  if (!supplyAll(document, args, diag)) return false;
  nestedRuns_ = 0;
  const bool good = runtime_->run(document, args, preview, result, diag);
  ops_->settle();
  return good;
}

bool Scene::supplyAll(const QuindleDocument& document, std::map<std::string, std::string>& args, Diag& diag) {
  for (const QuindleParam& param : document.params) {
    if (!supply(param, args, diag)) return false;
    if (param.defaultSource == Source::Brush && region_.empty() && !args.contains(param.name))
      diag.note(
          "This Quindle works where the user brushes, and nothing was brushed: name a region with --region.",
          document.name);
  }
  return true;
}

std::vector<ClassChange> Scene::changes() const {
  std::vector<ClassChange> changes;
  for (const auto& editor : MaskedLabels::all())
    if (editor->selected()) changes.push_back(editor->change());
  return changes;
}

bool Scene::writeCloud(const std::string& path, Diag& diag) {
  const Rethold::StrongPtr<Grid> open = grid();
  std::vector<ClassName> names;
  std::vector<std::string> shortened;
  std::string problem = "There is no cloud to write.";
  if (!open || !storableClassNames(*open, names, shortened, problem) ||
      !(files_->dry || open->cloud->write(names, path, stop_, problem))) {
    diag.error(problem, path);
    return false;
  }
  for (const std::string& sentence : shortened) diag.note(sentence, path);
  return true;
}

bool Scene::addDisplay(Diag& diag) {
  const std::string display = ops_->create("Display/Picture", "Picture", diag);
  return !display.empty() && ops_->connect(display, "grid", cloud_, "", diag);
}

bool Scene::savePicture(const std::string& path, Diag& diag) {
  const Rethold::StrongPtr<Grid> open = grid();
  std::string problem = "There is no cloud to draw.";
  ClassMoves moves;
  Image image;
  if (open && findClassMoves(*open->cloud, stop_, moves, problem) &&
      renderCloud(*open->cloud, &moves.mask, {}, stop_, image, problem) && writePng(image, path, problem))
    return true;
  diag.error(problem, path);
  return false;
}

} // namespace Zamt::Host
