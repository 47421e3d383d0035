#include "quindle/library/QuindleLibrary.h"
#include "tests/support/TemporaryDirectory.h"

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
  directory.write("elsewhere", quindle("Linked"));
  std::filesystem::create_symlink("elsewhere", directory.path("g.quindle"));
  std::filesystem::create_symlink("nowhere", directory.path("h.quindle"));
  std::filesystem::create_directory(directory.path("i.quindle"));
  ASSERT_EQ(::mkfifo(directory.path("j.quindle").c_str(), 0600), 0);

  QuindleLibrary library;
  Diag diag;
  EXPECT_EQ(library.scan(directory.path(), diag), 5U);
  const std::string nameless = "This Quindle has no name, so it cannot be listed or run by name.";
  EXPECT_THAT(listed(library.search("")),
              ElementsAre("Zed",
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
  installed.write("a1.quindle", quindle("A"));
  installed.write("a2.quindle", quindle("a"));
  installed.write("b1.quindle", quindle("B", "category \"first\""));
  installed.write("b2.quindle", quindle("B", "category \"second\""));
  installed.write("c.quindle", quindle("C"));
  QuindleLibrary library;
  Diag diag;
  const std::vector<std::string> missingFirst{own.path("none"), own.path(), installed.path()};
  EXPECT_EQ(library.scan(missingFirst, diag), 7U);
  EXPECT_THAT(listed(library.search("")),
              ElementsAre("A", "C: line 1: Expected \"}\" but found the end of the file.", "a", "B", "B"));
  EXPECT_EQ(library.find("B")->document.category, "first");
  // The missing directory, the broken file and the two that are hidden, the last one first.
  ASSERT_EQ(diag.entries.size(), 4U);
  EXPECT_EQ(diag.entries[2].file, installed.path("c.quindle"));
  EXPECT_EQ(diag.entries[3].file, installed.path("a1.quindle"));

  // Without a `clear`, what was hidden is hidden again and the rest stays in its place.
  EXPECT_EQ(library.scan(missingFirst, diag), 7U);
  EXPECT_THAT(listed(library.search("")).size(), 5U);
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
  EXPECT_FALSE(resolve("beta", document, error));
  EXPECT_EQ(error, "");
  EXPECT_FALSE(resolve("Delta", document, error));
  EXPECT_EQ(error, library.find("Delta")->error);
  EXPECT_NE(error, "");
}

} // namespace
