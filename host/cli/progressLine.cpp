#include "host/cli/progressLine.h"

#include "host/verbs/texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace Zamt::Host {

namespace {

constexpr std::size_t barWidth = 30;

/// Before, neither speed nor time left are worth telling.
constexpr std::chrono::duration<double> soonest{0.5};

std::string timeText(double seconds) {
  const auto whole = static_cast<std::uint64_t>(std::ceil(seconds));
  constexpr std::uint64_t minute = 60;
  return whole < minute ? fmt::format("{} s", whole)
                        : fmt::format("{}:{:02} min", whole / minute, whole % minute);
}

} // namespace

std::string progressLine(const ProgressNow& now, std::chrono::duration<double> all,
                         std::chrono::duration<double> one) {
  const double share =
      std::clamp((static_cast<double>(now.done) + now.part) / static_cast<double>(now.total), 0.0, 1.0);
  const auto filled = static_cast<std::size_t>(static_cast<double>(barWidth) * share);
  std::string line = fmt::format("[{}{}] {} of {}  {}", std::string(filled, '='),
                                 std::string(barWidth - filled, ' '), now.done, now.total, now.what);
  const double points = now.part * static_cast<double>(now.points);
  if (one > soonest && points > 0)
    line += fmt::format("  {} a second", countOf(static_cast<std::uint64_t>(points / one.count()), "point"));
  if (all > soonest && share > 0 && share < 1)
    line += fmt::format("  {} left", timeText(all.count() * (1 - share) / share));
  return line;
}

} // namespace Zamt::Host
