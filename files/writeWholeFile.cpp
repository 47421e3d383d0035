#include "files/writeWholeFile.h"

#include "files/AtomicFile.h"

namespace Zamt {

bool writeWholeFile(const std::string& path, std::span<const std::byte> bytes, std::string& error) {
  const std::unique_ptr<AtomicFile> file = AtomicFile::create(path, error);
  return file && file->reserve(bytes.size(), error) && file->write(0, bytes, error) && file->commit(error);
}

} // namespace Zamt
