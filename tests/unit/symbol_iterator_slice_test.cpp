// Record handles that walk a slice.
#include <gtest/gtest.h>

#include "tests/unit/symbols.h"

namespace ztb {
namespace {

using unittest::Keys;
using unittest::keysOf;
using unittest::parameterOver;
using unittest::parameterWith;

class SliceHandle : public testing::Test {
 protected:
  AbstractZTBSymbol::RecordHandle first(const Keys& mask) {
    return symbol_->firstRecordInSlice(mask.data());
  }
  AbstractZTBSymbol::RecordHandle last(const Keys& mask) {
    return symbol_->lastRecordInSlice(mask.data());
  }

  std::unique_ptr<AbstractZTBSymbol> symbol_ =
      parameterOver(2, {{1, 1}, {1, 2}, {2, 1}, {3, 2}, {3, 3}});
};

TEST_F(SliceHandle, moveNextSkipsRecordsOutside) {
  const auto record = first({0, 2});
  EXPECT_EQ((Keys{1, 2}), keysOf(*record));
  EXPECT_TRUE(record->hasNext(0));
  EXPECT_TRUE(record->moveNext(0));
  EXPECT_EQ((Keys{3, 2}), keysOf(*record));
}

TEST_F(SliceHandle, moveNextOnTheLastMatchRestoresThePositionThoughItScannedToTheEnd) {
  const auto record = last({0, 2});
  EXPECT_FALSE(record->hasNext(0));
  EXPECT_STREQ("", record->message());
  EXPECT_FALSE(record->moveNext(0));
  EXPECT_STREQ("Last record reached in slice of symbol p", record->message());
  EXPECT_EQ((Keys{3, 2}), keysOf(*record));
}

TEST_F(SliceHandle, moveNextOnTheLastRecordOfTheSymbolIsNamedAfterTheSliceToo) {
  const auto record = last({3, 0});
  EXPECT_EQ((Keys{3, 3}), keysOf(*record));
  EXPECT_FALSE(record->moveNext(0));
  EXPECT_STREQ("Last record reached in slice of symbol p", record->message());
  EXPECT_EQ((Keys{3, 3}), keysOf(*record));
}

TEST_F(SliceHandle, movePrevSkipsRecordsOutside) {
  const auto record = last({0, 2});
  EXPECT_TRUE(record->hasPrev());
  EXPECT_TRUE(record->movePrev());
  EXPECT_EQ((Keys{1, 2}), keysOf(*record));
}

TEST_F(SliceHandle, movePrevOnTheFirstRecordOfTheSymbolSpeaksOfTheSymbol) {
  const auto record = first({1, 0});
  EXPECT_EQ((Keys{1, 1}), keysOf(*record));
  EXPECT_FALSE(record->hasPrev());
  EXPECT_FALSE(record->movePrev());
  EXPECT_STREQ("First record reached in symbol p", record->message());
  EXPECT_EQ((Keys{1, 1}), keysOf(*record));
}

TEST_F(SliceHandle, movePrevOnTheFirstMatchSpeaksOfTheSliceAndRestoresThePosition) {
  const auto record = first({0, 2});
  EXPECT_FALSE(record->hasPrev());
  EXPECT_STREQ("", record->message());
  EXPECT_FALSE(record->movePrev());
  EXPECT_STREQ("First record reached in slice of symbol p", record->message());
  EXPECT_EQ((Keys{1, 2}), keysOf(*record));
}

TEST_F(SliceHandle, movePrevTestsTheFirstRecordOfTheSymbolToo) {
  const auto record = last({0, 1});
  EXPECT_EQ((Keys{2, 1}), keysOf(*record));
  EXPECT_TRUE(record->hasPrev());
  EXPECT_TRUE(record->movePrev());
  EXPECT_EQ((Keys{1, 1}), keysOf(*record));
}

TEST_F(SliceHandle, walksForthAndBackOverAllOfASliceOfZeros) {
  const auto record = first({0, 0});
  int steps = 0;
  while (record->moveNext(0)) ++steps;
  EXPECT_EQ(4, steps);
  while (record->movePrev()) --steps;
  EXPECT_EQ(0, steps);
  EXPECT_STREQ("First record reached in symbol p", record->message());
}

TEST_F(SliceHandle, ofOneRecordHasNeitherNextNorPrevious) {
  const auto record = first({2, 1});
  EXPECT_FALSE(record->hasNext(0));
  EXPECT_FALSE(record->hasPrev());
}

TEST_F(SliceHandle, ofAScalarStaysOnItsRecord) {
  const auto scalar = parameterWith(0, {{{}, 2.0}});
  const auto record = scalar->firstRecordInSlice(nullptr);
  EXPECT_FALSE(record->hasNext(0));
  EXPECT_FALSE(record->moveNext(0));
  EXPECT_STREQ("Last record reached in slice of symbol p", record->message());
  EXPECT_FALSE(record->movePrev());
  EXPECT_STREQ("First record reached in symbol p", record->message());
  EXPECT_EQ(2.0, *record->values());
}

TEST_F(SliceHandle, erasingKeepsTheHandleInSliceMode) {
  const auto record = first({0, 2});
  symbol_->eraseRecord(*record);
  EXPECT_EQ((Keys{2, 1}), keysOf(*record));
  EXPECT_EQ(IterationMode::slice, record->mode());
  EXPECT_TRUE(record->moveNext(0));
  EXPECT_EQ((Keys{3, 2}), keysOf(*record));
}

}  // namespace
}  // namespace ztb
