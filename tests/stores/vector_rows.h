// The vector store with rows of given keys, as its tests handle it.
#ifndef ZTB_TESTS_STORES_VECTOR_ROWS_H_
#define ZTB_TESTS_STORES_VECTOR_ROWS_H_

#include <vector>

#include "store/dmap_vector.h"
#include "tests/stores/rows.h"

namespace ztb::storetest {

using dmap::DMapVector;
using dmap::VectorIterator;

// What the store prints for a key that is there.
inline const char* const warning = "Warning: Keys already in record map. Skipping.\n";

// A parameter with rows of given keys, valued 1, 2, 3 and so on.
class Vector {
 public:
  explicit Vector(int dim, const std::vector<Key>& keys = {}) : dim_(dim), store(dim, 1) {
    appendAll(store, keys);
  }

  VectorIterator append(const Key& key, double value) { return store.append(key.data(), &value); }
  VectorIterator insert(const Key& key, double value) { return store.insert(key.data(), &value); }
  VectorIterator insertHint(const Key& key, double value, int row) {
    return store.insertHint(key.data(), &value, store.iteratorAt(row));
  }
  VectorIterator insertOrAssign(const Key& key, double value) {
    return store.insertOrAssign(store.end(), key.data(), &value);
  }
  int lowerBound(const Key& key) { return store.lowerBound(key.data()).row(); }
  int find(const Key& key) { return store.find(key.data()).row(); }
  int findInTurn(const Key& key) { return store.findInTurn(key.data()).row(); }
  std::vector<Key> keys() { return keysOf(store, dim_); }
  Rows rows() { return rowsOf(store, dim_); }

 private:
  int dim_;

 public:
  DMapVector store;
};

}  // namespace ztb::storetest

#endif  // ZTB_TESTS_STORES_VECTOR_ROWS_H_
