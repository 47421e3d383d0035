#include "quindle/library/QuindleFiles.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/asNobody.h"
#include "tests/support/environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Zamt;
using testing::ElementsAre;
using Zamt::Testing::Environment;
using Zamt::Testing::readFile;
using Zamt::Testing::TemporaryDirectory;

namespace {

const std::string good = "  quindle \"Good one\" {\r\n description \"d\"  on run { report \"x\" } }\n\n# end";

TEST(QuindleFiles, FilesAreCalledAfterTheQuindle) {
  EXPECT_EQ(quindleFileName("/a/b/", "x"), "/a/b//x.quindle");
  EXPECT_EQ(quindleFileName("d", ""), "d/.quindle");
  EXPECT_EQ(quindleFileName("d", "H\xc3\xb6he-2_m"), "d/H__he_2_m.quindle");
}

TEST(QuindleFiles, TheEnvironmentSaysWhereTheUsersFilesAre) {
  const Environment rest{{"QUINDLE_DATA_DIRS", ""}};
  using Value = std::optional<std::string>;
  struct Case {
    Value appData, xdg, home;
    std::string directory;
  };
  const std::vector<Case> cases{
      {"C:\\Users\\me\\", "/x", "/h", "C:/Users/me/Orrel/quindles"},
      {"\\\\", "/x//", "/h", "/x/orrel/quindles"},
      {{}, "", "/h/", "/h/.orrel/quindles"},
      {{}, {}, {}, "./.orrel/quindles"},
  };
  for (const Case& one : cases) {
    const Environment set({{"APPDATA", one.appData}, {"XDG_DATA_HOME", one.xdg}, {"HOME", one.home}});
    EXPECT_EQ(userQuindleDirectory(), one.directory);
    EXPECT_THAT(quindleSearchPath(), ElementsAre(one.directory));
  }
  const Environment set(
      {{"APPDATA", {}}, {"XDG_DATA_HOME", "/u"}, {"QUINDLE_DATA_DIRS", "/u/orrel:/s/:\\t:/s::/t"}});
  EXPECT_THAT(quindleSearchPath(),
              ElementsAre("/u/orrel/quindles", "/s/quindles", "/t/quindles", "/quindles"));
}

TEST(QuindleFiles, OnlyFilesDirectlyInTheDirectoryAreOnesOwn) {
  const TemporaryDirectory directory;
  std::filesystem::create_directories(directory.path("own/below"));
  std::filesystem::create_directory_symlink("own", directory.path("link"));
  const std::string own = directory.path("own");
  EXPECT_TRUE(isOwnQuindle(own, own + "/no-such-file"));
  EXPECT_TRUE(isOwnQuindle(own + "/", own + "/below/../x.quindle"));
  EXPECT_TRUE(isOwnQuindle(own, directory.path("link/x.quindle")));
  EXPECT_FALSE(isOwnQuindle(own, own + "/below/x.quindle"));
  EXPECT_FALSE(isOwnQuindle(own, directory.path("x.quindle")));
  EXPECT_TRUE(isOwnQuindle(directory.path("none/"), directory.path("none/x.quindle")));
  EXPECT_TRUE(isOwnQuindle(".", "x.quindle"));
}

TEST(QuindleFiles, AQuindleIsReadAndDeletedByName) {
  const TemporaryDirectory own;
  const TemporaryDirectory installed;
  const std::vector<std::string> path{own.path("none"), own.path(), installed.path()};
  const std::string broken = "quindle \"Broken\" {\n let";
  own.write("good.quindle", good);
  own.write("a.quindle", "quindle \"GOOD ONE\" { description \"d\" on run { report \"x\" } }");
  installed.write("Good_one.quindle", good);
  installed.write("b.quindle", broken);

  std::string text;
  QuindleDocument document;
  Diag diag;
  EXPECT_TRUE(readQuindle(path, "Good one", text, document, diag));
  EXPECT_EQ(text, good);
  EXPECT_EQ(document.sourceFile, own.path("good.quindle"));
  EXPECT_TRUE(readQuindle(path, "good ONE", text, document, diag));
  EXPECT_EQ(document.sourceFile, own.path("a.quindle")); // the first that fits loosely
  EXPECT_TRUE(readQuindle(path, document.name, text, document, diag));
  EXPECT_EQ(diag.format(), "");
  EXPECT_TRUE(readQuindle(path, "broken", text, document, diag));
  EXPECT_EQ(text, broken);
  EXPECT_EQ(diag.errorCount, 1U);
  diag.clear();
  EXPECT_FALSE(readQuindle({}, "x", text, document, diag));
  EXPECT_FALSE(readQuindle(path, "x", text, document, diag));
  EXPECT_EQ(diag.format(), "error: There is no Quindle called \"x\". There are none at all.\n"
                           "error: There is no Quindle called \"x\". There is: GOOD ONE, Good one, Broken.");

  diag.clear();
  std::string file;
  bool revealed = false;
  EXPECT_TRUE(deleteQuindle(own.path(), path, "Good one", file, revealed, diag));
  EXPECT_EQ(file, own.path("good.quindle"));
  EXPECT_TRUE(revealed);
  EXPECT_TRUE(deleteQuindle(own.path(), {own.path()}, "good one", file, revealed, diag));
  EXPECT_EQ(file, own.path("a.quindle"));
  EXPECT_FALSE(revealed);
  EXPECT_EQ(diag.format(), "");
  EXPECT_FALSE(deleteQuindle(own.path(), path, "good one", file, revealed, diag));
  EXPECT_EQ(file, installed.path("Good_one.quindle"));
  EXPECT_EQ(readFile(file), good);

  // Of what fails, the system's reason is told where a file can't be deleted, and no other.
  diag.clear();
  const std::string large = own.write("large.quindle", "");
  std::filesystem::resize_file(large, maxQuindleBytes + 1);
  EXPECT_FALSE(readQuindle({own.path()}, "large", text, document, diag));
  EXPECT_EQ(diag.format(), "error: Cannot read \"" + large + "\".");
  std::filesystem::permissions(own.path(), std::filesystem::perms(0555));
  EXPECT_TRUE(Testing::asNobody([&] {
    diag.clear();
    return !deleteQuindle(own.path(), {own.path()}, "large", file, revealed, diag) &&
           diag.format() == "error: Cannot delete \"" + large + "\": Permission denied.";
  }));
  std::filesystem::permissions(own.path(), std::filesystem::perms(0700));
}

TEST(QuindleFiles, OnlyASoundQuindleIsSaved) {
  const TemporaryDirectory directory;
  const std::string target = directory.path("deep/er");
  QuindleDocument document;
  const std::vector<std::pair<std::string, std::string>> refused{
      {"on run", "<new quindle>:1:1: error: A Quindle file starts with the word \"quindle\", but this one "
                 "starts with \"on\"."},
      {"quindle \"x\" { description \"d\" on run { run \"x\"() } }",
       "<new quindle>:1: error: This Quindle runs itself, which would never stop."},
  };
  for (const auto& [text, message] : refused) {
    Diag diag;
    EXPECT_FALSE(saveQuindle(target, text, document, diag));
    EXPECT_EQ(diag.format(), message);
  }
  EXPECT_FALSE(std::filesystem::exists(directory.path("deep")));

  Diag diag;
  EXPECT_TRUE(saveQuindle(target, good, document, diag));
  EXPECT_EQ(diag.format(), "");
  EXPECT_EQ(document.sourceFile, target + "/Good_one.quindle");
  EXPECT_EQ(readFile(document.sourceFile), good);
}

TEST(QuindleFiles, SavingLeavesLinksAndPermissionsAsTheyAre) {
  const TemporaryDirectory directory;
  const TemporaryDirectory elsewhere;
  const std::string kept = elsewhere.write("kept", "old");
  const std::string link = directory.path("Good_one.quindle");
  std::filesystem::create_symlink(std::filesystem::relative(kept, directory.path()), link);
  ASSERT_EQ(::chmod(kept.c_str(), 01640), 0);
  const auto save = [&] {
    QuindleDocument document;
    Diag diag;
    saveQuindle(directory.path(), good, document, diag);
    return diag.format();
  };
  EXPECT_EQ(save(), "");
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(readFile(kept), good);
  struct stat status {};
  ASSERT_EQ(::stat(kept.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 01640U);
  EXPECT_THAT(directory.names(), ElementsAre("Good_one.quindle"));
  EXPECT_THAT(elsewhere.names(), ElementsAre("kept"));

  std::filesystem::remove(kept); // the link dangles
  EXPECT_EQ(save(), "");
  EXPECT_EQ(readFile(kept), good);

  const std::string refusal = "error: Cannot write \"" + link + "\".";
  std::filesystem::remove(link);
  std::filesystem::create_symlink(link, link); // leads nowhere, for ever
  EXPECT_EQ(save(), refusal);
  std::filesystem::remove(link);
  std::filesystem::create_directory(link);
  EXPECT_EQ(save(), refusal);
  std::filesystem::remove(link);
  ASSERT_EQ(::mkfifo(link.c_str(), 0600), 0);
  EXPECT_EQ(save(), refusal);
}

TEST(QuindleFiles, SwitchingOnAndOffIsAnEditOfOneLine) {
  const std::tuple<const char*, std::string, bool, const char*> cases[] = {
      {"the indent stays and the comment goes", "q {\n  enabled true # on\n}\n", false,
       "q {\n  enabled false\n}\n"},
      {"no line is on already", "q {\n}", true, "q {\n}"},
      {"a new line goes behind the settings", "q {\n description \"d\"\n\tcategory \"c\"\n icon \"i\"\n}",
       false, "q {\n description \"d\"\n\tcategory \"c\"\n    enabled false\n icon \"i\"\n}\n"},
      {"or below the brace", "# enabled\nq {\n icon \"i\"\n}\n", false,
       "# enabled\nq {\n    enabled false\n icon \"i\"\n}\n"},
      {"other lines keep their ends", "q {\r\n enabled false\r\n}\r\n", true, "q {\r\n enabled true\n}\r\n"},
      {"a longer word is another one", "q {\nenabledness\n}\n", false,
       "q {\n    enabled false\nenabledness\n}\n"},
  };
  for (const auto& [what, before, enabled, after] : cases) {
    std::string text = before;
    EXPECT_TRUE(setQuindleEnabled(text, enabled)) << what;
    EXPECT_EQ(text, after) << what;
  }
  std::string text = "no block";
  EXPECT_FALSE(setQuindleEnabled(text, false));
  EXPECT_EQ(text, "no block");
}

} // namespace
