#include "store/node_pool.h"

#include <algorithm>
#include <new>

namespace ztb::dmap {
namespace {

constexpr std::size_t fewestNodes = 4;
// A block has this share of the nodes of those before it: more of them would stand empty in a map
// that does not grow on, fewer would make more blocks.
constexpr std::size_t share = 4;
constexpr std::size_t largestBlock = std::size_t{1} << 20;

}  // namespace

void NodePool::addBlock() {
  const std::size_t most = (largestBlock - sizeof(Block)) / nodeSize_;
  const std::size_t nodes = std::clamp(nodes_ / share, fewestNodes, most);
  void* memory = ::operator new(sizeof(Block) + nodes * nodeSize_);
  latest_ = new (memory) Block{latest_};
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
    ::operator delete(latest_);
    latest_ = before;
  }
  nodes_ = 0;
  next_ = nullptr;
  end_ = nullptr;
  free_ = nullptr;
}

}  // namespace ztb::dmap
