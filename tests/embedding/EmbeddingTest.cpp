/// What the programs of examples/embedding print, held against files in golden/, byte for byte. After a
/// change that is meant, this writes the files anew; look at the difference before committing it:
///
///   QUINDLE_REFRESH_GOLDEN=1 build/dev/bin/tests-embedding
#include "tests/support/goldenCases.h"
#include "tests/support/runCommand.h"

namespace Zamt::Testing {
namespace {

/// Runs a program where its README says to.
void expectPrinted(const std::string& name, const std::vector<std::string>& command) {
  const CommandResult result = runCommand(command, QUINDLE_SOURCE_DIR "/examples/embedding");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err, "");
  expectGolden("embedding/golden/" + name + ".txt", result.out);
}

TEST(EmbeddingExamples, HostShowsWhatItCanDo) { expectPrinted("host", {QUINDLE_EXAMPLE_HOST}); }

TEST(EmbeddingExamples, HostPressesTheKeysItIsGiven) {
  expectPrinted("host-keys", {QUINDLE_EXAMPLE_HOST, "quindles", "ctrl+2", "--preview", "Ctrl+3", "Ctrl+9"});
}

TEST(EmbeddingExamples, CachedTellsWhatEachRunBuilds) { expectPrinted("cached", {QUINDLE_EXAMPLE_CACHED}); }

} // namespace
} // namespace Zamt::Testing
