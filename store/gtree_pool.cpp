#include "store/gtree_pool.h"

namespace gtree {

Pool::~Pool() {
  release();
}

void Pool::release() {
  while (firstBlock_ != nullptr) {
    Block* next = firstBlock_->next;
    delete firstBlock_;
    firstBlock_ = next;
  }
  lastBlock_ = nullptr;
}

std::byte* Pool::allocate(std::size_t size) {
  if (lastBlock_ == nullptr || lastBlock_->size - used_ < size) {
    auto block = std::make_unique<Block>();
    block->bytes = std::make_unique_for_overwrite<std::byte[]>(blockSize_);
    block->size = blockSize_;
    (lastBlock_ == nullptr ? firstBlock_ : lastBlock_->next) = block.get();
    lastBlock_ = block.release();
    used_ = 0;
  }
  std::byte* result = lastBlock_->bytes.get() + used_;
  used_ += size;
  return result;
}

}  // namespace gtree
