// The structure of an ordered tree, without what its nodes hold.
//
// Nodes that arrive behind all others in a tree that has had nothing else so far are not put into
// a tree at all but into a list, in which a step is one pointer: most data arrive sorted and are
// only walked. `settle` makes a tree of the list, balanced, in one pass over the nodes; none of
// them moves. From then on it is a red-black tree, until it is empty again.
#ifndef ZTB_STORE_NODE_TREE_H_
#define ZTB_STORE_NODE_TREE_H_

#include <cstddef>
#include <cstdint>

namespace ztb::dmap {

// What a node begins with. In a list `left` is the node before and `right` the one behind, and the
// head of the tree stands on both sides. The head's own `left` and `right` are the first and the
// last node, or itself.
class TreeLink {
 public:
  // REQUIRES: a node of a tree, not of a list.
  [[nodiscard]] TreeLink* parent() const { return reinterpret_cast<TreeLink*>(up_ - flagsOf()); }
  void setParent(TreeLink* parent) { up_ = bytesOf(parent) + flagsOf(); }
  [[nodiscard]] bool isRed() const { return (flagsOf() & red) != 0; }
  void setRed(bool isRed) { up_ = up_ - (flagsOf() & red) + (isRed ? red : 0); }
  [[nodiscard]] bool isListed() const { return (flagsOf() & listed) != 0; }
  [[nodiscard]] bool isHead() const { return (flagsOf() & head) != 0; }

  void becomeHead() {
    left = right = this;
    up_ = bytesOf(this) + head;
  }
  void becomeListed(TreeLink* before, TreeLink* behind) {
    left = before;
    right = behind;
    up_ = bytesOf(this) + listed;
  }
  void becomeNode(TreeLink* parent, bool isRed) { up_ = bytesOf(parent) + (isRed ? red : 0); }

  // The node behind this one, the head at the end.
  // REQUIRES: not the head.
  [[nodiscard]] TreeLink* next() {
    if (isListed()) {
      return right;
    }
    if (right != nullptr) {
      // What stands to the right of the way down is wanted soon after.
      TreeLink* node = right;
      __builtin_prefetch(node->right);
      while (node->left != nullptr) {
        node = node->left;
        __builtin_prefetch(node->right);
      }
      return node;
    }
    TreeLink* node = this;
    TreeLink* above = parent();
    while (!above->isHead() && node == above->right) {
      node = above;
      above = above->parent();
    }
    return above;
  }
  // The node before this one, from the head the last.
  // REQUIRES: not the first node.
  [[nodiscard]] TreeLink* prev() {
    if (isListed()) {
      return left;
    }
    if (isHead()) {
      return right;
    }
    if (left != nullptr) {
      return rightmost(left);
    }
    TreeLink* node = this;
    TreeLink* above = parent();
    while (!above->isHead() && node == above->left) {
      node = above;
      above = above->parent();
    }
    return above;
  }

  static TreeLink* leftmost(TreeLink* node) {
    while (node->left != nullptr) {
      node = node->left;
    }
    return node;
  }
  static TreeLink* rightmost(TreeLink* node) {
    while (node->right != nullptr) {
      node = node->right;
    }
    return node;
  }

  TreeLink* left;
  TreeLink* right;

 private:
  static constexpr std::uintptr_t red = 1;
  static constexpr std::uintptr_t listed = 2;
  static constexpr std::uintptr_t head = 4;
  static constexpr std::uintptr_t flags = red | listed | head;

  static char* bytesOf(TreeLink* node) { return reinterpret_cast<char*>(node); }
  [[nodiscard]] std::uintptr_t flagsOf() const {
    return reinterpret_cast<std::uintptr_t>(up_) & flags;
  }

  // As many bytes behind the parent, or this node, as the flags say, since no node starts at an
  // address that needs those bits: a pointer still, of which compilers know where it points.
  char* up_;
};

static_assert(alignof(TreeLink) >= 8);

class NodeTree {
 public:
  NodeTree() { head_.becomeHead(); }
  NodeTree(const NodeTree&) = delete;
  NodeTree& operator=(const NodeTree&) = delete;
  ~NodeTree() = default;

  [[nodiscard]] TreeLink* first() { return head_.left; }
  [[nodiscard]] TreeLink* last() { return head_.right; }
  [[nodiscard]] TreeLink* head() { return &head_; }
  [[nodiscard]] std::size_t size() const { return size_; }
  // Not while it is empty or a list.
  [[nodiscard]] bool isTree() const { return head_.parent() != &head_; }
  // REQUIRES: isTree.
  [[nodiscard]] TreeLink* root() const { return head_.parent(); }

  // Links a node behind all others.
  void linkLast(TreeLink* node) {
    if (!isTree()) {
      node->becomeListed(head_.right, &head_);
      head_.right->right = node;
      head_.right = node;
      ++size_;
      if (size_ == 1) {
        head_.left = node;
      }
    } else {
      linkBelow(node, head_.right, false);
    }
  }
  // Links a node below one that has no child on that side.
  // REQUIRES: the tree is no list.
  void linkBelow(TreeLink* node, TreeLink* parent, bool asLeft);
  void unlink(TreeLink* node);
  // Makes a list a tree. REQUIRES: not empty.
  void settle() {
    if (!isTree()) {
      makeTree();
    }
  }
  // Forgets all nodes.
  void forget() {
    head_.becomeHead();
    size_ = 0;
  }

 private:
  void makeTree();
  void putInPlace(TreeLink* node, TreeLink* other);
  void rotate(TreeLink* node, bool toLeft);
  void mendAfterLink(TreeLink* node);
  void mendAfterUnlink(TreeLink* node, TreeLink* parent);

  TreeLink head_;
  std::size_t size_ = 0;
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_NODE_TREE_H_
