#include "host/verbs/texts.h"

#include <fmt/format.h>

#include <algorithm>

namespace Zamt::Host {

namespace {

constexpr std::string_view gap = "  ";

/// How many columns a terminal gives to a text in UTF-8: one a character, since names are in plain scripts.
std::size_t widthOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80U; }));
}

std::string printable(std::string text) {
  for (char& c : text)
    if (static_cast<unsigned char>(c) < ' ' || c == 0x7f) c = '?';
  return text;
}

} // namespace

std::string grouped(std::uint64_t count) {
  std::string digits = std::to_string(count);
  for (std::size_t i = digits.size(); i > 3; i -= 3) digits.insert(i - 3, 1, ',');
  return digits;
}

std::string countOf(std::uint64_t count, std::string_view noun) {
  return fmt::format("{} {}{}", grouped(count), noun, count == 1 ? "" : "s");
}

std::string tableText(const std::vector<std::string_view>& titles,
                      const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::vector<std::string>> lines{{titles.begin(), titles.end()}};
  for (const std::vector<std::string>& row : rows) {
    std::vector<std::string>& line = lines.emplace_back();
    for (const std::string& cell : row) line.push_back(printable(cell));
  }
  std::vector<std::size_t> widths(titles.size());
  for (const std::vector<std::string>& line : lines)
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], widthOf(line[i]));
  std::string text;
  for (const std::vector<std::string>& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      text += line[i];
      if (i + 1 < line.size()) (text += std::string(widths[i] - widthOf(line[i]), ' ')) += gap;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    text += '\n';
  }
  return text;
}

} // namespace Zamt::Host
