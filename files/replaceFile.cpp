#include "files/replaceFile.h"

#include "files/AtomicFile.h"
#include "files/OldText.h"

#include <span>

namespace Zamt {

namespace {

using System::Occupant;

Replaced replaceWhole(const std::string& path, std::span<const std::byte> bytes) {
  std::string reason; // callers have sentences of their own
  const std::unique_ptr<AtomicFile> file = AtomicFile::create(path, reason);
  if (!file) return Replaced::NotBegun;
  return file->write(0, bytes, reason) && file->commit(reason) ? Replaced::Done : Replaced::NotFinished;
}

bool writeOver(const System::File& file, std::span<const std::byte> bytes) {
  // A full disk is to show before the first old byte is gone.
  if (System::reserve(file, bytes.size())) return false;
  std::uint64_t offset = 0;
  while (offset < bytes.size()) {
    std::size_t written = 0;
    if (System::writeAt(file, offset, bytes.subspan(offset), written)) return false;
    offset += written;
  }
  return !System::cut(file, bytes.size()) && !System::flush(file);
}

Replaced replaceInPlace(const std::filesystem::path& path, std::span<const std::byte> bytes) {
  System::File file;
  // Two that write over one file at a time would leave a mixture.
  if (System::openForWriting(path, file) || !System::hold(file)) return Replaced::NotBegun;
  OldText old;
  if (!old.keep(path)) return Replaced::NotBegun;
  if (writeOver(file, bytes)) return Replaced::Done;
  if (!writeOver(file, old.bytes())) old.leave();
  return Replaced::NotFinished;
}

Replaced writeToDevice(const std::filesystem::path& path, std::span<const std::byte> bytes) {
  System::File file;
  if (System::openForWriting(path, file)) return Replaced::NotBegun;
  return System::append(file, bytes) ? Replaced::NotFinished : Replaced::Done;
}

} // namespace

Replaced replaceFile(const std::string& path, const std::string& bytes) {
  const std::optional<std::filesystem::path> target = System::followLinks(path);
  Occupant occupant;
  if (!target || System::lookForWriting(*target, occupant)) return Replaced::NotBegun;
  const std::span<const std::byte> raw = std::as_bytes(std::span(bytes));
  if (occupant.kind == Occupant::Kind::Device) return writeToDevice(*target, raw);
  const bool inPlace =
      occupant.kind == Occupant::Kind::File && (occupant.shared || !System::mayReplace(*target, occupant));
  return inPlace ? replaceInPlace(*target, raw) : replaceWhole(path, raw);
}

} // namespace Zamt
