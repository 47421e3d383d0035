#include "host/verbs/clouds/RunSummary.h"

#include "host/verbs/texts.h"

#include <fmt/format.h>

namespace Zamt::Host {

void RunSummary::add(const Outcome& outcome, const Diag& said) {
  preview_ = outcome.preview;
  if (!outcome.ok) return failures_.add(outcome.failure, outcome.cloud, said);
  ++(outcome.moves.empty() ? unchanged_ : changed_);
  for (const auto& [move, fromName, toName] : namedMoves(outcome))
    points_[{move.from, fromName, move.to, toName}] += move.points;
}

std::vector<NamedMove> RunSummary::moves() const {
  std::vector<NamedMove> moves;
  for (const auto& [classes, points] : points_) {
    const auto& [from, fromName, to, toName] = classes;
    moves.push_back({{from, to, points}, fromName, toName});
  }
  return moves;
}

std::string RunSummary::text() const {
  const std::uint64_t clouds = changed_ + unchanged_ + failures_.count();
  if (clouds == 0) return {}; // the run was refused as a whole
  std::string text = fmt::format("in all: {}, {} {}, {} {}", countOf(clouds, "cloud"), grouped(changed_),
                                 preview_ ? "would change" : "changed", grouped(unchanged_),
                                 preview_ ? "would not" : "unchanged");
  if (failures_.count() != 0) text += fmt::format(", {} failed", grouped(failures_.count()));
  return text + '\n' + movesText(moves()) + failures_.text();
}

Data RunSummary::data() const {
  return Fields{{"summary", Fields{{"changed", changed_},
                                   {"unchanged", unchanged_},
                                   {"failed", failures_.count()},
                                   {"moves", movesData(moves())},
                                   {"failures", failures_.data()}}}};
}

} // namespace Zamt::Host
