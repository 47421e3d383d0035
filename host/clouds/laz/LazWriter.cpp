#include "host/clouds/laz/LazWriter.h"

#include "files/AtomicFile.h"
#include "host/clouds/las/LasEdits.h"
#include "host/clouds/las/classNameRecord.h"
#include "host/clouds/laz/LazClassEncoder.h"
#include "host/clouds/laz/LazDecoder.h"

#include <algorithm>
#include <limits>
#include <oneapi/tbb/enumerable_thread_specific.h>
#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

namespace Zamt::Host {

namespace {

constexpr std::size_t tablePlace = sizeof(std::int64_t); ///< What the chunks follow.

/// Unchanged chunks are copied together, as many as have about this many bytes.
constexpr std::uint64_t runSize = std::uint64_t{4} << 20;

/// Chunks that are copied together, or one that is encoded.
struct Run {
  std::size_t first = 0;
  std::size_t end = 0;
  bool isChanged = false;
  std::uint64_t to = 0;           ///< Where it goes in the output.
  std::vector<std::byte> encoded; ///< Of a changed chunk.
  std::string problem;
};

/// Writes the chunks of one file and keeps account of where they go.
class ChunkWriter {
public:
  ChunkWriter(const LazFile& input, const ClassOverlay& changed, std::uint64_t start, AtomicFile& file)
      : input_(input),
        changed_(changed),
        file_(file),
        encoders_([&] { return LazClassEncoder(input.coding, input.layout.secondClassAt); }),
        chunks_(input.chunks.chunks),
        end_(start) {}

  /// Encodes runs side by side, a few at a time, and writes each once those before it are so far that its
  /// place is known.
  bool write(std::string& error) {
    const auto runs = 2 * static_cast<std::size_t>(tbb::this_task_arena::max_concurrency());
    using Filter = tbb::filter_mode;
    tbb::parallel_pipeline(
        runs, tbb::make_filter<void, Run*>(Filter::serial_in_order,
                                           [&](tbb::flow_control& control) { return next(control); }) &
                  tbb::make_filter<Run*, Run*>(Filter::parallel, [&](Run* run) { return encode(run); }) &
                  tbb::make_filter<Run*, Run*>(Filter::serial_in_order, [&](Run* run) { return place(run); }) &
                  tbb::make_filter<Run*, std::string>(Filter::parallel, [&](Run* run) { return put(run); }) &
                  tbb::make_filter<std::string, void>(Filter::serial_in_order, [&](std::string problem) {
                    if (problem_.empty()) problem_ = std::move(problem);
                    failed_ = failed_ || !problem_.empty();
                  }));
    error = problem_;
    return problem_.empty();
  }

  const std::vector<LazChunk>& chunks() const { return chunks_; } ///< As they are written.
  std::uint64_t end() const { return end_; }                      ///< Behind the last one.

private:
  bool isChanged(std::size_t chunk) const { return !changed_.of(chunk).empty(); }

  Run* next(tbb::flow_control& control) {
    if (next_ == chunks_.size() || failed_) {
      control.stop();
      return nullptr;
    }
    auto* const run = new Run{next_, next_ + 1, isChanged(next_), 0, {}, {}};
    std::uint64_t size = input_.chunks.chunks[next_++].size;
    while (!run->isChanged && size < runSize && next_ < chunks_.size() && !isChanged(next_))
      size += input_.chunks.chunks[next_++].size;
    run->end = next_;
    return run;
  }

  Run* encode(Run* run) {
    if (!run->isChanged) return run;
    std::string damage;
    run->encoded.reserve(input_.chunk(run->first).size());
    if (!encoders_.local().encode(input_.chunk(run->first), changed_.of(run->first), {}, run->encoded, damage))
      run->problem =
          chunkDamaged(input_.path, run->first, input_.chunks.chunks[run->first].offset, damage);
    else if (run->encoded.size() > std::numeric_limits<std::uint32_t>::max())
      run->problem = "A chunk of \"" + input_.path + "\" would be larger than LAZ can say. Write it anew "
                                                     "with smaller chunks first.";
    return run;
  }

  Run* place(Run* run) {
    run->to = end_;
    for (std::size_t chunk = run->first; chunk < run->end; ++chunk) {
      if (run->isChanged) chunks_[chunk].size = run->encoded.size();
      chunks_[chunk].offset = end_;
      end_ += chunks_[chunk].size;
    }
    return run;
  }

  std::string put(Run* run) {
    const std::unique_ptr<Run> owned(run);
    std::string problem = run->problem;
    if (!problem.empty()) return problem;
    const LazChunk& first = input_.chunks.chunks[run->first];
    const LazChunk& last = input_.chunks.chunks[run->end - 1];
    const auto bytes = run->isChanged ? std::span<const std::byte>(run->encoded)
                                      : input_.bytes().subspan(first.offset, last.offset + last.size - first.offset);
    file_.write(run->to, bytes, problem);
    return problem;
  }

  const LazFile& input_;
  const ClassOverlay& changed_;
  AtomicFile& file_;
  tbb::enumerable_thread_specific<LazClassEncoder> encoders_;
  std::vector<LazChunk> chunks_;
  std::uint64_t end_;
  std::size_t next_ = 0;
  std::string problem_;
  std::atomic<bool> failed_{false};
};

bool isAnyChanged(const LazFile& input, const ClassOverlay& changed) {
  for (std::size_t chunk = 0; chunk < input.chunks.chunks.size(); ++chunk)
    if (!changed.of(chunk).empty()) return true;
  return false;
}

/// How many EVLRs the header says there are.
std::uint32_t countOfEvlrs(const LasFile& input) {
  const bool has = input.layout.versionMinor >= 4 && input.layout.headerSize >= headerOf14;
  return has ? readAt<std::uint32_t>(&input.bytes()[HeaderAt::evlrCount]) : 0;
}

/// Where those bytes behind the points start that are kept. A file without a table that can be used may end
/// in anything, except that EVLRs which are all sound are what they seem to be.
std::size_t keptFrom(const LazFile& input) {
  if (input.chunks.fromTable) return static_cast<std::size_t>(input.chunks.end);
  const std::vector<LasRecord>& records = input.layout.records;
  const auto first = std::ranges::find(records, true, &LasRecord::extended);
  const bool isWhole = first != records.end() && records.end() - first == countOfEvlrs(input);
  return isWhole ? first->head : input.bytes().size();
}

/// Moves what the LAZ record says of records that the header does not count.
void moveSpecialRecords(const LazFile& input, LasEdits& edits) {
  if (input.coding.specialRecords < 0) return;
  const auto place = static_cast<std::uint64_t>(input.coding.specialRecords);
  const std::size_t at = input.layout.records[input.lazRecord].data + lazSpecialRecordsAt;
  const bool isKept = place <= input.bytes().size() && edits.isKept(place);
  replaceNumber(edits, at, isKept ? static_cast<std::int64_t>(edits.moved(place)) : std::int64_t{-1});
}

bool writeStretches(const LazFile& input, const std::vector<LasStretch>& stretches, const LasEdits& edits,
                    AtomicFile& file, std::string& error) {
  return std::ranges::all_of(stretches, [&](const LasStretch& stretch) {
    return file.write(edits.moved(stretch.from), input.bytes().subspan(stretch.from, stretch.size), error);
  });
}

/// Writes the chunks and their table; `edits` learn how many bytes these are.
bool writePoints(const LazFile& input, const ClassOverlay& changed, LasEdits& edits, AtomicFile& file,
                 std::vector<LazChunk>& written, std::string& error) {
  const std::uint64_t start = edits.movedPoints(input.layout.pointOffset);
  ChunkWriter chunks(input, changed, start + tablePlace, file);
  if (!chunks.write(error)) return false;
  written = chunks.chunks();
  const std::vector<std::byte> table = lazChunkTable(input.coding, written);
  std::vector<std::byte> place(tablePlace);
  writeAt(place.data(), chunks.end());
  edits.replacePoints(input.layout.pointOffset, keptFrom(input), chunks.end() + table.size() - start);
  return file.write(start, place, error) && file.write(chunks.end(), table, error);
}

/// Writes everything in front of the points and behind them.
bool writeFrame(const LazFile& input, const std::vector<LazChunk>& written, LasEdits& edits, AtomicFile& file,
                std::string& error) {
  if (keptFrom(input) == input.bytes().size() && countOfEvlrs(input) != 0 && !input.chunks.fromTable)
    replaceNumber(edits, HeaderAt::evlrCount, std::uint32_t{0});
  if (!moveHeaderPlaces(input.bytes(), input.layout, input.path, edits, error)) return false;
  moveSpecialRecords(input, edits);
  if (input.copc) moveCopcPlaces(input, *input.copc, written, edits);
  return writeStretches(input, edits.kept(0, input.bytes().size()), edits, file, error) &&
         edits.writeAdded(file, error);
}

} // namespace

bool writeLaz(const LazFile& input, const ClassOverlay& changed, const std::vector<ClassName>& addedNames,
              const std::string& path, const Stop& stop, std::string& error) {
  LasEdits edits;
  if (!enterClassNames(input, addedNames, edits, error)) return false;
  const auto file = AtomicFile::create(path, error, &stop);
  if (!file) return false;
  if (addedNames.empty() && !isAnyChanged(input, changed))
    return writeStretches(input, edits.kept(0, input.bytes().size()), edits, *file, error) &&
           file->commit(error);
  std::vector<LazChunk> written;
  return writePoints(input, changed, edits, *file, written, error) &&
         writeFrame(input, written, edits, *file, error) && file->commit(error);
}

} // namespace Zamt::Host
