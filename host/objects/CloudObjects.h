#pragma once

#include "host/objects/Grid.h"

#include "rethold/Pointer.h"
#include "sorbine/VObject.h"

#include <string>

namespace Zamt::Host {

/// A point cloud of the scene: reads the file that `file` names and publishes it as `grid`. Writing another
/// name puts another cloud in the same place, so that whatever is attached works on that one next.
class CloudSource : public VObject {
public:
  explicit CloudSource(const Surroundings& surroundings) : surroundings_(surroundings) {}

  /// The cloud that is open; null if none is.
  Rethold::StrongPtr<Grid> grid() const { return grid_.get(); }

  /// Why the file can't be used; empty if it can.
  const std::string& problem() const { return problem_.get(); }

  /// The first cloud of the scene; null if there is none.
  static Rethold::StrongPtr<CloudSource> first();

private:
  void compute() override;

  Surroundings surroundings_;
  VInput<std::string> file_ = input<std::string>("file", "The LAS file to read.");
  VOutput<Rethold::StrongPtr<Grid>> grid_ =
      output<Rethold::StrongPtr<Grid>>("grid", "The points of the file.");
  VOutput<std::string> problem_ =
      output<std::string>("problem", "Why the file cannot be used; empty if it can.");
  VOutput<std::string> status_ = output<std::string>("status", "What was read.");
};

/// Registers the cloud and the object that picks one of its fields.
void registerCloudObjects(const Surroundings& surroundings);

} // namespace Zamt::Host
