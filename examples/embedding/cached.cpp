// The life of a compiled Quindle: when a run builds objects in the scene, and when it takes what the last one
// built. The scene here does nothing but count what it is asked for; host.cpp has one that works.
#include "quindle/Quindle.h"

#include <iomanip>
#include <iostream>
#include <map>
#include <string>

namespace {

using namespace Zamt;

/// Takes everything and counts it.
class CountingScene : public QuindleOps {
public:
  int created = 0;
  int connected = 0;
  int written = 0;
  int fired = 0;

  std::string create(const std::string& /*creator*/, const std::string& name, Diag& /*diag*/) override {
    ++created;
    // Compiling again asks for the same names again, and none may be given twice.
    return name + "_" + std::to_string(++lastNumber);
  }
  bool connect(const std::string& /*object*/, const std::string& /*slot*/, const std::string& /*source*/,
               const std::string& /*sourceSlot*/, Diag& /*diag*/) override {
    ++connected;
    return true;
  }
  bool setParam(const std::string& /*object*/, const std::string& /*slot*/, const std::string& /*value*/,
                Diag& /*diag*/) override {
    ++written;
    return true;
  }
  bool getParam(const std::string& object, const std::string& slot, std::string& /*value*/,
                Diag& diag) override {
    diag.error("\"" + object + "\" has no slot called \"" + slot + "\".", object);
    return false;
  }
  bool fireAction(const std::string& /*object*/, const std::string& /*action*/, Diag& /*diag*/) override {
    ++fired;
    return true;
  }
  int settle() override { return 0; }

private:
  int lastNumber = 0;
};

const std::string roofsText = R"(quindle "Roofs" {
    param cloud : Grid = active "The points to work on."
    param where : Region = brush "Where the user paints."
    param height : Number = 4 "How high a roof begins, in metres."

    on run {
        select inside(where) and class("1") and Height > height
        classify into "Building" as 6
        report "Roofs are done."
    }
}
)";

QuindleDocument parsed(const std::string& text) {
  QuindleDocument document;
  Diag diag;
  if (!parseQuindle(text, "roofs.quindle", document, diag)) std::cout << diag.format() << "\n";
  return document;
}

/// A scene with its runtime, and a line on what each run asked of it.
class Editor {
public:
  CountingScene scene;
  QuindleRuntime runtime{scene};
  std::string brush;

  void paintWith(const std::string& name) {
    brush = name;
    runtime.setBrushObject(name);
  }

  void run(const std::string& occasion, const QuindleDocument& document, const std::string& height = "4") {
    scene.created = scene.connected = scene.written = scene.fired = 0;
    Diag diag;
    QuindleRunResult result;
    const std::map<std::string, std::string> args{{"cloud", "Cloud"}, {"where", brush}, {"height", height}};
    if (!runtime.run(document, args, false, result, diag)) std::cout << diag.format() << "\n";
    std::cout << std::left << std::setw(56) << occasion << std::right << std::setw(9)
              << (result.compiled ? "yes" : "no") << std::setw(9) << scene.created << std::setw(11)
              << scene.connected << std::setw(9) << scene.written << std::setw(7) << scene.fired << "\n";
  }
};

} // namespace

int main() {
  Editor editor;
  editor.paintWith("Lasso"); // else the runtime looks for a brush, and makes one if there is none
  std::cout << std::setw(65) << "compiled"
            << "  created  connected  written  fired\n";

  QuindleDocument roofs = parsed(roofsText);
  editor.run("The first run", roofs);
  editor.run("The second", roofs);
  editor.run("One with another height", roofs, "5");

  // What is read anew begins at revision 0, so it looks like what is known under its name.
  std::string text = roofsText;
  text.replace(text.find("\"1\""), 3, "\"1, 2\"");
  roofs = parsed(text);
  editor.run("Another text, but the runtime still has the first", roofs);
  editor.runtime.forget(roofs.name);
  editor.run("... until it is told to forget that", roofs);

  // The same holds for a change in memory. It is the revision that tells.
  roofs.triggers[0].steps.pop_back();
  editor.run("A step was removed, but the runtime does not know", roofs);
  roofs.touch();
  editor.run("... until the document is touched", roofs);

  QuindleDocument walls = roofs;
  walls.name = "Walls"; // by which its program is kept
  editor.run("A second Quindle", walls);
  editor.run("... takes nothing from the first", roofs);

  editor.paintWith("Polygon");
  editor.run("Another brush, where all selections have to start", roofs);
  editor.run("... so that none of the programs is kept", walls);
  editor.paintWith("Polygon");
  editor.run("The same brush once more", walls);
}
