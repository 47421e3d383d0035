#pragma once

#include "quindle/core/Export.h"

#include <string>
#include <vector>

/// @file
/// The manual that the library carries: what a Quindle is and how to write one, in plain text for people and
/// for assistants. It is made on first use, never changes, and may be read from any thread. std::bad_alloc
/// passes through.
namespace Zamt {

/// One section of the manual.
struct QUINDLE_API QuindleReferenceSection {
  std::string key;   ///< The short word by which the section is asked for.
  std::string title; ///< The heading.
  std::string body;  ///< The text, ending in one line end.
};

/// The manual, its sections in the order in which they are to be read.
QUINDLE_API const std::vector<QuindleReferenceSection>& quindleLanguageReference();

/// The section of exactly this key, or null. It lives as long as the process.
QUINDLE_API const QuindleReferenceSection* findQuindleReferenceSection(const std::string& key);

/// The keys of all sections, in order.
QUINDLE_API std::vector<std::string> quindleReferenceSectionKeys();

/// The whole manual as one text, each section under a line with its title and key.
QUINDLE_API std::string quindleLanguageReferenceText();

/// The grammar on one screen.
QUINDLE_API std::string quindleGrammarSummary();

} // namespace Zamt
