#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace Zamt::Host {

/// Is told what is being worked on and how far the whole is: `done` of `total`.
using Progress = std::function<void(const std::string& what, std::uint64_t done, std::uint64_t total)>;

} // namespace Zamt::Host
