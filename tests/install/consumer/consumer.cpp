// A host as another project would write it, built against an installation. Its argument is the share
// directory that the platform has to find.
#include "checks.h"

#include "cadmer/CommandLineParser.h"
#include "sorbine/VCreator.h"
#include "sorbine/VObject.h"
#include "sorbine/VValue.h"

#include <iostream>
#include <memory>

namespace {

using namespace Zamt;

class Doubler : public VObject {
  VInput<double> value_ = input<double>("value", "What to double.");
  VOutput<double> result_ = output<double>("result", "Twice the value.");
  Rethold::StrongPtr<VSlot> double_ =
      action("double", "Doubles the value.", [this] { result_.publish(2 * value_.get()); });
};

bool graphWorks() {
  registerCreator<Doubler>("Test", "Doubler", {});
  TolvenQuindleOps scene(std::make_shared<ValuePool>());
  return doublesIn(scene, "the object graph");
}

bool valueTypesAreRegistered() {
  bool all = true;
  for (const auto type :
       {Rethold::typeOf<VValue<double>>(), Rethold::typeOf<VValue<Rethold::StrongPtr<VAction>>>()}) {
    const std::string name = Rethold::Typename(type);
    const auto creator = VManagedObject::find<VValueCreator>(name);
    if (creator && creator->createValue()) continue;
    std::cerr << "Loading the library did not register the value type " << name << ".\n";
    all = false;
  }
  return all;
}

bool findsShare(const std::string& expected) {
  const std::vector<std::string> directories = CommandLineParser::getDataDirs();
  if (directories == std::vector<std::string>{expected}) return true;
  std::cerr << "The data directory is " << (directories.empty() ? "not found" : directories.front())
            << ", it should be " << expected << ".\n";
  return false;
}

} // namespace

int main(int argc, char** argv) {
  const bool good =
      languageWorks() && graphWorks() && valueTypesAreRegistered() && argc == 2 && findsShare(argv[1]);
  return good ? 0 : 1;
}
