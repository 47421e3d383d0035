#pragma once

#include "quindle/Quindle.h"
#include "tests/support/RecordingScene.h"
#include "tests/support/parsed.h"

#include <gmock/gmock.h>

#include <map>
#include <string>
#include <vector>

namespace Zamt::Testing {

/// A runtime on a recording scene.
class RuntimeTest : public testing::Test {
protected:
  using Args = std::map<std::string, std::string>;
  using Lines = std::vector<std::string>;

  RecordingScene scene;
  QuindleRuntime runtime{scene};
  QuindleRunResult result;
  Diag diag; ///< Of the latest run or compilation.

  bool run(const QuindleDocument& doc, const Args& args = {}, bool preview = false) {
    diag.clear();
    return runtime.run(doc, args, preview, result, diag);
  }

  bool preview(const QuindleDocument& doc, const Args& args = {}) { return run(doc, args, true); }

  QuindleRuntime::Program compiled(const QuindleDocument& doc, bool expected = true) {
    QuindleRuntime::Program program;
    diag.clear();
    EXPECT_EQ(runtime.compile(doc, program, diag), expected) << diag.format();
    return program;
  }

  /// The calls since this was last asked, without the text of label sets.
  Lines calls() {
    Lines lines = scene.takeCalls();
    for (std::string& line : lines)
      if (const std::size_t at = line.find(".labels = "); at != std::string::npos)
        line.replace(at, std::string::npos, ".labels = ...");
    return lines;
  }

  /// The steps of a program as "[guard] step".
  static Lines listed(const QuindleRuntime::Program& program) {
    Lines lines;
    for (const QuindleRuntime::RunStep& step : program.steps) {
      std::string line = "[" + step.guard.toSource() + "] ";
      switch (step.kind) {
      case QuindleRuntime::RunStep::Kind::Fire:
        line += "fire " + step.object + "." + step.action;
        if (step.counts) line += " counts";
        if (step.writes) line += " writes";
        break;
      case QuindleRuntime::RunStep::Kind::Report: line += "report " + step.text; break;
      case QuindleRuntime::RunStep::Kind::Let:
        line += "let " + step.name + " = " + step.value.toSource();
        break;
      case QuindleRuntime::RunStep::Kind::Run:
        line += "run " + step.name;
        for (std::size_t i = 0; i < step.args.size(); ++i)
          line += " " + step.argNames[i] + ": " + step.args[i].toSource();
        break;
      }
      lines.push_back(line);
    }
    return lines;
  }

  /// Classifies what a field selects; the cloud comes from the application.
  static QuindleDocument classifying(const std::string& more = {}) {
    return parsedRun("select field(\"Amplitude\", low, 10)\nclassify into \"Noise\"\n" + more,
                     "param data : Grid = active param low : Number = 5");
  }
};

inline const std::string wholeNote = "note: This Quindle names no region, so it works on the whole of "
                                     "whatever it is given rather than on a brushed area.";

} // namespace Zamt::Testing
