// A growable array of numbers that reallocates in place where the allocator can, which for large
// arrays means that its pages are moved and never copied. Its capacity grows by half of itself.
// Elements behind a grown length are not initialised. Running out of memory throws std::bad_alloc
// and changes nothing.
#ifndef ZTB_STORE_FLAT_ARRAY_H_
#define ZTB_STORE_FLAT_ARRAY_H_

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>
#include <stdexcept>
#include <type_traits>

namespace ztb::dmap {

template <class T>
class FlatArray {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  FlatArray() = default;
  FlatArray(const FlatArray&) = delete;
  FlatArray& operator=(const FlatArray&) = delete;
  ~FlatArray() { std::free(data_); }

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
  // Gives the memory back.
  void release() {
    std::free(data_);
    data_ = nullptr;
    size_ = 0;
    capacity_ = 0;
  }

 private:
  static constexpr std::size_t longest =
      static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(T);

  void grow(std::size_t size) {
    if (size > longest) {
      throw std::length_error("vector too long");
    }
    const std::size_t capacity = std::max(size, std::min(longest, capacity_ + capacity_ / 2));
    void* data = std::realloc(data_, capacity * sizeof(T));
    if (data == nullptr) {
      throw std::bad_alloc();
    }
    data_ = static_cast<T*>(data);
    capacity_ = capacity;
  }

  T* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_FLAT_ARRAY_H_
