// Finding the first and the last record of a slice.
#include <gtest/gtest.h>

#include "tests/unit/symbols.h"

namespace ztb {
namespace {

using unittest::Keys;
using unittest::keysOf;
using unittest::parameterOver;
using unittest::parameterWith;

class SymbolSlice : public testing::Test {
 protected:
  // What a search gives; an empty key when it finds nothing.
  static Keys keyOf(const AbstractZTBSymbol::RecordHandle& record) {
    return record == nullptr ? Keys() : keysOf(*record);
  }
  Keys first(const Keys& mask) { return keyOf(symbol_->firstRecordInSlice(mask.data())); }
  Keys last(const Keys& mask) { return keyOf(symbol_->lastRecordInSlice(mask.data())); }

  std::unique_ptr<AbstractZTBSymbol> symbol_ =
      parameterOver(2, {{1, 2}, {1, 3}, {2, 2}, {3, 2}, {3, 9}});
};

TEST_F(SymbolSlice, aMaskOfZerosMatchesEveryRecord) {
  EXPECT_EQ((Keys{1, 2}), first({0, 0}));
  EXPECT_EQ((Keys{3, 9}), last({0, 0}));
}

TEST_F(SymbolSlice, eachPositionIsFreeOrGiven) {
  EXPECT_EQ((Keys{3, 2}), first({3, 0}));
  EXPECT_EQ((Keys{3, 9}), last({3, 0}));
  EXPECT_EQ((Keys{1, 2}), first({0, 2}));
  EXPECT_EQ((Keys{3, 2}), last({0, 2}));
  EXPECT_EQ((Keys{2, 2}), first({2, 2}));
  EXPECT_EQ((Keys{2, 2}), last({2, 2}));
}

TEST_F(SymbolSlice, withoutAMatchThereIsNull) {
  EXPECT_EQ(Keys(), first({4, 0}));
  EXPECT_EQ(Keys(), last({4, 0}));
  EXPECT_EQ(Keys(), first({2, 9}));
}

TEST_F(SymbolSlice, lastTestsTheFirstRecordTooBeforeGivingUp) {
  EXPECT_EQ((Keys{1, 2}), last({1, 2}));
  EXPECT_EQ((Keys{1, 3}), last({1, 0}));
}

TEST_F(SymbolSlice, anEmptySymbolHasNone) {
  symbol_->clearRecords();
  EXPECT_EQ(Keys(), first({0, 0}));
  EXPECT_EQ(Keys(), last({0, 0}));
}

TEST_F(SymbolSlice, aScalarGivesItsRecord) {
  const auto scalar = parameterWith(0, {{{}, 4.0}});
  const auto first = scalar->firstRecordInSlice(nullptr);
  const auto last = scalar->lastRecordInSlice(nullptr);
  ASSERT_NE(nullptr, first);
  ASSERT_NE(nullptr, last);
  EXPECT_EQ(4.0, *first->values());
  EXPECT_EQ(4.0, *last->values());
  EXPECT_EQ(nullptr, parameterWith(0, {})->firstRecordInSlice(nullptr));
}

TEST_F(SymbolSlice, theHandleWalksTheSliceByACopyOfTheMask) {
  Keys mask{0, 2};
  const auto record = symbol_->firstRecordInSlice(mask.data());
  EXPECT_EQ(IterationMode::slice, record->mode());
  mask = {0, 9};
  ASSERT_TRUE(record->moveNext(0));
  EXPECT_EQ((Keys{2, 2}), keysOf(*record));
}

TEST_F(SymbolSlice, theLastHandleWalksBack) {
  const Keys mask{0, 2};
  const auto record = symbol_->lastRecordInSlice(mask.data());
  EXPECT_EQ(IterationMode::slice, record->mode());
  ASSERT_TRUE(record->movePrev());
  EXPECT_EQ((Keys{2, 2}), keysOf(*record));
}

}  // namespace
}  // namespace ztb
