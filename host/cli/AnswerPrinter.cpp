#include "host/cli/AnswerPrinter.h"

#include "host/cli/Pager.h"
#include "host/cli/jsonText.h"
#include "host/cli/shownBytes.h"
#include "host/session/nearest.h"

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
Data entryData(const Diag::Entry& entry, const std::string& about) {
  Fields fields{{"severity", wordOf(entry.severity)},
                {"message", shownBytes(entry.message)},
                {"file", shownBytes(entry.file)},
                {"line", entry.line},
                {"column", entry.column}};
  if (!about.empty()) fields.emplace_back("cloud", shownBytes(about));
  return fields;
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
  if (asJson_)
    showJson(answer.summary);
  else
    showText(answer.summary, answer.isLong);
  return answer.status;
}

void AnswerPrinter::showText(const Part& part, bool isLong) {
  console_.report(withNearestNames(part.diag), part.source, part.about);
  const std::string text = part.text ? part.text() : std::string();
  if (!text.empty() && (!isLong || !showPaged(text))) console_.print(text);
  console_.report(part.remarks);
}

void AnswerPrinter::gather(const Part& part) {
  for (const Diag::Entry& entry : withNearestNames(part.diag).entries)
    said_.push_back(entryData(entry, part.about));
  if (part.data) data_.push_back(part.data());
}

void AnswerPrinter::showJson(const Part& summary) {
  Fields fields;
  if (!verb_.listName.empty())
    fields.emplace_back(verb_.listName.c_str(), std::move(data_));
  else if (!data_.empty())
    fields = std::get<Fields>(std::move(data_.front().value));
  if (summary.data) {
    Data more = summary.data();
    for (auto& field : std::get<Fields>(more.value)) fields.push_back(std::move(field));
  }
  fields.emplace_back("diagnostics", std::move(said_));
  console_.print(jsonText(fields));
}

} // namespace Zamt::Host
