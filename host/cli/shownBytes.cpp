#include "host/cli/shownBytes.h"

#include <fmt/format.h>

#include <array>

namespace Zamt::Host {

namespace {

/// One row of the standard's table of well-formed byte sequences: what the first byte may be, how many bytes
/// there are, and what the second may be. All others are from 0x80 to 0xBF.
struct Sequence {
  unsigned char firstLow, firstHigh;
  std::size_t length;
  unsigned char secondLow, secondHigh;
};
constexpr std::array<Sequence, 9> sequences{{{0x00, 0x7F, 1, 0, 0},
                                             {0xC2, 0xDF, 2, 0x80, 0xBF},
                                             {0xE0, 0xE0, 3, 0xA0, 0xBF},
                                             {0xE1, 0xEC, 3, 0x80, 0xBF},
                                             {0xED, 0xED, 3, 0x80, 0x9F},
                                             {0xEE, 0xEF, 3, 0x80, 0xBF},
                                             {0xF0, 0xF0, 4, 0x90, 0xBF},
                                             {0xF1, 0xF3, 4, 0x80, 0xBF},
                                             {0xF4, 0xF4, 4, 0x80, 0x8F}}};

bool within(char c, unsigned char low, unsigned char high) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= low && byte <= high;
}

bool isWhole(std::string_view text, const Sequence& sequence) {
  if (text.size() < sequence.length) return false;
  if (sequence.length > 1 && !within(text[1], sequence.secondLow, sequence.secondHigh)) return false;
  for (std::size_t i = 2; i < sequence.length; ++i)
    if (!within(text[i], 0x80, 0xBF)) return false;
  return true;
}

/// The length of the character at the start of a text; 0 if there is none.
std::size_t characterLength(std::string_view text) {
  for (const Sequence& sequence : sequences)
    if (within(text[0], sequence.firstLow, sequence.firstHigh))
      return isWhole(text, sequence) ? sequence.length : 0;
  return 0;
}

} // namespace

std::string shownBytes(std::string_view text) {
  std::string shown;
  shown.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    if (length == 0)
      shown += fmt::format("\\x{:02X}", static_cast<unsigned char>(text[0]));
    else
      shown += text.substr(0, length);
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return shown;
}

} // namespace Zamt::Host
