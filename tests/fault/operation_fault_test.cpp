// Every allocation of every operation in memory fails once.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

#include "tests/fault/fault_loop.h"

namespace ztbtest {
namespace {

const char* longLabel = "a label that is longer than what a small string holds";
const std::string aTextThatFillsABlock(255, 't');
const char* newKeys[] = {"new one that is longer than a small string", "another new one"};
const char* oldKeys[] = {"a", "b"};
const char* anyKeys[] = {" ", "b"};
const int numbers[] = {2, 1};
const double values[] = {1, 2, 3, 4, 5};

// One handle that an operation gave, ended at once.
int ended(Database& db, int result, void* record) {
  if (record != nullptr) {
    lib().c__ztbfreesymboliterator(db, record);
  }
  return result;
}

void nothing(Database&) {}

// Labels a and b; parameter p with (a,b)=1, variable v with a, set i with a and its text; alias j.
void someRecords(Database& db) {
  db.put(db.addParameter("p", 2), {"a", "b"}, 1.0);
  db.put(db.addVariable("v"), {"a"}, 2.0);
  void* const set = db.addSet("i");
  lib().c__ztbsetelemtext(db, db.put(set, {"a"}), "first text");
  db.addAlias("j", set);
}

// Parameter p with one record whose labels do not fit into small strings.
void oneLongRecord(Database& db) {
  db.put(db.addParameter("p", 2), {newKeys[0], newKeys[1]});
}

// Parameter p with as many records as need no more memory than for the first.
void asManyAsFit(Database& db) {
  void* const parameter = db.addParameter("p", 2);
  for (const char* second : {"b", "c", "d", "e"}) {
    db.put(parameter, {"a", second}, 1.0);
  }
}

void* symbolAt(Database& db, int number) {
  void* symbol = nullptr;
  lib().c__ztbgetsymbolbynumber(db, number, &symbol);
  return symbol;
}

void* p(Database& db) {
  return symbolAt(db, 0);
}
void* i(Database& db) {
  return symbolAt(db, 2);
}

TEST(LabelFaults, merge) {
  const auto merge = [](Database& db) {
    int number = 0;
    return lib().c__ztbmergeuel(db, longLabel, &number);
  };
  expectEveryAllocationIsSurvived({"ztbMergeUel", nothing, merge});
  expectEveryAllocationIsSurvived({"ztbMergeUel", someRecords, merge});
}

TEST(LabelFaults, mergeThatGrowsTheHashTable) {
  expectEveryAllocationIsSurvived({"ztbMergeUel",
                                   [](Database& db) {
                                     for (int n = 0; n < 1499; ++n) {
                                       db.uel(numbered("label", n).c_str());
                                     }
                                   },
                                   [](Database& db) {
                                     int number = 0;
                                     return lib().c__ztbmergeuel(db, longLabel, &number);
                                   }});
}

TEST(SymbolFaults, add) {
  const auto add = [](Database& db) {
    void* symbol = nullptr;
    return lib().c__ztbaddsymbol(db, "a_name_longer_than_a_small_string_holds", 3, ZTB_VARIABLE, 1,
                                 "a text that is longer than a small string", &symbol);
  };
  expectEveryAllocationIsSurvived({"ztbAddSymbol", nothing, add});
  expectEveryAllocationIsSurvived({"ztbAddSymbol", someRecords, add});
}

TEST(SymbolFaults, addThroughATwin) {
  expectEveryAllocationIsSurvived({"ztbAddSymbol", nothing, [](Database& db) {
                                     int status = -1;
                                     lib().c__ztbaddsymbolpy(db, "x", 1, 0, 0, "", &status);
                                     return status;
                                   }});
}

TEST(SymbolFaults, addAlias) {
  expectEveryAllocationIsSurvived({"ztbAddSymbol", someRecords, [](Database& db) {
                                     void* symbol = nullptr;
                                     return lib().c__ztbaddsymbol(db, "k", 1, ZTB_ALIAS, 2, "",
                                                                  &symbol);
                                   }});
}

TEST(SymbolFaults, addOverDomains) {
  expectEveryAllocationIsSurvived(
      {"ztbAddSymbolX", someRecords, [](Database& db) {
         void* domains[] = {i(db), nullptr};
         const char* names[] = {"", "a domain that is known by name only"};
         void* symbol = nullptr;
         return lib().c__ztbaddsymbolx(db, "x", 2, 1, 0, "", domains, names, &symbol);
       }});
}

TEST(RecordFaults, add) {
  expectEveryAllocationIsSurvived({"ztbAddRecord", someRecords, [](Database& db) {
                                     void* record = nullptr;
                                     const int result =
                                         lib().c__ztbaddrecord(db, p(db), newKeys, &record);
                                     return ended(db, result, record);
                                   }});
}

TEST(RecordFaults, addThroughATwin) {
  expectEveryAllocationIsSurvived({"ztbAddRecord", someRecords, [](Database& db) {
                                     int status = -1;
                                     void* const record =
                                         lib().c__ztbaddrecordpy(db, p(db), newKeys, &status);
                                     return ended(db, status, record);
                                   }});
}

TEST(RecordFaults, addOfARecordThatExists) {
  expectEveryAllocationIsSurvived({"ztbAddRecord", oneLongRecord,
                                   [](Database& db) {
                                     void* record = nullptr;
                                     return lib().c__ztbaddrecord(db, p(db), newKeys, &record);
                                   },
                                   0});
}

TEST(RecordFaults, merge) {
  expectEveryAllocationIsSurvived({"ztbMergeRecord", someRecords, [](Database& db) {
                                     void* record = nullptr;
                                     const int result =
                                         lib().c__ztbmergerecord(db, p(db), newKeys, &record);
                                     return ended(db, result, record);
                                   }});
}

TEST(RecordFaults, mergeOfARecordThatExists) {
  expectEveryAllocationIsSurvived({"ztbMergeRecord", someRecords, [](Database& db) {
                                     int status = -1;
                                     void* const record =
                                         lib().c__ztbmergerecordpy(db, p(db), oldKeys, &status);
                                     return ended(db, status, record);
                                   }});
}

TEST(RecordFaults, storeByNumber) {
  expectEveryAllocationIsSurvived({"ztbMergeRecordInt", someRecords, [](Database& db) {
                                     void* record = nullptr;
                                     const int result = lib().c__ztbmergerecordint(
                                         db, p(db), numbers, 1, 1, &record, 1, values);
                                     return ended(db, result, record);
                                   }});
}

TEST(RecordFaults, storeOfASetRecordIsNamedLikeAnyOther) {
  expectEveryAllocationIsSurvived({"ztbMergeRecordInt", someRecords, [](Database& db) {
                                     void* record = nullptr;
                                     const int result = lib().c__ztbmergesetrecordint(
                                         db, i(db), numbers, 1, 1, &record,
                                         "a new text that is longer than a small string");
                                     return ended(db, result, record);
                                   }});
}

TEST(RecordFaults, addRaw) {
  expectEveryAllocationIsSurvived(
      {"ztbMergeRecordInt", asManyAsFit,
       [](Database& db) { return lib().c__ztbaddrecordraw(db, p(db), numbers, values, nullptr); }});
}

TEST(LookupFaults, find) {
  expectEveryAllocationIsSurvived({"ztbFindRecord", someRecords, [](Database& db) {
                                     void* record = nullptr;
                                     const int result =
                                         lib().c__ztbfindrecord(db, p(db), oldKeys, &record);
                                     return ended(db, result, record);
                                   }});
}

TEST(LookupFaults, findThroughATwin) {
  expectEveryAllocationIsSurvived({"ztbFindRecord", someRecords, [](Database& db) {
                                     int status = -1;
                                     void* const record =
                                         lib().c__ztbfindrecordpy(db, p(db), oldKeys, &status);
                                     return ended(db, status, record);
                                   }});
}

TEST(LookupFaults, findFirstAndLast) {
  expectEveryAllocationIsSurvived({"ztbFindFirstRecord", someRecords, [](Database& db) {
                                     void* record = nullptr;
                                     const int result =
                                         lib().c__ztbfindfirstrecord(db, p(db), &record);
                                     return ended(db, result, record);
                                   }});
  expectEveryAllocationIsSurvived({"ztbFindLastRecord", someRecords, [](Database& db) {
                                     void* record = nullptr;
                                     const int result =
                                         lib().c__ztbfindlastrecord(db, p(db), &record);
                                     return ended(db, result, record);
                                   }});
}

TEST(LookupFaults, findInTheUniverse) {
  expectEveryAllocationIsSurvived({"ztbFindFirstRecord", someRecords, [](Database& db) {
                                     void* record = nullptr;
                                     const int result =
                                         lib().c__ztbfindfirstrecord(db, symbolAt(db, -1), &record);
                                     return ended(db, result, record);
                                   }});
}

TEST(LookupFaults, findInASlice) {
  expectEveryAllocationIsSurvived({"ztbFindFirstRecordSlice", someRecords, [](Database& db) {
                                     void* record = nullptr;
                                     const int result = lib().c__ztbfindfirstrecordslice(
                                         db, p(db), anyKeys, &record);
                                     return ended(db, result, record);
                                   }});
  expectEveryAllocationIsSurvived({"ztbFindLastRecordSlice", someRecords, [](Database& db) {
                                     int status = -1;
                                     void* const record = lib().c__ztbfindlastrecordslicepy(
                                         db, p(db), anyKeys, &status);
                                     return ended(db, status, record);
                                   }});
}

TEST(LookupFaults, miss) {
  static const char* keys[] = {newKeys[1], newKeys[0]};
  expectEveryAllocationIsSurvived({"ztbFindRecord", oneLongRecord,
                                   [](Database& db) {
                                     void* record = nullptr;
                                     return lib().c__ztbfindrecord(db, p(db), keys, &record);
                                   },
                                   0});
  expectEveryAllocationIsSurvived({"ztbFindLastRecordSlice", oneLongRecord,
                                   [](Database& db) {
                                     void* record = nullptr;
                                     return lib().c__ztbfindlastrecordslice(db, p(db), keys,
                                                                            &record);
                                   },
                                   0});
}

class HandleFaults : public testing::Test {
 protected:
  // Keeps a handle on the only record of p beside the database.
  FaultCase onFirstRecord(const std::string& name, std::function<int(Database&)> operate,
                          int result) {
    return {name,
            [this](Database& db) {
              someRecords(db);
              lib().c__ztbfindfirstrecord(db, p(db), &first);
            },
            std::move(operate), result,
            [this](Database& db) {
              EXPECT_EQ(1.0, db.level(first)) << "the handle stands where it stood";
              lib().c__ztbfreesymboliterator(db, first);
            }};
  }

  void* first = nullptr;
};

TEST_F(HandleFaults, copy) {
  expectEveryAllocationIsSurvived(onFirstRecord(
      "ztbCopySymbolIterator",
      [this](Database& db) {
        void* copy = nullptr;
        const int result = lib().c__ztbcopysymboliterator(db, first, &copy);
        return ended(db, result, copy);
      },
      1));
}

TEST_F(HandleFaults, endOfAWalk) {
  expectEveryAllocationIsSurvived(onFirstRecord(
      "ztbRecordMoveNext", [this](Database& db) { return lib().c__ztbrecordmovenext(db, first); },
      0));
}

TEST_F(HandleFaults, newText) {
  expectEveryAllocationIsSurvived(
      {"ztbSetElemText",
       [this](Database& db) {
         someRecords(db);
         lib().c__ztbfindfirstrecord(db, i(db), &first);
       },
       [this](Database& db) {
         return lib().c__ztbsetelemtext(db, first, aTextThatFillsABlock.c_str());
       },
       1, [this](Database& db) { lib().c__ztbfreesymboliterator(db, first); }});
}

}  // namespace
}  // namespace ztbtest
