#include "quindle/core/Numbers.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <locale.h>
#include <system_error>

namespace Zamt {

namespace {

// Numbers outside the range of a double, and in hexadecimal, are rare enough to take the slow road. The C
// library is right about them, in a locale of our own.
double readWithCLibrary(std::string_view text, std::size_t& length) {
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  const std::string copy(text);
  char* end = nullptr;
  const double value = strtod_l(copy.c_str(), &end, cLocale);
  length = static_cast<std::size_t>(end - copy.c_str());
  return value;
}

} // namespace

double readNumber(std::string_view text, std::size_t& length) {
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  const std::size_t first = text.starts_with('-') ? 1 : 0;
  const bool plain = text.size() > first && text[first] >= '0' && text[first] <= '9' &&
                     (text.size() < first + 2 || (text[first + 1] != 'x' && text[first + 1] != 'X'));
  if (plain) {
    double value = 0;
    const auto [stop, fault] = std::from_chars(begin, end, value);
    if (fault == std::errc()) {
      length = static_cast<std::size_t>(stop - begin);
      return value;
    }
  }
  return readWithCLibrary(text, length);
}

std::optional<double> readWholeNumber(std::string_view text) {
  std::size_t length = 0;
  const double value = readNumber(text, length);
  if (length == 0 || length != text.size()) return std::nullopt;
  return value;
}

std::string printNumber(double value) {
  constexpr double wholeLimit = 1e15;
  constexpr int exactDigits = 17;
  char buffer[40];
  const auto printed = [&](std::chars_format format, int precision) {
    return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, value, format, precision).ptr);
  };
  if (std::floor(value) == value && std::fabs(value) < wholeLimit)
    return printed(std::chars_format::fixed, 0);
  for (int precision = 1; precision < exactDigits; ++precision) {
    std::string text = printed(std::chars_format::general, precision);
    if (readWholeNumber(text) == value) return text;
  }
  return printed(std::chars_format::general, exactDigits);
}

} // namespace Zamt
