#pragma once

#include "sorbine/VValue.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>

namespace Zamt {

struct Label {
  std::int32_t value = 0;
  std::array<float, 4> color = {};
  std::string name;
  std::map<std::string, bool> flags;
};

struct LabelSet {
  std::map<std::int32_t, Label> labels;
  std::map<std::string, std::int32_t> selections;

  std::int32_t getSelectedValue(const std::string& name) const {
    const auto found = selections.find(name);
    return found == selections.end() ? -1 : found->second;
  }
};

/// No label set has a text here.
template <>
struct VValueTrait<LabelSet> {
  static bool setValueFromText(LabelSet& /*set*/, const std::string& /*text*/) { return false; }
  static std::string Text(const LabelSet& /*set*/) { return {}; }
};

} // namespace Zamt
