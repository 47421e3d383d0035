#include "cadmer/CommandLineParser.h"

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <string_view>
#include <system_error>

namespace Zamt {
namespace {

std::vector<std::string> split(std::string_view text) {
  std::vector<std::string> pieces;
  while (!text.empty()) {
    const std::size_t end = text.find(':');
    pieces.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return pieces;
}

/// The file that this code was loaded from: the library, or the program or plugin that it is linked into.
/// Empty if that can't be found out.
std::filesystem::path ownFile() {
  // Any address inside this library will do to ask where it was loaded from.
  static const char anchor = 0;
  Dl_info library{};
  void* found = nullptr;
  if (dladdr1(&anchor, &library, &found, RTLD_DL_LINKMAP) == 0 || !found) return {};
  const char* const name = static_cast<const link_map*>(found)->l_name;
  std::error_code error;
  // The program itself has no name in the list of what is loaded; what it was called by is no path when it
  // was found along PATH.
  auto file = name && *name ? std::filesystem::absolute(name, error)
                            : std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::path() : file;
}

std::vector<std::string> installedShare() {
  const std::filesystem::path file = ownFile();
  if (file.empty()) return {};
  return {(file.parent_path() / QUINDLE_SHARE_FROM_HERE).lexically_normal().string()};
}

} // namespace

std::vector<std::string> CommandLineParser::getDataDirs() {
  const char* const directories = std::getenv("QUINDLE_DATA_DIRS");
  return directories ? split(directories) : installedShare();
}

} // namespace Zamt
