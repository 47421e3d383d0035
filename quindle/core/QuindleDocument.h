#pragma once

#include "quindle/core/Export.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <vector>

/// @file
/// A Quindle in memory: plain records with public fields that hold everything the text says, in its order.
/// A copy is deep. Records nest without limit; copying, printing and destroying them does not recurse. What
/// needs memory that is not there, copies included, lets std::bad_alloc through; moving and destroying need
/// none.
/// Nothing here is locked: a document belongs to one thread at a time.
namespace Zamt {

/// A literal as it stands in the text.
struct QUINDLE_API QuindleValue {
  /// What stands there, and which fields say so.
  enum class Kind : std::int32_t {
    None = 0,      ///< Nothing there, or a value that could not be read.
    Number = 1,    ///< `numberValue`, spelled `textValue` if it came from a file.
    Text = 2,      ///< `textValue`, with escapes resolved.
    Boolean = 3,   ///< `boolValue`.
    Tuple = 4,     ///< `items`: a colour, a vector, a range.
    Identifier = 5 ///< A bare word, in `textValue`: an enum choice or a name.
  };

  Kind kind = Kind::None;          ///< Which of the fields below count.
  bool boolValue = false;          ///< Of a Boolean.
  double numberValue = 0;          ///< Of a Number.
  std::string textValue;           ///< Of a Text or an Identifier; of a Number its spelling in the file.
  std::vector<QuindleValue> items; ///< Of a Tuple, in order.

  /// All fields in this order, as a tuple of references: what copies, moves or shows a whole record goes
  /// through them. No field can be left out: the list of names has to be as long as the record's.
  QUINDLE_PRIVATE static auto fieldsOf(auto& record) {
    auto& [kind, boolValue, numberValue, textValue, items] = record;
    return std::tie(kind, boolValue, numberValue, textValue, items);
  }

  /// A copy is deep. None of these recurses, however deep the nesting.
  /// @{
  QuindleValue() = default;
  QuindleValue(const QuindleValue& other);
  QuindleValue(QuindleValue&& other) noexcept = default;
  QuindleValue& operator=(const QuindleValue& other);
  QuindleValue& operator=(QuindleValue&& other) noexcept;
  ~QuindleValue();
  /// @}

  static QuindleValue number(double value);                ///< Without a spelling: printed from the value.
  static QuindleValue text(const std::string& value);      ///< The characters, without quotes or escapes.
  static QuindleValue boolean(bool value);                 ///< `true` or `false`.
  static QuindleValue identifier(const std::string& word); ///< A bare word, which is not checked to be one.

  /// The value as source text. A number that came from a file is printed in its own spelling, any other in
  /// the shortest one that reads back as the same number.
  std::string toSource() const;

  /// What the value is as plain text, for a slot or an argument: the characters of a text or a bare word,
  /// the source text of anything else.
  std::string toPlainText() const;
};

/// One node of an expression.
struct QUINDLE_API QuindleExpr {
  /// What the node is, and which fields it uses.
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

  Kind kind = Kind::None;            ///< Which of the fields below count.
  QuindleValue value;                ///< Of a Literal.
  std::string name;                  ///< Of a Reference or a Call.
  std::string op;                    ///< Of a Compare: one of "<=", ">=", "==", "!=", "<", ">".
  std::vector<QuindleExpr> operands; ///< The nodes below; of a Call its arguments.
  /// Of a Call, as long as `operands`; empty text for a positional argument.
  std::vector<std::string> argNames;
  std::int32_t line = 0;   ///< Where the node starts, from 1; 0 for nowhere.
  std::int32_t column = 0; ///< Likewise, in bytes.

  /// All fields in this order, as a tuple of references.
  QUINDLE_PRIVATE static auto fieldsOf(auto& record) {
    auto& [kind, value, name, op, operands, argNames, line, column] = record;
    return std::tie(kind, value, name, op, operands, argNames, line, column);
  }

  /// A copy is deep. None of these recurses, however deep the nesting.
  /// @{
  QuindleExpr() = default;
  QuindleExpr(const QuindleExpr& other);
  QuindleExpr(QuindleExpr&& other) noexcept = default;
  QuindleExpr& operator=(const QuindleExpr& other);
  QuindleExpr& operator=(QuindleExpr&& other) noexcept;
  ~QuindleExpr();
  /// @}

  /// The expression as source text, with the parentheses that reading it back as the same tree needs, and
  /// no others.
  std::string toSource() const;
};

/// One step of a block. One record serves all kinds; a kind uses the fields it names, the others stay empty.
struct QUINDLE_API QuindleStep {
  /// What the step does, and which fields it uses.
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

  Kind kind = Kind::Comment;         ///< Which of the fields below count.
  std::string name;                  ///< What is named, made, written to, called or run.
  std::string source;                ///< Of a Connect: "object" or "object.slot".
  QuindleExpr value;                 ///< What is worked out, made, set, gone through or said; see `Kind`.
  QuindleExpr condition;             ///< Of a Select or an If.
  std::vector<QuindleExpr> args;     ///< Of a Call or a Run.
  std::vector<std::string> argNames; ///< Parallel to `args`; empty text for a positional argument.
  QuindleValue color;                ///< Of a Classify; None when no colour was written.
  QuindleValue classNumber;          ///< Of a Classify; None when no number was written.
  std::string comment;               ///< Of a Comment.
  std::vector<QuindleStep> body;     ///< Of an If or a ForEach.
  std::vector<QuindleStep> elseBody; ///< Of an If; empty when there is no "else".
  std::int32_t line = 0;             ///< Of the step's keyword.
  std::int32_t column = 0;           ///< Likewise; 0 on a Comment.

  /// All fields in this order, as a tuple of references.
  QUINDLE_PRIVATE static auto fieldsOf(auto& record) {
    auto& [kind, name, source, value, condition, args, argNames, color, classNumber, comment, body, elseBody,
           line, column] = record;
    return std::tie(kind, name, source, value, condition, args, argNames, color, classNumber, comment, body,
                    elseBody, line, column);
  }

  /// A copy is deep. None of these recurses, however deep the nesting.
  /// @{
  QuindleStep() = default;
  QuindleStep(const QuindleStep& other);
  QuindleStep(QuindleStep&& other) noexcept = default;
  QuindleStep& operator=(const QuindleStep& other);
  QuindleStep& operator=(QuindleStep&& other) noexcept;
  ~QuindleStep();
  /// @}
};

/// One parameter.
struct QUINDLE_API QuindleParam {
  /// Where the value comes from when a run is not given one.
  enum class DefaultSource : std::int32_t {
    Written = 0, ///< `defaultValue`, if it is not None.
    Pick = 1,    ///< "= pick": ask when it runs.
    Brush = 2,   ///< "= brush": the region the user is painting with.
    Active = 3   ///< "= active": whatever the application has selected.
  };

  std::string name;                                     ///< What steps and `args` call it by.
  std::string type;                                     ///< The type word as written; any word is held.
  DefaultSource defaultSource = DefaultSource::Written; ///< Whether the application is asked.
  QuindleValue defaultValue;                            ///< None when no value was written.
  QuindleValue minimum;                                 ///< None, like `maximum`, when no range was written.
  QuindleValue maximum;                                 ///< Inclusive, like `minimum`.
  std::string help;                                     ///< The sentence for the user; may be empty.
  std::int32_t line = 0;                                ///< Of the word "param".
  std::int32_t column = 0;                              ///< Which the reader leaves at 0.

  /// All fields in this order, as a tuple of references.
  QUINDLE_PRIVATE static auto fieldsOf(auto& record) {
    auto& [name, type, defaultSource, defaultValue, minimum, maximum, help, line, column] = record;
    return std::tie(name, type, defaultSource, defaultValue, minimum, maximum, help, line, column);
  }
};

/// One "on" block.
struct QUINDLE_API QuindleTrigger {
  /// The occasion: "on run", "on key", "on tile.enter", "on load". Only the first two are ever run.
  enum class Kind : std::int32_t { Run = 0, Key = 1, TileEnter = 2, Load = 3 };

  Kind kind = Kind::Run;          ///< When the steps run.
  std::string key;                ///< Of a Key trigger, as written.
  std::vector<QuindleStep> steps; ///< In the order of the file, comments included.
  std::int32_t line = 0;          ///< Of the word "on".

  /// All fields in this order, as a tuple of references.
  QUINDLE_PRIVATE static auto fieldsOf(auto& record) {
    auto& [kind, key, steps, line] = record;
    return std::tie(kind, key, steps, line);
  }
};

/// A whole file.
struct QUINDLE_API QuindleDocument {
  /// What `touch` calls with the document that was touched.
  using Listener = std::function<void(const QuindleDocument&)>;

  std::string name;                     ///< What a library, a key and a "run" step know it by.
  std::string description;              ///< A sentence; empty, like the other settings, when not written.
  std::string category;                 ///< The group to list it under.
  std::string icon;                     ///< For the host; not looked at here.
  std::string author;                   ///< For people.
  std::string version;                  ///< For people.
  std::vector<std::string> tags;        ///< Words to find it by.
  std::string shortcut;                 ///< The keys that it asks for, as written, parted by blanks.
  bool enabled = true;                  ///< A Quindle that is switched off is kept and never runs.
  std::vector<QuindleParam> params;     ///< In the order of the file.
  std::vector<QuindleTrigger> triggers; ///< In the order of the file.
  std::string sourceFile;               ///< The file it was read from.
  std::uint32_t revision = 0;           ///< Raised by `touch`; tells a runtime that its program is old.
  std::map<std::int32_t, Listener> listeners; ///< By number; see `addListener`.
  std::int32_t nextListenerId = 1;            ///< The number that the next listener gets.

  /// All fields in this order, as a tuple of references.
  QUINDLE_PRIVATE static auto fieldsOf(auto& record) {
    auto& [name, description, category, icon, author, version, tags, shortcut, enabled, params, triggers,
           sourceFile, revision, listeners, nextListenerId] = record;
    return std::tie(name, description, category, icon, author, version, tags, shortcut, enabled, params,
                    triggers, sourceFile, revision, listeners, nextListenerId);
  }

  /// The first parameter of exactly this name, or null. It lives as long as `params` is not changed.
  /// @{
  QuindleParam* findParam(const std::string& name);
  const QuindleParam* findParam(const std::string& name) const;
  /// @}

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
