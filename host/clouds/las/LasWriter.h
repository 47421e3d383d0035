#pragma once

#include "files/MappedFile.h"
#include "files/Stop.h"
#include "host/clouds/ClassName.h"
#include "host/clouds/ClassOverlay.h"
#include "host/clouds/las/LasLayout.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Zamt::Host {

/// An open LAS file.
struct LasFile {
  std::string path; ///< As the user gave it, for sentences.
  std::unique_ptr<MappedFile> file;
  LasLayout layout;

  const std::byte* record(std::uint64_t point) const {
    return file->bytes().data() + layout.pointOffset + point * layout.recordLength;
  }
};

/// Writes a LAS file with other classes, as `CloudFormat::write` asks: the bytes of the input with only the
/// class bits of the changed blocks patched. Names go into the classification lookup record, which is added
/// or enlarged where it has no room.
bool writeLas(const LasFile& input, const BlockTable& blocks, const ClassOverlay& changed,
              const std::vector<ClassName>& addedNames, const std::string& path, const Stop& stop,
              std::string& error);

} // namespace Zamt::Host
