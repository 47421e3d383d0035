#include "cadmer/LabelSet.h"

#include "quindle/core/Guarded.h"
#include "quindle/core/Refusals.h"
#include "quindle/plan/compileClassify.h"
#include "quindle/runtime/QuindleSceneWords.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <utility>

namespace Zamt {

namespace {

constexpr std::int32_t noClass = -1;

/// The first number that a class made here gets by itself; 0 is for points that were never classified.
constexpr std::int32_t firstClass = 1;

/// The classes that any field of one byte can hold, all of which may be changed where the data names none.
constexpr std::int32_t lastByteClass = 255;

using Colour = std::array<float, 4>;
constexpr Colour grey{0.5F, 0.5F, 0.5F, 1.0F};

float asFloat(const QuindleValue& item) {
  constexpr double limit = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(item.numberValue, -limit, limit));
}

Colour asColour(const QuindleValue& written) {
  const std::vector<QuindleValue>& items = written.items;
  if (written.kind != QuindleValue::Kind::Tuple || items.size() < 3) return grey;
  return {asFloat(items[0]), asFloat(items[1]), asFloat(items[2]),
          items.size() > 3 ? asFloat(items[3]) : 1.0F};
}

/// The class number that a text of digits is. Nothing for any other text, and for a number that no class can
/// have.
std::optional<std::int32_t> asClassNumber(const std::string& text) {
  if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
  std::int32_t number = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (fault != std::errc()) return std::nullopt;
  return number;
}

/// A label set while a step's plan for it is worked out.
class LabelPlan {
public:
  LabelPlan(const std::string& existingLabels, Diag& diag)
      : diag_(diag), hadLabels_(!existingLabels.empty()) {
    // A text that holds no label set brings no classes.
    if (hadLabels_) VValueTrait<LabelSet>::setValueFromText(set_, existingLabels);
    for (const auto& [number, label] : set_.labels) numbers_.emplace(label.name, number);
  }

  /// Makes exactly the selected classes editable, or all of them if none is selected.
  bool select(const std::vector<std::string>& classes) {
    selectsNothing_ = classes.empty();
    for (auto& [number, label] : set_.labels) label.flags[sceneWords::editableFlag] = selectsNothing_;
    return std::all_of(classes.begin(), classes.end(),
                       [this](const std::string& name) { return selectOne(name); });
  }

  /// Finds or makes the class that points are put into.
  bool aimAt(const std::string& name, std::int32_t number, const QuindleValue& colour) {
    if (const std::optional<std::int32_t> existing = find(name)) {
      target_ = *existing;
      return number < 0 || number == target_ ||
             refuse("This data already has a class called \"" + name + "\" numbered " +
                    std::to_string(target_) + ", so it cannot also be class " + std::to_string(number) + ".");
    }
    if (!chooseNumber(name, number)) return false;
    Label label;
    label.value = target_;
    label.color = asColour(colour);
    label.name = name;
    set_.labels[target_] = label;
    diag_.note("Adding a class \"" + name + "\" with value " + std::to_string(target_) + ".");
    return true;
  }

  /// The last touches: refuses what can't change anything, and says where the points go.
  bool finish(const std::string& name) {
    if (selected_.contains(target_)) return refuse(refusal::ownClass(name, std::to_string(target_)));
    if (selectsNothing_ && !hadLabels_) {
      for (std::int32_t number = 0; number <= lastByteClass; ++number) {
        Label& label = set_.labels[number];
        label.value = number;
        label.flags[sceneWords::editableFlag] = true;
      }
    }
    set_.selections[sceneWords::assignSelection] = target_;
    return true;
  }

  std::string text() const { return VValueTrait<LabelSet>::Text(set_); }
  std::int32_t assigned() const { return target_; }

private:
  bool refuse(const std::string& message) {
    diag_.error(message);
    return false;
  }

  /// The lowest number of a class of exactly this name.
  std::optional<std::int32_t> find(const std::string& name) const {
    const auto found = numbers_.lower_bound({name, std::numeric_limits<std::int32_t>::min()});
    if (found == numbers_.end() || found->first != name) return std::nullopt;
    return found->second;
  }

  bool selectOne(const std::string& name) {
    std::optional<std::int32_t> number = find(name);
    if (!number) {
      number = asClassNumber(name);
      if (!number) return refuseUnknown(name);
      nameByNumber(*number, name);
    }
    Label& label = set_.labels[*number];
    label.flags[sceneWords::editableFlag] = true;
    selected_.insert(label.value);
    return true;
  }

  /// Takes a number that has no name, or no label at all, as the class it is.
  void nameByNumber(std::int32_t number, const std::string& written) {
    Label& label = set_.labels[number];
    if (!label.name.empty()) return;
    numbers_.erase({label.name, number});
    label.value = number;
    label.name = "Class " + written;
    label.color = grey;
    numbers_.emplace(label.name, number);
    diag_.note("Class " + written + " is not named in this data; taking it as the number it is.");
  }

  bool refuseUnknown(const std::string& name) {
    if (!hadLabels_)
      return refuse("This classification has no classes defined at all, so selecting \"" + name +
                    "\" by name cannot match anything. Either connect a label set to the editor, or name the "
                    "class by its number.");
    std::string names;
    for (const auto& [number, label] : set_.labels) {
      if (label.name.empty()) continue;
      if (!names.empty()) names += ", ";
      names += label.name;
    }
    return refuse("This data has no class called \"" + name +
                  "\", so selecting it can never match anything. It has: " + names + ".");
  }

  /// Settles the number of a class that is not there yet.
  bool chooseNumber(const std::string& name, std::int32_t number) {
    if (number < 0) return chooseFreeNumber(name);
    const auto taken = set_.labels.find(number);
    if (taken != set_.labels.end() && !taken->second.name.empty())
      return refuse("Class " + std::to_string(number) + " is already \"" + taken->second.name +
                    "\" in this data, so \"" + name + "\" cannot be given that number.");
    target_ = number;
    return true;
  }

  bool chooseFreeNumber(const std::string& name) {
    std::int32_t highest = firstClass - 1;
    for (const auto& [number, label] : set_.labels) highest = std::max(highest, label.value);
    if (highest == std::numeric_limits<std::int32_t>::max())
      return refuse("This data has no class number left above its highest for \"" + name +
                    "\". Give it a free one with \"as\".");
    target_ = highest + 1;
    return true;
  }

  Diag& diag_;
  bool hadLabels_;
  bool selectsNothing_ = true;
  LabelSet set_;
  std::set<std::pair<std::string, std::int32_t>> numbers_; ///< By name, kept in step with the set's labels.
  std::set<std::int32_t> selected_;
  std::int32_t target_ = noClass;
};

} // namespace

bool planClassLabels(const std::string& existingLabels, const std::string& className, std::int32_t number,
                     const std::vector<std::string>& selectedClasses, const QuindleValue& colour,
                     std::string& plannedLabels, std::int32_t& assigned, Diag& diag) {
  return guarded(diag, false, [&] {
    LabelPlan plan(existingLabels, diag);
    if (className.empty()) {
      diag.error(refusal::noClass);
      return false;
    }
    if (!plan.select(selectedClasses) || !plan.aimAt(className, number, colour) || !plan.finish(className))
      return false;
    plannedLabels = plan.text();
    assigned = plan.assigned();
    return true;
  });
}

std::int32_t assignedClassOf(const std::string& labels) {
  if (labels.empty()) return noClass;
  LabelSet set;
  VValueTrait<LabelSet>::setValueFromText(set, labels);
  return set.getSelectedValue(sceneWords::assignSelection);
}

} // namespace Zamt
