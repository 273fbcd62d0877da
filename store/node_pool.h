// Memory for the nodes of one container, all of one size: from blocks that grow to 1 MiB, with no
// word of bookkeeping a node. A node that is given back is the next to be taken; all go at once.
#ifndef ZTB_STORE_NODE_POOL_H_
#define ZTB_STORE_NODE_POOL_H_

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

namespace ztb::dmap {

class NodePool {
 public:
  // `nodeSize` is that of every node, a multiple of the alignment of a pointer.
  explicit NodePool(std::size_t nodeSize) : nodeSize_(nodeSize) {}
  NodePool(const NodePool&) = delete;
  NodePool& operator=(const NodePool&) = delete;
  ~NodePool() { releaseAll(); }

  // Memory for a node. Throws std::bad_alloc, with nothing changed, where there is none.
  void* take() {
    if (free_ != nullptr) {
      return takeFree();
    }
    if (next_ == end_) {
      addBlock();
    }
    std::byte* node = next_;
    next_ += nodeSize_;
    unpoison(node);
    return node;
  }
  // Takes a node back.
  void give(void* node) noexcept {
    auto* freed = static_cast<Free*>(node);
    freed->next = free_;
    free_ = freed;
    poison(node);
  }
  // Nodes for which there is memory, those in use included.
  [[nodiscard]] std::size_t reserved() const { return nodes_; }
  // Takes all nodes back, and gives their memory back.
  void releaseAll() noexcept;

 private:
  struct Free {
    Free* next;
  };
  struct Block {
    Block* before;
  };

  void* takeFree() {
    Free* node = free_;
    unpoison(node);
    free_ = node->next;
    return node;
  }
  void addBlock();
  // Under the address sanitizer a node that was given back is as one that was freed.
  void poison([[maybe_unused]] void* node) const {
#if defined(__SANITIZE_ADDRESS__)
    ASAN_POISON_MEMORY_REGION(node, nodeSize_);
#endif
  }
  void unpoison([[maybe_unused]] void* node) const {
#if defined(__SANITIZE_ADDRESS__)
    ASAN_UNPOISON_MEMORY_REGION(node, nodeSize_);
#endif
  }

  std::size_t nodeSize_;
  std::size_t nodes_ = 0;  // of all blocks
  Block* latest_ = nullptr;
  std::byte* next_ = nullptr;  // what is left of the latest block
  std::byte* end_ = nullptr;
  Free* free_ = nullptr;
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_NODE_POOL_H_
