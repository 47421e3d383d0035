#include "host/cli/quotedPlace.h"

#include "host/cli/shownBytes.h"

#include <algorithm>

namespace Zamt::Host {

namespace {

/// Whether a byte goes on with a character, and so takes no place of its own.
bool goesOn(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

} // namespace

std::string quotedPlace(std::string_view text, std::int32_t line, std::int32_t column) {
  if (line < 1) return {};
  for (; line > 1; --line) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) return {};
    text.remove_prefix(end + 1);
  }
  text = text.substr(0, text.find('\n'));
  std::string quoted = "  " + shownBytes(text) + '\n';
  if (column < 1) return quoted;
  const std::string before =
      shownBytes(text.substr(0, std::min(text.size(), static_cast<std::size_t>(column) - 1)));
  quoted += "  ";
  for (const char byte : before)
    if (!goesOn(byte)) quoted += byte == '\t' ? '\t' : ' ';
  return quoted + "^\n";
}

} // namespace Zamt::Host
