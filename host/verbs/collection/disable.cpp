#include "host/verbs/collection/switchQuindle.h"
#include "host/verbs/verbs.h"

namespace Zamt::Host {

Verb disableVerb() {
  return {.name = "disable",
          .summary = "Switch a Quindle off. It stays in the collection, but is not run and takes no keys.",
          .footer =
              "An installed one is copied to your directory, and the copy, which hides it, is switched off.\n"
              "Example:\n  quindle disable \"Restore class\"",
          .options = switchOptions(),
          .run = [](const Request& request, const Context& context) {
            return switchQuindle(request, false, context);
          }};
}

} // namespace Zamt::Host
