#include "host/clouds/las/LasSource.h"

#include "host/clouds/las/LasCompatibility.h"

namespace Zamt::Host {

void setClasses(const LasLayout& layout, std::span<std::byte> records,
                std::span<const std::uint8_t> classes) {
  std::byte* record = records.data();
  for (const std::uint8_t number : classes) {
    if (layout.pointFormat < 6)
      setPointwiseClass(record, layout.secondClassAt, number);
    else
      record[layout.classAt] = static_cast<std::byte>(number);
    record += layout.recordLength;
  }
}

bool readChanged(const LasSource& source, const ClassOverlay& changed, RecordReader& reader,
                 std::size_t block, std::size_t from, std::span<std::byte> records, std::string& problem) {
  if (!reader.read(block, from, records, problem)) return false;
  const LasLayout& layout = source.file().layout;
  const auto classes = changed.of(block);
  if (!classes.empty())
    setClasses(layout, records, classes.subspan(from, records.size() / layout.recordLength));
  return true;
}

} // namespace Zamt::Host
