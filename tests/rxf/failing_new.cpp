#include "tests/rxf/failing_new.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

// A library's own thread allocates while the one that arms waits.
std::atomic<int> allocationsLeft = 0;
std::atomic<bool> armed = false;
std::atomic<bool> reached = false;

bool failsNow() {
  if (!armed || allocationsLeft == 0 || --allocationsLeft != 0) return false;
  reached = true;
  return true;
}

}  // namespace

namespace rxftest {

FailingNew::Armed::Armed() {
  armed = true;
}

FailingNew::Armed::~Armed() {
  armed = false;
}

FailingNew::FailingNew(int at) {
  allocationsLeft = at;
  reached = false;
}

FailingNew::~FailingNew() {
  allocationsLeft = 0;
}

bool FailingNew::failed() {
  return reached;
}

}  // namespace rxftest

void* operator new(std::size_t size) {
  void* memory = failsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
