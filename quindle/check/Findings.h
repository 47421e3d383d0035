#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"

#include <string>

namespace Zamt {

/// Where the checks of one document report. The document has to outlive it.
class Findings {
public:
  /// A record without a line of its own: the finding is about the document as a whole.
  static constexpr int noLine = 0;

  Findings(const QuindleDocument& doc, Diag& diag)
      : label_(doc.sourceFile.empty() ? doc.name : doc.sourceFile), diag_(diag) {}

  void error(const std::string& message, int line) {
    diag_.at(Diag::Severity::Error, message, label_, line, noColumn);
  }

  void warning(const std::string& message, int line) {
    diag_.at(Diag::Severity::Warning, message, label_, line, noColumn);
  }

private:
  // What is wrong is a step or a parameter, not one of its words.
  static constexpr int noColumn = 0;

  const std::string& label_;
  Diag& diag_;
};

} // namespace Zamt
