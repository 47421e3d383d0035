#pragma once

#include <array>
#include <string_view>

/// @file
/// The types that a parameter can have. A document holds any word; these are the ones that mean something.
namespace Zamt {

/// One type.
struct QuindleParamType {
  std::string_view word;   ///< As it is written behind the colon of a parameter.
  std::string_view phrase; ///< What a value is, for a sentence; empty where the word says it.
  bool isObject;           ///< A value is the name of an object of the scene, which is attached.
  bool isData;             ///< That object has the points that a "classify into" works on.
};

/// The types whose values are objects of a scene.
/// @{
inline constexpr QuindleParamType gridType{"Grid", "a point cloud", true, true};
inline constexpr QuindleParamType fieldType{"Field", "a field of the data", true, true};
inline constexpr QuindleParamType regionType{"Region", "a region to work in", true, false};
inline constexpr QuindleParamType brushType{"Brush", "", true, false};
/// @}

/// All of them, in the order of every listing.
inline constexpr std::array<QuindleParamType, 10> quindleParamTypes{{
    gridType,
    fieldType,
    regionType,
    brushType,
    {"Surface", "a triangulated surface", false, false},
    {"Number", "a number", false, false},
    {"Text", "some text", false, false},
    {"Class", "a class", false, false},
    {"Object", "", false, false},
    {"File", "", false, false},
}};

/// The type of exactly this word, or null.
constexpr const QuindleParamType* findQuindleParamType(std::string_view word) {
  for (const QuindleParamType& type : quindleParamTypes)
    if (type.word == word) return &type;
  return nullptr;
}

} // namespace Zamt
