#include "host/clouds/las/LasFile.h"

namespace Zamt::Host {

CloudDescription describe(const LasLayout& layout) {
  CloudDescription about;
  about.versionMinor = layout.versionMinor;
  about.pointFormat = layout.pointFormat;
  about.fields.assign(layout.fields.begin(), layout.fields.end());
  about.classField = layout.classField;
  about.highestClass = layout.highestClass();
  about.classNames = layout.classNames;
  return about;
}

} // namespace Zamt::Host
