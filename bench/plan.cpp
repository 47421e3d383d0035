#include "quindle/plan/QuindlePlanNode.h"
#include "quindle/plan/compileSelect.h"
#include "quindle/text/parseQuindle.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

/// What planning a select of ten conditions costs, beside copying the same expression ten times, which is the
/// least that any pass over it which makes something new does. And what compiling costs where a Quindle has
/// 10,000 parameters and names each: ten times as many have to take about ten times as long.
namespace {

using namespace Zamt;

/// A scene that says yes to everything and does nothing.
class IdleScene : public QuindleOps {
public:
  std::string create(const std::string&, const std::string& name, Diag&) override { return name; }
  bool connect(const std::string&, const std::string&, const std::string&, const std::string&,
               Diag&) override {
    return true;
  }
  bool setParam(const std::string&, const std::string&, const std::string&, Diag&) override { return true; }
  bool getParam(const std::string&, const std::string&, std::string&, Diag&) override { return false; }
  bool fireAction(const std::string&, const std::string&, Diag&) override { return true; }
  int settle() override { return 0; }
};

QuindleDocument tenConditions() {
  QuindleDocument document;
  Diag diag;
  const bool ok = parseQuindle("quindle \"T\" {\nparam tile : Region\non run {\n"
                               "select neighbours(0.5) < 3 and class(\"Ground\") and not (Amplitude > 120 or "
                               "vertical(tolerance: 20)) and (inside(tile) or within(\"1 2 3\", 4)) and "
                               "below(\"w.m8\", 0.2) and expr(\"z < 4\") and Deviation <= 2 and not "
                               "above(\"t.m8\")\n}\n}",
                               "bench.quindle", document, diag);
  if (!ok) std::abort();
  return document;
}

const QuindleExpr& condition(const QuindleDocument& document) {
  return document.triggers.front().steps.front().condition;
}

void copyTenTimes(benchmark::State& state) {
  const QuindleDocument document = tenConditions();
  for (auto _ : state)
    for (int i = 0; i < 10; ++i) {
      QuindleExpr copy = condition(document);
      benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(copyTenTimes);

void plan(benchmark::State& state) {
  const QuindleDocument document = tenConditions();
  for (auto _ : state) {
    QuindlePlanNode made;
    Diag diag;
    if (!planPredicate(condition(document), made, diag, "bench.quindle")) std::abort();
    benchmark::DoNotOptimize(made);
  }
}
BENCHMARK(plan);

void planAndCompile(benchmark::State& state) {
  const QuindleDocument document = tenConditions();
  IdleScene scene;
  for (auto _ : state) {
    QuindlePlanNode made;
    Diag diag;
    std::vector<QuindleBinding> bindings;
    std::string out;
    if (!planPredicate(condition(document), made, diag, "bench.quindle") ||
        !compileSelect(made, document, scene, "S", "P_", out, bindings, diag))
      std::abort();
    benchmark::DoNotOptimize(out);
  }
}
BENCHMARK(planAndCompile);

/// A Quindle of `count` parameters, an even number, whose one select names each of them.
QuindleDocument manyReferences(int count) {
  std::string params;
  std::string condition;
  for (int i = 0; i < count; i += 2) {
    const std::string low = 'p' + std::to_string(i);
    const std::string high = 'p' + std::to_string(i + 1);
    params += "param " + low + " : Number = 0\nparam " + high + " : Number = 1\n";
    condition += (i == 0 ? "" : " and ") + ("field(\"A\", " + low) + ", " + high + ')';
  }
  QuindleDocument document;
  Diag diag;
  if (!parseQuindle("quindle \"T\" {\n" + params + "on run {\nselect " + condition + "\n}\n}",
                    "bench.quindle", document, diag))
    std::abort();
  return document;
}

struct PlannedDocument {
  QuindleDocument document;
  QuindlePlanNode plan;

  explicit PlannedDocument(int references) : document(manyReferences(references)) {
    Diag diag;
    if (!planPredicate(condition(document), plan, diag, "bench.quindle")) std::abort();
  }

  /// The seconds that compiling takes.
  double compile() const {
    IdleScene scene;
    Diag diag;
    std::vector<QuindleBinding> bindings;
    std::string out;
    const auto begin = std::chrono::steady_clock::now();
    if (!compileSelect(plan, document, scene, "S", "P_", out, bindings, diag)) std::abort();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  }
};

void compileTenThousandReferences(benchmark::State& state) {
  const PlannedDocument tenth(1'000);
  const PlannedDocument whole(10'000);
  double tenthSeconds = 0;
  double wholeSeconds = 0;
  for (auto _ : state) {
    tenthSeconds += tenth.compile();
    const double seconds = whole.compile();
    wholeSeconds += seconds;
    state.SetIterationTime(seconds);
  }
  state.counters["ratioOfTenTimes"] = wholeSeconds / tenthSeconds;
}
BENCHMARK(compileTenThousandReferences)->UseManualTime();

} // namespace

BENCHMARK_MAIN();
