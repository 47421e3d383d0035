#pragma once

#include "quindle/core/Export.h"
#include "quindle/core/QuindleDocument.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// @file
/// The fixed vocabulary of conditions that a "select" can name. The catalogue is made on first use, never
/// changes, and may be read from any thread; pointers into it stay valid for the life of the process.
/// std::bad_alloc passes through.
namespace Zamt {

/// One argument of a condition.
struct QUINDLE_API QuindleOpParam {
  std::string name;          ///< As written in the language.
  std::string slot;          ///< The input slot that receives the value; not always called like `name`.
  std::string help;          ///< One line, for people and for the assistant.
  bool required = false;     ///< The condition cannot be used without it.
  QuindleValue defaultValue; ///< Used when an optional argument is left out; None on a required one.
};

/// One condition.
struct QUINDLE_API QuindleOperation {
  std::string name;         ///< The keyword, unique in the catalogue.
  std::string creator;      ///< "Category/Identifier" of the object that carries it out; not unique.
  std::string summary;      ///< One sentence.
  std::string description;  ///< Paragraphs, with a line end between them.
  std::uint32_t cost = 100; ///< Relative; only the order of costs matters to the planner.
  std::vector<QuindleOpParam> params; ///< The arguments, in positional order.
  /// Slots that every object of this condition gets, whatever is written: slot name and value. Conditions
  /// that share a creator differ in these.
  std::vector<std::pair<std::string, QuindleValue>> fixed;

  /// The argument of exactly this name, or null. It lives as long as `params` is not changed.
  const QuindleOpParam* findParam(const std::string& wanted) const;

  /// How many arguments have to be given.
  unsigned requiredCount() const;
};

/// The whole catalogue, in the order of every listing.
QUINDLE_API const std::vector<QuindleOperation>& allQuindleOperations();

/// The condition of exactly this keyword, or null.
QUINDLE_API const QuindleOperation* findQuindleOperation(const std::string& name);

/// The page on one condition: what it keeps, what it costs, its arguments with their defaults, and the object
/// that it builds. Empty text if there is no condition of exactly this keyword.
QUINDLE_API std::string describeQuindleOperation(const std::string& name);

/// One line for each condition whose creator begins with `creatorPrefix`, byte for byte, in the order of the
/// catalogue: the call with its optional arguments in brackets, and the summary. An empty prefix takes all;
/// empty text if no creator begins so.
QUINDLE_API std::string listQuindleOperations(const std::string& creatorPrefix);

} // namespace Zamt
