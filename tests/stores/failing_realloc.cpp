#include "tests/stores/failing_realloc.h"

#include <cstddef>

namespace {

int remaining = 0;
bool failed = false;

bool fails() {
  if (remaining > 0 && --remaining == 0) {
    failed = true;
    return true;
  }
  return false;
}

}  // namespace

// Names that the linker's --wrap gives.
extern "C" void* __real_realloc(void* memory, std::size_t size);   // NOLINT
extern "C" void* __wrap_realloc(void* memory, std::size_t size);   // NOLINT
extern "C" void* __wrap_realloc(void* memory, std::size_t size) {  // NOLINT
  return fails() ? nullptr : __real_realloc(memory, size);
}
extern "C" void* __real_malloc(std::size_t size);   // NOLINT
extern "C" void* __wrap_malloc(std::size_t size);   // NOLINT
extern "C" void* __wrap_malloc(std::size_t size) {  // NOLINT
  return fails() ? nullptr : __real_malloc(size);
}

namespace ztb::storetest {

FailingRealloc::FailingRealloc(int number) {
  remaining = number;
  failed = false;
}

FailingRealloc::~FailingRealloc() {
  remaining = 0;
}

bool FailingRealloc::happened() {
  return failed;
}

}  // namespace ztb::storetest
