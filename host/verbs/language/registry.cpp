#include "host/session/Scene.h"
#include "host/session/nearest.h"
#include "host/verbs/options.h"
#include "host/verbs/verbs.h"
#include "quindle/reference/QuindleRegistry.h"
#include "quindle/reference/maturity.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Zamt::Host {

namespace {

/// The lowest rank of creators by the word for their maturity.
std::map<std::string, int> levels() {
  std::map<std::string, int> ranks;
  for (const Maturity& maturity : maturities) ranks.emplace(maturity.word, maturity.lowestRank);
  return ranks;
}

/// What is asked for, and what the scene has. All of it is gathered while there is a scene.
struct Listing {
  std::string wanted; ///< A category or a name; empty for all.
  std::uint64_t limit = 0;
  int level = 0;
  std::vector<std::pair<std::string, int>> categories; ///< With the number of their items.
  std::vector<QuindleRegistryItem> items;
  std::string text;
};

bool isCategory(const std::string& name, const Listing& listing) {
  return std::any_of(listing.categories.begin(), listing.categories.end(),
                     [&](const auto& category) { return category.first == name; });
}

bool isKnown(const Listing& listing) {
  return listing.wanted.empty() || listing.wanted == QuindleActionCategory ||
         isCategory(listing.wanted, listing) ||
         std::any_of(listing.items.begin(), listing.items.end(),
                     [&](const QuindleRegistryItem& item) { return item.name == listing.wanted; });
}

std::string unknownItem(const Listing& listing) {
  std::vector<std::string> names;
  for (const auto& category : listing.categories) names.push_back(category.first);
  for (const QuindleRegistryItem& item : listing.items) names.push_back(item.name);
  return fmt::format(
      "There is no category and no item called \"{}\".{} \"quindle registry\" without a name lists them all.",
      listing.wanted, didYouMean(listing.wanted, names));
}

std::string listingText(const Listing& listing) {
  std::string text;
  for (const auto& [category, count] : listing.categories) {
    if (!listing.wanted.empty() && listing.wanted != category) continue;
    if (!text.empty()) text += '\n';
    text += fmt::format("== {}  ({})\n\n{}", category, count,
                        listQuindleRegistry(category, listing.limit, listing.level));
  }
  if (!text.empty()) return text;
  return listing.wanted == QuindleActionCategory
             ? listQuindleRegistry(listing.wanted, listing.limit, listing.level)
             : describeQuindleRegistry(listing.wanted, listing.level);
}

Data itemData(const QuindleRegistryItem& item) {
  constexpr std::array<std::string_view, 3> kinds{"condition", "creator", "action"};
  return Fields{{"name", item.name},
                {"category", item.category},
                {"summary", item.summary},
                {"description", item.description},
                {"completion", item.completion.empty() ? item.name : item.completion},
                {"kind", kinds.at(static_cast<std::size_t>(item.kind))},
                {"maturity", item.maturity}};
}

Data listingData(const Listing& listing) {
  const auto categoryData = [](const auto& category) -> Data {
    return Fields{{"name", category.first}, {"items", category.second}};
  };
  std::map<std::string, std::uint64_t> shown; // by category
  Data::List items;
  for (const QuindleRegistryItem& item : listing.items) {
    const bool wanted =
        listing.wanted.empty() || listing.wanted == item.category || listing.wanted == item.name;
    if (wanted && shown[item.category]++ < listing.limit) items.push_back(itemData(item));
  }
  return Fields{{"categories", Data::list(listing.categories, categoryData)}, {"items", std::move(items)}};
}

/// Whether actions are asked for in a scene that has none.
bool lacksActions(const Listing& listing, bool hasCloud) {
  const bool asked = listing.wanted.empty() ? hasCloud : listing.wanted == QuindleActionCategory;
  return asked && !isCategory(QuindleActionCategory, listing);
}

Answer showRegistry(const Request& request, const Context& context) {
  const std::string& cloud = request.text("cloud");
  Diag diag;
  Scene scene(context.stop); // what the host can create is known once there is one
  if (!cloud.empty() && scene.openCloud(cloud, {}, diag)) scene.addDisplay(diag);
  const int level = request.level("level", maturities.back().lowestRank);
  Listing listing{request.text("name"),
                  request.number("limit", std::numeric_limits<std::uint64_t>::max()),
                  level,
                  quindleRegistryCategories(level),
                  collectQuindleRegistry(level),
                  {}};
  if (!isKnown(listing)) diag.error(unknownItem(listing));
  const bool good = diag.errorCount == 0;
  if (good) listing.text = listingText(listing);
  const bool lacking = good && lacksActions(listing, !cloud.empty());
  Part part = partOf(
      std::move(diag), std::move(listing), [](const Listing& found) { return found.text; }, listingData);
  if (lacking)
    part.remarks.note("No object of this scene has an action. Objects that a Quindle creates may have some.");
  return answerOf(std::move(part));
}

} // namespace

Verb registryVerb() {
  return {.name = "registry",
          .summary = "List every word that a Quindle can name. They are listed by category; with a name, the "
                     "page on it is shown.",
          .footer = "Example:\n  quindle registry \"Quindle conditions\"",
          .options = {{.name = "name",
                       .help = "A category, or the name of a condition, creator or action.",
                       .placeholder = "NAME",
                       .argument = true},
                      {.name = "cloud",
                       .help = "List the actions of the scene of this cloud too.",
                       .placeholder = "FILE",
                       .names = Option::Names::Cloud},
                      {.name = "level",
                       .kind = Option::Kind::Level,
                       .help = "How mature a creator has to be: mature, beta, experimental, unfinished, or a "
                               "rank. All are listed if it is left out.",
                       .placeholder = "LEVEL",
                       .words = levels()},
                      {.name = "limit",
                       .kind = Option::Kind::Number,
                       .help = "The most items to list of a category.",
                       .placeholder = "N"},
                      jsonOption(
                          "Print JSON: \"categories\" with name and items (how many), \"items\" with name, "
                          "category, summary, description, completion, kind and maturity of each, and "
                          "\"diagnostics\".")},
          .run = showRegistry};
}

} // namespace Zamt::Host
