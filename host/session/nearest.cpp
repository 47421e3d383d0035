#include "host/session/nearest.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Zamt::Host {

namespace {

constexpr std::size_t offered = 3;

/// Shorter words are inside of nearly everything.
constexpr std::size_t leastPart = 3;

/// The case of ASCII letters does not count, in whatever locale.
std::string lowered(std::string_view text) {
  std::string low(text);
  for (char& c : low)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return low;
}

/// How many bytes have to be put in, taken out or replaced to make one text the other.
std::size_t editDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[b.size()];
}

/// The distance of a name that is near; nothing if it is far, which most are by their length alone.
std::optional<std::size_t> nearness(const std::string& wanted, const std::string& name) {
  const std::size_t allowed =
      std::max<std::size_t>(1, (wanted.size() + 1) / 3); // two letters swapped are two
  const std::size_t difference =
      wanted.size() > name.size() ? wanted.size() - name.size() : name.size() - wanted.size();
  if (difference <= allowed)
    if (const std::size_t distance = editDistance(wanted, name); distance <= allowed) return distance;
  if (wanted.size() >= leastPart && name.find(wanted) != std::string::npos) return allowed + difference;
  return std::nullopt;
}

/// The words of a list "a, b, c." at the end of a sentence.
std::vector<std::string> listedNames(std::string_view list) {
  if (list.ends_with('.')) list.remove_suffix(1);
  std::vector<std::string> names;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(", "), list.size());
    names.emplace_back(list.substr(0, end));
    list.remove_prefix(std::min(end + 2, list.size()));
  }
  return names;
}

/// What offers a word in place of the one that a sentence calls unknown; empty if it calls none so, or lists
/// none.
std::string offerFor(std::string_view message) {
  constexpr std::string_view unknown = " called \"";
  static constexpr std::string_view lists[] = {
      ". The ones there are: ", "\"; this cloud has ", " It has: ",
      ". It takes: ",           ". It takes ",         " There is: "};
  const std::size_t said = message.find(unknown);
  if (said == std::string_view::npos) return {};
  const std::string_view word = message.substr(said + unknown.size());
  for (const std::string_view list : lists)
    if (const std::size_t at = message.find(list, said); at != std::string_view::npos)
      return didYouMean(word.substr(0, word.find('"')), listedNames(message.substr(at + list.size())));
  return {};
}

} // namespace

std::vector<std::string> nearestNames(std::string_view wanted, const std::vector<std::string>& names) {
  const std::string low = lowered(wanted);
  std::vector<std::pair<std::size_t, const std::string*>> near;
  for (const std::string& name : names)
    if (const auto distance = nearness(low, lowered(name))) near.emplace_back(*distance, &name);
  std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> best;
  for (std::size_t i = 0; i < std::min(near.size(), offered); ++i) best.push_back(*near[i].second);
  return best;
}

std::string didYouMean(std::string_view wanted, const std::vector<std::string>& names) {
  const std::vector<std::string> best = nearestNames(wanted, names);
  std::string sentence;
  for (std::size_t i = 0; i < best.size(); ++i) {
    sentence += i == 0 ? " Did you mean " : i + 1 < best.size() ? ", " : " or ";
    sentence += '"' + best[i] + '"';
  }
  return sentence.empty() ? sentence : sentence + '?';
}

Diag withNearestNames(const Diag& diag) {
  Diag whole;
  for (const Diag::Entry& entry : diag.entries) {
    whole.at(entry.severity, entry.message, entry.file, entry.line, entry.column);
    if (const std::string offer = offerFor(entry.message); !offer.empty())
      whole.at(Diag::Severity::Note, offer.substr(1), entry.file, entry.line, entry.column);
  }
  return whole;
}

} // namespace Zamt::Host
