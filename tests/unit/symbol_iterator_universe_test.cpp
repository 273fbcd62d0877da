// Record handles that walk the labels of the universe. A walk is bounded by the last label number.
#include <gtest/gtest.h>

#include "tests/unit/symbols.h"

namespace ztb {
namespace {

class UniverseHandle : public testing::Test {
 protected:
  std::unique_ptr<AbstractZTBSymbol> universe_ = unittest::symbolOf(1, dmap::typeSet, "*");
  std::unique_ptr<AbstractZTBSymbolIterator> record_ =
      makeUniverseRecord(dmap::StorageKind::dMap, universe_.get(), 1);
};

TEST_F(UniverseHandle, startsOnItsLabel) {
  EXPECT_EQ(IterationMode::universe, record_->mode());
  EXPECT_EQ(1, record_->universePosition());
  EXPECT_TRUE(record_->onUniverse());
  EXPECT_EQ(1, record_->dimension());
  EXPECT_TRUE(record_->storeIterator().isNull());
}

TEST_F(UniverseHandle, ofALastLabel2MovesOnceAndThenFailsUnchanged) {
  EXPECT_TRUE(record_->moveNext(2));
  EXPECT_EQ(2, record_->universePosition());
  EXPECT_FALSE(record_->moveNext(2));
  EXPECT_STREQ("Last record reached in Universe", record_->message());
  EXPECT_EQ(2, record_->universePosition());
}

TEST_F(UniverseHandle, movePrevStopsAt1) {
  ASSERT_TRUE(record_->moveNext(3));
  ASSERT_TRUE(record_->moveNext(3));
  EXPECT_TRUE(record_->movePrev());
  EXPECT_TRUE(record_->movePrev());
  EXPECT_EQ(1, record_->universePosition());
  EXPECT_FALSE(record_->movePrev());
  EXPECT_STREQ("First record reached in Universe", record_->message());
  EXPECT_EQ(1, record_->universePosition());
}

TEST_F(UniverseHandle, hasNextAndHasPrevAnswerWithoutMoving) {
  EXPECT_TRUE(record_->hasNext(2));
  EXPECT_FALSE(record_->hasNext(1));
  EXPECT_FALSE(record_->hasPrev());
  ASSERT_TRUE(record_->moveNext(2));
  EXPECT_FALSE(record_->hasNext(2));
  EXPECT_TRUE(record_->hasPrev());
  EXPECT_EQ(2, record_->universePosition());
  EXPECT_STREQ("", record_->message());
}

TEST_F(UniverseHandle, aGrownUniverseLetsItMoveOn) {
  EXPECT_FALSE(record_->moveNext(1));
  EXPECT_TRUE(record_->moveNext(2));
}

}  // namespace
}  // namespace ztb
