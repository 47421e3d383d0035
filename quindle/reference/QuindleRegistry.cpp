#include "quindle/reference/QuindleRegistry.h"

#include "quindle/core/AsciiText.h"
#include "quindle/plan/QuindleOperation.h"
#include "quindle/reference/maturity.h"

#include "cadmer/VAction.h"
#include "rethold/Pointer.h"
#include "rethold/Typename.h"
#include "sorbine/VCreator.h"
#include "sorbine/VManagedObject.h"
#include "sorbine/VObject.h"
#include "sorbine/VParameter.h"
#include "sorbine/VSlot.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <map>
#include <memory>

namespace Zamt {

namespace {

using Rethold::StrongPtr;

constexpr const char* conditionCategory = "Quindle conditions";
constexpr const char* actionCategory = "Actions in this scene";

enum Kind { Condition = 0, Creator = 1, Action = 2 };

std::string maturityOf(int rank) {
  return std::find_if(maturities.begin(), maturities.end(),
                      [rank](const Maturity& maturity) { return rank >= maturity.lowestRank; })
      ->word;
}

/// How much of a summary fits into a line of a listing, in bytes.
constexpr std::size_t longestSummary = 100;

/// How many actions out of reach a listing names.
constexpr std::size_t mostNamed = 3;

bool isWord(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), isNameByte);
}

/// A "call" begins with one identifier, while the action behind its dot may be quoted.
bool isReachable(const QuindleAction& action) {
  return !action.action.empty() && isWord(action.object) && !isDigit(action.object.front());
}

/// The type of what a slot holds: its parameter's value, or the member of it that the slot is about.
bool holdsAction(const VSlot& slot) {
  const auto& parameter = slot.parameter();
  StrongPtr<VValueBase> value = parameter ? parameter->value() : nullptr;
  if (value && !slot.member().empty()) value = value->component(slot.member());
  return value && value->type() == Rethold::typeOf<StrongPtr<VAction>>();
}

class ActionCollector : public VManagedObjectIterator {
public:
  explicit ActionCollector(bool onlyReachable) : reachableOnly(onlyReachable) {}

  bool apply(int /*rank*/, const StrongPtr<VManagedObject>& managed, const std::string& /*name*/) override {
    const auto object = std::dynamic_pointer_cast<VObject>(managed);
    if (!object) return true;
    const StrongPtr<VCreatorBase> creator = object->creator();
    object->iterate_inputs([&](const StrongPtr<VSlot>& slot, int /*index*/) {
      if (!slot || !holdsAction(*slot)) return true;
      QuindleAction action{object->name(), slot->name(), creator ? creator->name() : std::string(),
                           slot->help()};
      if (!reachableOnly || isReachable(action)) actions.push_back(std::move(action));
      return true;
    });
    return true;
  }

  bool reachableOnly;
  std::vector<QuindleAction> actions;
};

class Collector : public VManagedObjectIterator {
public:
  bool apply(int rank, const StrongPtr<VManagedObject>& managed, const std::string& /*name*/) override {
    const auto creator = std::dynamic_pointer_cast<VCreatorBase>(managed);
    if (!creator) return true;
    QuindleRegistryItem item{
        creator->name(), creator->category(), creator->shortHelp(), creator->longHelp(), {},
        Creator,         maturityOf(rank)};
    if (item.summary.empty())
      item.summary = item.description;
    else if (item.description.empty())
      item.description = item.summary;
    items.push_back(std::move(item));
    return true;
  }

  std::vector<QuindleRegistryItem> items;
};

std::string nameOf(const QuindleAction& action) { return action.object + '.' + action.action; }

QuindleRegistryItem itemOf(const QuindleOperation& operation) {
  return {operation.name, conditionCategory, operation.summary, operation.description, {}, Condition, {}};
}

QuindleRegistryItem itemOf(const QuindleAction& action) {
  const std::string origin =
      action.creator.empty() ? ", which no creator made." : ", made by " + action.creator + '.';
  return {nameOf(action),
          actionCategory,
          action.help,
          action.help + (action.help.empty() ? "" : "\n\n") + "On object " + action.object + origin,
          isWord(action.action) ? nameOf(action) : action.object + ".\"" + action.action + '"',
          Action,
          {}};
}

/// How an item is used, for the end of its page.
std::string usageOf(const QuindleRegistryItem& item) {
  if (item.kind == Action)
    return "\nWrite it as:\n    call " + item.completion +
           "()\nAn action takes no arguments; the parentheses may be left off. It fires the same thing the "
           "button beside it in the GUI does, and it is assumed to change something - so a preview run "
           "leaves it out.\n\nThis is an action of an object that exists right now. Save a Quindle that "
           "calls it and it will only run in a scene that has an object of that name again.\n";
  return "\nWrite it as:\n    create <name> = \"" + item.name +
         "\"\nand then set, connect or call whatever it turns out to have. What that is is a property of the "
         "object, not of the creator, so it can only be read once one exists.\n";
}

std::string bracketed(const std::string& maturity) {
  return maturity.empty() ? std::string() : "  [" + maturity + ']';
}

/// The first line of a summary, as much of it as a listing shows.
std::string shortened(const std::string& summary) {
  const std::string line = summary.substr(0, summary.find('\n'));
  if (line.size() > longestSummary) {
    const std::size_t blank = line.rfind(' ', longestSummary);
    return line.substr(0, blank == std::string::npos ? longestSummary : blank) + " ...";
  }
  return line.size() < summary.size() ? line + " ..." : line;
}

std::string listingLine(const QuindleRegistryItem& item) {
  return (item.completion.empty() ? item.name : item.completion) + bracketed(item.maturity) +
         (item.summary.empty() ? "" : "  -  " + shortened(item.summary)) + '\n';
}

/// The end of the list of actions: those that exist and that no Quindle can name; empty if there are none.
std::string unreachableLine() {
  std::size_t count = 0;
  std::string named;
  for (const QuindleAction& action : collectQuindleActions(false)) {
    if (isReachable(action)) continue;
    if (count < mostNamed) named += (count == 0 ? "" : ", ") + nameOf(action);
    ++count;
  }
  if (count == 0) return {};
  return "... and " + std::to_string(count) +
         " a Quindle cannot name at all. A call step begins with one identifier, so an object whose name "
         "holds a space or a separator is out of reach; rename it. The action's own name may be anything, "
         "since that half can be written in quotes. Out of reach here: " +
         named + (count > mostNamed ? ", ...\n" : ".\n");
}

} // namespace

const std::string QuindleActionCategory = actionCategory;

std::vector<QuindleAction> collectQuindleActions(bool reachableOnly) {
  ActionCollector collector(reachableOnly);
  VManagedObject::traverse(Rethold::typeOf<VObject>(), collector, INT_MIN, INT_MAX);
  return std::move(collector.actions);
}

std::vector<QuindleRegistryItem> collectQuindleRegistry(int level) {
  Collector creators;
  VManagedObject::traverse(Rethold::typeOf<VInputCreatorBase>(), creators, level, INT_MAX);
  std::vector<QuindleRegistryItem> items;
  for (const QuindleOperation& operation : allQuindleOperations()) items.push_back(itemOf(operation));
  for (const QuindleAction& action : collectQuindleActions(true)) items.push_back(itemOf(action));
  std::move(creators.items.begin(), creators.items.end(), std::back_inserter(items));
  return items;
}

std::vector<std::pair<std::string, int>> quindleRegistryCategories(int level) {
  std::map<std::string, int> counts;
  for (const QuindleRegistryItem& item : collectQuindleRegistry(level))
    if (!item.category.empty()) ++counts[item.category];
  return {counts.begin(), counts.end()};
}

std::string describeQuindleRegistry(const std::string& name, int level) {
  if (findQuindleOperation(name)) return describeQuindleOperation(name);
  const std::vector<QuindleRegistryItem> items = collectQuindleRegistry(level);
  const auto item = std::find_if(items.begin(), items.end(),
                                 [&](const QuindleRegistryItem& each) { return each.name == name; });
  if (item == items.end()) return {};
  std::string out = item->name + bracketed(item->maturity) + '\n';
  if (!item->category.empty()) out += "Category: " + item->category + '\n';
  if (!item->description.empty()) out += '\n' + item->description + '\n';
  return out + usageOf(*item);
}

std::string listQuindleRegistry(const std::string& category, std::uint64_t limit, int level) {
  std::string out;
  std::uint64_t total = 0;
  for (const QuindleRegistryItem& item : collectQuindleRegistry(level)) {
    if (!category.empty() && item.category != category) continue;
    if (total++ < limit) out += listingLine(item);
  }
  if (total > limit)
    out += "... and " + std::to_string(total - limit) + " more in this category, not shown.\n";
  if (category == actionCategory) out += unreachableLine();
  return out;
}

} // namespace Zamt
