#include "tests/cli/quindle.h"
#include "tests/support/environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

using namespace Zamt::Testing;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

using Words = std::vector<std::string>;

/// A user who has just installed Quindle: an empty home, and the examples as the installed set.
class Collection : public testing::Test {
protected:
  Collection() {
    std::filesystem::create_directory(home.path("share"));
    std::filesystem::create_directory_symlink(QUINDLE_SOURCE_DIR "/examples", home.path("share/quindles"));
  }

  CommandResult run(const Words& words, const std::string& input = {}) const {
    return quindle(words, {.directory = home.path(), .input = input});
  }

  /// What the command prints when it succeeds.
  std::string printed(const Words& words, const std::string& input = {}) const {
    const CommandResult result = run(words, input);
    EXPECT_EQ(result.exitCode, 0) << testing::PrintToString(words) << result.err;
    return result.out;
  }

  /// The complaint of a command that fails.
  std::string refusal(const Words& words, const std::string& input = {}) const {
    const CommandResult result = run(words, input);
    EXPECT_EQ(result.exitCode, 1) << testing::PrintToString(words) << result.out;
    EXPECT_EQ(result.out, "");
    return result.err;
  }

  void writeOwn(const std::string& file, const std::string& text) const {
    std::filesystem::create_directories(home.path(own));
    home.write(own + file, text);
  }

  const std::string own = ".orrel/quindles/";
  const TemporaryDirectory home;
  const Environment fresh{{"HOME", home.path()},
                          {"XDG_DATA_HOME", {}},
                          {"APPDATA", {}},
                          {"QUINDLE_DATA_DIRS", home.path("share")}};
};

TEST_F(Collection, AnInstalledQuindleIsEditedSwitchedOffAndComesBack) {
  EXPECT_THAT(printed({"list"}),
              HasSubstr("\nIsolated noise            Noise                     installed  ready\n"));
  const std::string installed = printed({"show", "isolated NOISE"});
  EXPECT_EQ(installed, readFile(home.path("share/quindles/isolated-noise.quindle")));
  std::string edited = installed;
  edited.replace(edited.find("= 4"), 3, "= 5");
  const std::string mine = home.path(own + "Isolated_noise.quindle");
  const std::string theirs = home.path("share/quindles/isolated-noise.quindle");

  EXPECT_EQ(printed({"save", "-"}, edited), "\"Isolated noise\" is saved as " + mine +
                                                "\nIt now stands in front of the installed one, " + theirs +
                                                "\n");
  EXPECT_EQ(printed({"show", "Isolated noise"}), edited);
  EXPECT_THAT(printed({"explain", "Isolated noise"}), HasSubstr("normally 5"));
  const CommandResult listed = run({"list"});
  EXPECT_THAT(listed.out,
              HasSubstr("\nIsolated noise            Noise                     yours      ready\n"));
  EXPECT_EQ(listed.err, theirs + ": note: \"" + theirs +
                            "\" is hidden by another Quindle of the same name, found first.\n");

  EXPECT_EQ(printed({"disable", "isolated noise"}), "\"Isolated noise\" is switched off\n");
  EXPECT_EQ(printed({"disable", "isolated noise"}), "\"Isolated noise\" is off already\n");
  EXPECT_EQ(nlohmann::json::parse(printed({"enable", "isolated noise", "--json"}), nullptr, false)["path"],
            mine);
  printed({"disable", "isolated noise"});
  ASSERT_EQ(run({"sample", "a.las", "--points", "100"}).exitCode, 0);
  EXPECT_THAT(run({"preview", "Isolated noise", "a.las"}).err,
              HasSubstr("warning: \"Isolated noise\" is switched off.\n"));

  EXPECT_EQ(printed({"delete", "ISOLATED noise"}),
            "deleted " + mine + "\n\"Isolated noise\" is now the installed one again, " + theirs + "\n");
  EXPECT_EQ(printed({"show", "--path", "Isolated noise"}), theirs + "\n");
  EXPECT_THAT(refusal({"delete", "Isolated noise"}), HasSubstr("is not yours to delete"));
  EXPECT_EQ(readFile(theirs), installed);
}

TEST_F(Collection, SwitchingAnInstalledQuindleOffCopiesIt) {
  EXPECT_EQ(printed({"keys"}), "KEY           QUINDLE\nCtrl+Shift+R  Restore class\n");
  EXPECT_EQ(run({"keys", "--free", "shift+ctrl+R"}).out, "Ctrl+Shift+R is taken by Restore class\n");
  EXPECT_EQ(run({"keys", "--free", "shift+ctrl+R"}).exitCode, 1);
  EXPECT_EQ(printed({"keys", "--free", "shift+ctrl+r", "--for", "Restore class"}), "Ctrl+Shift+R is free\n");
  EXPECT_EQ(run({"keys", "--free", "Ctrl+"}).exitCode, 2);

  const std::string copy = home.path(own + "Restore_class.quindle");
  EXPECT_EQ(printed({"disable", "restore class"}), home.path("share/quindles/restore-class.quindle") +
                                                       " is copied to " + copy +
                                                       "\n\"Restore class\" is switched off\n");
  EXPECT_EQ(printed({"keys", "--free", "Ctrl+Shift+R"}), "Ctrl+Shift+R is free\n");
  writeOwn("other.quindle",
           "quindle \"Other\" { description \"d\" on key \"ctrl+shift+r\" { report \"x\" } }");
  EXPECT_EQ(printed({"enable", "Restore class"}), "\"Restore class\" is switched on\n");
  EXPECT_THAT(printed({"keys"}),
              HasSubstr("Ctrl+Shift+R  Other, Restore class  conflict: bound to none of them\n"));
  const nlohmann::json keys = nlohmann::json::parse(printed({"keys", "--json"}), nullptr, false);
  EXPECT_EQ(keys["keys"][0]["names"], (Words{"Other", "Restore class"}));
  EXPECT_EQ(keys["keys"][0]["conflict"], true);

  writeOwn("flat.quindle", "quindle \"Flat\" { description \"d\" on run { report \"x\" } }");
  EXPECT_THAT(refusal({"disable", "Flat"}),
              HasSubstr("The line \"enabled false\" finds no place in this layout."));
  writeOwn("bad.quindle", "quindle \"Bad\" {");
  EXPECT_THAT(refusal({"disable", "Bad"}),
              HasSubstr("This Quindle is not usable, so it is not run anyhow: line 1"));
}

TEST_F(Collection, NothingIsSavedOverAnotherQuindleOrWithFaults) {
  const std::string text = "quindle \"A b\" { description \"d\" on run { report \"x\" } }";
  printed({"save", "-"}, text);
  const std::string path = home.path(own + "A_b.quindle");
  std::string other = text;
  other.replace(other.find("A b"), 3, "A-b");
  EXPECT_EQ(
      refusal({"save", "-"}, other),
      "error: \"A-b\" would go to \"" + path +
          "\", which holds another Quindle, \"A b\". Give it a name that differs in more than signs and "
          "blanks, or delete the other one.\n");
  EXPECT_EQ(refusal({"save", "-"}, "quindle \"A b\" { description \"d\" on run { run \"A b\"() } }"),
            "<stdin>:1: error: This Quindle runs itself, which would never stop.\n");
  EXPECT_EQ(readFile(path), text);
  EXPECT_EQ(printed({"save", "-"}, text), "\"A b\" is saved as " + path + ", in place of the one before\n");
  writeOwn("0.quindle", text);
  EXPECT_THAT(run({"save", "-"}, text).err, HasSubstr("0.quindle has the same name and comes first."));
  EXPECT_THAT(refusal({"fmt", "--write", "x/A b"}), HasSubstr("x/A b: error: This can't be opened"));
}

TEST_F(Collection, EveryVerbTakesANameAndOffersTheNearest) {
  ASSERT_EQ(run({"sample", "a.las", "--points", "100"}).exitCode, 0);
  const std::string sentence = "error: There is no Quindle called \"isolated nose\". Did you mean \"Isolated "
                               "noise\"? \"quindle list\" "
                               "lists them all.\n";
  const std::vector<std::pair<Words, Words>> verbs{{{"check"}, {}},
                                                   {{"explain"}, {}},
                                                   {{"plan"}, {}},
                                                   {{"fmt", "--check"}, {}},
                                                   {{"show"}, {}},
                                                   {{"preview"}, {"a.las"}},
                                                   {{"run"}, {"a.las", "-o", "b.las"}}};
  for (const auto& [before, after] : verbs) {
    Words good = before;
    good.push_back("isolated noise");
    good.insert(good.end(), after.begin(), after.end());
    printed(good);
    Words bad = before;
    bad.push_back("isolated nose");
    bad.insert(bad.end(), after.begin(), after.end());
    EXPECT_EQ(run(bad).err, sentence);
    EXPECT_EQ(run(bad).exitCode, 1);
  }
  for (const char* const verb : {"delete", "enable", "disable"})
    EXPECT_EQ(refusal({verb, "isolated nose"}), sentence);
  EXPECT_THAT(printed({"search", "LAKE"}),
              StartsWith("NAME         CATEGORY  KEYS  FROM       STATE\nSurvey lake  "));
  EXPECT_EQ(run({"search", "no such thing"}).exitCode, 1);

  const std::string unformatted = "quindle \"Isolated noise\" { description \"d\" on run { report \"x\" } }";
  std::filesystem::remove(home.path("share/quindles"));
  std::filesystem::create_directory(home.path("share/quindles"));
  home.write("share/quindles/a.quindle", unformatted);
  EXPECT_THAT(refusal({"fmt", "--write", "Isolated noise"}), HasSubstr("is part of the installation"));
  EXPECT_EQ(readFile(home.path("share/quindles/a.quindle")), unformatted);
}

TEST_F(Collection, QuindlesRunOneAnother) {
  ASSERT_EQ(run({"sample", "lake.las"}).exitCode, 0);
  const CommandResult preview = run({"preview", "Clean tile", "lake.las", "--set", "impossible=z > 430"});
  EXPECT_EQ(preview.exitCode, 0) << preview.err;
  EXPECT_THAT(preview.out, HasSubstr(" points are where nothing can be (z > 430).\n"));
  EXPECT_THAT(preview.out, HasSubstr(" points would go to class 18 (High Noise)\n"));
  EXPECT_THAT(preview.out, HasSubstr(" points have at most 3 neighbours within 4 m.\n"));
  EXPECT_THAT(preview.out, HasSubstr(" points would go to class 7 (Low Noise)\n"));

  // Two steps by hand come to the same cloud.
  EXPECT_EQ(
      run({"run", "Isolated noise", "lake.las", "-o", "one.las", "--set", "radius=3", "--set", "company=1"})
          .exitCode,
      0);
  EXPECT_EQ(
      run({"run", "Underwater ground", "one.las", "-o", "two.las", "--set", "water=lake-water.ply"}).exitCode,
      0);
  EXPECT_EQ(
      run({"run", "Survey lake", "lake.las", "-o", "both.las", "--set", "water=lake-water.ply"}).exitCode, 0);
  EXPECT_EQ(readFile(home.path("both.las")), readFile(home.path("two.las")));
  EXPECT_NE(readFile(home.path("both.las")), readFile(home.path("lake.las")));
}

TEST_F(Collection, LongClassNamesOfNestedQuindlesAreKnownAgain) {
  ASSERT_EQ(run({"sample", "a.las", "--points", "1000"}).exitCode, 0);
  const std::string head = "{ description \"d\" param cloud : Grid = active \"c\" on run { ";
  writeOwn("inner.quindle",
           "quindle \"Inner\" " + head +
               "select class(\"Ground\") classify into \"Ground under the trees\" as 28 } }");
  writeOwn("outer.quindle", "quindle \"Outer\" " + head + "run \"Inner\"(cloud: cloud) } }");
  const CommandResult once = run({"run", "Outer", "a.las", "-o", "b.las"});
  EXPECT_EQ(once.exitCode, 0);
  EXPECT_THAT(
      once.err,
      HasSubstr("b.las: note: The class \"Ground under the trees\" is stored as \"Ground under th\": a LAS "
                "file holds 15 bytes of a name. Quindles find it by its whole name all the same.\n"));
  const CommandResult again = run({"run", "Outer", "b.las", "-o", "c.las"});
  EXPECT_EQ(again.exitCode, 0) << again.err;
  EXPECT_EQ(readFile(home.path("b.las")), readFile(home.path("c.las")));
}

TEST_F(Collection, RunsThatCannotEndAreRefused) {
  ASSERT_EQ(run({"sample", "a.las", "--points", "100"}).exitCode, 0);
  const auto runs = [&](const std::string& name, const std::string& step) {
    return "quindle \"" + name + "\" { description \"d\" on run { " + step + " } }";
  };
  writeOwn("a.quindle", runs("A", "run \"B\"()"));
  writeOwn("b.quindle", runs("B", "run \"A\"()"));
  const auto refused = [&](const std::string& name) {
    const CommandResult result = run({"preview", name, "a.las"});
    EXPECT_EQ(result.exitCode, 1);
    return result.err;
  };
  EXPECT_THAT(refused("A"), HasSubstr("\"A\" runs \"B\" runs \"A\" again, which would never stop."));
  for (int i = 0; i < 18; ++i)
    writeOwn("d" + std::to_string(i) + ".quindle",
             runs("D" + std::to_string(i),
                  i == 0 ? "report \"deep\"" : "run \"D" + std::to_string(i - 1) + "\"()"));
  EXPECT_THAT(printed({"preview", "D16", "a.las"}), HasSubstr("  deep\n"));
  EXPECT_THAT(refused("D17"), HasSubstr("more than 16 deep, starting at \"D17\""));

  // What lies beside the file is found too, but the collection comes first.
  std::filesystem::create_directory(home.path("beside"));
  home.write("beside/start.quindle", runs("Start", "run \"D0\"() run \"Near\"()"));
  home.write("beside/near.quindle", runs("Near", "report \"near\""));
  home.write("beside/d0.quindle", runs("D0", "report \"not this one\""));
  EXPECT_EQ(printed({"preview", "beside/start.quindle", "a.las"}), "a.las\n  deep\n  near\n");
  EXPECT_THAT(printed({"explain", "beside/start.quindle"}), Not(HasSubstr("cannot be found")));
}

TEST_F(Collection, TroubleInADirectoryIsNamedFileByFile) {
  std::filesystem::remove(home.path("share/quindles"));
  EXPECT_EQ(run({"list"}).err,
            "note: There is no Quindle in " + home.path(own).substr(0, home.path(own).size() - 1) + ", " +
                home.path("share/quindles") + ". Keep one there with \"quindle save FILE\".\n");
  const std::string twin = "quindle \"Twin\" { description \"d\" on run { report \"1\" } }";
  const std::string brackets(50'000'000, '(');
  writeOwn("a.quindle", "not one");
  writeOwn("b.quindle", "");
  writeOwn("c.quindle", brackets);
  writeOwn("d.quindle", "quindle \"Deep\" { on run { select " + brackets.substr(0, 5'000'000));
  writeOwn("e.quindle", "quindle \"\xff\xfe\x1b[2J\" { description \"\xc3\" on run { report \"\x80\" } }");
  writeOwn("f.quindle", "quindle \"Windows\" {\r\n description \"d\"\r\n on run { report \"x\" }\r\n}\r\n");
  writeOwn("g.quindle", twin);
  writeOwn("h.quindle", twin);
  writeOwn("i.quindle", "");
  std::filesystem::resize_file(home.path(own + "i.quindle"), std::uintmax_t{300} << 20U); // more than is read
  std::filesystem::create_directory(home.path(own + "x.quindle"));
  std::filesystem::create_symlink("nowhere", home.path(own + "y.quindle"));
  ASSERT_EQ(::mkfifo(home.path(own + "z.quindle").c_str(), 0600), 0);

  const CommandResult listed = run({"list", "--json"});
  EXPECT_EQ(listed.exitCode, 0);
  const nlohmann::json json = nlohmann::json::parse(listed.out, nullptr, false);
  Words lines;
  for (const nlohmann::json& one : json["quindles"])
    lines.push_back(one["name"].get<std::string>() + ": " + one["error"].get<std::string>() +
                    (one["first"].get<bool>() ? "" : "second"));
  const std::string notQuindle =
      "line 1: A Quindle file starts with the word \"quindle\", but this one starts with ";
  EXPECT_THAT(lines, ElementsAre("a: " + notQuindle + "\"not\".", "b: " + notQuindle + "the end of the file.",
                                 "c: " + notQuindle + "\"(\".",
                                 "Deep: line 1: Expected a value but found the end of the file.",
                                 "\xef\xbf\xbd\xef\xbf\xbd\x1b[2J: ", "Windows: ", "Twin: ", "Twin: second",
                                 "i: cannot be read"));
  const CommandResult table = run({"list"});
  EXPECT_THAT(table.out, Not(HasSubstr("\x1b")));
  EXPECT_THAT(table.out, HasSubstr("hidden, " + home.path(own + "h.quindle") + ": " +
                                   home.path(own + "g.quindle") + " has the same name and comes first\n"));
  EXPECT_EQ(table.err, home.path(own + "x.quindle") +
                           ": note: This is a directory, not a Quindle. Give it another name.\n" +
                           home.path(own + "y.quindle") +
                           ": note: This link leads nowhere. Remove it or put back what it leads to.\n" +
                           home.path(own + "z.quindle") +
                           ": note: This is no file that holds a text. Remove it or give it another name.\n");
}

} // namespace
