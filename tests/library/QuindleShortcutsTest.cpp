#include "quindle/library/QuindleShortcuts.h"
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

using namespace Zamt;
using Zamt::Testing::TemporaryDirectory;

namespace {

TEST(QuindleShortcuts, ACombinationHasOneSpelling) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"", ""},
      {" ctrl+u ", "Ctrl+U"},
      {"CTRL + SHIFT + U", "Ctrl+Shift+U"},
      {"meta+shift+alt+ctrl+f2", "Ctrl+Alt+Shift+Meta+F2"},
      {"cmd+s", "Meta+S"},
      {"win+s", "Meta+S"},
      {"Ctrl+PageUp", "Ctrl+Pageup"},
      {"Ctrl+", ""},
      {"Ctrl++", "Ctrl++"},
      {"+", "+"},
      {"++a", "A"},
      {"Ctrl+ +x", "Ctrl+X"},
      {"shift+ctrl", "Shift+Ctrl"},
      {"a+b", "B"},
      {"\xc3\xa4+\xc3\x84", "\xc3\x84"}, // letters beyond ASCII have no case
  };
  for (const auto& [text, normal] : cases) {
    EXPECT_EQ(normalizedShortcut(text), normal) << '"' << text << '"';
    EXPECT_EQ(normalizedShortcut(normal), normal) << '"' << text << '"';
  }
}

TEST(QuindleShortcuts, BlanksDivideCombinations) {
  using Keys = std::vector<std::string>;
  EXPECT_EQ(shortcutKeys("Ctrl+U  ctrl+i Ctrl+ Ctrl+U "), (Keys{"Ctrl+U", "Ctrl+I", "Ctrl+U"}));
  EXPECT_EQ(shortcutKeys("Ctrl+U\tCtrl+I"), (Keys{"Ctrl+I"}));
}

TEST(QuindleShortcuts, OnlyWhatCanRunTakesKeys) {
  const TemporaryDirectory directory;
  const auto write = [&](const std::string& file, const std::string& name, const std::string& body) {
    directory.write(file + ".quindle", "quindle \"" + name + "\" { description \"d\" " + body + " }");
  };
  write("b", "Both", "shortcut \"ctrl+u F3\" on key \"Ctrl+U\" { report \"x\" }");
  write("a", "Other", "shortcut \"control+U\" on run { report \"x\" }");
  write("c", "Off", "shortcut \"F3\" enabled false on run { report \"x\" }");
  write("d", "Broken", "shortcut \"F3\" on key \"F3\" { let }");
  write("e", "Twin", "on key \"F4\" { report \"x\" }");
  write("f", "Twin", "on key \"F4 alt+F4\" { report \"x\" }");
  QuindleLibrary library;
  Diag diag;
  ASSERT_EQ(library.scan(directory.path(), diag), 6U);

  std::vector<std::string> table;
  for (const QuindleShortcut& shortcut : quindleShortcuts(library))
    table.push_back(shortcut.key + ' ' + shortcut.name);
  EXPECT_EQ(table, (std::vector<std::string>{"Alt+F4 Twin", "Ctrl+U Both", "Ctrl+U Other", "F3 Both",
                                             "F4 Twin", "F4 Twin"}));
  EXPECT_EQ(shortcutConflicts(library), (std::map<std::string, std::vector<std::string>>{
                                            {"Ctrl+U", {"Both", "Other"}}, {"F4", {"Twin", "Twin"}}}));
  EXPECT_TRUE(isShortcutFree(library, "f3", "Both"));
  EXPECT_FALSE(isShortcutFree(library, "f3", "both"));
  EXPECT_FALSE(isShortcutFree(library, "CTRL+u", "Both"));
  EXPECT_TRUE(isShortcutFree(library, "Ctrl+", "New"));
}

} // namespace
