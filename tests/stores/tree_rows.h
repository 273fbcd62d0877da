// The trie with records of given keys, as its tests handle it.
#ifndef ZTB_TESTS_STORES_TREE_ROWS_H_
#define ZTB_TESTS_STORES_TREE_ROWS_H_

#include <optional>
#include <utility>
#include <vector>

#include "store/gtree.h"
#include "tests/stores/rows.h"

namespace ztb::storetest {

using gtree::endPath;
using gtree::GTree;
using gtree::Path;

inline Key keyOf(const Path& path) {
  Key key;
  for (std::size_t level = 0; level < path.depth; ++level) {
    key.push_back(path.node[level] == nullptr ? 0 : path.node[level]->key);
  }
  return key;
}

// A tree with one value slot whose records are valued 1, 2, 3 and so on.
class Tree {
 public:
  explicit Tree(int dim, const std::vector<Key>& sequential = {}) : tree(dim, 1) {
    for (const Key& key : sequential) {
      append(key, tree.count() + 1);
    }
  }

  Path append(const Key& key, double value) { return tree.insertSequential(key.data(), &value); }
  Path insert(const Key& key, double value) {
    return tree.insertAnywhere(key.data(), &value, nullptr);
  }
  std::optional<Path> find(const Key& key) { return onlyFound(tree.findPath(key.data(), nullptr)); }
  std::optional<Path> bound(const Key& key) { return onlyFound(tree.lowerBoundPath(key.data())); }
  void erase(const Key& key) { tree.erase(find(key).value()); }

  // As many records as the tree counts, or fewer when the walk ends early.
  Rows rows() {
    Rows result;
    Path path = tree.begin();
    for (int i = 0; i < tree.count() && !(path == endPath); ++i, tree.next(path)) {
      result.emplace_back(keyOf(path), *path.node[path.depth - 1U]->values());
    }
    return result;
  }
  std::vector<Key> keys() {
    std::vector<Key> result;
    for (const auto& [key, value] : rows()) {
      result.push_back(key);
    }
    return result;
  }

  GTree tree;

 private:
  static std::optional<Path> onlyFound(const std::pair<bool, Path>& result) {
    return result.first ? std::optional(result.second) : std::nullopt;
  }
};

}  // namespace ztb::storetest

#endif  // ZTB_TESTS_STORES_TREE_ROWS_H_
