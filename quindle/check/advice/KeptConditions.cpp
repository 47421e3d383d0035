#include "quindle/check/advice/KeptConditions.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>

namespace Zamt {

namespace {

// How many conditions are kept, and how many classes of one, both inclusive.
constexpr std::size_t maxConditions = 16;
constexpr std::size_t maxClasses = 16;

constexpr double unlimited = std::numeric_limits<double>::infinity();

std::size_t hashOf(std::string_view text) { return std::hash<std::string_view>()(text); }

} // namespace

void KeptConditions::add(const std::string& source) { limitsOf(hashOf(source)); }

bool KeptConditions::addRange(const std::string& subject, double minimum, double maximum) {
  Limits* const limits = limitsOf(hashOf("range of " + subject));
  if (!limits) return true;
  const bool couldBeMet = limits->minimum <= limits->maximum && minimum <= maximum;
  tighten(*limits, {minimum, maximum, {}});
  return !couldBeMet || limits->minimum <= limits->maximum;
}

void KeptConditions::addClasses(const std::string& subject, const std::vector<std::string_view>& classes) {
  Limits* const limits = limitsOf(hashOf("classes of " + subject));
  if (!limits) return;
  std::set<std::size_t> hashes;
  for (const std::string_view name : classes) hashes.insert(hashOf(name));
  if (hashes.size() > maxClasses) {
    tooMany_ = true;
    return;
  }
  tighten(*limits, {-unlimited, unlimited, std::move(hashes)});
}

bool KeptConditions::imply(const KeptConditions& others) const {
  if (others.tooMany_) return false;
  return std::all_of(others.limits_.begin(), others.limits_.end(), [this](const auto& other) {
    const auto own = limits_.find(other.first);
    return own != limits_.end() && lieWithin(own->second, other.second);
  });
}

void KeptConditions::join(const KeptConditions& others) {
  tooMany_ = tooMany_ || others.tooMany_;
  for (const auto& [subject, limits] : others.limits_)
    if (Limits* const own = limitsOf(subject)) tighten(*own, limits);
}

/// Null when there is no room for another subject.
KeptConditions::Limits* KeptConditions::limitsOf(std::size_t subject) {
  const auto found = limits_.find(subject);
  if (found != limits_.end()) return &found->second;
  if (limits_.size() == maxConditions) {
    tooMany_ = true;
    return nullptr;
  }
  return &limits_.emplace(subject, Limits{-unlimited, unlimited, {}}).first->second;
}

bool KeptConditions::lieWithin(const Limits& inner, const Limits& outer) {
  if (inner.minimum < outer.minimum || inner.maximum > outer.maximum) return false;
  if (!outer.classes) return true;
  return inner.classes && std::includes(outer.classes->begin(), outer.classes->end(), inner.classes->begin(),
                                        inner.classes->end());
}

void KeptConditions::tighten(Limits& limits, const Limits& by) {
  limits.minimum = std::max(limits.minimum, by.minimum);
  limits.maximum = std::min(limits.maximum, by.maximum);
  if (!by.classes) return;
  if (!limits.classes) {
    limits.classes = by.classes;
    return;
  }
  std::set<std::size_t> both;
  std::set_intersection(limits.classes->begin(), limits.classes->end(), by.classes->begin(),
                        by.classes->end(), std::inserter(both, both.end()));
  limits.classes = std::move(both);
}

} // namespace Zamt
