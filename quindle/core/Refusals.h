#pragma once

#include <string>

/// @file
/// What is refused whatever the scene is, in words: compilation and runs say them as errors, and advice says
/// the same beforehand.
namespace Zamt::refusal {

/// Of a word that is the argument of a condition.
inline std::string notAParameter(const std::string& word) {
  return "\"" + word +
         "\" is not a parameter of this Quindle. Declare it with \"param\", or put it in quotes if it is the "
         "name of something in the data.";
}

/// Of an argument of a condition that is neither written out nor a word.
inline std::string argumentNotWorkedOut(const std::string& argument, const std::string& condition,
                                        const std::string& source) {
  return "The \"" + argument + "\" of \"" + condition + "\" is " + source +
         ", which cannot be worked out here.";
}

/// Of a word in the expression of a "let", an "if" or an argument of a "run".
inline std::string noValue(const std::string& word) {
  return "\"" + word +
         "\" has no value here. It is neither a parameter of this Quindle nor set by an earlier \"let\".";
}

/// Of a call in such an expression.
inline std::string needsData(const std::string& call) {
  return "\"" + call +
         "\" cannot be worked out here: a \"let\" or an \"if\" is decided before the data is touched, and "
         "this needs the data.";
}

/// Of a word in the braces of a report; the run goes on, with the braces as they are.
inline std::string notInReport(const std::string& word) {
  return "The report mentions \"{" + word + "}\", which is not a parameter of this Quindle.";
}

inline constexpr const char* noClassInQuotes = "A classify step needs the name of a class in quotes.";
inline constexpr const char* noClass = "A classify step has to say which class to put the points into.";
inline constexpr const char* noDataToClassify =
    "This Quindle classifies points but never says which data to classify. Add a parameter of type Field for "
    "the classification itself, or of type Grid for the cloud it belongs to.";

/// Of a "classify into" behind a "select" of the same class.
inline std::string ownClass(const std::string& name, const std::string& number) {
  return "This puts the points into \"" + name + "\", which is class " + number +
         " - one of the classes it selects. That cannot change anything.";
}

inline constexpr const char* cannotRunYet = "This kind of step cannot be run yet.";
inline constexpr const char* onlyWrittenOut = "Only a written-out value can be set for now.";
inline constexpr const char* guardsTooLarge =
    "The conditions of the \"if\" blocks around the steps of this Quindle add up to more than can be kept, "
    "since every step carries all those around it. Nest the blocks less deeply, or move some of the steps to "
    "a "
    "Quindle of their own and \"run\" that.";
inline constexpr const char* nothingToRun = "This Quindle has nothing to run.";

inline std::string noSlot(const std::string& target) {
  return "\"" + target + "\" does not name a slot. Write it as Object.slot.";
}

inline std::string noAction(const std::string& target) {
  return "\"" + target + "\" does not name an action. Write it as Object.action.";
}

} // namespace Zamt::refusal
