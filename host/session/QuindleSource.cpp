#include "host/session/QuindleSource.h"

#include "files/Interruption.h"
#include "host/session/Collection.h"
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

namespace Zamt::Host {

namespace {

/// An open file that is closed when done with; standard input is left open.
class Input {
public:
  explicit Input(const std::string& which)
      : file(which == "-" ? STDIN_FILENO : ::open(which.c_str(), O_RDONLY | O_CLOEXEC)) {}
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
  ~Input() {
    if (file > STDIN_FILENO) ::close(file);
  }
  int handle() const { return file; }

private:
  int file;
};

/// Whether there is something to read. Looks up now and then, since a signal that comes just before a read
/// would not end it.
bool waitForInput(int file) {
  constexpr int lookUpAfter = 200; // milliseconds
  pollfd waiting{file, POLLIN, 0};
  while (!interrupted)
    if (::poll(&waiting, 1, lookUpAfter) > 0) return true;
  return false;
}

/// Empty when everything was read, otherwise what went wrong.
std::string readAll(int file, std::string& text) {
  std::array<char, 65536> buffer;
  while (waitForInput(file)) {
    const ssize_t got = ::read(file, buffer.data(), buffer.size());
    if (got == 0) return {};
    if (got < 0 && errno == EINTR) continue;
    if (got < 0)
      return fmt::format("This can't be read: {}. Name a file that holds a Quindle.", std::strerror(errno));
    text.append(buffer.data(), static_cast<std::size_t>(got));
    if (text.size() > maxQuindleBytes)
      return "This is too large to be a Quindle. Name a file that holds one.";
  }
  return interruptedMessage;
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

bool readLabelled(const Input& input, QuindleSource& source, Diag& diag) {
  if (input.handle() < 0) {
    diag.error(fmt::format("This can't be opened: {}. Check the path.", std::strerror(errno)), source.label);
    return false;
  }
  const std::string problem = readAll(input.handle(), source.text);
  if (!problem.empty()) diag.error(problem, source.label);
  return problem.empty();
}

} // namespace

bool readQuindleSource(const std::string& which, QuindleSource& source, Diag& diag) {
  source = {which == "-" ? "<stdin>" : which, {}, false};
  if (which != "-" && !isPath(which) && !findByName(which, source, diag)) return false;
  return readLabelled(Input(which == "-" ? which : source.label), source, diag);
}

bool loadQuindle(const std::string& which, QuindleDocument& document, Diag& diag) {
  QuindleSource source;
  return readQuindleSource(which, source, diag) && parseQuindle(source.text, source.label, document, diag);
}

} // namespace Zamt::Host
