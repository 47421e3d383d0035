// A whole host of Quindles in one file: a scene, a collection, and keys that run what is in it. What it edits
// is a row of a dozen points; all else is done as an editor of real clouds would do it. The command line
// names the directory of the collection and the keys to press, and without any it presses those that show the
// most:
//
//   host [DIRECTORY [[--preview] KEY]...]
#include "quindle/Quindle.h"

#include <algorithm>
#include <charconv>
#include <iomanip>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace {

using namespace Zamt;
using Strings = std::vector<std::string>;
using TextByName = std::map<std::string, std::string>;

using Mask = std::vector<bool>; // a flag for each point

std::string inQuotes(const std::string& text) { return "\"" + text + "\""; }

/// The number that a text is, whatever the locale; nothing if it is none.
template <class Number>
std::optional<Number> numberIn(const std::string& text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, fault] = std::from_chars(text.data(), end, number);
  if (fault != std::errc() || stop != end) return std::nullopt;
  return number;
}

/// The text of a label set that has these classes. How such a text is laid out is the library's business, so
/// it is asked to plan one class after the other, each for points of class 0, which were never classified.
std::string labelsNaming(const std::map<int, std::string>& classes) {
  std::string labels;
  for (const auto& [number, name] : classes) {
    const std::string before = labels;
    int assigned = 0;
    Diag unread;
    planClassLabels(before, name, number, {"0"}, {}, labels, assigned, unread);
  }
  return labels;
}

/// The number of a class, which may also be written as a number. A plan to put points into it tells which one
/// it is, and with a note if the label set would have to be given it first.
std::optional<int> classNumber(const std::string& labels, const std::string& name) {
  std::string planned;
  int number = 0;
  Diag notes;
  const bool done = planClassLabels(labels, name, -1, {}, {}, planned, number, notes);
  return done && notes.entries.empty() ? number : numberIn<int>(name);
}

/// The points, and the objects that work on them. All that the library knows of an object is its name, its
/// slots of text, and what feeds them.
class PointScene final : public QuindleOps {
public:
  PointScene(std::vector<double> pointHeights, std::vector<int> pointClasses,
             const std::map<int, std::string>& classNames)
      : heights(std::move(pointHeights)), classes(std::move(pointClasses)), labels(labelsNaming(classNames)) {
    Diag unread;
    create("Lattix/Points", "Cloud", unread);
    create("Display/Profile", "View", unread);
    connect("View", "grid", "Cloud", "", unread);
  }

  std::string create(const std::string& creator, const std::string& name, Diag& diag) override {
    const auto kind = kinds.find(creator);
    if (kind == kinds.end()) {
      diag.error("This host cannot make a " + inQuotes(creator) + ".", creator);
      return {};
    }
    // A name may be taken: compiling a Quindle again asks for the same names again.
    Object object{name, creator, kind->second.publishes, kind->second.slots, {}, {}};
    for (int n = 2; exists(object.name); ++n) object.name = name + "_" + std::to_string(n);
    if (object.slots.contains("labels")) object.slots["labels"] = labels;
    objects.push_back(object);
    return object.name;
  }

  bool connect(const std::string& object, const std::string& slot, const std::string& source,
               const std::string& /*sourceSlot*/, Diag& diag) override {
    Object* const reader = find(object, diag);
    const Object* const feeder = source.empty() ? nullptr : find(source, diag);
    if (!reader || (!feeder && !source.empty())) return false;
    const auto input = inputs.find(slot);
    if (input == inputs.end() || (feeder && feeder->publishes != input->second))
      return refuse(object, "cannot have " + inQuotes(source) + " attached to its " + inQuotes(slot), diag);
    // So that no chain of filters runs in a circle, and each can be worked out after those that it reads.
    if (input->second == "Brush" && feeder && feeder >= reader)
      return refuse(object, "reads only what was made before it, as " + inQuotes(source) + " was not", diag);
    reader->sources[slot] = source;
    return true;
  }

  bool setParam(const std::string& object, const std::string& slot, const std::string& value,
                Diag& diag) override {
    std::string* const held = findSlot(object, slot, diag);
    if (!held) return false;
    // A slot that begins as a number stays one: better refused here than wondered at when nothing matches.
    if (numberIn<double>(*held) && !numberIn<double>(value))
      return refuse(object, "takes a number for " + inQuotes(slot) + " and not " + inQuotes(value), diag);
    *held = value;
    // A class that one Quindle adds is there for all, so that no other takes its number.
    if (slot == "labels") labels = value;
    return true;
  }

  bool getParam(const std::string& object, const std::string& slot, std::string& value, Diag& diag) override {
    const std::string* const held = findSlot(object, slot, diag);
    if (held) value = *held;
    return held != nullptr;
  }

  bool fireAction(const std::string& object, const std::string& action, Diag& diag) override {
    Object* const editor = find(object, diag);
    if (!editor) return false;
    const auto known = actions.find(action);
    if (editor->creator != "Edit/MaskedLabels" || known == actions.end())
      return refuse(object, "has no action called " + inQuotes(action), diag);
    (this->*known->second)(*editor);
    return true;
  }

  // Actions are done at once here. A host that puts work off does all of it in this call.
  int settle() override { return 0; }

  // What follows is optional. Without it there would be no picture of a preview.

  bool exists(const std::string& name) override { return lookUp(name) != nullptr; }

  Strings consumersOf(const std::string& object) override {
    Strings names;
    for (const Object& reader : objects)
      if (std::ranges::any_of(reader.sources, [&](const auto& fed) { return fed.second == object; }))
        names.push_back(reader.name);
    return names;
  }

  std::string creatorOf(const std::string& object) override {
    const Object* const found = lookUp(object);
    return found ? found->creator : "";
  }

  bool removeObject(const std::string& name, Diag& diag) override {
    if (!find(name, diag)) return false;
    std::erase_if(objects, [&](const Object& object) { return object.name == name; });
    for (Object& reader : objects)
      std::erase_if(reader.sources, [&](const auto& fed) { return fed.second == name; });
    return true;
  }

  /// What the view shows: a column for each point, with a mark below if a preview's mask holds it.
  void draw() {
    std::cout << std::fixed << std::setprecision(1) << "  height";
    for (const double height : heights) std::cout << std::setw(5) << height;
    std::cout << "\n  class ";
    for (const int number : classes) std::cout << std::setw(5) << number;
    if (source(*lookUp("View"), "mask")) {
      std::cout << "\n  mask  ";
      for (const bool masked : mask) std::cout << (masked ? "    ^" : "    -");
    }
    std::cout << "\n";
  }

private:
  struct Kind {
    std::string publishes;
    TextByName slots; // with what they begin with
  };

  struct Object {
    std::string name;
    std::string creator;
    std::string publishes;
    TextByName slots;
    TextByName sources; // by input
    Mask kept;          // of a filter: what passes it; of an editor: what is to change
  };

  Object* lookUp(const std::string& name) {
    const auto found = std::ranges::find(objects, name, &Object::name);
    return found == objects.end() ? nullptr : &*found;
  }

  Object* find(const std::string& name, Diag& diag) {
    Object* const object = lookUp(name);
    if (!object) diag.error("There is no object called " + inQuotes(name) + ".", name);
    return object;
  }

  std::string* findSlot(const std::string& name, const std::string& slot, Diag& diag) {
    Object* const object = find(name, diag);
    if (!object) return nullptr;
    const auto found = object->slots.find(slot);
    if (found != object->slots.end()) return &found->second;
    refuse(name, "has no slot called " + inQuotes(slot), diag);
    return nullptr;
  }

  Object* source(Object& reader, const std::string& input) { return lookUp(reader.sources[input]); }

  static bool refuse(const std::string& object, const std::string& reason, Diag& diag) {
    diag.error(inQuotes(object) + " " + reason + ".", object);
    return false;
  }

  void unselectAll(Object& editor) {
    editor.kept.assign(classes.size(), false);
    for (const char* output : {"modified", "considered", "problem"}) editor.slots[output].clear();
  }

  void select(Object& editor) {
    unselectAll(editor);
    for (Object& object : objects)
      if (object.publishes == "Brush") evaluate(object);
    editor.slots["problem"] = problemOf(editor);
    if (!editor.slots["problem"].empty()) return;
    const Object* const filter = source(editor, "brush");
    for (std::size_t i = 0; i < classes.size(); ++i)
      editor.kept[i] = (!filter || filter->kept[i]) && classes[i] != assignedClassOf(editor.slots["labels"]);
    editor.slots["modified"] = std::to_string(std::ranges::count(editor.kept, true));
    editor.slots["considered"] = std::to_string(classes.size());
    mask = editor.kept;
  }

  /// Why an editor can't select; empty if it can.
  std::string problemOf(Object& editor) {
    Object* const field = source(editor, "labelfield");
    if (!field || !source(*field, "grid")) return "No points are attached to classify.";
    if (assignedClassOf(editor.slots["labels"]) < 0) return "There is no class to put the points into.";
    const Object* const filter = source(editor, "brush");
    return filter ? filter->slots.at("problem") : "";
  }

  void applySelection(Object& editor) {
    for (std::size_t i = 0; i < editor.kept.size(); ++i)
      if (editor.kept[i]) classes[i] = assignedClassOf(editor.slots["labels"]);
  }

  void evaluate(Object& filter) {
    const Object* const before = source(filter, "brush");
    filter.kept = before ? before->kept : Mask(classes.size(), true);
    std::string& problem = filter.slots["problem"] = before ? before->slots.at("problem") : "";
    if (!problem.empty()) return;
    if (filter.creator == "Selection/BrushFilterByClass") problem = keepClasses(filter);
    if (filter.creator == "Selection/BrushFilterByField") problem = keepRange(filter);
    if (filter.creator == "Selection/BrushFilterAny") problem = addOther(filter);
  }

  // Each of these returns what is wrong, or nothing.

  std::string keepClasses(Object& filter) {
    const std::string& field = filter.slots["classfield"];
    if (field != "Classification") return "The points have no classification called " + inQuotes(field) + ".";
    std::set<int> wanted;
    std::istringstream names(filter.slots["classes"]);
    for (std::string name; std::getline(names >> std::ws, name, ',');) {
      const std::optional<int> number = classNumber(labels, name);
      if (!number) return "The points have no class called " + inQuotes(name) + ".";
      wanted.insert(*number);
    }
    keep(filter, [&](std::size_t i) { return wanted.contains(classes[i]); });
    return {};
  }

  std::string keepRange(Object& filter) {
    const std::string& field = filter.slots["field"];
    if (filter.slots["component"] != "0") return "Each point has one height, which is component 0.";
    if (field != "Height")
      return "The points have a field \"Height\" and none called " + inQuotes(field) + ".";
    const auto minimum = numberIn<double>(filter.slots["minimum"]);
    const auto maximum = numberIn<double>(filter.slots["maximum"]);
    keep(filter, [&](std::size_t i) { return heights[i] >= minimum && heights[i] <= maximum; });
    return {};
  }

  std::string addOther(Object& filter) {
    const Object* const other = source(filter, "otherbrush");
    for (std::size_t i = 0; other && i < other->kept.size(); ++i)
      filter.kept[i] = filter.kept[i] || other->kept[i];
    return other ? other->slots.at("problem") : "";
  }

  template <class Matches>
  void keep(Object& filter, const Matches& matches) {
    const bool invert = filter.slots["invert"] == "true";
    for (std::size_t i = 0; i < classes.size(); ++i) filter.kept[i] = filter.kept[i] && matches(i) != invert;
  }

  /// All that this host can make. What is missing is refused in `create`, in a sentence that the user reads.
  const std::map<std::string, Kind> kinds{
      {"Lattix/Points", {"Grid", {}}},
      {"Lattix/Field", {"Field", {{"fieldname", ""}}}},
      {"Display/Profile", {"", {}}},
      {"Selection/BrushFilterByClass", {"Brush", {{"classes", ""}, {"classfield", ""}, {"invert", ""}}}},
      {"Selection/BrushFilterByField",
       {"Brush", {{"field", ""}, {"minimum", "0"}, {"maximum", "1"}, {"component", "0"}, {"invert", ""}}}},
      {"Selection/BrushFilterAny", {"Brush", {}}},
      {"Edit/MaskedLabels", {"", {{"labels", ""}, {"modified", ""}, {"considered", ""}, {"problem", ""}}}},
  };
  /// The inputs, with what each reads.
  const TextByName inputs{{"grid", "Grid"},
                          {"mask", "Field"},
                          {"labelfield", "Field"},
                          {"brush", "Brush"},
                          {"otherbrush", "Brush"}};
  const std::map<std::string, void (PointScene::*)(Object&)> actions{
      {"unselectAll", &PointScene::unselectAll},
      {"select", &PointScene::select},
      {"applySelection", &PointScene::applySelection},
  };

  std::vector<double> heights; // in metres
  std::vector<int> classes;    // as numbers
  std::string labels;          // what classes there are, those that Quindles added among them
  Mask mask;                   // what the last selection found
  std::vector<Object> objects; // in the order in which they were made
};

const char* wordFor(Diag::Severity severity) {
  switch (severity) {
  case Diag::Severity::Note: return "note";
  case Diag::Severity::Warning: return "warning";
  case Diag::Severity::Error: break;
  }
  return "error";
}

/// The list of messages that an editor would have at the bottom of its window.
void show(const Diag& diag) {
  for (const Diag::Entry& entry : diag.entries) {
    std::cout << "  " << std::left << std::setw(9) << wordFor(entry.severity) << std::right << entry.file;
    if (entry.line > 0) std::cout << ", line " << entry.line;
    std::cout << (entry.file.empty() ? "" : ": ") << entry.message << "\n";
  }
}

class Host {
public:
  explicit Host(PointScene& onScene) : scene(onScene), runtime(scene) {
    runtime.resolver = library.resolver(); // for the Quindles that run others
  }

  void load(const std::string& directory) {
    Diag diag;
    library.scan(directory, diag);
    std::cout << "\nQuindles\n";
    for (const QuindleLibraryEntry* const entry : library.search("")) {
      const QuindleDocument& document = entry->document;
      const std::string state = document.enabled ? document.description : "is switched off";
      std::cout << "  " << std::left << std::setw(12) << document.name << std::right
                << (entry->usable ? state : "cannot be used: " + entry->error) << "\n";
    }
    show(diag);
  }

  /// A key that several Quindles ask for is given to none of them: which one it ran would be chance.
  void bindKeys() {
    const auto conflicts = shortcutConflicts(library);
    std::cout << "\nKeys\n";
    for (const QuindleShortcut& shortcut : quindleShortcuts(library)) {
      if (conflicts.contains(shortcut.key)) continue;
      keys[shortcut.key] = shortcut.name;
      std::cout << "  " << shortcut.key << "  " << shortcut.name << "\n";
    }
    for (const auto& [key, names] : conflicts) {
      std::string all;
      for (const std::string& name : names) all += (all.empty() ? "" : " and ") + inQuotes(name);
      std::cout << "  " << key << "  runs nothing, since " << all
                << " ask for it. Give all but one of them another key.\n";
    }
  }

  void press(const std::string& pressed, bool preview) {
    const std::string key = normalizedShortcut(pressed); // "ctrl+1" is "Ctrl+1"
    std::cout << "\n" << (preview ? "Preview " : "Press ") << key << "\n";
    const auto bound = keys.find(key);
    const QuindleLibraryEntry* const entry = bound == keys.end() ? nullptr : library.find(bound->second);
    // A name finds the first file that bears it, which need not be one that can run.
    if (!entry || !entry->usable) {
      std::cout << "  There is no Quindle to run on this key.\n";
      return;
    }
    const QuindleDocument& document = entry->document;
    Diag diag;
    QuindleRunResult result;
    runtime.run(document, suppliedValues(document), preview, result, diag);
    for (const std::string& line : result.report) std::cout << "  " << line << "\n";
    show(diag);
    std::cout << (result.ok ? "  Done" : "  Failed") << (result.compiled ? ", newly compiled.\n" : ".\n");
    scene.draw();
  }

private:
  /// What "= active" stands for, which only the host knows. This one has nothing to paint or pick with; where
  /// a Quindle needs that, the run fails in a sentence that says so.
  static TextByName suppliedValues(const QuindleDocument& document) {
    TextByName values;
    for (const QuindleParam& param : document.params)
      if (param.defaultSource == QuindleParam::DefaultSource::Active && param.type == "Grid")
        values[param.name] = "Cloud";
    return values;
  }

  PointScene& scene;
  QuindleLibrary library; // before the runtime, whose resolver points to it
  QuindleRuntime runtime;
  TextByName keys; // the Quindle that each runs
};

} // namespace

int main(int argc, char** argv) {
  const Strings words(argv + 1, argv + argc);
  // An editor has the user's own and the installed ones: library.scan(quindleSearchPath(), diag).
  const std::string directory = words.empty() ? "quindles" : words[0];
  Strings keys{"--preview", "Ctrl+1", "Ctrl+1", "Ctrl+1", "Ctrl+3", "Ctrl+4", "Ctrl+5"};
  if (words.size() > 1) keys.assign(words.begin() + 1, words.end());

  PointScene scene({0.1, 0.0, -3.2, 0.2, 1.4, 6.1, 6.4, 6.2, 3.1, 9.4, 2.2, 7.5},
                   {2, 2, 2, 2, 1, 1, 1, 2, 1, 6, 5, 5},
                   {{1, "Unclassified"}, {2, "Ground"}, {5, "Vegetation"}, {6, "Building"}});
  std::cout << "Points, of the classes 1 Unclassified, 2 Ground, 5 Vegetation and 6 Building\n";
  scene.draw();
  Host host(scene);
  host.load(directory);
  host.bindKeys();
  bool preview = false;
  for (const std::string& key : keys) {
    if (key != "--preview") host.press(key, preview);
    preview = key == "--preview";
  }
}
