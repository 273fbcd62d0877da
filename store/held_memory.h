// Memory of an array that others hold besides the array, and keep as it is.
//
// The array counts as one holder. As long as there are others it neither writes to what they were
// shown nor moves nor frees it: it takes other memory, and drops this. Holders may drop from any
// thread, at any time, also when the array is gone; new ones come by the array's thread alone.
#ifndef ZTB_STORE_HELD_MEMORY_H_
#define ZTB_STORE_HELD_MEMORY_H_

#include <atomic>
#include <cstdlib>

namespace ztb::dmap {

class HeldMemory {
 public:
  // Held by the array alone. The memory is std::malloc's.
  explicit HeldMemory(void* memory) : memory_(memory) {}
  HeldMemory(const HeldMemory&) = delete;
  HeldMemory& operator=(const HeldMemory&) = delete;
  // Leaves the memory to the array, which is the only holder.
  ~HeldMemory() = default;

  void hold() { holders_.fetch_add(1, std::memory_order_relaxed); }
  // The last one that drops frees the memory, and this.
  void drop() {
    if (holders_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      std::free(memory_);
      delete this;
    }
  }
  // Whether no other than the array holds it; what those of before have read is done then.
  [[nodiscard]] bool hasOneHolder() const { return holders_.load(std::memory_order_acquire) == 1; }

 private:
  void* memory_;
  std::atomic<int> holders_{1};
};

// The values of all records of a store, one for each, which stay as they are until `memory` is
// dropped. Without such, null and null.
struct HeldValues {
  const double* values = nullptr;
  int count = 0;
  HeldMemory* memory = nullptr;
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_HELD_MEMORY_H_
