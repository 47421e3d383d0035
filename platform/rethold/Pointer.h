#pragma once

#include <memory>

namespace Rethold {

/// Keeps an object alive; may be null.
template <class T>
using StrongPtr = std::shared_ptr<T>;

/// Observes an object that others keep alive; may be null.
template <class T>
using WeakPtr = std::weak_ptr<T>;

} // namespace Rethold
