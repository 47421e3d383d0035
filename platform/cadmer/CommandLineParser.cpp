#include "cadmer/CommandLineParser.h"

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
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

std::vector<std::string> installedShare() {
  // Any address inside this library will do to ask where it was loaded from.
  static const char anchor = 0;
  Dl_info library{};
  if (dladdr(&anchor, &library) == 0 || !library.dli_fname) return {};
  std::error_code error;
  const std::filesystem::path file = std::filesystem::absolute(library.dli_fname, error);
  if (error) return {};
  return {(file.parent_path() / QUINDLE_SHARE_FROM_LIBRARY).lexically_normal().string()};
}

} // namespace

std::vector<std::string> CommandLineParser::getDataDirs() {
  const char* const directories = std::getenv("QUINDLE_DATA_DIRS");
  return directories ? split(directories) : installedShare();
}

} // namespace Zamt
