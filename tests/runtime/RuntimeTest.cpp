#include "cadmer/LabelSet.h"
#include "quindle/Quindle.h"
#include "quindle/runtime/StepGuards.h"
#include "tests/support/RecordingScene.h"
#include "tests/support/goldenCases.h"
#include "tests/support/labelText.h"
#include "tests/support/parsed.h"

#include <optional>

namespace Zamt::Testing {
namespace {

using RunStep = QuindleRuntime::RunStep;

/// A guard, which is nested to the left.
std::string guardText(const QuindleExpr& guard) {
  if (guard.kind != QuindleExpr::Kind::And) return guard.toSource();
  return '(' + guard.operands.at(0).toSource() + ") and " + guard.operands.at(1).toSource();
}

std::string stepText(const RunStep& step) {
  std::string text = '[' + guardText(step.guard) + "] ";
  switch (step.kind) {
  case RunStep::Kind::Fire:
    return text + "fire " + step.object + '.' + step.action + (step.counts ? " counts" : "") +
           (step.writes ? " writes" : "");
  case RunStep::Kind::Report: return text + "report " + step.text;
  case RunStep::Kind::Let: return text + "let " + step.name + " = " + step.value.toSource();
  case RunStep::Kind::Run: text += "run " + step.name;
  }
  for (std::size_t i = 0; i < step.args.size(); ++i)
    text += ' ' + step.argNames[i] + ": " + step.args[i].toSource();
  return text;
}

/// What a case of the golden documents does with a runtime, a line each, and what comes of it. A line that
/// begins with "quindle" begins a Quindle, up to an empty line; any other line is one of the words below and
/// what it is about. The words that only set up the scene tell nothing.
class RuntimeSession {
public:
  RuntimeSession() { restart(); }

  std::string play(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
      if (line.starts_with("quindle "))
        add(line + '\n' + takeLines(lines, ""));
      else if (!line.empty())
        obey(line);
    return told_;
  }

private:
  using Args = std::map<std::string, std::string>;
  using Word = std::function<void(const std::string&)>;

  /// The words behind the first, as "object.slot = value" or "object = value".
  struct Setting {
    std::string owner, slot, value;

    Setting(const std::string& text) {
      const std::size_t equals = text.find(" =");
      const std::size_t dot = std::min(text.rfind('.', equals), equals);
      owner = text.substr(0, dot);
      slot = text.substr(std::min(dot + 1, equals), equals - std::min(dot + 1, equals));
      value = text.substr(std::min(equals + 3, text.size()));
    }
  };

  /// Quindles of one name are told apart by their revision.
  void add(const std::string& text) {
    QuindleDocument doc = parsed(text);
    doc.sourceFile = doc.name + ".quindle";
    doc.revision = static_cast<std::uint32_t>(quindles_.size());
    quindles_.push_back(std::move(doc));
  }

  /// The latest that has the name.
  QuindleDocument& quindle(const std::string& name) {
    return *std::find_if(quindles_.rbegin(), quindles_.rend(),
                         [&](const QuindleDocument& doc) { return doc.name == name; });
  }

  void restart() {
    runtime_.emplace(scene_);
    runtime_->resolver = [this](const std::string& name, QuindleDocument& document, std::string&) {
      const auto found = std::ranges::find(quindles_, name, &QuindleDocument::name);
      if (found != quindles_.end()) document = *found;
      return found != quindles_.end();
    };
  }

  void obey(const std::string& line) {
    const std::size_t blank = std::min(line.find(' '), line.size());
    const std::string word = line.substr(0, blank);
    const std::string rest = line.substr(std::min(blank + 1, line.size()));
    if (const auto setUp = setUps_.find(word); setUp != setUps_.end()) return setUp->second(rest);
    told_ += "> " + line + '\n';
    diag_.clear();
    acts_.at(word)(rest);
    std::string calls;
    for (const std::string& call : scene_.takeCalls()) calls += shownCall(call) + '\n';
    told_ += calls + after_ + (diag_.entries.empty() ? "" : diag_.format() + '\n');
    after_.clear();
  }

  static std::string shownCall(const std::string& call) {
    const std::string labels = ".labels = ";
    const std::size_t at = call.find(labels);
    return at == std::string::npos
               ? call
               : call.substr(0, at) + labels + shortLabels(call.substr(at + labels.size()));
  }

  static Args argsIn(std::istream& words) {
    Args args;
    for (std::string word; words >> word;) {
      const std::size_t equals = word.find('=');
      args[word.substr(0, equals)] = word.substr(equals + 1);
    }
    return args;
  }

  void there(const std::string& what) {
    std::istringstream words(what);
    std::string creator, name;
    words >> creator >> name;
    scene_.add(name, creator, {std::istream_iterator<std::string>(words), {}});
  }

  void run(const std::string& what, bool preview) {
    std::istringstream words(what);
    std::string name;
    words >> name;
    QuindleRunResult result;
    EXPECT_EQ(runtime_->run(quindle(name), argsIn(words), preview, result, diag_), result.ok);
    EXPECT_EQ(result.preview, preview);
    after_ = std::string(result.ok ? "good" : "failed") + (result.compiled ? ", compiled" : "") +
             ", settled " + std::to_string(result.settled) + '\n';
    for (const std::string& line : result.report) after_ += "| " + line + '\n';
  }

  void compile(const std::string& name) {
    QuindleRuntime::Program program;
    after_ = runtime_->compile(quindle(name), program, diag_) ? "good\n" : "failed\n";
    for (const QuindleBinding& bound : program.bindings)
      after_ += bound.object + '.' + bound.slot + (bound.connect ? " <- " : " = ") + bound.param + '\n';
    for (const RunStep& step : program.steps) after_ += stepText(step) + '\n';
    if (!program.editorObject.empty()) after_ += "editor " + program.editorObject + '\n';
  }

  void show(const std::string& what) {
    std::istringstream words(what);
    std::string editor;
    words >> editor;
    runtime_->showWhatWouldChange(quindles_.back(), argsIn(words), editor == "none" ? "" : editor, diag_);
  }

  void say(const std::string& text) {
    tell({runtime_->expandReport(text, quindles_.back(), {}, {}, "Editor", false, diag_)});
  }

  void tell(const std::vector<std::string>& names) {
    for (const std::string& name : names) after_ += name + '\n';
  }

  RecordingScene scene_;
  std::optional<QuindleRuntime> runtime_;
  std::vector<QuindleDocument> quindles_;
  Diag diag_;
  std::string told_;
  std::string after_; ///< What an act tells behind its calls.

  const std::map<std::string, Word> setUps_{
      {"there", [this](const std::string& what) { there(what); }},
      {"gone", [this](const std::string& name) { scene_.objects.erase(name); }},
      {"slot", [this](const Setting& to) { scene_.objects[to.owner].slots[to.slot] = to.value; }},
      {"source", [this](const Setting& to) { scene_.objects[to.owner].sources[to.slot] = to.value; }},
      {"status", [this](const Setting& to) { scene_.objects[to.owner].status = to.value; }},
      {"preset", [this](const Setting& to) { scene_.presets[to.owner][to.slot] = to.value; }},
      {"feed", [this](const Setting& to) { scene_.feeds[to.owner][to.slot] = to.value; }},
      {"labels",
       [this](const std::string& labels) {
         scene_.presets["Edit/MaskedLabels"]["labels"] = labelText(labels);
       }},
      {"settles", [this](const std::string& count) { scene_.settleResult = std::stoi(count); }},
      {"refuse", [this](const std::string& call) { scene_.refused.insert(call); }},
      {"allow", [this](const std::string& /*all*/) { scene_.refused.clear(); }},
      {"touch", [this](const std::string& name) { quindle(name).touch(); }},
      {"forget", [this](const std::string& name) { runtime_->forget(name); }},
      {"pin", [this](const std::string& brush) { runtime_->setBrushObject(brush); }},
      {"alone", [this](const std::string& /*nothing*/) { runtime_->resolver = {}; }},
      {"restart", [this](const std::string& /*nothing*/) { restart(); }},
  };
  const std::map<std::string, Word> acts_{
      {"compile", [this](const std::string& name) { compile(name); }},
      {"run", [this](const std::string& what) { run(what, false); }},
      {"preview", [this](const std::string& what) { run(what, true); }},
      {"brush", [this](const std::string& /*nothing*/) { tell({runtime_->ensureBrushObject(diag_)}); }},
      {"say", [this](const std::string& text) { say(text); }},
      {"named", [this](const std::string& name) { tell({runtime_->objectNamed(name)}); }},
      {"publishing", [this](const std::string& kind) { tell(runtime_->sceneObjectsPublishing(kind)); }},
      {"kind", [this](const std::string& kind) { tell(runtime_->sceneObjectsOfKind(kind)); }},
      {"show", [this](const std::string& what) { show(what); }},
      {"hide", [this](const std::string& /*nothing*/) { runtime_->forgetPreviewDisplay(diag_); }},
  };
};

class RuntimeTest : public testing::TestWithParam<const char*> {};

TEST_P(RuntimeTest, DoesAndTellsWhatTheGoldenDocumentShows) {
  expectCases(std::string("runtime/golden/") + GetParam() + ".md",
              [](const std::string& text) { return RuntimeSession().play(text); });
}

INSTANTIATE_TEST_SUITE_P(Golden, RuntimeTest,
                         testing::Values("brushes", "compile", "nested", "preview", "reports", "run"),
                         [](const auto& document) { return std::string(document.param); });

/// `steps` under an "if" whose condition weighs one less than `weight`, which counts the block itself too.
QuindleStep block(std::size_t weight, std::vector<QuindleStep> steps) {
  QuindleStep step;
  step.kind = QuindleStep::Kind::If;
  step.condition.kind = QuindleExpr::Kind::Literal;
  step.condition.value = QuindleValue::text(std::string((weight - 2) * 16, 'x'));
  step.body = std::move(steps);
  return step;
}

TEST(CompileProgram, BoundsWhatAllGuardsTogetherWeigh) {
  QuindleStep report;
  report.kind = QuindleStep::Kind::Report;
  report.value.kind = QuindleExpr::Kind::Literal;
  report.line = 7;
  QuindleDocument doc = parsedRun("");
  std::vector<QuindleStep>& steps = doc.triggers[0].steps;
  constexpr std::size_t tenth = maxGuardWeight / 10;
  RecordingScene scene;
  QuindleRuntime runtime(scene);
  Diag diag;
  QuindleRuntime::Program program;
  steps = {block(tenth, std::vector<QuindleStep>(9, report)), block(tenth, {report})};
  EXPECT_TRUE(runtime.compile(doc, program, diag));
  EXPECT_EQ(program.steps.size(), 10U);
  steps[1] = block(tenth + 1, {report, report});
  program = {};
  EXPECT_FALSE(runtime.compile(doc, program, diag));
  EXPECT_EQ(program.steps.size(), 9U);
  EXPECT_EQ(diag.format(),
            "test.quindle:7: error: The conditions of the \"if\" blocks around the steps of this Quindle add "
            "up to more than can be kept, since every step carries all those around it. Nest the blocks less "
            "deeply, or move some of the steps to a Quindle of their own and \"run\" that.");
}

} // namespace
} // namespace Zamt::Testing
