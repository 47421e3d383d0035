#include "quindle/core/Guarded.h"
#include "quindle/core/Refusals.h"
#include "quindle/plan/parameterValue.h"
#include "quindle/runtime/QuindleRuntime.h"

#include <array>
#include <optional>

namespace Zamt {

namespace {

/// A word that stands for a count, and the slot of the counting object that holds it.
struct Count {
  const char* word;
  const char* slot;
};

constexpr std::array<Count, 2> counts{
    {{"selected", sceneWords::modifiedSlot}, {"total", sceneWords::consideredSlot}}};

const Count* findCount(const std::string& word) {
  for (const Count& count : counts)
    if (word == count.word) return &count;
  return nullptr;
}

/// The count as the object tells it. Nothing, with a warning, if there is none: "nothing matched" and "this
/// was never counted" are different things to say, so no zero ever stands in for a missing count.
std::optional<std::string> readCount(const Count& count, QuindleOps& ops, const std::string& counter,
                                     bool preview, const std::string& place, Diag& diag) {
  const std::string braced = std::string("\"{") + count.word + "}\"";
  if (!counter.empty()) {
    std::string value;
    Diag unread;
    if (ops.getParam(counter, count.slot, value, unread) && !value.empty()) return value;
    passOnLackOfMemory(unread);
    diag.warning("The editor did not report a count, so " + braced + " is left unfilled in the report.",
                 place);
  } else if (preview) {
    diag.warning("This preview never got as far as counting anything, so " + braced + " is left unfilled.",
                 place);
  } else {
    diag.warning("Nothing in this Quindle counted any points, so " + braced + " is left unfilled.", place);
  }
  return std::nullopt;
}

} // namespace

std::string QuindleRuntime::expandReport(const std::string& text, const QuindleDocument& doc,
                                         const std::map<std::string, std::string>& args,
                                         const std::map<std::string, QuindleValue>& lets,
                                         const std::string& counter, bool preview, Diag& diag) const {
  return guarded(diag, std::string(),
                 [&] { return filledIn(text, doc, args, lets, counter, preview, diag); });
}

std::string QuindleRuntime::filledIn(const std::string& text, const QuindleDocument& doc,
                                     const std::map<std::string, std::string>& args,
                                     const std::map<std::string, QuindleValue>& lets,
                                     const std::string& counter, bool preview, Diag& diag) const {
  const auto lookUp = [&](const std::string& name) -> std::optional<std::string> {
    if (const auto let = lets.find(name); let != lets.end()) return let->second.toPlainText();
    if (std::optional<std::string> value = parameterValue(name, doc.findParam(name), args)) return value;
    if (const Count* const count = findCount(name))
      return readCount(*count, ops_, counter, preview, doc.name, diag);
    diag.warning(refusal::notInReport(name), doc.name);
    return std::nullopt;
  };

  std::string line;
  std::size_t done = 0;
  while (done < text.size()) {
    const std::size_t open = text.find('{', done);
    const std::size_t close = open == std::string::npos ? open : text.find('}', open);
    if (close == std::string::npos) break;
    line.append(text, done, open - done);
    const std::string name = text.substr(open + 1, close - open - 1);
    line += lookUp(name).value_or("{" + name + "}");
    done = close + 1;
  }
  return line.append(text, done, std::string::npos);
}

} // namespace Zamt
