// Every allocation fails once while records go into each store and while symbols move between them.
#include <functional>
#include <tuple>

#include "tests/fault/fault_loop.h"
#include "tests/stores/store_case.h"

namespace ztbtest {
namespace {

const char* lastKeys[] = {"z", "a label that is longer than what a small string holds"};

// Parameter p with records enough for several blocks of a pool.
void* manyRecords(Database& db) {
  void* symbol = db.addParameter("p", 2);
  for (int i = 1; i <= 12; ++i) {
    for (int j = 1; j <= 10; ++j) {
      db.put(symbol, {numbered("i", i).c_str(), numbered("j", j).c_str()}, i * j);
    }
  }
  return symbol;
}

void* p(Database& db) {
  void* symbol = nullptr;
  lib().c__ztbgetsymbolbynumber(db, 0, &symbol);
  return symbol;
}

class StoreFault : public testing::TestWithParam<int> {
 protected:
  static void prepare(Database& db) {
    moveTo(db, manyRecords(db), GetParam());
    selectDefault(db, GetParam());
  }
};

TEST_P(StoreFault, addingARecord) {
  expectEveryAllocationIsSurvived({"ztbAddRecord", prepare, [](Database& db) {
                                     void* record = nullptr;
                                     const int result =
                                         lib().c__ztbaddrecord(db, p(db), lastKeys, &record);
                                     if (record != nullptr) {
                                       lib().c__ztbfreesymboliterator(db, record);
                                     }
                                     return result;
                                   }});
}

TEST_P(StoreFault, mergingARecord) {
  expectEveryAllocationIsSurvived({"ztbMergeRecord", prepare, [](Database& db) {
                                     void* record = nullptr;
                                     const int result =
                                         lib().c__ztbmergerecord(db, p(db), lastKeys, &record);
                                     if (record != nullptr) {
                                       lib().c__ztbfreesymboliterator(db, record);
                                     }
                                     return result;
                                   }});
}

INSTANTIATE_TEST_SUITE_P(Stores, StoreFault, allStores(), storeCaseName);

// From one store to another: a failed move leaves the symbol, its records and its handle.
class MoveFault : public testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(MoveFault, movingASymbol) {
  const auto [from, to] = GetParam();
  const auto prepare = [from = from](Database& db) { moveTo(db, manyRecords(db), from); };
  const auto move = [to = to](Database& db) {
    void* before = p(db);
    void* symbol = before;
    const int result = lib().c__ztbselectrecordstorage(db, &symbol, to);
    return (result == 1) == (symbol != before) ? result : -1;
  };
  expectEveryAllocationIsSurvived({"ztbSelectRecordStorage", prepare, move});
}

TEST_P(MoveFault, movingASymbolThroughThePyTwin) {
  const auto [from, to] = GetParam();
  const auto prepare = [from = from](Database& db) { moveTo(db, manyRecords(db), from); };
  const auto move = [to = to](Database& db) {
    void* before = p(db);
    int status = -1;
    void* symbol = lib().c__ztbselectrecordstoragepy(db, before, to, &status);
    return (status == 1) == (symbol != before) ? status : -1;
  };
  expectEveryAllocationIsSurvived({"ztbSelectRecordStorage", prepare, move});
}

INSTANTIATE_TEST_SUITE_P(Stores, MoveFault,
                         testing::Values(std::tuple(0, 1), std::tuple(0, 2), std::tuple(1, 0),
                                         std::tuple(1, 2), std::tuple(2, 0), std::tuple(2, 1)),
                         [](const auto& tested) {
                           return storeName(std::get<0>(tested.param)) + "To" +
                                  storeName(std::get<1>(tested.param));
                         });

}  // namespace
}  // namespace ztbtest
