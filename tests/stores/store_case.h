// A test that runs once on each record store, by the exported names only.
#ifndef ZTB_TESTS_STORES_STORE_CASE_H_
#define ZTB_TESTS_STORES_STORE_CASE_H_

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/database.h"

namespace ztbtest {

inline std::string storeName(int store) {
  switch (store) {
    case ZTB_STORAGE_TREE_MAP:
      return "map";
    case ZTB_STORAGE_VECTOR:
      return "vector";
    default:
      return "trie";
  }
}

inline int storeOf(const Database& db, void* symbol) {
  return db.symbolInfo(symbol, ZTB_SYMBOL_INFO_STORAGE);
}

// Chooses the store of new symbols.
inline void selectDefault(const Database& db, int store) {
  if (lib().c__ztbselectrecordstorage(db, nullptr, store) != 1) {
    throw std::runtime_error("select storage: " + db.lastError());
  }
}

// Moves a symbol to a store; gives its new handle.
inline void* moveTo(const Database& db, void* symbol, int store) {
  if (lib().c__ztbselectrecordstorage(db, &symbol, store) != 1) {
    throw std::runtime_error("select storage: " + db.lastError());
  }
  return symbol;
}

class StoreCase : public testing::TestWithParam<int> {
 protected:
  StoreCase() { selectDefault(db_, GetParam()); }

  // A symbol on the store under test with these rows, which go in through the tree map.
  void* filled(const char* name, int dim, const std::vector<Row>& rows, int type = ZTB_PARAMETER) {
    selectDefault(db_, ZTB_STORAGE_TREE_MAP);
    void* symbol = db_.add(name, dim, type);
    for (const Row& row : rows) {
      db_.put(symbol, Keys(row.labels), row.level);
    }
    selectDefault(db_, GetParam());
    return moveTo(db_, symbol, GetParam());
  }

  static bool on(int store) { return GetParam() == store; }

  Database db_;
};

inline auto allStores() {
  return testing::Values(ZTB_STORAGE_TREE_MAP, ZTB_STORAGE_VECTOR, ZTB_STORAGE_TRIE);
}
inline std::string storeCaseName(const testing::TestParamInfo<int>& info) {
  return storeName(info.param);
}

}  // namespace ztbtest

#endif  // ZTB_TESTS_STORES_STORE_CASE_H_
