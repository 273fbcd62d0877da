#include "store/gtree_pool.h"

#include <algorithm>

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
  free_ = nullptr;
  blockEnd_ = nullptr;
}

void Pool::addBlock() {
  auto block = std::make_unique<Block>();
  block->bytes = std::make_unique_for_overwrite<std::byte[]>(blockSize_);
  free_ = block->bytes.get();
  blockEnd_ = free_ + blockSize_;
  (lastBlock_ == nullptr ? firstBlock_ : lastBlock_->next) = block.get();
  lastBlock_ = block.release();
  blockSize_ = std::max(blockSize_, std::min(2 * blockSize_, largestGrownBlockSize));
}

}  // namespace gtree
