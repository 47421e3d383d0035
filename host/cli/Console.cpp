#include "host/cli/Console.h"

#include "host/cli/quotedPlace.h"
#include "host/cli/shownBytes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace Zamt::Host {

namespace {

/// Results are handed on in pieces of about this size.
constexpr std::size_t flushBytes = std::size_t{64} * 1024;

/// What puts the colour of a severity in front of a line.
const char* colourOf(Diag::Severity severity) {
  switch (severity) {
  case Diag::Severity::Note: return "\x1b[36m";
  case Diag::Severity::Warning: return "\x1b[33m";
  case Diag::Severity::Error: break;
  }
  return "\x1b[31m";
}

/// 0, or the errno of the write that failed.
int writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(file, text.data(), text.size());
    if (written >= 0)
      text.remove_prefix(static_cast<std::size_t>(written));
    else if (errno != EINTR)
      return errno;
  }
  return 0;
}

/// Takes the place of a stream that the process was started without. Otherwise the next file to be opened
/// would get its number, and with it what is meant for the stream.
void takePlace(int stream) {
  if (::fcntl(stream, F_GETFD) >= 0) return;
  const int useless = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY; // using the stream is to fail as before
  [[maybe_unused]] const int same = ::open("/dev/null", useless | O_CLOEXEC);
}

} // namespace

Console::Console() : decorated_(std::getenv("NO_COLOR") == nullptr && ::isatty(STDERR_FILENO) == 1) {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) takePlace(stream);
}

void Console::print(std::string_view text) {
  pending_ += text;
  if (pending_.size() >= flushBytes) flush();
}

void Console::report(const Diag& diag, std::string_view source) {
  for (const Diag::Entry& entry : diag.entries) {
    complain(entry.severity, shownBytes(entry.format()));
    if (!source.empty()) writeAll(STDERR_FILENO, quotedPlace(source, entry.line, entry.column));
  }
}

void Console::error(const std::string& message) {
  Diag diag;
  diag.error(message);
  report(diag);
}

void Console::note(const std::string& message) {
  Diag diag;
  diag.note(message);
  report(diag);
}

void Console::complain(Diag::Severity severity, std::string_view line) {
  endProgress();
  const std::string text =
      decorated_ ? fmt::format("{}{}\x1b[0m\n", colourOf(severity), line) : fmt::format("{}\n", line);
  writeAll(STDERR_FILENO, text);
}

void Console::progress(std::string_view what, std::uint64_t done, std::uint64_t total) {
  if (!decorated_ || total == 0) return;
  constexpr std::size_t width = 30;
  const std::size_t filled = static_cast<std::size_t>(static_cast<double>(width) * static_cast<double>(done) /
                                                      static_cast<double>(total));
  const std::string bar =
      std::string(std::min(filled, width), '=') + std::string(width - std::min(filled, width), ' ');
  writeAll(STDERR_FILENO, fmt::format("\r[{}] {} of {}  {}\x1b[K", bar, done, total, what));
  progressShown_ = true;
}

void Console::endProgress() {
  if (progressShown_) writeAll(STDERR_FILENO, "\r\x1b[K");
  progressShown_ = false;
}

void Console::flush() {
  if (writeError_ == 0) writeError_ = writeAll(STDOUT_FILENO, pending_);
  pending_.clear();
}

int Console::finish(Status status) {
  endProgress();
  flush();
  if (writeError_ == 0) return static_cast<int>(status);
  if (writeError_ != EPIPE)
    error(
        fmt::format("The results could not be written to standard output: {}.", std::strerror(writeError_)));
  return static_cast<int>(Status::Failed);
}

} // namespace Zamt::Host
