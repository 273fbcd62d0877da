// Choosing the store of new symbols, and moving symbols between stores.
#include <array>
#include <cmath>
#include <limits>
#include <tuple>

#include "tests/stores/store_case.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

constexpr std::array<int, 3> stores = {ZTB_STORAGE_TREE_MAP, ZTB_STORAGE_VECTOR, ZTB_STORAGE_TRIE};

const std::vector<Row> threeRows = {{{"a", "x"}, 1.5}, {{"a", "y"}, -2}, {{"b", "x"}, 3}};

void* withThreeRows(Database& db, const char* name, int type = ZTB_PARAMETER) {
  void* symbol = db.add(name, 2, type);
  for (const Row& row : threeRows) {
    db.put(symbol, Keys(row.labels), row.level);
  }
  return symbol;
}

TEST(StorageChoice, aNewDatabaseUsesTheTreeMap) {
  Database db;
  EXPECT_EQ(ZTB_STORAGE_TREE_MAP, db.info(ZTB_INFO_RECORD_STORAGE));
  EXPECT_EQ(ZTB_STORAGE_TREE_MAP, storeOf(db, db.addParameter("p")));
}

TEST(StorageChoice, aNullSymbolChoosesForNewSymbolsOnly) {
  Database db;
  void* before = db.addParameter("before");
  EXPECT_SUCCESS(db, lib().c__ztbselectrecordstorage(db, nullptr, ZTB_STORAGE_VECTOR));
  EXPECT_EQ(ZTB_STORAGE_VECTOR, db.info(ZTB_INFO_RECORD_STORAGE));
  EXPECT_EQ(ZTB_STORAGE_TREE_MAP, storeOf(db, before));
  EXPECT_EQ(ZTB_STORAGE_VECTOR, storeOf(db, db.addParameter("after")));
}

TEST(StorageChoice, thePyTwinChoosesForNewSymbolsWithANullSymbol) {
  Database db;
  int status = -1;
  EXPECT_EQ(nullptr, lib().c__ztbselectrecordstoragepy(db, nullptr, ZTB_STORAGE_TRIE, &status));
  EXPECT_EQ(1, status);
  EXPECT_EQ(ZTB_STORAGE_TRIE, db.info(ZTB_INFO_RECORD_STORAGE));
}

TEST(StorageChoice, theStoreThatASymbolHasKeepsTheHandle) {
  Database db;
  for (const int store : stores) {
    selectDefault(db, store);
    void* symbol = db.addParameter(storeName(store).c_str());
    void* handle = symbol;
    EXPECT_SUCCESS(db, lib().c__ztbselectrecordstorage(db, &handle, store));
    EXPECT_EQ(symbol, handle);
    int status = -1;
    EXPECT_EQ(symbol, lib().c__ztbselectrecordstoragepy(db, symbol, store, &status));
    EXPECT_EQ(1, status);
  }
}

TEST(StorageChoice, thePyTwinGivesTheNewHandleAfterAMove) {
  Database db;
  void* symbol = withThreeRows(db, "p");
  int status = -1;
  void* moved = lib().c__ztbselectrecordstoragepy(db, symbol, ZTB_STORAGE_TRIE, &status);
  EXPECT_EQ(1, status);
  EXPECT_NE(symbol, moved);
  EXPECT_EQ(moved, db.find("p"));
  EXPECT_EQ(threeRows, db.rows(moved));
}

TEST(StorageChoice, aHandleOnNoSymbolFails) {
  Database db;
  void* none = nullptr;
  EXPECT_FAILURE(db, "No symbol handle specified",
                 lib().c__ztbselectrecordstorage(db, &none, ZTB_STORAGE_TRIE));
  EXPECT_EQ(ZTB_STORAGE_TREE_MAP, db.info(ZTB_INFO_RECORD_STORAGE));
}

TEST(StorageChoice, theUniverseStaysWhereItIs) {
  Database db;
  db.uel("a");
  void* universe = db.universe();
  void* handle = universe;
  EXPECT_FAILURE(db,
                 "Unexpected exception in ztbSelectRecordStorage: symbol * is not in the symbol "
                 "table",
                 lib().c__ztbselectrecordstorage(db, &handle, ZTB_STORAGE_TRIE));
  EXPECT_EQ(universe, handle);
  EXPECT_EQ(Labels{"a"}, db.labels(db.first(db.universe()), 1));
}

TEST(StorageChoice, aHandleThatWasReplacedIsRefused) {
  Database db;
  void* old = withThreeRows(db, "p");
  void* moved = moveTo(db, old, ZTB_STORAGE_VECTOR);
  EXPECT_FAILURE(db,
                 "Unexpected exception in ztbSelectRecordStorage: symbol p is not in the symbol "
                 "table",
                 lib().c__ztbselectrecordstorage(db, &old, ZTB_STORAGE_TRIE));
  EXPECT_EQ(moved, db.find("p"));
  EXPECT_EQ(threeRows, db.rows(moved));
}

TEST(StorageChoice, theTraceNamesTheOperationOnly) {
  Database db;
  lib().c__ztbsetdebug(db, 1);
  StdoutCapture output;
  int status = 0;
  lib().c__ztbselectrecordstorage(db, nullptr, ZTB_STORAGE_VECTOR);
  lib().c__ztbselectrecordstoragepy(db, nullptr, ZTB_STORAGE_VECTOR, &status);
  EXPECT_EQ("ztbSelectRecordStorage\nztbSelectRecordStoragePy\n", output.text());
  lib().c__ztbsetdebug(db, 0);
}

// From one store to another.
class StoragePair : public testing::TestWithParam<std::tuple<int, int>> {
 protected:
  StoragePair() { db_.uel("unused"); }
  static int from() { return std::get<0>(GetParam()); }
  static int to() { return std::get<1>(GetParam()); }

  Database db_;
};

TEST_P(StoragePair, keepsRecordsOrderAndDescription) {
  void* symbol = moveTo(db_, withThreeRows(db_, "p"), from());
  lib().c__ztbsetuserinfo(db_, symbol, 17);
  StdoutCapture output;
  void* moved = moveTo(db_, symbol, to());
  EXPECT_EQ("", output.text());
  EXPECT_EQ(to(), storeOf(db_, moved));
  EXPECT_EQ(threeRows, db_.rows(moved));
  EXPECT_EQ(3, db_.recordCount(moved));
  EXPECT_EQ(moved, db_.find("p"));
  EXPECT_EQ("p", db_.symbolText(moved, ZTB_SYMBOL_INFO_NAME));
  EXPECT_EQ(17, db_.symbolInfo(moved, ZTB_SYMBOL_INFO_USER_INFO));
  EXPECT_EQ(ZTB_PARAMETER, db_.symbolInfo(moved, ZTB_SYMBOL_INFO_TYPE));
  EXPECT_EQ(0, db_.symbolInfo(moved, ZTB_SYMBOL_INFO_NUMBER));
  void* byIndex = nullptr;
  EXPECT_SUCCESS(db_, lib().c__ztbgetsymbolbyindex(db_, 0, &byIndex));
  EXPECT_EQ(moved, byIndex);
}

TEST_P(StoragePair, keepsFiveSlotsAndSpecialValues) {
  void* symbol = db_.addVariable("v", 1);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  const std::array<double, 5> wanted = {nan, -infinity, infinity, 0x1p-1074, -0.0};
  for (const char* label : {"a", "b"}) {
    const Record record = db_.put(symbol, {label}, wanted[0]);
    lib().c__ztbsetmarginal(db_, record, wanted[1]);
    lib().c__ztbsetlower(db_, record, wanted[2]);
    lib().c__ztbsetupper(db_, record, wanted[3]);
    lib().c__ztbsetscale(db_, record, wanted[4]);
  }
  symbol = moveTo(db_, moveTo(db_, symbol, from()), to());
  std::array<double, 5> values = {};
  int key = 0;
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db_, db_.last(symbol), 1, &key, values.data()));
  EXPECT_EQ(db_.findUel("b"), key);
  EXPECT_TRUE(std::isnan(values[0]));
  for (std::size_t slot = 1; slot < 5; ++slot) {
    EXPECT_EQ(wanted[slot], values[slot]);
    EXPECT_EQ(std::signbit(wanted[slot]), std::signbit(values[slot]));
  }
}

TEST_P(StoragePair, keepsAScalarsOneRecordOrNone) {
  void* full = db_.addParameter("full", 0);
  db_.put(full, {}, 4.5);
  void* empty = moveTo(db_, moveTo(db_, db_.addParameter("empty", 0), from()), to());
  full = moveTo(db_, moveTo(db_, full, from()), to());
  EXPECT_EQ((std::vector<Row>{{{}, 4.5}}), db_.rows(full));
  EXPECT_EQ(0, db_.recordCount(empty));
}

TEST_P(StoragePair, keepsNoRecordsOnEveryDimension) {
  for (const int dim : {1, 2, 3, 20}) {
    void* symbol = db_.addParameter(numbered("p", dim).c_str(), dim);
    symbol = moveTo(db_, moveTo(db_, symbol, from()), to());
    EXPECT_EQ(0, db_.recordCount(symbol)) << dim;
    EXPECT_EQ(to(), storeOf(db_, symbol));
  }
}

TEST_P(StoragePair, keepsTwentyPositions) {
  void* symbol = db_.addParameter("p", 20);
  Labels labels(20, "a");
  std::vector<Row> rows;
  for (const char* last : {"b", "c"}) {
    labels[19] = last;
    db_.put(symbol, Keys(labels), 2);
    rows.push_back({labels, 2});
  }
  EXPECT_EQ(rows, db_.rows(moveTo(db_, moveTo(db_, symbol, from()), to())));
}

TEST_P(StoragePair, takesAnUnloadedSymbolWhoseRecordsComeLater) {
  const TempFolder folder;
  const std::string file = folder.file("lazy.rxf");
  {
    Database source;
    withThreeRows(source, "p");
    ASSERT_EQ(1, lib().c__ztbwriterxf(source, file.c_str(), 1)) << source.lastError();
  }
  Database db;
  selectDefault(db, from());
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db, file.c_str())) << db.lastError();
  void* moved = moveTo(db, db.find("p"), to());
  EXPECT_EQ(to(), storeOf(db, moved));
  EXPECT_EQ(threeRows, db.rows(moved));
}

TEST_P(StoragePair, losesDomainsAndStandsForItself) {
  void* set = db_.addSet("s");
  db_.put(set, {"a"});
  void* symbol = db_.addOver("p", ZTB_PARAMETER, {set});
  symbol = moveTo(db_, moveTo(db_, symbol, from()), to());
  const bool moved = from() != ZTB_STORAGE_TREE_MAP || to() != ZTB_STORAGE_TREE_MAP;
  void* domain = this;
  TextBuffers names;
  EXPECT_EQ(1, lib().c__ztbgetdomain(db_, symbol, 1, &domain, names));
  EXPECT_EQ(moved ? nullptr : set, domain);
  EXPECT_EQ(moved ? "" : "s", names[0].str());
  void* alias = db_.addAlias("t", set);
  alias = moveTo(db_, moveTo(db_, db_.findWithAlias("t"), from()), to());
  EXPECT_EQ(moved ? alias : set, db_.find("t"));
  EXPECT_EQ(3, db_.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
}

TEST_P(StoragePair, whatPointsAtAReplacedSetDoesNotCrash) {
  void* set = db_.addSet("s");
  db_.put(set, {"a"});
  void* over = db_.addOver("p", ZTB_PARAMETER, {set});
  db_.put(over, {"a"}, 1);
  db_.addAlias("t", set);
  moveTo(db_, moveTo(db_, set, from()), to());
  int hasViolation = -1;
  lib().c__ztbcheckdbdv(db_, &hasViolation);
  EXPECT_EQ(1, db_.recordCount(over));
  static_cast<void>(db_.recordCount(db_.find("t")));
  const TempFolder folder;
  lib().c__ztbwriterxf(db_, folder.file("out.rxf").c_str(), 1);
}

INSTANTIATE_TEST_SUITE_P(Stores, StoragePair,
                         testing::Combine(testing::ValuesIn(stores), testing::ValuesIn(stores)),
                         [](const auto& tested) {
                           return storeName(std::get<0>(tested.param)) + "To" +
                                  storeName(std::get<1>(tested.param));
                         });

// A code that no store has.
class UnknownStore : public testing::TestWithParam<int> {
 protected:
  Database db_;
};

TEST_P(UnknownStore, forASymbolEmptiesItsPlaceAndIsASuccess) {
  void* first = db_.addParameter("first");
  void* symbol = withThreeRows(db_, "p");
  void* last = db_.addParameter("last");
  EXPECT_SUCCESS(db_, lib().c__ztbselectrecordstorage(db_, &symbol, GetParam()));
  EXPECT_EQ(nullptr, symbol);
  void* found = this;
  lib().c__ztbgetsymbolbyindex(db_, 1, &found);
  EXPECT_EQ(nullptr, found);
  lib().c__ztbgetsymbolbynumber(db_, 1, &found);
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(3, db_.info(ZTB_INFO_SYMBOL_COUNT));
  EXPECT_EQ(first, db_.find("first"));
  EXPECT_EQ(last, db_.find("last"));
}

TEST_P(UnknownStore, thePyTwinGivesNoHandleAndStatus1) {
  void* symbol = withThreeRows(db_, "p");
  int status = -1;
  EXPECT_EQ(nullptr, lib().c__ztbselectrecordstoragepy(db_, symbol, GetParam(), &status));
  EXPECT_EQ(1, status);
}

TEST_P(UnknownStore, laterOperationsOnTheDatabaseDoNotCrash) {
  void* set = db_.addSet("s");
  db_.put(set, {"a"});
  void* over = db_.addOver("over", ZTB_PARAMETER, {set});
  db_.put(over, {"a"}, 1);
  db_.addAlias("t", set);
  EXPECT_SUCCESS(db_, lib().c__ztbselectrecordstorage(db_, &set, GetParam()));
  void* found = this;
  EXPECT_EQ(0, lib().c__ztbfindsymbol(db_, "s", &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(0, lib().c__ztbfindsymbolwithalias(db_, "s", &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(0, lib().c__ztbaddsymbol(db_, "s", 1, ZTB_SET, 0, "", &found));
  lib().c__ztbaddsymbol(db_, "onto", 1, ZTB_ALIAS, 0, "", &found);
  EXPECT_EQ(1, db_.recordCount(over));
  int hasViolation = -1;
  lib().c__ztbcheckdbdv(db_, &hasViolation);
  void* violation = nullptr;
  if (lib().c__ztbgetfirstdbdv(db_, &violation) == 1 && violation != nullptr) {
    lib().c__ztbfreedvhandle(db_, violation);
  }
  lib().c__ztbdomaincheckdone(db_);
  lib().c__ztbstartwriterecording(db_);
  lib().c__ztbstopwriterecording(db_);
  Database copy;
  lib().c__ztbinitfromdb(copy, db_);
  const TempFolder folder;
  lib().c__ztbwriterxf(db_, folder.file("out.rxf").c_str(), 1);
  lib().c__ztbwriterxf(db_, folder.file("checked.rxf").c_str(), 0);
  lib().c__ztbcloserxf(db_, 1);
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1}}), db_.rows(over));
}

TEST_P(UnknownStore, asTheDefaultIsTakenUncheckedAndNoNewSymbolIsMade) {
  void* before = withThreeRows(db_, "before");
  EXPECT_SUCCESS(db_, lib().c__ztbselectrecordstorage(db_, nullptr, GetParam()));
  EXPECT_EQ(GetParam(), db_.info(ZTB_INFO_RECORD_STORAGE));
  void* symbol = this;
  EXPECT_EQ(0, lib().c__ztbaddsymbol(db_, "p", 1, ZTB_PARAMETER, 0, "", &symbol));
  EXPECT_EQ(threeRows, db_.rows(before));
  void* record = this;
  EXPECT_EQ(0, lib().c__ztbfindfirstrecord(db_, db_.universe(), &record));
  EXPECT_EQ(nullptr, record);
  selectDefault(db_, ZTB_STORAGE_TRIE);
  EXPECT_EQ(ZTB_STORAGE_TRIE, storeOf(db_, db_.addParameter("q")));
}

TEST_P(UnknownStore, asTheDefaultKeepsAFileFromOpeningWithoutACrash) {
  const TempFolder folder;
  const std::string file = folder.file("some.rxf");
  withThreeRows(db_, "p");
  ASSERT_EQ(1, lib().c__ztbwriterxf(db_, file.c_str(), 1)) << db_.lastError();
  Database mirror;
  selectDefault(mirror, GetParam());
  EXPECT_EQ(0, lib().c__ztbinitfromrxf(mirror, file.c_str()));
}

INSTANTIATE_TEST_SUITE_P(Codes, UnknownStore, testing::Values(-1, 3, 99), [](const auto& tested) {
  return tested.param < 0 ? std::string("negative") : numbered("code", tested.param);
});

}  // namespace
}  // namespace ztbtest
