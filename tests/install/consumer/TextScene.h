#pragma once

#include "quindle/runtime/QuindleOps.h"

#include <map>
#include <string>

/// A scene of nothing but text, as small as the runtime takes it: whatever is created exists, whatever is set
/// is kept, and an action "double" writes twice the slot "value" to the slot "result".
class TextScene : public Zamt::QuindleOps {
public:
  std::string create(const std::string& /*creator*/, const std::string& name, Zamt::Diag& /*diag*/) override {
    return name;
  }
  bool connect(const std::string& /*object*/, const std::string& /*slot*/, const std::string& /*source*/,
               const std::string& /*sourceSlot*/, Zamt::Diag& diag) override {
    diag.error("Nothing can be connected in a scene of text.");
    return false;
  }
  bool setParam(const std::string& object, const std::string& slot, const std::string& value,
                Zamt::Diag& /*diag*/) override {
    slots[object + "." + slot] = value;
    return true;
  }
  bool getParam(const std::string& object, const std::string& slot, std::string& value,
                Zamt::Diag& diag) override {
    const auto found = slots.find(object + "." + slot);
    if (found == slots.end()) {
      diag.error("There is no slot called \"" + object + "." + slot + "\".");
      return false;
    }
    value = found->second;
    return true;
  }
  bool fireAction(const std::string& object, const std::string& action, Zamt::Diag& diag) override {
    if (action != "double") {
      diag.error("There is no action called \"" + action + "\".");
      return false;
    }
    slots[object + ".result"] = std::to_string(2 * std::stoi(slots[object + ".value"]));
    return true;
  }
  int settle() override { return 0; }

private:
  std::map<std::string, std::string> slots; ///< By "object.slot".
};
