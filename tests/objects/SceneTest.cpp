#include "tests/objects/scenes.h"

#include <fstream>
#include <iterator>

namespace Zamt::Testing {
namespace {

class HostSceneTest : public SceneTest {
public:
  void open(const std::string& file, const QuindleDocument& doc) {
    Diag diag;
    ASSERT_TRUE(scene.openCloud(file, doc, diag)) << diag.format();
  }

  std::vector<std::string> run(const QuindleDocument& doc,
                               const std::map<std::string, std::string>& values = {}) {
    Diag diag;
    said.clear();
    EXPECT_TRUE(scene.run(doc, values, false, result, diag)) << diag.format();
    said = diag.format();
    return result.report;
  }

  static std::string bytesOf(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  Host::Scene scene;
  QuindleRunResult result;
  std::string said;
};

const char* const countGround = "select class(\"Ground\") and inside(region)\nclassify into \"Water\"\n"
                                "report \"{selected}\"";

TEST_F(HostSceneTest, ASecondCloudIsBoundAndNothingIsCompiledForIt) {
  const QuindleDocument doc =
      parsedRun("select class(\"Ground\")\nclassify into \"Water\"\nreport \"{selected}\"",
                "param cloud : Grid = active");
  std::string problem;
  for (const auto& [name, points] : {std::pair{"one.las", 3000}, {"two.las", 5000}})
    ASSERT_TRUE(Host::writeSample(Host::makeSampleScene(static_cast<std::uint64_t>(points), 3), path(name),
                                  path("water.ply"), problem))
        << problem;
  for (const char* name : {"one.las", "two.las"}) {
    open(path(name), doc);
    const std::uint64_t ground = scene.grid()->cloud->countClasses()[2];
    EXPECT_EQ(run(doc), std::vector{std::to_string(ground)}) << name;
    EXPECT_EQ(result.compiled, std::string(name) == "one.las");
  }
}

TEST_F(HostSceneTest, ACloudWithOtherClassesIsNotPutThroughAProgramMadeForTheFirst) {
  const std::string file = real("autzen-thin.las");
  REQUIRE_REAL(file);
  const QuindleDocument doc =
      parsedRun("select class(\"Ground\")\nclassify into \"Odd\"\nreport \"{selected}\"",
                "param cloud : Grid = active");
  open(sample(), doc);
  run(doc);
  const std::uint8_t first = scene.changes().at(0).target;
  open(file, doc);
  run(doc);
  EXPECT_TRUE(result.compiled);
  EXPECT_NE(scene.changes().at(0).target, first);
  EXPECT_LE(scene.changes().at(0).target, 31);
}

TEST_F(HostSceneTest, ABrushIsTheRegionThatWasNamedAndKeepsNothingWithoutOne) {
  const QuindleDocument doc =
      parsedRun(countGround, "param cloud : Grid = active param region : Region = brush");
  const std::string file = sample();
  open(file, doc);
  EXPECT_EQ(run(doc), std::vector<std::string>{"0"});
  EXPECT_NE(said.find("nothing is drawing into it"), std::string::npos) << said;

  std::string problem;
  ASSERT_TRUE(scene.setRegion("512000 5403000 512100 5403160", problem)) << problem;
  open(file, doc);
  std::uint64_t inside = 0;
  const Host::PointCloud& cloud = *scene.grid()->cloud;
  for (std::uint64_t point = 0; point < cloud.size(); ++point)
    inside += cloud.classOf(point) == 2 && cloud.position(point)[0] <= 512100 ? 1 : 0;
  EXPECT_EQ(run(doc), std::vector{std::to_string(inside)});
  EXPECT_GT(inside, 0U);
}

TEST_F(HostSceneTest, RegionsAndFieldsCanBeGivenAsTheyAreWritten) {
  const QuindleDocument doc = parsedRun(countGround, "param classes : Field param region : Region");
  open(sample(), doc);
  const auto everything = run(doc, {{"region", "POLYGON ((511000 5402000, 513000 5402000, 513000 5404000, "
                                               "511000 5404000, 511000 5402000))"}});
  EXPECT_NE(everything, std::vector<std::string>{"0"});
  const QuindleDocument withDefault =
      parsedRun("select class(\"Water\") and inside(region)\nclassify into \"Ground\"\nreport \"{selected}\"",
                "param cloud : Grid param region : Region = (511000, 5402000, 0, 513000, 5404000, 1000)");
  scene.runtime().forget(withDefault.name);
  const std::uint64_t water = scene.grid()->cloud->countClasses()[9];
  EXPECT_EQ(run(withDefault), std::vector{std::to_string(water)});
  Diag diag;
  EXPECT_FALSE(scene.run(doc, {{"region", "nowhere"}}, false, result, diag));
  EXPECT_TRUE(diag.firstError().starts_with("The value of \"region\" can't be used: ")) << diag.format();
}

TEST_F(HostSceneTest, ValuesThatTheQuindleDoesNotTakeAreRefused) {
  const QuindleDocument doc = parsedRun("select Amplitude > least\nclassify into \"Water\"",
                                        "param cloud : Grid = active param least : Number = 2 [0 .. 5]");
  open(sample(), doc);
  const std::pair<std::map<std::string, std::string>, std::string> cases[] = {
      {{{"least", "6"}}, "Test: error: \"least\" is 6, outside its range from 0 to 5."},
      {{{"lest", "3"}}, "Test: error: \"Test\" has no parameter called \"lest\". It takes: cloud, least."},
  };
  for (const auto& [values, expected] : cases) {
    Diag diag;
    EXPECT_FALSE(scene.run(doc, values, false, result, diag));
    EXPECT_EQ(diag.format(), expected);
  }
}

TEST_F(HostSceneTest, AClassWithALongNameIsFoundAgainInTheFileThatWasWritten) {
  const QuindleDocument doc =
      parsedRun("select class(\"Ground\") and below(\"" + path("lake-water.ply") +
                    "\")\nclassify into \"Underwater Ground\" as 40\nreport \"{selected}\"",
                "param cloud : Grid = active");
  open(sample(), doc);
  EXPECT_NE(run(doc), std::vector<std::string>{"0"});
  Diag diag;
  ASSERT_TRUE(scene.writeCloud(path("out.las"), diag)) << diag.format();
  EXPECT_EQ(diag.format(),
            path("out.las") +
                ": note: The class \"Underwater Ground\" is stored as \"Underwater Grou\": a LAS file "
                "holds 15 bytes of a name. Quindles find it by its whole name all the same.");
  open(path("out.las"), doc);
  EXPECT_EQ(run(doc), std::vector<std::string>{"0"});
  EXPECT_TRUE(scene.grid()->addedClasses.empty());
}

// The class byte of every point format, worked out from the published layout of the records.
TEST_F(HostSceneTest, EveryRealFileKeepsAllItsBytesButTheClassesAndASecondRunChangesNothing) {
  if (!std::filesystem::exists(QUINDLE_TEST_DATA))
    GTEST_SKIP() << "The folder with the real clouds is not there.";
  const QuindleDocument doc =
      parsedRun("classify into \"Water\"\nreport \"{selected}\"", "param cloud : Grid = active");
  int written = 0;
  for (const auto& entry : std::filesystem::directory_iterator(QUINDLE_TEST_DATA)) {
    if (entry.path().extension() != ".las") continue;
    Diag diag;
    if (!scene.openCloud(entry.path(), doc, diag)) continue; // broken on purpose; said in words
    run(doc);
    const std::string out = path("out.las");
    ASSERT_TRUE(scene.writeCloud(out, diag)) << diag.format();
    std::string before = bytesOf(entry.path());
    const std::string after = bytesOf(out);
    ASSERT_EQ(before.size(), after.size()) << entry.path();
    const auto number = [&before](std::size_t at, int bytes) {
      std::size_t value = 0;
      for (int i = bytes; i-- > 0;)
        value = value << 8 | static_cast<std::uint8_t>(before[at + static_cast<std::size_t>(i)]);
      return value;
    };
    const std::size_t points = scene.grid()->cloud->size();
    const std::size_t start = number(96, 4);
    const std::size_t length = number(105, 2);
    const bool wide = (before[104] & 0x3F) >= 6;
    for (std::size_t point = 0; point < points; ++point) {
      char& byte = before[start + point * length + (wide ? 16 : 15)];
      byte = wide ? char{9} : static_cast<char>((byte & ~0x1F) | 9);
    }
    EXPECT_TRUE(before == after) << entry.path() << " differs outside its classes";
    open(out, doc);
    EXPECT_EQ(run(doc), std::vector<std::string>{"0"}) << entry.path();
    ++written;
  }
  EXPECT_GE(written, 20);
}

} // namespace
} // namespace Zamt::Testing
