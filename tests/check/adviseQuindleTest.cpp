#include "quindle/check/adviseQuindle.h"

#include "quindle/Quindle.h"
#include "tests/support/RecordingScene.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/parsed.h"
#include "tests/support/smallStack.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <set>

namespace Zamt {
namespace {

using Testing::onSmallStack;
using Testing::parsed;
using Testing::parsedRun;
using Testing::repeated;

const std::string usualHead = "param cloud : Grid = active \"c\" param margin : Number = 3 \"m\" "
                              "param low : Number = 0 \"l\" param mode : Text = \"fast\" \"m\" "
                              "on load { report \"{cloud}\" }";

std::string adviceOn(const QuindleDocument& doc) {
  Diag diag;
  adviseQuindle(doc, diag);
  EXPECT_EQ(diag.errorCount, 0U);
  return diag.format();
}

std::string adviceOn(const std::string& steps, const std::string& head = usualHead) {
  return adviceOn(parsedRun(steps, head));
}

/// An entry as it is printed; the steps begin on line 2.
std::string warning(int line, int column, const std::string& message) {
  return "test.quindle:" + std::to_string(line) + ":" + std::to_string(column) + ": warning: " + message;
}

std::string note(int line, int column, const std::string& message) {
  return "\ntest.quindle:" + std::to_string(line) + ":" + std::to_string(column) + ": note: " + message;
}

/// Steps that show a piece of advice, all of what is said of them, and steps much like them that are fine.
struct Case {
  std::string shown;
  std::string advice;
  std::vector<std::string> silent;
};

void expectAdvice(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    EXPECT_EQ(adviceOn(c.shown), c.advice) << c.shown;
    for (const std::string& twin : c.silent) EXPECT_EQ(adviceOn(twin), "") << twin;
  }
}

TEST(AdviseQuindle, TellsOfSelectsThatNarrowWhatWasNotMeantToBe) {
  const auto narrows = [](int line, int column, int other) {
    return warning(line, column,
                   "The \"select\" on line " + std::to_string(line) +
                       " narrows what the \"select\" on line " + std::to_string(other) + " kept");
  };
  const std::string classified =
      ": a \"classify\" does not end a selection, so this one starts from those points.";
  const std::string branched =
      ", whatever the \"if\" around that one decides: all selects of a Quindle narrow one selection.";
  const auto wayOut = [](int line, int column) {
    return note(line, column,
                "Move the steps of the one selection to a Quindle of their own and call that with \"run\".");
  };
  expectAdvice({
      {"select class(\"Water\")\nclassify into \"A\"\nselect class(\"Snow\")\nselect Z > 3\nclassify into "
       "\"B\"",
       narrows(4, 1, 2) + classified + wayOut(4, 1),
       {"select class(\"Water\")\nselect Z > 3\nclassify into \"A\"",
        "select class(\"Water, Snow\") and Z > 3\nclassify into \"A\"\nselect Z > 5 and Z < 9 and "
        "class(\"Snow\")\nclassify into \"B\"",
        "select not Z > 3 and (Z > 1 or Z > 2)\nclassify into \"A\"\nselect Z > 0 and (Z > 1 or Z > 2) and "
        "not Z > "
        "3\nclassify into \"B\"",
        "select class(\"Water\") classify into \"A\" report \"\" } on key \"U\" { select class(\"Snow\") "
        "classify into \"B\""}},
      {"select Z > 3\nclassify into \"A\"\nselect Z > 2\nclassify into \"B\"",
       narrows(4, 1, 2) + classified + wayOut(4, 1),
       {}},
      {"if low { select Z > 3\nclassify into \"A\" } else {\nselect Z < 1\nclassify into \"B\" }",
       narrows(4, 1, 2) + branched + wayOut(4, 1),
       {"select Z > 3\nif low { classify into \"A\" } else { select class(\"Snow\") classify into \"B\" }"}},
      {"if low { select Z > 3 }\nselect class(\"Snow\")\nclassify into \"A\"",
       narrows(3, 1, 2) + branched + wayOut(3, 1),
       {}},
      {"select class(\"Snow\")\nif low { select Z > 3 }\nclassify into \"A\"",
       warning(4, 1, "The \"classify\" on line 4 changes only what the \"select\" on line 3 kept") +
           branched + wayOut(4, 1),
       {"select class(\"Snow\")\nif low { select Z > 3 classify into \"A\" }"}},
  });
}

TEST(AdviseQuindle, TellsOfStepsThatActWhateverAnIfDecides) {
  const auto acts = [](int line, int column, const std::string& step, int other) {
    return warning(
        line, column,
        "The \"" + step + "\" on line " + std::to_string(line) + " acts whatever the \"if\" on line " +
            std::to_string(other) +
            " decides. Move it in front of the \"if\", or move the steps of the block to a Quindle "
            "of their own and call that with \"run\".");
  };
  expectAdvice({
      {"if low {\ncreate a = \"A/B\"\nif margin { } else { set a.b = 1 } }\nif low {\nconnect a.b <- c }",
       acts(3, 1, "create", 2) + '\n' + acts(4, 22, "set", 4) + '\n' + acts(6, 1, "connect", 5),
       {"create a = \"A/B\" set a.b = 1 connect a.b <- c if low { call a.b }"}},
      {"connect a.b <- cloud.x",
       warning(2, 1,
               "\"connect\" takes \"cloud\" for the name of an object of the scene, not for the parameter of "
               "that "
               "name. Write the object's own name, as it is in the scene."),
       {"connect a.cloud <- Cloud"}},
  });
}

TEST(AdviseQuindle, TellsOfRangesThatHoldMoreOrLessThanTheyLook) {
  const auto withEnd = [](int column, const std::string& written, int end, const std::string& meant) {
    return warning(2, column,
                   written + " holds for " + std::to_string(end) +
                       " too, since the range that a comparison sets includes its end. Write " + meant +
                       " if that is not meant.");
  };
  expectAdvice({
      {"select ReturnNumber > 1 and not Classification < 2 and Withheld > 1",
       withEnd(8, "ReturnNumber > 1", 1, "ReturnNumber >= 2") + '\n' +
           withEnd(33, "Classification < 2", 2, "Classification <= 1") + '\n' +
           withEnd(56, "Withheld > 1", 1, "Withheld == 1"),
       {"select ReturnNumber >= 2 and UserData > margin and PointSourceId > 1.5 and Intensity > 100 and "
        "Amplitude "
        "< 5 and neighbours(1) < 5"}},
      {"select field(\"Intensity\", 100) and field(\"Scan Angle\", maximum: -3)",
       warning(
           2, 8,
           "field(\"Intensity\", 100) holds for no point: its minimum is 100, and its maximum, where none is "
           "written, 1. Write Intensity >= 100.") +
           '\n' +
           warning(2, 36,
                   "field(\"Scan Angle\", maximum: -3) holds for no point: its maximum is -3, and its "
                   "minimum, where "
                   "none is written, 0. Write field(\"Scan Angle\", -1e300, -3)."),
       {"select field(\"Intensity\", 100, 200) and field(\"Planarity\", 0.5) and field(\"Withheld\", 1)"}},
      {"select field(\"Intensity\", 0.5) and field(\"ScanAngle\", maximum: 5)",
       warning(2, 8,
               "field(\"Intensity\", 0.5) keeps nothing above 1, which is the maximum where none is written. "
               "Write "
               "Intensity >= 0.5 if there should be none.") +
           '\n' +
           warning(
               2, 36,
               "field(\"ScanAngle\", maximum: 5) keeps nothing below 0, which is the minimum where none is "
               "written. Write ScanAngle <= 5 if there should be none."),
       {}},
      {"select neighbours(1, 5) and neighbours(2, margin) and neighbours(1) < 0",
       warning(2, 8,
               "neighbours(1, 5) holds for no point: its minimum is 5, and its maximum, where none is "
               "written, 3. "
               "Write neighbours(1) >= 5.") +
           '\n' +
           warning(2, 29,
                   "neighbours(2, margin) keeps nothing above 3, which is the maximum where none is written. "
                   "Write "
                   "neighbours(2) >= margin if there should be none.") +
           '\n' +
           warning(2, 55,
                   "neighbours(1) < 0 holds for no point, since no count is below 0. Write neighbours(1) <= "
                   "0 for "
                   "points that stand alone."),
       {"select neighbours(1, 5, 20) and neighbours(2) and neighbours(3, low) and neighbours(4) < 1"}},
      {"select field(\"A\", 5, margin) or Z > 3 and Z < 1",
       warning(2, 8,
               "field(\"A\", 5, margin) holds for no point: its minimum, 5, is above its maximum, 3. Write "
               "the smaller "
               "one first.") +
           "",
       {"select field(\"A\", margin, 5) and (Z > 3 or Z < 1)"}},
      {"select Z > 3 and Z < 1",
       warning(
           2, 18,
           "Z < 1 contradicts another condition of this \"select\", so no point can meet both. Write \"or\" "
           "between them, or other limits."),
       {"select Z > 3 and not Z < 1 and X < 1"}},
  });
}

TEST(AdviseQuindle, TellsOfNamesOfClassesThatAreNotWhatTheyLook) {
  const auto near = [](int line, int column, const std::string& written, const std::string& meant) {
    return warning(line, column,
                   "\"" + written + "\" is not the standard class \"" + meant +
                       "\": names of classes are taken exactly as written. Write \"" + meant +
                       "\" if that is meant.");
  };
  expectAdvice({
      {"select class(\"ground, Low-Vegetation, lowpoint\")\nclassify into \"Bilding\"",
       near(2, 14, "ground", "Ground") + '\n' + near(2, 14, "Low-Vegetation", "Low Vegetation") + '\n' +
           near(2, 14, "lowpoint", "Low Point") + '\n' + near(3, 15, "Bilding", "Building"),
       {"select class(\"Ground, Low Point, Overlap, Rain, Ground1, Roof 1, Roof 2\")\nclassify into \"Roof "
        "3\""}},
      {"select Z > 1 classify into \"7\"\nclassify into \"40\" as 41",
       warning(2, 28,
               "This makes a class that is called \"7\", whatever its number; it is not class 7. Write \"Low "
               "Noise\" if "
               "that is meant.") +
           '\n' +
           warning(3, 15,
                   "This makes a class that is called \"40\", whatever its number; it is not class 40. Write "
                   "its name, "
                   "or a name of your own and \"as 40\" behind it if that is meant."),
       {"select class(\"7\") classify into \"A\" as 40 classify into \"41\" as 41"}},
      {"select Z > 1\nclassify into \"A\" as 40\nclassify into \"A\" as 41\nclassify into \"B\" as "
       "40\nclassify into "
       "\"A\"\nclassify into \"Ground\" as 3 classify into \"Ground\" as 2",
       warning(4, 1,
               "The class \"A\" is number 40 on line 3 and number 41 here. Write \"as 40\" in both places.") +
           '\n' +
           warning(5, 1,
                   "Class 40 is called \"A\" on line 3 and \"B\" here. Write the same name in both places, "
                   "or another "
                   "number.") +
           '\n' +
           warning(
               6, 1,
               "The class \"A\" is number 40 on line 3 and is left without one here. Write \"as 40\" in both "
               "places.") +
           '\n' +
           warning(7, 29,
                   "The class \"Ground\" is number 3 on line 7 and number 2 here. Write \"as 3\" in both "
                   "places."),
       {"select Z > 1 classify into \"A\" as 40 classify into \"A\" as 40 classify into \"Ground\" classify "
        "into "
        "\"Ground\" as 2"}},
  });
  EXPECT_EQ(adviceOn("select class(from) and class(kinds)",
                     "param from : Class = \"snow\" \"f\"\nparam kinds : Text = \"Rail, water\" \"k\""),
            "test.quindle:1: warning: \"snow\" is not the standard class \"Snow\": names of classes are "
            "taken exactly "
            "as written. Write \"Snow\" if that is meant.\n" +
                near(3, 30, "water", "Water"));
}

TEST(AdviseQuindle, TellsOfReportsThatCannotBeFilledIn) {
  const auto uncounted = [](int line, int column, const std::string& word) {
    return warning(line, column,
                   "Nothing has counted any points where this line is reached, so \"{" + word +
                       "}\" is left unfilled. Write the report behind the \"classify\" that it tells of.");
  };
  const auto taken = [](int line, int column, int call, int classify) {
    return warning(
        line, column,
        "The \"call\" on line " + std::to_string(call) + " stands behind the \"classify\" on line " +
            std::to_string(classify) +
            ", and \"{selected}\" is read from what was acted on last. Write the report before the "
            "\"call\".");
  };
  const std::string first = "select Z > 1\n";
  expectAdvice({
      {first + "report \"{selected} of {total}\" classify into \"A\"",
       uncounted(3, 1, "selected") + '\n' + uncounted(3, 1, "total"),
       {first + "classify into \"A\" report \"{selected} of {total}\"", "call a.b report \"{selected}\"",
        "let selected = 1 report \"{selected}\"",
        first + "if low { classify into \"A\" } report \"{selected}\""}},
      {first + "if low { classify into \"A\" } else {\nreport \"{selected}\" }",
       uncounted(4, 1, "selected"),
       {}},
      {first + "run \"B\"()\nreport \"{selected}\"", uncounted(4, 1, "selected"), {}},
      {first + "classify into \"A\"\nif low { call a.b }\nreport \"{selected}\"",
       taken(5, 1, 4, 3),
       {first + "classify into \"A\" report \"{selected}\" call a.b",
        first + "classify into \"A\" call a.b classify into \"B\" report \"{selected}\"",
        first + "if low { classify into \"A\" } else { call a.b } report \"{selected}\""}},
      {"report \"{mode} {later} {}\"\nlet later = 1",
       warning(2, 1, "The report mentions \"{later}\", which is not a parameter of this Quindle.") +
           note(2, 1,
                "Declare it with \"param\", set it with a \"let\" before this line, or write {selected} or "
                "{total} for "
                "a count.") +
           '\n' + warning(2, 1, "The report mentions \"{}\", which is not a parameter of this Quindle.") +
           note(2, 1,
                "Declare it with \"param\", set it with a \"let\" before this line, or write {selected} or "
                "{total} for "
                "a count."),
       {"let later = 1\nreport \"{mode} {later} {\""}},
  });
}

TEST(AdviseQuindle, TellsOfWordsThatNameAnotherFieldOrNone) {
  const auto otherCase = [](int column, const std::string& written, const std::string& known,
                            const std::string& wording) {
    return warning(2, column,
                   "The usual field is called \"" + known + "\", and \"" + written +
                       "\" is another one: names are taken exactly as written. Write " + wording +
                       " if the usual one is meant.");
  };
  const auto coordinate = [](int column, const std::string& name, const std::string& known,
                             const std::string& wording) {
    return warning(
        2, column,
        "\"" + name +
            "\" is a coordinate in the text of an \"expr\" only; anywhere else it is a field, and the "
            "field is called \"" +
            known + "\". Write " + wording + ".");
  };
  expectAdvice({
      {"select z > 3 and y < margin and field(\"x\", 1, 2)",
       coordinate(8, "z", "Z", "Z > 3 or expr(\"z > 3\")") + '\n' + coordinate(18, "y", "Y", "Y < margin") +
           '\n' + coordinate(39, "x", "X", "\"X\""),
       {"select Z > 3 and Y < margin and field(\"X\", 1, 2) and expr(\"x + y > z\")"}},
      {"select intensity > 3 and class(\"Ground\", \"classification\") and vertical(field: \"Normalvector\")",
       otherCase(8, "intensity", "Intensity", "Intensity > 3") + '\n' +
           otherCase(42, "classification", "Classification", "\"Classification\"") + '\n' +
           otherCase(80, "Normalvector", "NormalVector", "\"NormalVector\""),
       {"select Intensity > 3 and intensity2 > 3 and class(\"Ground\", \"Classification\") and vertical()"}},
      {"select margin > 3",
       warning(2, 8,
               "\"margin\" on the left of a comparison is a field of the data, not the parameter of that "
               "name. Write a "
               "field there, as in \"Intensity > margin\", or ask about the parameter with \"if margin > 3 { "
               "... }\"."),
       {"select Margin > 3 if margin > 3 { }"}},
  });
}

TEST(AdviseQuindle, ReadsTheTextOfAnExpr) {
  const auto text = [](int column, const std::string& what) {
    return warning(2, column, "The text of this \"expr\" " + what);
  };
  const auto sign = [&](const std::string& written, const std::string& word) {
    return text(13, "holds \"" + written + "\", which means nothing there. Write \"" + word + "\".");
  };
  expectAdvice({
      {"select expr(\"A > 1 && B < 2 || !(C = 3) and D => 4\")",
       sign("&&", "and") + '\n' + sign("||", "or") + '\n' + sign("!", "not") + '\n' + sign("=", "==") + '\n' +
           sign("=>", ">="),
       {"select expr(\"A > 1 and B <= 2 or not (C == 3) and D != 4 and 'A&B!' > 2\")"}},
      {"select expr(\"(A[0 > 1\") and expr(\"A) > 1\") and expr(\"'A > 1\")",
       text(13, "opens a \"(\" that is never closed. Write \")\" behind what belongs into it.") + '\n' +
           text(34, "closes a \"(\" that was never opened. Take away the \")\", or write \"(\" before what "
                    "belongs into "
                    "it.") +
           '\n' + text(53, "opens a name with ' that is never closed. Write ' behind the name."),
       {"select expr(\"(A[0] + 2) * -3e-2 > abs(B ^ 2) % 5\")"}},
      {"select expr(\"A > margin and intensity > 1\")",
       text(13, "names \"margin\", which is a field there: parameters are not put into a text. Compare "
                "outside, as in "
                "\"Intensity >= margin\", or write the number.") +
           '\n' +
           text(
               13,
               "names \"intensity\", and the usual field is called \"Intensity\": names are taken exactly as "
               "written. Write Intensity if the usual one is meant."),
       {"select expr(\"A > margins and Intensity > 1\")"}},
  });
  EXPECT_EQ(adviceOn("select expr(test) and expr(\"z > 1\")",
                     "param test : Text = \"a & b\" \"t\" param z : Number = 1 \"z\""),
            sign("&", "and"));
}

TEST(AdviseQuindle, TellsWhatAnIfMakesOfTextsAndLiterals) {
  const auto isText = [](int line, int column, const std::string& what, const std::string& wording) {
    return warning(
        line, column,
        what + " is a text, and every text that is not empty is true, \"false\" and \"no\" too. Write " +
            wording);
  };
  const auto always = [](const std::string& value, const std::string& lost) {
    return warning(2, 1,
                   "This \"if\" is always " + value + ", so the steps in its " + lost +
                       " are never reached. Write a parameter into the condition, or take those steps away.");
  };
  expectAdvice({
      {"if mode and not \"false\" { }\nlet word = mode\nif word { }",
       isText(2, 4, "\"mode\"", "a comparison, as in mode == \"yes\".") + '\n' +
           isText(2, 17, "\"false\"", "true, false or a comparison.") + '\n' +
           isText(4, 4, "\"word\"", "a comparison, as in word == \"yes\"."),
       {"if mode == \"fast\" and margin and not true { }\nlet word = mode == \"fast\"\nif word { }"}},
      {"if false and margin { report \"\" }", always("false", "block"), {"if low and true { report \"\" }"}},
      {"if 2 > 1 { } else { report \"\" }",
       always("true", "\"else\""),
       {"if 2 > low { } else { report \"\" }", "if 2 > 1 { report \"\" }"}},
  });
}

TEST(AdviseQuindle, SaysWhichParametersAreUsedAllTheSame) {
  const std::string head = "param cloud : Grid = active \"c\" param spare : Grid = active \"s\"";
  EXPECT_EQ(adviceOn("if 1 > 0 { select Z > 1\nclassify into \"A\" }\nreport \"{spare}\"", head),
            "test.quindle:1: note: The parameter \"cloud\" is used all the same: the \"classify\" on line 3 "
            "finds it "
            "by its type.");
  EXPECT_EQ(adviceOn("run \"Other\"(spare: spare)", head + " param n : Number = 1 \"n\""),
            "test.quindle:1: note: The parameter \"cloud\" may be used all the same: the \"run\" on line 2 "
            "hands its "
            "value on if the other Quindle has a parameter of that name which the application supplies.");
  EXPECT_EQ(adviceOn("select Z > 1 classify into \"A\" report \"{spare}\"", head), "");
  EXPECT_EQ(adviceOn("report \"\"", head), "");
}

/// What a run or a compilation says in a scene that refuses nothing.
std::vector<std::string> refusalsOf(const QuindleDocument& doc) {
  Testing::RecordingScene scene;
  std::string labels;
  std::int32_t number = 0;
  Diag diag;
  planClassLabels("", "Ground", 2, {}, {}, labels, number, diag);
  diag.clear();
  scene.presets["Edit/MaskedLabels"]["labels"] = labels;
  QuindleRuntime runtime(scene);
  runtime.resolver = [](const std::string&, QuindleDocument& other, std::string&) {
    other = parsed("quindle \"Other\" { param a : Number on run { } }");
    return true;
  };
  QuindleRunResult result;
  EXPECT_FALSE(runtime.run(doc, {{"cloud", "Cloud"}}, false, result, diag));
  std::vector<std::string> messages;
  for (const Diag::Entry& entry : diag.entries)
    if (entry.severity == Diag::Severity::Error) messages.push_back(entry.message);
  return messages;
}

std::vector<std::string> adviceMessages(const QuindleDocument& doc) {
  Diag diag;
  adviseQuindle(doc, diag);
  std::vector<std::string> messages;
  for (const Diag::Entry& entry : diag.entries) messages.push_back(entry.message);
  return messages;
}

TEST(AdviseQuindle, SaysWhatIsRefusedInAnySceneInTheSameWords) {
  const char* const refused[] = {
      "for each a in b { }",
      "set a.b = margin set a = 1 connect a <- b call a",
      "select Intensity > limit and class(Ground) and neighbours(class(\"A\")) <= 3 and inside(tile)",
      "let limit = 3 select Intensity > limit",
      "select frob(1) and Intensity != 3 and below(margin: 1) or Intensity",
      "select Z > 1 classify into margin classify into \"\"",
      "select class(\"5, Ground\") classify into \"Ground\"",
      "select class(\"2\") classify into \"Ground\" as 2",
      "if class(\"Ground\") { report \"\" }",
      "let a = b",
      "run \"Other\"(a: b)",
  };
  for (const char* const steps : refused) {
    const QuindleDocument doc = parsedRun(steps, usualHead);
    const std::vector<std::string> advice = adviceMessages(doc);
    for (const std::string& message : refusalsOf(doc))
      EXPECT_THAT(advice, testing::Contains(message)) << steps;
  }
  for (const char* const text : {"quindle \"a\" { on load { report \"\" } }",
                                 "quindle \"a\" { on run { select Z > 1 classify into \"A\" } }"}) {
    const QuindleDocument doc = parsed(text);
    EXPECT_THAT(adviceMessages(doc), testing::IsSupersetOf(refusalsOf(doc))) << text;
  }
}

TEST(AdviseQuindle, RepeatsNothingThatWasSaid) {
  const QuindleDocument doc =
      parsedRun("select frob(1)\nclassify into \"A\" as 300\nrun \"Test\"()", usualHead);
  Diag diag;
  checkQuindle(doc, diag);
  planQuindle(doc, diag);
  adviseQuindle(doc, diag);
  std::multiset<std::string> said;
  for (const Diag::Entry& entry : diag.entries) said.insert(std::to_string(entry.line) + ' ' + entry.message);
  for (const std::string& saying : said) EXPECT_EQ(said.count(saying), 1U) << saying;
}

TEST(AdviseQuindle, TakesLongDocumentsInLinearTime) {
  constexpr std::size_t many = 100'000;
  constexpr std::size_t levels = 300;
  const std::string around = "if low {\nselect Z > 1\n";
  const std::string documents[] = {
      repeated(around, many) + repeated("}", many),
      repeated("select A > 1 classify into \"A\"\n", many),
      "select expr(\"" + repeated("(", many) + "\") report \"" + repeated("{a}", many) + "\"",
      repeated("if low {\n" + repeated("report \"\"\n", levels), levels) + repeated("}", levels),
  };
  onSmallStack([&] {
    for (const std::string& steps : documents) {
      Diag diag;
      adviseQuindle(parsedRun(steps, usualHead), diag);
      EXPECT_LE(diag.entries.size(), 2 * many + 2);
    }
  });
}

/// Quindles in the blocks of a document, with the name behind the "```quindle" of each.
std::vector<std::pair<std::string, std::string>> quindlesIn(const std::string& document) {
  std::vector<std::pair<std::string, std::string>> blocks;
  const std::string fence = "```quindle ";
  for (std::size_t at = 0; (at = document.find(fence, at)) != std::string::npos;) {
    at += fence.size();
    const std::size_t start = document.find('\n', at) + 1;
    blocks.emplace_back(document.substr(at, start - 1 - at),
                        document.substr(start, document.find("```", start) - start));
  }
  return blocks;
}

TEST(AdviseQuindle, FindsNothingInTheExamplesAndTheTutorial) {
  const std::string root = QUINDLE_SOURCE_DIR;
  std::vector<std::pair<std::string, std::string>> quindles =
      quindlesIn(Testing::readFile(root + "/docs/tutorial.md"));
  EXPECT_GE(quindles.size(), 10U);
  for (const char* const folder : {"/examples", "/examples/embedding/quindles"})
    for (const auto& entry : std::filesystem::directory_iterator(root + folder))
      if (entry.path().extension() == ".quindle")
        quindles.emplace_back(entry.path().filename().string(), Testing::readFile(entry.path()));
  for (const auto& [name, text] : quindles) {
    if (name == "broken.quindle") continue; // shows faults on purpose
    EXPECT_EQ(adviceOn(parsed(text, name)), "") << name;
  }
}

} // namespace
} // namespace Zamt
