#include "quindle/library/QuindleFiles.h"

#include "cadmer/CommandLineParser.h"
#include "rethold/getEnvString.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

namespace Zamt {

namespace {

/// A directory as the environment spells it, with "/" between components and none at the end.
std::string cleaned(std::string directory) {
  std::replace(directory.begin(), directory.end(), '\\', '/');
  while (directory.ends_with('/')) directory.pop_back();
  return directory;
}

struct UserBase {
  const char* variable;
  const char* below;
};

/// The first that is set decides, on every platform.
constexpr std::array<UserBase, 2> userBases{{
    {"APPDATA", "/Orrel/quindles"},
    {"XDG_DATA_HOME", "/orrel/quindles"},
}};

/// A directory in the one form that can be compared; empty if the file system does not say.
std::filesystem::path comparable(std::filesystem::path directory) {
  if (directory.empty()) directory = ".";
  // A slash at the end would count as one more component.
  if (!directory.has_filename()) directory = directory.parent_path();
  std::error_code failed;
  std::filesystem::path canonical = std::filesystem::weakly_canonical(directory, failed);
  return failed ? std::filesystem::path() : canonical;
}

} // namespace

std::string quindleFileName(const std::string& directory, const std::string& name) {
  return directory + '/' + quindleIdentifier(name) + ".quindle";
}

std::string userQuindleDirectory() {
  for (const UserBase& base : userBases)
    if (const std::string directory = cleaned(Rethold::getEnvString(base.variable, nullptr));
        !directory.empty())
      return directory + base.below;
  const std::string home = cleaned(Rethold::getEnvString("HOME", nullptr));
  return (home.empty() ? "." : home) + "/.orrel/quindles";
}

std::vector<std::string> quindleSearchPath() {
  std::vector<std::string> path{userQuindleDirectory()};
  for (const std::string& data : CommandLineParser::getDataDirs())
    if (std::string directory = cleaned(data) + "/quindles";
        std::find(path.begin(), path.end(), directory) == path.end())
      path.push_back(std::move(directory));
  return path;
}

bool isOwnQuindle(const std::string& directory, const std::string& file) {
  const std::filesystem::path own = comparable(directory);
  return !own.empty() && own == comparable(std::filesystem::path(file).parent_path());
}

} // namespace Zamt
