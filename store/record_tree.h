// An ordered map of records with keys of `dim` label numbers: what a standard map does, from a pool
// of nodes, built in one pass where records arrive sorted, and with a search that starts at a
// record. Its nodes do not move while they are in it.
#ifndef ZTB_STORE_RECORD_TREE_H_
#define ZTB_STORE_RECORD_TREE_H_

#include <cstddef>
#include <cstring>
#include <new>

#include "store/idmap.h"
#include "store/node_pool.h"
#include "store/node_tree.h"
#include "store/slice_mask.h"

namespace ztb::dmap {

// Where the parts of a node stand: behind its links the key, behind that, on the next multiple of
// eight, the value slots.
inline int* keyOfNode(TreeLink* node) {
  return reinterpret_cast<int*>(node + 1);
}
inline double* valuesOfNode(TreeLink* node, int dim) {
  return reinterpret_cast<double*>(keyOfNode(node) + (dim + (dim & 1)));
}

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
      return node;
    }
    if (behind == 0) {
      return present(last, values, overwrite);
    }
    tree_.settle();
    const Place place = hint->isHead() ? placeOf(key) : placeNear(hint, key);
    if (place.found != nullptr) {
      return present(place.found, values, overwrite);
    }
    TreeLink* node = newNode(key, values);
    tree_.linkBelow(node, place.parent, place.asLeft);
    return node;
  }

  void erase(TreeLink* node) {
    tree_.unlink(node);
    pool_.give(node);
  }

  void clear() {
    tree_.forget();
    pool_.releaseAll();
  }

  // The first record not below the key, or the end.
  TreeLink* lowerBound(const int* key) {
    TreeLink* last = tree_.last();
    if (last->isHead()) {
      return end();
    }
    if (tree_.root() == nullptr) {
      // What arrives sorted is asked for in front of where it goes.
      const int behind = order(key, keyOfNode(last));
      if (behind >= 0) {
        return behind > 0 ? end() : last;
      }
      tree_.settle();
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

  // The sign of `left` against `right`.
  static int order(const int* left, const int* right) {
    for (int d = 0; d < dim; ++d) {
      if (left[d] != right[d]) {
        return left[d] < right[d] ? -1 : 1;
      }
    }
    return 0;
  }
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
    tree_.settle();
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
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_RECORD_TREE_H_
