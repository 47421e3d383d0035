#include "host/cli/Console.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace Zamt::Host {

namespace {

/// Results are handed on in pieces of about this size.
constexpr std::size_t flushBytes = std::size_t{64} * 1024;

struct SeverityLook {
  const char* word;
  const char* colour;
};
constexpr std::array<SeverityLook, 3> severityLooks{{
    {"note", "\x1b[36m"},
    {"warning", "\x1b[33m"},
    {"error", "\x1b[31m"},
}};

const SeverityLook& lookOf(Diag::Severity severity) {
  const auto index = static_cast<std::size_t>(severity);
  return severityLooks[index < severityLooks.size() ? index : severityLooks.size() - 1];
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

} // namespace

Console::Console() : decorated(std::getenv("NO_COLOR") == nullptr && ::isatty(STDERR_FILENO) == 1) {}

void Console::print(std::string_view text) {
  pending += text;
  if (pending.size() >= flushBytes) flush();
}

void Console::printLine(std::string_view text) {
  print(text);
  print("\n");
}

void Console::printJson(const nlohmann::json& value) {
  printLine(value.dump(2, ' ', false, nlohmann::json::error_handler_t::replace));
}

void Console::report(const Diag& diag) {
  for (const Diag::Entry& entry : diag.entries) complain(entry.severity, entry.format());
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
      decorated ? fmt::format("{}{}\x1b[0m\n", lookOf(severity).colour, line) : fmt::format("{}\n", line);
  writeAll(STDERR_FILENO, text);
}

void Console::progress(std::string_view what, std::uint64_t done, std::uint64_t total) {
  if (!decorated || total == 0) return;
  constexpr std::size_t width = 30;
  const std::size_t filled = static_cast<std::size_t>(static_cast<double>(width) * static_cast<double>(done) /
                                                      static_cast<double>(total));
  const std::string bar =
      std::string(std::min(filled, width), '=') + std::string(width - std::min(filled, width), ' ');
  writeAll(STDERR_FILENO, fmt::format("\r[{}] {} of {}  {}\x1b[K", bar, done, total, what));
  progressShown = true;
}

void Console::endProgress() {
  if (progressShown) writeAll(STDERR_FILENO, "\r\x1b[K");
  progressShown = false;
}

void Console::flush() {
  if (writeError == 0) writeError = writeAll(STDOUT_FILENO, pending);
  pending.clear();
}

int Console::finish(Exit exit) {
  endProgress();
  flush();
  if (writeError == 0) return static_cast<int>(exit);
  if (writeError != EPIPE)
    error(fmt::format("The results could not be written to standard output: {}.", std::strerror(writeError)));
  return static_cast<int>(Exit::Failed);
}

nlohmann::json diagnosticsJson(const Diag& diag) {
  nlohmann::json list = nlohmann::json::array();
  for (const Diag::Entry& entry : diag.entries)
    list.push_back({{"severity", lookOf(entry.severity).word},
                    {"message", entry.message},
                    {"file", entry.file},
                    {"line", entry.line},
                    {"column", entry.column}});
  return list;
}

std::string grouped(std::uint64_t count) {
  std::string digits = std::to_string(count);
  for (std::size_t i = digits.size(); i > 3; i -= 3) digits.insert(i - 3, 1, ',');
  return digits;
}

std::string countOf(std::uint64_t count, std::string_view noun) {
  return fmt::format("{} {}{}", grouped(count), noun, count == 1 ? "" : "s");
}

} // namespace Zamt::Host
