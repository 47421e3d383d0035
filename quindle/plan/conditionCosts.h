#pragma once

#include <cstdint>
#include <initializer_list>

/// @file
/// The cost model of conditions: four classes, of which only the order matters. A dear condition sees what
/// the cheaper ones before it left.
namespace Zamt {

/// One class of conditions and what the documentation calls it.
struct ConditionCost {
  std::uint32_t cost; ///< Relative; it only puts the classes in order.
  const char* words;  ///< A word, and behind a comma what the work is, if there is more to say.
};

/// The four classes, the cheapest first.
/// @{
inline constexpr ConditionCost freeOfCost{1, "free"};
inline constexpr ConditionCost readsOneValue{10, "cheap, reads one value per point"};
inline constexpr ConditionCost worksPerPoint{100, "moderate, works per point"};
inline constexpr ConditionCost searchesAround{10000, "expensive, searches around every point"};
/// @}

/// What a cost is called. One that is of no class counts as the dearest.
constexpr const char* costWords(std::uint32_t cost) {
  for (const ConditionCost& known : {freeOfCost, readsOneValue, worksPerPoint})
    if (known.cost == cost) return known.words;
  return searchesAround.words;
}

} // namespace Zamt
