#include "store/list_index.h"

namespace ztb::dmap {

ListIndex::ListIndex(TreeLink* first, std::size_t count, int dim) : dim_(dim) {
  std::size_t entries = (count + stride - 1) / stride;
  nodes_.reserve(entries);
  for (std::vector<int>& keys : keys_) {
    keys.reserve(entries * static_cast<std::size_t>(dim));
    entries = (entries + fan - 1) / fan;
  }
  for (TreeLink* node = first; count_ < count; node = node->right) {
    add(node);
  }
}

void ListIndex::add(TreeLink* node) {
  std::size_t nodesOfEntry = stride;
  if (count_ % stride == 0) {
    nodes_.push_back(node);
    const int* key = keyOfNode(node);
    for (std::vector<int>& keys : keys_) {
      if (count_ % nodesOfEntry == 0) {
        keys.insert(keys.end(), key, key + dim_);
      }
      nodesOfEntry *= fan;
    }
  }
  ++count_;
}

}  // namespace ztb::dmap
