#include "quindle/library/QuindleLibrary.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/asNobody.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Zamt;
using testing::ElementsAre;
using Zamt::Testing::TemporaryDirectory;

namespace {

std::string quindle(const std::string& name, const std::string& settings = {}) {
  return "quindle \"" + name + "\" { description \"About " + name + "\" " + settings +
         " on run { report \"x\" } }";
}

/// "name" for what can be used, "name: why not" for the rest.
std::vector<std::string> listed(const std::vector<const QuindleLibraryEntry*>& entries) {
  std::vector<std::string> lines;
  for (const QuindleLibraryEntry* const entry : entries)
    lines.push_back(entry->document.name + (entry->usable ? "" : ": " + entry->error));
  return lines;
}

TEST(QuindleLibrary, EveryFileIsListedWithWhatIsWrongWithIt) {
  const TemporaryDirectory directory;
  directory.write("a.quindle", quindle("Zed"));
  directory.write("c.quindle", "");
  directory.write("d.quindle", "quindle \"Half\" {\n on run {\n let x 3\n let\n } }");
  directory.write("e.quindle", "quindle \"\" { description \"d\" on run { report \"x\" } }");
  directory.write("f.QUINDLE", quindle("Upper"));
  directory.write(".quindle", quindle("Nameless"));
  directory.write(".b.quindle", quindle("Dotted"));
  directory.write("elsewhere", quindle("Linked"));
  std::filesystem::create_symlink("elsewhere", directory.path("g.quindle"));
  std::filesystem::create_symlink("nowhere", directory.path("h.quindle"));
  std::filesystem::create_directory(directory.path("i.quindle"));
  ASSERT_EQ(::mkfifo(directory.path("j.quindle").c_str(), 0600), 0);

  QuindleLibrary library;
  Diag diag;
  EXPECT_EQ(library.scan(directory.path(), diag), 6U);
  const std::string nameless = "This Quindle has no name, so it cannot be listed or run by name.";
  EXPECT_THAT(listed(library.search("")),
              ElementsAre("Dotted", "Zed",
                          "c: line 1: A Quindle file starts with the word \"quindle\", but this one starts "
                          "with the end of the file.",
                          "Half: line 3: Expected \"=\" but found the number 3.", "e: " + nameless,
                          "Linked"));
  ASSERT_EQ(diag.entries.size(), 3U) << diag.format();
  EXPECT_EQ(diag.entries[2].format(), directory.path("e.quindle") + ": warning: \"" +
                                          directory.path("e.quindle") + "\" is not usable: " + nameless);
}

TEST(QuindleLibrary, LoadingAgainReplacesAnEntryWhereItStands) {
  const TemporaryDirectory directory;
  const std::string first = directory.write("a.quindle", quindle("One"));
  const std::string second = directory.write("b.quindle", quindle("Two"));
  QuindleLibrary library;
  Diag diag;
  EXPECT_TRUE(library.load(first, diag));
  EXPECT_TRUE(library.load(second, diag));
  directory.write("a.quindle", quindle("Two"));
  EXPECT_TRUE(library.load(library.find("One")->path, diag));
  EXPECT_THAT(listed(library.search("")), ElementsAre("Two", "Two"));
  EXPECT_EQ(library.find("One"), nullptr);
  EXPECT_EQ(library.find("Two")->path, first);
  EXPECT_EQ(library.find("two"), nullptr);
  std::filesystem::remove(first);
  EXPECT_FALSE(library.load(first, diag));
  EXPECT_THAT(listed(library.search("")), ElementsAre("a: cannot be read", "Two"));
  EXPECT_EQ(diag.format(), first + ": error: Cannot read \"" + first + "\".");
  library.clear();
  EXPECT_EQ(library.find("Two"), nullptr);
  EXPECT_TRUE(library.load(second, diag));
  EXPECT_EQ(library.find("Two")->path, second);
}

TEST(QuindleLibrary, TheFirstDirectoryWinsAName) {
  const TemporaryDirectory own;
  const TemporaryDirectory installed;
  own.write("a.quindle", quindle("A"));
  own.write("broken.quindle", "quindle \"C\" {");
  own.write("d.quindle", "");
  installed.write("a1.quindle", quindle("A"));
  installed.write("a2.quindle", quindle("a"));
  installed.write("b1.quindle", quindle("B", "category \"first\""));
  installed.write("b2.quindle", quindle("B", "category \"second\""));
  installed.write("c.quindle", quindle("C"));
  installed.write("named.quindle", quindle("d"));
  QuindleLibrary library;
  Diag diag;
  const std::vector<std::string> missingFirst{own.path("broken.quindle"), own.path(), installed.path()};
  EXPECT_EQ(library.scan(missingFirst, diag), 9U);
  std::vector<std::string> names;
  for (const QuindleLibraryEntry* const entry : library.search("")) names.push_back(entry->document.name);
  EXPECT_THAT(names, ElementsAre("A", "C", "d", "a", "B", "B"));
  EXPECT_EQ(library.find("B")->document.category, "first");
  // A directory that is none, two broken files, one that is called so by its file alone, and the three that
  // are hidden, the last one first.
  ASSERT_EQ(diag.entries.size(), 6U) << diag.format();
  EXPECT_EQ(diag.entries[0].format(), missingFirst[0] + ": note: No Quindles in \"" + missingFirst[0] +
                                          "\": there is no such directory.");
  EXPECT_EQ(diag.entries[3].file, installed.path("named.quindle"));
  EXPECT_EQ(diag.entries[4].file, installed.path("c.quindle"));
  EXPECT_EQ(diag.entries[5].file, installed.path("a1.quindle"));

  // Without a `clear`, what was hidden is hidden again and the rest stays in its place.
  EXPECT_EQ(library.scan(missingFirst, diag), 9U);
  EXPECT_THAT(listed(library.search("")).size(), 6U);
}

TEST(QuindleLibrary, ADirectoryThatCannotBeListedHoldsNothing) {
  const TemporaryDirectory directory;
  directory.write("a.quindle", quindle("A"));
  std::filesystem::permissions(directory.path(), std::filesystem::perms::none);
  EXPECT_TRUE(Testing::asNobody([&] {
    QuindleLibrary library;
    Diag diag;
    return library.scan(directory.path(), diag) == 0 && diag.entries.empty() && library.search("").empty();
  }));
  std::filesystem::permissions(directory.path(), std::filesystem::perms::owner_all);
}

TEST(QuindleLibrary, SearchLooksWhereUsersLook) {
  const TemporaryDirectory directory;
  directory.write("a.quindle", quindle("Alpha", "category \"Underground\" tags \"Noise\""));
  directory.write("b.quindle", quindle("Beta", "category \"ground\" enabled false"));
  directory.write("c.quindle", quindle("Gamma", "category \"Water\" icon \"ground\""));
  directory.write("d.quindle", "quindle \"Delta\" { category \"ground\" on run { let } }");
  QuindleLibrary library;
  Diag diag;
  library.scan(directory.path(), diag);
  EXPECT_EQ(listed(library.search("GROUND")).size(), 3U);
  EXPECT_THAT(listed(library.search("noise")), ElementsAre("Alpha"));
  EXPECT_THAT(listed(library.search("about g")), ElementsAre("Gamma"));
  EXPECT_THAT(listed(library.search(" ground")), ElementsAre());
  EXPECT_THAT(library.categories(), ElementsAre("Underground", "Water", "ground"));
  EXPECT_THAT(listed(library.runnable()), ElementsAre("Alpha", "Gamma"));

  const QuindleResolver resolve = library.resolver();
  QuindleDocument document;
  std::string error;
  EXPECT_TRUE(resolve("Beta", document, error));
  EXPECT_EQ(document.name, "Beta");
  error = "what the caller had";
  EXPECT_FALSE(resolve("beta", document, error));
  EXPECT_EQ(error, "what the caller had");
  EXPECT_FALSE(resolve("Delta", document, error));
  EXPECT_EQ(error, library.find("Delta")->error);
  EXPECT_NE(error, "");
}

} // namespace
