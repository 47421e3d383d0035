#include "host/session/ClassTable.h"

#include "host/objects/standardClassNames.h"
#include "host/session/classNames.h"
#include "quindle/core/PointVocabulary.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace Zamt::Host {

namespace {

constexpr std::array<float, 4> plainColour{0.5F, 0.5F, 0.5F, 1.0F};

/// The last of the numbers that the standard names or keeps to itself; behind it they are everybody's own.
constexpr std::int32_t lastReserved = 63;

constexpr std::int32_t lastClass = 255;

std::optional<std::int32_t> standardNumber(const std::string& name) {
  for (const auto* const table : {&standardQuindleClasses(), &olderQuindleClasses()})
    for (const QuindleClass& known : *table)
      if (known.name == name) return known.number;
  return std::nullopt;
}

/// The name of the current table; empty for none.
std::string currentName(std::int32_t number) {
  for (const QuindleClass& known : standardQuindleClasses())
    if (known.number == number) return known.name;
  return {};
}

/// The names that files define, and where two files contradict each other.
class Definitions {
public:
  struct Defined {
    std::string name;
    std::string file;
  };

  /// `wholeNames` are by what a file holds of them.
  void add(const CloudClasses& cloud, const std::map<std::string, std::string>& wholeNames) {
    for (const ClassName& named : cloud.names) {
      const auto whole = wholeNames.find(named.name);
      addOne(named.number, whole == wholeNames.end() ? named.name : whole->second, cloud.file);
    }
  }

  const std::map<std::int32_t, Defined>& all() const { return defined_; }

  /// Null for a number that no file defines.
  const Defined* find(std::int32_t number) const {
    const auto found = defined_.find(number);
    return found == defined_.end() ? nullptr : &found->second;
  }

  std::optional<std::int32_t> numberOf(const std::string& name) const {
    const auto found = numbers_.find(name);
    return found == numbers_.end() ? std::nullopt : std::optional(found->second);
  }

  /// What is wrong with a number, or with a name; empty if all files agree.
  /// @{
  std::string contradiction(std::int32_t number) const {
    const auto found = wrongNumbers_.find(number);
    return found == wrongNumbers_.end() ? std::string() : found->second;
  }
  std::string contradiction(const std::string& name) const {
    const auto found = wrongNames_.find(name);
    return found == wrongNames_.end() ? std::string() : found->second;
  }
  /// @}

private:
  void addOne(std::int32_t number, const std::string& name, const std::string& file) {
    const auto [defined, isNew] = defined_.emplace(number, Defined{name, file});
    const Defined& earlier = defined->second;
    if (!isNew && earlier.name == name) return;
    constexpr const char* advice = "Work on them in two commands, or have one of them name it as the other.";
    if (!isNew) {
      const std::string sentence = fmt::format("\"{}\" calls class {} \"{}\", and \"{}\" calls it \"{}\". {}",
                                               earlier.file, number, earlier.name, file, name, advice);
      wrongNumbers_.emplace(number, sentence);
      wrongNames_.emplace(earlier.name, sentence);
      wrongNames_.emplace(name, sentence);
      return;
    }
    const auto [numbered, isNewName] = numbers_.emplace(name, number);
    const std::int32_t other = numbered->second;
    if (isNewName || defined_[other].file == file) return;
    const std::string sentence = fmt::format("\"{}\" is class {} in \"{}\" and class {} in \"{}\". {}", name,
                                             other, defined_[other].file, number, file, advice);
    wrongNumbers_.emplace(other, sentence);
    wrongNumbers_.emplace(number, sentence);
    wrongNames_.emplace(name, sentence);
  }

  std::map<std::int32_t, Defined> defined_;     ///< As the first file has it that defines it.
  std::map<std::string, std::int32_t> numbers_; ///< Likewise.
  std::map<std::int32_t, std::string> wrongNumbers_;
  std::map<std::string, std::string> wrongNames_;
};

class TableMaker {
public:
  TableMaker(const std::vector<CloudClasses>& clouds, const std::vector<SaidClass>& said,
             const FindClassUse& findUse, Diag& diag)
      : clouds_(clouds), said_(said), findUse_(findUse), diag_(diag) {}

  bool make() {
    readDefinitions();
    for (const SaidClass& said : said_)
      if (said.isTarget && said.number) saidAs_.emplace(said.name, *said.number);
    if (!filesAgree() || !eachHasOneName()) return false;
    for (const auto& [number, defined] : definitions_.all())
      setLabel(number, definitions_.contradiction(number).empty() ? defined.name : std::string());
    for (std::int32_t number = 0; number <= lastReserved; ++number)
      if (!offerStandard(number)) return false;
    for (const SaidClass& said : said_)
      if (said.isTarget && !warnOf(said)) return false;
    return makeRoom();
  }

  LabelSet labels() const { return labels_; }

private:
  void readDefinitions() {
    std::map<std::string, std::string> wholeNames;
    for (const SaidClass& said : said_)
      if (said.name.size() > longestClassName) wholeNames.emplace(storedClassName(said.name), said.name);
    for (const CloudClasses& cloud : clouds_) definitions_.add(cloud, wholeNames);
  }

  void tell(Diag::Severity severity, const std::string& sentence, const SaidClass& said) {
    if (told_.insert(sentence).second)
      diag_.at(severity, sentence, said.file, said.file.empty() ? 0 : said.line, 0);
  }

  /// Whether no class that is said is one in which files contradict each other.
  bool filesAgree() {
    const std::uint64_t before = diag_.errorCount;
    for (const SaidClass& said : said_) {
      std::string sentence = definitions_.contradiction(said.name);
      const std::optional<std::int32_t> number = numberOf(said);
      if (sentence.empty() && number) sentence = definitions_.contradiction(*number);
      if (!sentence.empty()) tell(Diag::Severity::Error, sentence, said);
    }
    return diag_.errorCount == before;
  }

  /// The number that a said class has, or nothing if it is new.
  std::optional<std::int32_t> numberOf(const SaidClass& said) const {
    if (said.number) return said.number;
    if (const auto defined = definitions_.numberOf(said.name)) return defined;
    const auto as = saidAs_.find(said.name);
    if (as != saidAs_.end()) return as->second;
    const std::optional<std::int32_t> standard = standardNumber(said.name);
    return standard && !isOtherwiseDefined(*standard) ? standard : std::nullopt;
  }

  /// Whether files give a number of the standard to something else.
  bool isOtherwiseDefined(std::int32_t number) const {
    const Definitions::Defined* const defined = definitions_.find(number);
    return defined && definitions_.contradiction(number).empty() && !isStandardClass(number, defined->name);
  }

  bool eachHasOneName() {
    const std::uint64_t before = diag_.errorCount;
    for (const SaidClass& said : said_) {
      const std::optional<std::int32_t> number = numberOf(said);
      if (!number || said.name.empty()) continue;
      const SaidClass& first = *called_.emplace(*number, &said).first->second;
      if (first.name == said.name) continue;
      const std::string place =
          first.file.empty() ? std::string() : fmt::format(" ({}:{})", first.file, first.line);
      tell(Diag::Severity::Error,
           fmt::format(
               "Class {} is called \"{}\"{} and \"{}\" in one run. Write the same name in both places, "
               "or another number.",
               *number, first.name, place, said.name),
           said);
    }
    return diag_.errorCount == before;
  }

  void setLabel(std::int32_t number, const std::string& name) {
    labels_.labels[number] = {number, plainColour, name, {}, {}};
  }

  /// What the Quindles call a number; empty for nothing.
  std::string calledName(std::int32_t number) const {
    const auto called = called_.find(number);
    return called == called_.end() ? std::string() : called->second->name;
  }

  /// Adds what the standard calls the number. False if it was stopped.
  bool offerStandard(std::int32_t number) {
    const std::string called = calledName(number);
    const bool isSynonym = isStandardClass(number, called);
    if (const Definitions::Defined* const defined = definitions_.find(number)) {
      if (isSynonym && isStandardClass(number, defined->name)) setLabel(number, called);
      return true;
    }
    const std::string name = isSynonym ? called : currentName(number);
    if (name.empty() || definitions_.numberOf(name)) return true;
    const auto as = saidAs_.find(name);
    const bool isContested = (as != saidAs_.end() && as->second != number) || (!called.empty() && !isSynonym);
    if (isContested && !findUse()) return false;
    if (!isContested || !use_->at(static_cast<std::size_t>(number)).empty()) setLabel(number, name);
    return true;
  }

  bool findUse() {
    if (use_) return true;
    ClassUse use;
    if (!findUse_(use)) return false;
    use_ = std::move(use);
    return true;
  }

  bool hasLabel(std::int32_t number, const std::string& name) const {
    const auto label = labels_.labels.find(number);
    return label != labels_.labels.end() && label->second.name == name;
  }

  /// Says what the standard makes of a name and a number that are used otherwise, and where points are in a
  /// class that has no name yet. False if it was stopped.
  bool warnOf(const SaidClass& target) {
    const std::optional<std::int32_t> usual = standardNumber(target.name);
    if (!target.number) {
      if (usual && isOtherwiseDefined(*usual) && !definitions_.numberOf(target.name)) {
        const Definitions::Defined& defined = *definitions_.find(*usual);
        tell(Diag::Severity::Warning,
             fmt::format(
                 "The standard makes \"{}\" class {}, which \"{}\" calls \"{}\": here it is a class of "
                 "its own. Write \"{}\" if that is meant.",
                 target.name, *usual, defined.file, defined.name, defined.name),
             target);
      }
      return true;
    }
    const std::int32_t number = *target.number;
    if (definitions_.numberOf(target.name)) return true; // which may be refused, but is not the standard's
    if (usual && *usual != number)
      tellOfStandard(target, *usual, target.name,
                     fmt::format("The standard makes \"{}\" class {}. Here it is class {}, as is written.",
                                 target.name, *usual, number));
    if (definitions_.find(number) || isStandardClass(number, target.name)) return true;
    const std::string usualName = currentName(number);
    if (!usualName.empty())
      tellOfStandard(target, number, usualName,
                     fmt::format("The standard calls class {} \"{}\". Here it is \"{}\", as is written.",
                                 number, usualName, target.name));
    const bool isKept = !usualName.empty() && hasLabel(number, usualName);
    return isKept || number > lastClass || warnOfUse(target, number);
  }

  bool warnOfUse(const SaidClass& target, std::int32_t number) {
    if (!findUse()) return false;
    const std::string& file = use_->at(static_cast<std::size_t>(number));
    if (!file.empty())
      tell(
          Diag::Severity::Warning,
          fmt::format("Points of \"{}\" are in class {} already, under no name. They will be \"{}\" as well.",
                      file, number, target.name),
          target);
    return true;
  }

  /// Warns if the standard gave way; else says why it did not.
  void tellOfStandard(const SaidClass& target, std::int32_t number, const std::string& name,
                      const std::string& warning) {
    if (!hasLabel(number, name)) return tell(Diag::Severity::Warning, warning, target);
    tell(Diag::Severity::Note,
         fmt::format("Class {} stays \"{}\", as in the standard: points of \"{}\" are in it.", number, name,
                     use_ ? use_->at(static_cast<std::size_t>(number)) : std::string()),
         target);
  }

  /// Classes that are made without a number get the ones behind the highest label. Sees to it that these are
  /// free, and that all points can hold them.
  bool makeRoom() {
    const auto tightest = std::ranges::min_element(clouds_, {}, &CloudClasses::highest);
    const std::int32_t reach =
        tightest == clouds_.end() ? lastClass : static_cast<std::int32_t>(tightest->highest);
    for (std::int32_t number = 0; reach >= lastReserved && number <= lastReserved; ++number)
      if (!labels_.labels.contains(number)) setLabel(number, {});
    const std::vector<const SaidClass*> made = newClasses();
    const auto unnumbered = std::ranges::find_if(made, [](const SaidClass* said) { return !said->number; });
    if (unnumbered == made.end()) return true;
    if (!findUse()) return false;
    dropBeyond(reach);
    const std::int32_t highest = labels_.labels.empty() ? 0 : labels_.labels.rbegin()->first;
    for (std::int32_t padded = highest; padded < reach; ++padded) {
      if (!getFreeNumbers(made, padded, reach)) continue;
      if (padded > highest) setLabel(padded, {});
      return true;
    }
    tell(Diag::Severity::Error,
         fmt::format("There is no class number left for \"{}\" behind those that are named or in use: points "
                     "of \"{}\" can be in classes up to {}. Give it a free one with \"as\".",
                     (*unnumbered)->name, tightest == clouds_.end() ? std::string() : tightest->file, reach),
         **unnumbered);
    return false;
  }

  /// Those that points are put into and that have no label, each as it is said first.
  std::vector<const SaidClass*> newClasses() const {
    std::set<std::string> known;
    for (const auto& [number, label] : labels_.labels) known.insert(label.name);
    std::vector<const SaidClass*> made;
    for (const SaidClass& said : said_)
      if (said.isTarget && known.insert(said.name).second) made.push_back(&said);
    return made;
  }

  /// Takes away labels that only some points can hold and that nobody says.
  void dropBeyond(std::int32_t reach) {
    std::set<std::int32_t> numbers;
    for (const SaidClass& said : said_)
      if (const auto number = numberOf(said)) numbers.insert(*number);
    std::erase_if(labels_.labels,
                  [&](const auto& label) { return label.first > reach && !numbers.contains(label.first); });
  }

  /// Whether the classes, made one after the other, come to free numbers if the highest label is that one.
  bool getFreeNumbers(const std::vector<const SaidClass*>& made, std::int32_t highest,
                      std::int32_t reach) const {
    for (const SaidClass* const said : made) {
      highest = std::max(highest, said->number ? std::min(*said->number, lastClass) : highest + 1);
      if (said->number) continue;
      if (highest > reach || called_.contains(highest) ||
          !use_->at(static_cast<std::size_t>(highest)).empty())
        return false;
    }
    return true;
  }

  const std::vector<CloudClasses>& clouds_;
  const std::vector<SaidClass>& said_;
  const FindClassUse& findUse_;
  Diag& diag_;
  Definitions definitions_;
  std::map<std::string, std::int32_t> saidAs_;      ///< The numbers that classes are made with.
  std::map<std::int32_t, const SaidClass*> called_; ///< By what name a number is said.
  std::optional<ClassUse> use_;                     ///< Once it was asked for.
  std::set<std::string> told_;
  LabelSet labels_;
};

} // namespace

bool makeClassTable(const std::vector<CloudClasses>& clouds, const std::vector<SaidClass>& said,
                    const FindClassUse& findUse, LabelSet& labels, Diag& diag) {
  TableMaker maker(clouds, said, findUse, diag);
  if (!maker.make()) return false;
  labels = maker.labels();
  return true;
}

} // namespace Zamt::Host
