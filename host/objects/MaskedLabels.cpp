#include "host/objects/MaskedLabels.h"

#include "host/clouds/forEachBlock.h"
#include "host/objects/CloudObjects.h"
#include "host/objects/standardClassNames.h"

#include "sorbine/VCreator.h"

#include <algorithm>
#include <mutex>
#include <oneapi/tbb/enumerable_thread_specific.h>

namespace Zamt::Host {

namespace {

constexpr const char* classField = "Classification";
constexpr const char* editableFlag = "editable";
constexpr const char* assignSelection = "Assign";

const Label* findLabel(const LabelSet& set, std::int32_t number) {
  const auto found = set.labels.find(number);
  return found == set.labels.end() ? nullptr : &found->second;
}

const Label* findLabel(const LabelSet& set, const std::string& name) {
  for (const auto& [number, label] : set.labels)
    if (label.name == name) return &label;
  return nullptr;
}

/// Which classes may be changed. A number that the label set does not know may be, unless the set singles
/// some out.
std::array<bool, 256> editableClasses(const LabelSet& set) {
  bool singledOut = false;
  for (const auto& [number, label] : set.labels) {
    const auto flag = label.flags.find(editableFlag);
    singledOut = singledOut || (flag != label.flags.end() && !flag->second);
  }
  std::array<bool, 256> editable{};
  editable.fill(!singledOut);
  for (const auto& [number, label] : set.labels) {
    if (number < 0 || number >= static_cast<std::int32_t>(editable.size())) continue;
    const auto flag = label.flags.find(editableFlag);
    editable[static_cast<std::size_t>(number)] = flag != label.flags.end() && flag->second;
  }
  return editable;
}

/// Whether who reads the file by itself would know the class by that name.
bool isKnown(const PointCloud& cloud, std::uint8_t number, const std::string& name) {
  const auto own = std::ranges::find(cloud.classNames(), number, &ClassName::number);
  return own == cloud.classNames().end() ? isStandardClass(number, name) : true;
}

using Indices = std::vector<std::uint32_t>;

/// Calls `visit(block, indices)` for each block with points of the mask, blocks in parallel. False, with a
/// sentence in `problem`, when it was stopped or a block can't be read.
template <class Visit>
bool visitMasked(const Grid& grid, const PointMask& mask, const Visit& visit, std::string& problem) {
  tbb::enumerable_thread_specific<Indices> lists;
  const auto visitBlock = [&](BlockReader& block) {
    Indices& indices = lists.local();
    indices.clear();
    mask.list(block.first(), block.size(), indices);
    if (!indices.empty()) visit(block, indices);
  };
  const std::array<ColumnKey, 1> expected{grid.cloud->keyOf(grid.cloud->classField())};
  return forEachBlock(*grid.cloud, expected, grid.stop, visitBlock, problem);
}

} // namespace

void MaskedLabels::initialize() {
  VObject::initialize();
  LabelSet known;
  if (const auto source = CloudSource::first(); source && source->grid()) known = source->grid()->labels;
  for (const auto& editor : all()) {
    if (editor.get() == this) continue;
    const LabelSet& labels = editor->labels_.get();
    const Label* const added = findLabel(labels, labels.getSelectedValue(assignSelection));
    if (!added || added->name.empty() || findLabel(known, added->name)) continue;
    Label& label = known.labels[added->value];
    if (label.name.empty()) label = {added->value, added->color, added->name, added->description, {}};
  }
  labels_.set(std::move(known));
}

std::vector<Rethold::StrongPtr<MaskedLabels>> MaskedLabels::all() {
  std::vector<Rethold::StrongPtr<MaskedLabels>> editors;
  iterate(Rethold::typeOf<VObject>(),
          [&editors](int, const Rethold::StrongPtr<VManagedObject>& object, const std::string&) {
            if (auto editor = std::dynamic_pointer_cast<MaskedLabels>(object)) editors.push_back(editor);
            return true;
          });
  return editors;
}

void MaskedLabels::unselectAll() {
  grid_ = nullptr;
  mask_ = {};
  change_ = {};
  modified_.publish({});
  considered_.publish({});
  problem_.publish({});
  status_.publish("Nothing is selected.");
}

void MaskedLabels::fail(const std::string& problem) {
  problem_.publish(problem);
  status_.publish(problem);
}

/// The class to change to, as the label set says and as the data can hold it.
bool MaskedLabels::target(const Grid& grid, std::uint8_t& number, std::string& problem) const {
  const std::int32_t assigned = labels_.get().getSelectedValue(assignSelection);
  const unsigned highest = grid.cloud->highestClass();
  if (assigned < 0) {
    problem = "The label set names no class to put the points into.";
    return false;
  }
  if (assigned > static_cast<std::int32_t>(highest)) {
    problem = "Class " + std::to_string(assigned) + " does not fit: point format " +
              std::to_string(grid.cloud->pointFormat()) + " holds classes up to " + std::to_string(highest) +
              ". Choose a lower number with \"as\".";
    return false;
  }
  const Label* const wanted = findLabel(labels_.get(), assigned);
  const Label* const present = findLabel(grid.labels, assigned);
  if (wanted && present && wanted->name != present->name && !present->name.empty()) {
    problem = "Class " + std::to_string(assigned) + " is \"" + present->name + "\" in this data, not \"" +
              wanted->name + "\". Run the Quindle on this cloud by itself.";
    return false;
  }
  number = static_cast<std::uint8_t>(assigned);
  return true;
}

void MaskedLabels::select() {
  unselectAll();
  const FieldPtr& field = labelfield_.get();
  if (!field || !field->grid) return fail("No data is attached to classify.");
  if (field->name != classField)
    return fail("Only the field Classification can be changed, and \"" + field->name +
                "\" was given. Give that one, or the cloud.");
  const Rethold::StrongPtr<Grid> grid = field->grid;
  const Rethold::StrongPtr<VObject> fed = brush_.source();
  const Rethold::StrongPtr<VObject> start = fed ? fed : grid->everything.lock();
  std::string problem;
  std::uint8_t number = 0;
  std::vector<SelectionStep> steps;
  PointMask kept;
  if (!target(*grid, number, problem) || !buildSelection(start, *grid, steps, problem) ||
      !evaluateSelection(*grid->cloud, steps, grid->stop, kept, problem) ||
      !grid->warnOfFarPlaces(steps, problem))
    return fail(problem);

  change_.editor = name();
  change_.target = number;
  if (const Label* const label = findLabel(labels_.get(), number)) change_.targetName = label->name;
  change_.considered = grid->cloud->size();
  if (!countChanges(*grid, kept, problem)) return fail(problem);
  grid_ = grid;
  grid->masks[maskfield_.get()] = mask_;
  modified_.publish(std::to_string(change_.modified));
  considered_.publish(std::to_string(change_.considered));
  status_.publish("Selected " + modified_.get() + " of " + considered_.get() + " points for class " +
                  std::to_string(number) + ".");
}

/// Of the points kept, those whose class may be changed and is another than the target.
bool MaskedLabels::countChanges(const Grid& grid, const PointMask& kept, std::string& problem) {
  const std::array<bool, 256> editable = editableClasses(labels_.get());
  mask_ = PointMask(grid.cloud->size());
  std::mutex totals;
  const auto count = [&](BlockReader& block, Indices& indices) {
    std::array<std::uint64_t, 256> from{};
    const Column classes = block.classes();
    std::erase_if(indices, [&](std::uint32_t index) {
      const std::uint8_t number = classes.byteAt(index);
      if (number == change_.target || !editable[number]) return true;
      ++from[number];
      return false;
    });
    mask_.add(block.first(), indices);
    const std::lock_guard lock(totals);
    for (std::size_t number = 0; number < from.size(); ++number) {
      change_.from[number] += from[number];
      change_.modified += from[number];
    }
  };
  return visitMasked(grid, kept, count, problem);
}

void MaskedLabels::applySelection() {
  if (!grid_) return;
  std::string problem;
  const auto change = [this](BlockReader& block, const Indices& indices) {
    grid_->cloud->setClass(block, indices, change_.target);
  };
  if (!visitMasked(*grid_, mask_, change, problem)) return fail(problem);
  const bool isNamed = change_.modified > 0 && !change_.targetName.empty();
  if (isNamed && !isKnown(*grid_->cloud, change_.target, change_.targetName)) {
    grid_->addedClasses[change_.target] = change_.targetName;
    grid_->labels.labels[change_.target] = *findLabel(labels_.get(), change_.target);
    grid_->labels.labels[change_.target].flags.clear();
  }
  status_.publish("Put " + modified_.get() + " points into class " + std::to_string(change_.target) + ".");
}

void registerMaskedLabels() {
  registerCreator<MaskedLabels>(
      "Edit", "MaskedLabels",
      {.rank = 2000,
       .shortHelp = "Puts the points of a brush into a class.",
       .longHelp =
           "Works out which points of a brush have a class that may be changed, counts them, and puts "
           "them into the class that the label set assigns.",
       .accepts = {VAcceptInfo::of<BrushObject::BrushPtr>("brush")}});
}

} // namespace Zamt::Host
