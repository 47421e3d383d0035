#pragma once

#include "cadmer/LabelSet.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace Zamt::Testing {

/// The text form of the labels "number name", which commas separate.
inline std::string labelText(const std::string& labels) {
  LabelSet set;
  std::istringstream all(labels);
  std::int32_t number = 0;
  for (std::string name; all >> number && all.get() && (std::getline(all, name, ','), true);) {
    set.labels[number].value = number;
    set.labels[number].name = name;
  }
  return VValueTrait<LabelSet>::Text(set);
}

/// The labels of a text form, with a "!" behind those that may be changed, and "?" behind those that do not
/// say; of many, how many.
inline std::string shortLabels(const std::string& text) {
  LabelSet set;
  EXPECT_TRUE(VValueTrait<LabelSet>::setValueFromText(set, text)) << text;
  if (set.labels.size() > 100) return std::to_string(set.labels.size()) + " classes";
  std::string out;
  for (const auto& [number, label] : set.labels) {
    EXPECT_EQ(label.value, number);
    const auto editable = label.flags.find("editable");
    out += (out.empty() ? "" : ", ") + std::to_string(number) + ' ' + label.name;
    out += editable == label.flags.end() ? "?" : editable->second ? "!" : "";
  }
  return out;
}

} // namespace Zamt::Testing
