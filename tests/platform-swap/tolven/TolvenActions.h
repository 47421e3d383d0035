#pragma once

#include <string>

namespace Zamt {

class TolvenActions {
public:
  struct Result {
    bool success = false;
    std::string reason;
  };
  static Result Attachment(const std::string& /*object*/, const std::string& /*slot*/,
                           const std::string& /*source*/, const std::string& /*sourceSlot*/) {
    return {};
  }
};

} // namespace Zamt
