#pragma once

#include <array>
#include <limits>

/// How ripe a creator is, by its rank: the words that listings show and that a user asks for.
namespace Zamt {

struct Maturity {
  int lowestRank;
  const char* word;
};

/// The ripest first; every rank has one.
inline constexpr std::array<Maturity, 4> maturities{{{2000, "mature"},
                                                     {0, "beta"},
                                                     {-1000, "experimental"},
                                                     {std::numeric_limits<int>::min(), "unfinished"}}};

} // namespace Zamt
