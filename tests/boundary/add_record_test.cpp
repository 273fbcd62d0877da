// Adding and merging records by labels: what becomes of the labels, the values of a new record, and
// the texts.
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/database.h"

namespace ztbtest {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

int token = 0;
void* const untouched = &token;

using Slots = std::array<double, 5>;

class AddRecord : public testing::Test {
 protected:
  int add(void* symbol, Keys keys) { return lib().c__ztbaddrecord(db, symbol, keys, &handle); }
  int merge(void* symbol, Keys keys) { return lib().c__ztbmergerecord(db, symbol, keys, &handle); }

  Slots slots(void* record) const {
    Slots result{-9, -9, -9, -9, -9};
    std::array<int, 20> keys{};
    EXPECT_EQ(1, lib().c__ztbgetrecordraw(db, record, 20, keys.data(), result.data()));
    return result;
  }

  Database db;
  void* handle = untouched;
};

TEST_F(AddRecord, makesARecordAndItsLabels) {
  void* const data = db.addParameter("p", 2);
  EXPECT_SUCCESS(db, add(data, {"a", "b"}));
  const Record record(db, handle);
  EXPECT_EQ((Labels{"a", "b"}), db.labels(record, 2));
  EXPECT_EQ(0.0, db.level(record));
  EXPECT_EQ(1, db.recordCount(data));
  EXPECT_EQ(1, db.findUel("a"));
  EXPECT_EQ(2, db.findUel("b"));
}

TEST_F(AddRecord, twiceFailsWithTheRecordAsGiven) {
  void* const data = db.addParameter("Cost", 2);
  db.put(data, {"a", "b"}, 5.0);
  EXPECT_FAILURE(db, "Record (\"a\",\"b\") exists already for symbol Cost", add(data, {"a", "b"}));
  EXPECT_EQ(nullptr, handle);
  EXPECT_FAILURE(db, "Record (\"A\",\"b \") exists already for symbol Cost",
                 add(data, {"A", "b "}));
  EXPECT_EQ(5.0, db.level(db.record(data, {"a", "b"})));
  EXPECT_EQ(1, db.recordCount(data));
}

TEST_F(AddRecord, ofAScalarTakesNoLabels) {
  void* const scalar = db.addParameter("s", 0);
  EXPECT_SUCCESS(db, lib().c__ztbaddrecord(db, scalar, nullptr, &handle));
  const Record record(db, handle);
  lib().c__ztbsetlevel(db, record, 2.5);
  EXPECT_FAILURE(db, "Record (\") exists already for symbol s",
                 lib().c__ztbaddrecord(db, scalar, nullptr, &handle));
  EXPECT_EQ(2.5, db.level(record));
}

TEST_F(AddRecord, refusesNullAndTheUniverseAndEmptiesTheHandle) {
  EXPECT_FAILURE(db, "No symbol handle specified", add(nullptr, {"a"}));
  EXPECT_EQ(nullptr, handle);
  handle = untouched;
  EXPECT_FAILURE(db, "Cannot add records to the Universe", add(db.universe(), {"a"}));
  EXPECT_EQ(nullptr, handle);
  EXPECT_EQ(0, db.info(ZTB_INFO_UEL_COUNT));
}

TEST_F(AddRecord, aRefusedLabelKeepsTheLabelsBeforeIt) {
  void* const data = db.addParameter("p", 3);
  EXPECT_FAILURE(db, "Label with single and double quote not allowed >'\"<",
                 add(data, {"one", "'\"", "three"}));
  EXPECT_EQ(nullptr, handle);
  EXPECT_EQ(1, db.findUel("one"));
  EXPECT_EQ(-1, db.findUel("three"));
  EXPECT_EQ(0, db.recordCount(data));
  EXPECT_SILENT_FAILURE(db, add(data, {"two", nullptr, "three"}));
  EXPECT_EQ(2, db.findUel("two"));
}

TEST_F(AddRecord, withoutLabelsFailsAndAddsNothing) {
  void* const data = db.addParameter("p");
  EXPECT_UNEXPECTED(db, "ztbAddRecord", lib().c__ztbaddrecord(db, data, nullptr, &handle));
  EXPECT_EQ(nullptr, handle);
  handle = untouched;
  EXPECT_UNEXPECTED(db, "ztbMergeRecord", lib().c__ztbmergerecord(db, data, nullptr, &handle));
  EXPECT_EQ(untouched, handle);
  EXPECT_EQ(0, db.recordCount(data));
}

TEST_F(AddRecord, worksBeforeBetweenAndBehindOtherRecords) {
  void* const data = db.addParameter("p");
  for (const char* label : {"a", "b", "c", "d", "e"}) {
    db.uel(label);
  }
  for (const char* label : {"c", "a", "e", "b", "d"}) {
    handle = nullptr;
    EXPECT_EQ(1, add(data, {label})) << label;
    const Record record(db, handle);
    EXPECT_EQ((Labels{label}), db.labels(record, 1));
  }
  EXPECT_EQ(0, add(data, {"c"}));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 0}, {{"b"}, 0}, {{"c"}, 0}, {{"d"}, 0}, {{"e"}, 0}}),
            db.rows(data));
}

TEST_F(AddRecord, blanksMakeAKeyOfTheReservedEntry) {
  void* const data = db.addParameter("p", 2);
  EXPECT_EQ(1, add(data, {" ", "a"}));
  const Record record(db, handle);
  EXPECT_EQ((Labels{" ", "a"}), db.labels(record, 2));
  EXPECT_EQ(1, db.info(ZTB_INFO_UEL_COUNT));
}

TEST_F(AddRecord, startsAVariableWithTheRowOfItsSubtype) {
  const std::array<Slots, 10> rows{{{0, 0, 0, 0, 1},
                                    {0, 0, 0, 1, 1},
                                    {0, 0, 0, 100, 1},
                                    {0, 0, 0, infinity, 1},
                                    {0, 0, -infinity, 0, 1},
                                    {0, 0, -infinity, infinity, 1},
                                    {0, 0, 0, infinity, 1},
                                    {0, 0, 0, infinity, 1},
                                    {0, 0, 1, infinity, 1},
                                    {0, 0, 1, 100, 1}}};
  for (int subtype = 0; subtype < 10; ++subtype) {
    void* const symbol = db.addVariable((numbered("v", subtype)).c_str(), 1, subtype);
    ASSERT_EQ(1, add(symbol, {"a"}));
    EXPECT_EQ(rows.at(static_cast<size_t>(subtype)), slots(Record(db, handle))) << subtype;
    ASSERT_EQ(1, merge(symbol, {"b"}));
    EXPECT_EQ(rows.at(static_cast<size_t>(subtype)), slots(Record(db, handle))) << subtype;
  }
}

TEST_F(AddRecord, startsAnEquationWithTheRowOfItsSubtype) {
  const std::array<Slots, 7> rows{{{0, 0, 0, 0, 1},
                                   {0, 0, 0, infinity, 1},
                                   {0, 0, -infinity, 0, 1},
                                   {0, 0, -infinity, infinity, 1},
                                   {0, 0, 0, 0, 1},
                                   {0, 0, 0, infinity, 1},
                                   {0, 0, 0, 0, 1}}};
  for (int subtype = 0; subtype < 7; ++subtype) {
    void* const symbol = db.addEquation((numbered("e", subtype)).c_str(), 1, subtype);
    ASSERT_EQ(1, add(symbol, {"a"}));
    EXPECT_EQ(rows.at(static_cast<size_t>(subtype)), slots(Record(db, handle))) << subtype;
    ASSERT_EQ(1, merge(symbol, {"b"}));
    EXPECT_EQ(rows.at(static_cast<size_t>(subtype)), slots(Record(db, handle))) << subtype;
  }
}

TEST_F(AddRecord, theSubtypeInForceAtTheTimeCounts) {
  void* const symbol = db.addVariable("v", 0, 0);
  ASSERT_EQ(1, lib().c__ztbsetuserinfo(db, symbol, 5));
  ASSERT_EQ(1, lib().c__ztbaddrecord(db, symbol, nullptr, &handle));
  EXPECT_EQ((Slots{0, 0, -infinity, infinity, 1}), slots(Record(db, handle)));
}

TEST_F(AddRecord, aSubtypeOutsideItsTableFailsTheOperationAndAddsNothing) {
  for (const int subtype : {10, 99, -1}) {
    const std::string name = numbered("v", subtype + 1);
    void* const symbol = db.addVariable(name.c_str(), 1, subtype);
    EXPECT_UNEXPECTED(db, "ztbAddRecord", add(symbol, {"a"}));
    EXPECT_EQ(nullptr, handle);
    EXPECT_UNEXPECTED(db, "ztbMergeRecord", merge(symbol, {"a"}));
    EXPECT_EQ(0, db.recordCount(symbol));
  }
  void* const equation = db.addEquation("e", 1, 7);
  EXPECT_UNEXPECTED(db, "ztbAddRecord", add(equation, {"a"}));
  EXPECT_UNEXPECTED(db, "ztbMergeRecord", merge(equation, {"a"}));
  EXPECT_EQ(0, db.recordCount(equation));
}

TEST_F(AddRecord, theUserInfoOfASetOrParameterIsNoSubtype) {
  EXPECT_EQ(1, add(db.add("i", 1, ZTB_SET, 99), {"a"}));
  const Record element(db, handle);
  EXPECT_EQ(1, add(db.add("p", 1, ZTB_PARAMETER, -99), {"a"}));
  const Record value(db, handle);
  EXPECT_EQ(0.0, db.level(value));
}

TEST_F(AddRecord, recordsNoWritesWhileRecordingIsOff) {
  void* const data = db.addParameter("p");
  db.put(data, {"a"}, 1.0);
  EXPECT_EQ(0, db.symbolInfo(data, ZTB_SYMBOL_INFO_WRITE_RECORDED));
}

TEST_F(AddRecord, mergeFindsWhatIsThereAndKeepsItsValues) {
  void* const data = db.addVariable("v", 1, 5);
  EXPECT_SUCCESS(db, merge(data, {"a"}));
  const Record first(db, handle);
  lib().c__ztbsetlower(db, first, -3.0);
  EXPECT_SUCCESS(db, merge(data, {"A"}));
  const Record second(db, handle);
  EXPECT_NE(static_cast<void*>(first), static_cast<void*>(second));
  EXPECT_EQ(1, lib().c__ztbsamerecord(db, first, second));
  EXPECT_EQ((Slots{0, 0, -3.0, infinity, 1}), slots(second));
  EXPECT_EQ(1, db.recordCount(data));
}

TEST_F(AddRecord, mergeOverwritesAScalarWithItsDefaults) {
  void* const scalar = db.addParameter("s", 0);
  db.put(scalar, {}, 4.0);
  EXPECT_EQ(1, lib().c__ztbmergerecord(db, scalar, nullptr, &handle));
  EXPECT_EQ(0.0, db.level(Record(db, handle)));
}

TEST_F(AddRecord, mergeRefusesNullAndTheUniverseAndLeavesTheHandleAlone) {
  EXPECT_FAILURE(db, "No symbol handle specified", merge(nullptr, {"a"}));
  EXPECT_FAILURE(db, "Cannot merge records to the Universe", merge(db.universe(), {"a"}));
  EXPECT_EQ(untouched, handle);
  EXPECT_EQ(0, db.info(ZTB_INFO_UEL_COUNT));
}

TEST_F(AddRecord, mergeWithARefusedLabelLeavesTheHandleAloneAndKeepsEarlierLabels) {
  void* const data = db.addParameter("p", 2);
  EXPECT_FAILURE(db, "Label with single and double quote not allowed >\"'<",
                 merge(data, {"one", "\"'"}));
  EXPECT_EQ(untouched, handle);
  EXPECT_EQ(1, db.findUel("one"));
  EXPECT_SILENT_FAILURE(db, merge(data, {"two", "\x1f"}));
  EXPECT_EQ(2, db.findUel("two"));
  EXPECT_EQ(0, db.recordCount(data));
}

TEST_F(AddRecord, mergeWithoutAPlaceForTheHandleOnlyStores) {
  void* const data = db.addParameter("p");
  Keys keys{"a"};
  EXPECT_SUCCESS(db, lib().c__ztbmergerecord(db, data, keys, nullptr));
  EXPECT_EQ(1, db.recordCount(data));
}

}  // namespace
}  // namespace ztbtest
