#pragma once

#include <memory>

namespace Rethold {

template <class T>
using StrongPtr = std::shared_ptr<T>;
template <class T>
using WeakPtr = std::weak_ptr<T>;

} // namespace Rethold
