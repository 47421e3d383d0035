#pragma once

#include "quindle/runtime/QuindleOps.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Zamt::Testing {

/// A scene of plain maps that writes down every call as one line of text, and answers from what the test put
/// into it. What it is told to refuse fails with one error.
class RecordingScene : public QuindleOps {
public:
  struct Object {
    std::string creator;
    std::map<std::string, std::string> slots;   ///< values by slot
    std::map<std::string, std::string> sources; ///< what feeds a slot: "object" or "object.slot"
    std::string status;
    std::vector<std::string> publishes;
  };

  std::vector<std::string> calls;        ///< everything that changes the scene, in order
  std::map<std::string, Object> objects; ///< fill before a run to stand for the user's scene
  std::vector<std::string> order;        ///< names in order of creation; for objectsPublishing
  std::set<std::string> refused;         ///< calls, as they would be written down, that fail
  /// What the slots of a new object hold as soon as it is attached to a brush, by creator.
  std::map<std::string, std::map<std::string, std::string>> presets;
  /// What the slots of a new object connect themselves to, by creator.
  std::map<std::string, std::map<std::string, std::string>> feeds;
  int settleResult = 1;
  std::function<void()> beforeEach = [] {}; ///< In front of each call; may throw.

  /// Puts an object of the user's into the scene.
  Object& add(const std::string& name, const std::string& creator, std::vector<std::string> publishes = {}) {
    order.push_back(name);
    Object& object = objects[name];
    object.creator = creator;
    object.publishes = std::move(publishes);
    return object;
  }

  /// The calls recorded since the last time this was asked.
  std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }

  std::string create(const std::string& creator, const std::string& name, Diag& diag) override {
    if (!record("create " + creator + " " + name, diag)) return {};
    std::string given = name;
    for (int n = 2; objects.contains(given); ++n) given = name + "_" + std::to_string(n);
    Object& object = add(given, creator);
    object.sources = feeds[creator];
    return given;
  }

  bool connect(const std::string& object, const std::string& slot, const std::string& source,
               const std::string& sourceSlot, Diag& diag) override {
    const std::string from = sourceSlot.empty() ? source : source + "." + sourceSlot;
    if (!record("connect " + object + "." + slot + " <- " + from, diag)) return false;
    objects[object].sources[slot] = from;
    if (slot == "brush") objects[object].slots.merge(std::map(presets[objects[object].creator]));
    return true;
  }

  bool setParam(const std::string& object, const std::string& slot, const std::string& value,
                Diag& diag) override {
    if (!record("set " + object + "." + slot + " = " + value, diag)) return false;
    objects[object].slots[slot] = value;
    return true;
  }

  bool getParam(const std::string& object, const std::string& slot, std::string& value, Diag& diag) override {
    const auto found = objects.find(object);
    if (found == objects.end() || !found->second.slots.contains(slot)) {
      diag.error("nothing to read at " + object + "." + slot, object);
      return false;
    }
    value = found->second.slots[slot];
    return true;
  }

  bool fireAction(const std::string& object, const std::string& action, Diag& diag) override {
    return record("fire " + object + "." + action, diag);
  }

  bool exists(const std::string& name) override { return objects.contains(name); }

  std::vector<std::string> objectsPublishing(const std::string& kind) override {
    std::vector<std::string> names;
    for (const std::string& name : order)
      if (objects.contains(name) && std::ranges::count(objects[name].publishes, kind) != 0)
        names.push_back(name);
    return names;
  }

  std::string sourceOf(const std::string& object, const std::string& slot) override {
    return objects.contains(object) && objects[object].sources.contains(slot) ? objects[object].sources[slot]
                                                                              : "";
  }

  std::vector<std::string> consumersOf(const std::string& object) override {
    std::vector<std::string> names;
    for (const auto& [name, reader] : objects)
      for (const auto& [slot, source] : reader.sources)
        if (source == object || source.starts_with(object + ".")) {
          names.push_back(name);
          break;
        }
    return names;
  }

  std::string creatorOf(const std::string& object) override {
    return objects.contains(object) ? objects[object].creator : std::string();
  }

  std::string statusOf(const std::string& object) override {
    return objects.contains(object) ? objects[object].status : std::string();
  }

  bool removeObject(const std::string& name, Diag& diag) override {
    return record("remove " + name, diag) && objects.erase(name) > 0;
  }

  int settle() override {
    calls.emplace_back("settle");
    return settleResult;
  }

private:
  bool record(const std::string& call, Diag& diag) {
    beforeEach();
    calls.push_back(call);
    if (!refused.contains(call)) return true;
    diag.error("refused: " + call, "scene");
    return false;
  }
};

} // namespace Zamt::Testing
