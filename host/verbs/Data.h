#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace Zamt::Host {

class Data;

/// The parts of a value by their names, each once. The names are literals of the code.
using Fields = std::vector<std::pair<const char*, Data>>;

/// A value as programs take it: nothing, a truth value, a number, a text, a list or named fields. How it is
/// written down, as JSON or otherwise, is its reader's business. Texts hold bytes as they were found.
class Data {
public:
  using List = std::vector<Data>;
  using Value =
      std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string, List, Fields>;

  Data(std::nullptr_t nothing = nullptr) : value(nothing) {}
  Data(bool truth) : value(truth) {}
  Data(double number) : value(number) {}
  Data(const char* text) : value(std::string(text)) {}
  Data(std::string_view text) : value(std::string(text)) {}
  Data(std::string text) : value(std::move(text)) {}
  Data(List list) : value(std::move(list)) {}
  Data(Fields fields) : value(std::move(fields)) {}

  template <std::signed_integral Number>
  Data(Number number) : value(static_cast<std::int64_t>(number)) {}

  template <std::unsigned_integral Number>
  requires(!std::same_as<Number, bool>) Data(Number number) : value(static_cast<std::uint64_t>(number)) {}

  /// The elements of anything that can be walked, each as it converts.
  template <class Range>
  static List list(const Range& range) {
    List list;
    for (const auto& element : range) list.emplace_back(element);
    return list;
  }

  /// The same of what `dataOf` makes of each element.
  template <class Range, class DataOf>
  static List list(const Range& range, const DataOf& dataOf) {
    List list;
    for (const auto& element : range) list.emplace_back(dataOf(element));
    return list;
  }

  Value value;
};

} // namespace Zamt::Host
