#include "host/clouds/laz/LazChunkWriter.h"

#include "host/clouds/las/LasLayout.h"

#include <atomic>
#include <limits>
#include <memory>
#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

namespace Zamt::Host {

namespace {

/// Chunks that are copied are written together, as many as have about this many bytes.
constexpr std::size_t runSize = std::size_t{4} << 20;

/// Chunks that are copied together, or one that is made.
struct Run {
  std::size_t first = 0;
  std::size_t end = 0;
  std::uint64_t to = 0; ///< Where it goes in the file.
  std::vector<std::byte> made;
  std::span<const std::byte> bytes;
  std::string problem;
};

using RunPtr = std::shared_ptr<Run>;

class ChunkWriter {
public:
  ChunkWriter(LazChunkMaker& maker, std::uint64_t start, AtomicFile& file, std::vector<LazChunk>& chunks)
      : maker_(maker), file_(file), chunks_(chunks), end_(start) {}

  /// Gives the place behind the last chunk.
  std::uint64_t write(std::string& error) {
    using Filter = tbb::filter_mode;
    const auto atOnce = 2 * static_cast<std::size_t>(tbb::this_task_arena::max_concurrency());
    const auto begin = [&](tbb::flow_control& control) { return next(control); };
    const auto make = [&](const RunPtr& run) { return this->make(run); };
    const auto place = [&](const RunPtr& run) { return this->place(run); };
    const auto put = [&](const RunPtr& run) { return this->put(run); };
    const auto end = [&](const RunPtr& run) {
      if (error.empty()) error = run->problem;
      if (!error.empty()) failed_ = true;
    };
    error.clear();
    tbb::parallel_pipeline(atOnce, tbb::make_filter<void, RunPtr>(Filter::serial_in_order, begin) &
                                       tbb::make_filter<RunPtr, RunPtr>(Filter::parallel, make) &
                                       tbb::make_filter<RunPtr, RunPtr>(Filter::serial_in_order, place) &
                                       tbb::make_filter<RunPtr, RunPtr>(Filter::parallel, put) &
                                       tbb::make_filter<RunPtr, void>(Filter::serial_in_order, end));
    return end_;
  }

private:
  RunPtr next(tbb::flow_control& control) {
    if (next_ == chunks_.size() || failed_) {
      control.stop();
      return nullptr;
    }
    auto run = std::make_shared<Run>();
    run->first = next_;
    run->bytes = maker_.original(next_++);
    while (!run->bytes.empty() && run->bytes.size() < runSize && next_ < chunks_.size()) {
      const auto more = maker_.original(next_);
      if (more.empty()) break;
      run->bytes = {run->bytes.data(), run->bytes.size() + more.size()};
      ++next_;
    }
    run->end = next_;
    return run;
  }

  RunPtr make(const RunPtr& run) {
    if (!run->bytes.empty() || failed_) return run;
    if (!maker_.make(run->first, run->made, run->problem)) return run;
    if (run->made.size() > std::numeric_limits<std::uint32_t>::max())
      run->problem = "A chunk of points would be larger than LAZ can say. Write smaller ones.";
    run->bytes = run->made;
    return run;
  }

  RunPtr place(const RunPtr& run) {
    run->to = end_;
    if (!run->made.empty()) chunks_[run->first].size = run->made.size();
    for (std::size_t chunk = run->first; chunk < run->end; ++chunk) {
      chunks_[chunk].offset = end_;
      end_ += chunks_[chunk].size;
    }
    return run;
  }

  RunPtr put(const RunPtr& run) {
    if (run->problem.empty() && !failed_) file_.write(run->to, run->bytes, run->problem);
    return run;
  }

  LazChunkMaker& maker_;
  AtomicFile& file_;
  std::vector<LazChunk>& chunks_;
  std::uint64_t end_;
  std::size_t next_ = 0;
  std::atomic<bool> failed_{false};
};

} // namespace

bool writeLazChunks(const LazFormat& format, LazChunkMaker& maker, std::uint64_t start, AtomicFile& file,
                    std::vector<LazChunk>& chunks, std::uint64_t& end, std::string& error) {
  std::vector<std::byte> place(sizeof(std::int64_t));
  const std::uint64_t behind = ChunkWriter(maker, start + place.size(), file, chunks).write(error);
  if (!error.empty()) return false;
  writeAt(place.data(), behind);
  const std::vector<std::byte> table = lazChunkTable(format, chunks);
  end = behind + table.size();
  return file.write(start, place, error) && file.write(behind, table, error);
}

} // namespace Zamt::Host
