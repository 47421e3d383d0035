#pragma once

namespace Rethold {

struct Intercube {};

} // namespace Rethold
