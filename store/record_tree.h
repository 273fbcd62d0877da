// An ordered map of records with keys of `dim` label numbers: what a standard map does, from a pool
// of nodes, built in one pass where records arrive sorted, and with a search that starts at a
// record. Its nodes do not move while they are in it.
//
// Records that arrive sorted stay a list, with an index beside it from the first search on, until
// one comes between others or, with an index, one goes: then they become a tree.
#ifndef ZTB_STORE_RECORD_TREE_H_
#define ZTB_STORE_RECORD_TREE_H_

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

#include "store/idmap.h"
#include "store/list_index.h"
#include "store/node_pool.h"
#include "store/node_tree.h"
#include "store/record_node.h"
#include "store/slice_mask.h"

namespace ztb::dmap {

template <int dim, int slots>
class RecordTree {
 public:
  using Position = TreeLink*;

  RecordTree() : pool_(nodeSize) {}

  static Position next(Position position) { return position->next(); }
  static Position prev(Position position) { return position->prev(); }
  static RecordView view(Position position) {
    return {keyOfNode(position), valuesOfNode(position, dim)};
  }

  // Positions of records, and of the end.
  [[nodiscard]] TreeLink* begin() { return tree_.first(); }
  [[nodiscard]] TreeLink* end() { return tree_.head(); }
  [[nodiscard]] std::size_t size() const { return tree_.size(); }

  // The record with this key; one that is not there is added. One that is there gets the values
  // with `overwrite`, and keeps its own without. A hint that is the record with this key, or a
  // neighbour of its place, saves the search; any other costs little.
  TreeLink* put(TreeLink* hint, const int* key, const double* values, bool overwrite) {
    TreeLink* last = tree_.last();
    const int behind = last->isHead() ? 1 : order(key, keyOfNode(last));
    if (behind > 0) {
      TreeLink* node = newNode(key, values);
      tree_.linkLast(node);
      if (index_ != nullptr) {
        addToIndex(node);
      }
      return node;
    }
    if (behind == 0) {
      return present(last, values, overwrite);
    }
    if (!tree_.isTree()) {
      if (TreeLink* found = inList(hint, key)) {
        return present(found, values, overwrite);
      }
      settle();
    }
    const Place place = hint->isHead() ? placeOf(key) : placeNear(hint, key);
    if (place.found != nullptr) {
      return present(place.found, values, overwrite);
    }
    TreeLink* node = newNode(key, values);
    tree_.linkBelow(node, place.parent, place.asLeft);
    return node;
  }

  void erase(TreeLink* node) {
    if (index_ != nullptr) {
      settle();
    }
    tree_.unlink(node);
    pool_.give(node);
  }

  void clear() {
    index_.reset();
    tree_.forget();
    pool_.releaseAll();
  }

  // The first record not below the key, or the end.
  TreeLink* lowerBound(const int* key) {
    TreeLink* last = tree_.last();
    if (last->isHead()) {
      return end();
    }
    if (!tree_.isTree()) {
      // What arrives sorted is asked for in front of where it goes.
      const int behind = order(key, keyOfNode(last));
      if (behind >= 0) {
        return behind > 0 ? end() : last;
      }
      if (haveIndex()) {
        return boundInList(key);
      }
      settle();
    }
    return boundBelow(tree_.root(), end(), key);
  }

  // The record with this key, or the end.
  TreeLink* find(const int* key) {
    TreeLink* bound = lowerBound(key);
    return bound->isHead() || order(key, keyOfNode(bound)) != 0 ? end() : bound;
  }

  // The first record from `node` on that lies in the slice, or the end.
  TreeLink* firstInSlice(TreeLink* node, const int* mask) {
    for (int steps = 0; !node->isHead(); ++steps) {
      int wanted[dim];
      switch (nextInSlice(dim, mask, keyOfNode(node), wanted)) {
        case SliceStep::here:
          return node;
        case SliceStep::none:
          return end();
        case SliceStep::further:
          node = steps < stepsBeforeSearch ? node->next() : boundBehind(node, wanted);
      }
    }
    return node;
  }

  // The last record from `node` back that lies in the slice, or the end.
  TreeLink* lastInSlice(TreeLink* node, const int* mask) {
    for (int steps = 0; !node->isHead(); ++steps) {
      int wanted[dim];
      switch (previousInSlice(dim, mask, keyOfNode(node), wanted)) {
        case SliceStep::here:
          return node;
        case SliceStep::none:
          return end();
        case SliceStep::further:
          node = steps < stepsBeforeSearch ? before(node) : notAbove(wanted);
      }
    }
    return node;
  }

 private:
  // Where a key stands or would stand.
  struct Place {
    TreeLink* found;
    TreeLink* parent;
    bool asLeft;
  };

  static constexpr std::size_t nodeSize =
      sizeof(TreeLink) + sizeof(int) * (dim + dim % 2) + sizeof(double) * slots;

  // Stepping on to a neighbour costs less than a search where the next match is near.
  static constexpr int stepsBeforeSearch = 4;

  // What a search in the list reads of memory ahead: the nodes of one entry of the index.
  static constexpr std::size_t linesAhead = 6;
  // Below it a search of the tree is as fast.
  static constexpr std::size_t fewestIndexed = 64;

  static int order(const int* left, const int* right) { return orderOfKeys<dim>(left, right); }
  static bool isBelow(TreeLink* node, const int* key) { return order(keyOfNode(node), key) < 0; }

  TreeLink* newNode(const int* key, const double* values) {
    auto* node = new (pool_.take()) TreeLink;
    std::memcpy(keyOfNode(node), key, sizeof(int) * dim);
    std::memcpy(valuesOfNode(node, dim), values, sizeof(double) * slots);
    return node;
  }

  static TreeLink* present(TreeLink* node, const double* values, bool overwrite) {
    if (overwrite) {
      std::memcpy(valuesOfNode(node, dim), values, sizeof(double) * slots);
    }
    return node;
  }

  // Makes a list a tree.
  void settle() {
    index_.reset();
    tree_.settle();
  }

  // Whether there is an index, which is made if it is worth it. REQUIRES: a list.
  bool haveIndex() noexcept {
    if (index_ == nullptr && size() >= fewestIndexed) {
      try {
        index_ = std::make_unique<ListIndex>(tree_.first(), size(), dim);
      } catch (const std::bad_alloc&) {
        return false;
      }
    }
    return index_ != nullptr;
  }
  void addToIndex(TreeLink* node) noexcept {
    try {
      index_->add(node);
    } catch (const std::bad_alloc&) {
      index_.reset();
    }
  }

  // As lowerBound(). REQUIRES: a list with an index.
  TreeLink* boundInList(const int* key) {
    TreeLink* node = index_->template nearBelow<dim>(key);
    if (node == nullptr) {
      return begin();
    }
    // The next few mostly stand behind it in memory.
    constexpr std::size_t line = 64;
    for (std::size_t ahead = 1; ahead < linesAhead; ++ahead) {
      __builtin_prefetch(reinterpret_cast<const char*>(node) + ahead * line);
    }
    do {
      node = node->right;
    } while (!node->isHead() && isBelow(node, key));
    return node;
  }

  // The record with this key, if that shows at the hint or by the index; or null.
  // REQUIRES: a list, with a record behind the key.
  TreeLink* inList(TreeLink* hint, const int* key) {
    if (!hint->isHead()) {
      const int side = order(key, keyOfNode(hint));
      if (side == 0) {
        return hint;
      }
      if (side > 0 && order(key, keyOfNode(hint->right)) == 0) {
        return hint->right;
      }
    }
    if (index_ == nullptr) {
      return nullptr;
    }
    TreeLink* bound = boundInList(key);
    return order(key, keyOfNode(bound)) == 0 ? bound : nullptr;
  }

  // The node before, the head in front of the first.
  TreeLink* before(TreeLink* node) { return node == tree_.first() ? end() : node->prev(); }

  // The first node below `node`, itself included, that is not below the key; `otherwise` without
  // one.
  static TreeLink* boundBelow(TreeLink* node, TreeLink* otherwise, const int* key) {
    while (node != nullptr) {
      if (isBelow(node, key)) {
        node = node->right;
      } else {
        otherwise = node;
        node = node->left;
      }
    }
    return otherwise;
  }

  // The first record not below a key that is above `node`: up to where the way back down may lie,
  // and down from there, which takes fewer steps the nearer it is.
  TreeLink* boundBehind(TreeLink* node, const int* key) {
    if (!tree_.isTree()) {
      return lowerBound(key);
    }
    TreeLink* above = node->parent();
    TreeLink* below = node;  // the last on the way up that is below the key
    while (!above->isHead()) {
      const bool fromLeft = node == above->left;
      node = above;
      above = above->parent();
      if (fromLeft) {
        if (!isBelow(node, key)) {
          return boundBelow(below->right, node, key);
        }
        below = node;
      }
    }
    return boundBelow(below->right, end(), key);
  }

  // The last record not above the key, or the end.
  TreeLink* notAbove(const int* key) {
    TreeLink* bound = lowerBound(key);
    return !bound->isHead() && order(key, keyOfNode(bound)) == 0 ? bound : before(bound);
  }

  // REQUIRES: a tree that is no list and not empty.
  Place placeOf(const int* key) {
    TreeLink* node = tree_.root();
    while (true) {
      const int side = order(key, keyOfNode(node));
      if (side == 0) {
        return {node, nullptr, false};
      }
      TreeLink* child = side < 0 ? node->left : node->right;
      if (child == nullptr) {
        return {nullptr, node, side < 0};
      }
      node = child;
    }
  }

  Place placeNear(TreeLink* hint, const int* key) {
    const int side = order(key, keyOfNode(hint));
    if (side == 0) {
      return {hint, nullptr, false};
    }
    // The neighbour on the other side of the place, if the place is at the hint.
    TreeLink* neighbour = side < 0 ? before(hint) : hint->next();
    if (!neighbour->isHead()) {
      const int further = order(key, keyOfNode(neighbour));
      if (further == 0) {
        return {neighbour, nullptr, false};
      }
      if (further == side) {
        return placeOf(key);
      }
    }
    // Of two neighbours one has no child on the side of the other.
    if (side < 0) {
      return hint->left == nullptr ? Place{nullptr, hint, true} : Place{nullptr, neighbour, false};
    }
    return hint->right == nullptr ? Place{nullptr, hint, false} : Place{nullptr, neighbour, true};
  }

  NodeTree tree_;
  NodePool pool_;
  std::unique_ptr<ListIndex> index_;  // only beside a list
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_RECORD_TREE_H_
