#include "quindle/library/QuindleLibrary.h"

#include "quindle/library/QuindleFiles.h"
#include "quindle/library/QuindleShortcuts.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/asNobody.h"
#include "tests/support/goldenCases.h"

#include <map>
#include <sys/stat.h>

namespace Zamt::Testing {
namespace {

/// What a case of the golden document does with a library and its files, a line each, and what comes of it. A
/// text that is written or saved follows on the lines behind, up to an empty one. What only prepares the
/// files tells nothing. The directory of the files is told as "~".
class Session {
public:
  std::string play(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
      const std::size_t blank = std::min(line.find(' '), line.size());
      const std::string verb = line.substr(0, blank);
      rest_ = line.substr(std::min(blank + 1, line.size()));
      words_.clear();
      std::istringstream words(rest_);
      for (std::string word; words >> word;) words_.push_back(word);
      if (verb == "write" || verb == "save") text_ = takeLines(lines, "");
      if (const auto prepare = prepares_.find(verb); prepare != prepares_.end()) {
        prepare->second();
      } else if (!verb.empty()) {
        diag_.clear();
        told_ += "> " + line + '\n' + acts_.at(verb)();
        if (!diag_.entries.empty()) told_ += diag_.format() + '\n';
      }
    }
    for (std::size_t at = 0; (at = told_.find(files_.path())) != std::string::npos;)
      told_.replace(at, files_.path().size(), "~");
    return told_;
  }

private:
  std::string first() const { return files_.path(words_.at(0)); }
  std::string second() const { return words_.size() > 1 ? words_[1] : ""; }

  void write() {
    std::filesystem::create_directories(std::filesystem::path(first()).parent_path());
    files_.write(words_.at(0), text_);
  }

  static std::string yes(bool good) { return good ? "yes\n" : "no\n"; }

  static std::string listed(const std::vector<const QuindleLibraryEntry*>& entries) {
    std::string lines;
    for (const QuindleLibraryEntry* const entry : entries)
      lines +=
          entry->document.name + " in " + entry->path + (entry->usable ? "" : ": " + entry->error) + '\n';
    return lines;
  }

  static std::string joined(const std::vector<std::string>& names) {
    std::string line;
    for (const std::string& name : names) line += (line.empty() ? "" : ", ") + name;
    return line + '\n';
  }

  std::vector<std::string> directories() const {
    std::vector<std::string> paths;
    for (const std::string& word : words_) paths.push_back(files_.path(word));
    return paths;
  }

  std::string scan() {
    return std::to_string(words_.size() == 1 ? library_.scan(first(), diag_)
                                             : library_.scan(directories(), diag_)) +
           '\n';
  }

  std::string resolve() {
    QuindleDocument document;
    std::string error = "what the caller had";
    return yes(library_.resolver()(rest_, document, error)) + document.name + ", " + error + '\n';
  }

  std::string keys() {
    std::string lines;
    for (const QuindleShortcut& shortcut : quindleShortcuts(library_))
      lines += shortcut.key + ' ' + shortcut.name + '\n';
    for (const auto& [key, names] : shortcutConflicts(library_))
      lines += "conflict " + key + ": " + joined(names);
    return lines;
  }

  std::string read() {
    QuindleDocument document;
    std::string text;
    if (!readQuindle(path_, rest_, text, document, diag_)) return "no\n";
    Diag again;
    EXPECT_TRUE(readQuindle(path_, document.name, text, document, again)) << "the document's own name";
    return document.name + " in " + document.sourceFile + '\n' + text + '\n';
  }

  std::string remove() {
    std::string file;
    bool revealed = false;
    const bool good = deleteQuindle(path_.at(0), path_, rest_, file, revealed, diag_);
    return yes(good) + file + (revealed ? ", revealed" : "") + '\n';
  }

  std::string save() {
    QuindleDocument document;
    const bool good = saveQuindle(first(), text_, document, diag_);
    if (good) {
      EXPECT_EQ(readFile(document.sourceFile), text_);
    }
    return good ? document.sourceFile + '\n' : yes(std::filesystem::exists(first()));
  }

  const TemporaryDirectory files_;
  QuindleLibrary library_;
  Diag diag_;
  std::vector<std::string> path_;
  std::vector<std::string> words_; ///< Behind the verb of the line.
  std::string rest_;               ///< The same as it is written.
  std::string text_;
  std::string told_;

  const std::map<std::string, std::function<void()>> prepares_{
      {"write", [this] { write(); }},
      {"link", [this] { std::filesystem::create_symlink(second(), first()); }},
      {"directory", [this] { std::filesystem::create_directories(first()); }},
      {"pipe", [this] { ::mkfifo(first().c_str(), 0600); }},
      {"gone", [this] { std::filesystem::remove(first()); }},
      {"clear", [this] { library_.clear(); }},
      {"path", [this] { path_ = directories(); }},
  };
  const std::map<std::string, std::function<std::string()>> acts_{
      {"scan", [this] { return scan(); }},
      {"load", [this] { return yes(library_.load(first(), diag_)); }},
      {"search", [this] { return listed(library_.search(rest_)); }},
      {"runnable", [this] { return listed(library_.runnable()); }},
      {"find", [this] { return library_.find(rest_) ? listed({library_.find(rest_)}) : "no\n"; }},
      {"categories", [this] { return joined(library_.categories()); }},
      {"resolve", [this] { return resolve(); }},
      {"keys", [this] { return keys(); }},
      {"free", [this] { return yes(isShortcutFree(library_, words_.at(0), second())); }},
      {"read", [this] { return read(); }},
      {"delete", [this] { return remove(); }},
      {"save", [this] { return save(); }},
  };
};

TEST(QuindleLibrary, DoesAndTellsWhatTheGoldenDocumentShows) {
  expectCases("library/golden/library.md", [](const std::string& text) { return Session().play(text); });
}

TEST(QuindleLibrary, ADirectoryThatCannotBeListedHoldsNothing) {
  const TemporaryDirectory directory;
  directory.write("a.quindle", "quindle \"A\" { description \"d\" on run { report \"x\" } }");
  std::filesystem::permissions(directory.path(), std::filesystem::perms::none);
  EXPECT_TRUE(asNobody([&] {
    QuindleLibrary library;
    Diag diag;
    return library.scan(directory.path(), diag) == 0 && diag.entries.empty() && library.search("").empty();
  }));
  std::filesystem::permissions(directory.path(), std::filesystem::perms::owner_all);
}

TEST(QuindleShortcuts, AreSpelledAndDividedAsInTheGoldenDocument) {
  expectCases("library/golden/shortcuts.md", [](const std::string& text) {
    const std::string normal = normalizedShortcut(text);
    EXPECT_EQ(normalizedShortcut(normal), normal);
    std::string keys;
    for (const std::string& key : shortcutKeys(text)) keys += ' ' + key;
    return "as one: " + normal + "\nas many:" + keys;
  });
}

} // namespace
} // namespace Zamt::Testing
