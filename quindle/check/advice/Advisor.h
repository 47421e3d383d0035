#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/plan/ParamIndex.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

namespace Zamt {

/// Where the advice on one document goes, and what all of it looks up. The document and the Diag have to
/// outlive it.
class Advisor {
public:
  Advisor(const QuindleDocument& doc, Diag& diag);

  const QuindleDocument& document() const { return doc_; }

  /// The first parameter of exactly this name, or null, without looking at all of them.
  const QuindleParam* findParam(std::string_view name) const { return params_.find(name); }

  /// The text that an argument has unless a run is given another: written out, or a parameter's default.
  std::optional<std::string_view> knownText(const QuindleExpr& argument) const;

  /// Likewise a number.
  std::optional<double> knownNumber(const QuindleExpr& argument) const;

  /// Warns at the line and column of a record. `wording`, unless empty, is a note behind it that says what to
  /// write. What the Diag says at that place already is not said again.
  template <class Record>
  void warn(const Record& at, const std::string& message, const std::string& wording = {}) {
    add(Diag::Severity::Warning, at.line, at.column, message, wording);
  }

  template <class Record>
  void note(const Record& at, const std::string& message) {
    add(Diag::Severity::Note, at.line, at.column, message, {});
  }

private:
  void add(Diag::Severity severity, std::int32_t line, std::int32_t column, const std::string& message,
           const std::string& wording);
  const QuindleValue* knownValue(const QuindleExpr& argument) const;

  const QuindleDocument& doc_;
  Diag& diag_;
  const std::string label_; // a copy: the file's name may be that of an entry of the Diag
  const ParamIndex params_;
  std::unordered_set<std::string> said_;
};

/// A word or a sign as messages have it.
inline std::string inQuotes(std::string_view text) { return '"' + std::string(text) + '"'; }

} // namespace Zamt
