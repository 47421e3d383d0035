#pragma once

#include "tests/laz-judge/LazFile.h"
#include "tests/support/runCommand.h"

#include <cstring>
#include <sstream>

namespace Zamt::Testing {

/// What a judge has found in a compressed cloud.
struct Verdict {
  std::uint64_t count = 0;
  std::string sum;   ///< SHA-256 of the records of all points, uncompressed
  std::string error; ///< why there is none, as the judge puts it

  bool operator==(const Verdict&) const = default;
};

/// For messages of failed tests.
inline std::ostream& operator<<(std::ostream& out, const Verdict& verdict) {
  return out << verdict.count << " points, sum " << verdict.sum << " " << verdict.error;
}

/// The SHA-256 of bytes, in hexadecimal digits.
inline std::string sha256(const std::string& bytes) {
  const TemporaryDirectory directory;
  return runCommand({"/usr/bin/env", "sha256sum", directory.write("bytes", bytes)}).out.substr(0, 64);
}

/// The verdict of the plain codec on the bytes of a file.
inline Verdict plainVerdict(std::string_view bytes) {
  try {
    const Laz::LazFile file = Laz::decodeLaz(bytes);
    return {file.count(), sha256(file.points), {}};
  } catch (const Laz::LazError& error) {
    return {0, {}, error.what()};
  }
}

/// The verdict of the npm packages on a file. Of a COPC they read the tree as well as the file, and report an
/// error where the two differ.
inline Verdict npmVerdict(const std::string& path) {
  const std::string folder = std::string(QUINDLE_SOURCE_DIR) + "/tests/laz-judge/npm";
  if (!std::filesystem::exists(folder + "/node_modules"))
    return {0, {}, "The packages are missing; run tools/setup."};
  const CommandResult run = runCommand({"/usr/bin/env", "node", folder + "/judge.mjs", path});
  Verdict verdict;
  if (run.exitCode != 0 || !(std::istringstream(run.out) >> verdict.count >> verdict.sum))
    verdict.error = run.err.empty() ? "The judge said nothing." : run.err;
  return verdict;
}

/// Whether the npm packages can judge such a file. Of some others they fail, of some they are silently wrong:
/// with items of version 4 where there are several scanner channels, and with a chunk size of 0 for variable
/// chunks.
inline bool npmJudges(const Laz::LazFile& file) {
  const bool format = file.format <= 3 || (file.format >= 6 && file.format <= 8);
  for (const Laz::LasRecord& record : file.records)
    if (record.userId == "laszip encoded" && record.payload.compare(12, 4, std::string(4, '\0')) == 0)
      return false;
  return format && file.tableUsed && !file.streamed && file.items[0].version < 4;
}

} // namespace Zamt::Testing
