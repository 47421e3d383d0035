#include "quindle/core/PointVocabulary.h"

#include <limits>

namespace Zamt {

namespace {

QuindleField flag(const char* name) { return {name, QuindleField::Values::Flag, true, 0, 1}; }

QuindleField number(const char* name, double minimum, double maximum) {
  return {name, QuindleField::Values::Number, true, minimum, maximum};
}

QuindleField wholeMeasure(const char* name, double maximum) {
  return {name, QuindleField::Values::Measure, true, 0, maximum};
}

QuindleField measure(const char* name) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  return {name, QuindleField::Values::Measure, false, -infinity, infinity};
}

} // namespace

// ASPRS LAS 1.4 R15, table "ASPRS Standard LIDAR Point Classes (Point Data Record Formats 6-10)".
const std::vector<QuindleClass>& standardQuindleClasses() {
  static const std::vector<QuindleClass> classes{
      {0, "Created, Never Classified"},
      {1, "Unclassified"},
      {2, "Ground"},
      {3, "Low Vegetation"},
      {4, "Medium Vegetation"},
      {5, "High Vegetation"},
      {6, "Building"},
      {7, "Low Noise"},
      {9, "Water"},
      {10, "Rail"},
      {11, "Road Surface"},
      {13, "Wire - Guard"},
      {14, "Wire - Conductor"},
      {15, "Transmission Tower"},
      {16, "Wire-structure Connector"},
      {17, "Bridge Deck"},
      {18, "High Noise"},
      {19, "Overhead Structure"},
      {20, "Ignored Ground"},
      {21, "Snow"},
      {22, "Temporal Exclusion"},
  };
  return classes;
}

// The same, table for the formats 0 to 5, which LAS 1.1 to 1.3 had as their only one.
const std::vector<QuindleClass>& olderQuindleClasses() {
  static const std::vector<QuindleClass> classes{{7, "Low Point"}, {8, "Model Key-point"}, {12, "Overlap"}};
  return classes;
}

const std::vector<QuindleField>& knownQuindleFields() {
  constexpr double largest8 = std::numeric_limits<std::uint8_t>::max();
  constexpr double largest16 = std::numeric_limits<std::uint16_t>::max();
  constexpr double largest32 = std::numeric_limits<std::uint32_t>::max();
  constexpr auto largest64 = static_cast<double>(std::numeric_limits<std::uint64_t>::max());
  static const std::vector<QuindleField> fields{
      measure("X"),
      measure("Y"),
      measure("Z"),
      wholeMeasure("Intensity", largest16),
      number("ReturnNumber", 0, 15),
      number("NumberOfReturns", 0, 15),
      flag("Synthetic"),
      flag("KeyPoint"),
      flag("Withheld"),
      flag("Overlap"),
      number("ScannerChannel", 0, 3),
      flag("ScanDirectionFlag"),
      flag("EdgeOfFlightLine"),
      number("Classification", 0, largest8),
      number("UserData", 0, largest8),
      {"ScanAngle", QuindleField::Values::Measure, false, -180, 180},
      number("PointSourceId", 0, largest16),
      measure("GpsTime"),
      wholeMeasure("Red", largest16),
      wholeMeasure("Green", largest16),
      wholeMeasure("Blue", largest16),
      wholeMeasure("Infrared", largest16),
      wholeMeasure("WavePacketDescriptorIndex", largest8),
      wholeMeasure("WaveformDataOffset", largest64),
      wholeMeasure("WaveformPacketSize", largest32),
      measure("ReturnPointWaveformLocation"),
      measure("WaveformXt"),
      measure("WaveformYt"),
      measure("WaveformZt"),
  };
  return fields;
}

} // namespace Zamt
