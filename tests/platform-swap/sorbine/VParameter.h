#pragma once

#include "rethold/Pointer.h"
#include "sorbine/VValue.h"
#include "sorbine/ValuePool.h"

#include <functional>
#include <string>

namespace Zamt {

class VObject;

class VParameter {
public:
  Rethold::StrongPtr<VObject> source() const { return nullptr; }
  Rethold::StrongPtr<VValueBase> value() const { return nullptr; }
  bool setValueFromText(const std::string& /*text*/, const Rethold::StrongPtr<ValuePool>& /*pool*/,
                        const std::string& /*member*/) {
    return false;
  }
  std::string getValueAsText(const Rethold::StrongPtr<ValuePool>& /*pool*/, const std::string& /*member*/,
                             bool /*unused*/) const {
    return {};
  }
  void iterateUsers(
      const std::function<bool(const Rethold::StrongPtr<VObject>&, const std::string&)>& /*callback*/) const {
  }
};

} // namespace Zamt
