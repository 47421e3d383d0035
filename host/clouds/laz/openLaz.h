#pragma once

#include "files/MappedFile.h"
#include "host/clouds/CloudFormat.h"

#include <memory>
#include <string>

namespace Zamt::Host {

/// A LAZ file, whose blocks are its chunks: decoded when they are asked for, and only what is asked for. Null
/// when it can't be used, with a sentence in `error` that names `path`.
std::unique_ptr<const CloudFormat> openLaz(std::unique_ptr<MappedFile> file, const std::string& path,
                                           std::string& error);

} // namespace Zamt::Host
