#include "quindle/reference/QuindleReference.h"

#include "quindle/core/QuindleParamTypes.h"
#include "quindle/reference/referenceSections.h"

namespace Zamt {

namespace {

std::string typeWords() {
  std::string words;
  for (const QuindleParamType& type : quindleParamTypes) (words += words.empty() ? "" : "|") += type.word;
  return words;
}

} // namespace

const std::vector<QuindleReferenceSection>& quindleLanguageReference() {
  static const std::vector<QuindleReferenceSection> reference = makeReferenceSections();
  return reference;
}

const QuindleReferenceSection* findQuindleReferenceSection(const std::string& key) {
  for (const QuindleReferenceSection& section : quindleLanguageReference())
    if (section.key == key) return &section;
  return nullptr;
}

std::vector<std::string> quindleReferenceSectionKeys() {
  std::vector<std::string> keys;
  for (const QuindleReferenceSection& section : quindleLanguageReference()) keys.push_back(section.key);
  return keys;
}

std::string quindleLanguageReferenceText() {
  std::string out;
  for (const QuindleReferenceSection& section : quindleLanguageReference()) {
    if (!out.empty()) out += '\n';
    out += "== " + section.title + "  (" + section.key + ")\n\n" + section.body;
  }
  return out;
}

std::string quindleGrammarSummary() {
  return "  quindle \"<name>\" {\n"
         "      description \"<what it does, for the user>\"\n"
         "      category    \"<a group to list it under>\"\n"
         "      shortcut    \"<a key, optional>\"\n"
         "      tags        \"<one>\", \"<another>\"\n"
         "      enabled     true|false\n"
         "\n"
         "      param <name> : <" +
         typeWords() +
         ">\n"
         "                     = <default|active|brush|pick> [<min> .. <max>] \"<help>\"\n"
         "\n"
         "      on run {                        # or: on key \"<keys>\"\n"
         "          select <condition> [and|or|not <condition>] ...\n"
         "          classify into \"<class name>\" [as <number>] [color (<r>, <g>, <b>)]\n"
         "          create <name> = \"<Category/Identifier>\"\n"
         "          set <object>.<slot> = <value>\n"
         "          connect <object>.<slot> <- <object>.<slot>\n"
         "          call <object>.<action>       # or .\"<Action With Spaces>\"\n"
         "          run \"<another Quindle>\"(<param>: <value>, ...)\n"
         "          let <name> = <expression>\n"
         "          if <expression> { ... } else { ... }\n"
         "          report \"<a line for the user>\"\n"
         "      }\n"
         "  }\n"
         "\n"
         "Settings, parameters and triggers may come in any order, and one  on run  is the most there can "
         "be. Conditions take their arguments in order or by name with a colon - below(surface: water, "
         "margin: 0.2) - and combine with and/or/not, parentheses and the comparisons < <= > >= == !=. "
         "Values are numbers, \"text\", true/false, (0.2, 0.1, 0.5) and bare words; a tuple belongs where a "
         "value is expected, not inside a condition. Comments are # or // to the end of a line, or /* ... "
         "*/.\n"
         "\n"
         "A report may name {<parameter>}, an earlier {<let>}, {selected} and {total}. The order conditions "
         "are written in does not matter - the cheap ones are moved to the front. What parses and does not "
         "run:  for each  is refused by the runtime, and  on tile.enter  and  on load  fire nothing.\n";
}

} // namespace Zamt
