#include "host/clouds/laz/LazFile.h"

#include <algorithm>

namespace Zamt::Host {

namespace {

/// How many EVLRs the header says there are.
std::uint32_t countOfEvlrs(const LasFile& file) {
  const bool has = file.layout.versionMinor >= 4 && file.layout.headerSize >= headerOf14;
  return has ? readAt<std::uint32_t>(&file.bytes()[HeaderAt::evlrCount]) : 0;
}

} // namespace

std::size_t LazFile::keptFrom() const {
  if (chunks.fromTable) return static_cast<std::size_t>(chunks.end);
  const auto first = std::ranges::find(layout.records, true, &LasRecord::extended);
  const bool isWhole = first != layout.records.end() && layout.records.end() - first == countOfEvlrs(*this);
  return isWhole ? first->head : bytes().size();
}

void LazFile::uncountLostRecords(LasEdits& edits) const {
  if (!chunks.fromTable && keptFrom() == bytes().size() && countOfEvlrs(*this) != 0)
    replaceNumber(edits, HeaderAt::evlrCount, std::uint32_t{0});
}

} // namespace Zamt::Host
