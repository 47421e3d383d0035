#include "host/clouds/las/LasWriter.h"

#include "files/AtomicFile.h"
#include "host/clouds/las/LasCompatibility.h"
#include "host/clouds/las/LasEdits.h"
#include "host/clouds/las/classNameRecord.h"

#include <atomic>
#include <cstring>
#include <mutex>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <oneapi/tbb/parallel_for.h>
#include <optional>

namespace Zamt::Host {

namespace {

/// A stretch of the input that is copied; with the classes of one block, when that was changed.
struct Piece {
  LasStretch stretch;
  std::optional<std::size_t> block;
};

/// What the pieces of a written file are made from.
struct Source {
  const LasFile& input;
  const BlockTable& blocks;
  const ClassOverlay& changed;
  const LasEdits& edits;
};

std::vector<Piece> piecesOf(const Source& source) {
  const LasLayout& layout = source.input.layout;
  std::vector<Piece> pieces;
  std::size_t done = 0;
  const auto copy = [&](std::size_t to) {
    for (const LasStretch stretch : source.edits.kept(done, to)) pieces.push_back({stretch, std::nullopt});
  };
  for (std::size_t block = 0; block < source.blocks.size(); ++block) {
    if (source.changed.of(block).empty()) continue;
    const std::size_t start =
        layout.pointOffset + static_cast<std::size_t>(source.blocks.first(block)) * layout.recordLength;
    const std::size_t size = source.blocks.count(block) * layout.recordLength;
    copy(start);
    pieces.push_back({{start, size}, block});
    done = start + size;
  }
  copy(source.input.bytes().size());
  return pieces;
}

/// The bytes of a block with its classes as changed, in `buffer`.
void patchBlock(const Source& source, const Piece& piece, std::vector<std::byte>& buffer) {
  const LasLayout& layout = source.input.layout;
  buffer.resize(piece.stretch.size);
  std::memcpy(buffer.data(), &source.input.bytes()[piece.stretch.from], piece.stretch.size);
  std::byte* record = buffer.data();
  for (const std::uint8_t number : source.changed.of(*piece.block)) {
    if (layout.pointFormat < 6)
      setPointwiseClass(record, layout.secondClassAt, number);
    else
      record[layout.classAt] = static_cast<std::byte>(number);
    record += layout.recordLength;
  }
}

/// Writes one piece; `buffer` is room to change it in.
bool writePiece(const Source& source, const Piece& piece, std::vector<std::byte>& buffer, AtomicFile& file,
                std::string& error) {
  const std::uint64_t to = source.edits.moved(piece.stretch.from);
  if (!piece.block)
    return file.write(to, source.input.bytes().subspan(piece.stretch.from, piece.stretch.size), error);
  patchBlock(source, piece, buffer);
  return file.write(to, buffer, error);
}

bool writePieces(const Source& source, AtomicFile& file, std::string& error) {
  const std::vector<Piece> pieces = piecesOf(source);
  std::atomic<bool> failed{false};
  std::mutex firstError;
  tbb::enumerable_thread_specific<std::vector<std::byte>> buffers;
  tbb::parallel_for(std::size_t{0}, pieces.size(), [&](std::size_t i) {
    if (failed) return;
    std::string problem;
    if (writePiece(source, pieces[i], buffers.local(), file, problem)) return;
    const std::lock_guard lock(firstError);
    if (!failed.exchange(true)) error = problem;
  });
  return !failed;
}

} // namespace

bool writeLas(const LasFile& input, const BlockTable& blocks, const ClassOverlay& changed,
              const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
              std::string& error) {
  LasEdits edits;
  if (!enterClassNames(input, addedNames, edits, error)) return false;
  if (!moveHeaderPlaces(input.bytes(), input.layout, input.path, edits, error)) return false;
  const auto file = AtomicFile::create(path, error, &stop);
  return file && file->reserve(edits.moved(input.bytes().size()), error) &&
         writePieces({input, blocks, changed, edits}, *file, error) && edits.writeAdded(*file, error) &&
         file->commit(error);
}

} // namespace Zamt::Host
