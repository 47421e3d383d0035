#pragma once

#include "files/AtomicFile.h"
#include "host/clouds/las/LasLayout.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Zamt::Host {

/// Bytes of the input that are copied.
struct LasStretch {
  std::size_t from = 0;
  std::size_t size = 0;
};

/// How a written file differs from its input, except within the points: bytes that are inserted, left out, or
/// replaced, all at places of the input. No two of them overlap. Says where everything else goes.
class LasEdits {
public:
  /// For as many bytes as there are in `bytes`.
  void replace(std::size_t at, std::vector<std::byte> bytes);
  void insert(std::size_t at, std::vector<std::byte> bytes);
  void remove(std::size_t at, std::size_t size);

  /// Has the header count so many VLRs more, or fewer.
  void countVlrs(int more) { vlrs_ += more; }
  int vlrs() const { return vlrs_; }

  /// `size` other bytes, which the caller writes, come in the place of those from `from` to `to`. At most
  /// once; what is inserted at `from` comes before them.
  void replacePoints(std::size_t from, std::size_t to, std::uint64_t size);

  /// Where a byte of the input that is kept, or the end of the input, is in the output; of a byte that is
  /// left out, where the next one that is kept.
  std::uint64_t moved(std::uint64_t place) const;

  /// Where the points start in the output, if they start at `pointOffset` in the input.
  std::uint64_t movedPoints(std::size_t pointOffset) const;

  /// Whether every byte that is kept stays where it is.
  bool movesNothing() const;

  /// Whether a place is not among the points that were replaced.
  bool isKept(std::uint64_t place) const;

  /// What is kept of the input between two places, in order, in pieces that are worth a task of their own.
  std::vector<LasStretch> kept(std::size_t from, std::size_t to) const;

  /// Writes everything but the points that are replaced. False with a sentence in `error`.
  bool writeTo(std::span<const std::byte> input, AtomicFile& file, std::string& error) const;

  /// Writes the bytes that are inserted, and those that replace others. False with a sentence in `error`.
  bool writeAdded(AtomicFile& file, std::string& error) const;

private:
  struct Edit {
    std::size_t at = 0;
    std::size_t removed = 0;
    std::uint64_t added = 0;
    std::vector<std::byte> bytes; ///< Empty for the points.
    bool ofPoints = false;
  };
  void add(Edit edit);

  std::vector<Edit> edits_; ///< In the order of the file.
  int vlrs_ = 0;
};

/// A number that replaces the one at a place of the input.
template <class T>
void replaceNumber(LasEdits& edits, std::size_t at, T value) {
  std::vector<std::byte> bytes(sizeof(T));
  writeAt(bytes.data(), value);
  edits.replace(at, std::move(bytes));
}

/// Has the header say where things are in the output; call it once all other edits are there. A place that is
/// not kept becomes 0. False, with a sentence in `error` that names `path`, when records begin inside
/// of the points, or these would start further on than a header can say.
bool moveHeaderPlaces(std::span<const std::byte> input, const LasLayout& layout, const std::string& path,
                      LasEdits& edits, std::string& error);

} // namespace Zamt::Host
