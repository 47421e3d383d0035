#pragma once

#include "quindle/core/Export.h"

#include <cstdint>
#include <string>
#include <vector>

/// @file
/// What the points of a cloud commonly carry: the classes that the LAS standard numbers, and the fields that
/// a point of it can have. The tables are made on first use, never change, and may be read from any thread.
/// Making them lets std::bad_alloc through.
///
/// Nothing in the language depends on them, since a scene may hold other classes and fields: they are for
/// those who advise, complete and offer.
namespace Zamt {

/// A class and its number.
struct QUINDLE_API QuindleClass {
  std::int32_t number = 0; ///< 0 to 255.
  std::string name;        ///< As the standard spells it.
};

/// The classes of the current table of the standard, in the order of their numbers. Numbers without a name
/// are left out.
QUINDLE_API const std::vector<QuindleClass>& standardQuindleClasses();

/// Names that only older tables give, in the order of their numbers. The current table may give the number of
/// one to another name, or to none.
QUINDLE_API const std::vector<QuindleClass>& olderQuindleClasses();

/// A field of a point.
struct QUINDLE_API QuindleField {
  /// What its values are.
  enum class Values : std::int32_t {
    Flag = 0,   ///< 0 or 1.
    Number = 1, ///< Whole numbers that count or name something, so that next to each other is not alike.
    Measure = 2 ///< A measured quantity, in whatever unit the cloud has it.
  };

  std::string name;                ///< As conditions write it.
  Values values = Values::Measure; ///< What its values are.
  bool whole = false;              ///< Only whole numbers occur.
  double minimum = 0;              ///< No value is less; minus infinity where the standard sets no limit.
  double maximum = 0;              ///< No value is greater; infinite where the standard sets no limit.
};

/// The fields that the standard knows, in the order in which a point holds them.
QUINDLE_API const std::vector<QuindleField>& knownQuindleFields();

} // namespace Zamt
