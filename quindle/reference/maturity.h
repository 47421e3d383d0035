#pragma once

#include <array>
#include <limits>

/// @file
/// How ripe a creator is, by its rank: the words that listings show and that a user asks for.
namespace Zamt {

/// One word of ripeness.
struct Maturity {
  int lowestRank;   ///< Of the creators that this word is for, inclusive; what the registry takes as `level`.
  const char* word; ///< "mature", "beta", "experimental" or "unfinished".
};

/// The ripest first; every rank has one.
inline constexpr std::array<Maturity, 4> maturities{{{2000, "mature"},
                                                     {0, "beta"},
                                                     {-1000, "experimental"},
                                                     {std::numeric_limits<int>::min(), "unfinished"}}};

} // namespace Zamt
