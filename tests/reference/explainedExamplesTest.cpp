/// The explanation of each Quindle in examples/, held against golden/<name>.txt, byte for byte. After a
/// change that is meant, this writes the golden texts anew; look at the difference before committing it:
///
///   QUINDLE_REFRESH_GOLDEN=1 build/dev/bin/tests-reference --gtest_filter='ExplainedExamples.*'
#include "quindle/reference/explainQuindle.h"
#include "tests/support/parsed.h"
#include "tests/support/runCommand.h"

#include <set>

namespace Zamt::Testing {
namespace {

namespace fs = std::filesystem;

/// The names of the files of a directory, without their extension.
std::set<std::string> stems(const std::string& directory) {
  std::set<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory))
    names.insert(entry.path().stem().string());
  return names;
}

TEST(ExplainedExamples, AreToldInTheWordsOfTheirGoldenTexts) {
  const std::string examples = QUINDLE_SOURCE_DIR "/examples/";
  const std::string goldens = QUINDLE_SOURCE_DIR "/tests/reference/golden/";
  for (const std::string& name : stems(examples)) {
    const std::string file = name + ".quindle";
    const std::string text = explainQuindle(parsed(readFile(examples + file), file), QuindleResolver());
    const std::string golden = goldens + name + ".txt";
    if (std::getenv("QUINDLE_REFRESH_GOLDEN")) std::ofstream(golden, std::ios::binary) << text;
    EXPECT_EQ(text, readFile(golden)) << golden;
  }
  EXPECT_EQ(stems(goldens), stems(examples));
}

} // namespace
} // namespace Zamt::Testing
