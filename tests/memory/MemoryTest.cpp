/// What becomes of each part of the library when memory runs out at any one allocation, or at every one from
/// there on.
#include "quindle/Quindle.h"
#include "tests/memory/FailingMemory.h"
#include "tests/support/RecordingScene.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/dumpDocument.h"
#include "tests/support/parsed.h"
#include "tests/support/smallStack.h"

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

namespace Zamt::Testing {
namespace {

using FailingMemory::Which;

/// Steps of every kind that a run takes, conditions of every shape, and something to warn about.
const std::string outerText = R"(quindle "Outer" {
  description "Runs another and does the same itself."
  category "tests and what belongs to them"
  shortcut "Ctrl+Shift+7"
  tags "one", "another one that is longer"
  param cloud : Grid = active "The points to work on, whatever they are."
  param low : Number = 5 [1 .. 9] "How low."
  param colour : Text = (0.5, (0.25, 1), "a text that is not short")
  on run {
    create Robot = "Test/Robot of some kind"
    set Robot.speed = 12
    connect Robot.source <- Somewhere.output
    let wide = low >= 4 and not (low == 7 or low != 5)
    select Amplitude > 99 and not (field("Intensity", low, 100) or class("Ground, Low Noise") or neighbours(2.5) >= 3)
    if wide { report "wide as nothing else, at {low}" } else { report "narrow as nothing else" }
    classify into "Something of its own" as 66 color (0.5, 0.5, 0.5)
    call Robot.action_with_a_long_name
    run "Inner"(size: low, text: "a text that is not short")
    report "{selected} of {total} in {cloud}, and {nothing}"
  }
}
)";
const std::string innerText = R"(quindle "Inner" {
  description "Is run."
  param size : Number = 1
  param text : Text = "some longer default text"
  param cloud : Grid = active
  on run {
    select class("Ground") or Amplitude < size
    classify into "Low Noise"
    report "inner {size} {text}"
  }
}
)";

const std::string textFile = "a file of some name.quindle";

const std::string ranOut =
    "Memory ran out before this was done. Free some, or work on less at a time, and try again.";

/// What a use of the library came to, as text; nothing if it failed.
using Outcome = std::optional<std::string>;
using Use = std::function<Outcome(Diag&)>;

constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();

/// Calls `attempt` with each way to fail, at every one of `total` allocations or, where there are many, at
/// some hundred spread over them.
void eachFailure(std::uint64_t total, const std::function<void(Which, std::uint64_t)>& attempt) {
  const std::uint64_t stride = 1 + total / 300;
  for (const Which which : {Which::Only, Which::FromThere})
    for (std::uint64_t at = which == Which::Only ? 0 : stride / 2; at < total; at += stride) {
      SCOPED_TRACE((which == Which::Only ? "only allocation " : "from allocation ") + std::to_string(at));
      const std::int64_t before = FailingMemory::inUse();
      attempt(which, at);
      EXPECT_EQ(FailingMemory::inUse(), before);
      if (testing::Test::HasFailure()) return;
    }
}

/// What functions with a Diag do: they fail, with a word if memory came back, or do it all. `made` gives the
/// use of what they work on, which has to be usable again afterwards.
void expectFailureReported(const std::string& name, const std::function<Use()>& made) {
  SCOPED_TRACE(name);
  Diag first;
  made()(first); // makes what is made once in a process
  Diag calm;
  const Use counted = made();
  FailingMemory::begin(Which::Only, never);
  const Outcome expected = counted(calm);
  const std::uint64_t total = FailingMemory::end();
  ASSERT_TRUE(expected) << calm.format();
  std::uint64_t failures = 0;
  eachFailure(total, [&](Which which, std::uint64_t at) {
    const Use use = made();
    Diag diag;
    Outcome outcome;
    FailingMemory::begin(which, at);
    EXPECT_NO_THROW(outcome = use(diag));
    FailingMemory::end();
    if (!outcome) ++failures;
    EXPECT_EQ(outcome.value_or(*expected), *expected);
    EXPECT_TRUE(outcome || which == Which::FromThere || diag.firstError() == ranOut) << diag.format();
    Diag again;
    EXPECT_EQ(use(again), expected) << again.format();
  });
  EXPECT_GT(failures, 3U);
}

/// What all others do: they throw or do it all.
void expectFailureThrown(const std::string& name, const std::function<std::string()>& use) {
  SCOPED_TRACE(name);
  const std::string expected = use();
  FailingMemory::begin(Which::Only, never);
  use();
  const std::uint64_t total = FailingMemory::end();
  std::uint64_t failures = 0;
  eachFailure(total, [&](Which which, std::uint64_t at) {
    std::string outcome = expected;
    FailingMemory::begin(which, at);
    try {
      outcome = use();
    } catch (const std::bad_alloc&) {
      ++failures;
    }
    FailingMemory::end();
    EXPECT_EQ(outcome, expected);
  });
  EXPECT_GT(failures, 3U);
}

/// A function that works on nothing but its arguments.
std::function<Use()> always(Use use) {
  return [use = std::move(use)] { return use; };
}

TEST(Memory, WhatReadsAndJudgesATextFailsWithAWord) {
  const QuindleDocument doc = parsed(outerText, textFile);
  expectFailureReported("parse", always([](Diag& diag) -> Outcome {
                          QuindleDocument read;
                          if (!parseQuindle(outerText, textFile, read, diag)) return {};
                          FailingMemory::end();
                          return dumpDocument(read);
                        }));
  expectFailureReported("check", always([&doc](Diag& diag) -> Outcome {
                          if (!checkQuindle(doc, diag)) return {};
                          FailingMemory::end();
                          return diag.format();
                        }));
  Diag advice;
  adviseQuindle(doc, advice);
  ASSERT_FALSE(advice.entries.empty());
  expectFailureReported("advise", always([&](Diag& diag) -> Outcome {
                          adviseQuindle(doc, diag);
                          FailingMemory::end();
                          if (diag.format() != advice.format()) return {};
                          return "all of it";
                        }));
  expectFailureReported("diagnose", always([](Diag& diag) -> Outcome {
                          QuindleDocument read;
                          if (!diagnoseQuindle(outerText, "f", read, diag)) return {};
                          FailingMemory::end();
                          return dumpDocument(read) + diag.format();
                        }));
  expectFailureReported("plan", always([&doc](Diag& diag) -> Outcome {
                          const std::vector<QuindlePlannedSelect> selects = planQuindle(doc, diag);
                          if (selects.empty()) return {};
                          FailingMemory::end();
                          return selects[0].plan.describe() + diag.format();
                        }));
}

/// A scene that answers what the steps above ask, and may throw at one of the things it is told to do.
struct Scene : RecordingScene {
  struct Thrown {};

  int throwAt = -1; ///< Counted down with each call.

  Scene() {
    add("TheCloud", "Lattix/PointCloud");
    add("TheView", "Display/Picture").sources["grid"] = "TheCloud";
    add("Somewhere", "Test/Source");
    presets["Edit/MaskedLabels"] = {{"modified", "3 of the points"}, {"considered", "many more points"}};
    beforeEach = [this] {
      if (throwAt >= 0 && throwAt-- == 0) throw Thrown();
    };
  }
};

/// A runtime on a scene of its own, with the other Quindle at hand.
struct Stage {
  Scene scene;
  QuindleRuntime runtime{scene};
  std::map<std::string, std::string> args{{"cloud", "TheCloud"}};
  QuindleRunResult result;

  explicit Stage(const QuindleDocument& inner) {
    runtime.resolver = [&inner](const std::string& name, QuindleDocument& document, std::string&) {
      if (name != "Inner") return false;
      document = inner;
      return true;
    };
  }

  Outcome run(const QuindleDocument& doc, bool preview, Diag& diag) {
    const bool ok = runtime.run(doc, args, preview, result, diag);
    FailingMemory::end();
    EXPECT_EQ(ok, result.ok);
    if (!ok) return {};
    std::string lines;
    for (const std::string& line : result.report) lines += line + '\n';
    return lines;
  }
};

class MemoryOfRuns : public testing::Test {
protected:
  const QuindleDocument outer = parsed(outerText, textFile);
  const QuindleDocument inner = parsed(innerText, textFile);
};

TEST_F(MemoryOfRuns, FailsWithAWordAndRunsAgainAfterwards) {
  for (const bool preview : {false, true}) {
    expectFailureReported(preview ? "preview" : "run", [&]() -> Use {
      const auto stage = std::make_shared<Stage>(inner);
      return [this, stage, preview](Diag& diag) { return stage->run(outer, preview, diag); };
    });
    expectFailureReported(preview ? "second preview" : "second run", [&]() -> Use {
      const auto stage = std::make_shared<Stage>(inner);
      Diag first;
      EXPECT_TRUE(stage->run(outer, preview, first)) << first.format();
      return [this, stage, preview](Diag& diag) { return stage->run(outer, preview, diag); };
    });
  }
  expectFailureReported("compile", [&]() -> Use {
    const auto stage = std::make_shared<Stage>(inner);
    return [this, stage](Diag& diag) -> Outcome {
      QuindleRuntime::Program program;
      const bool ok = stage->runtime.compile(outer, program, diag);
      FailingMemory::end();
      if (!ok) return {};
      return std::to_string(program.steps.size());
    };
  });
}

TEST_F(MemoryOfRuns, LetsWhatTheSceneThrowsThroughAndRunsAgainAfterwards) {
  Stage stage(inner);
  bool thrown = true;
  int calls = 0;
  for (; thrown; ++calls) {
    stage.runtime.forget("Outer");
    stage.runtime.forget("Inner");
    stage.scene.throwAt = calls;
    Diag diag;
    thrown = false;
    try {
      stage.run(outer, false, diag);
    } catch (const Scene::Thrown&) {
      thrown = true;
    }
    stage.scene.throwAt = -1;
    Diag again;
    ASSERT_TRUE(stage.run(outer, false, again)) << again.format();
  }
  EXPECT_GT(calls, 20);
}

TEST(Memory, CollectionsStayWholeWhenTheyCannotTakeAFileIn) {
  const TemporaryDirectory directory;
  const std::vector<std::string> path{directory.path("one"), directory.path("two")};
  for (const std::string& each : path) std::filesystem::create_directory(each);
  const std::string outerPath = directory.write("one/Outer.quindle", outerText);
  directory.write("one/Broken.quindle", "quindle \"Broken and not usable\" { on run { selekt } }");
  directory.write("two/Hidden.quindle", innerText);
  directory.write("two/Inner.quindle", innerText);
  directory.write("two/Outer.quindle", outerText);
  const std::string name = "Inner";
  const auto listed = [](const QuindleLibrary& library) {
    std::string text;
    for (const QuindleLibraryEntry* const entry : library.search("")) {
      text += entry->path + ": " + entry->document.name + entry->error + '\n';
      const QuindleLibraryEntry* const found = library.find(entry->document.name);
      EXPECT_TRUE(found && found->document.name == entry->document.name);
    }
    return text;
  };

  expectFailureReported("scan", [&]() -> Use {
    const auto library = std::make_shared<QuindleLibrary>();
    return [&, library](Diag& diag) -> Outcome {
      const std::uint64_t files = library->scan(path, diag);
      FailingMemory::end();
      const std::string text = listed(*library);
      library->clear();
      if (files == 0) return {};
      return text;
    };
  });
  expectFailureReported("load", [&]() -> Use {
    const auto library = std::make_shared<QuindleLibrary>();
    Diag first;
    library->scan(path, first);
    return [&, library](Diag& diag) -> Outcome {
      const bool ok = library->load(outerPath, diag);
      FailingMemory::end();
      const std::string text = listed(*library);
      if (!ok) return {};
      return text;
    };
  });
  expectFailureReported("read", always([&](Diag& diag) -> Outcome {
                          QuindleDocument document;
                          std::string text;
                          const bool ok = readQuindle(path, "outer", text, document, diag);
                          FailingMemory::end();
                          if (!ok) return {};
                          return text + dumpDocument(document);
                        }));
  expectFailureReported("delete", [&]() -> Use {
    const std::string own = directory.write("one/Inner.quindle", innerText);
    return [&, own, deleted = false](Diag& diag) mutable -> Outcome {
      if (deleted) return own;
      std::string file;
      bool revealed = false;
      const bool ok = deleteQuindle(path[0], path, name, file, revealed, diag);
      FailingMemory::end();
      deleted = ok;
      EXPECT_EQ(std::filesystem::exists(own), !ok) << diag.format();
      if (!ok) return {};
      EXPECT_TRUE(revealed || diag.errorCount > 0 || diag.entries.empty());
      return file;
    };
  });
}

TEST(Memory, ASavedFileIsTheOldOneOrTheNewOne) {
  const TemporaryDirectory directory;
  const std::string path = directory.path();
  expectFailureReported("save", [&]() -> Use {
    directory.write("Inner.quindle", "the old text");
    return [&](Diag& diag) -> Outcome {
      QuindleDocument document;
      const bool ok = saveQuindle(path, innerText, document, diag);
      FailingMemory::end();
      EXPECT_EQ(readFile(directory.path("Inner.quindle")), ok ? innerText : "the old text");
      EXPECT_EQ(directory.names().size(), 1U);
      if (!ok) return {};
      return document.sourceFile;
    };
  });
}

TEST(Memory, WhatOnlyReturnsAValueThrows) {
  const QuindleDocument doc = parsed(outerText, textFile);
  const QuindleDocument inner = parsed(innerText, textFile);
  const QuindleResolver resolver = [&inner](const std::string&, QuindleDocument& document, std::string&) {
    document = inner;
    return true;
  };
  expectFailureThrown("explain", [&] { return explainQuindle(doc, resolver); });
  expectFailureThrown("write", [&] { return writeQuindle(doc); });
  expectFailureThrown("copy", [&] {
    const QuindleDocument copy = doc;
    return copy.params[1].help + copy.triggers[0].steps[4].condition.toSource();
  });
}

TEST(Memory, DestroyingTakesNone) {
  constexpr std::size_t levels = 100000;
  const auto nested = [](const char* open, const char* inside, const char* close) {
    return repeated(open, levels) + inside + repeated(close, levels);
  };
  auto doc = std::make_optional(
      parsed("quindle \"Deep\" { param p : Text = " + nested("(1, ", "2", ", 3)") + " on run { select " +
             nested("(a < 1 or not (b > 2 and ", "c < 3", " and d < 4))") +
             nested("if a { let b = 1 if c {", "", "} else { let d = 2 let e = 3 } }") + " } }"));
  auto plan = std::make_optional<std::vector<QuindlePlannedSelect>>();
  Diag diag;
  *plan = planQuindle(*doc, diag);
  ASSERT_TRUE(plan->at(0).good) << diag.format();
  FailingMemory::begin(Which::FromThere, 0);
  doc.reset();
  plan.reset();
  EXPECT_EQ(FailingMemory::end(), 0U);
}

} // namespace
} // namespace Zamt::Testing
