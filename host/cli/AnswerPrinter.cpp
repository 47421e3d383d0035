#include "host/cli/AnswerPrinter.h"

#include "host/cli/Pager.h"
#include "host/cli/jsonText.h"
#include "host/cli/shownBytes.h"

#include <utility>

namespace Zamt::Host {

namespace {

const char* wordOf(Diag::Severity severity) {
  switch (severity) {
  case Diag::Severity::Note: return "note";
  case Diag::Severity::Warning: return "warning";
  case Diag::Severity::Error: break;
  }
  return "error";
}

/// A line or column of 0 means none.
Data entryData(const Diag::Entry& entry) {
  return Fields{{"severity", wordOf(entry.severity)},
                {"message", shownBytes(entry.message)},
                {"file", shownBytes(entry.file)},
                {"line", entry.line},
                {"column", entry.column}};
}

} // namespace

AnswerPrinter::AnswerPrinter(const Verb& verb, bool asJson, Console& console)
    : verb_(verb), asJson_(asJson), console_(console) {}

void AnswerPrinter::take(const Part& part) {
  console_.endProgress();
  if (asJson_)
    gather(part);
  else
    showText(part, false);
}

Status AnswerPrinter::finish(const Answer& answer) {
  console_.endProgress();
  if (!answer.refusal.empty()) {
    console_.error(answer.refusal);
    return answer.status;
  }
  for (const Part& part : answer.parts)
    if (asJson_)
      gather(part);
    else
      showText(part, answer.isLong);
  if (asJson_) showJson();
  return answer.status;
}

void AnswerPrinter::showText(const Part& part, bool isLong) {
  console_.report(part.diag);
  const std::string text = part.text ? part.text() : std::string();
  if (!text.empty() && (!isLong || !showPaged(text))) console_.print(text);
  console_.report(part.remarks);
}

void AnswerPrinter::gather(const Part& part) {
  diag_.absorb(part.diag);
  if (part.data) data_.push_back(part.data());
}

void AnswerPrinter::showJson() {
  Fields fields;
  if (!verb_.listName.empty())
    fields.emplace_back(verb_.listName.c_str(), std::move(data_));
  else if (!data_.empty())
    fields = std::get<Fields>(std::move(data_.front().value));
  fields.emplace_back("diagnostics", Data::list(diag_.entries, entryData));
  console_.print(jsonText(fields));
}

} // namespace Zamt::Host
