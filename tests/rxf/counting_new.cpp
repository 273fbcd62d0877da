#include "tests/rxf/counting_new.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

std::size_t inUse = 0;
std::size_t most = 0;

}  // namespace

namespace rxftest {

HeapPeak::HeapPeak() {
  most = inUse;
}

std::size_t HeapPeak::bytes() const {
  return most;
}

}  // namespace rxftest

void* operator new(std::size_t size) {
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  inUse += malloc_usable_size(memory);
  most = std::max(most, inUse);
  return memory;
}

void operator delete(void* memory) noexcept {
  inUse -= malloc_usable_size(memory);
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  operator delete(memory);
}
