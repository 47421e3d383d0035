#include "quindle/check/advice/Advisor.h"

namespace Zamt {

namespace {

std::string sayingAt(std::int32_t line, std::int32_t column, const std::string& message) {
  return std::to_string(line) + ':' + std::to_string(column) + ':' + message;
}

} // namespace

Advisor::Advisor(const QuindleDocument& doc, Diag& diag)
    : doc_(doc), diag_(diag), label_(doc.sourceFile.empty() ? doc.name : doc.sourceFile), params_(doc) {
  for (const Diag::Entry& entry : diag.entries)
    said_.insert(sayingAt(entry.line, entry.column, entry.message));
}

std::optional<std::string_view> Advisor::knownText(const QuindleExpr& argument) const {
  const QuindleValue* const value = knownValue(argument);
  if (!value || value->kind != QuindleValue::Kind::Text) return std::nullopt;
  return value->textValue;
}

std::optional<double> Advisor::knownNumber(const QuindleExpr& argument) const {
  const QuindleValue* const value = knownValue(argument);
  if (!value || value->kind != QuindleValue::Kind::Number) return std::nullopt;
  return value->numberValue;
}

const QuindleValue* Advisor::knownValue(const QuindleExpr& argument) const {
  if (argument.kind == QuindleExpr::Kind::Literal) return &argument.value;
  if (argument.kind != QuindleExpr::Kind::Reference) return nullptr;
  const QuindleParam* const param = findParam(argument.name);
  return param ? &param->defaultValue : nullptr;
}

void Advisor::add(Diag::Severity severity, std::int32_t line, std::int32_t column, const std::string& message,
                  const std::string& wording) {
  if (!said_.insert(sayingAt(line, column, message)).second) return;
  diag_.at(severity, message, label_, line, column);
  if (!wording.empty()) diag_.at(Diag::Severity::Note, wording, label_, line, column);
}

} // namespace Zamt
