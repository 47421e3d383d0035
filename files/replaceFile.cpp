#include "files/replaceFile.h"

#include "files/AtomicFile.h"

namespace Zamt {

Replaced replaceFile(const std::string& path, const std::string& bytes) {
  std::string reason; // callers have sentences of their own
  const std::unique_ptr<AtomicFile> file = AtomicFile::create(path, reason);
  if (!file) return Replaced::NotBegun;
  const bool whole = file->write(0, std::as_bytes(std::span(bytes)), reason) && file->commit(reason);
  return whole ? Replaced::Done : Replaced::NotFinished;
}

} // namespace Zamt
