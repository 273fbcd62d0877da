// ztbHoldValues: what is held stays as it was, whatever the exported names do to the records.
#include <functional>
#include <memory>
#include <vector>

#include "tests/stores/store_case.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {
namespace {

using Held = std::unique_ptr<ztbHeldValues, decltype(&ztbReleaseValues)>;

Held hold(ztbRec* database, void* symbol) {
  ztbHeldValues* held = nullptr;
  EXPECT_EQ(1, ztbHoldValues(database, symbol, &held));
  return {held, ztbReleaseValues};
}

std::vector<double> valuesOf(const Held& held) {
  return {held->values, held->values + held->count};
}

// The three records of parameter p on a store.
void* prices(Database& db, int store = ZTB_STORAGE_VECTOR) {
  selectDefault(db, store);
  for (const char* label : {"a", "b", "c", "d"}) db.uel(label);
  void* const p = db.addParameter("p");
  db.put(p, {"a"}, 1);
  db.put(p, {"b"}, 2);
  db.put(p, {"c"}, 3);
  return p;
}

using HeldOnStores = StoreCase;

TEST_P(HeldOnStores, areThereOnTheVectorAlone) {
  void* const p = filled("p", 1, {{{"a"}, 4}, {{"b"}, 5}});
  const Held held = hold(db_, p);
  ASSERT_EQ(on(ZTB_STORAGE_VECTOR), held != nullptr);
  if (held != nullptr) {
    const double* values = nullptr;
    ASSERT_EQ(1, ztbValuesInPlace(db_, p, &values));
    EXPECT_EQ(values, held->values);
    EXPECT_EQ((std::vector<double>{4, 5}), valuesOf(held));
  }
  EXPECT_EQ(nullptr, hold(db_, filled("x", 1, {{{"a"}, 4}}, ZTB_VARIABLE)));
  EXPECT_EQ(nullptr, hold(db_, filled("s", 1, {{{"a"}, 0}}, ZTB_SET)));
  EXPECT_EQ(nullptr, hold(db_, db_.addParameter("none")));
  EXPECT_EQ(nullptr, hold(db_, db_.universe()));
  ztbHeldValues* none = nullptr;
  EXPECT_FAILURE(db_, "No symbol handle specified", ztbHoldValues(db_, nullptr, &none));
}

INSTANTIATE_TEST_SUITE_P(Stores, HeldOnStores,
                         testing::Values(ZTB_STORAGE_TREE_MAP, ZTB_STORAGE_VECTOR,
                                         ZTB_STORAGE_TRIE),
                         [](const testing::TestParamInfo<int>& store) {
                           return storeName(store.param);
                         });

using Change = std::function<void(Database&, void*)>;

void mergeNumbers(Database& db, void* p, int label, double value) {
  EXPECT_EQ(1, lib().c__ztbmergerecordint(db, p, &label, 1, 0, nullptr, 1, &value));
}

const std::vector<std::pair<Change, std::vector<Row>>>& changes() {
  static const std::vector<std::pair<Change, std::vector<Row>>> all = {
      {[](Database& db, void* p) { lib().c__ztbsetlevel(db, db.record(p, {"b"}), 9); },
       {{{"a"}, 1}, {{"b"}, 9}, {{"c"}, 3}}},
      {[](Database& db, void* p) { db.put(p, {"d"}, 9); },
       {{{"a"}, 1}, {{"b"}, 2}, {{"c"}, 3}, {{"d"}, 9}}},
      {[](Database& db, void* p) { mergeNumbers(db, p, 1, 9); },
       {{{"a"}, 9}, {{"b"}, 2}, {{"c"}, 3}}},
      {[](Database& db, void* p) { lib().c__ztbdeleterecord(db, db.record(p, {"a"})); },
       {{{"b"}, 2}, {{"c"}, 3}}},
      {[](Database& db, void* p) {
         lib().c__ztbclearsymbol(db, p);
         db.put(p, {"a"}, 8);
         db.put(p, {"b"}, 9);
       },
       {{{"a"}, 8}, {{"b"}, 9}}},
      {[](Database& db, void* p) {
         const double cube[] = {7, 8};
         const int size = 2;
         void* set = db.addSet("s");
         db.put(set, {"b"});
         db.put(set, {"c"});
         EXPECT_EQ(1, lib().c__ztbdensearraytosymbol(db, p, &set, cube, &size)) << db.lastError();
       },
       {{{"b"}, 7}, {{"c"}, 8}}},
      {[](Database& db, void* p) {
         void* const other = db.addParameter("q");
         db.put(other, {"b"}, 6);
         EXPECT_EQ(1, lib().c__ztbcopysymbol(db, p, other)) << db.lastError();
       },
       {{{"b"}, 6}}},
      {[](Database& db, void* p) { moveTo(db, p, ZTB_STORAGE_TRIE); },
       {{{"a"}, 1}, {{"b"}, 2}, {{"c"}, 3}}},
  };
  return all;
}

TEST(HeldValuesOfTheVector, stayWhateverBecomesOfTheRecords) {
  for (std::size_t change = 0; change < changes().size(); ++change) {
    Database db;
    void* const p = prices(db);
    const Held held = hold(db, p);
    const Held again = hold(db, p);
    EXPECT_EQ(held->values, again->values);
    changes()[change].first(db, p);
    EXPECT_EQ((std::vector<double>{1, 2, 3}), valuesOf(held)) << change;
    EXPECT_EQ((std::vector<double>{1, 2, 3}), valuesOf(again)) << change;
    EXPECT_EQ(changes()[change].second, db.rows(db.find("p"))) << change;
  }
}

TEST(HeldValuesOfTheVector, outliveTheDatabase) {
  Held held(nullptr, ztbReleaseValues);
  {
    Database db;
    held = hold(db, prices(db));
  }
  EXPECT_EQ((std::vector<double>{1, 2, 3}), valuesOf(held));
}

TEST(HeldValuesOfTheVector, areReadFromTheFileFirst) {
  const TempFolder folder;
  {
    Database db;
    prices(db);
    ASSERT_EQ(1, lib().c__ztbwriterxf(db, folder.file("p.rxf").c_str(), 1));
  }
  Held held(nullptr, ztbReleaseValues);
  {
    Database db;
    selectDefault(db, ZTB_STORAGE_VECTOR);
    ASSERT_EQ(1, lib().c__ztbinitfromrxf(db, folder.file("p.rxf").c_str()));
    held = hold(db, db.find("p"));
    ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  }
  EXPECT_EQ((std::vector<double>{1, 2, 3}), valuesOf(held));
}

TEST(HeldValuesOfTheVector, areNotCopiedWhenNobodyHoldsThemAnyMore) {
  Database db;
  void* const p = prices(db);
  const double* before = hold(db, p)->values;
  lib().c__ztbsetlevel(db, db.record(p, {"b"}), 9);
  EXPECT_EQ(before, hold(db, p)->values);
  const Held held = hold(db, p);
  EXPECT_EQ(9, db.level(db.record(p, {"b"}))) << "reading copies nothing";
  EXPECT_EQ(before, hold(db, p)->values);
}

}  // namespace
}  // namespace ztbtest
