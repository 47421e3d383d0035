#include "host/sample/SampleFiles.h"

#include "host/clouds/buildCloud.h"
#include "host/surfaces/SurfaceFile.h"

#include <oneapi/tbb/enumerable_thread_specific.h>

namespace Zamt::Host {

namespace {

void fillPoint(const SamplePoint& from, NewPoint& to) {
  to.position = {from.x, from.y, from.z};
  to.intensity = from.intensity;
  to.returnNumber = from.returnNumber;
  to.numberOfReturns = from.returns;
  to.classification = from.classNumber;
  to.gpsTime = from.gpsTime;
  to.pointSourceId = 1;
  to.extra = {static_cast<double>(from.amplitude), static_cast<double>(from.normal[0]),
              static_cast<double>(from.normal[1]), static_cast<double>(from.normal[2])};
}

} // namespace

bool writeSample(const SampleScene& scene, const std::string& cloudPath, const std::string& surfacePath,
                 const Stop& stop, std::string& problem) {
  NewCloud cloud;
  cloud.origin = {sampleOrigin[0], sampleOrigin[1], 0};
  cloud.extraFields = {{"Amplitude", FieldType::F32, 1}, {"NormalVector", FieldType::F32, 3}};
  tbb::enumerable_thread_specific<SampleScene::Reader> readers([&] { return SampleScene::Reader(scene); });
  const auto fill = [&](std::uint64_t index, NewPoint& point) {
    fillPoint(readers.local().at(index), point);
  };
  return buildCloud(cloud, scene.points(), fill, cloudPath, stop, problem) &&
         writePly(surfacePath, scene.water(), problem);
}

} // namespace Zamt::Host
