#pragma once

#include "rethold/Intercube.h"
#include "rethold/Pointer.h"
#include "sorbine/VManagedObject.h"
#include "sorbine/VObject.h"

#include <string>

namespace Zamt {

class VInputCreatorBase : public VManagedObject {
public:
  std::string category() const { return {}; }
  std::string identifier() const { return {}; }
  std::string shortHelp() const { return {}; }
  std::string longHelp() const { return {}; }
};

class VCreatorBase : public VInputCreatorBase {
public:
  Rethold::StrongPtr<VObject> create(const std::string& /*name*/, const Rethold::Intercube& /*context*/) {
    return nullptr;
  }
};

} // namespace Zamt
