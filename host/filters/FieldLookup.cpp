#include "host/filters/FieldLookup.h"

namespace Zamt::Host {

std::string fieldNames(const PointCloud& cloud) {
  std::string names;
  for (const Field& field : cloud.fields()) {
    if (!names.empty()) names += ", ";
    names += field.name;
  }
  return names;
}

const Field* lookUpField(const PointCloud& cloud, std::string_view name, std::string& problem) {
  const Field* field = cloud.findField(name);
  if (field == nullptr)
    problem =
        "There is no field called \"" + std::string(name) + "\"; this cloud has " + fieldNames(cloud) + ".";
  return field;
}

} // namespace Zamt::Host
