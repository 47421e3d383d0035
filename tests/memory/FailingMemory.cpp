#include "tests/memory/FailingMemory.h"

#include <cstdlib>
#include <new>

namespace {

using Zamt::Testing::FailingMemory::Which;

// The test runs in one thread; the operators below have nothing but globals to go by.
Which failing = Which::None;
std::uint64_t failingAt = 0;
std::uint64_t count = 0;
std::int64_t blocks = 0;

bool fails() {
  if (failing == Which::None) return false;
  const std::uint64_t at = count++;
  return failing == Which::FromThere ? at >= failingAt : failing == Which::Only && at == failingAt;
}

void* allocate(std::size_t size) {
  void* const block = fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (block) ++blocks;
  return block;
}

void release(void* block) {
  if (block) --blocks;
  std::free(block);
}

} // namespace

namespace Zamt::Testing {

void FailingMemory::begin(Which which, std::uint64_t at) {
  failing = which;
  failingAt = at;
  count = 0;
}

std::uint64_t FailingMemory::end() {
  failing = Which::None;
  return count;
}

std::int64_t FailingMemory::inUse() { return blocks; }

} // namespace Zamt::Testing

void* operator new(std::size_t size) {
  if (void* const block = allocate(size)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return allocate(size); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { release(block); }
void operator delete[](void* block, std::size_t /*size*/) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept { release(block); }
