#include "host/surfaces/Surface.h"
#include "host/surfaces/SurfaceFile.h"
#include "tests/session/scenes.h"

#include <cmath>
#include <functional>
#include <numbers>
#include <random>

// The chain of objects that a planned condition becomes has to select what the condition says when it is
// worked out point by point, as it stands, without plan, chain or blocks.
namespace Zamt::Testing {
namespace {

using Truth = std::vector<bool>;

/// A condition as text, and the points for which it is true.
struct Condition {
  std::string text;
  Truth truth;
};

double squaredDistance(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  const double dx = a[0] - b[0];
  const double dy = a[1] - b[1];
  const double dz = a[2] - b[2];
  return dx * dx + dy * dy + dz * dz;
}

class NaiveCloud {
public:
  explicit NaiveCloud(const Host::PointCloud& source)
      : cloud(source), positions(positionsOf(source)), classes(readField(source, "Classification")) {}

  double field(const std::string& name, std::uint64_t point, unsigned component = 0) const {
    std::vector<double>& values = fields[{name, component}];
    if (values.empty()) values = readField(cloud, name, component);
    return values.at(point);
  }

  Condition where(const std::string& text, const std::function<bool(std::uint64_t)>& holds) const {
    Condition condition{text, Truth(cloud.size())};
    for (std::uint64_t point = 0; point < cloud.size(); ++point) condition.truth[point] = holds(point);
    return condition;
  }

  Condition neighbours(double radius, double most) const {
    const auto count = [&](std::uint64_t point) {
      double found = -1; // without itself
      for (std::uint64_t other = 0; other < cloud.size(); ++other)
        if (squaredDistance(positions[point], positions[other]) <= radius * radius) ++found;
      return found;
    };
    return where("neighbours(" + std::to_string(radius) + ", 0, " + std::to_string(most) + ")",
                 [&](std::uint64_t point) { return count(point) <= most; });
  }

  /// By the heights of the mesh, which have tests of their own.
  Condition surface(const std::string& path, bool above, double margin) const {
    Host::Mesh mesh;
    std::string problem;
    EXPECT_TRUE(Host::readMesh(path, mesh, problem)) << problem;
    const Host::Surface sheet(mesh);
    const std::string name = above ? "above" : "below";
    return where(name + "(\"" + path + "\", " + std::to_string(margin) + ")", [&](std::uint64_t point) {
      const auto& at = positions[point];
      const double past = sheet.verticalDistance(at[0], at[1], at[2]);
      return above ? past > margin : -past > margin; // false where there is no surface
    });
  }

  const Host::PointCloud& cloud;
  std::vector<Position> positions;
  std::vector<double> classes;

private:
  mutable std::map<std::pair<std::string, unsigned>, std::vector<double>> fields; ///< Those asked for so far.
};

/// A random combination of `atoms`, with as many parentheses as it takes.
Condition randomCondition(const std::vector<Condition>& atoms, std::mt19937& random, int depth) {
  std::vector<Condition> level;
  for (int i = 0; i < (1 << depth); ++i) level.push_back(atoms[random() % atoms.size()]);
  while (level.size() > 1) {
    std::vector<Condition> next;
    for (std::size_t i = 0; i + 1 < level.size(); i += 2) {
      const bool both = random() % 2 == 0;
      Condition joined{"(" + level[i].text + (both ? " and " : " or ") + level[i + 1].text + ")",
                       level[i].truth};
      for (std::size_t p = 0; p < joined.truth.size(); ++p)
        joined.truth[p] =
            both ? joined.truth[p] && level[i + 1].truth[p] : joined.truth[p] || level[i + 1].truth[p];
      if (random() % 3 == 0) {
        joined.text = "not " + joined.text;
        joined.truth.flip();
      }
      next.push_back(std::move(joined));
    }
    level = std::move(next);
  }
  return level.front();
}

class ConditionsTest : public SceneTest {
public:
  void open(const std::string& file) {
    Diag diag;
    ASSERT_TRUE(scene.openCloud(file, {}, diag)) << diag.format();
  }

  /// What a Quindle with that condition selects.
  Truth selected(const std::string& condition) {
    const QuindleDocument doc =
        parsedRun("select " + condition + "\nclassify into \"Probe\" as 31", "param cloud : Grid = active");
    scene.runtime().forget(doc.name);
    QuindleRunResult result;
    Diag diag;
    EXPECT_TRUE(scene.run(doc, {}, true, result, diag)) << condition << '\n' << diag.format();
    const Host::PointMask& mask = scene.grid()->masks["mask"];
    Truth truth(scene.grid()->cloud->size());
    for (std::size_t i = 0; i < truth.size() && i < mask.size(); ++i) truth[i] = mask.test(i);
    return truth;
  }

  void expectAgreement(const std::vector<Condition>& atoms) {
    for (const Condition& atom : atoms) {
      const auto kept = std::count(atom.truth.begin(), atom.truth.end(), true);
      EXPECT_GT(kept, 0) << atom.text << " keeps nothing and so proves nothing";
      EXPECT_LT(kept, static_cast<std::ptrdiff_t>(atom.truth.size())) << atom.text;
      Truth negated = atom.truth;
      negated.flip();
      EXPECT_EQ(selected(atom.text), atom.truth) << atom.text;
      EXPECT_EQ(selected("not " + atom.text), negated) << atom.text;
    }
    std::mt19937 random(20240607);
    for (int round = 0; round < 25; ++round) {
      const Condition condition = randomCondition(atoms, random, 1 + round % 3);
      EXPECT_EQ(selected(condition.text), condition.truth) << condition.text;
    }
  }

  Host::Scene scene{goOn, formatsWithArrays()};
};

TEST_F(ConditionsTest, AllNineSelectWhatTheySayOnTheSampleAloneNegatedAndCombined) {
  const std::string file = sample();
  open(file);
  const NaiveCloud naive(*scene.grid()->cloud);
  const auto middle = naive.positions[naive.cloud.size() / 2];
  const std::string centre =
      std::to_string(middle[0]) + ", " + std::to_string(middle[1]) + ", " + std::to_string(middle[2]);
  std::array<double, 3> at{};
  for (std::size_t i = 0; i < 3; ++i) at[i] = std::stod(std::to_string(middle[i]));
  const std::vector<Condition> all{
      naive.where("class(\"Ground, 5\")",
                  [&](auto p) {
                    const double number = naive.classes[p];
                    return number == 2 || number == 5;
                  }),
      naive.where("Amplitude > 120", [&](auto p) { return naive.field("Amplitude", p) >= 120; }),
      naive.where("field(\"NormalVector\", 0.5, 1, 2)",
                  [&](auto p) {
                    const double z = naive.field("NormalVector", p, 2);
                    return z >= 0.5 && z <= 1;
                  }),
      naive.surface(path("lake-water.ply"), false, 0.1),
      naive.surface(path("lake-water.ply"), true, 0),
      naive.where("vertical(20)",
                  [&](auto p) {
                    const double x = naive.field("NormalVector", p, 0);
                    const double y = naive.field("NormalVector", p, 1);
                    const double z = naive.field("NormalVector", p, 2);
                    const double lean = std::atan2(std::fabs(z), std::hypot(x, y));
                    return lean * 180 / std::numbers::pi <= 20;
                  }),
      naive.neighbours(3, 5),
      naive.where("inside(\"(512020, 5403010, 400), (512120, 5403100, 420)\")",
                  [&](auto p) {
                    const auto q = naive.positions[p];
                    return q[0] >= 512020 && q[0] <= 512120 && q[1] >= 5403010 && q[1] <= 5403100 &&
                           q[2] >= 400 && q[2] <= 420;
                  }),
      naive.where("within(\"" + centre + "\", 30)",
                  [&](auto p) { return squaredDistance(naive.positions[p], at) <= 30.0 * 30.0; }),
      naive.where("expr(\"Amplitude > 100 and not (z < 412 or Intensity < 200)\")",
                  [&](auto p) {
                    return naive.field("Amplitude", p) > 100 &&
                           !(naive.positions[p][2] < 412 || naive.field("Intensity", p) < 200);
                  }),
  };
  expectAgreement(all);
  open(write("lake.arrays", std::string(arraysOf) + file));
  expectAgreement(all);
}

TEST_F(ConditionsTest, TheySelectWhatTheySayOnARealCloud) {
  REQUIRE_REAL_CLOUDS();
  const std::string file = real("autzen-thin.las");
  open(file);
  const NaiveCloud naive(*scene.grid()->cloud);
  expectAgreement({
      naive.where("class(\"Ground\")", [&](auto p) { return naive.classes[p] == 2; }),
      naive.where("Intensity <= 40", [&](auto p) { return naive.field("Intensity", p) <= 40; }),
      naive.where("field(\"ReturnNumber\", 2, 7)",
                  [&](auto p) { return naive.field("ReturnNumber", p) >= 2; }),
      naive.neighbours(25, 2),
      naive.where("expr(\"Red > Green or z > 450\")",
                  [&](auto p) {
                    return naive.field("Red", p) > naive.field("Green", p) || naive.positions[p][2] > 450;
                  }),
  });
}

TEST_F(ConditionsTest, SurfaceCountsOfTheReferenceCloudAreThoseWorkedOutByHand) {
  REQUIRE_REAL_CLOUDS();
  const std::string file = real("ahn3_crop.las");
  open(file);
  const std::string ground = "\"" + real("ahn3_ground.obj") + "\"";
  const auto count = [&](const std::string& condition) {
    const Truth truth = selected(condition);
    return std::count(truth.begin(), truth.end(), true);
  };
  EXPECT_EQ(count("above(" + ground + ")"), 17192);
  EXPECT_EQ(count("below(" + ground + ")"), 4443);
  EXPECT_EQ(count("not above(" + ground + ") and not below(" + ground + ")"), 744 + 7291);
}

} // namespace
} // namespace Zamt::Testing
