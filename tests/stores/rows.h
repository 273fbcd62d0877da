// What the tests of the record stores share: a store's records as plain containers, and calls with
// keys in braces.
#ifndef ZTB_TESTS_STORES_ROWS_H_
#define ZTB_TESTS_STORES_ROWS_H_

#include <initializer_list>
#include <utility>
#include <vector>

#include "store/idmap.h"

namespace ztb::storetest {

using Key = std::vector<int>;
using Row = std::pair<Key, double>;
using Rows = std::vector<Row>;

inline constexpr double slots[dmap::maxSlots] = {1, 2, 3, 4, 5};

// Keys and first slots in the order of a walk.
template <class Store>
Rows rowsOf(Store& store, int dim) {
  Rows rows;
  if (store.empty()) {
    return rows;
  }
  const auto end = store.end();
  for (auto position = store.begin(); position.notEquals(end); position.next()) {
    const dmap::RecordView record = position.get();
    rows.emplace_back(dim == 0 ? Key() : Key(record.keys, record.keys + dim), record.values[0]);
  }
  return rows;
}

template <class Store>
std::vector<Key> keysOf(Store& store, int dim) {
  std::vector<Key> keys;
  for (const auto& [key, value] : rowsOf(store, dim)) {
    keys.push_back(key);
  }
  return keys;
}

// A parameter's store with these keys appended in this order; the values count from 1.
template <class Store>
void appendAll(Store& store, const std::vector<Key>& keys) {
  double value = 0;
  for (const Key& key : keys) {
    value += 1;
    store.append(key.data(), &value);
  }
}

// One-dimensional keys.
inline std::vector<Key> keysOver(std::initializer_list<int> labels) {
  std::vector<Key> keys;
  for (const int label : labels) {
    keys.push_back({label});
  }
  return keys;
}

}  // namespace ztb::storetest

#endif  // ZTB_TESTS_STORES_ROWS_H_
