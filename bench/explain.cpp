#include "quindle/core/Diag.h"
#include "quindle/reference/explainQuindle.h"
#include "quindle/text/parseQuindle.h"

#include <benchmark/benchmark.h>

#include <cstdlib>

/// What explaining a Quindle of 50 lines costs, which an editor does at every key: ten selects among them.
/// Beside it, copying the document, the least that any pass over it which makes something new does, and the
/// same Quindle with other Quindles to look up, which the resolver hands over as copies of this one.
namespace {

using namespace Zamt;

QuindleDocument fiftyLines() {
  std::string text =
      "quindle \"Bench\" {\ndescription \"Sorts a shore.\"\ncategory \"Water\"\nshortcut \"U\"\n"
      "param cloud : Grid = active \"The cloud.\"\nparam water : Surface \"The water.\"\n"
      "param margin : Number = 0.1 [0 .. 5] \"How far.\"\non run {\n";
  for (int i = 0; i < 10; ++i)
    text +=
        "select neighbours(0.5) < 3 and class(\"Ground\") and not (Amplitude > 120 or below(water, margin))\n"
        "classify into \"Underwater Ground\" as 27 color (0.1, 0.3, 0.7)\n"
        "report \"{selected} of {total} points lie more than {margin} m under water.\"\n"
        "run \"Other\"(margin: 2)\n";
  text += "}\n}\n";
  QuindleDocument document;
  Diag diag;
  if (!parseQuindle(text, "bench.quindle", document, diag)) std::abort();
  return document;
}

void copy(benchmark::State& state) {
  const QuindleDocument document = fiftyLines();
  for (auto _ : state) {
    QuindleDocument copied = document;
    benchmark::DoNotOptimize(copied);
  }
}
BENCHMARK(copy)->Unit(benchmark::kMicrosecond);

void explain(benchmark::State& state, const QuindleResolver& resolver) {
  const QuindleDocument document = fiftyLines();
  for (auto _ : state) {
    std::string text = explainQuindle(document, resolver);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK_CAPTURE(explain, alone, QuindleResolver())->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(explain, withAnother,
                  [document = fiftyLines()](const std::string&, QuindleDocument& found, std::string&) {
                    found = document;
                    return true;
                  })
    ->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
