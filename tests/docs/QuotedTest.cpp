/// The C++ in the documents is quoted from files that are built here. A block that is not, letter for letter
/// but for its indent, has come apart from them.
#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Zamt::Testing {
namespace {

std::string indented(const std::string& text, std::size_t blanks) {
  std::istringstream lines(text);
  std::string out;
  for (std::string line; std::getline(lines, line);)
    out += (line.empty() ? line : std::string(blanks, ' ') + line) + '\n';
  return out;
}

TEST(Documents, QuoteCodeThatIsBuilt) {
  const std::string root = QUINDLE_SOURCE_DIR;
  std::string built;
  for (const char* const folder : {"/docs/samples", "/tests/docs"})
    for (const auto& entry : std::filesystem::directory_iterator(root + folder))
      built += '\n' + readFile(entry.path());
  for (const std::string name : {"scene.md", "embedding.md"}) {
    const std::string document = readFile(root + "/docs/" + name);
    const std::string fence = "```cpp\n";
    int blocks = 0;
    for (std::size_t at = 0; (at = document.find(fence, at)) != std::string::npos; ++blocks) {
      at += fence.size();
      const std::string block = document.substr(at, document.find("```", at) - at);
      bool found = false;
      for (const unsigned blanks : {0U, 2U, 4U})
        found = found || built.find('\n' + indented(block, blanks)) != std::string::npos;
      EXPECT_TRUE(found) << name << " quotes what no file of docs/samples and tests/docs holds:\n" << block;
    }
    EXPECT_GT(blocks, 3) << name;
  }
}

} // namespace
} // namespace Zamt::Testing
