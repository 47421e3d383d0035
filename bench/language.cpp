#include "quindle/check/checkQuindle.h"
#include "quindle/text/parseQuindle.h"
#include "quindle/text/writeQuindle.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

/// What an editor pays at each key stroke for a Quindle of fifty lines: writing it in its layout and checking
/// it, beside reading the same text. All of it together has to stay well below a millisecond.
namespace {

using namespace Zamt;

constexpr int lines = 50;

std::string ordinaryQuindle() {
  std::string text =
      "quindle \"Clean ground\" {\n"
      "    description \"Takes what hangs under the water and above the ground out of a tile.\"\n"
      "    category \"Ground\"\n"
      "    tags \"noise\", \"ground\"\n"
      "\n"
      "    param tile : Grid = active \"The tile to work on.\"\n"
      "    param water : Surface = pick \"The water surface.\"\n"
      "    param margin : Number = 0.20 [0 .. 5] \"How far below the water counts.\"\n"
      "\n"
      "    on run {\n";
  for (const std::string n : {"1", "2", "3"})
    text += "        # Pass " + n +
            ": only what hangs under the surface is looked at.\n"
            "        let depth" +
            n +
            " = margin\n"
            "        create box" +
            n +
            " = \"Filters/Box\"\n"
            "        set box" +
            n +
            ".Size = 2.50\n"
            "        connect box" +
            n +
            ".Input <- tile\n"
            "        select class(\"Ground\") and below(surface: water, margin: depth" +
            n +
            ") and not (z > 1200.5 or z < -3)\n"
            "        classify into \"Low noise\" as 7 color (0.9, 0.1, 0.1)\n"
            "        if count > 1000 and margin <= 2 {\n"
            "            report \"More than expected: {count} points below {water}\"\n"
            "        }\n"
            "        else {\n"
            "            call box" +
            n +
            ".\"Fire It\"(strength: 2, margin)\n"
            "        }\n";
  return text + "    }\n}\n";
}

const std::string& source() {
  static const std::string text = ordinaryQuindle();
  return text;
}

QuindleDocument document() {
  QuindleDocument doc;
  Diag diag;
  const bool usable = parseQuindle(source(), "bench.quindle", doc, diag) && checkQuindle(doc, diag);
  if (!usable || !diag.entries.empty() || writeQuindle(doc) != source() ||
      std::count(source().begin(), source().end(), '\n') < lines) {
    std::fprintf(stderr, "The Quindle to measure with is not as it should be.\n%s\n", diag.format().c_str());
    std::abort();
  }
  return doc;
}

void read(benchmark::State& state) {
  for (auto _ : state) {
    QuindleDocument doc;
    Diag diag;
    benchmark::DoNotOptimize(parseQuindle(source(), "bench.quindle", doc, diag));
  }
}
BENCHMARK(read)->Name("parseQuindle, the yardstick")->Unit(benchmark::kMicrosecond);

void write(benchmark::State& state) {
  const QuindleDocument doc = document();
  for (auto _ : state) benchmark::DoNotOptimize(writeQuindle(doc));
}
BENCHMARK(write)->Name("writeQuindle")->Unit(benchmark::kMicrosecond);

void check(benchmark::State& state) {
  const QuindleDocument doc = document();
  for (auto _ : state) {
    Diag diag;
    benchmark::DoNotOptimize(checkQuindle(doc, diag));
  }
}
BENCHMARK(check)->Name("checkQuindle")->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
