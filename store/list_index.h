// A way into a list of nodes in key order: the keys of every few nodes, of every few of those
// again, and so on, each level in one array. A search looks at a few neighbouring keys of each
// level and misses the cache less often than one that goes down a tree; the list stays as it is.
//
// An index knows the nodes that there were when it was made and those that were added behind them;
// it has to go when any other node comes or goes.
#ifndef ZTB_STORE_LIST_INDEX_H_
#define ZTB_STORE_LIST_INDEX_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "store/record_node.h"

namespace ztb::dmap {

// The sign of `left` against `right`.
template <int dim>
[[gnu::always_inline]] inline int orderOfKeys(const int* left, const int* right) {
  for (int d = 0; d < dim; ++d) {
    if (left[d] != right[d]) {
      return left[d] < right[d] ? -1 : 1;
    }
  }
  return 0;
}

class ListIndex {
 public:
  // Of the `count` nodes of a list from `first` on, with keys of `dim` elements. Throws
  // std::bad_alloc where there is no memory for it.
  ListIndex(TreeLink* first, std::size_t count, int dim);

  // Takes in the node that now stands behind all others. Throws std::bad_alloc; the index is then
  // of no use any more.
  void add(TreeLink* node);

  // A node with few between it and the last one below the key; null where none is below it.
  template <int dim>
  [[nodiscard]] TreeLink* nearBelow(const int* key) const {
    std::size_t below = 0;  // entries of the top level that are
    for (std::size_t left = keys_.back().size() / dim; left > 0;) {
      const std::size_t half = left / 2;
      if (orderOfKeys<dim>(entry<dim>(levels - 1, below + half), key) < 0) {
        below += half + 1;
        left -= half + 1;
      } else {
        left = half;
      }
    }
    if (below == 0) {
      return nullptr;
    }
    for (std::size_t level = levels - 1; level-- > 0;) {
      std::size_t place = (below - 1) * fan;
      const std::size_t end = std::min(place + fan, keys_[level].size() / dim);
      do {
        ++place;
      } while (place < end && orderOfKeys<dim>(entry<dim>(level, place), key) < 0);
      below = place;
    }
    return nodes_[below - 1];
  }

 private:
  static constexpr std::size_t levels = 3;
  // Nodes for an entry of the lowest level, and entries of a level for one of the level above it.
  static constexpr std::size_t stride = 8;
  static constexpr std::size_t fan = 16;

  template <int dim>
  [[nodiscard]] const int* entry(std::size_t level, std::size_t place) const {
    return keys_[level].data() + place * dim;
  }

  int dim_;
  std::size_t count_ = 0;
  std::array<std::vector<int>, levels> keys_;  // the lowest level first
  std::vector<TreeLink*> nodes_;               // beside the keys of the lowest level
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_LIST_INDEX_H_
