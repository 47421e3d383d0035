#include "host/clouds/las/LasWriter.h"

#include "files/AtomicFile.h"
#include "host/clouds/las/LasEdits.h"
#include "host/clouds/las/classNameRecord.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
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

/// Writes one of several parts. False with a sentence in `error`.
using WritePart = std::function<bool(std::size_t part, std::string& error)>;

/// Writes parts by several threads. False, with what the first one that failed says, when one could not be.
bool writeParts(std::size_t parts, const WritePart& write, std::string& error) {
  std::atomic<bool> failed{false};
  std::mutex firstError;
  tbb::parallel_for(std::size_t{0}, parts, [&](std::size_t part) {
    if (failed) return;
    std::string problem;
    if (write(part, problem)) return;
    const std::lock_guard lock(firstError);
    if (!failed.exchange(true)) error = problem;
  });
  return !failed;
}

/// What the pieces of a written file are made from.
struct Source {
  const LasFile& input;
  const BlockTable& blocks;
  const ClassOverlay& changed;
  const LasEdits& edits;
  bool shared = false; ///< The file has the bytes of the input already.
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
  setClasses(layout, buffer, source.changed.of(*piece.block));
}

/// Calls `visit(at, end, same)` for the blocks of the disk that a stretch of the input lies in, as far as it
/// does, by their places in the stretch; `same` are those whose `bytes` are the input's.
template <class Visit>
bool visitDiskBlocks(const Source& source, const LasStretch& stretch, std::span<const std::byte> bytes,
                     Visit visit) {
  constexpr std::size_t diskBlock = 4096;
  const std::byte* const old = &source.input.bytes()[stretch.from];
  for (std::size_t at = 0, end = 0; at < stretch.size; at = end) {
    end = std::min(stretch.size, at + diskBlock - (stretch.from + at) % diskBlock);
    if (!visit(at, end, std::memcmp(old + at, &bytes[at], end - at) == 0)) return false;
  }
  return true;
}

/// Writes the blocks of the disk that are not the same. They are written whole, since what they would have to
/// be filled up from is on the disk alone.
bool writeDifferences(const Source& source, const LasStretch& stretch, std::span<const std::byte> bytes,
                      AtomicFile& file, std::string& error) {
  std::size_t begin = 0; // of the blocks since the last one that is the same
  const auto write = [&](std::size_t end) {
    return file.write(stretch.from + begin, bytes.subspan(begin, end - begin), error);
  };
  const auto visit = [&](std::size_t at, std::size_t end, bool same) {
    const bool good = !same || write(at);
    if (same) begin = end;
    return good;
  };
  return visitDiskBlocks(source, stretch, bytes, visit) && write(stretch.size);
}

/// Whether less than half of the file changes, so that its other blocks are worth sharing: where many are
/// given others one by one, file systems take longer than for a new file. Told from some of the pieces.
bool isMostlyKept(const Source& source) {
  constexpr std::size_t looks = 16;
  std::vector<Piece> changed = piecesOf(source);
  std::erase_if(changed, [](const Piece& piece) { return !piece.block; });
  std::size_t lookedAt = 0;
  std::size_t different = 0;
  std::vector<std::byte> buffer;
  for (std::size_t i = 0; i < changed.size(); i += changed.size() / looks + 1) {
    patchBlock(source, changed[i], buffer);
    lookedAt += changed[i].stretch.size;
    visitDiskBlocks(source, changed[i].stretch, buffer, [&](std::size_t at, std::size_t end, bool same) {
      different += same ? 0 : end - at;
      return true;
    });
  }
  double size = 0;
  for (const Piece& piece : changed) size += static_cast<double>(piece.stretch.size);
  const double share = lookedAt == 0 ? 0 : static_cast<double>(different) / static_cast<double>(lookedAt);
  return size * share <= static_cast<double>(source.input.bytes().size()) / 2;
}

/// Writes one piece; `buffer` is room to change it in.
bool writePiece(const Source& source, const Piece& piece, std::vector<std::byte>& buffer, AtomicFile& file,
                std::string& error) {
  const std::uint64_t to = source.edits.moved(piece.stretch.from);
  if (!piece.block)
    return source.shared || file.copy(to, *source.input.file, piece.stretch.from, piece.stretch.size, error);
  patchBlock(source, piece, buffer);
  if (source.shared) return writeDifferences(source, piece.stretch, buffer, file, error);
  return file.write(to, buffer, error);
}

bool writePieces(const Source& source, AtomicFile& file, std::string& error) {
  const std::vector<Piece> pieces = piecesOf(source);
  tbb::enumerable_thread_specific<std::vector<std::byte>> buffers;
  const auto write = [&](std::size_t piece, std::string& problem) {
    return writePiece(source, pieces[piece], buffers.local(), file, problem);
  };
  return writeParts(pieces.size(), write, error);
}

/// Where points that are stored otherwise go in a LAS file.
struct Target {
  AtomicFile& file;
  std::uint64_t points; ///< Where they start.
};

/// Writes the records of a block; `buffer` is room for some of them.
bool writeBlock(const LasSource& source, const ClassOverlay& changed, std::size_t block, RecordReader& reader,
                std::vector<std::byte>& buffer, const Target& target, std::string& error) {
  constexpr std::size_t pointsAtOnce = 4096;
  const std::size_t length = source.file().layout.recordLength;
  buffer.resize(pointsAtOnce * length);
  const std::size_t count = source.blocks().count(block);
  for (std::size_t from = 0; from < count; from += pointsAtOnce) {
    const auto records = std::span(buffer).first(std::min(pointsAtOnce, count - from) * length);
    const std::uint64_t to = target.points + (source.blocks().first(block) + from) * length;
    if (!readChanged(source, changed, reader, block, from, records, error)) return false;
    if (!target.file.write(to, records, error)) return false;
  }
  return true;
}

bool writeBlocks(const LasSource& source, const ClassOverlay& changed, const Target& target,
                 std::string& error) {
  struct Local {
    std::unique_ptr<RecordReader> reader;
    std::vector<std::byte> buffer;
  };
  tbb::enumerable_thread_specific<Local> locals([&] { return Local{source.makeRecordReader(), {}}; });
  const auto write = [&](std::size_t block, std::string& problem) {
    Local& local = locals.local();
    return writeBlock(source, changed, block, *local.reader, local.buffer, target, problem);
  };
  return writeParts(source.blocks().size(), write, error);
}

} // namespace

bool writeAsLas(const LasSource& source, const ClassOverlay& changed,
                const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
                std::string& error) {
  const LasFile& input = source.file();
  const LasLayout& layout = input.layout;
  LasEdits edits;
  if (!enterClassNames(input, addedNames, edits, error)) return false;
  source.removeOwnRecords(edits);
  replaceNumber(edits, HeaderAt::pointFormat, static_cast<std::uint8_t>(layout.pointFormat));
  const LasStretch old = source.pointData();
  edits.replacePoints(old.from, old.from + old.size, source.blocks().points() * layout.recordLength);
  if (!moveHeaderPlaces(input.bytes(), layout, input.path, edits, error)) return false;
  const auto file = AtomicFile::create(path, error, &stop);
  if (!file || !file->reserve(edits.moved(input.bytes().size()), error) ||
      !writeBlocks(source, changed, {*file, edits.movedPoints(layout.pointOffset)}, error))
    return false;
  source.describePoints(edits);
  return edits.writeTo(input.bytes(), *file, error) && file->commit(error);
}

bool writeLas(const LasFile& input, const BlockTable& blocks, const ClassOverlay& changed,
              const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
              std::string& error) {
  LasEdits edits;
  if (!enterClassNames(input, addedNames, edits, error)) return false;
  if (!moveHeaderPlaces(input.bytes(), input.layout, input.path, edits, error)) return false;
  const auto file = AtomicFile::create(path, error, &stop);
  if (!file) return false;
  Source source{input, blocks, changed, edits};
  source.shared = edits.movesNothing() && isMostlyKept(source) && file->shareBlocks(*input.file);
  return (source.shared || file->reserve(edits.moved(input.bytes().size()), error)) &&
         writePieces(source, *file, error) && edits.writeAdded(*file, error) && file->commit(error);
}

} // namespace Zamt::Host
