#include "tests/fault/failing_allocation.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace ztbtest {

namespace {

// Words without a constructor, since they are in use before and after every constructor of the
// process; for all threads, since the exchange-file library may have one of its own.
std::atomic<bool> armed = false;
std::atomic<bool> allFollowingFail = false;
std::atomic<bool> failed = false;
std::atomic<long> remaining = 0;
std::atomic<long> live = 0;

bool mustFail() {
  if (!armed || (failed && !allFollowingFail)) {
    return false;
  }
  if (!failed && --remaining > 0) {
    return false;
  }
  failed = true;
  return true;
}

}  // namespace

FailingAllocation::FailingAllocation(long number, Failures failures) {
  remaining = number;
  allFollowingFail = failures == Failures::allFromThere;
  failed = false;
  armed = true;
}

FailingAllocation::~FailingAllocation() {
  armed = false;
}

bool FailingAllocation::happened() const {
  return failed;
}

long liveAllocations() {
  return live;
}

// Null when the allocation is to fail.
static void* allocate(std::size_t size, std::size_t alignment) noexcept {
  if (mustFail()) {
    return nullptr;
  }
  const std::size_t wanted = size == 0 ? 1 : size;
  void* const memory =
      alignment <= alignof(std::max_align_t)
          ? std::malloc(wanted)
          : std::aligned_alloc(alignment, (wanted + alignment - 1) / alignment * alignment);
  live += memory == nullptr ? 0 : 1;
  return memory;
}

static void* allocateOrThrow(std::size_t size, std::size_t alignment) {
  void* const memory = allocate(size, alignment);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

static void release(void* memory) noexcept {
  live -= memory == nullptr ? 0 : 1;
  std::free(memory);
}

}  // namespace ztbtest

using ztbtest::allocate;
using ztbtest::allocateOrThrow;
using ztbtest::release;

static constexpr std::size_t ordinary = alignof(std::max_align_t);
static std::size_t number(std::align_val_t alignment) {
  return static_cast<std::size_t>(alignment);
}

void* operator new(std::size_t size) {
  return allocateOrThrow(size, ordinary);
}
void* operator new[](std::size_t size) {
  return allocateOrThrow(size, ordinary);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocateOrThrow(size, number(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return allocateOrThrow(size, number(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size, ordinary);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size, ordinary);
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocate(size, number(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocate(size, number(alignment));
}

void operator delete(void* memory) noexcept {
  release(memory);
}
void operator delete[](void* memory) noexcept {
  release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  release(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
  release(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
  release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  release(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  release(memory);
}
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
  release(memory);
}
