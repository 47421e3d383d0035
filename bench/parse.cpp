#include "quindle/text/parseQuindle.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

/// How fast ordinary Quindles are read, beside the least that any reader does with the same bytes: one pass
/// that cuts them into words and copies each.
namespace {

constexpr std::size_t corpusBytes = 10'000'000;

std::string ordinaryQuindle(std::size_t number) {
  const std::string n = std::to_string(number);
  return "quindle \"Clean ground " + n +
         "\" {\n"
         "  description \"Takes low noise out of the ground of tile " +
         n +
         "\"\n"
         "  category \"Ground\"\n"
         "  tags \"noise\", \"ground\"\n"
         "\n"
         "  param water : Surface = pick \"The water surface\"\n"
         "  param margin : Number = 0." +
         n +
         " [0 .. 5] \"How far below counts\"\n"
         "\n"
         "  # Only what hangs under the surface is looked at.\n"
         "  on key \"Ctrl+Shift+G\" {\n"
         "    let depth = margin\n"
         "    select class(\"Ground\") and below(surface: water, margin: depth) and not (z > 1200.5)\n"
         "    classify into \"Low noise\" as 7 color (0.9, 0.1, 0.1) // the class of the standard\n"
         "    if count > 1000 and margin <= 2 {\n"
         "      report \"More than expected: {count} points\"\n"
         "    } else {\n"
         "      set view.Size = 2.5\n"
         "    }\n"
         "    report \"{count} points below {water}\"\n"
         "  }\n"
         "}\n";
}

const std::vector<std::string>& corpus() {
  static const std::vector<std::string> documents = [] {
    std::vector<std::string> made;
    std::size_t bytes = 0;
    while (bytes < corpusBytes) {
      made.push_back(ordinaryQuindle(made.size()));
      bytes += made.back().size();
    }
    return made;
  }();
  return documents;
}

std::size_t totalBytes() {
  std::size_t bytes = 0;
  for (const std::string& text : corpus()) bytes += text.size();
  return bytes;
}

void parseAll() {
  for (const std::string& text : corpus()) {
    Zamt::QuindleDocument doc;
    Zamt::Diag diag;
    if (!Zamt::parseQuindle(text, "bench.quindle", doc, diag)) {
      std::fputs(diag.format().c_str(), stderr);
      std::abort();
    }
    benchmark::DoNotOptimize(doc);
  }
}

bool isWordByte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '.';
}

void tokeniseAll() {
  for (const std::string& text : corpus()) {
    std::vector<std::string> words;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
      const char* const begin = at++;
      if (isWordByte(*begin)) {
        while (at != end && isWordByte(*at)) ++at;
      } else if (*begin == ' ' || *begin == '\n') {
        continue;
      }
      words.emplace_back(begin, at);
    }
    benchmark::DoNotOptimize(words);
  }
}

/// Returns the processor seconds of one pass over the corpus.
template <class Pass>
double measure(benchmark::State& state, const Pass& pass) {
  const std::size_t bytes = totalBytes();
  const std::clock_t start = std::clock();
  for (auto _ : state) pass();
  const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * static_cast<std::int64_t>(state.iterations()));
  return seconds / static_cast<double>(state.iterations());
}

} // namespace

int main(int argc, char** argv) {
  double naive = 0;
  benchmark::RegisterBenchmark("naive tokenising pass", [&](benchmark::State& state) {
    naive = measure(state, tokeniseAll);
  })->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("parseQuindle", [&](benchmark::State& state) {
    const double seconds = measure(state, parseAll);
    if (naive > 0) state.counters["times the naive pass"] = seconds / naive;
  })->Unit(benchmark::kMillisecond);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return EXIT_FAILURE;
  benchmark::RunSpecifiedBenchmarks();
}
