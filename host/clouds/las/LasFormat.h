#pragma once

#include "files/MappedFile.h"
#include "host/clouds/CloudFormat.h"

#include <memory>
#include <string>

namespace Zamt::Host {

/// A LAS file whose points are read where they lie in the mapped file; only what is asked for is touched.
/// Null when it can't be used, with a sentence in `error` that names `path`.
std::unique_ptr<const CloudFormat> openLas(std::unique_ptr<MappedFile> file, const std::string& path,
                                           std::string& error);

} // namespace Zamt::Host
