// Files, arrays, copies and domain checks with symbols on each store.
#include <array>

#include "tests/stores/store_case.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {
namespace {

class StoreFile : public StoreCase {
 protected:
  // A file with symbols of each type and several dimensions, written from tree maps.
  StoreFile() {
    Database source;
    fill(source);
    EXPECT_EQ(1, lib().c__ztbwriterxf(source, file_.c_str(), 1)) << source.lastError();
  }

  static void fill(Database& db) {
    void* set = db.addSet("items");
    for (int i = 1; i <= 60; ++i) {
      const Record record = db.put(set, {numbered("item", i).c_str()});
      if (i % 3 == 0) {
        lib().c__ztbsetelemtext(db, record, numbered("text of ", i).c_str());
      }
    }
    void* scalar = db.addParameter("scalar", 0);
    db.put(scalar, {}, 42);
    db.addParameter("none", 2);
    void* sparse = db.addOver("sparse", ZTB_PARAMETER, {set, set, set});
    void* flow = db.addOver("flow", ZTB_VARIABLE, {set, set});
    for (int i = 1; i <= 60; i += 2) {
      for (int j = 1; j <= 60; j += 7) {
        const std::string first = numbered("item", i);
        const std::string second = numbered("item", j);
        db.put(sparse, {first.c_str(), second.c_str(), "item5"}, i + j / 100.0);
        const Record record = db.put(flow, {second.c_str(), first.c_str()}, -i);
        lib().c__ztbsetmarginal(db, record, j);
      }
    }
  }

  std::vector<Row> rowsIn(Database& db, const char* name) { return db.rows(db.find(name)); }

  TempFolder folder_;
  std::string file_ = folder_.file("content.rxf");
};

constexpr std::array symbolNames = {"items", "scalar", "none", "sparse", "flow"};

TEST_P(StoreFile, readsEverySymbolOfAFileIntoTheStoreAtFirstTouch) {
  Database expected(file_);
  StdoutCapture output;
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db_, file_.c_str())) << db_.lastError();
  for (const char* name : symbolNames) {
    EXPECT_EQ(GetParam(), storeOf(db_, db_.find(name)));
    EXPECT_EQ(rowsIn(expected, name), rowsIn(db_, name)) << name;
  }
  EXPECT_EQ("text of 33", db_.elementText(db_.record(db_.find("items"), {"item33"})));
  EXPECT_EQ("", output.text());
}

TEST_P(StoreFile, findsWhatItHasReadFromAFile) {
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db_, file_.c_str())) << db_.lastError();
  void* flow = db_.find("flow");
  const Record record = db_.record(flow, {"item8", "item31"});
  EXPECT_EQ(-31, db_.level(record));
  double marginal = 0;
  EXPECT_EQ(1, lib().c__ztbgetmarginal(db_, record, &marginal));
  EXPECT_EQ(8, marginal);
  void* none = nullptr;
  EXPECT_EQ(0, lib().c__ztbfindrecord(db_, flow, Keys{"item8", "item30"}, &none));
}

TEST_P(StoreFile, writesTheSameFileAsTheTreeMap) {
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db_, file_.c_str())) << db_.lastError();
  for (const char* name : symbolNames) {
    static_cast<void>(db_.recordCount(db_.find(name)));
  }
  const std::string written = folder_.file("written.rxf");
  ASSERT_EQ(1, lib().c__ztbwriterxf(db_, written.c_str(), 0)) << db_.lastError();
  Database expected(file_);
  Database actual(written);
  for (const char* name : symbolNames) {
    EXPECT_EQ(rowsIn(expected, name), rowsIn(actual, name)) << name;
  }
}

TEST_P(StoreFile, aCopyOfTheDatabaseTakesTheStoreOfItsNewSymbols) {
  Database source(file_);
  ASSERT_EQ(1, lib().c__ztbinitfromdb(db_, source)) << db_.lastError();
  for (const char* name : symbolNames) {
    EXPECT_EQ(GetParam(), storeOf(db_, db_.find(name)));
    EXPECT_EQ(rowsIn(source, name), rowsIn(db_, name)) << name;
  }
}

TEST_P(StoreFile, aSymbolIsCopiedToEveryStore) {
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db_, file_.c_str())) << db_.lastError();
  for (const int store : {ZTB_STORAGE_TREE_MAP, ZTB_STORAGE_VECTOR, ZTB_STORAGE_TRIE}) {
    selectDefault(db_, store);
    void* items = db_.addSet(("items" + storeName(store)).c_str());
    EXPECT_SUCCESS(db_, lib().c__ztbcopysymbol(db_, items, db_.find("items")));
    EXPECT_EQ(rowsIn(db_, "items"), db_.rows(items)) << storeName(store);
    void* target = db_.addParameter(("copy" + storeName(store)).c_str(), 3);
    EXPECT_SUCCESS(db_, lib().c__ztbcopysymbol(db_, target, db_.find("sparse")));
    EXPECT_EQ(rowsIn(db_, "sparse"), db_.rows(target)) << storeName(store);
  }
}

TEST_P(StoreFile, fillsACubeFromTheStore) {
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db_, file_.c_str())) << db_.lastError();
  const std::array<int, 2> size = {60, 60};
  std::vector<double> cube(3600, -1);
  std::array<void*, 2> domains = {db_.find("items"), db_.find("items")};
  int dropped = -1;
  void* flow = db_.find("flow");
  ASSERT_EQ(1, lib().c__ztbsparsesymboltodensearray(db_, cube.data(), size.data(), flow,
                                                    domains.data(), ZTB_LEVEL, &dropped))
      << db_.lastError();
  EXPECT_EQ(0, dropped);
  EXPECT_EQ(-31, cube[7 * 60 + 30]);
  EXPECT_EQ(0, cube[7 * 60 + 29]);
}

TEST_P(StoreFile, findsRecordsThatBreakTheirDomain) {
  void* set = db_.addSet("s");
  db_.uel("a");
  db_.uel("b");
  db_.put(set, {"a"});
  void* symbol = db_.addOver("p", ZTB_PARAMETER, {set});
  db_.put(symbol, {"a"});
  db_.put(symbol, {"b"});
  int hasViolation = -1;
  ASSERT_EQ(1, lib().c__ztbchecksymboldv(db_, symbol, &hasViolation)) << db_.lastError();
  EXPECT_EQ(1, hasViolation);
  void* violation = nullptr;
  ASSERT_EQ(1, lib().c__ztbgetfirstdvinsymbol(db_, symbol, &violation)) << db_.lastError();
  void* record = nullptr;
  ASSERT_EQ(1, lib().c__ztbgetdvsymbolrecord(db_, violation, &record)) << db_.lastError();
  EXPECT_EQ(Labels{"b"}, db_.labels(Record(db_, record), 1));
  lib().c__ztbfreedvhandle(db_, violation);
  lib().c__ztbdomaincheckdone(db_);
}

INSTANTIATE_TEST_SUITE_P(Stores, StoreFile, allStores(), storeCaseName);

}  // namespace
}  // namespace ztbtest
