#pragma once

#include "quindle/plan/compileClassify.h"
#include "quindle/runtime/QuindleOps.h"

#include <charconv>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

/// The scene of docs/scene.md, which quotes this file piece by piece.
namespace Zamt::Testing {

/// A handful of points in memory, and the objects that work on them.
class TinyScene : public QuindleOps {
public:
  struct Point {
    double amplitude = 0;
    int classNumber = 0;
  };

  explicit TinyScene(std::vector<Point> measured) : points(std::move(measured)) {
    objects["Cloud"].creator = "Lattix/PointCloud";
  }

  std::vector<Point> points;

  std::string create(const std::string& creator, const std::string& name, Diag& diag) override {
    const auto known = creators.find(creator);
    if (known == creators.end()) {
      diag.error("There is no creator called \"" + creator + "\".", creator);
      return {};
    }
    std::string given = name;
    for (int n = 2; objects.contains(given); ++n) given = name + "_" + std::to_string(n);
    objects[given] = {creator, known->second, {}, {}};
    return given;
  }

  bool connect(const std::string& object, const std::string& slot, const std::string& source,
               const std::string& /*sourceSlot*/, Diag& diag) override {
    Object* const reader = find(object, diag);
    if (!reader || (!source.empty() && !find(source, diag))) return false;
    reader->sources[slot] = source;
    return true;
  }

  bool setParam(const std::string& object, const std::string& slot, const std::string& value,
                Diag& diag) override {
    std::string* const held = findSlot(object, slot, diag);
    if (!held) return false;
    if (numberIn(*held) && !numberIn(value)) {
      diag.error("\"" + value + "\" is no number, which \"" + slot + "\" has to be.", object);
      return false;
    }
    *held = value;
    return true;
  }

  bool getParam(const std::string& object, const std::string& slot, std::string& value, Diag& diag) override {
    const std::string* const held = findSlot(object, slot, diag);
    if (held) value = *held;
    return held != nullptr;
  }

  bool fireAction(const std::string& object, const std::string& action, Diag& diag) override {
    if (!find(object, diag)) return false;
    deferred.push_back([this, object, action] { act(objects[object], action); });
    return true;
  }

  int settle() override {
    const std::vector<std::function<void()>> work = std::exchange(deferred, {});
    for (const auto& piece : work) piece();
    return static_cast<int>(work.size());
  }

  bool exists(const std::string& name) override { return objects.contains(name); }

private:
  using Slots = std::map<std::string, std::string>;

  struct Object {
    std::string creator;
    Slots slots;                       ///< Values by slot, inputs and outputs alike.
    Slots sources;                     ///< What feeds a slot.
    std::vector<std::size_t> selected; ///< Of an editor: which points would change.
  };

  Object* find(const std::string& name, Diag& diag) {
    const auto found = objects.find(name);
    if (found != objects.end()) return &found->second;
    diag.error("There is no object called \"" + name + "\".", name);
    return nullptr;
  }

  std::string* findSlot(const std::string& name, const std::string& slot, Diag& diag) {
    Object* const object = find(name, diag);
    if (!object) return nullptr;
    const auto found = object->slots.find(slot);
    if (found != object->slots.end()) return &found->second;
    diag.error("\"" + name + "\" has no slot called \"" + slot + "\".", name);
    return nullptr;
  }

  void act(Object& editor, const std::string& action) {
    if (action == "applySelection") {
      for (const std::size_t index : editor.selected)
        points[index].classNumber = assignedClassOf(editor.slots["labels"]);
      return;
    }
    editor.selected.clear();
    for (const char* output : {"modified", "considered", "problem"}) editor.slots[output].clear();
    if (action == "select") select(editor);
  }

  void select(Object& editor) {
    if (objects[editor.sources["labelfield"]].sources["grid"] != "Cloud") {
      editor.slots["problem"] = "No data is attached to classify.";
      return;
    }
    if (!fieldsAreThere(editor.sources["brush"])) {
      editor.slots["problem"] = "The points have no field but Amplitude.";
      return;
    }
    const int target = assignedClassOf(editor.slots["labels"]);
    for (std::size_t i = 0; i < points.size(); ++i)
      if (points[i].classNumber != target && kept(points[i], editor.sources["brush"]))
        editor.selected.push_back(i);
    editor.slots["modified"] = std::to_string(editor.selected.size());
    editor.slots["considered"] = std::to_string(points.size());
  }

  /// Whether the filters of the chain ask for nothing that the points do not have.
  bool fieldsAreThere(std::string filter) {
    while (!filter.empty()) {
      Object& object = objects[filter];
      const auto field = object.slots.find("field");
      if (field != object.slots.end() && field->second != "Amplitude") return false;
      filter = object.sources["brush"];
    }
    return true;
  }

  /// Whether a point passes all filters of the chain that ends in `filter`.
  bool kept(const Point& point, std::string filter) {
    while (!filter.empty()) {
      Object& object = objects[filter];
      if (matches(point, object) == (object.slots["invert"] == "true")) return false;
      filter = object.sources["brush"];
    }
    return true;
  }

  static bool matches(const Point& point, Object& filter) {
    if (filter.creator == "Selection/BrushFilterByClass")
      return filter.slots["classes"] == std::to_string(point.classNumber);
    return point.amplitude >= numberIn(filter.slots["minimum"]) &&
           point.amplitude <= numberIn(filter.slots["maximum"]);
  }

  /// The number that a text is, whatever the locale; nothing if it is none.
  static std::optional<double> numberIn(const std::string& text) {
    double number = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (fault != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
  }

  /// What can be made, and the slots that each begins with.
  const std::map<std::string, Slots> creators{
      {"Selection/BrushFilterByClass", {{"classes", ""}, {"classfield", ""}, {"invert", ""}}},
      {"Selection/BrushFilterByField",
       {{"field", ""}, {"minimum", "0"}, {"maximum", "1"}, {"component", "0"}, {"invert", ""}}},
      {"Lattix/Field", {{"fieldname", ""}}},
      {"Edit/MaskedLabels", {{"labels", ""}, {"modified", ""}, {"considered", ""}, {"problem", ""}}},
  };
  std::map<std::string, Object> objects;
  std::vector<std::function<void()>> deferred;
};

} // namespace Zamt::Testing
