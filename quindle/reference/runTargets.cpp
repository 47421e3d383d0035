#include "quindle/reference/runTargets.h"

#include "quindle/core/NestedSteps.h"

#include <utility>

namespace Zamt {

namespace {

using Kind = QuindleStep::Kind;

/// How many runs away from a Quindle a change of the data may happen and still be told of it. What lies
/// further counts as no change. Inclusive.
constexpr int furthestChange = 8;

/// What steps do with the data, blocks inside them included.
struct Effects {
  bool changesData = false;             ///< One of them changes it itself.
  std::vector<const std::string*> runs; ///< The names of what they run, repeated as they are.
};

NestedSteps lists(const QuindleStep& step) {
  return hasBlocks(step.kind) ? NestedSteps::all(step) : NestedSteps();
}

Effects effectsOf(const std::vector<QuindleStep>& steps) {
  Effects effects;
  eachStepWithin(steps, lists, [&effects](const QuindleStep& step) {
    if (step.kind == Kind::Classify || step.kind == Kind::Unparsed) effects.changesData = true;
    if (step.kind == Kind::Run) effects.runs.push_back(&step.name);
  });
  return effects;
}

/// The Quindles within reach of a list of steps, and which of them run which.
class RunGraph {
public:
  explicit RunGraph(const QuindleResolver& resolver) : resolver_(resolver) {}

  void add(const std::string& name) { nodeOf(name, 0); }

  /// Resolves what was added and everything that it runs, the nearest first, so that each is met at its
  /// shortest way from a start.
  void explore() {
    for (std::size_t index = 0; index < nodes_.size(); ++index) resolve(index);
  }

  /// Goes back from what changes data itself to all that does so through others, at most as far as is told.
  void spreadChanges() {
    std::vector<std::size_t> reached = changing_;
    for (int runs = 0; runs <= furthestChange && !reached.empty(); ++runs) {
      std::vector<std::size_t> next;
      for (const std::size_t index : reached) {
        if (nodes_[index].target.changesData) continue;
        nodes_[index].target.changesData = true;
        next.insert(next.end(), nodes_[index].runBy.begin(), nodes_[index].runBy.end());
      }
      reached = std::move(next);
    }
  }

  std::unordered_map<std::string, RunTarget> takeTargets() {
    std::unordered_map<std::string, RunTarget> targets;
    for (const auto& [name, index] : indices_) targets.emplace(name, std::move(nodes_[index].target));
    return targets;
  }

private:
  struct Node {
    std::string name;
    int distance; ///< Runs from the nearest start.
    RunTarget target;
    std::vector<std::size_t> runBy;
  };

  std::size_t nodeOf(const std::string& name, int distance) {
    const auto [place, isNew] = indices_.try_emplace(name, nodes_.size());
    if (isNew) nodes_.push_back({name, distance, {}, {}});
    return place->second;
  }

  void resolve(std::size_t index) {
    QuindleDocument document;
    RunTarget& target = nodes_[index].target;
    target.found = resolver_(nodes_[index].name, document, target.why);
    if (!target.found) return;
    target.description = std::move(document.description);
    const QuindleTrigger* const trigger = document.runTrigger();
    if (!trigger) return;
    const Effects effects = effectsOf(trigger->steps);
    if (effects.changesData) changing_.push_back(index);
    const int distance = nodes_[index].distance + 1;
    if (effects.changesData || distance > furthestChange) return;
    for (const std::string* name : effects.runs) nodes_[nodeOf(*name, distance)].runBy.push_back(index);
  }

  const QuindleResolver& resolver_;
  std::unordered_map<std::string, std::size_t> indices_;
  std::vector<Node> nodes_;           ///< In the order of their distance.
  std::vector<std::size_t> changing_; ///< Those that change data themselves.
};

} // namespace

std::unordered_map<std::string, RunTarget> runTargets(const std::vector<QuindleStep>& steps,
                                                      const QuindleResolver& resolver) {
  if (!resolver) return {};
  RunGraph graph(resolver);
  for (const QuindleStep& step : steps)
    if (step.kind == Kind::Run) graph.add(step.name);
  graph.explore();
  graph.spreadChanges();
  return graph.takeTargets();
}

} // namespace Zamt
