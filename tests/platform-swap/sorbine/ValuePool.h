#pragma once

namespace Zamt {

class ValuePool {};

} // namespace Zamt
