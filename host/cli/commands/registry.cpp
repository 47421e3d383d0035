#include "host/cli/commands/commands.h"
#include "host/session/Scene.h"
#include "host/session/nearest.h"
#include "quindle/reference/QuindleRegistry.h"
#include "quindle/reference/maturity.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
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

struct RegistryOptions {
  std::string wanted; ///< A category or a name; empty for all.
  std::string cloud;
  std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
  int level = maturities.back().lowestRank;
  bool json = false;
};

using Categories = std::vector<std::pair<std::string, int>>;

bool isCategory(const std::string& name, const Categories& categories) {
  return std::any_of(categories.begin(), categories.end(),
                     [&](const auto& category) { return category.first == name; });
}

std::string unknownItem(const std::string& wanted, const Categories& categories,
                        const std::vector<QuindleRegistryItem>& items) {
  std::vector<std::string> names;
  for (const auto& category : categories) names.push_back(category.first);
  for (const QuindleRegistryItem& item : items) names.push_back(item.name);
  return fmt::format(
      "There is no category and no item called \"{}\".{} \"quindle registry\" without a name lists them all.",
      wanted, didYouMean(wanted, names));
}

std::string categoryText(const std::string& category, int count, const RegistryOptions& options) {
  return fmt::format("== {}  ({})\n\n{}", category, count,
                     listQuindleRegistry(category, options.limit, options.level));
}

void printRegistry(const RegistryOptions& options, const Categories& categories, Console& console) {
  bool first = true;
  for (const auto& [category, count] : categories) {
    if (!options.wanted.empty() && options.wanted != category) continue;
    if (!std::exchange(first, false)) console.print("\n");
    console.print(categoryText(category, count, options));
  }
  if (options.wanted == QuindleActionCategory && first)
    console.print(listQuindleRegistry(options.wanted, options.limit, options.level));
  else if (first)
    console.print(describeQuindleRegistry(options.wanted, options.level));
}

/// Whether actions are asked for in a scene that has none.
bool lacksActions(const RegistryOptions& options, const Categories& categories) {
  const bool asked =
      options.wanted.empty() ? !options.cloud.empty() : options.wanted == QuindleActionCategory;
  return asked && !isCategory(QuindleActionCategory, categories);
}

nlohmann::json itemJson(const QuindleRegistryItem& item) {
  constexpr std::array<std::string_view, 3> kinds{"condition", "creator", "action"};
  return {{"name", item.name},
          {"category", item.category},
          {"summary", item.summary},
          {"description", item.description},
          {"completion", item.completion.empty() ? item.name : item.completion},
          {"kind", kinds.at(static_cast<std::size_t>(item.kind))},
          {"maturity", item.maturity}};
}

void printRegistryJson(const RegistryOptions& options, const Categories& categories,
                       const std::vector<QuindleRegistryItem>& items, const Diag& diag, Console& console) {
  nlohmann::json groups = nlohmann::json::array();
  for (const auto& [category, count] : categories) groups.push_back({{"name", category}, {"items", count}});
  std::map<std::string, std::uint64_t> shown; // by category
  nlohmann::json list = nlohmann::json::array();
  for (const QuindleRegistryItem& item : items) {
    const bool wanted =
        options.wanted.empty() || options.wanted == item.category || options.wanted == item.name;
    if (wanted && shown[item.category]++ < options.limit) list.push_back(itemJson(item));
  }
  console.printJson({{"categories", groups}, {"items", list}, {"diagnostics", diagnosticsJson(diag)}});
}

Exit showRegistry(const RegistryOptions& options, Console& console) {
  Diag diag;
  Scene scene; // what the host can create is known once there is one
  if (!options.cloud.empty() && scene.openCloud(options.cloud, {}, diag)) scene.addDisplay(diag);
  const Categories categories = quindleRegistryCategories(options.level);
  const std::vector<QuindleRegistryItem> items = collectQuindleRegistry(options.level);
  const bool known =
      options.wanted.empty() || options.wanted == QuindleActionCategory ||
      isCategory(options.wanted, categories) ||
      std::any_of(items.begin(), items.end(), [&](const auto& item) { return item.name == options.wanted; });
  if (!known) diag.error(unknownItem(options.wanted, categories, items));
  if (options.json) {
    printRegistryJson(options, categories, items, diag, console);
  } else {
    console.report(diag);
    if (diag.errorCount == 0) printRegistry(options, categories, console);
    if (diag.errorCount == 0 && lacksActions(options, categories))
      console.note("No object of this scene has an action. Objects that a Quindle creates may have some.");
  }
  return diag.errorCount == 0 ? Exit::Done : Exit::Failed;
}

} // namespace

void addRegistryCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<RegistryOptions>();
  CLI::App* verb = addVerb(app, "registry",
                           "List every word that a Quindle can name. They are listed "
                           "by category; with a name, the page on it is shown.");
  verb->add_option("NAME", options->wanted, "A category, or the name of a condition, creator or action.")
      ->type_name("CATEGORY|NAME");
  verb->add_option("--cloud", options->cloud, "List the actions of the scene of this cloud too.")
      ->type_name("FILE");
  verb->add_option("--level", options->level,
                   "How mature a creator has to be: mature, beta, experimental, unfinished, or a rank. All "
                   "are listed if it is left out.")
      ->transform(CLI::Transformer(levels()).description(""))
      ->type_name("LEVEL");
  verb->add_option("--limit", options->limit, "The most items to list of a category.")->type_name("N");
  verb->add_flag("--json", options->json,
                 "Print JSON: \"categories\" with name and items (how many), \"items\" with name, category, "
                 "summary, description, completion, kind and maturity of each, and \"diagnostics\".");
  verb->footer("Example:\n  quindle registry \"Quindle conditions\"");
  verb->callback([options, &session] { session.exit = showRegistry(*options, session.console); });
}

} // namespace Zamt::Host
