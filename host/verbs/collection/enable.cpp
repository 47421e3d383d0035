#include "host/verbs/collection/switchQuindle.h"
#include "host/verbs/verbs.h"

namespace Zamt::Host {

Verb enableVerb() {
  return {.name = "enable",
          .summary = "Switch a Quindle on again.",
          .footer = "Example:\n  quindle enable \"Restore class\"",
          .options = switchOptions(),
          .run = [](const Request& request, const Context& context) {
            return switchQuindle(request, true, context);
          }};
}

} // namespace Zamt::Host
