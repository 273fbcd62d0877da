// What stands in a node of a tree of records, and the step from one to the next.
#ifndef ZTB_STORE_RECORD_NODE_H_
#define ZTB_STORE_RECORD_NODE_H_

#include "store/node_tree.h"
#include "store/slice_mask.h"

namespace ztb::dmap {

// Behind the links of a node stands its key, behind that, on the next multiple of eight, its value
// slots.
inline int* keyOfNode(TreeLink* node) {
  return reinterpret_cast<int*>(node + 1);
}
inline double* valuesOfNode(TreeLink* node, int dim) {
  return reinterpret_cast<double*>(keyOfNode(node) + (dim + (dim & 1)));
}

// Steps on if that leads from a record to a record, one that lies in the slice where there is a
// mask; false, with nothing changed, where it does not. The position is a node.
inline bool stepToRecord(void*& position, const int* mask, int dim) {
  auto* node = static_cast<TreeLink*>(position);
  if (node->isHead()) {
    return false;
  }
  node = node->next();
  if (node->isHead() || (mask != nullptr && !matchesMask(mask, keyOfNode(node), dim))) {
    return false;
  }
  position = node;
  return true;
}

}  // namespace ztb::dmap

#endif  // ZTB_STORE_RECORD_NODE_H_
