// A trie over key positions: level i holds the element at position i of the key.
//
// Each level of each branch is a singly linked list of nodes in ascending order; a record is a path
// of one node a level, and its values hang from the last. Records that share a prefix share nodes.
// The tree remembers the path of the last record, `lastPath`, and attaches a key above it at the
// right end without a search. Of long lists it also remembers places all along, so that a search
// walks over few of their nodes. Nodes and value slots come from two pools, which give nothing back
// before the tree is destroyed or starts anew. What `erase` and `clear` leave behind is told at
// them.
//
// A read through a null node throws std::logic_error, and so does a step along a list to a key that
// does not ascend, which is the ring that `erase` can leave: no call runs in circles. Reading a
// node's content as what it is not throws std::bad_variant_access ("bad variant access").
#ifndef ZTB_STORE_GTREE_H_
#define ZTB_STORE_GTREE_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "store/gtree_pool.h"

namespace gtree {

inline constexpr int maxDepth = 20;

[[noreturn]] void throwMissingNode();
[[noreturn]] void throwRing();
[[noreturn]] void throwOtherContent();

// Beside what is listed first, in its order, stand members of our own. The words of the two pools,
// first block, last block, bytes used and block size of each, are those of a `Pool`.
class GTree {
 public:
  // One key element. Its content is the first node of the next level or the record's value slots.
  class Node {
   public:
    explicit Node(int keyElement) : key(keyElement) {}

    // The first node of the next level, null if there is none. Throws on a record's last node.
    [[nodiscard]] Node* child() const {
      if (tag_ != Tag::child) {
        throwOtherContent();
      }
      return content_.child;
    }
    // The same; null on a record's last node.
    [[nodiscard]] Node* childOrNull() const {
      return tag_ == Tag::child ? content_.child : nullptr;
    }
    // The record's value slots. Throws on any other node.
    [[nodiscard]] double* values() const {
      if (tag_ != Tag::values) {
        throwOtherContent();
      }
      return content_.values;
    }
    void setChild(Node* child) {
      content_.child = child;
      tag_ = Tag::child;
    }
    void setValues(double* values) {
      content_.values = values;
      tag_ = Tag::values;
    }
    // The node behind this one in its list, null at the end. Throws where the list runs in a ring.
    [[nodiscard]] Node* following() const {
      if (closesRing()) {
        throwRing();
      }
      return next;
    }
    [[nodiscard]] bool closesRing() const { return next != nullptr && next->key <= key; }

    Node* next = nullptr;

   private:
    friend class GTree;

    // A node always has a content: there is no tag for none.
    enum class Tag : std::uint8_t { child = 0, values = 1 };
    union {
      Node* child;
      double* values;
    } content_ = {nullptr};
    Tag tag_ : 8 = Tag::child;
    std::uint32_t fingers_ : 24 = 0;  // of its children, as `Fingers` are numbered; 0 for none

   public:
    int key;
  };

  // A position in a tree: a node for each level in use.
  struct Path {
    Path() = default;
    // On nothing.
    explicit Path(int depthInUse) : depth(static_cast<std::uint8_t>(depthInUse)) {
      std::fill_n(node.begin(), depth, nullptr);
    }
    Path(const Path& other) { *this = other; }
    Path& operator=(const Path& other) {
      depth = other.depth;
      std::copy_n(other.node.begin(), depth, node.begin());
      return *this;
    }
    ~Path() = default;

    bool operator==(const Path& other) const {
      return depth == other.depth &&
             std::equal(node.begin(), node.begin() + depth, other.node.begin());
    }

    std::uint8_t depth = 0;
    std::array<Node*, maxDepth> node;
  };

  // A unit of a pool.
  using Block = Pool::Block;

  // `type` is that of the symbol and tells the slots of a record.
  GTree(int dim, int type);
  GTree(const GTree&) = delete;
  GTree& operator=(const GTree&) = delete;
  virtual ~GTree() = default;

  // The way in for ascending keys: a key above the last record is linked behind it without a
  // search, the last key again overwrites its values, a key below goes to `insertAnywhere`.
  // Throws std::logic_error when the tree has nodes but remembers no last record.
  Path insertSequential(const int* keys, const double* values);
  // The part of it that needs no search: a first record, the last key again, a key above it. False
  // for any other key, with nothing done; else the record is at lastPath().
  bool insertAtEnd(const int* keys, const double* values);
  [[nodiscard]] const Path& lastPath() const { return lastPath_; }
  // The way in for any key. The last record's key overwrites its values; any other key that is
  // present keeps them. On a tree without nodes the result is `lastPath` as it stands, which for
  // two levels or more does not move to the new record of a fresh tree. Of one level and without
  // records, a tree keeps no more than the node of a deleted one, and starts anew.
  Path insertAnywhere(const int* keys, const double* values, const Path* startHint);
  // Whether the tree holds the keys, and where.
  [[nodiscard]] std::pair<bool, Path> findPath(const int* keys, const Path* startHint) const;
  // A bound at each level by itself: the first node not below that level's element. Not found when
  // a list runs out; found, with the levels above it filled, when a list is empty.
  [[nodiscard]] std::pair<bool, Path> lowerBoundPath(const int* keys) const;
  // The record before these keys; not found when the tree does not hold them. The first record's
  // predecessor comes out as the greatest record under the first node.
  [[nodiscard]] std::pair<bool, Path> predecessorPath(const int* keys) const;
  [[nodiscard]] Path begin() const;
  void next(Path& path) const;
  [[nodiscard]] Path nextPath(Path path) const;
  // The same, and the end in place of a step into a ring: where a deleted record's place moves on.
  [[nodiscard]] Path nextPathOrEnd(Path path) const;
  // From `endPath` the greatest record. Otherwise the predecessor, or the path itself without one.
  [[nodiscard]] Path prev(const Path& path) const;
  // Moves a path to the first record of a slice from it on, or back, itself included; false, with
  // the path anywhere, without one. Steps over branches that cannot hold one.
  // REQUIRES: `isIntact()`.
  [[nodiscard]] bool seekInSlice(Path& path, const int* mask, bool forward) const;
  // Whether no record was taken out of these nodes: all branches hold records, and no list is a
  // ring.
  [[nodiscard]] bool isIntact() const { return isIntact_; }
  // Unlinks the record. Of a list that becomes empty, only one directly below the first level has
  // its parent unlinked, and the first node of the first level never is: with siblings behind it,
  // their list is then closed into a ring. Throws std::logic_error, with nothing changed, where the
  // path stands on no record, or on none that can be reached from the first node.
  void erase(const Path& path);
  [[nodiscard]] Path pathAt(int index) const;
  [[nodiscard]] int pathIndex(const Path& path) const;
  // Makes blocks still to come large enough for that many nodes and records' slots.
  void setBlockCapacity(int records);
  // Forgets all nodes; `lastPath` and the pools stay as they are.
  void clear();
  // Forgets all nodes, and the last record too: what is added next is the first record, and its
  // path is the result. The pools stay.
  void startAnew();
  // The same, and gives the memory back.
  void release();

  [[nodiscard]] int count() const { return count_; }

 private:
  enum class Order { below, same, above };

  // Places in one list, ascending. Each search leaves one behind where it walked far, and they stay
  // right as long as no node of the list is taken out.
  struct Finger {
    int key;
    Node* node;
  };
  using Fingers = std::vector<Finger>;

  Node* newNode(int key) { return new (nodes_.allocate(sizeof(Node))) Node(key); }
  double* newValues(const double* values) {
    auto* result = reinterpret_cast<double*>(values_.allocate(valueSize_));
    copySlots(values, result);
    return result;
  }
  void copySlots(const double* from, double* to) const {
    if (slotCount_ == 1) {
      *to = *from;
    } else {
      std::copy_n(from, slotCount_, to);
    }
  }
  std::pair<Order, int> compareWithLast(const int* keys) const;
  Path insertFirst(const int* keys, const double* values);
  Path insertBranch(const int* keys, const double* values);
  void insertFirstAsLast(const int* keys, const double* values);
  void overwriteLast(const double* values);
  // For when the pools need memory that may not be there: `lastPath` does not move before it is.
  void attachWithNewMemory(int level, const int* keys, const double* values);
  void attachBehindLast(int level, const int* keys, const double* values);
  void makeBranch(Node** branch, int level, const int* keys, const double* values);
  void requireDepth(const Path& path) const;
  [[nodiscard]] Path greatest() const;
  void fillGreatest(Path& path, int level) const;
  [[nodiscard]] Node* listHead(const Path& path, int level) const;
  void moveLastPathBack();
  [[nodiscard]] bool unlinksFirstLevel(const Path& path) const;
  [[nodiscard]] Node* firstLevelBefore(const Node* node) const;
  [[nodiscard]] static Node* siblingBefore(const Path& path, std::size_t level);
  // Steps on; false, with the path as it was, where that would lead into a ring.
  [[gnu::always_inline]] inline bool step(Path& path) const;
  // The first node from this one on that is not below the key element; null without one.
  Node* reach(Node* node, int keyElement) const;
  // The same from the head of the list below a node, or of the first level. REQUIRES: the node is
  // linked, and lists are no rings.
  Node* reachFromHead(Node* parent, int keyElement) const;
  bool keepFinger(Node* parent, std::size_t place, Node* node) const;
  [[nodiscard]] std::uint32_t fingersBelow(const Node* parent) const {
    return parent == nullptr ? rootFingers_ : parent->fingers_;
  }
  void dropFingers(const Node* parent);
  void dropAllFingers() {
    fingers_ = {};
    rootFingers_ = 0;
  }
  void copyKeys(const Path& path, int* keys) const;
  [[nodiscard]] bool toFirstNotBelow(Path& path, const int* keys) const;
  [[nodiscard]] bool firstNotBelow(Node* list, int level, const int* keys, Path& path) const;
  [[nodiscard]] bool lastNotAbove(Node* list, int level, const int* keys, Path& path) const;
  void fillLeast(Path& path, int level) const;

  Pool nodes_;
  Pool values_;
  int dim_;
  int type_;
  int count_ = 0;
  int slotCount_;
  Node* root_ = nullptr;
  Path lastPath_;
  std::size_t valueSize_;   // bytes of a record's slots
  bool holdsRing_ = false;  // since `erase` closed one; lists are walked without a look otherwise
  bool isIntact_ = true;
  // Where `insertAnywhere` was last, so that ascending keys do not walk all siblings again and
  // again. Every node of it is linked; its first is null when there is no such place.
  Path recentPath_;
  // What searches leave behind is no part of what the tree holds.
  mutable std::vector<Fingers> fingers_;
  mutable std::uint32_t rootFingers_ = 0;
};

using Node = GTree::Node;
using Path = GTree::Path;

// Past the end of any tree: depth 1 and a null node.
extern const Path endPath;

// What a sorted load runs through for every record stands here, so that it becomes one piece of
// code with the loop around it.

inline Node* requireNode(Node* node) {
  if (node == nullptr) {
    throwMissingNode();
  }
  return node;
}

inline GTree::Node* GTree::reach(Node* node, int keyElement) const {
  if (holdsRing_) {
    while (node != nullptr && node->key < keyElement) {
      node = node->following();
    }
  } else {
    while (node != nullptr && node->key < keyElement) {
      node = node->next;
    }
  }
  return node;
}

inline std::pair<GTree::Order, int> GTree::compareWithLast(const int* keys) const {
  for (int level = 0; level < dim_; ++level) {
    const int last = requireNode(lastPath_.node[static_cast<std::size_t>(level)])->key;
    if (keys[level] != last) {
      return {keys[level] < last ? Order::below : Order::above, level};
    }
  }
  return {Order::same, dim_};
}

inline void GTree::attachBehindLast(int level, const int* keys, const double* values) {
  const std::size_t size = static_cast<std::size_t>(dim_ - level) * sizeof(Node);
  if (!nodes_.has(size) || !values_.has(valueSize_)) {
    attachWithNewMemory(level, keys, values);
    return;
  }
  std::byte* memory = nodes_.allocate(size);
  Node** last = lastPath_.node.data() + level;
  Node* node = new (memory) Node(keys[level]);
  (*last)->next = node;
  *last = node;
  while (++level < dim_) {
    memory += sizeof(Node);
    Node* child = new (memory) Node(keys[level]);
    node->setChild(child);
    *++last = child;
    node = child;
  }
  node->setValues(newValues(values));
  ++count_;
}

inline bool GTree::insertAtEnd(const int* keys, const double* values) {
  if (root_ == nullptr) {
    insertFirstAsLast(keys, values);
    return true;
  }
  const auto [order, level] = compareWithLast(keys);
  if (order == Order::above) {
    attachBehindLast(level, keys, values);
  } else if (order == Order::same) {
    overwriteLast(values);
  }
  return order != Order::below;
}

}  // namespace gtree

#endif  // ZTB_STORE_GTREE_H_
