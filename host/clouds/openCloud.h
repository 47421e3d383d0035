#pragma once

#include "files/MappedFile.h"
#include "host/clouds/PointCloud.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace Zamt::Host {

/// How files of one format are told from others, and opened.
struct CloudOpener {
  /// Whether the file with these bytes is of the format, sound or not.
  bool (*fits)(std::span<const std::byte> bytes);

  /// Opens it. Null when it can't be used, with a sentence in `error` that names `path`.
  std::unique_ptr<const CloudFormat> (*open)(std::unique_ptr<MappedFile> file, const std::string& path,
                                             std::string& error);
};

/// Formats in the order in which they are asked; the first that fits opens the file.
using CloudFormats = std::span<const CloudOpener>;

/// The formats that can be read. The last fits every file, and says what is wrong with those of no format.
CloudFormats cloudFormats();

/// Opens the cloud at `path`. Null when it can't be used, with a sentence in `error` that says why and what
/// to do. One of `formats` fits every file.
std::shared_ptr<PointCloud> openCloud(const std::string& path, std::string& error,
                                      CloudFormats formats = cloudFormats());

} // namespace Zamt::Host
