#pragma once

#include "host/filters/PointFilter.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace Zamt::Host {

/// Keeps the points whose class is one of `classes`, in any order. `fieldName` is a field of whole numbers
/// ("Classification" as a rule). The filter refers to the cloud, which must outlive it. Null, with a sentence
/// in `problem`, when the field is not there or holds fractions.
std::shared_ptr<const PointFilter> makeClassFilter(const PointCloud& cloud, std::string_view fieldName,
                                                   std::span<const std::int64_t> classes,
                                                   std::string& problem);

} // namespace Zamt::Host
