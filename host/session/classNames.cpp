#include "host/session/classNames.h"

#include "quindle/core/QuindleNodes.h"

#include <fmt/format.h>
#include <set>

namespace Zamt::Host {

namespace {

/// As much of a name as a file holds, cut between characters.
std::string storedName(const std::string& name) {
  if (name.size() <= longestClassName) return name;
  std::size_t length = longestClassName;
  constexpr unsigned char continuationMask = 0xC0;
  constexpr unsigned char continuation = 0x80;
  while (length > 0 && (static_cast<unsigned char>(name[length]) & continuationMask) == continuation)
    --length;
  return name.substr(0, length);
}

void collectFromExpr(const QuindleExpr& root, std::set<std::string>& texts) {
  for (const QuindleExpr* const expr : quindleExprs(root)) {
    if (expr->kind != QuindleExpr::Kind::Literal) continue;
    const std::string& text = expr->value.textValue;
    for (std::size_t at = 0; at <= text.size();) {
      const std::size_t comma = std::min(text.find(',', at), text.size());
      const std::size_t begin = std::min(text.find_first_not_of(' ', at), comma);
      std::size_t end = comma;
      while (end > begin && text[end - 1] == ' ') --end;
      if (end - begin > longestClassName) texts.insert(text.substr(begin, end - begin));
      at = comma + 1;
    }
  }
}

/// Every text of the steps that is too long for a file, and so may be the whole of a name cut short in one,
/// and the names of the Quindles that they run.
void collectFromSteps(const QuindleDocument& document, std::set<std::string>& texts,
                      std::vector<std::string>& runs) {
  for (const QuindleStep* const step : quindleSteps(document)) {
    if (step->kind == QuindleStep::Kind::Classify) collectFromExpr(step->value, texts);
    if (step->kind == QuindleStep::Kind::Run) runs.push_back(step->name);
    collectFromExpr(step->condition, texts);
  }
}

/// The long texts of a Quindle and of all that it runs, each looked at once.
std::set<std::string> longTexts(const QuindleDocument& document, const QuindleResolver& resolver) {
  std::set<std::string> texts;
  std::set<std::string> seen{document.name};
  std::vector<std::string> waiting;
  collectFromSteps(document, texts, waiting);
  while (resolver && !waiting.empty()) {
    const std::string name = std::move(waiting.back());
    waiting.pop_back();
    QuindleDocument nested;
    std::string why;
    if (seen.insert(name).second && resolver(name, nested, why)) collectFromSteps(nested, texts, waiting);
  }
  return texts;
}

} // namespace

void restoreClassNames(const QuindleDocument& document, const QuindleResolver& resolver, Grid& grid) {
  for (const std::string& whole : longTexts(document, resolver))
    for (auto& [number, label] : grid.labels.labels)
      if (label.name == storedName(whole)) label.name = whole;
}

bool storableClassNames(const Grid& grid, std::vector<ClassName>& names, std::vector<std::string>& shortened,
                        std::string& problem) {
  for (const auto& [number, whole] : grid.addedClasses) {
    const std::string stored = storedName(whole);
    for (const auto& [other, label] : grid.labels.labels) {
      if (other == number || storedName(label.name) != stored) continue;
      problem =
          fmt::format("The classes \"{}\" and \"{}\" begin alike, and a LAS file holds only the first {} "
                      "bytes of a name. Give one of them a name that differs in those.",
                      whole, label.name, longestClassName);
      return false;
    }
    if (stored != whole)
      shortened.push_back(
          fmt::format("The class \"{}\" is stored as \"{}\": a LAS file holds {} bytes of a name. "
                      "Quindles find it by its whole name all the same.",
                      whole, stored, longestClassName));
    names.push_back({number, stored});
  }
  return true;
}

} // namespace Zamt::Host
