#include "host/clouds/PointCloud.h"

#include "host/clouds/BlockReader.h"
#include "host/clouds/writeCloud.h"

#include <algorithm>
#include <utility>

namespace Zamt::Host {

PointCloud::PointCloud(std::string path, std::unique_ptr<const CloudFormat> format)
    : path_(std::move(path)),
      format_(std::move(format)),
      about_(format_->description()),
      classes_(about_.blocks),
      boxes_(about_.boxes.empty() ? about_.blocks.size() : 0) {}

const Field* PointCloud::findField(std::string_view name) const {
  const auto found = std::ranges::find(about_.fields, name, &Field::name);
  return found == about_.fields.end() ? nullptr : &*found;
}

void PointCloud::setClass(BlockReader& reader, std::span<const std::uint32_t> indices, std::uint8_t number) {
  const Column classes = reader.classes();
  if (reader.failed() ||
      std::ranges::all_of(indices, [&](std::uint32_t index) { return classes.byteAt(index) == number; }))
    return;
  const std::size_t block = reader.block();
  const bool first = classes_.of(block).empty();
  const std::span<std::uint8_t> changed = classes_.change(block);
  if (first) {
    for (std::size_t i = 0; i < changed.size(); ++i) changed[i] = classes.byteAt(i);
    reader.moveTo(block);
  }
  for (const std::uint32_t index : indices) changed[index] = number;
}

bool PointCloud::write(const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
                       std::string& error) const {
  return writeCloud(*format_, path_, classes_, addedNames, path, stop, error);
}

bool PointCloud::extract(const PointMask& kept, const std::string& path, const Stop& stop,
                         std::string& error) const {
  return extractCloud(*format_, path_, kept, path, stop, error);
}

const Bounds* PointCloud::knownBounds(std::size_t block) const {
  if (!about_.boxes.empty()) return &about_.boxes[block];
  return boxes_[block].state.load(std::memory_order_acquire) == KeptBox::Kept ? &boxes_[block].box : nullptr;
}

void PointCloud::keepBounds(std::size_t block, const Bounds& box) const {
  KeptBox& kept = boxes_[block];
  std::uint8_t expected = KeptBox::Unknown;
  if (!kept.state.compare_exchange_strong(expected, KeptBox::BeingKept)) return;
  kept.box = box;
  kept.state.store(KeptBox::Kept, std::memory_order_release);
}

} // namespace Zamt::Host
