#include "files/AtomicFile.h"
#include "quindle/library/QuindleFiles.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/asNobody.h"
#include "tests/support/tracedChild.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Zamt;
using Zamt::Testing::readFile;
using Zamt::Testing::TemporaryDirectory;

/// What becomes of a saved file when the system, or the process, fails in the middle.
namespace {

std::string text(const std::string& report) {
  return "quindle \"Kept\" { description \"d\" on run { report \"" + report + "\" } }";
}
const std::string oldText = text("old");
const std::string newText = text("new, and of another length");

constexpr int saved = 0;
constexpr int refused = 1;
constexpr int refusedWithoutWord = 2;

int save(const std::string& directory) {
  QuindleDocument document;
  Diag diag;
  if (saveQuindle(directory, newText, document, diag)) return saved;
  const std::string& message = diag.firstError();
  const std::string path = quindleFileName(directory, "Kept");
  const bool said =
      message == "Cannot write \"" + path + "\"." || message == "Could not finish writing \"" + path + "\".";
  return said ? refused : refusedWithoutWord;
}

/// Runs `work` in a child and gives its exit status as `waitpid` does.
int inChild(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work());
  int status = 0;
  ::waitpid(child, &status, 0);
  return status;
}

#if defined(__x86_64__)

struct Fault : Testing::CallFault {
  bool secondName = false; ///< The file has one, so that it is written in place.
};

/// Whether the old text stands in a copy beside the file.
bool holdsCopy(const TemporaryDirectory& directory) {
  for (const std::string& name : directory.names())
    if (name.ends_with(".old") && readFile(directory.path(name)) == oldText) return true;
  return false;
}

class SaveFaults : public testing::TestWithParam<Fault> {};

TEST_P(SaveFaults, LeaveTheOldTextOrTheNewAtEveryCall) {
  int met = 0;
  for (int call = 1; true; ++call) {
    SCOPED_TRACE("call " + std::to_string(call));
    const TemporaryDirectory directory;
    const std::string path = directory.write("Kept.quindle", oldText);
    Fault fault = GetParam();
    fault.atCall = call;
    if (fault.secondName) std::filesystem::create_hard_link(path, directory.path("second name"));
    const auto traced = Testing::traceWith(fault, [&] { return save(directory.path()); });
    if (!traced) GTEST_SKIP() << "This machine does not let processes be traced.";
    const std::string held = readFile(path);
    const bool copied = fault.kill && fault.secondName && holdsCopy(directory);
    EXPECT_TRUE(held == oldText || held == newText || copied) << held;
    if (!fault.kill) {
      EXPECT_TRUE(WIFEXITED(traced->status));
      EXPECT_EQ(WEXITSTATUS(traced->status), held == newText ? saved : refused);
      EXPECT_FALSE(traced->decisive && held == newText);
    }
    EXPECT_FALSE(fault.secondName && readFile(directory.path("second name")) != held);
    std::size_t listed = 0;
    for (const std::string& name : directory.names()) listed += name.ends_with(".quindle") ? 1 : 0;
    EXPECT_EQ(listed, 1U);
    if (traced->ended) break;
    ++met;
  }
  EXPECT_GE(met, 6); // open, make, write, flush, close and rename at the least
}

INSTANTIATE_TEST_SUITE_P(Each, SaveFaults,
                         testing::Values(Fault{{0, true, 0}, false}, Fault{{0, false, ENOSPC}, false},
                                         Fault{{0, false, EIO}, false}, Fault{{0, true, 0}, true},
                                         Fault{{0, false, ENOSPC}, true}, Fault{{0, false, EIO}, true}),
                         [](const testing::TestParamInfo<Fault>& one) {
                           return std::string(one.param.kill          ? "Killed"
                                              : one.param.code == EIO ? "DiskError"
                                                                      : "DiskFull") +
                                  (one.param.secondName ? "InPlace" : "");
                         });

#endif

TEST(SaveLimits, AFileTooLargeToWriteIsRefusedAndTheHostLives) {
  const TemporaryDirectory directory;
  const std::string path = directory.write("Kept.quindle", oldText);
  const int status = inChild([&] {
    const rlimit limit{newText.size() - 1, newText.size() - 1};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    return save(directory.path());
  });
  ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), refused);
  EXPECT_EQ(readFile(path), oldText);
  EXPECT_EQ(directory.names().size(), 1U);
}

TEST(SaveLimits, AFileIsWrittenWhereItStandsIfNoOtherMayTakeItsPlace) {
  using Perms = std::filesystem::perms;
  struct Row {
    const char* name;
    Perms directory;
    Perms file;
    int ends;
  };
  constexpr Perms everybodys = Perms::owner_all | Perms::group_all | Perms::others_all;
  constexpr Perms readOnly = everybodys & ~(Perms::owner_write | Perms::group_write | Perms::others_write);
  const std::array<Row, 4> rows{
      {{"the file is protected", everybodys, readOnly, refused},
       {"the directory takes no new file", readOnly, everybodys, saved},
       {"both", readOnly, readOnly, refused},
       {"the directory is sticky", everybodys | Perms::sticky_bit, everybodys, saved}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const TemporaryDirectory directory;
    const std::string path = directory.write("Kept.quindle", oldText);
    std::filesystem::permissions(path, row.file);
    std::filesystem::permissions(directory.path(), row.directory);
    EXPECT_TRUE(Testing::asNobody([&] { return save(directory.path()) == row.ends; }));
    EXPECT_EQ(readFile(path), row.ends == saved ? newText : oldText);
    EXPECT_EQ(directory.names().size(), 1U);
  }
}

TEST(SaveLimits, ALinkToADeviceIsWrittenThroughAndAPipeIsRefused) {
  const TemporaryDirectory directory;
  std::filesystem::create_symlink("/dev/null", directory.path("Kept.quindle"));
  EXPECT_EQ(save(directory.path()), saved);
  EXPECT_TRUE(std::filesystem::is_character_file(directory.path("Kept.quindle")));
  std::filesystem::remove(directory.path("Kept.quindle"));
  ASSERT_EQ(::mkfifo(directory.path("Kept.quindle").c_str(), 0600), 0);
  EXPECT_EQ(save(directory.path()), refused);
}

TEST(SaveLimits, WhatAKilledProcessLeftGoesWithTheNextSave) {
  const TemporaryDirectory directory;
  directory.write("Kept.quindle", oldText);
  ASSERT_EQ(save(directory.path()), saved);
  const int status = inChild([&] {
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    std::string error;
    const std::unique_ptr<AtomicFile> begun = AtomicFile::create(directory.path("Kept.quindle"), error);
    ::raise(SIGKILL);
    return saved;
  });
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(directory.names().size(), 2U);
  EXPECT_EQ(save(directory.path()), saved);
  EXPECT_EQ(directory.names().size(), 1U);
}

} // namespace
