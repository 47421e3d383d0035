#pragma once

#include "host/verbs/Data.h"
#include "quindle/core/Diag.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Zamt::Host {

/// How a call ended.
enum class Status : int {
  Done = 0,
  Failed = 1, ///< It ran and found faults, or it could not finish.
  Usage = 2   ///< It was called wrongly; nothing was done.
};

/// An answer, or what it says of one of several clouds or Quindles. What was found out is there in two forms,
/// each of them made only when it is asked for.
struct Part {
  Diag diag;
  std::function<std::string()> text; ///< For people: whole lines with their ends, or nothing. May be null.
  std::function<Data()> data;        ///< For programs: the fields that the verb's help names, or null.
  Diag remarks;                      ///< What only people are told, behind the text.
  std::string source{};              ///< The text that the places in `diag` are in, if it is to be quoted.
  std::string about{};               ///< The cloud that `diag` is about, as people and programs are told.
};

/// Keeps what was found out, and makes of it a text by `textOf(value)` and data by `dataOf(value)`.
template <class Value, class TextOf, class DataOf>
Part partOf(Diag diag, Value value, TextOf textOf, DataOf dataOf) {
  const auto kept = std::make_shared<const Value>(std::move(value));
  return {std::move(diag), [kept, textOf] { return textOf(*kept); }, [kept, dataOf] { return dataOf(*kept); },
          Diag()};
}

/// What comes of a call.
struct Answer {
  Status status = Status::Done;
  std::string refusal;     ///< Why the call can't be carried out at all; then there are no parts.
  std::vector<Part> parts; ///< Those that were not handed on before, in their order.
  Part summary{};          ///< What they come to together; its data, if any, are fields beside the list.
  bool isLong = false;     ///< The text is to be read at leisure.
};

/// The answer to a call that makes no sense, or that can't be begun.
inline Answer refused(Status status, std::string why) { return {status, std::move(why), {}, {}, false}; }

/// The answer that is one part. It fails if there is an error in it.
inline Answer answerOf(Part part) {
  Answer answer;
  answer.status = part.diag.errorCount == 0 ? Status::Done : Status::Failed;
  answer.parts.push_back(std::move(part));
  return answer;
}

} // namespace Zamt::Host
