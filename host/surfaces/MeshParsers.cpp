#include "host/surfaces/MeshParsers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <system_error>
#include <utility>

namespace Zamt::Host {

namespace {

constexpr std::string_view blanks = " \t\r\v\f";

/// A vertex that no file has.
constexpr std::uint32_t noVertex = std::numeric_limits<std::uint32_t>::max();

/// Text by lines, and lines by words.
class Lines {
public:
  explicit Lines(std::string_view text) : rest(text) {}

  bool next() {
    if (rest.empty()) return false;
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    line_ = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    ++number_;
    return true;
  }

  /// The next word of the line; empty at its end.
  std::string_view word() {
    line_.remove_prefix(std::min(line_.find_first_not_of(blanks), line_.size()));
    const std::size_t end = std::min(line_.find_first_of(blanks), line_.size());
    const std::string_view found = line_.substr(0, end);
    line_.remove_prefix(end);
    return found;
  }

  std::string at(const std::string& what) const { return "line " + std::to_string(number_) + ' ' + what; }

  std::string_view rest;

private:
  std::string_view line_;
  std::size_t number_ = 0;
};

template <typename Number>
std::optional<Number> numberOf(std::string_view word) {
  if (word.starts_with('+') && !word.starts_with("+-")) word.remove_prefix(1);
  Number value{};
  const auto read = std::from_chars(word.data(), word.data() + word.size(), value);
  if (read.ptr != word.data() + word.size()) return std::nullopt;
  if constexpr (std::is_floating_point_v<Number>)
    // Too small or too large for a double: neither is a coordinate, and the triangle is left out.
    if (read.ec == std::errc::result_out_of_range) return std::numeric_limits<Number>::quiet_NaN();
  if (read.ec != std::errc{}) return std::nullopt;
  return value;
}

std::string shown(std::string_view word) {
  constexpr std::size_t longest = 40;
  std::string text(word.substr(0, longest));
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c >= 0x7F; }, '?');
  return '"' + text + '"';
}

std::string noNumber(const Lines& lines, std::string_view word) {
  return lines.at(word.empty() ? "ends where a number belongs"
                               : "has " + shown(word) + " where a number belongs");
}

/// Cuts a polygon into a fan around its first corner.
void addFan(Mesh& mesh, std::span<const std::uint32_t> corners) {
  for (std::size_t i = 2; i < corners.size(); ++i)
    mesh.triangles.push_back({corners[0], corners[i - 1], corners[i]});
}

bool readVertex(Lines& lines, Mesh& mesh, std::string& fault) {
  std::array<double, 3> vertex{};
  for (double& value : vertex) {
    const std::string_view word = lines.word();
    const auto number = numberOf<double>(word);
    if (!number) {
      fault = noNumber(lines, word);
      return false;
    }
    value = *number;
  }
  mesh.vertices.push_back(vertex);
  return true;
}

/// A position from 1, or counted back from the newest vertex if negative.
std::optional<std::uint32_t> objCorner(std::string_view word, std::size_t vertices) {
  const auto index = numberOf<std::int64_t>(word.substr(0, word.find('/')));
  if (!index || *index == 0) return std::nullopt;
  const std::int64_t position = *index > 0 ? *index - 1 : static_cast<std::int64_t>(vertices) + *index;
  return position >= 0 && position < noVertex ? static_cast<std::uint32_t>(position) : noVertex;
}

enum class PlyType : std::uint8_t { I8, U8, I16, U16, I32, U32, F32, F64 };

struct PlyTypeName {
  std::string_view name;
  PlyType type;
  std::size_t bytes;
};

constexpr std::array plyTypes{
    PlyTypeName{"char", PlyType::I8, 1},    PlyTypeName{"int8", PlyType::I8, 1},
    PlyTypeName{"uchar", PlyType::U8, 1},   PlyTypeName{"uint8", PlyType::U8, 1},
    PlyTypeName{"short", PlyType::I16, 2},  PlyTypeName{"int16", PlyType::I16, 2},
    PlyTypeName{"ushort", PlyType::U16, 2}, PlyTypeName{"uint16", PlyType::U16, 2},
    PlyTypeName{"int", PlyType::I32, 4},    PlyTypeName{"int32", PlyType::I32, 4},
    PlyTypeName{"uint", PlyType::U32, 4},   PlyTypeName{"uint32", PlyType::U32, 4},
    PlyTypeName{"float", PlyType::F32, 4},  PlyTypeName{"float32", PlyType::F32, 4},
    PlyTypeName{"double", PlyType::F64, 8}, PlyTypeName{"float64", PlyType::F64, 8},
};

const PlyTypeName* plyType(std::string_view name) {
  const auto* found = std::find_if(plyTypes.begin(), plyTypes.end(),
                                   [&](const PlyTypeName& type) { return type.name == name; });
  return found == plyTypes.end() ? nullptr : found;
}

struct PlyProperty {
  std::string_view name;
  const PlyTypeName* type = nullptr;
  const PlyTypeName* count = nullptr; ///< Set for a list.
};

struct PlyElement {
  std::string_view name;
  std::uint64_t count = 0;
  std::vector<PlyProperty> properties;
};

template <typename Number>
double fromBytes(std::array<char, 8> bytes, bool swap) {
  if (swap) std::reverse(bytes.begin(), bytes.begin() + sizeof(Number));
  Number value;
  std::memcpy(&value, bytes.data(), sizeof value);
  return static_cast<double>(value);
}

/// A PLY file: a header of lines that lists elements with their properties, then the elements one behind the
/// other, as words or as numbers of the byte order that the header names.
class PlyReader {
public:
  PlyReader(std::string_view bytes, Mesh& target) : lines_(bytes), mesh_(target) {}

  std::string read() {
    if (!readHeader()) return fault_;
    for (const PlyElement& element : elements_)
      if (!readElement(element)) return fault_;
    return {};
  }

private:
  enum class Format : std::uint8_t { Unknown, Text, Little, Big };

  bool fail(std::string what) {
    fault_ = std::move(what);
    return false;
  }

  bool readHeader() {
    while (lines_.next()) {
      const std::string_view keyword = lines_.word();
      if (keyword == "end_header") {
        if (format_ == Format::Unknown) return fail("its header names no format");
        return true;
      }
      if (keyword == "format" && !readFormat()) return false;
      if (keyword == "element" && !readElementLine()) return false;
      if (keyword == "property" && !readPropertyLine()) return false;
    }
    return fail("its header has no end");
  }

  bool readFormat() {
    const std::string_view name = lines_.word();
    format_ = name == "ascii"                  ? Format::Text
              : name == "binary_little_endian" ? Format::Little
              : name == "binary_big_endian"    ? Format::Big
                                               : Format::Unknown;
    return format_ != Format::Unknown || fail(lines_.at("names the unknown format " + shown(name)));
  }

  bool readElementLine() {
    PlyElement element{lines_.word(), 0, {}};
    const std::string_view word = lines_.word();
    const auto count = numberOf<std::uint64_t>(word);
    if (!count) return fail(noNumber(lines_, word));
    element.count = *count;
    elements_.push_back(element);
    return true;
  }

  bool readPropertyLine() {
    if (elements_.empty()) return fail(lines_.at("has a property that belongs to no element"));
    PlyProperty property;
    std::string_view type = lines_.word();
    if (type == "list") {
      type = lines_.word();
      property.count = plyType(type);
      if (!property.count) return fail(lines_.at("has the unknown type " + shown(type)));
      type = lines_.word();
    }
    property.type = plyType(type);
    if (!property.type) return fail(lines_.at("has the unknown type " + shown(type)));
    property.name = lines_.word();
    elements_.back().properties.push_back(property);
    return true;
  }

  bool readElement(const PlyElement& element) {
    if (element.properties.empty()) return true;
    // Every value takes a byte at least, so a count that the bytes can't hold is told before any work.
    if (element.count > lines_.rest.size())
      return fail("it announces " + std::to_string(element.count) + " of the element " + shown(element.name) +
                  ", more than it has bytes for");
    const bool isVertex = element.name == "vertex";
    std::array<std::size_t, 3> axes{};
    if (isVertex && !findAxes(element, axes)) return false;
    for (std::uint64_t i = 0; i < element.count; ++i) {
      if (format_ == Format::Text && !nextTextRow()) return failShort();
      if (!readRow(element)) return false;
      if (isVertex) mesh_.vertices.push_back({row_[axes[0]], row_[axes[1]], row_[axes[2]]});
    }
    return true;
  }

  bool findAxes(const PlyElement& element, std::array<std::size_t, 3>& axes) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const std::string_view name = std::string_view("xyz").substr(axis, 1);
      const auto found = std::find_if(element.properties.begin(), element.properties.end(),
                                      [&](const PlyProperty& p) { return p.name == name && !p.count; });
      if (found == element.properties.end()) return fail("its vertices have no " + std::string(name));
      axes[axis] = static_cast<std::size_t>(found - element.properties.begin());
    }
    return true;
  }

  /// Empty lines and comments between rows are passed over.
  bool nextTextRow() {
    while (lines_.next()) {
      Lines ahead = lines_;
      const std::string_view word = ahead.word();
      if (!word.empty() && word != "comment") return true;
    }
    return false;
  }

  bool readRow(const PlyElement& element) {
    row_.assign(element.properties.size(), 0);
    for (std::size_t i = 0; i < element.properties.size(); ++i) {
      const PlyProperty& property = element.properties[i];
      if (!property.count) {
        if (!readNumber(*property.type, row_[i])) return false;
        continue;
      }
      const bool corners =
          element.name == "face" && (property.name == "vertex_indices" || property.name == "vertex_index");
      if (!readList(property, corners)) return false;
    }
    return true;
  }

  bool readList(const PlyProperty& property, bool corners) {
    double length = 0;
    if (!readNumber(*property.count, length)) return false;
    // In text the list ends with its line at the latest.
    if (!(length >= 0) || length >= noVertex ||
        (format_ != Format::Text && length > static_cast<double>(lines_.rest.size())))
      return fail("a list in it announces a length that it has no bytes for");
    list_.clear();
    for (auto i = static_cast<std::uint64_t>(length); i > 0; --i) {
      double value = 0;
      if (!readNumber(*property.type, value)) return false;
      if (corners)
        list_.push_back(value >= 0 && value < noVertex ? static_cast<std::uint32_t>(value) : noVertex);
    }
    if (corners) addFan(mesh_, list_);
    return true;
  }

  bool readNumber(const PlyTypeName& type, double& value) {
    if (format_ != Format::Text) return readBinary(type, value);
    const std::string_view word = lines_.word();
    const auto number = numberOf<double>(word);
    if (!number) return fail(noNumber(lines_, word));
    value = *number;
    return true;
  }

  bool readBinary(const PlyTypeName& type, double& value) {
    if (lines_.rest.size() < type.bytes) return failShort();
    std::array<char, 8> bytes{};
    std::copy_n(lines_.rest.data(), type.bytes, bytes.data());
    lines_.rest.remove_prefix(type.bytes);
    const bool swap = (format_ == Format::Big) != (std::endian::native == std::endian::big);
    switch (type.type) {
    case PlyType::I8: value = fromBytes<std::int8_t>(bytes, swap); break;
    case PlyType::U8: value = fromBytes<std::uint8_t>(bytes, swap); break;
    case PlyType::I16: value = fromBytes<std::int16_t>(bytes, swap); break;
    case PlyType::U16: value = fromBytes<std::uint16_t>(bytes, swap); break;
    case PlyType::I32: value = fromBytes<std::int32_t>(bytes, swap); break;
    case PlyType::U32: value = fromBytes<std::uint32_t>(bytes, swap); break;
    case PlyType::F32: value = fromBytes<float>(bytes, swap); break;
    case PlyType::F64: value = fromBytes<double>(bytes, swap); break;
    }
    return true;
  }

  bool failShort() { return fail("it ends before everything that its header announces was there"); }

  Lines lines_;
  Mesh& mesh_;
  Format format_ = Format::Unknown;
  std::vector<PlyElement> elements_;
  std::vector<double> row_;
  std::vector<std::uint32_t> list_;
  std::string fault_;
};

std::uint32_t littleWord(std::string_view bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i)
    value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[offset + i])) << (8 * i);
  return value;
}

/// A binary STL file: 80 bytes of comment, the count of triangles, and for each its normal, three corners and
/// two spare bytes, all numbers 32 bits wide and little-endian.
constexpr std::size_t stlHeader = 84;
constexpr std::size_t stlRecord = 50;
constexpr std::size_t stlNormal = 12;

} // namespace

std::string parsePly(std::string_view bytes, Mesh& mesh) { return PlyReader(bytes, mesh).read(); }

std::string parseObj(std::string_view bytes, Mesh& mesh) {
  Lines lines(bytes);
  std::vector<std::uint32_t> corners;
  std::string fault;
  while (lines.next()) {
    const std::string_view keyword = lines.word();
    if (keyword == "v" && !readVertex(lines, mesh, fault)) return fault;
    if (keyword != "f") continue;
    corners.clear();
    for (std::string_view word = lines.word(); !word.empty() && word[0] != '#'; word = lines.word()) {
      // A backslash at the end of a line takes the next one in.
      const bool goesOn = word.back() == '\\' && lines.next();
      if (goesOn) word.remove_suffix(1);
      if (goesOn && word.empty()) continue;
      const auto corner = objCorner(word, mesh.vertices.size());
      if (!corner) return lines.at("has " + shown(word) + " where the number of a vertex belongs");
      corners.push_back(*corner);
    }
    addFan(mesh, corners);
  }
  return {};
}

std::string parseTextStl(std::string_view bytes, Mesh& mesh) {
  Lines lines(bytes);
  std::size_t loopStart = 0;
  std::vector<std::uint32_t> corners;
  std::string fault;
  bool ended = false;
  while (lines.next()) {
    const std::string_view keyword = lines.word();
    ended = ended || keyword == "endsolid";
    if (keyword == "outer") loopStart = mesh.vertices.size();
    if (keyword == "vertex" && !readVertex(lines, mesh, fault)) return fault;
    if (keyword != "endloop") continue;
    corners.clear();
    for (std::size_t i = loopStart; i < mesh.vertices.size(); ++i)
      corners.push_back(static_cast<std::uint32_t>(std::min<std::size_t>(i, noVertex)));
    loopStart = mesh.vertices.size();
    addFan(mesh, corners);
  }
  return ended ? std::string() : "it ends before its \"endsolid\"";
}

bool isBinaryStl(std::string_view bytes) {
  return bytes.size() >= stlHeader &&
         bytes.size() == stlHeader + stlRecord * littleWord(bytes, stlHeader - 4);
}

std::string parseBinaryStl(std::string_view bytes, Mesh& mesh) {
  if (bytes.size() < stlHeader) return "it is shorter than the head of a binary STL file";
  const std::size_t count = littleWord(bytes, stlHeader - 4);
  if ((bytes.size() - stlHeader) / stlRecord < count)
    return "it announces " + std::to_string(count) + " triangles, more than it has bytes for";
  for (std::size_t i = 0; i < std::min(count, maxSurfaceTriangles + 1); ++i) {
    const auto first = static_cast<std::uint32_t>(mesh.vertices.size());
    for (std::size_t corner = 0; corner < 3; ++corner) {
      std::array<double, 3> vertex{};
      for (std::size_t axis = 0; axis < 3; ++axis)
        vertex[axis] = static_cast<double>(std::bit_cast<float>(
            littleWord(bytes, stlHeader + i * stlRecord + stlNormal + corner * 12 + axis * 4)));
      mesh.vertices.push_back(vertex);
    }
    mesh.triangles.push_back({first, first + 1, first + 2});
  }
  return {};
}

} // namespace Zamt::Host
