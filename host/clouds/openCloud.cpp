#include "host/clouds/openCloud.h"

#include "host/clouds/las/LasFormat.h"
#include "host/clouds/las/LasLayout.h"
#include "host/clouds/laz/openLaz.h"

#include <algorithm>
#include <array>

namespace Zamt::Host {

namespace {

constexpr std::array<CloudOpener, 2> formats{{
    {hasCompressedPoints, openLaz},
    {[](std::span<const std::byte>) { return true; }, openLas},
}};

} // namespace

CloudFormats cloudFormats() { return formats; }

std::shared_ptr<PointCloud> openCloud(const std::string& path, std::string& error, CloudFormats among) {
  std::unique_ptr<MappedFile> file = MappedFile::open(path, error);
  if (!file) return nullptr;
  const auto opener =
      std::ranges::find_if(among, [&](const CloudOpener& one) { return one.fits(file->bytes()); });
  std::unique_ptr<const CloudFormat> format = opener->open(std::move(file), path, error);
  return format ? std::make_shared<PointCloud>(path, std::move(format)) : nullptr;
}

} // namespace Zamt::Host
