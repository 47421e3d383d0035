#pragma once

#include "quindle/core/Diag.h"

#include <cstdint>
#include <string>

namespace Zamt {

/// Where the readers of one text report: to a `Diag`, all of it, or for whoever tells only the first error,
/// nothing behind that. A large file that is no Quindle may hold a fault a byte.
class FaultSink {
public:
  enum class Keep { All, UpToFirstError };

  /// `file` and `diag` must outlive it.
  FaultSink(const std::string& file, Diag& diag, Keep keep) : file_(file), diag_(diag), keep_(keep) {}

  /// Whether what is reported is still kept; if not, the message need not be made.
  bool isOpen() const { return keep_ == Keep::All || diag_.errorCount == 0; }

  void at(Diag::Severity severity, const std::string& message, std::int32_t line, std::int32_t column) {
    if (isOpen()) diag_.at(severity, message, file_, line, column);
  }

private:
  const std::string& file_;
  Diag& diag_;
  Keep keep_;
};

} // namespace Zamt
