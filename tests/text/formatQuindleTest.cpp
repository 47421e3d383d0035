#include "quindle/text/formatQuindle.h"

#include "tests/support/goldenCases.h"
#include "tests/support/smallStack.h"
#include "tests/text/randomText.h"

namespace Zamt {
namespace {

struct Formatting {
  QuindleDocument doc;
  std::string text = "left over";
  std::vector<QuindleStrayComment> strays{{1, 1}};
  Diag diag;
  bool good;

  explicit Formatting(const std::string& source)
      : good(formatQuindle(source, "f", doc, text, strays, diag)) {}
};

/// The formatted text, the line of each comment that it moves or drops, and what is said.
std::string outcomeOf(const std::string& source) {
  const Formatting result(source);
  EXPECT_EQ(result.good, result.diag.errorCount == 0);
  EXPECT_EQ(result.text.empty(), !result.good);
  std::string outcome = result.text;
  for (const QuindleStrayComment& stray : result.strays)
    outcome += "stray " + std::to_string(stray.line) +
               (stray.movedTo ? " to " + std::to_string(stray.movedTo) : "") + '\n';
  return outcome + result.diag.format();
}

TEST(FormatQuindle, KeepsMovesAndDropsCommentsAsInTheGoldenDocument) {
  Testing::expectCases("text/golden/formatted.md", outcomeOf);
}

TEST(FormatQuindle, RefusesBlocksWhoseIndentsWouldGrowBeyondBounds) {
  constexpr std::size_t tooDeep = 9000;
  EXPECT_EQ(outcomeOf("quindle \"A\" { on run {" + Testing::repeated("if a{", tooDeep) +
                      std::string(tooDeep + 2, '}')),
            "f: error: Its blocks lie so deep inside one another that the indentation would take more than "
            "268,435,456 bytes. Nest them less deeply.");
}

TEST(FormatQuindle, HasNothingToDoTheSecondTime) {
  constexpr unsigned texts = 300;
  for (unsigned seed = 0; seed < texts; ++seed) {
    const Formatting once(Testing::RandomText::make(seed));
    const Formatting twice(once.text);
    EXPECT_TRUE(once.good && twice.good && twice.strays.empty()) << once.diag.format();
    EXPECT_EQ(once.text, twice.text);
  }
}

} // namespace
} // namespace Zamt
