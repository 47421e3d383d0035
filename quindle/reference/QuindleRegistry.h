#pragma once

#include "quindle/core/Export.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// @file
/// What a Quindle can name at this moment: the conditions, the creators that the application has loaded, and
/// the actions of the objects that are in the scene. Nothing is kept: each call looks at the object graph
/// anew, on the thread that owns it. std::bad_alloc passes through.
///
/// `level` is the lowest rank of a creator to include: 2000 takes the mature ones only, 0 the beta ones too,
/// -1000 the experimental ones, and anything below also what is unfinished. Conditions and actions are always
/// all there.
namespace Zamt {

/// One action of one object.
struct QUINDLE_API QuindleAction {
  std::string object;  ///< The object's name in the scene.
  std::string action;  ///< The input slot, whose name is also the label of the button beside it.
  std::string creator; ///< What made the object; empty if nothing did or if it is gone.
  std::string help;    ///< A line on what it does; may be empty.
};

/// One word that a Quindle can use.
struct QUINDLE_API QuindleRegistryItem {
  std::string name;        ///< What it is looked up by: a keyword, "Category/Identifier" or "object.action".
  std::string category;    ///< The group that lists show it under.
  std::string summary;     ///< One sentence.
  std::string description; ///< Paragraphs; may be empty.
  std::string completion;  ///< What to type where that is not `name`; only of actions.
  int kind = 0;            ///< 0 a condition, 1 a creator, 2 an action.
  std::string maturity;    ///< Of a creator: "mature", "beta", "experimental" or "unfinished".
};

/// The category of all actions: "Actions in this scene".
QUINDLE_API extern const std::string QuindleActionCategory;

/// The actions of all objects, as a walk over the scene gives them; with `reachableOnly` only those that a
/// "call" step can write.
QUINDLE_API std::vector<QuindleAction> collectQuindleActions(bool reachableOnly);

/// Conditions, then actions, then creators.
QUINDLE_API std::vector<QuindleRegistryItem> collectQuindleRegistry(int level);

/// The categories in ascending order, each with the number of its items.
QUINDLE_API std::vector<std::pair<std::string, int>> quindleRegistryCategories(int level);

/// The page on the item of exactly this name, a condition before all others; empty text if there is none.
QUINDLE_API std::string describeQuindleRegistry(const std::string& name, int level);

/// One line for each item of a category, or of all if `category` is empty, and at most `limit` of them; then
/// how many there are beside those, and, in the category of actions, how many no Quindle can name and why.
QUINDLE_API std::string listQuindleRegistry(const std::string& category, std::uint64_t limit, int level);

} // namespace Zamt
