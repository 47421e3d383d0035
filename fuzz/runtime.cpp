#include "fuzz/require.h"
#include "quindle/Quindle.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

using namespace Zamt;
using Zamt::Fuzz::require;

/// A Quindle on a scene that fails, throws and answers nonsense. The input is its text and, behind the first
/// zero byte, one byte for each thing that the scene or the resolver is asked.
namespace {

struct Thrown {};

/// What the input says to do; once it is used up, everything goes well.
class Answers {
public:
  explicit Answers(std::string_view bytes) : bytes_(bytes) {}

  enum class Mood { Good, Odd, Refusing, Throwing };

  Mood mood() {
    const unsigned byte = next();
    if (byte < 160) return Mood::Good;
    if (byte < 210) return Mood::Odd;
    return byte < 250 ? Mood::Refusing : Mood::Throwing;
  }

  unsigned next() {
    if (at_ >= bytes_.size()) return 0;
    return static_cast<unsigned char>(bytes_[at_++]);
  }

private:
  std::string_view bytes_;
  std::size_t at_ = 0;
};

class Scene : public QuindleOps {
public:
  explicit Scene(Answers& answers) : answers_(answers) {}

  bool previewing = false;
  bool well = false; ///< Whatever the input says.

  std::string create(const std::string& /*creator*/, const std::string& name, Diag& diag) override {
    switch (ask(diag)) {
    case Answers::Mood::Good: return name;
    case Answers::Mood::Odd: return "odd" + oddText(); // empty text is a refusal, which has to be explained
    default: return {};
    }
  }
  bool connect(const std::string& /*object*/, const std::string& /*slot*/, const std::string& /*source*/,
               const std::string& /*sourceSlot*/, Diag& diag) override {
    return succeeds(diag);
  }
  bool setParam(const std::string& /*object*/, const std::string& /*slot*/, const std::string& value,
                Diag& diag) override {
    held_ = value;
    return succeeds(diag);
  }
  bool getParam(const std::string& /*object*/, const std::string& slot, std::string& value,
                Diag& diag) override {
    const Answers::Mood mood = ask(diag);
    if (mood == Answers::Mood::Good) value = slot == sceneWords::problemSlot ? std::string() : held_;
    if (mood == Answers::Mood::Odd) value = oddText();
    return mood != Answers::Mood::Refusing;
  }
  bool fireAction(const std::string& /*object*/, const std::string& action, Diag& diag) override {
    require(!previewing || action == sceneWords::unselectAllAction || action == sceneWords::selectAction,
            "a preview fires nothing that writes");
    return succeeds(diag);
  }
  bool exists(const std::string& /*name*/) override { return ask() != Answers::Mood::Refusing; }
  std::vector<std::string> objectsPublishing(const std::string& /*kind*/) override { return names(); }
  std::string sourceOf(const std::string& /*object*/, const std::string& /*slot*/) override { return text(); }
  std::vector<std::string> consumersOf(const std::string& /*object*/) override { return names(); }
  std::string creatorOf(const std::string& /*object*/) override { return text(); }
  std::string statusOf(const std::string& /*object*/) override { return text(); }
  bool removeObject(const std::string& /*name*/, Diag& diag) override { return succeeds(diag); }
  int settle() override {
    constexpr int many = std::numeric_limits<int>::max();
    return ask() == Answers::Mood::Good ? 1 : many;
  }

  Answers::Mood ask() {
    const Answers::Mood mood = well ? Answers::Mood::Good : answers_.mood();
    if (mood == Answers::Mood::Throwing) throw Thrown();
    return mood;
  }

  std::string oddText() {
    static const std::array<std::string, 12> texts{
        "",         " ",           ".",
        "a.b",      "Quindle_",    "-1",
        "1e999",    "/",           std::string("\0{selected}\n", 12),
        "Display/", "1 0 0 0 0 1", std::string(5000, '{')};
    return texts[answers_.next() % texts.size()];
  }

private:
  Answers::Mood ask(Diag& diag) {
    const Answers::Mood mood = ask();
    if (mood == Answers::Mood::Refusing) diag.error("The scene refuses.", "scene");
    return mood;
  }
  bool succeeds(Diag& diag) { return ask(diag) != Answers::Mood::Refusing; }
  std::string text() { return ask() == Answers::Mood::Good ? std::string() : oddText(); }
  std::vector<std::string> names() {
    if (ask() == Answers::Mood::Good) return {"Something"};
    return {oddText(), "Display/Other", oddText()};
  }

  Answers& answers_;
  std::string held_;
};

bool runsOthers(const QuindleDocument& doc) {
  const std::vector<const QuindleStep*> steps = quindleSteps(doc);
  return std::any_of(steps.begin(), steps.end(),
                     [](const QuindleStep* step) { return step->kind == QuindleStep::Kind::Run; });
}

/// The lines of a Quindle that runs no other are those of its own reports, in their order, and what has no
/// braces stands there as written.
void requireOwnLines(const QuindleDocument& doc, const std::vector<std::string>& lines) {
  std::size_t told = 0;
  for (const QuindleStep* const step : quindleSteps(doc)) {
    if (told == lines.size()) return;
    if (step->kind != QuindleStep::Kind::Report) continue;
    const bool literal = step->value.kind == QuindleExpr::Kind::Literal;
    const std::string text = literal ? step->value.value.toPlainText() : step->value.toSource();
    if (text.find('{') != std::string::npos || text == lines[told]) ++told;
  }
  require(told == lines.size(), "a report tells what its steps say");
}

void requireSound(const QuindleDocument& doc, bool parsed, const QuindleRunResult& result, bool preview,
                  const Diag& diag) {
  require(preview == result.preview, "a result says what was run");
  require(result.settled >= 0, "work done is counted up");
  std::uint64_t errors = 0;
  bool told = false;
  for (const Diag::Entry& entry : diag.entries) {
    require(!entry.message.empty(), "every entry has a sentence");
    errors += entry.severity == Diag::Severity::Error ? 1U : 0U;
    told = told || entry.severity != Diag::Severity::Note;
  }
  require(errors == diag.errorCount, "the errors are counted");
  // What could not be parsed was faulted then, and a run may give up without another word.
  require(result.ok || told || !parsed, "a run that fails says why");
  if (!runsOthers(doc)) requireOwnLines(doc, result.report);
}

/// A runtime on the scene, which finds whatever is asked for, unless the input says otherwise.
class Stage {
public:
  Stage(const QuindleDocument& doc, bool parsed, std::string_view answers)
      : doc_(doc), parsed_(parsed), answers_(answers) {
    runtime_.resolver = [this](const std::string& name, QuindleDocument& document, std::string& error) {
      return resolve(name, document, error);
    };
  }

  /// Everything that can be told of some runs.
  std::string perform() {
    std::string told;
    for (const bool preview : {true, false, true, false}) {
      told += runOnce(preview);
      probe();
    }
    return told;
  }

private:
  bool resolve(const std::string& name, QuindleDocument& document, std::string& error) {
    if (scene_.well) {
      Diag diag;
      return parseQuindle("quindle \"Leaf\" { on run { report \"leaf\" } }", "", document, diag);
    }
    const Answers::Mood mood = scene_.ask();
    if (++resolved_ > mostResolved) error = "There have been too many.";
    if (mood == Answers::Mood::Refusing || !error.empty()) return false;
    document = doc_;
    document.name = name;
    if (mood == Answers::Mood::Odd) {
      document.name = scene_.oddText();
      document.revision = answers_.next();
    }
    return true;
  }

  std::string runOnce(bool preview) {
    QuindleRunResult result;
    Diag diag;
    resolved_ = 0;
    scene_.previewing = preview;
    try {
      const bool ok = runtime_.run(doc_, {{"cloud", "Cloud"}, {"n", "7"}}, preview, result, diag);
      require(ok == result.ok, "a result says how the run went");
      requireSound(doc_, parsed_, result, preview, diag);
    } catch (const Thrown&) {
      return "thrown\n";
    }
    std::string told = diag.format() + '\n';
    for (const std::string& line : result.report) told += line + '\n';
    return told;
  }

  /// Whatever happened, the runtime serves the next one.
  void probe() {
    static const QuindleDocument well = [] {
      QuindleDocument made;
      Diag diag;
      parseQuindle("quindle \"Well\" { on run { report \"well\" run \"Leaf\"() } }", "", made, diag);
      return made;
    }();
    runtime_.forget("Well");
    runtime_.forget("Leaf");
    scene_.well = true;
    QuindleRunResult result;
    Diag diag;
    require(runtime_.run(well, {}, false, result, diag), "a runtime serves after any failure");
    require(result.report == std::vector<std::string>{"well", "leaf"}, "and reports what the next one says");
    scene_.well = false;
  }

  /// Quindles that run one another may take for ever; ending that is the resolver's part.
  static constexpr int mostResolved = 100;

  const QuindleDocument& doc_;
  const bool parsed_;
  Answers answers_;
  Scene scene_{answers_};
  QuindleRuntime runtime_{scene_};
  int resolved_ = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = std::min(input.find('\0'), size);
  QuindleDocument doc;
  Diag diag;
  const bool parsed = parseQuindle(std::string(input.substr(0, end)), "f", doc, diag); // run in either case
  const std::string_view answers = input.substr(std::min(end + 1, size));
  const std::string told = Stage(doc, parsed, answers).perform();
  require(told == Stage(doc, parsed, answers).perform(), "the same scene and text give the same runs");
  return 0;
}
