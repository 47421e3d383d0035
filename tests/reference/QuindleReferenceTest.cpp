#include "quindle/reference/QuindleReference.h"

#include "quindle/core/QuindleParamTypes.h"
#include "quindle/plan/diagnoseQuindle.h"

#include <gmock/gmock.h>

#include <regex>

namespace Zamt::Testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(QuindleReference, SectionsAreFoundByTheirExactKey) {
  EXPECT_EQ(quindleReferenceSectionKeys().front(), "what");
  for (const QuindleReferenceSection& section : quindleLanguageReference())
    EXPECT_EQ(findQuindleReferenceSection(section.key), &section);
  for (const char* wrong : {"", "Steps", "step", "steps "})
    EXPECT_EQ(findQuindleReferenceSection(wrong), nullptr) << wrong;
}

TEST(QuindleReference, WholeTextIsTheSectionsUnderTheirHeadings) {
  const std::string text = quindleLanguageReferenceText();
  EXPECT_THAT(text, StartsWith("== What a Quindle is  (what)\n\nA Quindle is one text file holding"));
  EXPECT_THAT(text, HasSubstr("the text is the Quindle.\n\n== The shape of the file  (file)\n\nEverything"));
  EXPECT_EQ(text.find("\n\n\n"), std::string::npos);
  EXPECT_THAT(text, HasSubstr("steps after it act on.\n  \n  classify into")); // entries stand apart
}

using Fillings = std::vector<std::pair<std::string, std::string>>;

std::string replaced(std::string text, const Fillings& fillings) {
  for (const auto& [place, thing] : fillings)
    for (std::size_t at = 0; (at = text.find(place, at)) != std::string::npos; at += thing.size())
      text.replace(at, place.size(), thing);
  return text;
}

/// A form of the manual with each place filled in that it leaves open: a word of its own where nothing else
/// is said.
std::string filledIn(const std::string& form) {
  const std::string some =
      replaced(form, {{"<condition> [and|or|not <condition>] ...", "class(\"Ground\") and not Amplitude > 3"},
                      {"[as <number>] [color (<r>, <g>, <b>)]", "as 3 color (1, 0.5, 0)"},
                      {"<min> .. <max>", "0 .. 5"},
                      {", ...)", ")"},
                      {"{ ... }", "{ <step> }"},
                      {"<step>", "report \"so\""},
                      {"true | false", "false"},
                      {"true|false", "false"}});
  const std::regex place("<[A-Za-z][^<>]*>");
  std::string filled;
  auto rest = some.begin();
  int words = 0;
  for (std::sregex_iterator found(some.begin(), some.end(), place), end; found != end; ++found) {
    filled.append(rest, (*found)[0].first);
    filled += "word" + std::to_string(++words);
    rest = (*found)[0].second;
  }
  return filled.append(rest, some.end());
}

/// The sample lines of a text, a list for each run of them, without the two blanks in front, and without
/// explanations on lines of their own, which stand further in.
std::vector<std::vector<std::string>> sampleBlocks(const std::string& text) {
  std::vector<std::vector<std::string>> blocks;
  bool inBlock = false;
  for (std::size_t from = 0, end = 0; from < text.size(); from = end + 1) {
    end = text.find('\n', from);
    const std::string line = text.substr(from, end - from);
    const bool isSample = line.starts_with("  ");
    if (isSample && !inBlock) blocks.emplace_back();
    inBlock = isSample;
    if (isSample && line.size() > 2 && !line.starts_with("          "))
      blocks.back().push_back(line.substr(2));
  }
  return blocks;
}

void expectUsable(const std::string& text) {
  SCOPED_TRACE(text);
  QuindleDocument doc;
  Diag findings;
  EXPECT_TRUE(diagnoseQuindle(text, "test.quindle", doc, findings)) << findings.format();
}

constexpr std::size_t whole = std::string::npos;

struct Samples {
  const char* section;
  std::size_t block;  ///< Which run of sample lines.
  std::size_t count;  ///< How many there are.
  std::size_t width;  ///< Of what can be written, in front of what is said of it.
  const char* before; ///< What it stands in, inside a Quindle.
  const char* after;
  Fillings fillings = {};
};

const Samples allSamples[] = {
    {"settings", 0, 8, 28, "", ""},
    {"params", 0, 1, whole, "", ""},
    {"params", 1, 10, 8, "param p : ", ""},
    {"params", 2, 3, 8, "param p : Region", ""},
    {"triggers", 0, 2, 28, "", ""},
    {"steps", 0, 11, whole, "on run {", "}"},
    {"conditions", 0, 2, whole, "on run {", "}"},
    {"conditions", 1, 9, whole, "on run { select ", "\n}", {{"[", ""}, {"]", ""}, {"  -  ", " #"}}},
    {"values", 0, 5, 32, "param p : Text = (", ")", {{"    ", ", "}}},
    {"reports", 0, 4, 15, "on run { report \"", "\" }"},
    {"comments", 0, 3, whole, "on run {\n", "\n}"},
    {"limits", 0, 2, whole, "on run {", "}", {{"on tile.enter, on load", "} on tile.enter { } on load {"}}},
};

TEST(QuindleReference, EverySampleLineIsGoodToWrite) {
  for (const Samples& samples : allSamples) {
    SCOPED_TRACE(samples.section);
    const auto blocks = sampleBlocks(findQuindleReferenceSection(samples.section)->body);
    ASSERT_LT(samples.block, blocks.size());
    EXPECT_EQ(blocks[samples.block].size(), samples.count);
    for (const std::string& line : blocks[samples.block]) {
      std::string form = line.substr(0, samples.width);
      form.erase(form.find_last_not_of(' ') + 1);
      form = replaced(filledIn(form), samples.fillings);
      expectUsable("quindle \"T\" { " + (samples.before + form) + samples.after + " }");
    }
  }
}

TEST(QuindleReference, TypesAreTheOnesThatMeanSomething) {
  const auto lines = sampleBlocks(findQuindleReferenceSection("params")->body)[1];
  ASSERT_EQ(lines.size(), quindleParamTypes.size());
  for (std::size_t i = 0; i < lines.size(); ++i)
    EXPECT_THAT(lines[i], StartsWith(std::string(quindleParamTypes[i].word) + ' '));
}

TEST(QuindleReference, FilesAsShownAreGoodToWrite) {
  const std::string file = findQuindleReferenceSection("file")->body;
  const std::string summary = quindleGrammarSummary();
  EXPECT_EQ(summary.size(), 1752U);
  for (const std::string* text : {&file, &summary}) {
    const std::size_t from = text->find("  quindle \"");
    expectUsable(filledIn(text->substr(from, text->find("\n  }\n", from) + 5 - from)));
  }
}

} // namespace
} // namespace Zamt::Testing
