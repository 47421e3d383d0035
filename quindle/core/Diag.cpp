#include "quindle/core/Diag.h"

namespace Zamt {

namespace {

const char* severityWord(Diag::Severity severity) {
  switch (severity) {
  case Diag::Severity::Note: return "note";
  case Diag::Severity::Warning: return "warning";
  case Diag::Severity::Error: break;
  }
  return "error";
}

} // namespace

std::string Diag::Entry::format() const {
  std::string text = file;
  if (line > 0) {
    text += ':' + std::to_string(line);
    if (column > 0) text += ':' + std::to_string(column);
  }
  if (!text.empty()) text += ": ";
  return text + severityWord(severity) + ": " + message;
}

void Diag::at(Severity severity, const std::string& message, const std::string& file, int line, int column) {
  entries.push_back({severity, message, file, line, column});
  if (severity == Severity::Error) ++errorCount;
}

void Diag::note(const std::string& message, const std::string& file) {
  at(Severity::Note, message, file, 0, 0);
}

void Diag::warning(const std::string& message, const std::string& file) {
  at(Severity::Warning, message, file, 0, 0);
}

void Diag::error(const std::string& message, const std::string& file) {
  at(Severity::Error, message, file, 0, 0);
}

std::string Diag::format() const {
  std::string text;
  for (const Entry& entry : entries) {
    if (&entry != entries.data()) text += '\n';
    text += entry.format();
  }
  return text;
}

std::string Diag::firstError() const {
  for (const Entry& entry : entries)
    if (entry.severity == Severity::Error) return entry.message;
  return {};
}

void Diag::clear() {
  entries.clear();
  errorCount = 0;
}

void Diag::absorb(const Diag& other) {
  if (&other == this) return;
  entries.insert(entries.end(), other.entries.begin(), other.entries.end());
  errorCount += other.errorCount;
}

} // namespace Zamt
