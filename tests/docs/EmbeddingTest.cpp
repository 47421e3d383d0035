/// What docs/embedding.md says: its code does it, and each failure in its table looks as the table says.
#include "docs/samples/embedding.h"
#include "docs/samples/TinyScene.h"
#include "tests/support/TemporaryDirectory.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

namespace Zamt::Testing {
namespace {

class Embedding : public testing::Test {
protected:
  TinyScene scene{{{150, 1}, {30, 1}}};
  QuindleRuntime runtime{scene};
  const std::string document = readFile(QUINDLE_SOURCE_DIR "/docs/embedding.md");
  const TemporaryDirectory directory;

  /// Whether the table has the errors of `diag` in these words, warnings and what happened on the way too.
  void expectInTable(const Diag& diag, Diag::Severity from) const {
    std::size_t told = 0;
    for (const Diag::Entry& entry : diag.entries) {
      if (entry.severity < from && !entry.message.starts_with("This happened")) continue;
      if (entry.message.starts_with("Nothing uses")) continue;
      std::string line = entry.format();
      for (std::size_t at = 0; (at = line.find(directory.path(), at)) != std::string::npos;)
        line.replace(at, directory.path().size(), "/home/you");
      EXPECT_THAT(document, HasSubstr('`' + line + '`'));
      ++told;
    }
    EXPECT_GT(told, 0U);
  }

  static std::string quindle(const std::string& steps, const std::string& params = {}) {
    return "quindle \"Roofs\" { description \"D.\" param cloud : Grid = active \"C.\" " + params +
           " on run {\n" + steps + "\n} }";
  }
};

TEST_F(Embedding, TakesWhatIsEditedAndWhatTheApplicationSupplies) {
  OpenQuindle open(runtime);
  Diag diag;
  QuindleRunResult result;
  const auto runs = [&] {
    return runtime.run(open.document, suppliedValues(open.document, "Cloud", ""), true, result, diag);
  };
  ASSERT_TRUE(open.load(quindle("classify into \"A\" as 6\nreport \"{selected}\""), diag));
  EXPECT_TRUE(runs()) << diag.format();
  EXPECT_THAT(result.report, ElementsAre("2"));
  ASSERT_TRUE(
      open.load(quindle("select Amplitude > 99\nclassify into \"A\" as 6\nreport \"{selected}\""), diag));
  EXPECT_TRUE(runs()) << diag.format();
  EXPECT_THAT(result.report, ElementsAre("1"));
  open.setEnabled(false);
  EXPECT_FALSE(runs());
}

TEST_F(Embedding, BindsTheKeysOfACollectionToOneQuindleEach) {
  const auto save = [this](const std::string& name, const std::string& rest) {
    directory.write(name + ".quindle", "quindle \"" + name + "\" { description \"D.\" " + rest + " }");
  };
  save("A", "shortcut \"U I\" on run { run \"B\"() }");
  save("B", "shortcut \"ctrl+b i\" on run { report \"B ran\" }");
  KeyBoundQuindles quindles(scene);
  QuindleRunResult result;
  Diag diag;
  quindles.reload({directory.path()}, diag);
  EXPECT_THAT(quindles.bindings(), ElementsAre(Pair("Ctrl+B", "B"), Pair("U", "A")));
  EXPECT_TRUE(quindles.press("A", {}, result, diag)) << diag.format();
  EXPECT_THAT(result.report, ElementsAre("B ran"));
  save("B", "on run { report \"B ran anew\" }");
  quindles.reload({directory.path()}, diag);
  EXPECT_TRUE(quindles.press("A", {}, result, diag)) << diag.format();
  EXPECT_THAT(result.report, ElementsAre("B ran anew"));
}

TEST_F(Embedding, FailuresOfTheCollectionLookAsTheTableSays) {
  const std::string own = directory.path("quindles");
  const std::string installed = directory.path("installed");
  QuindleDocument doc;
  std::string text;
  bool revealed = false;
  const auto expect = [&](const std::function<void(Diag&)>& work,
                          Diag::Severity from = Diag::Severity::Error) {
    Diag diag;
    work(diag);
    expectInTable(diag, from);
  };
  const auto save = [&](const std::string& where, const std::string& source) {
    return [&, where, source](Diag& diag) { saveQuindle(where, source, doc, diag); };
  };
  Diag sound;
  ASSERT_TRUE(saveQuindle(installed, quindle("report \"a\""), doc, sound)) << sound.format();
  const std::vector<std::string> path{own, installed};
  const auto library = [&](Diag& diag) { QuindleLibrary().scan(path, diag); };

  expect(library, Diag::Severity::Note);
  expect(save(own, "quindle \"\" { description \"D.\" on run { report \"a\" } }"));
  expect(save(directory.write("file", ""), quindle("report \"a\"")));
  expect([&](Diag& diag) { readQuindle(path, "Rofs", text, doc, diag); });
  expect([&](Diag& diag) { deleteQuindle(own, path, "Roofs", text, revealed, diag); });
  std::filesystem::create_directory(own);
  directory.write("quindles/Roofs.quindle", quindle("selekt x"));
  expect(library, Diag::Severity::Warning);
  expect([&](Diag& diag) { readQuindle(path, "Roofs", text, doc, diag); });
  directory.write("quindles/Roofs.quindle", quindle("report \"b\""));
  expect(library, Diag::Severity::Note);
}

TEST_F(Embedding, FailuresOfARunLookAsTheTableSays) {
  const std::map<std::string, std::string> others{
      {"Broken", "quindle \"Broken\" {"},
      {"Again", "quindle \"Again\" { on run { run \"Again\"() } }"},
      {"Careful",
       "quindle \"Careful\" { param margin : Number on run { if margin > 1 { report \"{margin}\" } } }"}};
  const auto resolver = [&others](const std::string& name, QuindleDocument& found, std::string& error) {
    const auto text = others.find(name);
    if (text == others.end()) return false;
    Diag diag;
    if (parseQuindle(text->second, name, found, diag)) return true;
    error = diag.firstError();
    return false;
  };
  const auto classify = [](const std::string& select) { return select + "\nclassify into \"A\" as 6"; };
  const std::vector<std::pair<std::string, std::string>> cases{
      {quindle("selekt x"), ""},
      {quindle("report \"a\"", "param n : Number = 9 [0 .. 5] \"N.\""), ""},
      {"quindle \"Roofs\" { description \"D.\" enabled false on run { report \"a\" } }", ""},
      {"quindle \"Roofs\" { description \"D.\" on load { report \"a\" } }", ""},
      {quindle("for each x in cloud { report \"a\" }"), "Cloud"},
      {quindle(classify("select clas(1)")), "Cloud"},
      {quindle(classify("select Amplitude > strenght")), "Cloud"},
      {quindle("create a = \"No/Such\""), "Cloud"},
      {quindle("select class(1)\nclassify into \"Class 1\" as 1"), "Cloud"},
      {quindle(classify("select class(1)")), ""},
      {quindle(classify("select Amplitude > n"), "param n : Number \"N.\""), "Cloud"},
      {quindle(classify("select Amplitude > n"), "param n : Text = \"high\" \"N.\""), "Cloud"},
      {quindle(classify("select Amplitute > 5")), "Cloud"},
      {quindle("if cloud > 5 { report \"a\" }"), "Cloud"},
      {quindle("report \"{selected} {what}\""), "Cloud"},
      {quindle("run \"Nowhere\"()"), "Cloud"},
      {quindle("run \"Broken\"()"), "Cloud"},
      {quindle("run \"Again\"()"), "Cloud"},
      {quindle("run \"Careful\"(width: 3)"), "Cloud"},
      {quindle("run \"Careful\"()"), "Cloud"},
  };
  for (const auto& [text, active] : cases) {
    TinyScene fresh({{150, 1}, {30, 1}});
    QuindleRuntime unused(fresh);
    unused.resolver = resolver;
    Diag diag;
    std::map<std::string, std::string> args;
    if (!active.empty()) args["cloud"] = active;
    runText(unused, text, "roofs.quindle", args, false, diag);
    SCOPED_TRACE(text);
    expectInTable(diag, Diag::Severity::Warning);
  }
}

} // namespace
} // namespace Zamt::Testing
