#pragma once

#include <cstdlib>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Zamt::Testing {

/// Variables of the environment with other values, until the end of the scope. A variable given as nothing
/// is not set.
class Environment {
public:
  using Variable = std::pair<std::string, std::optional<std::string>>;

  Environment(std::initializer_list<Variable> variables) {
    for (const auto& [name, value] : variables) {
      const char* const old = std::getenv(name.c_str());
      before.emplace_back(name, old == nullptr ? std::nullopt : std::optional<std::string>(old));
      set(name, value);
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;
  ~Environment() {
    for (const auto& [name, value] : before) set(name, value);
  }

private:
  static void set(const std::string& name, const std::optional<std::string>& value) {
    if (value)
      ::setenv(name.c_str(), value->c_str(), 1);
    else
      ::unsetenv(name.c_str());
  }

  std::vector<Variable> before;
};

} // namespace Zamt::Testing
