#pragma once

#include "rethold/Export.h"
#include "sorbine/VValue.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>

namespace Zamt {

/// One class of a classification.
struct QUINDLE_PLATFORM_API Label {
  std::int32_t value = 0;            ///< The class number; equal to its key in the table.
  std::array<float, 4> color = {};   ///< Red, green, blue, alpha, each 0 to 1.
  std::string name;                  ///< Empty for a number that has no name.
  std::string description;           ///< A second text, for people.
  std::map<std::string, bool> flags; ///< By name, such as "editable".

  bool operator==(const Label&) const = default;
};

/// The classes of a classification: number, name, colour and flags of each, and named selections of one of
/// them. A plain value.
struct QUINDLE_PLATFORM_API LabelSet {
  std::map<std::int32_t, Label> labels;           ///< By class number.
  std::map<std::string, std::int32_t> selections; ///< Class numbers by the name of the selection.

  /// The class number selected under `name`; -1 if none is.
  std::int32_t getSelectedValue(const std::string& name) const;

  bool operator==(const LabelSet&) const = default;
};

/// The text form of a label set: a first line that tells what it is, then one line for each label and each
/// selection. The text of an empty set is empty. The layout stands in LabelSet.cpp.
template <>
struct QUINDLE_PLATFORM_API VValueTrait<LabelSet> {
  /// Fills `set` from its text form, in place of all that it held. False, with `set` as it was, if `text` is
  /// no label set.
  static bool setValueFromText(LabelSet& set, const std::string& text);

  /// The text form. Any bytes in the texts survive it; the value of each label is its key.
  static std::string Text(const LabelSet& set);
};

} // namespace Zamt
