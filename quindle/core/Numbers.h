#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Zamt {

/// Reads the longest number at the start of `text` as the C library does in the C locale, whatever locale
/// the process has: leading white space, a sign, hexadecimal, "inf" and "nan" are accepted, a value too large
/// becomes infinite. `length` receives the bytes that belong to it, 0 if there is no number.
double readNumber(std::string_view text, std::size_t& length);

/// The number that the whole of `text` is, or nothing. Empty text is no number.
std::optional<double> readWholeNumber(std::string_view text);

/// The shortest decimal text that reads back as exactly `value`: whole numbers below 1e15 without exponent,
/// otherwise the fewest significant digits that do.
std::string printNumber(double value);

} // namespace Zamt
