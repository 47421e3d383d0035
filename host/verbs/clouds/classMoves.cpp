#include "host/verbs/clouds/classMoves.h"

#include "host/verbs/texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>

namespace Zamt::Host {

namespace {

/// Puts blanks in front of numbers, so that they end in one column.
void alignRight(std::vector<std::vector<std::string>>& rows, std::size_t column) {
  std::size_t width = 0;
  for (const auto& row : rows) width = std::max(width, row[column].size());
  for (auto& row : rows) row[column].insert(0, width - row[column].size(), ' ');
}

std::string classText(std::uint8_t number, const std::string& name) {
  return name.empty() ? fmt::format("{}", number) : fmt::format("{} {}", number, name);
}

Data moveData(const NamedMove& named) {
  return Fields{{"from", named.move.from},
                {"fromName", named.fromName},
                {"to", named.move.to},
                {"toName", named.toName},
                {"points", named.move.points}};
}

} // namespace

std::vector<NamedMove> namedMoves(const Outcome& outcome) {
  std::vector<NamedMove> moves;
  for (const ClassMove& move : outcome.moves)
    moves.push_back({move, outcome.classNames.at(move.from), outcome.classNames.at(move.to)});
  return moves;
}

std::string movesText(const std::vector<NamedMove>& moves) {
  if (moves.empty()) return {};
  std::vector<std::vector<std::string>> rows;
  for (const auto& [move, fromName, toName] : moves)
    rows.push_back({classText(move.from, fromName), classText(move.to, toName), grouped(move.points)});
  alignRight(rows, 2);
  std::istringstream lines(tableText({"FROM", "TO", "POINTS"}, rows));
  std::string text;
  for (std::string line; std::getline(lines, line);) text += "    " + line + '\n';
  return text;
}

Data movesData(const std::vector<NamedMove>& moves) { return Data::list(moves, moveData); }

} // namespace Zamt::Host
