#pragma once

#include "TextScene.h"
#include "quindle/Quindle.h"

#include <iostream>
#include <string>

/// Runs the same small Quindle on any scene that has a creator "Test/Doubler", and checks its report and what
/// it left in the scene. Says what is wrong; true if nothing is.
inline bool doublesIn(Zamt::QuindleOps& scene, const std::string& sceneName) {
  const std::string text = "quindle \"Double\" {\n"
                           "    description \"Doubles a number.\"\n"
                           "    param who : Text = \"Nobody\" \"Who asked.\"\n"
                           "    on run {\n"
                           "        create doubler = \"Test/Doubler\"\n"
                           "        set doubler.value = 21\n"
                           "        call doubler.double\n"
                           "        report \"{who} had 21 doubled.\"\n"
                           "    }\n"
                           "}\n";
  Zamt::Diag diag;
  Zamt::QuindleDocument document;
  Zamt::QuindleRunResult result;
  Zamt::QuindleRuntime runtime(scene);
  std::string doubled;
  const bool done = Zamt::parseQuindle(text, "double.quindle", document, diag) &&
                    Zamt::checkQuindle(document, diag) &&
                    runtime.run(document, {{"who", "The host"}}, false, result, diag) &&
                    scene.getParam(runtime.objectNamed("doubler"), "result", doubled, diag);
  std::cerr << diag.format();
  if (!done || result.report != std::vector<std::string>{"The host had 21 doubled."} || doubled != "42") {
    std::cerr << "The Quindle did not double 21 in " << sceneName << ", the result is \"" << doubled
              << "\".\n";
    return false;
  }
  std::cout << "21 doubled in " << sceneName << " is " << doubled << ".\n";
  return true;
}

/// The same, in a scene of text, and that a fault is told with its place.
inline bool languageWorks() {
  TextScene scene;
  Zamt::Diag diag;
  Zamt::QuindleDocument document;
  const bool refused = !Zamt::parseQuindle("quindle {", "broken.quindle", document, diag);
  if (!refused || !diag.format().starts_with("broken.quindle:1:")) {
    std::cerr << "A broken Quindle was not refused with its place: " << diag.format() << "\n";
    return false;
  }
  return doublesIn(scene, "a scene of text");
}
