#include "host/surfaces/SurfaceText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fmt/format.h>
#include <system_error>

namespace Zamt::Host {

namespace {

constexpr std::string_view classesPrefix = "class:";
constexpr std::string_view levelPrefix = "level:";
constexpr std::string_view longestOption = "longest=";

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool readNumber(std::string_view text, double& number) {
  text = trimmed(text);
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
  return fault == std::errc() && end == text.data() + text.size() && std::isfinite(number);
}

bool readLevel(std::string_view text, SurfaceText& surface, std::string& problem) {
  surface.kind = SurfaceText::Kind::Level;
  if (readNumber(text, surface.level)) return true;
  problem = fmt::format("The surface \"{}{}\" has no height. Write the number of a height behind it, as in "
                        "\"level:405.2\".",
                        levelPrefix, text);
  return false;
}

bool readOption(std::string_view text, SurfaceText& surface, std::string& problem) {
  if (text.starts_with(longestOption) && readNumber(text.substr(longestOption.size()), surface.longest) &&
      surface.longest > 0)
    return true;
  problem = fmt::format("\"{}\" says nothing about a surface of classes. Write how long a side of its "
                        "triangles may be, as in \"class:Ground?longest=20\".",
                        text);
  return false;
}

bool readClasses(std::string_view text, SurfaceText& surface, std::string& problem) {
  surface.kind = SurfaceText::Kind::Classes;
  const std::size_t mark = text.find('?');
  if (mark != std::string_view::npos && !readOption(text.substr(mark + 1), surface, problem)) return false;
  for (std::string_view rest = text.substr(0, mark); !rest.empty();) {
    const std::size_t comma = std::min(rest.find(','), rest.size());
    const std::string_view word = trimmed(rest.substr(0, comma));
    rest.remove_prefix(std::min(comma + 1, rest.size()));
    if (!word.empty()) surface.classes.emplace_back(word);
  }
  if (!surface.classes.empty()) return true;
  problem = "The surface \"class:\" names no class. Write at least one behind it, as in \"class:Ground\".";
  return false;
}

} // namespace

bool parseSurfaceText(std::string_view text, SurfaceText& surface, std::string& problem) {
  surface = {};
  std::error_code unknown;
  const bool exists = std::filesystem::exists(std::filesystem::path(text), unknown);
  if (!exists && text.starts_with(levelPrefix))
    return readLevel(text.substr(levelPrefix.size()), surface, problem);
  if (!exists && text.starts_with(classesPrefix))
    return readClasses(text.substr(classesPrefix.size()), surface, problem);
  surface.path = text;
  return true;
}

} // namespace Zamt::Host
