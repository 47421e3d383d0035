#pragma once

#include "host/clouds/PointMask.h"
#include "host/clouds/las/LasSource.h"
#include "host/clouds/las/PointSummary.h"

#include <memory>
#include <mutex>

namespace Zamt::Host {

/// Some of the points of another source: their records in their order, in as many blocks, and around them
/// what the other's file has. The header tells of those points that were read.
class KeptPoints : public LasSource {
public:
  /// Of `all` those that the mask holds; both must outlive this.
  KeptPoints(const LasSource& all, const PointMask& kept);

  const LasFile& file() const override { return all_.file(); }
  const BlockTable& blocks() const override { return blocks_; }
  LasStretch pointData() const override { return all_.pointData(); }
  void removeOwnRecords(LasEdits& edits) const override { all_.removeOwnRecords(edits); }
  std::unique_ptr<RecordReader> makeRecordReader() const override;
  void describePoints(LasEdits& edits) const override { summary().describe(file().bytes(), edits); }

  /// What those that were read are like.
  const PointSummary& summary() const { return summary_; }

private:
  class Reader;

  const LasSource& all_;
  const PointMask& kept_;
  BlockTable blocks_;
  mutable std::mutex gathering_;
  mutable PointSummary summary_;
};

} // namespace Zamt::Host
