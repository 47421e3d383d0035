#include "host/clouds/Field.h"

namespace Zamt::Host {

namespace {

struct TypeFacts {
  std::size_t size;
  const char* name;
};

constexpr std::array<TypeFacts, 10> types{{{1, "uint8"},
                                           {1, "int8"},
                                           {2, "uint16"},
                                           {2, "int16"},
                                           {4, "uint32"},
                                           {4, "int32"},
                                           {8, "uint64"},
                                           {8, "int64"},
                                           {4, "float"},
                                           {8, "double"}}};

} // namespace

std::size_t sizeOf(FieldType type) { return types[static_cast<std::size_t>(type)].size; }

const char* nameOfType(FieldType type) { return types[static_cast<std::size_t>(type)].name; }

} // namespace Zamt::Host
