#pragma once

#include "quindle/core/Export.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// A Quindle in memory: plain records with public fields that hold everything the text says, in its order.
/// A copy is deep. Records nest without limit; copying, printing and destroying them does not recurse.
/// Nothing here is locked: a document belongs to one thread at a time.
namespace Zamt {

/// A literal as it stands in the text.
struct QUINDLE_API QuindleValue {
  enum class Kind : std::int32_t {
    None = 0,      ///< Nothing there, or a value that could not be read.
    Number = 1,    ///< `numberValue`, spelled `textValue` if it came from a file.
    Text = 2,      ///< `textValue`, with escapes resolved.
    Boolean = 3,   ///< `boolValue`.
    Tuple = 4,     ///< `items`: a colour, a vector, a range.
    Identifier = 5 ///< A bare word, in `textValue`: an enum choice or a name.
  };

  Kind kind = Kind::None;
  bool boolValue = false;
  double numberValue = 0;
  std::string textValue;
  std::vector<QuindleValue> items;

  QuindleValue() = default;
  QuindleValue(const QuindleValue& other);
  QuindleValue(QuindleValue&& other) noexcept = default;
  QuindleValue& operator=(const QuindleValue& other);
  QuindleValue& operator=(QuindleValue&& other) noexcept;
  ~QuindleValue();

  static QuindleValue number(double value); ///< Without a spelling: printed from the value.
  static QuindleValue text(const std::string& value);
  static QuindleValue boolean(bool value);
  static QuindleValue identifier(const std::string& word);

  /// The value as source text. A number that came from a file is printed in its own spelling, any other in
  /// the shortest one that reads back as the same number.
  std::string toSource() const;

  /// What the value is as plain text, for a slot or an argument: the characters of a text or a bare word,
  /// the source text of anything else.
  std::string toPlainText() const;
};

/// One node of an expression.
struct QUINDLE_API QuindleExpr {
  enum class Kind : std::int32_t {
    None = 0,      ///< No expression: an unset field.
    Literal = 1,   ///< `value`.
    Reference = 2, ///< `name`: a parameter, an earlier "let" or a field of the data.
    Call = 3,      ///< `name`, `operands`, `argNames`.
    And = 4,       ///< Two or more `operands`, flat, in source order.
    Or = 5,        ///< Likewise.
    Not = 6,       ///< One operand.
    Compare = 7    ///< `op` between two `operands`.
  };

  Kind kind = Kind::None;
  QuindleValue value;
  std::string name;
  std::string op; ///< One of "<=", ">=", "==", "!=", "<", ">".
  std::vector<QuindleExpr> operands;
  std::vector<std::string>
      argNames;          ///< Of a Call, as long as `operands`; empty text for a positional argument.
  std::int32_t line = 0; ///< Where the node starts, from 1, in bytes.
  std::int32_t column = 0;

  QuindleExpr() = default;
  QuindleExpr(const QuindleExpr& other);
  QuindleExpr(QuindleExpr&& other) noexcept = default;
  QuindleExpr& operator=(const QuindleExpr& other);
  QuindleExpr& operator=(QuindleExpr&& other) noexcept;
  ~QuindleExpr();

  /// The expression as source text, with the parentheses that reading it back as the same tree needs, and
  /// no others.
  std::string toSource() const;
};

/// One step of a block. One record serves all kinds; a kind uses the fields it names, the others stay empty.
struct QUINDLE_API QuindleStep {
  enum class Kind : std::int32_t {
    Comment = 0,  ///< `comment`: one line, trimmed.
    Let = 1,      ///< `name`, `value`.
    Create = 2,   ///< `name`; `value` is a Literal holding the creator as Text.
    Select = 3,   ///< `condition`.
    Classify = 4, ///< `value` is the class; `classNumber` and `color`, or None.
    Unparsed = 5, ///< Has no form in the language.
    Set = 6,      ///< `name` is the target "object.slot"; `value`.
    Connect = 7,  ///< `name` is the target "object.slot"; `source`.
    Call = 8,     ///< `name` is "object.action"; `args`, `argNames`.
    If = 9,       ///< `condition`, `body`, `elseBody`.
    ForEach = 10, ///< `name` is the loop variable; `value` the collection; `body`.
    Report = 11,  ///< `value` is a Literal holding the line as Text.
    Run = 12      ///< `name` is the other Quindle's; `args`, `argNames`.
  };

  Kind kind = Kind::Comment;
  std::string name;
  std::string source;
  QuindleExpr value;
  QuindleExpr condition;
  std::vector<QuindleExpr> args;
  std::vector<std::string> argNames; ///< Parallel to `args`; empty text for a positional argument.
  QuindleValue color;
  QuindleValue classNumber;
  std::string comment;
  std::vector<QuindleStep> body;
  std::vector<QuindleStep> elseBody;
  std::int32_t line = 0;   ///< Of the step's keyword.
  std::int32_t column = 0; ///< Likewise; 0 on a Comment.

  QuindleStep() = default;
  QuindleStep(const QuindleStep& other);
  QuindleStep(QuindleStep&& other) noexcept = default;
  QuindleStep& operator=(const QuindleStep& other);
  QuindleStep& operator=(QuindleStep&& other) noexcept;
  ~QuindleStep();
};

/// One parameter.
struct QUINDLE_API QuindleParam {
  enum class DefaultSource : std::int32_t {
    Written = 0, ///< `defaultValue`, if it is not None.
    Pick = 1,    ///< "= pick": ask when it runs.
    Brush = 2,   ///< "= brush": the region the user is painting with.
    Active = 3   ///< "= active": whatever the application has selected.
  };

  std::string name;
  std::string type; ///< The type word as written; any word is held.
  DefaultSource defaultSource = DefaultSource::Written;
  QuindleValue defaultValue;
  QuindleValue minimum; ///< None, like `maximum`, when no range was written.
  QuindleValue maximum;
  std::string help;
  std::int32_t line = 0; ///< Of the word "param".
  std::int32_t column = 0;
};

/// One "on" block.
struct QUINDLE_API QuindleTrigger {
  enum class Kind : std::int32_t { Run = 0, Key = 1, TileEnter = 2, Load = 3 };

  Kind kind = Kind::Run;
  std::string key; ///< Of a Key trigger, as written.
  std::vector<QuindleStep> steps;
  std::int32_t line = 0; ///< Of the word "on".
};

/// A whole file.
struct QUINDLE_API QuindleDocument {
  using Listener = std::function<void(const QuindleDocument&)>;

  std::string name;
  std::string description;
  std::string category;
  std::string icon;
  std::string author;
  std::string version;
  std::vector<std::string> tags;
  std::string shortcut;
  bool enabled = true;
  std::vector<QuindleParam> params;
  std::vector<QuindleTrigger> triggers;
  std::string sourceFile; ///< The file it was read from.
  std::uint32_t revision = 0;
  std::map<std::int32_t, Listener> listeners;
  std::int32_t nextListenerId = 1;

  /// The first parameter of exactly this name, or null. It lives as long as `params` is not changed.
  QuindleParam* findParam(const std::string& name);
  const QuindleParam* findParam(const std::string& name) const;

  /// What a plain run executes: the first Run trigger, else the first Key trigger, else null.
  const QuindleTrigger* runTrigger() const;

  /// Keeps a copy of `listener`, to be called by `touch`, and returns its number, which is never given out
  /// twice. Copies of the document carry the listener along and call it with the copy.
  int addListener(const Listener& listener);

  /// Forgets a listener; an unknown number does nothing.
  void removeListener(int id);

  /// For the host to call when it changed the document: raises `revision` and calls the listeners in the
  /// order of their numbers. They may add and remove listeners; that counts from the next touch on.
  void touch();
};

/// Finds another Quindle by name. True with `document` filled when it was found and can run; false with an
/// empty `error` when there is none of that name; false with text when it exists and cannot be run.
using QuindleResolver =
    std::function<bool(const std::string& name, QuindleDocument& document, std::string& error)>;

/// A copy of `text` in which every byte that is no ASCII letter, digit or "_" is a "_".
QUINDLE_API std::string quindleIdentifier(const std::string& text);

} // namespace Zamt
