// A growable array of numbers that reallocates in place where the allocator can, which for large
// arrays means that its pages are moved and never copied. Its capacity grows by half of itself.
// Elements behind a grown length are not initialised. Running out of memory throws std::bad_alloc
// and changes nothing.
//
// Others may hold the elements as they are. Whoever writes to elements that were there before calls
// `own` first; new ones behind them need no care. As long as nobody holds anything, that is a look
// at one pointer.
#ifndef ZTB_STORE_FLAT_ARRAY_H_
#define ZTB_STORE_FLAT_ARRAY_H_

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <type_traits>

#include "store/held_memory.h"

namespace ztb::dmap {

template <class T>
class FlatArray {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  FlatArray() = default;
  FlatArray(const FlatArray&) = delete;
  FlatArray& operator=(const FlatArray&) = delete;
  ~FlatArray() { letGo(); }

  [[nodiscard]] T* data() const { return data_; }
  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] std::size_t capacity() const { return capacity_; }
  [[nodiscard]] bool empty() const { return size_ == 0; }

  // Makes room for `size` elements; the length stays. Throws std::length_error, "vector too long",
  // for more than any array can hold.
  void reserve(std::size_t size) {
    if (size > capacity_) {
      grow(size);
    }
  }
  // REQUIRES: there is room for `size` elements.
  void setSize(std::size_t size) { size_ = size; }
  // Takes elements [first, last) out; later ones move down.
  void erase(std::size_t first, std::size_t last) {
    std::copy(data_ + last, data_ + size_, data_ + first);
    size_ -= last - first;
  }
  // Takes all elements out. The memory stays, unless others hold it.
  void clear() {
    if (ownsAlone()) {
      size_ = 0;
    } else {
      release();
    }
  }
  // Gives the memory back.
  void release() {
    letGo();
    data_ = nullptr;
    size_ = 0;
    capacity_ = 0;
  }

  // Holds the elements for somebody who drops them.
  // REQUIRES: not empty.
  [[nodiscard]] HeldMemory* hold() {
    if (held_ == nullptr) {
      held_ = new HeldMemory(data_);
    }
    held_->hold();
    return held_;
  }
  // Makes the elements free to be written to: where others hold them, they are copied. Whether they
  // have another address now.
  bool own() { return held_ != nullptr && ownHeld(); }

 private:
  static constexpr std::size_t longest =
      static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(T);

  void grow(std::size_t size) {
    if (size > longest) {
      throw std::length_error("vector too long");
    }
    const std::size_t capacity = std::max(size, std::min(longest, capacity_ + capacity_ / 2));
    if (ownsAlone()) {
      data_ = allocate(data_, capacity);
      capacity_ = capacity;
    } else {
      moveAway(capacity);
    }
  }

  static T* allocate(T* data, std::size_t capacity) {
    void* grown = std::realloc(data, capacity * sizeof(T));
    if (grown == nullptr) {
      throw std::bad_alloc();
    }
    return static_cast<T*>(grown);
  }

  // Whether nobody else holds the memory; what kept that account goes then.
  bool ownsAlone() { return held_ == nullptr || isDropped(); }
  [[gnu::noinline]] bool isDropped() {
    if (!held_->hasOneHolder()) {
      return false;
    }
    delete held_;
    held_ = nullptr;
    return true;
  }

  // Not inlined, as below: callers are short, and hardly ever come here.
  [[gnu::noinline]] bool ownHeld() {
    if (ownsAlone()) {
      return false;
    }
    moveAway(capacity_);
    return true;
  }

  // Leaves the memory to those who hold it.
  [[gnu::noinline]] void moveAway(std::size_t capacity) {
    T* data = allocate(nullptr, capacity);
    std::memcpy(data, data_, size_ * sizeof(T));
    letGo();
    data_ = data;
    capacity_ = capacity;
  }

  void letGo() {
    if (held_ == nullptr) {
      std::free(data_);
    } else {
      held_->drop();
      held_ = nullptr;
    }
  }

  T* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  HeldMemory* held_ = nullptr;  // while others hold the memory, or have not long dropped it
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_FLAT_ARRAY_H_
