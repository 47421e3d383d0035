#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt {

/// What every point that a "select" keeps has to meet, condition by condition. Up to a fixed number of them,
/// so that comparing and joining takes bounded time: nobody repeats more.
class KeptConditions {
public:
  /// A condition of which nothing is known but that it is `source`.
  void add(const std::string& source);

  /// That the value of `subject` lies between both ends. False if nothing can meet it together with what was
  /// added of that subject before.
  bool addRange(const std::string& subject, double minimum, double maximum);

  /// That the class, as the field `subject` holds it, is one of a list.
  void addClasses(const std::string& subject, const std::vector<std::string_view>& classes);

  /// Whether meeting these is to meet the others: each is repeated or tightened.
  bool imply(const KeptConditions& others) const;

  /// Adds all of the others.
  void join(const KeptConditions& others);

private:
  struct Limits {
    double minimum;
    double maximum;
    std::optional<std::set<std::size_t>> classes; ///< Their hashes; nothing for any.
  };

  Limits* limitsOf(std::size_t subject);
  static bool lieWithin(const Limits& inner, const Limits& outer);
  static void tighten(Limits& limits, const Limits& by);

  std::map<std::size_t, Limits> limits_; ///< By the hash of what they are about.
  bool tooMany_ = false;                 ///< Some were left out.
};

} // namespace Zamt
