// A bump allocator: hands out memory from blocks and takes nothing back but all at once. Each block
// is twice as large as the one before, up to a largest size, so that a small table wastes little
// and a large one hardly ever asks for memory.
#ifndef ZTB_STORE_GTREE_POOL_H_
#define ZTB_STORE_GTREE_POOL_H_

#include <cstddef>
#include <memory>

namespace gtree {

class Pool {
 public:
  static constexpr std::size_t initialBlockSize = 1024;
  static constexpr std::size_t largestGrownBlockSize = std::size_t{64} * 1024;

  struct Block {
    Block* next = nullptr;
    std::unique_ptr<std::byte[]> bytes;
  };

  Pool() = default;
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;
  ~Pool();

  // Memory for `size` bytes, aligned for pointers and doubles.
  // REQUIRES: size is a multiple of 8 and at most the block size.
  std::byte* allocate(std::size_t size) {
    if (!has(size)) {
      addBlock();
    }
    std::byte* result = free_;
    free_ += size;
    return result;
  }

  // Whether that much is left in the block that is being filled.
  [[nodiscard]] bool has(std::size_t size) const {
    return static_cast<std::size_t>(blockEnd_ - free_) >= size;
  }

  // Gives all memory back; what was handed out is gone.
  void release();

  // Size of the next block, and if it is the largest or above, of all still to come. It never falls
  // below what one allocation needs.
  void setBlockSize(std::size_t size) { blockSize_ = size; }

 private:
  void addBlock();

  Block* firstBlock_ = nullptr;
  Block* lastBlock_ = nullptr;
  std::byte* free_ = nullptr;  // the rest of the last block
  std::byte* blockEnd_ = nullptr;
  std::size_t blockSize_ = initialBlockSize;
};

}  // namespace gtree

#endif  // ZTB_STORE_GTREE_POOL_H_
