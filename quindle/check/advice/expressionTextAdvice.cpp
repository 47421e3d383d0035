#include "quindle/check/advice/expressionTextAdvice.h"

#include "quindle/check/advice/fieldAdvice.h"
#include "quindle/core/AsciiText.h"
#include "quindle/text/signWords.h"

#include <algorithm>
#include <string>

namespace Zamt {

namespace {

/// Bytes of other alphabets count, as fields may be named in any language.
bool beginsName(char c) { return isLetter(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80; }

class ExpressionTextAdvice {
public:
  ExpressionTextAdvice(std::string_view text, const QuindleExpr& where, Advisor& advisor)
      : rest_(text), where_(where), advisor_(advisor) {}

  void advise() {
    while (!rest_.empty()) {
      const char c = rest_.front();
      if (beginsName(c) || isDigit(c))
        readWord();
      else if (c == '\'')
        readQuotedName();
      else if (const SignWord* const sign = findSignWord(rest_))
        readForeignSign(*sign);
      else
        readSign();
    }
    if (!open_.empty())
      warn("opens a " + inQuotes(open_.substr(0, 1)) + " that is never closed. Write " +
           (open_.front() == '(' ? "\")\"" : "\"]\"") + " behind what belongs into it.");
  }

private:
  /// A number counts as a word, as its exponent has letters in it.
  void readWord() {
    const auto end = std::find_if(rest_.begin(), rest_.end(),
                                  [](char c) { return !beginsName(c) && !isDigit(c) && c != '.'; });
    const std::string_view word = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
    rest_.remove_prefix(word.size());
    if (isDigit(word.front()) || isCoordinate(word)) return;
    if (advisor_.findParam(word))
      warn("names " + inQuotes(word) +
           ", which is a field there: parameters are not put into a text. Compare outside, as in \"Intensity "
           ">= " +
           std::string(word) + "\", or write the number.");
    else if (const std::optional<std::string> known = fieldInOtherCase(word))
      warn("names " + inQuotes(word) + ", and the usual field is called \"" + *known +
           "\": names are taken exactly as written. Write " + *known + " if the usual one is meant.");
  }

  void readQuotedName() {
    const std::size_t end = rest_.find('\'', 1);
    if (end == std::string_view::npos)
      warn("opens a name with ' that is never closed. Write ' behind the name.");
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
  }

  void readForeignSign(const SignWord& sign) {
    warn("holds " + inQuotes(sign.sign) + ", which means nothing there. Write \"" + std::string(sign.word) +
         "\".");
    rest_.remove_prefix(sign.sign.size());
  }

  void readSign() {
    constexpr std::size_t longest = 2; // of the signs that hold one of the foreign ones
    const char c = rest_.front();
    if (c == '(' || c == '[') open_ += c;
    if (c == ')' || c == ']') close(c);
    const bool isLong =
        rest_.size() >= longest && rest_[1] == '=' && (c == '<' || c == '>' || c == '=' || c == '!');
    rest_.remove_prefix(isLong ? longest : 1);
  }

  void close(char c) {
    const char opening = c == ')' ? '(' : '[';
    if (!open_.empty() && open_.back() == opening)
      open_.pop_back();
    else
      warn("closes a " + inQuotes(std::string(1, opening)) + " that was never opened. Take away the \"" + c +
           "\", or write \"" + opening + "\" before what belongs into it.");
  }

  void warn(const std::string& what) { advisor_.warn(where_, "The text of this \"expr\" " + what); }

  std::string_view rest_;
  const QuindleExpr& where_;
  Advisor& advisor_;
  std::string open_; ///< The brackets that wait to be closed.
};

} // namespace

void adviseOnExpressionText(std::string_view text, const QuindleExpr& where, Advisor& advisor) {
  ExpressionTextAdvice(text, where, advisor).advise();
}

} // namespace Zamt
