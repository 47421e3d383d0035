#include "quindle/runtime/QuindleOps.h"

#include "quindle/core/Guarded.h"

namespace Zamt {

QuindleOps::~QuindleOps() = default;

bool QuindleOps::exists(const std::string& /*name*/) { return false; }

std::vector<std::string> QuindleOps::objectsPublishing(const std::string& /*kind*/) { return {}; }

std::string QuindleOps::sourceOf(const std::string& /*object*/, const std::string& /*slot*/) { return {}; }

std::vector<std::string> QuindleOps::consumersOf(const std::string& /*object*/) { return {}; }

std::string QuindleOps::creatorOf(const std::string& /*object*/) { return {}; }

std::string QuindleOps::statusOf(const std::string& /*object*/) { return {}; }

std::string QuindleOps::createConsumer(const std::string& source, const std::string& /*creator*/,
                                       const std::string& /*acceptName*/, Diag& diag) {
  return guarded(diag, std::string(), [&] {
    diag.error("This is not able to create objects that read another one.", source);
    return std::string();
  });
}

bool QuindleOps::removeObject(const std::string& /*name*/, Diag& /*diag*/) { return false; }

} // namespace Zamt
