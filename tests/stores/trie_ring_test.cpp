// The ring that deleting the only record under a trie's first label leaves, as a caller of the
// exported names meets it: every call that would run in it fails, and none hangs.
#include <array>
#include <filesystem>

#include "tests/stores/store_case.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {
namespace {

constexpr const char* ring = "the labels of the trie run in a ring";

std::string unexpected(const char* operation) {
  return std::string("Unexpected exception in ") + operation + ": " + ring;
}

class TrieRing : public testing::TestWithParam<int> {
 protected:
  TrieRing() {
    for (const char* label : {"a", "b", "c", "d"}) {
      db_.uel(label);
    }
    symbol_ = db_.addParameter("p", GetParam());
    for (const auto& [label, level] : {std::pair{"a", 1}, {"b", 2}, {"c", 3}}) {
      db_.put(symbol_, keys(label), level);
    }
    symbol_ = moveTo(db_, symbol_, ZTB_STORAGE_TRIE);
    selectDefault(db_, ZTB_STORAGE_TRIE);
    // Records 2 and 3 are left, and the place behind the last of them is the first of them.
    EXPECT_SUCCESS(db_, lib().c__ztbdeleterecord(db_, db_.record(symbol_, keys("a"))));
  }

  static Keys keys(const char* label) { return GetParam() == 1 ? Keys{label} : Keys{label, "a"}; }

  Database db_;
  void* symbol_;
};

TEST_P(TrieRing, aWalkFailsAtTheLastRecordAndStaysThere) {
  const Record record = db_.record(symbol_, keys("b"));
  EXPECT_EQ(1, lib().c__ztbrecordhasnext(db_, record));
  EXPECT_SUCCESS(db_, lib().c__ztbrecordmovenext(db_, record));
  EXPECT_FAILURE(db_, unexpected("ztbRecordHasNext"), lib().c__ztbrecordhasnext(db_, record));
  EXPECT_FAILURE(db_, unexpected("ztbRecordMoveNext"), lib().c__ztbrecordmovenext(db_, record));
  EXPECT_EQ(3, db_.level(record));
  EXPECT_EQ(2, db_.recordCount(symbol_));
}

TEST_P(TrieRing, theLastRecordIsNotReached) {
  void* none = this;
  EXPECT_FAILURE(db_, unexpected("ztbFindLastRecord"),
                 lib().c__ztbfindlastrecord(db_, symbol_, &none));
  EXPECT_EQ(nullptr, none);
  Keys any = GetParam() == 1 ? Keys{" "} : Keys{" ", " "};
  EXPECT_FAILURE(db_, unexpected("ztbFindLastRecordSlice"),
                 lib().c__ztbfindlastrecordslice(db_, symbol_, any, &none));
}

TEST_P(TrieRing, aLookupBehindItFails) {
  void* none = this;
  EXPECT_FAILURE(db_, unexpected("ztbFindRecord"),
                 lib().c__ztbfindrecord(db_, symbol_, keys("d"), &none));
  EXPECT_EQ(nullptr, none);
  EXPECT_EQ(3, db_.level(db_.record(symbol_, keys("c"))));
}

TEST_P(TrieRing, addingBehindItFailsAndAddsNothing) {
  void* none = this;
  EXPECT_FAILURE(db_, unexpected("ztbAddRecord"),
                 lib().c__ztbaddrecord(db_, symbol_, keys("d"), &none));
  const std::array<int, 2> key = {4, 1};
  const std::array<double, 5> values = {9};
  EXPECT_FAILURE(
      db_, unexpected("ztbMergeRecordInt"),
      lib().c__ztbmergerecordint(db_, symbol_, key.data(), 1, 0, nullptr, 1, values.data()));
  if (GetParam() == 2) {
    EXPECT_FAILURE(db_, unexpected("ztbMergeRecord"),
                   lib().c__ztbmergerecord(db_, symbol_, keys("d"), &none));
  }
  EXPECT_EQ(2, db_.recordCount(symbol_));
}

TEST_P(TrieRing, theSymbolDoesNotMoveAndIsNotLost) {
  for (const int store : {ZTB_STORAGE_TREE_MAP, ZTB_STORAGE_VECTOR}) {
    void* handle = symbol_;
    EXPECT_EQ(0, lib().c__ztbselectrecordstorage(db_, &handle, store));
    if (GetParam() == 1) {
      EXPECT_EQ(unexpected("ztbSelectRecordStorage"), db_.lastError());
    }
    EXPECT_EQ(symbol_, handle);
    EXPECT_EQ(symbol_, db_.find("p"));
  }
  EXPECT_EQ(2, db_.recordCount(symbol_));
}

TEST_P(TrieRing, itIsNotWrittenAndTheFileOfBeforeStays) {
  TempFolder folder;
  const std::string file = folder.file("data.rxf");
  Database before;
  ASSERT_EQ(1, lib().c__ztbwriterxf(before, file.c_str(), 1));
  const auto size = std::filesystem::file_size(file);
  EXPECT_EQ(0, lib().c__ztbwriterxf(db_, file.c_str(), 1));
  if (GetParam() == 1) {
    EXPECT_EQ(unexpected("ztbWriteRXF"), db_.lastError());
  }
  EXPECT_EQ(size, std::filesystem::file_size(file));
}

TEST_P(TrieRing, itIsNotCopied) {
  void* const copy = db_.addParameter("copy", GetParam());
  EXPECT_EQ(0, lib().c__ztbcopysymbol(db_, copy, symbol_));
}

TEST_P(TrieRing, itsRecordsAreDeletedAllTheSame) {
  EXPECT_SUCCESS(db_, lib().c__ztbdeleterecord(db_, db_.record(symbol_, keys("b"))));
  const Record last = db_.record(symbol_, keys("c"));
  EXPECT_SUCCESS(db_, lib().c__ztbdeleterecord(db_, last));
  EXPECT_EQ(0, db_.recordCount(symbol_));
  double value = 0;
  EXPECT_EQ(0, lib().c__ztbgetlevel(db_, last, &value));
  EXPECT_EQ(std::vector<Row>{}, db_.rows(symbol_));
}

TEST_P(TrieRing, clearingTheSymbolEndsIt) {
  EXPECT_SUCCESS(db_, lib().c__ztbclearsymbol(db_, symbol_));
  const std::array<int, 2> key = {4, 1};
  const std::array<double, 5> values = {9};
  EXPECT_SUCCESS(
      db_, lib().c__ztbmergerecordint(db_, symbol_, key.data(), 1, 0, nullptr, 1, values.data()));
  EXPECT_EQ(1U, db_.rows(symbol_).size());
  EXPECT_EQ(9, db_.level(db_.last(symbol_)));
}

TEST(TrieRingOfOneDimension, walkingAndDeletingEmptiesTheSymbol) {
  Database db;
  selectDefault(db, ZTB_STORAGE_TRIE);
  void* symbol = db.addParameter("p");
  for (const char* label : {"a", "b", "c"}) {
    db.put(symbol, {label}, 1);
  }
  const Record record = db.first(symbol);
  for (int left = 2; left >= 0; --left) {
    EXPECT_SUCCESS(db, lib().c__ztbdeleterecord(db, record));
    EXPECT_EQ(left, db.recordCount(symbol));
  }
  EXPECT_EQ(0, lib().c__ztbdeleterecord(db, record));
}

TEST(TrieRingOfOneDimension, deletingTheFirstRecordThatIsNoneFails) {
  Database db;
  selectDefault(db, ZTB_STORAGE_TRIE);
  void* symbol = db.addParameter("p");
  for (const char* label : {"a", "b", "c"}) {
    db.put(symbol, {label}, 1);
  }
  EXPECT_SUCCESS(db, lib().c__ztbdeleterecord(db, db.first(symbol)));
  EXPECT_FAILURE(db, unexpected("ztbDeleteRecord"), lib().c__ztbdeleterecord(db, db.first(symbol)));
  EXPECT_EQ(2, db.recordCount(symbol));
}

INSTANTIATE_TEST_SUITE_P(Dimensions, TrieRing, testing::Values(1, 2));

}  // namespace
}  // namespace ztbtest
