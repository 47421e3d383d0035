#pragma once

#include "quindle/core/Diag.h"
#include "quindle/core/QuindleDocument.h"
#include "quindle/text/FaultSink.h"
#include "quindle/text/StepReader.h"
#include "quindle/text/TokenReader.h"

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace Zamt {

/// Reads the outer shape of a file: its head, settings, parameters and triggers.
class FileReader {
public:
  /// `doc`, `diag` and `spans`, which may be null, must outlive it.
  FileReader(const std::string& source, const std::string& file, QuindleDocument& doc, Diag& diag,
             FaultSink::Keep keep, SpanRecorder* spans = nullptr);

  /// As `parseQuindle` does it. To be called once.
  bool read();

  /// What became of the comments of a text that was read without errors.
  std::vector<QuindleStrayComment> strayComments() const { return tokens_.strayComments(); }

  /// The line on which something other than a comment stands behind what was read; 0 for nowhere.
  std::int32_t lineBehind() const {
    return tokens_.current().kind == Token::Kind::End ? 0 : tokens_.current().line;
  }

  /// Goes to the end of the text, so that the spans hold all of it.
  void skipRest();

private:
  void readItem();
  bool readSetting();
  void readTags();
  void readEnabled();
  void readParam();
  bool readRange(QuindleParam& param);
  void addParam(QuindleParam&& param);
  bool isParamName(const std::string& name);
  void readTrigger();
  bool readOccasion(QuindleTrigger& trigger);

  const std::string source_;
  const std::string file_;
  FaultSink faults_;
  TokenReader tokens_;
  StepReader steps_;
  QuindleDocument& doc_;
  Diag& diag_;
  std::unordered_set<std::string> paramNames_; ///< Filled once there are too many to look through.
};

} // namespace Zamt
