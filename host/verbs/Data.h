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

  Data();
  Data(bool truth);
  Data(double number);
  Data(const char* text);
  Data(std::string_view text);
  Data(std::string text);
  Data(List list);
  Data(Fields fields);

  template <std::signed_integral Number>
  Data(Number number) : Data(Value(static_cast<std::int64_t>(number))) {}

  template <std::unsigned_integral Number>
  requires(!std::same_as<Number, bool>) Data(Number number)
      : Data(Value(static_cast<std::uint64_t>(number))) {}

  // In a source of their own: they are much code, and every verb makes values.
  Data(const Data& other);
  Data(Data&& other) noexcept;
  Data& operator=(const Data& other);
  Data& operator=(Data&& other) noexcept;
  ~Data();

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

private:
  explicit Data(Value&& made);
};

} // namespace Zamt::Host
