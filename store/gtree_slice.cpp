// Slices of the trie, which it serves by its levels.
#include "store/gtree.h"
#include "store/slice_mask.h"

namespace gtree {

// Fills the levels from `level` down with the first node of each list.
void GTree::fillLeast(Path& path, int level) const {
  for (; level < dim_; ++level) {
    path.node[static_cast<std::size_t>(level)] =
        requireNode(path.node[static_cast<std::size_t>(level - 1)]->child());
  }
}

// The first record not below the keys among those of a list on that level, into the path; false
// without one.
bool GTree::firstNotBelow(Node* list, int level, const int* keys, Path& path) const {
  Node* node = reach(list, keys[level]);
  if (node != nullptr && node->key == keys[level]) {
    path.node[static_cast<std::size_t>(level)] = node;
    if (level + 1 == dim_ || firstNotBelow(node->child(), level + 1, keys, path)) {
      return true;
    }
    node = node->next;
  }
  if (node == nullptr) {
    return false;
  }
  path.node[static_cast<std::size_t>(level)] = node;
  fillLeast(path, level + 1);
  return true;
}

// The last record not above the keys among those of a list on that level, into the path; false
// without one.
bool GTree::lastNotAbove(Node* list, int level, const int* keys, Path& path) const {
  Node* below = nullptr;
  Node* node = list;
  for (; node != nullptr && node->key < keys[level]; node = node->next) {
    below = node;
  }
  if (node != nullptr && node->key == keys[level]) {
    path.node[static_cast<std::size_t>(level)] = node;
    if (level + 1 == dim_ || lastNotAbove(node->child(), level + 1, keys, path)) {
      return true;
    }
  }
  if (below == nullptr) {
    return false;
  }
  path.node[static_cast<std::size_t>(level)] = below;
  fillGreatest(path, level + 1);
  return true;
}

// The first record not below keys that are above the path's own.
bool GTree::toFirstNotBelow(Path& path, const int* keys) const {
  int level = 0;
  while (path.node[static_cast<std::size_t>(level)]->key == keys[level]) {
    ++level;
  }
  if (firstNotBelow(path.node[static_cast<std::size_t>(level)], level, keys, path)) {
    return true;
  }
  while (--level >= 0) {
    if (Node* following = path.node[static_cast<std::size_t>(level)]->next) {
      path.node[static_cast<std::size_t>(level)] = following;
      fillLeast(path, level + 1);
      return true;
    }
  }
  return false;
}

bool GTree::seekInSlice(Path& path, const int* mask, bool forward) const {
  using ztb::dmap::SliceStep;
  while (true) {
    std::array<int, maxDepth> keys;
    std::array<int, maxDepth> wanted;
    copyKeys(path, keys.data());
    const SliceStep step = forward
                               ? ztb::dmap::nextInSlice(dim_, mask, keys.data(), wanted.data())
                               : ztb::dmap::previousInSlice(dim_, mask, keys.data(), wanted.data());
    if (step != SliceStep::further) {
      return step == SliceStep::here;
    }
    if (!(forward ? toFirstNotBelow(path, wanted.data())
                  : lastNotAbove(root_, 0, wanted.data(), path))) {
      return false;
    }
  }
}

}  // namespace gtree
