#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// @file
/// What the texts of several verbs are made of.
namespace Zamt::Host {

/// A number with its digits in groups of three.
std::string grouped(std::uint64_t count);

/// "1 point", "2 points", with the digits of large numbers in groups of three.
std::string countOf(std::uint64_t count, std::string_view noun);

/// Rows of cells in columns under their titles, a line each. Control characters in a cell, which a file may
/// bring, are shown as "?".
std::string tableText(const std::vector<std::string_view>& titles,
                      const std::vector<std::vector<std::string>>& rows);

} // namespace Zamt::Host
