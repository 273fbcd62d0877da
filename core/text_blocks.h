// Memory in pieces of any size that go all at once: behind each other in blocks that grow.
#ifndef ZTB_CORE_TEXT_BLOCKS_H_
#define ZTB_CORE_TEXT_BLOCKS_H_

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

namespace rxf::collections::strhash {

class TextBlocks {
 public:
  // Memory aligned for any pointer or number. Throws std::bad_alloc, with nothing changed, where
  // there is none.
  std::byte* take(std::size_t size) {
    const std::size_t whole = (size + alignment - 1) / alignment * alignment;
    if (whole > left_) {
      addBlock(whole);
    }
    std::byte* piece = next_;
    next_ += whole;
    left_ -= whole;
    return piece;
  }

 private:
  static constexpr std::size_t alignment = alignof(void*);
  static constexpr std::size_t firstBlock = 256;
  static constexpr std::size_t largestBlock = std::size_t{1} << 18;

  void addBlock(std::size_t atLeast) {
    const std::size_t size = std::max(atLeast, blockSize_);
    blocks_.reserve(blocks_.size() == blocks_.capacity() ? 2 * blocks_.size() + 1 : 0);
    blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(size));
    next_ = blocks_.back().get();
    left_ = size;
    blockSize_ = std::min(2 * blockSize_, largestBlock);
  }

  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::size_t blockSize_ = firstBlock;
  std::byte* next_ = nullptr;
  std::size_t left_ = 0;
};

}  // namespace rxf::collections::strhash

#endif  // ZTB_CORE_TEXT_BLOCKS_H_
