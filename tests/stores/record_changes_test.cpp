// Adding, merging, writing and deleting records on each store, with what the stores do differently.
#include <array>

#include "tests/stores/store_case.h"
#include "tests/support/stdout_capture.h"

namespace ztbtest {
namespace {

class StoreChanges : public StoreCase {
 protected:
  StoreChanges() {
    for (const char* label : {"a", "b", "c", "d", "e"}) {
      db_.uel(label);
    }
  }

  Record add(void* symbol, Keys keys) {
    void* record = nullptr;
    EXPECT_EQ(1, lib().c__ztbaddrecord(db_, symbol, keys, &record)) << db_.lastError();
    return {db_, record};
  }
  int mergeNumbers(void* symbol, std::vector<int> keys, double value) {
    const std::array<double, 5> values = {value, 0, 0, 0, 0};
    return lib().c__ztbmergerecordint(db_, symbol, keys.data(), 1, 0, nullptr, 1, values.data());
  }
  int erase(void* record) { return lib().c__ztbdeleterecord(db_, record); }
};

TEST_P(StoreChanges, addsRecordsAboveAllOthersOneByOne) {
  for (const int dim : {1, 2, 3}) {
    void* symbol = db_.addParameter(numbered("p", dim).c_str(), dim);
    std::vector<Row> rows;
    for (const char* last : {"a", "b", "c", "d"}) {
      Labels labels(static_cast<std::size_t>(dim), "a");
      labels.back() = last;
      add(symbol, Keys(labels));
      rows.push_back({labels, 0});
    }
    EXPECT_EQ(rows, db_.rows(symbol)) << dim;
  }
}

TEST_P(StoreChanges, doesNotAddARecordThatExists) {
  void* symbol = filled("p", 1, {{{"a"}, 1}, {{"b"}, 2}, {{"c"}, 3}});
  for (const char* present : {"a", "b", "c"}) {
    void* record = this;
    EXPECT_FAILURE(db_, std::string("Record (\"") + present + "\") exists already for symbol p",
                   lib().c__ztbaddrecord(db_, symbol, Keys{present}, &record));
    EXPECT_EQ(nullptr, record);
  }
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1}, {{"b"}, 2}, {{"c"}, 3}}), db_.rows(symbol));
}

TEST_P(StoreChanges, addsARecordBelowAllOthers) {
  void* symbol = filled("p", 1, {{{"b"}, 2}, {{"c"}, 3}});
  add(symbol, {"a"});
  EXPECT_EQ((std::vector<Row>{{{"a"}, 0}, {{"b"}, 2}, {{"c"}, 3}}), db_.rows(symbol));
}

TEST_P(StoreChanges, addsARecordBetweenOthersButForTheVector) {
  void* symbol = filled("p", 1, {{{"a"}, 1}, {{"c"}, 3}, {{"e"}, 5}});
  if (!on(ZTB_STORAGE_VECTOR)) {
    add(symbol, {"b"});
    EXPECT_EQ((std::vector<Row>{{{"a"}, 1}, {{"b"}, 0}, {{"c"}, 3}, {{"e"}, 5}}), db_.rows(symbol));
    return;
  }
  void* record = this;
  EXPECT_FAILURE(db_, "Record (\"b\") exists already for symbol p",
                 lib().c__ztbaddrecord(db_, symbol, Keys{"b"}, &record));
  EXPECT_EQ(nullptr, record);
}

TEST_P(StoreChanges, theFirstRecordOfAFreshTrieGivesAHandleOnNothing) {
  void* symbol = db_.addParameter("p", 2);
  const Record first = db_.put(symbol, {"a", "a"});
  double value = 0;
  if (on(ZTB_STORAGE_TRIE)) {
    EXPECT_UNEXPECTED(db_, "ztbSetLevel", lib().c__ztbsetlevel(db_, first, 4));
    EXPECT_UNEXPECTED(db_, "ztbGetLevel", lib().c__ztbgetlevel(db_, first, &value));
    EXPECT_UNEXPECTED(db_, "ztbDeleteRecord", erase(first));
    EXPECT_UNEXPECTED(db_, "ztbRecordMoveNext", lib().c__ztbrecordmovenext(db_, first));
  } else {
    EXPECT_SUCCESS(db_, lib().c__ztbsetlevel(db_, first, 4));
  }
  EXPECT_EQ((std::vector<Row>{{{"a", "a"}, on(ZTB_STORAGE_TRIE) ? 0.0 : 4.0}}), db_.rows(symbol));
  const Record second = db_.put(symbol, {"a", "b"}, 5);
  EXPECT_EQ(5, db_.level(second));
}

TEST_P(StoreChanges, mergesInKeyOrderOnEveryStoreWithoutAWarning) {
  StdoutCapture output;
  void* symbol = db_.addParameter("p", 1);
  std::vector<Row> rows;
  for (const char* label : {"a", "b", "c", "d"}) {
    db_.put(symbol, {label}, 7);
    rows.push_back({{label}, 7});
  }
  EXPECT_EQ(rows, db_.rows(symbol));
  EXPECT_EQ("", output.text());
}

TEST_P(StoreChanges, mergingTheLastMergedKeyAgainAddsASecondRowToTheVectorAndResetsItOnTheTrie) {
  void* symbol = db_.addParameter("p", 1);
  db_.put(symbol, {"a"}, 1);
  db_.put(symbol, {"b"}, 2);
  const Record again = db_.put(symbol, {"b"});
  switch (GetParam()) {
    case ZTB_STORAGE_TREE_MAP:
      EXPECT_EQ((std::vector<Row>{{{"a"}, 1}, {{"b"}, 2}}), db_.rows(symbol));
      break;
    case ZTB_STORAGE_VECTOR:
      EXPECT_EQ((std::vector<Row>{{{"a"}, 1}, {{"b"}, 0}, {{"b"}, 2}}), db_.rows(symbol));
      break;
    default:
      EXPECT_EQ((std::vector<Row>{{{"a"}, 1}, {{"b"}, 0}}), db_.rows(symbol));
  }
}

TEST_P(StoreChanges, mergingAKeyBetweenOthersFailsOnTheVectorAndKeepsTheRecords) {
  const std::vector<Row> rows = {{{"a"}, 1}, {{"c"}, 3}, {{"e"}, 5}};
  void* symbol = filled("p", 1, rows);
  db_.put(symbol, {"e"});
  if (on(ZTB_STORAGE_VECTOR)) {
    symbol = filled("q", 1, rows);
    void* record = nullptr;
    // The first merge has no hint and appends; the next one finds its way out of order.
    ASSERT_EQ(1, lib().c__ztbmergerecord(db_, symbol, Keys{"e"}, &record));
    const Record last(db_, record);
    const std::vector<Row> before = db_.rows(symbol);
    EXPECT_FAILURE(db_,
                   "Unexpected exception in ztbMergeRecord: keys must reach the vector store "
                   "sorted",
                   lib().c__ztbmergerecord(db_, symbol, Keys{"b"}, &record));
    EXPECT_EQ(before, db_.rows(symbol));
    return;
  }
  db_.put(symbol, {"b"}, 2);
  EXPECT_EQ(2, db_.rows(symbol)[1].level);
}

TEST_P(StoreChanges, mergesByNumberWithValuesInKeyOrder) {
  void* symbol = db_.addParameter("p", 1);
  EXPECT_SUCCESS(db_, mergeNumbers(symbol, {1}, 1));
  switch (GetParam()) {
    case ZTB_STORAGE_TREE_MAP:
      EXPECT_SUCCESS(db_, mergeNumbers(symbol, {2}, 2));
      EXPECT_EQ((std::vector<Row>{{{"a"}, 1}, {{"b"}, 2}}), db_.rows(symbol));
      break;
    case ZTB_STORAGE_VECTOR:
      EXPECT_SUCCESS(db_, mergeNumbers(symbol, {2}, 2));
      EXPECT_EQ((std::vector<Row>{{{"a"}, 2}}), db_.rows(symbol))
          << "the bound of a single row is that row";
      break;
    default:
      EXPECT_FAILURE(db_, "Unexpected exception in ztbMergeRecordInt: bad variant access",
                     mergeNumbers(symbol, {2}, 2));
      EXPECT_EQ((std::vector<Row>{{{"a"}, 1}}), db_.rows(symbol));
  }
}

TEST_P(StoreChanges, mergingAPresentKeyByNumberOverwritesIt) {
  void* symbol = filled("p", 1, {{{"a"}, 1}, {{"b"}, 2}, {{"c"}, 3}});
  EXPECT_SUCCESS(db_, mergeNumbers(symbol, {2}, 9));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1}, {{"b"}, 9}, {{"c"}, 3}}), db_.rows(symbol));
}

TEST_P(StoreChanges, mergingAnAbsentKeyByNumberOverwritesTheBoundsRecordButForTheMap) {
  void* symbol = filled("p", 1, {{{"a"}, 1}, {{"c"}, 3}, {{"e"}, 5}});
  EXPECT_SUCCESS(db_, mergeNumbers(symbol, {2}, 9));
  switch (GetParam()) {
    case ZTB_STORAGE_TREE_MAP:
      EXPECT_EQ((std::vector<Row>{{{"a"}, 1}, {{"b"}, 9}, {{"c"}, 3}, {{"e"}, 5}}),
                db_.rows(symbol));
      break;
    case ZTB_STORAGE_VECTOR:
      EXPECT_EQ((std::vector<Row>{{{"a"}, 9}, {{"c"}, 3}, {{"e"}, 5}}), db_.rows(symbol));
      break;
    default:
      EXPECT_EQ((std::vector<Row>{{{"a"}, 1}, {{"c"}, 9}, {{"e"}, 5}}), db_.rows(symbol));
  }
}

TEST_P(StoreChanges, writesAndReadsAllFiveSlots) {
  void* symbol = filled("v", 2, {{{"a", "b"}, 1}, {{"b", "c"}, 2}}, ZTB_VARIABLE);
  const Record record = db_.record(symbol, {"b", "c"});
  lib().c__ztbsetmarginal(db_, record, 3);
  lib().c__ztbsetlower(db_, record, 4);
  lib().c__ztbsetupper(db_, record, 5);
  lib().c__ztbsetscale(db_, record, 6);
  std::array<int, 2> keys = {};
  std::array<double, 5> values = {};
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db_, record, 2, keys.data(), values.data()));
  EXPECT_EQ((std::array<int, 2>{2, 3}), keys);
  EXPECT_EQ((std::array<double, 5>{2, 3, 4, 5, 6}), values);
}

TEST_P(StoreChanges, writesAndReadsTextsOfElements) {
  void* set = filled("s", 1, {{{"a"}, 0}, {{"b"}, 0}}, ZTB_SET);
  const Record record = db_.record(set, {"b"});
  EXPECT_SUCCESS(db_, lib().c__ztbsetelemtext(db_, record, "second"));
  EXPECT_EQ("second", db_.elementText(db_.last(set)));
  EXPECT_EQ("", db_.elementText(db_.first(set)));
}

TEST_P(StoreChanges, deletingMovesTheHandleOnAndOnTheVectorOneRowFurther) {
  void* symbol =
      filled("p", 2, {{{"a", "a"}, 1}, {{"a", "b"}, 2}, {{"a", "c"}, 3}, {{"b", "a"}, 4}});
  const Record record = db_.record(symbol, {"a", "b"});
  EXPECT_SUCCESS(db_, erase(record));
  EXPECT_EQ(on(ZTB_STORAGE_VECTOR) ? 4 : 3, db_.level(record));
  EXPECT_EQ((std::vector<Row>{{{"a", "a"}, 1}, {{"a", "c"}, 3}, {{"b", "a"}, 4}}),
            db_.rows(symbol));
  EXPECT_EQ(3, db_.recordCount(symbol));
}

TEST_P(StoreChanges, walkingAndDeletingEmptiesAllButEverySecondRowOfTheVector) {
  void* symbol =
      filled("p", 2,
             {{{"a", "a"}, 1}, {{"a", "b"}, 2}, {{"a", "c"}, 3}, {{"a", "d"}, 4}, {{"a", "e"}, 5}});
  const Record record = db_.first(symbol);
  int deleted = 0;
  while (erase(record) == 1) {
    ++deleted;
  }
  EXPECT_EQ("Unexpected exception in ztbDeleteRecord: the record handle stands on no record",
            db_.lastError());
  if (on(ZTB_STORAGE_VECTOR)) {
    EXPECT_EQ(3, deleted);
    EXPECT_EQ((std::vector<Row>{{{"a", "b"}, 2}, {{"a", "d"}, 4}}), db_.rows(symbol));
  } else {
    EXPECT_EQ(5, deleted);
    EXPECT_EQ(0, db_.recordCount(symbol));
  }
}

TEST_P(StoreChanges, theHandleOfADeletedLastRecordWalksBackToTheNewLastRecord) {
  void* symbol = filled("p", 1, {{{"a"}, 1}, {{"b"}, 2}, {{"c"}, 3}});
  const Record record = db_.last(symbol);
  ASSERT_EQ(1, erase(record));
  EXPECT_EQ(1, lib().c__ztbrecordhasprev(db_, record));
  EXPECT_SUCCESS(db_, lib().c__ztbrecordmoveprev(db_, record));
  EXPECT_EQ(2, db_.level(record));
}

TEST_P(StoreChanges, clearingEmptiesAndASortedLoadWorksAfterwards) {
  void* symbol = filled("p", 1, {{{"a"}, 1}, {{"b"}, 2}});
  EXPECT_SUCCESS(db_, lib().c__ztbclearsymbol(db_, symbol));
  EXPECT_EQ(0, db_.recordCount(symbol));
  add(symbol, {"c"});
  add(symbol, {"d"});
  EXPECT_EQ((std::vector<Row>{{{"c"}, 0}, {{"d"}, 0}}), db_.rows(symbol));
}

TEST_P(StoreChanges, aScalarIsAddedReadAndDeleted) {
  void* scalar = db_.addParameter("s", 0);
  const Record record = add(scalar, {});
  EXPECT_SUCCESS(db_, lib().c__ztbsetlevel(db_, record, 4));
  EXPECT_EQ(1, db_.recordCount(scalar));
  EXPECT_EQ(4, db_.level(db_.first(scalar)));
  EXPECT_EQ(4, db_.level(db_.last(scalar)));
  EXPECT_SUCCESS(db_, erase(record));
  EXPECT_EQ(0, db_.recordCount(scalar));
  EXPECT_EQ(std::vector<Row>{}, db_.rows(scalar));
}

TEST_P(StoreChanges, aScalarIsAddedOnceButForTheTrieWhereTheSecondResetsIt) {
  void* scalar = db_.addParameter("s", 0);
  lib().c__ztbsetlevel(db_, add(scalar, {}), 4);
  void* record = this;
  if (on(ZTB_STORAGE_TRIE)) {
    EXPECT_SUCCESS(db_, lib().c__ztbaddrecord(db_, scalar, Keys{}, &record));
    const Record second(db_, record);
    EXPECT_EQ(0, db_.level(second));
  } else {
    EXPECT_FAILURE(db_, "Record (\") exists already for symbol s",
                   lib().c__ztbaddrecord(db_, scalar, Keys{}, &record));
    EXPECT_EQ(4, db_.level(db_.first(scalar)));
  }
  EXPECT_EQ(1, db_.recordCount(scalar));
}

TEST_P(StoreChanges, aScalarIsNotFoundOnTheVector) {
  void* scalar = filled("s", 0, {{{}, 4}});
  void* record = this;
  if (on(ZTB_STORAGE_VECTOR)) {
    EXPECT_FAILURE(db_, "Cannot find record (\") in Symbol s",
                   lib().c__ztbfindrecord(db_, scalar, Keys{}, &record));
    EXPECT_EQ(nullptr, record);
  } else {
    EXPECT_EQ(4, db_.level(db_.record(scalar, {})));
  }
}

TEST_P(StoreChanges, clearingAScalarKeepsAZeroOnTheTrie) {
  void* scalar = filled("s", 0, {{{}, 4}});
  EXPECT_SUCCESS(db_, lib().c__ztbclearsymbol(db_, scalar));
  EXPECT_EQ(on(ZTB_STORAGE_TRIE) ? (std::vector<Row>{{{}, 0}}) : std::vector<Row>{},
            db_.rows(scalar));
}

TEST_P(StoreChanges, aScalarsSliceIsItsRecord) {
  void* scalar = filled("s", 0, {{{}, 4}});
  void* record = nullptr;
  EXPECT_SUCCESS(db_, lib().c__ztbfindfirstrecordslice(db_, scalar, Keys{}, &record));
  EXPECT_EQ(4, db_.level(Record(db_, record)));
  EXPECT_SUCCESS(db_, lib().c__ztbfindlastrecordslice(db_, scalar, Keys{}, &record));
  const Record last(db_, record);
  EXPECT_EQ(4, db_.level(last));
  EXPECT_EQ(0, lib().c__ztbrecordmovenext(db_, last));
  EXPECT_EQ(4, db_.level(last));
}

TEST_P(StoreChanges, anEmptySymbolHasNoFirstRecordOnAnyDimension) {
  for (const int dim : {0, 1, 2, 3}) {
    void* symbol = db_.addParameter(numbered("p", dim).c_str(), dim);
    void* record = this;
    EXPECT_FAILURE(db_, "Cannot find a record in Symbol " + numbered("p", dim),
                   lib().c__ztbfindfirstrecord(db_, symbol, &record));
    EXPECT_EQ(nullptr, record);
  }
}

INSTANTIATE_TEST_SUITE_P(Stores, StoreChanges, allStores(), storeCaseName);

}  // namespace
}  // namespace ztbtest
