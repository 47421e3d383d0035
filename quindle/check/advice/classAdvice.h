#pragma once

#include "quindle/check/advice/Advisor.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Zamt {

/// Advises on the name of a class that is nearly that of a class of the standard. `where` is the argument or
/// the step that has it.
template <class Record>
void adviseOnClassName(std::string_view name, const Record& where, Advisor& advisor);

/// Advises on what the "classify into" steps of a document say of classes, each by itself and compared with
/// those before it.
class ClassAdvice {
public:
  explicit ClassAdvice(Advisor& advisor);

  /// `selected` are the classes that the "select" in front of the step keeps, as far as they are written out.
  void classify(const QuindleStep& step, const std::vector<std::string>& selected);

private:
  /// What an earlier step said of a class.
  struct Use {
    std::string other; ///< The number of a name, empty for none; the name of a number.
    std::int32_t line;
  };

  void adviseOnOwnClass(const QuindleStep& step, const std::string& name, const std::string& number,
                        const std::vector<std::string>& selected);
  void adviseOnNumberAsName(const QuindleStep& step, const std::string& name, const std::string& number);
  void compareWithEarlier(const QuindleStep& step, const std::string& name, const std::string& number);

  Advisor& advisor_;
  bool hasData_; ///< There is a parameter whose points can be classified.
  std::unordered_map<std::string, Use> numbers_;
  std::unordered_map<std::string, Use> names_;
};

/// The class of the standard, of the current or of an older table, that `name` nearly is; empty if there is
/// none, or if `name` is one itself.
std::string nearClassName(std::string_view name);

template <class Record>
void adviseOnClassName(std::string_view name, const Record& where, Advisor& advisor) {
  const std::string meant = nearClassName(name);
  if (!meant.empty())
    advisor.warn(where, inQuotes(name) + " is not the standard class " + inQuotes(meant) +
                            ": names of classes are taken exactly as written. Write " + inQuotes(meant) +
                            " if that is meant.");
}

} // namespace Zamt
