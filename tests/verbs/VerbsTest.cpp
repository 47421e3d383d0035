#include "host/verbs/verbs.h"

#include "host/cli/progressLine.h"
#include "host/cli/shownBytes.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace Zamt::Host {
namespace {

using testing::HasSubstr;
using Values = std::vector<std::pair<std::string, Request::Value>>;
using Texts = std::vector<std::string>;

const std::vector<Verb>& verbs() {
  static const std::vector<Verb> all = allVerbs();
  return all;
}

const Verb& verbCalled(const std::string& name) {
  return *std::find_if(verbs().begin(), verbs().end(), [&](const Verb& verb) { return verb.name == name; });
}

Request requestOf(const Values& values) {
  Request request;
  for (const auto& [option, value] : values) request.set(option, value);
  return request;
}

/// What the JSON of a verb is said to hold.
std::string jsonHelp(const Verb& verb) {
  for (const Option& option : verb.options)
    if (option.name == "json") return option.help;
  return {};
}

/// A home of its own, whose collection is that of the examples.
class VerbsTest : public testing::Test, public Testing::TemporaryDirectory {
public:
  VerbsTest() {
    std::filesystem::create_directories(path("share"));
    std::filesystem::create_directory_symlink(QUINDLE_SOURCE_DIR "/examples", path("share/quindles"));
    write("my.quindle",
          "quindle \"Mine\" { description \"d\" param cloud : Grid = active \"The cloud.\"\n on run { select "
          "class(\"Ground\") classify into \"Water\" report \"{selected}\" } }");
  }

  Answer call(const std::string& verb, const Values& values) const {
    return verbCalled(verb).run(requestOf(values), context);
  }

  Stop stop;
  Context context{.stop = stop, .quindles = QuindleReader(stop)};
  Testing::Environment home{
      {"XDG_DATA_HOME", path("data")}, {"APPDATA", {}}, {"QUINDLE_DATA_DIRS", path("share")}};
};

struct Call {
  std::string verb;
  Values values;
  std::string says; ///< Stands in the text of the answer.
};

TEST_F(VerbsTest, EachAnswersWithoutATerminalInWordsAndInTheDataThatItsHelpNames) {
  const Texts lake{path("lake.las")};
  const Texts mine{path("my.quindle")};
  const std::vector<Call> calls{
      {"sample", {{"out", lake[0]}, {"points", std::uint64_t{3000}}}, "3,000 points of hills"},
      {"info", {{"cloud", lake}}, "lake.las: LAS 1.4, point format 6, 3,000 points\n"},
      {"preview", {{"quindle", mine[0]}, {"cloud", lake}}, "  9 Water  "},
      {"run",
       {{"quindle", mine[0]}, {"cloud", lake}, {"output", path("out.las")}},
       "  written to " + path("out.las") + '\n'},
      {"count", {{"condition", std::string("class(\"Ground\")")}, {"cloud", lake}}, " of 3,000 points\n"},
      {"classify",
       {{"condition", std::string("Z > 400")},
        {"into", std::string("into")},
        {"class", std::string("Rail")},
        {"cloud", lake},
        {"output", path("out.las")}},
       "  10 Rail  "},
      {"extract",
       {{"condition", std::string("Z > 400")}, {"cloud", lake}, {"output", path("out.las")}},
       " points, written to " + path("out.las") + '\n'},
      {"check", {{"quindle", mine}}, "my.quindle: no faults\n"},
      {"fmt", {{"quindle", mine}}, "\n    on run {\n        select class(\"Ground\")\n"},
      {"explain", {{"quindle", mine[0]}}, "Mine"},
      {"plan", {{"quindle", mine[0]}}, "class(\"Ground\", \"Classification\")"},
      {"save", {{"file", mine[0]}}, "\"Mine\" is saved as " + path("data/orrel/quindles/Mine.quindle")},
      {"list", {}, "Mine "},
      {"search", {{"text", std::string("water")}}, "Over water "},
      {"show", {{"name", std::string("mine")}}, "quindle \"Mine\""},
      {"disable", {{"name", std::string("Restore class")}}, "is switched off\n"},
      {"enable", {{"name", std::string("restore class")}}, "is switched on\n"},
      {"delete", {{"name", std::string("Restore class")}}, "is now the installed one again, "},
      {"keys", {{"free", std::string("ctrl+f12")}}, "Ctrl+F12 is free\n"},
      {"reference", {{"section", std::string("steps")}}, "select"},
      {"conditions", {{"name", std::string("within")}}, "Selection/BrushFilterBySphere"},
      {"registry", {{"name", std::string("Display")}, {"limit", std::uint64_t{1}}}, "Display/Picture"},
  };
  Texts called;
  for (const Call& one : calls) {
    SCOPED_TRACE(one.verb);
    called.push_back(one.verb);
    const Verb& verb = verbCalled(one.verb);
    const Answer answer = call(one.verb, one.values);
    EXPECT_EQ(answer.status, Status::Done);
    ASSERT_FALSE(answer.parts.empty()) << answer.refusal;
    const Part& part = answer.parts.back();
    EXPECT_EQ(part.diag.errorCount, 0U) << part.diag.format();
    EXPECT_THAT(part.text(), HasSubstr(one.says));
    EXPECT_THAT(jsonHelp(verb), HasSubstr(verb.listName));
    const Data data = part.data();
    for (const auto& [name, value] : std::get<Fields>(data.value))
      EXPECT_THAT(jsonHelp(verb), testing::ContainsRegex("[\" ]" + std::string(name) + "[\",. ]"));
  }
  Texts all;
  for (const Verb& verb : verbs()) all.push_back(verb.name);
  EXPECT_THAT(called, testing::UnorderedElementsAreArray(all));
}

TEST_F(VerbsTest, EveryOptionIsNamedOnceAndGoesOnlyWithOthersOfItsVerb) {
  for (const Verb& verb : verbs()) {
    SCOPED_TRACE(verb.name);
    std::set<std::string> names;
    for (const Option& option : verb.options) EXPECT_TRUE(names.insert(option.name).second) << option.name;
    for (const Option& option : verb.options)
      for (const Texts& others : {option.needs, option.excludes})
        for (const std::string& other : others) EXPECT_TRUE(names.contains(other)) << other;
  }
}

TEST_F(VerbsTest, PartsAreHandedOnAsTheyComeAndAStopLetsNoneFollow) {
  call("sample", {{"out", path("lake.las")}, {"points", std::uint64_t{500}}});
  Texts shown;
  Texts progress;
  context.part = [&](const Part& part) {
    if (!part.text) return;
    shown.push_back(part.text());
    if (shown.size() == 2) stop.request();
  };
  context.progress = [&](const ProgressNow& now) {
    EXPECT_TRUE(now.part >= 0 && now.part <= 1) << now.part;
    if (now.points == 0)
      progress.push_back(now.what + ' ' + std::to_string(now.done) + '/' + std::to_string(now.total));
  };
  const std::string lake = path("lake.las");
  const Answer answer =
      call("preview", {{"quindle", path("my.quindle")}, {"cloud", Texts{lake, "none", lake}}});
  EXPECT_EQ(answer.status, Status::Failed);
  EXPECT_TRUE(answer.parts.empty());
  ASSERT_EQ(shown.size(), 2U);
  EXPECT_THAT(shown[0], HasSubstr("would change"));
  EXPECT_EQ(shown[1], "none\n");
  EXPECT_EQ(progress, (Texts{lake + " 0/3", "none 1/3"}));
}

TEST_F(VerbsTest, NothingIsDoubtfulInTheExamplesNorInTheDocumentsButTheMistakesShownThere) {
  Texts quindles;
  for (const auto& entry : std::filesystem::directory_iterator(QUINDLE_SOURCE_DIR "/examples"))
    if (entry.path().extension() == ".quindle") quindles.push_back(entry.path());
  const std::string fence = "```quindle";
  for (const std::string document : {"/README.md", "/docs/tutorial.md"}) {
    const std::string text = Testing::readFile(QUINDLE_SOURCE_DIR + document);
    for (std::size_t at = 0; (at = text.find(fence, at)) != std::string::npos;) {
      const std::size_t begin = text.find('\n', at) + 1;
      const std::string title = text.substr(at, begin - at);
      at = text.find("```", begin);
      if (title.find("broken") == std::string::npos)
        quindles.push_back(
            write(std::to_string(quindles.size()) + ".quindle", text.substr(begin, at - begin)));
    }
  }
  EXPECT_GT(quindles.size(), 15U);
  for (const Part& part : call("check", {{"quindle", quindles}}).parts)
    EXPECT_EQ(part.diag.format(), "") << part.text();
}

TEST_F(VerbsTest, WithoutStandardInputADashIsTheNameOfAFile) {
  const Answer answer = call("check", {{"quindle", Texts{"-"}}});
  EXPECT_EQ(answer.status, Status::Failed);
  EXPECT_THAT(answer.parts.at(0).diag.firstError(), testing::StartsWith("There is no Quindle called \"-\"."));
}

TEST(ProgressLine, TellsSpeedAndTimeLeftAsSoonAsThereIsSomethingToTellThemFrom) {
  using Seconds = std::chrono::duration<double>;
  EXPECT_EQ(progressLine({"a.las", 0, 2, 0.5, 1000}, Seconds(0.1), Seconds(0.1)),
            "[=======                       ] 0 of 2  a.las");
  EXPECT_EQ(progressLine({"b.las", 1, 2, 0.5, 9000}, Seconds(60), Seconds(3)),
            "[======================        ] 1 of 2  b.las  1,500 points a second  20 s left");
  EXPECT_EQ(progressLine({"a.las", 0, 1, 0.01, 100}, Seconds(1), Seconds(1)),
            "[                              ] 0 of 1  a.las  1 point a second  1:39 min left");
}

TEST(ShownBytes, AreThoseThatBelongToNoCharacter) {
  const std::pair<std::string, std::string> cases[] = {
      {"a\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80\x7F", "a\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80\x7F"},
      {"\xC3", "\\xC3"},
      {"\xC3(", "\\xC3("},
      {"\xE2\x82", "\\xE2\\x82"},
      {"\xC0\xAF", "\\xC0\\xAF"},                   // longer than it has to be
      {"\xE0\x9F\xBF", "\\xE0\\x9F\\xBF"},          // likewise
      {"\xED\xA0\x80", "\\xED\\xA0\\x80"},          // half of a pair
      {"\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80"}, // behind the last
      {"\x80\xFF", "\\x80\\xFF"}};
  for (const auto& [text, shown] : cases) EXPECT_EQ(shownBytes(text), shown);
}

} // namespace
} // namespace Zamt::Host
