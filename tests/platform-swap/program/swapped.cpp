#include "checks.h"

#include "sorbine/VValue.h"

#include <iostream>
#include <memory>

namespace {

bool adapterSpeaksToThisPlatform() {
  Zamt::TolvenQuindleOps scene(std::make_shared<Zamt::ValuePool>());
  Zamt::Diag diag;
  if (!scene.create("Test/Doubler", "doubler", diag).empty() || diag.errorCount != 1) {
    std::cerr << "A platform without creators made an object.\n";
    return false;
  }
  if (Zamt::VValueCreator::registered() != 2) {
    std::cerr << "Loading the library registered " << Zamt::VValueCreator::registered()
              << " value types, not two.\n";
    return false;
  }
  return true;
}

} // namespace

int main() { return languageWorks() && adapterSpeaksToThisPlatform() ? 0 : 1; }
