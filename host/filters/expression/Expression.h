#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Zamt::Host {

/// A name that an expression may use, and how many values a point has under it.
struct ExpressionName {
  std::string name;
  unsigned components = 1;
};

/// One value that an expression needs of each point.
struct ExpressionInput {
  std::size_t name = 0; ///< Position in the names that the expression was compiled with.
  unsigned component = 0;
  bool operator==(const ExpressionInput&) const = default;
};

/// An expression over the values of points, compiled to a list of steps over whole columns.
///
/// From the weakest to the strongest: `or`; `and`; `not`; `< <= > >= == !=`; `+ -`; `* / %`; sign; `^`, which
/// groups from the right. `not` takes a whole comparison. Comparisons and the word operators give 1 or 0;
/// neither 0 nor NaN counts as true. A name is a field, else one of x, y, z, pi, true, false. A field whose
/// name is no plain word, or is one of the language's, is written in single quotes: 'Scan Angle'. One of
/// several components is written name[0]. All numbers are doubles, and comparisons with NaN are false, `!=`
/// excepted.
class Expression {
public:
  /// Nothing, with a sentence in `problem` that names the place, when the text has a fault. The names x, y
  /// and z stand for those of X, Y and Z.
  static std::optional<Expression> compile(std::string_view text, std::span<const ExpressionName> names,
                                           std::string& problem);

  /// The values it needs, each once.
  const std::vector<ExpressionInput>& inputs() const { return needed_; }

  /// How many points `evaluate` works on at once, at most: fewer for deeply nested expressions, so that the
  /// columns in between stay in proportion to the text.
  std::size_t columnLength() const;

  /// Works out the values of `out.size()` points, at most `columnLength()`; `columns` holds as many values
  /// for each of `inputs()`, and `scratch` is room that calls may share one after the other.
  void evaluate(std::span<const std::span<const double>> columns, std::vector<double>& scratch,
                std::span<double> out) const;

private:
  friend class ExpressionCompiler;

  using UnaryColumn = void (*)(double*, std::size_t);
  using BinaryColumn = void (*)(double*, const double*, std::size_t);

  /// Pushes a column or works on the uppermost ones.
  struct Step {
    enum class Kind : std::uint8_t { Constant, Input, Unary, Binary } kind = Kind::Constant;
    std::size_t input = 0;
    double constant = 0;
    UnaryColumn unary = nullptr;
    BinaryColumn binary = nullptr;
  };

  std::vector<ExpressionInput> needed_;
  std::vector<Step> steps_; ///< In postfix order.
  std::size_t depth_ = 0;   ///< Columns that are needed at once.
};

} // namespace Zamt::Host
