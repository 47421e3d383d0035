#include "host/clouds/laz/LazColumn.h"

namespace Zamt::Host {

std::vector<LazColumn> recordColumns(const LazFormat& format, std::byte* records) {
  std::vector<LazColumn> columns;
  for (const LazPart& part : format.parts) columns.push_back({records + part.offset, format.recordLength});
  return columns;
}

} // namespace Zamt::Host
