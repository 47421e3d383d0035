#include "quindle/library/QuindleFiles.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/asNobody.h"
#include "tests/support/environment.h"
#include "tests/support/goldenCases.h"

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

// Of what fails, the system's reason is told where a file can't be deleted, and no other.
TEST(QuindleFiles, WhatCannotBeReadOrDeletedIsTold) {
  const TemporaryDirectory own;
  std::string text;
  std::string file;
  bool revealed = false;
  QuindleDocument document;
  Diag diag;
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

TEST(QuindleFiles, AreSwitchedOnAndOffAsInTheGoldenDocument) {
  Testing::expectCases("library/golden/enabled.md", [](const std::string& switchAndText) {
    const std::size_t lineEnd = switchAndText.find('\n');
    std::string text = switchAndText.substr(lineEnd + 1);
    const bool found = setQuindleEnabled(text, switchAndText.substr(0, lineEnd) == "on");
    return (found ? "" : "refused\n") + text;
  });
}

} // namespace
