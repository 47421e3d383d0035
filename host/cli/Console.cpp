#include "host/cli/Console.h"

#include "host/cli/progressLine.h"
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

std::string lineOf(const Diag::Entry& entry, std::string_view about) {
  if (about.empty() || entry.file == about) return entry.format();
  return entry.line > 0 ? fmt::format("{} ({})", entry.format(), about)
                        : fmt::format("{}: {}", about, entry.format());
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

void Console::report(const Diag& diag, std::string_view source, std::string_view about) {
  const Diag::Entry* before = nullptr;
  for (const Diag::Entry& entry : diag.entries) {
    complain(entry.severity, shownBytes(lineOf(entry, about)));
    const bool same = before != nullptr && before->line == entry.line && before->column == entry.column;
    before = &entry;
    if (!source.empty() && !same) writeAll(STDERR_FILENO, quotedPlace(source, entry.line, entry.column));
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

void Console::progress(const ProgressNow& now) {
  if (!decorated_ || now.total == 0) return;
  const auto time = std::chrono::steady_clock::now();
  if (!clock_.start) clock_.start = time;
  if (clock_.what != now.what) clock_.startOfOne = time;
  clock_.what = now.what;
  writeAll(STDERR_FILENO,
           '\r' + progressLine(now, time - *clock_.start, time - clock_.startOfOne) + "\x1b[K");
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
