#include "host/session/QuindleSource.h"

#include "host/session/Collection.h"
#include "host/session/adviseOnText.h"
#include "quindle/library/QuindleFiles.h"
#include "quindle/text/parseQuindle.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Zamt::Host {

namespace {

/// An open file that is closed when done with.
class OpenFile {
public:
  explicit OpenFile(const std::string& path) : file_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (file_ >= 0) ::close(file_);
  }
  int handle() const { return file_; }

private:
  int file_;
};

/// Whether there is something to read. Looks up now and then, since a signal that comes just before a read
/// would not end it.
bool waitForInput(int file, const Stop& stop) {
  constexpr int lookUpAfter = 200; // milliseconds
  pollfd waiting{file, POLLIN, 0};
  while (!stop.requested())
    if (::poll(&waiting, 1, lookUpAfter) > 0) return true;
  return false;
}

/// Whether `which` can't be the name of a Quindle in the collection.
bool isPath(const std::string& which) {
  std::error_code unknown;
  return which.find('/') != std::string::npos || which.ends_with(".quindle") ||
         std::filesystem::exists(std::filesystem::symlink_status(which, unknown));
}

/// Turns a name into the path of its file. False with an error when there is none of that name.
bool findByName(const std::string& name, QuindleSource& source, Diag& diag) {
  const QuindleLibrary library = scanCollection();
  const QuindleLibraryEntry* const entry = findInCollection(library, name, diag);
  if (entry == nullptr) return false;
  source.label = entry->path;
  source.installed = !isOwn(*entry);
  return true;
}

} // namespace

std::string readToEnd(int file, const Stop& stop, std::string& text) {
  std::array<char, 65536> buffer;
  while (waitForInput(file, stop)) {
    const ssize_t got = ::read(file, buffer.data(), buffer.size());
    if (got == 0) return {};
    if (got < 0 && errno == EINTR) continue;
    if (got < 0)
      return fmt::format("This can't be read: {}. Name a file that holds a Quindle.", std::strerror(errno));
    text.append(buffer.data(), static_cast<std::size_t>(got));
    if (text.size() > maxQuindleBytes)
      return "This is too large to be a Quindle. Name a file that holds one.";
  }
  return stoppedMessage;
}

QuindleReader::QuindleReader(const Stop& stop, Input input) : stop_(stop), input_(std::move(input)) {}

std::string QuindleReader::readFile(QuindleSource& source) const {
  const OpenFile file(source.label);
  if (file.handle() < 0)
    return fmt::format("This can't be opened: {}. Check the path.", std::strerror(errno));
  return readToEnd(file.handle(), stop_, source.text);
}

bool QuindleReader::read(const std::string& which, QuindleSource& source, Diag& diag) const {
  const bool isInput = which == "-" && input_;
  source = {isInput ? "<stdin>" : which, {}, false};
  if (!isInput && !isPath(which) && !findByName(which, source, diag)) return false;
  const std::string problem = isInput ? input_(source.text) : readFile(source);
  if (!problem.empty()) diag.error(problem, source.label);
  return problem.empty();
}

bool QuindleReader::readInput(const std::string& what, std::string& text, std::string& problem) const {
  if (input_ && input_(text).empty()) return true;
  problem = fmt::format("The {} can't be read from standard input. Write it to a file, and name that.", what);
  return false;
}

bool QuindleReader::load(const std::string& which, QuindleDocument& document, Diag& diag) const {
  QuindleSource source;
  return read(which, source, diag) && parseQuindle(source.text, source.label, document, diag);
}

bool QuindleReader::loadAdvised(const std::string& which, QuindleDocument& document, Diag& diag) const {
  QuindleSource source;
  if (!read(which, source, diag) || !parseQuindle(source.text, source.label, document, diag)) return false;
  adviseOnText(document, source.text, diag);
  return true;
}

} // namespace Zamt::Host
