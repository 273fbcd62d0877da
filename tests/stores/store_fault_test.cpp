// Every allocation fails once while records go into each store and while symbols move between them.
#include <functional>
#include <string>
#include <tuple>

#include "tests/fault/failing_allocation.h"
#include "tests/fault/fault_loop.h"
#include "tests/stores/store_case.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"

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

// The records of a file come at the first touch, into whatever store the symbol has: all of them,
// or none and the symbol stays unreadable.
TEST_P(StoreFault, loadingASymbolOfAFile) {
  const TempFolder folder;
  const std::string file = folder.file("lazy.rxf");
  {
    Database source;
    manyRecords(source);
    ASSERT_EQ(1, lib().c__ztbwriterxf(source, file.c_str(), 1)) << source.lastError();
  }
  bool happened = true;
  for (long number = 1; happened && !HasFailure(); ++number) {
    SCOPED_TRACE(number);
    const long before = liveAllocations();
    {
      Database db;
      selectDefault(db, GetParam());
      ASSERT_EQ(1, lib().c__ztbinitfromrxf(db, file.c_str())) << db.lastError();
      void* symbol = p(db);
      void* record = nullptr;
      int result = -1;
      StdoutCapture output;
      {
        const FailingAllocation failing(number, Failures::one);
        result = lib().c__ztbfindfirstrecord(db, symbol, &record);
        happened = failing.happened();
      }
      if (!happened) {
        EXPECT_EQ(1, result);
        EXPECT_EQ(120, db.recordCount(symbol));
      } else if (result == 0) {
        EXPECT_EQ(nullptr, record);
        const std::string told = db.lastError();
        if (told != "Out of memory in ztbFindFirstRecord") {
          // Records were on their way: the symbol is unreadable until they are given up.
          EXPECT_TRUE(told.starts_with("Symbol p could not be read from ")) << told;
          EXPECT_EQ(0, lib().c__ztbfindfirstrecord(db, symbol, &record));
          EXPECT_EQ(told, db.lastError());
          EXPECT_EQ(1, lib().c__ztbclearsymbol(db, symbol));
          EXPECT_EQ(0, db.recordCount(symbol));
        } else {
          EXPECT_EQ(120, db.recordCount(symbol)) << "all or none of the records were taken";
        }
        EXPECT_EQ(static_cast<std::size_t>(db.recordCount(symbol)), db.rows(symbol).size());
      }
      if (record != nullptr) {
        lib().c__ztbfreesymboliterator(db, record);
      }
    }
    EXPECT_EQ(before, liveAllocations()) << "allocations are left after the database ended";
  }
}

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
    const bool expected = status == 1 ? symbol != before : symbol == nullptr;
    return expected ? status : -1;
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
