// Reading the labels, numbers, values and text of the record under a handle.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "tests/support/database.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

class ReadRecord : public testing::Test {
 protected:
  ReadRecord()
      : data(db.addParameter("p", 2)),
        variable(db.addVariable("v", 2)),
        set(db.addSet("i")),
        value(db.put(data, {"a", "b"}, 1.5)),
        values(db.put(variable, {"b", "a"})) {}

  Database db;
  void* data;
  void* variable;
  void* set;
  Record value;
  Record values;
};

TEST_F(ReadRecord, everySlotHasItsOwnValue) {
  EXPECT_SUCCESS(db, lib().c__ztbsetlevel(db, values, 1.0));
  EXPECT_SUCCESS(db, lib().c__ztbsetmarginal(db, values, 2.0));
  EXPECT_SUCCESS(db, lib().c__ztbsetlower(db, values, 3.0));
  EXPECT_SUCCESS(db, lib().c__ztbsetupper(db, values, 4.0));
  EXPECT_SUCCESS(db, lib().c__ztbsetscale(db, values, 5.0));
  double slot = 0;
  EXPECT_SUCCESS(db, lib().c__ztbgetlevel(db, values, &slot));
  EXPECT_EQ(1.0, slot);
  EXPECT_SUCCESS(db, lib().c__ztbgetmarginal(db, values, &slot));
  EXPECT_EQ(2.0, slot);
  EXPECT_SUCCESS(db, lib().c__ztbgetlower(db, values, &slot));
  EXPECT_EQ(3.0, slot);
  EXPECT_SUCCESS(db, lib().c__ztbgetupper(db, values, &slot));
  EXPECT_EQ(4.0, slot);
  EXPECT_SUCCESS(db, lib().c__ztbgetscale(db, values, &slot));
  EXPECT_EQ(5.0, slot);
}

TEST_F(ReadRecord, valuesAreKeptBitForBit) {
  for (const double number : {-0.0, 0.1, 1e300, 5e-324, -1.7976931348623157e308,
                              std::numeric_limits<double>::infinity()}) {
    ASSERT_EQ(1, lib().c__ztbsetlevel(db, value, number));
    EXPECT_EQ(number, db.level(value));
    EXPECT_EQ(std::signbit(number), std::signbit(db.level(value)));
  }
}

TEST_F(ReadRecord, aChangeShowsThroughEveryHandleOnTheRecord) {
  const Record other = db.record(data, {"a", "b"});
  lib().c__ztbsetlevel(db, other, 9.0);
  EXPECT_EQ(9.0, db.level(value));
}

TEST_F(ReadRecord, theHigherSlotsOfAParameterCannotBeReadOrWritten) {
  double slot = 7.5;
  EXPECT_UNEXPECTED(db, "ztbGetMarginal", lib().c__ztbgetmarginal(db, value, &slot));
  EXPECT_UNEXPECTED(db, "ztbGetLower", lib().c__ztbgetlower(db, value, &slot));
  EXPECT_UNEXPECTED(db, "ztbGetUpper", lib().c__ztbgetupper(db, value, &slot));
  EXPECT_UNEXPECTED(db, "ztbGetScale", lib().c__ztbgetscale(db, value, &slot));
  EXPECT_UNEXPECTED(db, "ztbSetMarginal", lib().c__ztbsetmarginal(db, value, 1.0));
  EXPECT_UNEXPECTED(db, "ztbSetLower", lib().c__ztbsetlower(db, value, 1.0));
  EXPECT_UNEXPECTED(db, "ztbSetUpper", lib().c__ztbsetupper(db, value, 1.0));
  EXPECT_UNEXPECTED(db, "ztbSetScale", lib().c__ztbsetscale(db, value, 1.0));
  EXPECT_EQ(1.5, db.level(value));
}

TEST_F(ReadRecord, aUniverseHandleHasNoValues) {
  const Record label = db.first(db.universe());
  double slot = 7.5;
  EXPECT_UNEXPECTED(db, "ztbGetLevel", lib().c__ztbgetlevel(db, label, &slot));
  EXPECT_UNEXPECTED(db, "ztbGetMarginal", lib().c__ztbgetmarginal(db, label, &slot));
  EXPECT_UNEXPECTED(db, "ztbGetLower", lib().c__ztbgetlower(db, label, &slot));
  EXPECT_UNEXPECTED(db, "ztbGetUpper", lib().c__ztbgetupper(db, label, &slot));
  EXPECT_UNEXPECTED(db, "ztbGetScale", lib().c__ztbgetscale(db, label, &slot));
  EXPECT_UNEXPECTED(db, "ztbSetLevel", lib().c__ztbsetlevel(db, label, 1.0));
  EXPECT_UNEXPECTED(db, "ztbSetMarginal", lib().c__ztbsetmarginal(db, label, 1.0));
  EXPECT_UNEXPECTED(db, "ztbSetLower", lib().c__ztbsetlower(db, label, 1.0));
  EXPECT_UNEXPECTED(db, "ztbSetUpper", lib().c__ztbsetupper(db, label, 1.0));
  EXPECT_UNEXPECTED(db, "ztbSetScale", lib().c__ztbsetscale(db, label, 1.0));
}

TEST_F(ReadRecord, nullHandlesFailTheValueOperations) {
  double slot = 7.5;
  TextBuffer text;
  EXPECT_UNEXPECTED(db, "ztbGetLevel", lib().c__ztbgetlevel(db, nullptr, &slot));
  EXPECT_UNEXPECTED(db, "ztbGetScale", lib().c__ztbgetscale(db, nullptr, &slot));
  EXPECT_UNEXPECTED(db, "ztbSetLevel", lib().c__ztbsetlevel(db, nullptr, 1.0));
  EXPECT_UNEXPECTED(db, "ztbSetUpper", lib().c__ztbsetupper(db, nullptr, 1.0));
  EXPECT_UNEXPECTED(db, "ztbGetElemText", lib().c__ztbgetelemtext(db, nullptr, text));
  EXPECT_UNEXPECTED(db, "ztbSetElemText", lib().c__ztbsetelemtext(db, nullptr, "text"));
}

TEST_F(ReadRecord, keysAreTheStoredSpellings) {
  const Record again = db.put(data, {"A", "B "});
  TextBuffers keys;
  EXPECT_SUCCESS(db, lib().c__ztbgetkeys(db, again, 2, keys));
  EXPECT_EQ("a", keys[0].str());
  EXPECT_EQ("b", keys[1].str());
  EXPECT_TRUE(keys[2].untouched());
}

TEST_F(ReadRecord, keysGiveAsManyAsAreAskedFor) {
  TextBuffers keys;
  EXPECT_SUCCESS(db, lib().c__ztbgetkeys(db, value, 1, keys));
  EXPECT_EQ("a", keys[0].str());
  EXPECT_TRUE(keys[1].untouched());
  EXPECT_SUCCESS(db, lib().c__ztbgetkeys(db, value, 0, keys));
}

TEST_F(ReadRecord, keysBeyondTheDimensionFailTheOperation) {
  TextBuffers keys;
  EXPECT_UNEXPECTED(db, "ztbGetKeys", lib().c__ztbgetkeys(db, value, 3, keys));
  EXPECT_UNEXPECTED(db, "ztbGetKeys", lib().c__ztbgetkeys(db, value, 20, keys));
}

TEST_F(ReadRecord, keysOfAUniverseHandleIgnoreTheCount) {
  const Record label = db.last(db.universe());
  for (const int count : {0, 1, 20}) {
    TextBuffers keys;
    EXPECT_SUCCESS(db, lib().c__ztbgetkeys(db, label, count, keys));
    EXPECT_EQ("b", keys[0].str());
    EXPECT_TRUE(keys[1].untouched());
  }
}

TEST_F(ReadRecord, keysRefuseANullHandle) {
  TextBuffers keys;
  TextBuffer key;
  std::array<int, 20> numbers{};
  std::array<double, 5> slots{};
  EXPECT_FAILURE(db, "No symbol record handle specified",
                 lib().c__ztbgetkeys(db, nullptr, 1, keys));
  EXPECT_FAILURE(db, "No symbol record handle specified", lib().c__ztbgetkey(db, nullptr, 0, key));
  EXPECT_FAILURE(db, "No symbol record handle specified",
                 lib().c__ztbgetrecordraw(db, nullptr, 1, numbers.data(), slots.data()));
}

TEST_F(ReadRecord, oneKeyCountsFromZero) {
  TextBuffer key;
  EXPECT_SUCCESS(db, lib().c__ztbgetkey(db, value, 0, key));
  EXPECT_EQ("a", key.str());
  EXPECT_SUCCESS(db, lib().c__ztbgetkey(db, value, 1, key));
  EXPECT_EQ("b", key.str());
}

TEST_F(ReadRecord, anIndexAtOrBeyondTheDimensionIsTooLarge) {
  TextBuffer key;
  EXPECT_FAILURE(db, "Index too large", lib().c__ztbgetkey(db, value, 2, key));
  EXPECT_FAILURE(db, "Index too large", lib().c__ztbgetkey(db, value, 2147483647, key));
  EXPECT_TRUE(key.untouched());
}

TEST_F(ReadRecord, everyIndexOfAScalarIsTooLarge) {
  const Record scalar = db.put(db.addParameter("s", 0), {});
  TextBuffer key;
  EXPECT_FAILURE(db, "Index too large", lib().c__ztbgetkey(db, scalar, 0, key));
  TextBuffers keys;
  EXPECT_SUCCESS(db, lib().c__ztbgetkeys(db, scalar, 0, keys));
}

TEST_F(ReadRecord, aNegativeIndexFailsTheOperation) {
  TextBuffer key;
  EXPECT_UNEXPECTED(db, "ztbGetKey", lib().c__ztbgetkey(db, value, -1, key));
}

TEST_F(ReadRecord, anyIndexOfAUniverseHandleGivesItsLabel) {
  const Record label = db.first(db.universe());
  for (const int index : {0, 1, 99, -5}) {
    TextBuffer key;
    EXPECT_SUCCESS(db, lib().c__ztbgetkey(db, label, index, key));
    EXPECT_EQ("a", key.str());
  }
}

TEST_F(ReadRecord, rawOfAParameterIsItsNumbersAndOneValue) {
  std::array<int, 3> numbers{-1, -1, -1};
  std::array<double, 2> slots{-1.0, -1.0};
  EXPECT_SUCCESS(db, lib().c__ztbgetrecordraw(db, value, 99, numbers.data(), slots.data()));
  EXPECT_EQ((std::array<int, 3>{1, 2, -1}), numbers);
  EXPECT_EQ((std::array<double, 2>{1.5, -1.0}), slots);
}

TEST_F(ReadRecord, rawOfAVariableAndAnEquationHasFiveValues) {
  lib().c__ztbsetmarginal(db, values, 2.0);
  std::array<int, 2> numbers{};
  std::array<double, 6> slots{-1, -1, -1, -1, -1, -1};
  EXPECT_SUCCESS(db, lib().c__ztbgetrecordraw(db, values, 0, numbers.data(), slots.data()));
  EXPECT_EQ((std::array<int, 2>{2, 1}), numbers);
  EXPECT_EQ((std::array<double, 6>{0, 2, 0, 0, 1, -1}), slots);

  const Record equation = db.put(db.addEquation("e", 0), {}, 3.0);
  slots.fill(-1);
  EXPECT_SUCCESS(db, lib().c__ztbgetrecordraw(db, equation, 0, numbers.data(), slots.data()));
  EXPECT_EQ((std::array<double, 6>{3, 0, 0, 0, 1, -1}), slots);
}

TEST_F(ReadRecord, rawOfASetIsItsTextNumber) {
  const Record element = db.put(set, {"b"});
  lib().c__ztbsetelemtext(db, element, "first text");
  int number = -1;
  double slot = -1;
  EXPECT_SUCCESS(db, lib().c__ztbgetrecordraw(db, element, 1, &number, &slot));
  EXPECT_EQ(2, number);
  EXPECT_EQ(1.0, slot);
}

TEST_F(ReadRecord, rawOfAUniverseHandleIsItsNumberWithoutValues) {
  const Record label = db.last(db.universe());
  int number = -1;
  double slot = 123.0;
  EXPECT_SUCCESS(db, lib().c__ztbgetrecordraw(db, label, 1, &number, &slot));
  EXPECT_EQ(2, number);
  EXPECT_EQ(123.0, slot);
}

class ElementText : public testing::Test {
 protected:
  ElementText() : set(db.addSet("i")), element(db.put(set, {"a"})) {}

  Database db;
  void* set;
  Record element;
};

TEST_F(ElementText, isEmptyOnANewRecord) {
  TextBuffer text;
  EXPECT_SUCCESS(db, lib().c__ztbgetelemtext(db, element, text));
  EXPECT_EQ("", text.str());
}

TEST_F(ElementText, isReadBackAsWritten) {
  EXPECT_SUCCESS(db, lib().c__ztbsetelemtext(db, element, "wheat flour, enriched"));
  EXPECT_EQ("wheat flour, enriched", db.elementText(element));
}

TEST_F(ElementText, holds255CharsAndNot256) {
  EXPECT_EQ(1, lib().c__ztbsetelemtext(db, element, std::string(255, 't').c_str()));
  EXPECT_EQ(std::string(255, 't'), db.elementText(element));
  EXPECT_FAILURE(db, "Explanatory text too long. Max length is 255",
                 lib().c__ztbsetelemtext(db, element, std::string(256, 't').c_str()));
  EXPECT_EQ(std::string(255, 't'), db.elementText(element));
}

TEST_F(ElementText, theSameTextHasTheSameNumberInEveryRecord) {
  const Record other = db.put(set, {"b"});
  lib().c__ztbsetelemtext(db, element, "one");
  lib().c__ztbsetelemtext(db, other, "two");
  EXPECT_EQ(1.0, db.level(element));
  EXPECT_EQ(2.0, db.level(other));
  lib().c__ztbsetelemtext(db, other, "one");
  EXPECT_EQ(1.0, db.level(other));
  const Record third = db.put(db.addSet("j"), {"a"});
  lib().c__ztbsetelemtext(db, third, "three");
  EXPECT_EQ(3.0, db.level(third)) << "an unused text keeps its number";
}

TEST_F(ElementText, foldsCaseAndKeepsTheFirstSpelling) {
  const Record other = db.put(set, {"b"});
  lib().c__ztbsetelemtext(db, element, "Alpha");
  lib().c__ztbsetelemtext(db, other, "ALPHA");
  EXPECT_EQ("Alpha", db.elementText(other));
  EXPECT_EQ(1.0, db.level(other));
}

TEST_F(ElementText, anEmptyTextGivesNumberZero) {
  lib().c__ztbsetelemtext(db, element, "text");
  EXPECT_SUCCESS(db, lib().c__ztbsetelemtext(db, element, ""));
  EXPECT_EQ(0.0, db.level(element));
  EXPECT_EQ("", db.elementText(element));
}

TEST_F(ElementText, aNullTextCountsAsEmpty) {
  lib().c__ztbsetelemtext(db, element, "text");
  EXPECT_SUCCESS(db, lib().c__ztbsetelemtext(db, element, nullptr));
  EXPECT_EQ(0.0, db.level(element));
}

TEST_F(ElementText, blanksAreATextOfTheirOwn) {
  lib().c__ztbsetelemtext(db, element, " ");
  EXPECT_EQ(1.0, db.level(element));
  EXPECT_EQ(" ", db.elementText(element));
}

TEST_F(ElementText, isEmptyForNumbersThatNameNoText) {
  lib().c__ztbsetelemtext(db, element, "only");
  for (const double number : {0.0, 0.9, 2.0, 1e9, 1e300, -1.0, -1e300, std::nan(""),
                              std::numeric_limits<double>::infinity()}) {
    lib().c__ztbsetlevel(db, element, number);
    TextBuffer text;
    EXPECT_SUCCESS(db, lib().c__ztbgetelemtext(db, element, text));
    EXPECT_EQ("", text.str()) << number;
  }
}

TEST_F(ElementText, aLevelIsTruncatedToATextNumber) {
  lib().c__ztbsetelemtext(db, element, "only");
  lib().c__ztbsetlevel(db, element, 1.9);
  EXPECT_EQ("only", db.elementText(element));
}

TEST_F(ElementText, ofAParameterIsTheTextOfItsValue) {
  lib().c__ztbsetelemtext(db, element, "only");
  const Record value = db.put(db.addParameter("p"), {"a"}, 1.0);
  EXPECT_EQ("only", db.elementText(value));
  EXPECT_SUCCESS(db, lib().c__ztbsetelemtext(db, value, "second"));
  EXPECT_EQ(2.0, db.level(value));
}

TEST_F(ElementText, refusesTheUniverse) {
  const Record label = db.first(db.universe());
  TextBuffer text;
  EXPECT_FAILURE(db, "Cannot get explanatory text for records of the Universe",
                 lib().c__ztbgetelemtext(db, label, text));
  EXPECT_FAILURE(db, "Cannot set explanatory text for records of the Universe",
                 lib().c__ztbsetelemtext(db, label, std::string(300, 't').c_str()));
}

TEST_F(ElementText, tellsThousandsOfTextsApart) {
  for (int i = 1; i <= 2000; ++i) {
    const std::string text = numbered("text ", i);
    const Record record = db.put(set, {(numbered("u", i)).c_str()});
    ASSERT_EQ(1, lib().c__ztbsetelemtext(db, record, text.c_str()));
    ASSERT_EQ(i, db.level(record));
  }
  EXPECT_EQ("text 777", db.elementText(db.record(set, {"u777"})));
}

}  // namespace
}  // namespace ztbtest
