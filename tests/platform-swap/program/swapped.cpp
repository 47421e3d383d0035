#include "checks.h"

#include "rethold/Typename.h"
#include "sorbine/VValue.h"

#include <iostream>
#include <memory>

namespace {

bool adapterSpeaksToTheOtherPlatform() {
  Zamt::TolvenQuindleOps scene(std::make_shared<Zamt::ValuePool>());
  Zamt::Diag diag;
  const bool connected = scene.connect("Nobody", "input", "Nothing", "", diag);
  const std::string expected =
      "Nobody: error: Could not attach Nobody.input to Nothing: The other platform has "
      "no object called \"Nobody\".";
  if (!connected && diag.format() == expected) return true;
  std::cerr << "The library does not work on the platform that it was built with: " << diag.format() << "\n";
  return false;
}

bool valueTypeIsRegistered() {
  const std::string name = Rethold::Typename(Rethold::typeOf<Zamt::VValue<double>>());
  if (Zamt::VManagedObject::find<Zamt::VValueCreator>(name)) return true;
  std::cerr << "Loading the library did not register the value type " << name << ".\n";
  return false;
}

} // namespace

int main() { return languageWorks() && adapterSpeaksToTheOtherPlatform() && valueTypeIsRegistered() ? 0 : 1; }
