#include "quindle/library/QuindleLibrary.h"
#include "quindle/library/QuindleShortcuts.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What scanning a large collection costs beside only reading its files, and what questions to it cost. The
/// second number of each line is files; ten times as many should take ten times as long.
namespace {

using namespace Zamt;

constexpr std::size_t directories = 3;
constexpr std::size_t hiddenShare = 10; // one file in so many bears a name of the first directory

/// Each "@" is its number.
constexpr std::string_view ordinaryText = R"(quindle "Clean ground @" {
  description "Takes low noise out of the ground of tile @"
  category "Ground"
  tags "noise", "ground"
  shortcut "Ctrl+Shift+F@"

  param water : Surface = pick "The water surface"
  param margin : Number = 0.5 [0 .. 5] "How far below counts"

  on run {
    # Only what hangs under the surface is looked at.
    select class("Ground") and below(surface: water, margin: margin) and not (z > 1200.5)
    classify into "Low noise" as 7 color (0.9, 0.1, 0.1)
    report "{selected} points below {water}"
  }
}
)";

std::string ordinaryQuindle(const std::string& number) {
  std::string text;
  for (const char c : ordinaryText)
    if (c == '@')
      text += number;
    else
      text += c;
  return text;
}

/// A collection in three directories.
class Collection {
public:
  explicit Collection(std::size_t files) {
    std::string pattern = (std::filesystem::temp_directory_path() / "quindle-bench-XXXXXX").string();
    if (::mkdtemp(pattern.data()) != nullptr) root = pattern;
    for (std::size_t i = 0; i < directories; ++i) {
      paths.push_back((root / std::to_string(i)).string());
      std::filesystem::create_directory(paths.back());
    }
    const std::size_t shown = files - files / hiddenShare;
    for (std::size_t i = 0; i < files; ++i) {
      const bool hidden = i >= shown;
      const std::string name = std::to_string(hidden ? (i - shown) * directories : i);
      const std::size_t directory = hidden ? 1 + i % (directories - 1) : i % directories;
      std::ofstream(paths[directory] + "/" + std::to_string(i) + ".quindle") << ordinaryQuindle(name);
      if (!hidden) names.push_back("Clean ground " + name);
    }
  }
  Collection(const Collection&) = delete;
  Collection& operator=(const Collection&) = delete;
  ~Collection() {
    std::error_code ignored;
    if (!root.empty()) std::filesystem::remove_all(root, ignored);
  }

  std::filesystem::path root;
  std::vector<std::string> paths;
  std::vector<std::string> names; ///< Of the Quindles that are not hidden.
};

const Collection& collection(const benchmark::State& state) {
  static std::map<std::int64_t, std::unique_ptr<Collection>> made;
  std::unique_ptr<Collection>& one = made[state.range(0)];
  if (!one) one = std::make_unique<Collection>(static_cast<std::size_t>(state.range(0)));
  return *one;
}

const QuindleLibrary& library(const benchmark::State& state) {
  static std::map<std::int64_t, QuindleLibrary> made;
  QuindleLibrary& one = made[state.range(0)];
  Diag diag;
  if (one.search({}).empty()) one.scan(collection(state).paths, diag);
  return one;
}

/// The yardstick: the directories are walked and every file is opened, read to its end and closed.
double secondsOfReading(const Collection& collection) {
  const auto begin = std::chrono::steady_clock::now();
  std::vector<char> buffer(65536);
  std::size_t bytes = 0;
  for (const std::string& path : collection.paths)
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
      std::FILE* const file = std::fopen(entry.path().c_str(), "rb");
      if (file == nullptr) continue;
      bytes += std::fread(buffer.data(), 1, buffer.size(), file);
      std::fclose(file);
    }
  benchmark::DoNotOptimize(bytes);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void scan(benchmark::State& state) {
  const Collection& files = collection(state);
  double reading = 0;
  double scanning = 0;
  for (auto _ : state) {
    reading += secondsOfReading(files);
    const auto begin = std::chrono::steady_clock::now();
    QuindleLibrary scanned;
    Diag diag;
    benchmark::DoNotOptimize(scanned.scan(files.paths, diag));
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    state.SetIterationTime(seconds);
    scanning += seconds;
  }
  state.counters["onlyReading_ms"] = reading * 1000 / static_cast<double>(state.iterations());
  state.counters["ratio"] = scanning / reading;
}
BENCHMARK(scan)->Arg(10'000)->Arg(100'000)->UseManualTime()->Unit(benchmark::kMillisecond);

void findEach(benchmark::State& state) {
  const QuindleLibrary& large = library(state);
  for (auto _ : state)
    for (const std::string& name : collection(state).names) benchmark::DoNotOptimize(large.find(name));
}
BENCHMARK(findEach)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void search(benchmark::State& state) {
  const QuindleLibrary& large = library(state);
  for (auto _ : state) benchmark::DoNotOptimize(large.search("Tile 77"));
}
BENCHMARK(search)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void shortcuts(benchmark::State& state) {
  const QuindleLibrary& large = library(state);
  for (auto _ : state) benchmark::DoNotOptimize(shortcutConflicts(large));
}
BENCHMARK(shortcuts)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
