#pragma once

#include "files/Stop.h"
#include "host/clouds/PointCloud.h"

#include "cadmer/LabelSet.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// @file
/// What files of clouds say of classes: the names that they define, and the classes that their points are in.
namespace Zamt::Host {

/// What one file says of classes.
struct CloudClasses {
  std::string file;
  unsigned pointFormat = 0;
  unsigned highest = 0; ///< That its points can hold.
  std::vector<ClassName> names;
};

/// What the file of an open cloud says.
CloudClasses classesOf(const PointCloud& cloud);

/// What those of the files say that can be opened, without a look at their points. Ends early if stopped.
std::vector<CloudClasses> classesOfFiles(const std::vector<std::string>& files, const Stop& stop);

/// By number the first file with points of that class; empty for none.
using ClassUse = std::array<std::string, 256>;

/// Adds the classes that points of the cloud are in. False if it can't be read, or was stopped.
bool addClassUse(const PointCloud& cloud, const Stop& stop, ClassUse& use);

/// Adds those of files; one that can't be read adds nothing. False if it was stopped.
bool addClassUse(const std::vector<std::string>& files, const Stop& stop, ClassUse& use);

/// What a class is called in a cloud by itself: by its file, else by the standard, in the point formats 0 to
/// 5 by older tables too where the current one has no name. Empty for no name.
std::string nameOfClass(const CloudClasses& cloud, std::uint8_t number);

/// What a class of an open cloud is called where `labels` are the classes of the command; empty for no name.
std::string nameOfClass(const PointCloud& cloud, const LabelSet& labels, std::uint8_t number);

} // namespace Zamt::Host
