// The five special values: the library's own, the caller's spelling of them, and where one is
// turned into the other. Values are compared by their bits.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <vector>

#include "tests/support/database.h"

namespace ztbtest {
namespace {

using Five = std::array<double, 5>;

constexpr double infinity = std::numeric_limits<double>::infinity();

double fromBits(std::uint64_t bits) {
  return std::bit_cast<double>(bits);
}

const Five internal = {fromBits(0x7E37E43C8800759C), fromBits(0x7FF8000000000000), infinity,
                       -infinity, fromBits(1)};

std::vector<std::uint64_t> bits(const Five& values) {
  std::vector<std::uint64_t> result;
  for (const double value : values) {
    result.push_back(std::bit_cast<std::uint64_t>(value));
  }
  return result;
}

std::uint64_t bits(double value) {
  return std::bit_cast<std::uint64_t>(value);
}

class SpecialValues : public testing::Test {
 protected:
  SpecialValues()
      : data(db.addParameter("p")),
        variable(db.addVariable("v")),
        value(db.put(data, {"a"})),
        values(db.put(variable, {"a"})) {}

  int set(const Five& spelling) {
    int mode = -1;
    EXPECT_EQ(1, lib().c__ztbsetspecialvaluesx(db, spelling.data(), &mode));
    return mode;
  }

  // Stores a value in the spelling now in force.
  void store(double number) { ASSERT_EQ(1, lib().c__ztbsetlevel(db, value, number)); }

  Five own() const {
    Five result{};
    EXPECT_EQ(1, lib().c__ztbgetspecialvalues(db, result.data()));
    return result;
  }

  Five callers() const {
    Five result{};
    EXPECT_EQ(1, lib().c__ztbgetuserspecialvalues(db, result.data()));
    return result;
  }

  Database db;
  void* data;
  void* variable;
  Record value;
  Record values;
};

TEST_F(SpecialValues, ofANewDatabaseAreTheLibrarysOwn) {
  EXPECT_EQ(bits(internal), bits(own()));
  EXPECT_EQ(bits(internal), bits(callers()));
  EXPECT_EQ(1e300, internal[0]);
}

TEST_F(SpecialValues, settingChangesTheCallersAndNeverTheOwn) {
  const Five spelling{1, 2, 3, 4, 5};
  set(spelling);
  EXPECT_EQ(bits(internal), bits(own()));
  EXPECT_EQ(bits(spelling), bits(callers()));
}

TEST_F(SpecialValues, modeIsZeroForTheOwnValues) {
  EXPECT_EQ(0, set(internal));
}

TEST_F(SpecialValues, modeIsOneWhenOnlyEpsilonDiffers) {
  Five spelling = internal;
  spelling[4] = 0.0;
  EXPECT_EQ(1, set(spelling));
}

TEST_F(SpecialValues, modeIsTwoWhenAnyOfTheFirstFourDiffers) {
  for (size_t i = 0; i < 4; ++i) {
    Five spelling = internal;
    spelling.at(i) = 7.0;
    EXPECT_EQ(2, set(spelling)) << i;
    spelling[4] = 0.0;
    EXPECT_EQ(2, set(spelling)) << i;
  }
}

TEST_F(SpecialValues, modeComparesBits) {
  Five spelling = internal;
  spelling[1] = fromBits(0x7FF8000000000001);
  EXPECT_EQ(2, set(spelling)) << "another NaN is another value";
}

TEST_F(SpecialValues, setLeavesTheTextAloneAndReturnsOneAlsoWithoutMode) {
  const Five spelling{1, 2, 3, 4, 5};
  EXPECT_SUCCESS(db, lib().c__ztbsetspecialvaluesx(db, spelling.data(), nullptr));
  EXPECT_SUCCESS(db, lib().c__ztbsetspecialvalues(db, internal.data()));
  EXPECT_EQ(bits(internal), bits(callers()));
}

TEST_F(SpecialValues, withTheOwnValuesStoredBitsComeBackUnchanged) {
  set(internal);
  for (const double number : internal) {
    store(number);
    EXPECT_EQ(bits(number), bits(db.level(value)));
  }
}

TEST_F(SpecialValues, inModeTwoEachIsReadInTheCallersSpelling) {
  for (size_t i = 0; i < 5; ++i) {
    set(internal);
    store(internal.at(i));
    set({11, 12, 13, 14, 15});
    EXPECT_EQ(11.0 + static_cast<double>(i), db.level(value));
  }
}

TEST_F(SpecialValues, inModeTwoEachIsStoredInTheInternalCoding) {
  for (size_t i = 0; i < 5; ++i) {
    set({11, 12, 13, 14, 15});
    store(11.0 + static_cast<double>(i));
    set(internal);
    EXPECT_EQ(bits(internal.at(i)), bits(db.level(value)));
  }
}

TEST_F(SpecialValues, inModeTwoOtherNumbersPassAsTheyAre) {
  set({11, 12, 13, 14, 15});
  for (const double number : {0.0, -0.0, 10.0, 1e299, fromBits(0x7FF8000000000001)}) {
    store(number);
    EXPECT_EQ(bits(number), bits(db.level(value)));
  }
}

TEST_F(SpecialValues, anInternalValueGivenByTheCallerIsReadInTheCallersSpelling) {
  set({11, 12, 13, 14, 15});
  store(infinity);
  EXPECT_EQ(13.0, db.level(value));
}

TEST_F(SpecialValues, aPlainNumberThatTheCallerNamedUndefinedIsStoredAsUndefined) {
  Five spelling = internal;
  spelling[0] = 1.0;
  set(spelling);
  store(1.0);
  EXPECT_EQ(1.0, db.level(value));
  set(internal);
  EXPECT_EQ(1e300, db.level(value));
}

TEST_F(SpecialValues, undefinedNamedSevenReadsSevenAndTheInternalValueWithoutMapping) {
  store(internal[0]);
  Five spelling = internal;
  spelling[0] = 7.0;
  set(spelling);
  EXPECT_EQ(7.0, db.level(value));
  set(internal);
  EXPECT_EQ(internal[0], db.level(value));
}

TEST_F(SpecialValues, inModeOneOnlyEpsilonIsMapped) {
  store(internal[4]);
  Five spelling = internal;
  spelling[4] = 0.0;
  ASSERT_EQ(1, set(spelling));
  EXPECT_EQ(bits(0.0), bits(db.level(value)));
  store(internal[0]);
  EXPECT_EQ(1e300, db.level(value));
  store(0.0);
  set(internal);
  EXPECT_EQ(bits(internal[4]), bits(db.level(value)));
}

TEST_F(SpecialValues, negativeZeroIsNotTheZeroThatNamesEpsilon) {
  Five spelling = internal;
  spelling[4] = 0.0;
  ASSERT_EQ(1, set(spelling));
  store(-0.0);
  EXPECT_EQ(bits(-0.0), bits(db.level(value)));
  set(internal);
  EXPECT_EQ(bits(-0.0), bits(db.level(value)));
}

TEST_F(SpecialValues, anotherNaNIsNotNotAvailable) {
  const double other = fromBits(0x7FF8000000000001);
  const double negative = fromBits(0xFFF8000000000000);
  store(other);
  set({11, 12, 13, 14, 15});
  EXPECT_EQ(bits(other), bits(db.level(value)));
  store(negative);
  EXPECT_EQ(bits(negative), bits(db.level(value)));
}

TEST_F(SpecialValues, theLowerCodeWinsWhenTwoAreSpelledAlike) {
  set({5, 6, 6, 5, 6});
  store(6.0);
  set(internal);
  EXPECT_EQ(bits(internal[1]), bits(db.level(value)));
  set({5, 6, 6, 5, 6});
  store(5.0);
  set(internal);
  EXPECT_EQ(bits(internal[0]), bits(db.level(value)));
}

TEST_F(SpecialValues, areMappedInEverySlotBothWays) {
  const Five spelling{11, 12, 13, 14, 15};
  set(spelling);
  lib().c__ztbsetlevel(db, values, 11);
  lib().c__ztbsetmarginal(db, values, 12);
  lib().c__ztbsetlower(db, values, 14);
  lib().c__ztbsetupper(db, values, 13);
  lib().c__ztbsetscale(db, values, 15);
  Five read{};
  const auto readAll = [&] {
    lib().c__ztbgetlevel(db, values, &read[0]);
    lib().c__ztbgetmarginal(db, values, &read[1]);
    lib().c__ztbgetlower(db, values, &read[2]);
    lib().c__ztbgetupper(db, values, &read[3]);
    lib().c__ztbgetscale(db, values, &read[4]);
  };
  readAll();
  EXPECT_EQ((Five{11, 12, 14, 13, 15}), read);
  set(internal);
  readAll();
  EXPECT_EQ(bits(Five{internal[0], internal[1], -infinity, infinity, internal[4]}), bits(read));
}

TEST_F(SpecialValues, rawReadingMapsFiveSlotsOfAVariableAndOneOfAParameter) {
  lib().c__ztbsetmarginal(db, values, internal[1]);
  lib().c__ztbsetscale(db, values, internal[4]);
  store(internal[3]);
  set({11, 12, 13, 14, 15});
  int key = 0;
  Five read{};
  EXPECT_EQ(1, lib().c__ztbgetrecordraw(db, values, 1, &key, read.data()));
  EXPECT_EQ((Five{0, 12, 0, 0, 15}), read);
  read.fill(infinity);
  EXPECT_EQ(1, lib().c__ztbgetrecordraw(db, value, 1, &key, read.data()));
  EXPECT_EQ((Five{14, infinity, infinity, infinity, infinity}), read);
}

TEST_F(SpecialValues, storingByNumberMapsFiveSlotsOfAVariableAndOneOfAParameter) {
  const Five spelling{11, 12, 13, 14, 15};
  set(spelling);
  const int key = 1;
  ASSERT_EQ(1, lib().c__ztbmergerecordint(db, variable, &key, 1, 0, nullptr, 1, spelling.data()));
  ASSERT_EQ(1, lib().c__ztbmergerecordint(db, data, &key, 1, 0, nullptr, 1, spelling.data()));
  set(internal);
  int readKey = 0;
  Five read{};
  lib().c__ztbgetrecordraw(db, values, 1, &readKey, read.data());
  EXPECT_EQ(bits(internal), bits(read));
  EXPECT_EQ(bits(internal[0]), bits(db.level(value)));
}

TEST_F(SpecialValues, storingByNumberOnAnAliasMapsNothing) {
  void* const alias = db.addAlias("j", db.addSet("i"));
  const Five spelling{11, 12, 13, 14, 15};
  set(spelling);
  const int key = 1;
  void* handle = nullptr;
  ASSERT_EQ(1, lib().c__ztbmergerecordint(db, alias, &key, 1, 1, &handle, 1, spelling.data()));
  const Record record(db, handle);
  set(internal);
  EXPECT_EQ(11.0, db.level(record));
}

TEST_F(SpecialValues, aTextNumberIsNotMappedOnTheWayIn) {
  set({1, 2, 3, 4, 5});
  void* const symbol = db.addSet("i");
  const Record element = db.put(symbol, {"a"});
  ASSERT_EQ(1, lib().c__ztbsetelemtext(db, element, "first"));
  EXPECT_EQ("first", db.elementText(element));
  const int key = 1;
  ASSERT_EQ(1, lib().c__ztbmergesetrecordint(db, symbol, &key, 1, 0, nullptr, "second"));
  EXPECT_EQ("second", db.elementText(element));
  EXPECT_EQ(2.0, db.level(element));
}

TEST_F(SpecialValues, defaultsOfANewRecordAreInternalAndReadInTheCallersSpelling) {
  set({11, 12, 13, 14, 15});
  const Record bounds = db.put(db.addVariable("w", 1, 5), {"a"});
  double lower = 0;
  double upper = 0;
  lib().c__ztbgetlower(db, bounds, &lower);
  lib().c__ztbgetupper(db, bounds, &upper);
  EXPECT_EQ(14.0, lower);
  EXPECT_EQ(13.0, upper);
}

TEST_F(SpecialValues, belongToTheirDatabase) {
  set({11, 12, 13, 14, 15});
  const Database other;
  Five read{};
  lib().c__ztbgetuserspecialvalues(other, read.data());
  EXPECT_EQ(bits(internal), bits(read));
}

}  // namespace
}  // namespace ztbtest
