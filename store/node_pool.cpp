#include "store/node_pool.h"

#include <algorithm>
#include <new>

#include "store/huge_pages.h"

namespace ztb::dmap {
namespace {

constexpr std::size_t fewestNodes = 4;
// A block has this share of the nodes of those before it: more of them would stand empty in a map
// that does not grow on, fewer would make more blocks.
constexpr std::size_t share = 4;
constexpr std::size_t largestOrdinary = std::size_t{1} << 20;
constexpr std::size_t largestHuge = 16 * hugePage;
constexpr std::align_val_t hugeBoundary{hugePage};

}  // namespace

void NodePool::addBlock() {
  const std::size_t wanted = sizeof(Block) + nodes_ / share * nodeSize_;
  const bool huge = wanted >= hugePage;
  std::size_t size = 0;
  void* memory = nullptr;
  if (huge) {
    size = std::min(wanted / hugePage * hugePage, largestHuge);
    memory = ::operator new(size, hugeBoundary);
    askForHugePages(memory, size);
  } else {
    size = std::clamp(wanted, sizeof(Block) + fewestNodes * nodeSize_, largestOrdinary);
    memory = ::operator new(size);
  }
  const std::size_t nodes = (size - sizeof(Block)) / nodeSize_;
  latest_ = new (memory) Block{latest_, huge};
  nodes_ += nodes;
  next_ = static_cast<std::byte*>(memory) + sizeof(Block);
  end_ = next_ + nodes * nodeSize_;
#if defined(__SANITIZE_ADDRESS__)
  ASAN_POISON_MEMORY_REGION(next_, nodes * nodeSize_);
#endif
}

void NodePool::releaseAll() noexcept {
  while (latest_ != nullptr) {
    Block* before = latest_->before;
    if (latest_->huge) {
      ::operator delete(latest_, hugeBoundary);
    } else {
      ::operator delete(latest_);
    }
    latest_ = before;
  }
  nodes_ = 0;
  next_ = nullptr;
  end_ = nullptr;
  free_ = nullptr;
}

}  // namespace ztb::dmap
