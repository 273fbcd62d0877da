// Record handles: what they show, and how they walk all records of a symbol.
#include "store/symbol_iterator.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <stdexcept>
#include <string>

#include "tests/unit/symbols.h"

namespace ztb {
namespace {

using unittest::Keys;
using unittest::keysOf;
using unittest::parameterOver;
using unittest::parameterWith;
using unittest::symbolOf;
using Five = std::array<double, 5>;

TEST(RecordHandle, isMadeWithoutMessageMaskOrLabel) {
  const auto symbol = parameterOver(1, {{1}});
  const auto record = symbol->firstRecord();
  EXPECT_EQ(IterationMode::symbol, record->mode());
  EXPECT_EQ(symbol.get(), record->symbol());
  EXPECT_EQ(-1, record->universePosition());
  EXPECT_FALSE(record->onUniverse());
  EXPECT_STREQ("", record->message());
  EXPECT_EQ(1, record->dimension());
}

TEST(RecordHandle, valuesAreTheRecordsOwn) {
  const auto symbol = parameterWith(1, {{{1}, 4.0}});
  *symbol->firstRecord()->valuesToWrite() = 8.0;
  EXPECT_EQ(8.0, *symbol->findRecord(Keys{1}.data())->values());
}

TEST(RecordHandle, readingWhereNoRecordStandsThrows) {
  const auto symbol = parameterOver(1, {{1}});
  const auto record = symbol->firstRecord();
  symbol->eraseRecord(*record);
  EXPECT_THROW(record->values(), std::logic_error);
  EXPECT_THROW(record->keys(), std::logic_error);
  const auto onUniverse = makeUniverseRecord(dmap::StorageKind::dMap, symbol.get(), 1);
  EXPECT_THROW(onUniverse->values(), std::logic_error);
}

TEST(MoveNext, walksAllRecordsAndStaysOnTheLast) {
  const auto symbol = parameterOver(1, {{1}, {4}, {9}});
  const auto record = symbol->firstRecord();
  EXPECT_TRUE(record->moveNext(0));
  EXPECT_EQ((Keys{4}), keysOf(*record));
  EXPECT_TRUE(record->moveNext(0));
  EXPECT_STREQ("", record->message());
  EXPECT_FALSE(record->moveNext(0));
  EXPECT_STREQ("Last record reached in symbol p", record->message());
  EXPECT_EQ((Keys{9}), keysOf(*record));
  EXPECT_EQ(3.0, *record->values());
  EXPECT_FALSE(record->moveNext(0));
  EXPECT_EQ((Keys{9}), keysOf(*record));
}

TEST(MoveNext, onAScalarFailsAndKeepsTheRecord) {
  const auto symbol = parameterWith(0, {{{}, 4.0}});
  const auto record = symbol->firstRecord();
  EXPECT_FALSE(record->moveNext(0));
  EXPECT_STREQ("Last record reached in symbol p", record->message());
  EXPECT_EQ(4.0, *record->values());
}

TEST(MovePrev, walksBackAndStaysOnTheFirst) {
  const auto symbol = parameterOver(1, {{1}, {4}});
  const auto record = symbol->lastRecord();
  EXPECT_TRUE(record->movePrev());
  EXPECT_EQ((Keys{1}), keysOf(*record));
  EXPECT_FALSE(record->movePrev());
  EXPECT_STREQ("First record reached in symbol p", record->message());
  EXPECT_EQ((Keys{1}), keysOf(*record));
}

TEST(MovePrev, onAScalarFailsAndKeepsTheRecord) {
  const auto symbol = parameterWith(0, {{{}, 4.0}});
  const auto record = symbol->firstRecord();
  EXPECT_FALSE(record->movePrev());
  EXPECT_EQ(4.0, *record->values());
}

TEST(Moves, theMessageStaysUntilOverwritten) {
  const auto symbol = parameterOver(1, {{1}, {4}});
  const auto record = symbol->firstRecord();
  EXPECT_FALSE(record->movePrev());
  EXPECT_TRUE(record->moveNext(0));
  EXPECT_STREQ("First record reached in symbol p", record->message());
  EXPECT_FALSE(record->moveNext(0));
  EXPECT_STREQ("Last record reached in symbol p", record->message());
}

TEST(Moves, theMessageIsCutTo255Chars) {
  const std::string name(300, 'n');
  const auto symbol = parameterWith(1, {{{1}, 1.0}}, name);
  const auto record = symbol->firstRecord();
  EXPECT_FALSE(record->moveNext(0));
  EXPECT_EQ(("Last record reached in symbol " + name).substr(0, 255), record->message());
}

TEST(Moves, fromBehindTheLastRecordGoNowhereForward) {
  const auto symbol = parameterOver(1, {{1}, {4}});
  const auto record = symbol->lastRecord();
  symbol->eraseRecord(*record);
  EXPECT_FALSE(record->hasNext(0));
  EXPECT_FALSE(record->moveNext(0));
  EXPECT_STREQ("Last record reached in symbol p", record->message());
}

TEST(Moves, fromBehindTheLastRecordGoBack) {
  const auto symbol = parameterOver(1, {{1}, {4}});
  const auto record = symbol->lastRecord();
  symbol->eraseRecord(*record);
  EXPECT_TRUE(record->hasPrev());
  EXPECT_TRUE(record->movePrev());
  EXPECT_EQ((Keys{1}), keysOf(*record));
}

TEST(HasNextAndPrev, answerWithoutMovingAndWithoutAMessage) {
  const auto symbol = parameterOver(1, {{1}, {4}});
  const auto record = symbol->firstRecord();
  EXPECT_TRUE(record->hasNext(0));
  EXPECT_FALSE(record->hasPrev());
  EXPECT_EQ((Keys{1}), keysOf(*record));
  ASSERT_TRUE(record->moveNext(0));
  EXPECT_FALSE(record->hasNext(0));
  EXPECT_TRUE(record->hasPrev());
  EXPECT_EQ((Keys{4}), keysOf(*record));
  EXPECT_STREQ("", record->message());
}

TEST(CopyRecord, ofASetOrParameterWritesOneDouble) {
  const auto symbol = parameterWith(2, {{{3, 5}, 1.5}});
  std::array<int, 3> keys{-1, -1, -1};
  Five values{-1, -1, -1, -1, -1};
  symbol->firstRecord()->copyRecord(keys.data(), values.data());
  EXPECT_EQ((std::array<int, 3>{3, 5, -1}), keys);
  EXPECT_EQ((Five{1.5, -1, -1, -1, -1}), values);
}

TEST(CopyRecord, ofAVariableOrEquationWritesFiveDoubles) {
  for (const int type : {dmap::typeVariable, dmap::typeEquation}) {
    const auto symbol = symbolOf(1, type);
    const Five slots{1, 2, 3, 4, 5};
    symbol->insertRecord(Keys{7}.data(), slots.data());
    int key = -1;
    Five values{};
    symbol->firstRecord()->copyRecord(&key, values.data());
    EXPECT_EQ(7, key);
    EXPECT_EQ(slots, values);
  }
}

TEST(CopyRecord, ofAScalarWritesNoKey) {
  const auto symbol = parameterWith(0, {{{}, 2.0}});
  int key = -1;
  double value = 0;
  symbol->firstRecord()->copyRecord(&key, &value);
  EXPECT_EQ(-1, key);
  EXPECT_EQ(2.0, value);
}

TEST(SameValues, ofDifferentDimensionsIsFalse) {
  const auto one = parameterWith(1, {{{1}, 1.0}});
  const auto two = parameterWith(2, {{{1, 1}, 1.0}});
  EXPECT_FALSE(one->firstRecord()->sameValues(*two->firstRecord()));
}

TEST(SameValues, comparesAsManySlotsAsThereAreDimensions) {
  const auto symbol = symbolOf(2, dmap::typeVariable);
  const Five first{1, 2, 3, 4, 5};
  const Five likeFirstInTwo{1, 2, 9, 9, 9};
  const Five unlike{1, 9, 3, 4, 5};
  symbol->insertRecord(Keys{1, 1}.data(), first.data());
  symbol->insertRecord(Keys{1, 2}.data(), likeFirstInTwo.data());
  symbol->insertRecord(Keys{1, 3}.data(), unlike.data());
  const auto record = symbol->firstRecord();
  EXPECT_TRUE(record->sameValues(*symbol->findRecord(Keys{1, 2}.data())));
  EXPECT_FALSE(record->sameValues(*symbol->findRecord(Keys{1, 3}.data())));
}

TEST(SameValues, isFloatingPointEqualitySoThatANaNDiffersAndZerosAgree) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const auto symbol = parameterWith(1, {{{1}, nan}, {{2}, nan}, {{3}, 0.0}, {{4}, -0.0}});
  const auto at = [&](int key) { return symbol->findRecord(&key); };
  EXPECT_FALSE(at(1)->sameValues(*at(2)));
  EXPECT_TRUE(at(3)->sameValues(*at(4)));
}

TEST(SameValues, ofScalarsIsAlwaysTrue) {
  const auto one = parameterWith(0, {{{}, 1.0}});
  const auto other = parameterWith(0, {{{}, 2.0}});
  EXPECT_TRUE(one->firstRecord()->sameValues(*other->firstRecord()));
}

TEST(SameValues, ofRecordsWithFewerSlotsThanDimensionsThrows) {
  const auto symbol = parameterOver(2, {{1, 1}});
  const auto record = symbol->firstRecord();
  try {
    record->sameValues(*record);
    FAIL() << "compared values that are not there";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ("records with fewer values than dimensions cannot be compared", error.what());
  }
  const auto variable = symbolOf(6, dmap::typeVariable);
  const Five values{};
  variable->insertRecord(Keys(6, 1).data(), values.data());
  const auto wide = variable->firstRecord();
  EXPECT_THROW(wide->sameValues(*wide), std::logic_error);
}

TEST(AssignPosition, takesThePositionAndKeepsMaskAndMode) {
  const auto symbol = parameterOver(2, {{1, 1}, {1, 2}, {2, 1}, {2, 2}});
  const Keys mask{0, 2};
  const auto slice = symbol->firstRecordInSlice(mask.data());
  slice->assignPosition(*symbol->findRecord(Keys{2, 1}.data()));
  EXPECT_EQ((Keys{2, 1}), keysOf(*slice));
  EXPECT_EQ(IterationMode::slice, slice->mode());
  ASSERT_TRUE(slice->moveNext(0));
  EXPECT_EQ((Keys{2, 2}), keysOf(*slice));
}

TEST(CopiedHandle, ofASliceWalksTheWholeSymbol) {
  const auto symbol = parameterOver(2, {{1, 1}, {1, 2}, {2, 1}});
  const Keys mask{0, 1};
  const auto slice = symbol->firstRecordInSlice(mask.data());
  const auto copy = copyRecordHandle(dmap::StorageKind::dMap, *slice);
  EXPECT_EQ(IterationMode::symbol, copy->mode());
  EXPECT_EQ(slice->values(), copy->values());
  ASSERT_TRUE(copy->moveNext(0));
  EXPECT_EQ((Keys{1, 2}), keysOf(*copy));
  EXPECT_EQ((Keys{1, 1}), keysOf(*slice));
}

TEST(CopiedHandle, ofTheUniverseKeepsItsLabel) {
  const auto symbol = symbolOf(1, dmap::typeSet, "*");
  const auto record = makeUniverseRecord(dmap::StorageKind::dMap, symbol.get(), 3);
  const auto copy = copyRecordHandle(dmap::StorageKind::dMap, *record);
  EXPECT_EQ(IterationMode::universe, copy->mode());
  EXPECT_EQ(3, copy->universePosition());
  EXPECT_EQ(symbol.get(), copy->symbol());
}

}  // namespace
}  // namespace ztb
