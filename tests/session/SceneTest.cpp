#include "tests/session/scenes.h"

#include <atomic>
#include <set>
#include <thread>

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

  Host::Scene scene{goOn, formatsWithArrays()};
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
                                  path("water.ply"), goOn, problem))
        << problem;
  for (const char* name : {"one.las", "two.las"}) {
    open(path(name), doc);
    const std::uint64_t ground = countsOf(*scene.grid()->cloud)[2];
    EXPECT_EQ(run(doc), std::vector{std::to_string(ground)}) << name;
    EXPECT_EQ(result.compiled, std::string(name) == "one.las");
  }
}

TEST_F(HostSceneTest, ACloudWithOtherClassesIsNotPutThroughAProgramMadeForTheFirst) {
  REQUIRE_REAL_CLOUDS();
  const std::string file = real("autzen-thin.las");
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

TEST_F(HostSceneTest, ABrushKeepsNothingWhereNoRegionWasNamed) {
  const QuindleDocument doc =
      parsedRun(countGround, "param cloud : Grid = active param region : Region = brush");
  open(sample(), doc);
  EXPECT_EQ(run(doc), std::vector<std::string>{"0"});
  EXPECT_NE(said.find("nothing is drawing into it"), std::string::npos) << said;
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
  const std::uint64_t water = countsOf(*scene.grid()->cloud)[9];
  EXPECT_EQ(run(withDefault), std::vector{std::to_string(water)});
  Diag diag;
  EXPECT_FALSE(scene.run(doc, {{"region", "nowhere"}}, false, result, diag));
  EXPECT_TRUE(diag.firstError().starts_with("The value of \"region\" can't be used: ")) << diag.format();
}

TEST_F(HostSceneTest, ARunComesToTheSameOnAnyFormatAndWritesWhatItChanged) {
  const QuindleDocument doc = parsedRun(
      "select Intensity > 20000 or neighbours(3, 0, 2)\nclassify into \"Rail\"\nreport \"{selected}\"",
      "param cloud : Grid = active");
  const std::string file = sample(60000);
  Diag diag;
  open(file, doc);
  ASSERT_TRUE(scene.addDisplay(diag)) << diag.format();
  const std::vector<std::string> report = run(doc);
  EXPECT_NE(report, std::vector<std::string>{"0"});
  ASSERT_TRUE(scene.writeCloud(path("out.las"), diag) && scene.savePicture(path("las.png"), diag))
      << diag.format();
  open(write("lake.arrays", std::string(arraysOf) + file), doc);
  EXPECT_EQ(run(doc), report);
  ASSERT_TRUE(scene.writeCloud(path("out.classes"), diag) && scene.savePicture(path("arrays.png"), diag))
      << diag.format();
  EXPECT_TRUE(readFile(path("las.png")) == readFile(path("arrays.png")));
  std::string classes;
  open(path("out.las"), doc);
  for (const double number : readField(*scene.grid()->cloud, "Classification"))
    classes += static_cast<char>(number);
  EXPECT_TRUE(readFile(path("out.classes")) == classes);
}

TEST_F(HostSceneTest, EveryRealFileIsClassifiedAndASecondRunChangesNothing) {
  REQUIRE_REAL_CLOUDS();
  const QuindleDocument doc =
      parsedRun("classify into \"Water\"\nreport \"{selected}\"", "param cloud : Grid = active");
  int written = 0;
  for (const auto& entry : std::filesystem::directory_iterator(QUINDLE_TEST_DATA)) {
    Diag diag;
    if (entry.path().extension() != ".las" || !scene.openCloud(entry.path(), doc, diag)) continue;
    SCOPED_TRACE(entry.path());
    run(doc);
    ASSERT_TRUE(scene.writeCloud(path("out.las"), diag)) << diag.format();
    open(path("out.las"), doc);
    EXPECT_EQ(countsOf(*scene.grid()->cloud)[9], scene.grid()->cloud->size());
    EXPECT_EQ(run(doc), std::vector<std::string>{"0"});
    ++written;
  }
  EXPECT_GE(written, 20);
}

TEST_F(SceneTest, ASecondSceneWaitsUntilTheFirstIsGone) {
  const QuindleDocument doc =
      parsedRun("select class(\"Ground\")\nclassify into \"Water\"\nreport \"{selected}\"",
                "param cloud : Grid = active");
  const std::string file = sample();
  std::atomic<int> inside{0};
  std::set<std::string> reports;
  const auto preview = [&] {
    Host::Scene mine{goOn};
    EXPECT_EQ(++inside, 1);
    QuindleRunResult own;
    Diag diag;
    EXPECT_TRUE(mine.openCloud(file, doc, diag) && mine.run(doc, {}, true, own, diag)) << diag.format();
    reports.insert(own.report.begin(), own.report.end());
    --inside;
  };
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int i = 0; i < 4; ++i) threads.emplace_back(preview);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(reports.size(), 1U);
}

} // namespace
} // namespace Zamt::Testing
