#include "files/writeWholeFile.h"

#include "files/AtomicFile.h"
#include "files/replaceFile.h"

namespace Zamt {

bool writeWholeFile(const std::string& path, std::span<const std::byte> bytes, std::string& error) {
  const std::unique_ptr<AtomicFile> file = AtomicFile::create(path, error);
  if (file) return file->reserve(bytes.size(), error) && file->write(0, bytes, error) && file->commit(error);
  // No other file may take its place; it may still be given other bytes.
  return replaceFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}) == Replaced::Done;
}

} // namespace Zamt
