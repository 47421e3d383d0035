#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Zamt::Host {

/// What a verb is asked to do: the values of its options by their names. Each has the type that the option
/// has in the verb's description; asking for another gives what stands for nothing.
class Request {
public:
  using Value = std::variant<bool, std::string, std::vector<std::string>, std::uint64_t, int>;

  /// Takes the place of the value before.
  void set(std::string_view option, Value value);

  /// Whether the option was given any value.
  bool has(std::string_view option) const;

  bool flag(std::string_view option) const;
  const std::string& text(std::string_view option) const; ///< Empty if there is none.
  const std::vector<std::string>& texts(std::string_view option) const;
  std::uint64_t number(std::string_view option, std::uint64_t otherwise) const;
  int level(std::string_view option, int otherwise) const;

private:
  template <class Type>
  const Type* find(std::string_view option) const;

  std::map<std::string, Value, std::less<>> values_;
};

} // namespace Zamt::Host
