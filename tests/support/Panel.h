#pragma once

#include "cadmer/VAction.h"

namespace Zamt {

namespace Testing {

/// A value with a button and a number in it, for tests of members.
struct Panel {
  Rethold::StrongPtr<VValueBase> button;
  Rethold::StrongPtr<VValueBase> number = std::make_shared<VValue<double>>(1.0);
};

} // namespace Testing

template <>
struct VValueTrait<Testing::Panel> {
  static bool setValueFromText(Testing::Panel& /*value*/, const std::string& /*text*/) { return false; }
  static std::string Text(const Testing::Panel& /*value*/) { return "a panel"; }
  static Rethold::StrongPtr<VValueBase> component(const Testing::Panel& value, const std::string& name) {
    return name == "button" ? value.button : name == "number" ? value.number : nullptr;
  }
};

} // namespace Zamt
