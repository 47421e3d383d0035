#include "quindle/reference/referenceSections.h"

#include "quindle/plan/QuindleOperation.h"

#include <initializer_list>
#include <string_view>

namespace Zamt {

namespace {

/// What stands apart from the prose: each line behind two blanks.
std::string sample(std::initializer_list<std::string_view> lines) {
  std::string out;
  for (const std::string_view line : lines) {
    out += "  ";
    out += line;
    out += '\n';
  }
  return out;
}

/// The conditions of the catalogue, as sample lines.
std::string conditionLines() {
  const std::string list = listQuindleOperations({});
  std::string out;
  for (std::size_t from = 0, end = 0; from < list.size(); from = end + 1) {
    end = list.find('\n', from);
    out += sample({std::string_view(list).substr(from, end - from)});
  }
  return out;
}

std::string whatBody() {
  return "A Quindle is one text file holding one small named program: what it needs, and what it does. It is "
         "saved in your library, listed by its name, can be bound to a key, and is run against whatever the "
         "application currently has in front of it.\n\n"
         "It is not a scene. A .scn file describes every object, camera and viewer there is; a Quindle "
         "describes only the few steps you want repeated, and finds the rest by asking what is there when it "
         "runs. That is what makes one worth binding to a key.\n\n"
         "The same file is what the code editor shows, what the assistant writes, and what the library runs. "
         "There is no second form of it and nothing is generated behind your back: the text is the "
         "Quindle.\n";
}

std::string fileBody() {
  return "Everything lives inside one  quindle  block, named with the name the library will list it under. "
         "Settings, parameters and triggers may come in any order; the order below is the one that reads "
         "best.\n\n" +
         sample({
             "quindle \"<name>\" {",
             "    description \"<what it does, in a sentence>\"",
             "    category    \"<a group to list it under>\"",
             "    shortcut    \"<a key>\"",
             "    param <name> : <Type> = <default> [<min> .. <max>] \"<help>\"",
             "    on run {",
             "        <step>",
             "        <step>",
             "    }",
             "}",
         }) +
         "\nThe name is what everything else addresses it by - the library, a key binding, and another "
         "Quindle's  run  step. The file it is saved in is named after it: every character a name cannot "
         "spell as one word becomes an underscore, so \"Underwater Ground\" is kept in "
         "Underwater_Ground.quindle.\n\n"
         "A Quindle with no name is refused, because nothing could find it again.\n";
}

std::string settingsBody() {
  return "Each takes one piece of quoted text, and each may be left out.\n\n" +
         sample({
             "description \"...\"           what it does, shown wherever it is listed",
             "category    \"...\"           the group the library files it under",
             "shortcut    \"...\"           the key that runs it: \"U\", \"Ctrl+Shift+U\"",
             "icon        \"...\"",
             "author      \"...\"",
             "version     \"...\"",
             "tags        \"...\", \"...\"    any number, separated by commas",
             "enabled     true | false    no quotes; the default is true",
         }) +
         "\nWrite the description. It is not decoration: it is what the library shows, what somebody "
         "searching reads, and what the assistant reads when it is asked whether a Quindle for this already "
         "exists.\n\n"
         "A key may be written either here or as an  on key  trigger, and both are bound. Two Quindles "
         "asking for the same key are both refused it and told so in the dock, rather than one of them "
         "quietly winning - Qt's own answer to an ambiguous shortcut is to run neither and say nothing.\n\n"
         "A disabled Quindle keeps its file and its place in the list and does not fire. That is what makes "
         "switching one off different from deleting it.\n";
}

std::string paramsBody() {
  return "A parameter is one thing the Quindle needs before it can run. Everything after the type may be "
         "left out.\n\n" +
         sample({"param <name> : <Type> = <default> [<min> .. <max>] \"<help>\""}) +
         "\nThe types, and what each one actually means:\n\n" +
         sample({
             "Grid     a point cloud in the scene. The Quindle is wired to it.",
             "Field    one field of the data, in the scene, wired the same way.",
             "Region   where to work: a brush, a box, a lasso.",
             "Brush    as Region.",
             "Surface  a PATH to an M8 file holding a triangulated surface - not an",
             "         object in the scene, since the operation opens the file itself.",
             "Number   a number, which is what a range applies to.",
             "Text     any text.",
             "Class    a class of a classification, by name or by number.",
             "Object   anything in the scene, with no filter on what kind.",
             "File     a path, like Surface but not necessarily a surface.",
         }) +
         "\nThree defaults are not values but statements about where the value comes from when nobody "
         "supplies one:\n\n" +
         sample({
             "= active   whatever the application currently has selected",
             "= brush    the region the user is painting with",
             "= pick     ask, when it runs",
         }) +
         "\nThose first two are how a Quindle says \"where I am pointed\" without naming an object - which "
         "is what lets one file be a key on somebody's keyboard and a step in somebody else's Quindle.\n\n"
         "A range,  [0 .. 5] , bounds a number and is what the parameter dialog draws a slider from. A range "
         "that runs downwards is refused, and so is a default outside its own range - that one is worth "
         "knowing about because its symptom is a parameter that quietly snaps to a different value than the "
         "file says.\n\n"
         "Write the help text. The dialog, the completion, the block editor and the assistant all show it, "
         "and a parameter without one is hard for any of them to offer. A parameter nothing in the body "
         "reads is reported too: it would be asked for and then ignored.\n\n"
         "Two parameters cannot share a name.\n";
}

std::string triggersBody() {
  return "A trigger is a block of steps and the occasion they run on.\n\n" +
         sample({
             "on run { ... }              explicitly: from the library, or its key",
             "on key \"Ctrl+U\" { ... }     the same, with the key written here",
         }) +
         "\nThere is one  on run  per Quindle. More than one is refused: nothing would decide which of them "
         "ran.\n\n"
         "A Quindle written with only an  on key  block is still run by the library's Run button - the key "
         "trigger stands in, rather than the button doing nothing.\n\n"
         "There are two more,  on tile.enter  and  on load . They are read and written back faithfully, and "
         "nothing fires them yet. A Quindle whose only trigger is one of those saves, checks out clean and "
         "never runs, so do not write one expecting it to.\n";
}

std::string stepsBody() {
  return "One step per line, in the order they should happen.\n\n" +
         sample({
             "select <condition> [and|or|not <condition>] ...",
             "        Narrow down which points the steps after it act on.",
             "",
             "classify into \"<class>\" [as <number>] [color (<r>, <g>, <b>)]",
             "        Put the selected points in that class, creating it in the",
             "        data if it is not there yet. \"colour\" is accepted too.",
             "        Leave out  as  and the class gets the next free number, which",
             "        is one past the highest the data already carries. That is the",
             "        normal thing to write. Say the number when it matters: the",
             "        next free one is counted from the label set the data brought,",
             "        so on a file carrying none - and plenty of scans carry none -",
             "        every Quindle inventing a class is handed the same first",
             "        number, and two of them end up sharing one class with no way",
             "        left to tell their results apart. It is also how you write the",
             "        numbers everybody already knows: 2 for ground, 6 for",
             "        building.",
             "",
             "create <name> = \"<Category/Identifier>\"",
             "        Make an object. The creator is quoted because its name has a",
             "        slash in it. <name> is a plain word, which the steps after",
             "        this one write as <name>.<slot>.",
             "",
             "set <object>.<slot> = <value>",
             "        Write one input of an object, the way a .scn file does.",
             "",
             "connect <object>.<slot> <- <source>",
             "        Attach that input to another object's output.",
             "",
             "call <object>.<action>",
             "call <object>.\"<Action With Spaces>\"",
             "        Press one of an object's action slots. The empty () may be",
             "        written or left out. A slot whose name is not one word goes",
             "        in quotes after the dot - and plenty are not, since a slot",
             "        name doubles as the label on the button beside it.",
             "",
             "run \"<another Quindle>\"(<param>: <value>, ...)",
             "        Run another Quindle by the name the library lists it under.",
             "        The parentheses are required even with nothing in them.",
             "        Arguments are named after that Quindle's own parameters and",
             "        separated from their values by a colon, not an equals sign;",
             "        anything left out falls back to its own default. Its report",
             "        lines come back as part of this Quindle's.",
             "",
             "let <name> = <expression>",
             "        Work something out once and name it. Worked out before the",
             "        data is touched, so it cannot count points.",
             "",
             "if <expression> { ... } else { ... }",
             "        The else part is optional.",
             "",
             "report \"<a line for the user>\"",
             "        Say something when it runs. See \"reports\".",
         }) +
         "\nPut a  select  before anything that changes data. An edit with no selection in front of it "
         "applies to every point in the cloud, which is the difference between reclassifying a brush stroke "
         "and reclassifying the dataset. Writing one is reported as worth a look rather than refused, "
         "because occasionally it is what was meant.\n\n"
         "The order the conditions of a  select  are written in does not matter. They are reordered so the "
         "cheap ones run first, and the expensive ones only ever see the points that got past those - so a "
         "neighbourhood test written next to a class test costs a fraction of what it looks like it costs. "
         "What the real order turned out to be is in the explanation under the editor.\n\n"
         "No step names the cloud it edits. The one the Quindle is wired to is found by type, because "
         "\"which cloud\" is not something a step says.\n\n"
         "A Quindle cannot  run  itself, and a created object cannot be given a name already used by a "
         "parameter, a  let  or another  create .\n";
}

std::string conditionsBody() {
  return "A condition is written like a function call. Its arguments may be given in order, or by name with "
         "a colon:\n\n" +
         sample({
             "select below(water, 0.2)",
             "select below(surface: water, margin: 0.2)",
         }) +
         "\nCombine them with  and ,  or  and  not , bracket them with parentheses, and compare a field "
         "against a number with  <  <=  >  >=  ==  != .  and  binds tighter than  or , and a comparison is a "
         "single one - write parentheses rather than chaining two.\n\n"
         "A bare word that is not a call is a reference: a parameter of this Quindle, an earlier  let , or a "
         "field of the data.\n\n"
         "The conditions written for Quindles, with their arguments - optional ones in brackets:\n\n" +
         conditionLines() +
         "\nThat is not the limit of what a Quindle can reach, only the part spelled nicely. Every object "
         "type the application can make is available through  create , and every action of every object in "
         "the scene through  call . In the editor, Ctrl+Space offers all three out of the same registry the "
         "compiler resolves against, so a word it offers is a word that will still mean something when the "
         "Quindle runs. Do not guess a name: one that does not exist parses, and then fails to compile.\n";
}

std::string valuesBody() {
  return sample({
             "12    0.2    1e-3    -4          numbers",
             "\"some text\"                     text; \\n \\t \\\" \\\\ are understood",
             "true    false",
             "(0.2, 0.1, 0.5)                 a tuple: a colour, a vector, a range",
             "Ground                          a bare word: an enum choice, a name",
         }) +
         "\nA tuple is a value, not an expression, so it belongs where a value is expected - a parameter's "
         "default or range, and a  classify  colour. Inside a condition, parentheses group rather than build "
         "a tuple.\n\n"
         "A quoted string ends at the end of its line: an unclosed quote is reported where it is rather than "
         "swallowing the rest of the file.\n";
}

std::string reportsBody() {
  return "A report line may name things in braces, each filled in when it runs:\n\n" +
         sample({
             "{<parameter>}   what that parameter was given for this run",
             "{<let name>}    the value of an earlier let",
             "{selected}      how many points were changed",
             "{total}         how many were looked at",
         }) +
         "\nThe two counts are read back from the editor that did the work, so they say what happened rather "
         "than what was expected to happen. A preview reports them too: building the selection is what "
         "counts, and a preview is what stops after that.\n\n"
         "A name in braces that is none of the above is left standing in the text, with a warning saying so. "
         "It is not filled with a zero: \"nothing matched\" and \"this was never counted\" are different "
         "statements, and printing the first for the second would be a lie.\n";
}

std::string commentsBody() {
  return sample({
             "# to the end of the line",
             "// to the end of the line",
             "/* over several lines */",
         }) +
         "\nComments written inside a trigger block survive being saved: they are part of your file, and a "
         "save that dropped your notes would be losing your work. Comments between the settings at the top "
         "are still dropped when a Quindle is written back in canonical form - worth knowing before putting "
         "something you need up there.\n\n"
         "Write down why, not what. \"the surface lookup only sees points already inside the region\" is "
         "worth a line; \"select the ground\" is what the line below it already says.\n";
}

std::string runningBody() {
  return "Nothing that does not parse and check out is ever written. The editor says what is wrong, with a "
         "line number, as you type, and the Save button is off until there is nothing left to say - so a "
         "Quindle in your library is one that at least holds together. What it does to your data is a "
         "separate question, and the answer to that one is a preview.\n\n"
         "Preview before Run, for anything that edits. A preview builds the selection and stops before the "
         "step that writes, and reports how much it would have affected. Those counts are the only honest "
         "way to find out beforehand whether the conditions select what you meant.\n\n"
         "Your own Quindles are saved in your own directory; the ones that ship with the application are "
         "read from the installation and never written to. Editing one of those therefore saves you a copy "
         "of your own under the same name, which is what runs from then on - and deleting your copy brings "
         "the original back rather than removing the Quindle.\n\n"
         "A Quindle that has run once keeps the objects it built, so running it again costs a rebind and an "
         "action rather than the whole graph. That is why one on a key feels immediate the second time.\n";
}

std::string limitsBody() {
  return "Said plainly rather than left to be discovered, because all of it saves and checks out clean:\n\n" +
         sample({
             "for each <name> in <collection> { ... }",
             "        parses, and the runtime refuses it: \"this kind of step",
             "        cannot be run yet\".",
             "",
             "on tile.enter, on load",
             "        read and written faithfully; nothing fires them.",
         }) +
         "\nA  let  is worked out before the data is touched, so it cannot ask anything about the data - "
         "counting points into a  let  is refused rather than guessed at.\n\n"
         "A preview does not yet colour the points it would affect. The selection is real and the counts are "
         "real, but nothing displays it, so read the numbers rather than looking for it in the viewer.\n";
}

} // namespace

std::vector<QuindleReferenceSection> makeReferenceSections() {
  return {{"what", "What a Quindle is", whatBody()},
          {"file", "The shape of the file", fileBody()},
          {"settings", "The settings at the top", settingsBody()},
          {"params", "Parameters: what it asks for", paramsBody()},
          {"triggers", "Triggers: what runs it", triggersBody()},
          {"steps", "The steps", stepsBody()},
          {"conditions", "Conditions: what can go in a select", conditionsBody()},
          {"values", "Values", valuesBody()},
          {"reports", "What a report can say", reportsBody()},
          {"comments", "Comments", commentsBody()},
          {"running", "Checking, saving and running", runningBody()},
          {"limits", "What parses and does not run yet", limitsBody()}};
}

} // namespace Zamt
