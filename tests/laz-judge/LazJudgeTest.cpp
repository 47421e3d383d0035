#include "tests/laz-judge/LazFile.h"

#include "tests/laz-judge/noticedFiles.h"
#include "tests/laz-judge/verdicts.h"

#include <gtest/gtest.h>
#include <set>
#include <tuple>

namespace Zamt::Testing::Laz {
namespace {

const std::string folder = std::string(QUINDLE_TEST_DATA) + "/laz";

class LazJudge : public ::testing::Test {
protected:
  void SetUp() override {
    if (files.empty()) GTEST_SKIP() << "No compressed clouds at " << folder << ".";
  }

  const std::map<std::string, NoticedFile> files = noticedFiles(folder);
};

TEST_F(LazJudge, EveryFileDecodesToItsSumOrIsRefused) {
  for (const auto& [name, file] : files) {
    SCOPED_TRACE(name);
    const std::string bytes = readFile(file.path);
    const Verdict verdict = plainVerdict(bytes);
    EXPECT_EQ(verdict.sum, file.sum) << verdict.error;
    EXPECT_NE(verdict.sum.empty(), verdict.error.empty());
    if (verdict.error.empty()) {
      EXPECT_EQ(decodeLaz(bytes).tableUsed, file.expected == "decodes");
    }
  }
}

TEST_F(LazJudge, EncodingADecodedFileMakesItAgain) {
  for (const auto& [name, file] : files) {
    SCOPED_TRACE(name);
    if (file.sum.empty()) continue;
    const std::string bytes = readFile(file.path);
    const LazFile decoded = decodeLaz(bytes);
    const std::string again = encodeLaz(decoded);
    EXPECT_TRUE(decodeLaz(again).points == decoded.points);
    // Its writer compared times as doubles, so that those that are no numbers never equal themselves.
    const bool comparable = name != "pf6_extremes.laz" && decoded.tableUsed;
    if (comparable) {
      EXPECT_TRUE(again == bytes);
    }
  }
}

TEST_F(LazJudge, AnUncompressedCloudComesBackFromEveryKindOfFile) {
  struct Kind {
    std::uint32_t chunkSize;
    std::vector<std::uint64_t> counts;
    std::uint16_t version;
    bool streamed;
  };
  const std::vector<Kind> kinds{{50000, {}, 3, false},
                                {100, {}, 4, false},
                                {0, {1, 30, 1, ~std::uint64_t{0}}, 3, false},
                                {70, {}, 3, true}};
  for (const char* name :
       {"perm_1.0_0.las", "lots_of_vlr.las", "waveform_pf4.las", "evlr_pf6.las", "no-points.las"})
    for (const Kind& kind : kinds) {
      SCOPED_TRACE(name);
      const std::string las = readFile(std::string(QUINDLE_TEST_DATA) + "/" + name);
      LazFile file = fromLas(las, kind.chunkSize, kind.counts, kind.version);
      // Only headers of LAS 1.4 lead to a table with anything behind it.
      file.streamed = kind.streamed && (file.back.empty() || las[25] >= 4);
      const LazFile back = decodeLaz(encodeLaz(file));
      EXPECT_TRUE(back.points == file.points && back.back == file.back);
      EXPECT_TRUE(back.tableUsed);
      EXPECT_EQ(back.streamed, file.streamed);
      EXPECT_EQ(back.chunks.size(), file.chunks.size());
      if (name == std::string("evlr_pf6.las")) {
        std::uint64_t recordsBehind = 0;
        std::memcpy(&recordsBehind, &back.front[235], sizeof(recordsBehind));
        EXPECT_EQ(recordsBehind, back.backAt);
      }
    }
}

TEST_F(LazJudge, TheNpmJudgesAgreeOnEachKindOfFile) {
  std::set<std::tuple<unsigned, std::size_t, bool, std::string>> kinds; // a process takes its time
  for (const auto& [name, file] : files) {
    SCOPED_TRACE(name);
    if (file.sum.empty()) continue;
    const LazFile decoded = decodeLaz(readFile(file.path));
    const bool variable = decoded.chunkSize == LazFile::variable;
    if (npmJudges(decoded) &&
        kinds.emplace(decoded.format, decoded.items.size(), variable, decoded.records[0].userId).second) {
      EXPECT_EQ(npmVerdict(file.path), (Verdict{decoded.count(), file.sum, {}}));
    }
  }
  EXPECT_GE(kinds.size(), 10U);
}

} // namespace
} // namespace Zamt::Testing::Laz
