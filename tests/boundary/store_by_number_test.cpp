// Adding and overwriting records by label numbers: the tests of the numbers, what is kept and what
// is overwritten, and when a handle is made.
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

class StoreByNumber : public testing::Test {
 protected:
  StoreByNumber() {
    db.uel("a");
    db.uel("b");
    db.uel("c");
  }

  int store(void* symbol, const std::vector<int>& keys, bool check, bool haveValues,
            const Slots& values = {}) {
    return lib().c__ztbmergerecordint(db, symbol, keys.data(), check ? 1 : 0, 1, &handle,
                                      haveValues ? 1 : 0, values.data());
  }

  int storeText(void* symbol, const std::vector<int>& keys, const char* text) {
    return lib().c__ztbmergesetrecordint(db, symbol, keys.data(), 1, 1, &handle, text);
  }

  Slots slots(void* record) const {
    Slots result{-9, -9, -9, -9, -9};
    std::array<int, 20> keys{};
    EXPECT_EQ(1, lib().c__ztbgetrecordraw(db, record, 20, keys.data(), result.data()));
    return result;
  }

  Database db;
  void* handle = untouched;
};

TEST_F(StoreByNumber, addsAParameterRecordWithItsFirstValue) {
  void* const data = db.addParameter("p", 2);
  EXPECT_SUCCESS(db, store(data, {1, 3}, true, true, {7, 8, 9, 10, 11}));
  const Record record(db, handle);
  EXPECT_EQ((Labels{"a", "c"}), db.labels(record, 2));
  EXPECT_EQ((Slots{7, -9, -9, -9, -9}), slots(record));
}

TEST_F(StoreByNumber, addsAVariableRecordWithAllFiveValues) {
  EXPECT_EQ(1, store(db.addVariable("v"), {2}, true, true, {7, 8, 9, 10, 11}));
  EXPECT_EQ((Slots{7, 8, 9, 10, 11}), slots(Record(db, handle)));
  EXPECT_EQ(1, store(db.addEquation("e"), {2}, true, true, {1, 2, 3, 4, 5}));
  EXPECT_EQ((Slots{1, 2, 3, 4, 5}), slots(Record(db, handle)));
}

TEST_F(StoreByNumber, withValuesOverwritesARecordThatExists) {
  void* const data = db.addVariable("v");
  db.put(data, {"a"}, 1.0);
  EXPECT_SUCCESS(db, store(data, {1}, true, true, {7, 8, 9, 10, 11}));
  EXPECT_EQ((Slots{7, 8, 9, 10, 11}), slots(Record(db, handle)));
  EXPECT_EQ(1, db.recordCount(data));
}

TEST_F(StoreByNumber, withoutValuesKeepsARecordThatExists) {
  void* const data = db.addVariable("v");
  db.put(data, {"a"}, 1.0);
  EXPECT_SUCCESS(db, store(data, {1}, true, false, {7, 8, 9, 10, 11}));
  EXPECT_EQ((Slots{1, 0, 0, 0, 1}), slots(Record(db, handle)));
}

TEST_F(StoreByNumber, withoutValuesStartsANewRecordWithItsDefaults) {
  EXPECT_EQ(1, store(db.addVariable("v", 1, 4), {1}, true, false, {7, 7, 7, 7, 7}));
  EXPECT_EQ((Slots{0, 0, -infinity, 0, 1}), slots(Record(db, handle)));
  EXPECT_EQ(1, store(db.addEquation("e", 1, 3), {1}, true, false, {7, 7, 7, 7, 7}));
  EXPECT_EQ((Slots{0, 0, -infinity, infinity, 1}), slots(Record(db, handle)));
  EXPECT_EQ(1, store(db.addParameter("p"), {1}, true, false, {7, 7, 7, 7, 7}));
  EXPECT_EQ(0.0, db.level(Record(db, handle)));
  EXPECT_EQ(1, store(db.addSet("i"), {1}, true, false, {7, 7, 7, 7, 7}));
  EXPECT_EQ(0.0, db.level(Record(db, handle)));
}

TEST_F(StoreByNumber, withoutValuesReadsNone) {
  const int key = 1;
  EXPECT_EQ(1,
            lib().c__ztbmergerecordint(db, db.addParameter("p"), &key, 1, 1, &handle, 0, nullptr));
  EXPECT_EQ(0.0, db.level(Record(db, handle)));
}

TEST_F(StoreByNumber, promisedValuesThatAreNotThereFailTheOperation) {
  void* const data = db.addParameter("p");
  db.put(data, {"a"}, 4.0);
  for (const int key : {1, 2}) {
    EXPECT_UNEXPECTED(db, "ztbMergeRecordInt",
                      lib().c__ztbmergerecordint(db, data, &key, 1, 1, &handle, 1, nullptr));
    EXPECT_UNEXPECTED(db, "ztbMergeRecordInt",
                      lib().c__ztbaddrecordraw(db, data, &key, nullptr, "text"));
  }
  EXPECT_EQ(untouched, handle);
  EXPECT_EQ((std::vector<Row>{{{"a"}, 4.0}}), db.rows(data));
}

TEST_F(StoreByNumber, withoutNumbersFailsAndAddsNothing) {
  void* const data = db.addParameter("p");
  void* const set = db.addSet("i");
  const Slots values{};
  for (const int check : {0, 1}) {
    EXPECT_UNEXPECTED(
        db, "ztbMergeRecordInt",
        lib().c__ztbmergerecordint(db, data, nullptr, check, 0, nullptr, 1, values.data()));
    EXPECT_UNEXPECTED(db, "ztbMergeRecordInt",
                      lib().c__ztbmergesetrecordint(db, set, nullptr, check, 0, nullptr, "text"));
  }
  EXPECT_EQ(0, db.recordCount(data));
  EXPECT_EQ(0, db.recordCount(set));
}

TEST_F(StoreByNumber, anySubtypeOutsideItsTableFailsOnlyWithoutValues) {
  void* const symbol = db.addVariable("v", 1, 99);
  EXPECT_UNEXPECTED(db, "ztbMergeRecordInt", store(symbol, {1}, true, false));
  EXPECT_EQ(0, db.recordCount(symbol));
  EXPECT_EQ(1, store(symbol, {1}, true, true, {1, 2, 3, 4, 5}));
  EXPECT_EQ((Slots{1, 2, 3, 4, 5}), slots(Record(db, handle)));
}

TEST_F(StoreByNumber, aScalarReadsNoNumbers) {
  const Slots values{5, 0, 0, 0, 0};
  EXPECT_EQ(1, lib().c__ztbmergerecordint(db, db.addParameter("s", 0), nullptr, 1, 1, &handle, 1,
                                          values.data()));
  EXPECT_EQ(5.0, db.level(Record(db, handle)));
}

TEST_F(StoreByNumber, refusesNullAndTheUniverse) {
  EXPECT_FAILURE(db, "No symbol handle specified", store(nullptr, {1}, true, true));
  EXPECT_FAILURE(db, "Cannot add records to the Universe", store(db.universe(), {1}, true, true));
  EXPECT_FAILURE(db, "No symbol handle specified", storeText(nullptr, {1}, ""));
  EXPECT_FAILURE(db, "Cannot add records to the Universe", storeText(db.universe(), {1}, ""));
}

TEST_F(StoreByNumber, refusesASetWithValuesBeforeItLooksAtTheNumbers) {
  void* const set = db.addSet("i");
  EXPECT_FAILURE(db, "Cannot add set records with values. Use ztbMergeSetRecordInt",
                 store(set, {0}, true, true));
  EXPECT_EQ(0, db.recordCount(set));
}

TEST_F(StoreByNumber, refusesATextForAnythingButASet) {
  for (void* const symbol : {db.addParameter("p"), db.addVariable("v"), db.addEquation("e"),
                             db.addAlias("j", db.addSet("i"))}) {
    EXPECT_FAILURE(db, "ztbMergeSetRecordInt can only be used with set symbols",
                   storeText(symbol, {0}, ""));
  }
}

TEST_F(StoreByNumber, checkedNumbersMustBeKnown) {
  void* const data = db.addParameter("Cost", 2);
  EXPECT_FAILURE(db,
                 "Error when adding record to symbol Cost: UEL needs to be greater than zero but "
                 "is 0",
                 store(data, {1, 0}, true, true));
  EXPECT_FAILURE(db,
                 "Error when adding record to symbol Cost: UEL needs to be greater than zero but "
                 "is -7",
                 store(data, {-7, 99}, true, true));
  EXPECT_FAILURE(db,
                 "Error when adding record to symbol Cost: UEL 4 is unknown. Largest known UEL is "
                 "3",
                 store(data, {4, 0}, true, true));
  EXPECT_EQ(0, db.recordCount(data));
}

TEST_F(StoreByNumber, checkedNumbersOfASetMustBeKnownToo) {
  void* const set = db.addSet("i");
  EXPECT_FAILURE(db,
                 "Error when adding record to symbol i: UEL 9 is unknown. Largest known UEL is 3",
                 storeText(set, {9}, "text"));
  EXPECT_EQ(0, db.recordCount(set));
}

TEST_F(StoreByNumber, aFailureLeavesThePlaceForTheHandleAlone) {
  store(db.addParameter("p"), {0}, true, true);
  EXPECT_EQ(untouched, handle);
}

TEST_F(StoreByNumber, uncheckedNumbersAreTakenAsTheyAre) {
  void* const data = db.addParameter("p");
  EXPECT_SUCCESS(db, store(data, {0}, false, true, {1, 0, 0, 0, 0}));
  const Record zero(db, handle);
  EXPECT_EQ((Labels{" "}), db.labels(zero, 1));
  EXPECT_SUCCESS(db, store(data, {50}, false, true, {2, 0, 0, 0, 0}));
  const Record unknown(db, handle);
  EXPECT_EQ(2, db.recordCount(data));
  std::array<int, 1> key{};
  Slots values{};
  EXPECT_EQ(1, lib().c__ztbgetrecordraw(db, unknown, 1, key.data(), values.data()));
  EXPECT_EQ(50, key[0]);
  EXPECT_EQ(2.0, values[0]);
}

TEST_F(StoreByNumber, aNumberWithoutALabelCannotBeReadAsOne) {
  void* const data = db.addParameter("p");
  ASSERT_EQ(1, store(data, {50}, false, true));
  const Record record(db, handle);
  std::array<std::array<char, 256>, 1> text{};
  char* place = text[0].data();
  EXPECT_UNEXPECTED(db, "ztbGetKeys", lib().c__ztbgetkeys(db, record, 1, &place));
  EXPECT_UNEXPECTED(db, "ztbGetKey", lib().c__ztbgetkey(db, record, 0, place));
}

TEST_F(StoreByNumber, makesNoHandleUnlessItIsAskedFor) {
  void* const data = db.addParameter("p");
  const int key = 1;
  const Slots values{3, 0, 0, 0, 0};
  EXPECT_SUCCESS(db, lib().c__ztbmergerecordint(db, data, &key, 1, 0, &handle, 1, values.data()));
  EXPECT_EQ(untouched, handle);
  EXPECT_SUCCESS(db, lib().c__ztbmergerecordint(db, data, &key, 0, 0, nullptr, 1, values.data()));
  EXPECT_EQ(3.0, db.level(db.first(data)));
  void* const set = db.addSet("i");
  EXPECT_SUCCESS(db, lib().c__ztbmergesetrecordint(db, set, &key, 1, 0, nullptr, "text"));
  EXPECT_EQ("text", db.elementText(db.first(set)));
}

TEST_F(StoreByNumber, numbersInAnyOrderEndInOrder) {
  void* const data = db.addParameter("p", 2);
  for (const auto& keys : {std::vector{3, 1}, {1, 3}, {2, 2}, {1, 1}, {3, 3}, {2, 1}}) {
    ASSERT_EQ(1, store(data, keys, true, true, {keys[0] * 10.0 + keys[1], 0, 0, 0, 0}));
    const Record record(db, handle);
    EXPECT_EQ(keys[0] * 10.0 + keys[1], db.level(record));
  }
  std::vector<double> levels;
  for (const Row& row : db.rows(data)) {
    levels.push_back(row.level);
  }
  EXPECT_EQ((std::vector<double>{11, 13, 21, 22, 31, 33}), levels);
}

TEST_F(StoreByNumber, followsOnAfterTheRecordOfTheLastWriteWasDeleted) {
  void* const data = db.addParameter("p");
  ASSERT_EQ(1, store(data, {1}, true, true));
  const Record first(db, handle);
  ASSERT_EQ(1, store(data, {2}, true, true));
  const Record second(db, handle);
  ASSERT_EQ(1, lib().c__ztbdeleterecord(db, second));
  ASSERT_EQ(1, store(data, {3}, true, true, {3, 0, 0, 0, 0}));
  const Record third(db, handle);
  ASSERT_EQ(1, lib().c__ztbclearsymbol(db, data));
  ASSERT_EQ(1, store(data, {2}, true, true, {2, 0, 0, 0, 0}));
  const Record last(db, handle);
  EXPECT_EQ((std::vector<Row>{{{"b"}, 2.0}}), db.rows(data));
}

TEST_F(StoreByNumber, anAliasHoldsRecordsOfItsOwnThatItDoesNotCount) {
  void* const alias = db.addAlias("j", db.addSet("i"));
  EXPECT_SUCCESS(db, store(alias, {1}, true, true, {7, 8, 9, 10, 11}));
  const Record record(db, handle);
  EXPECT_EQ(7.0, db.level(record));
  double slot = 0;
  EXPECT_EQ(1, lib().c__ztbgetscale(db, record, &slot));
  EXPECT_EQ(11.0, slot);
  EXPECT_EQ(0, db.recordCount(alias));
}

TEST_F(StoreByNumber, aSetTextIsStoredAndOverwritten) {
  void* const set = db.addSet("i");
  EXPECT_SUCCESS(db, storeText(set, {2}, "first"));
  EXPECT_EQ("first", db.elementText(Record(db, handle)));
  EXPECT_SUCCESS(db, storeText(set, {2}, "second"));
  const Record record(db, handle);
  EXPECT_EQ("second", db.elementText(record));
  EXPECT_EQ(2.0, db.level(record));
  EXPECT_EQ(1, db.recordCount(set));
}

TEST_F(StoreByNumber, anEmptySetTextOverwritesAndANullOneKeeps) {
  void* const set = db.addSet("i");
  ASSERT_EQ(1, storeText(set, {2}, "text"));
  const Record record(db, handle);
  EXPECT_SUCCESS(db, storeText(set, {2}, nullptr));
  EXPECT_EQ("text", db.elementText(Record(db, handle)));
  EXPECT_SUCCESS(db, storeText(set, {2}, ""));
  EXPECT_EQ(0.0, db.level(Record(db, handle)));
  EXPECT_SUCCESS(db, storeText(set, {3}, nullptr));
  EXPECT_EQ(0.0, db.level(Record(db, handle)));
}

TEST_F(StoreByNumber, aSetTextSharesItsNumberWithEveryOtherWay) {
  void* const set = db.addSet("i");
  ASSERT_EQ(1, storeText(set, {1}, "shared"));
  const Record first(db, handle);
  ASSERT_EQ(1, storeText(set, {2}, "SHARED"));
  const Record second(db, handle);
  const Record third = db.put(set, {"c"});
  lib().c__ztbsetelemtext(db, third, "Shared");
  EXPECT_EQ(1.0, db.level(first));
  EXPECT_EQ(1.0, db.level(second));
  EXPECT_EQ(1.0, db.level(third));
  EXPECT_EQ("shared", db.elementText(third));
}

TEST_F(StoreByNumber, aSetTextOf255CharsPassesAndOneOf256IsRefused) {
  void* const set = db.addSet("i");
  EXPECT_SUCCESS(db, storeText(set, {1}, std::string(255, 't').c_str()));
  EXPECT_EQ(std::string(255, 't'), db.elementText(Record(db, handle)));
  EXPECT_FAILURE(db, "Explanatory text too long. Max length is 255",
                 storeText(set, {2}, std::string(256, 't').c_str()));
  EXPECT_EQ(1, db.recordCount(set));
}

class AddRaw : public StoreByNumber {
 protected:
  int addRaw(void* symbol, const std::vector<int>& keys, const Slots* values, const char* text) {
    return lib().c__ztbaddrecordraw(db, symbol, keys.data(),
                                    values == nullptr ? nullptr : values->data(), text);
  }
};

TEST_F(AddRaw, takesTheTextForASetAndTheValuesForEverythingElse) {
  const Slots values{7, 8, 9, 10, 11};
  void* const set = db.addSet("i");
  void* const data = db.addParameter("p");
  void* const variable = db.addVariable("v");
  EXPECT_SUCCESS(db, addRaw(set, {1}, nullptr, "text"));
  EXPECT_SUCCESS(db, addRaw(data, {1}, &values, nullptr));
  EXPECT_SUCCESS(db, addRaw(variable, {1}, &values, nullptr));
  EXPECT_EQ("text", db.elementText(db.first(set)));
  EXPECT_EQ(7.0, db.level(db.first(data)));
  EXPECT_EQ(values, slots(db.first(variable)));
}

TEST_F(AddRaw, overwritesARecordThatExistsWithoutAWord) {
  const Slots values{7, 8, 9, 10, 11};
  void* const set = db.addSet("i");
  void* const data = db.addParameter("p");
  db.put(data, {"a"}, 1.0);
  lib().c__ztbsetelemtext(db, db.put(set, {"a"}), "old");
  EXPECT_SUCCESS(db, addRaw(data, {1}, &values, nullptr));
  EXPECT_SUCCESS(db, addRaw(set, {1}, nullptr, "new"));
  EXPECT_EQ(7.0, db.level(db.first(data)));
  EXPECT_EQ("new", db.elementText(db.first(set)));
}

TEST_F(AddRaw, checksTheNumbers) {
  const Slots values{};
  EXPECT_FAILURE(db,
                 "Error when adding record to symbol p: UEL needs to be greater than zero but is 0",
                 addRaw(db.addParameter("p"), {0}, &values, nullptr));
  EXPECT_FAILURE(db,
                 "Error when adding record to symbol i: UEL 4 is unknown. Largest known UEL is 3",
                 addRaw(db.addSet("i"), {4}, nullptr, "text"));
}

TEST_F(AddRaw, refusesNullAndTheUniverse) {
  const Slots values{};
  EXPECT_FAILURE(db, "No symbol handle specified", addRaw(nullptr, {1}, &values, nullptr));
  EXPECT_FAILURE(db, "Cannot add records to the Universe",
                 addRaw(db.universe(), {1}, &values, nullptr));
}

}  // namespace
}  // namespace ztbtest
