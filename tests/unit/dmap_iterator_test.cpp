#include "store/dmap_iterator.h"

#include <gtest/gtest.h>

#include "store/dmap.h"

namespace ztb::dmap {
namespace {

class Iterators : public testing::Test {
 protected:
  Iterators() {
    for (const int key : {1, 2, 3}) {
      const double value = key * 1.5;
      store_.insert(&key, &value);
    }
  }

  DMap store_{1, typeParameter};
};

TEST(NullIterator, hasDimTypeAndKind0AndStandsOnNothing) {
  const DMapIterator null;
  EXPECT_TRUE(null.isNull());
  EXPECT_EQ(0, null.dim());
  EXPECT_EQ(0, null.type());
  EXPECT_EQ(StorageKind::dMap, null.kind());
  EXPECT_EQ(nullptr, null.position());
  EXPECT_TRUE(null.equals(DMapIterator()));
}

TEST_F(Iterators, carryDimensionAndTypeOfTheStore) {
  const DMapIterator it = store_.begin();
  EXPECT_EQ(1, it.dim());
  EXPECT_EQ(typeParameter, it.type());
  EXPECT_FALSE(it.isNull());
  EXPECT_FALSE(store_.end().isNull());
}

TEST_F(Iterators, nextAndPrevFollowTheOrder) {
  DMapIterator it = store_.begin();
  it.next();
  EXPECT_EQ(2, it.get().keys[0]);
  it.next();
  it.next();
  EXPECT_TRUE(it.equals(store_.end()));
  it.prev();
  EXPECT_EQ(3, it.get().keys[0]);
  it.prev();
  it.prev();
  EXPECT_TRUE(it.equals(store_.begin()));
}

TEST_F(Iterators, writingThroughAViewChangesTheRecord) {
  *store_.begin().get().values = 42;
  const int key = 1;
  EXPECT_EQ(42.0, *store_.find(&key).get().values);
}

TEST_F(Iterators, copiesMoveIndependently) {
  DMapIterator it = store_.begin();
  const DMapIterator copy = it;
  it.next();
  EXPECT_TRUE(copy.equals(store_.begin()));
  EXPECT_TRUE(it.notEquals(copy));
}

TEST_F(Iterators, equalityNeedsDimensionTypeAndPosition) {
  const DMapIterator it = store_.begin();
  EXPECT_TRUE(it.equals(store_.begin()));
  EXPECT_FALSE(it.notEquals(store_.begin()));
  EXPECT_FALSE(it.equals(store_.end()));
  EXPECT_FALSE(it.equals(DMapIterator(2, it.type(), it.position())));
  EXPECT_FALSE(it.equals(DMapIterator(it.dim(), typeSet, it.position())));
  EXPECT_TRUE(it.equals(DMapIterator(it.dim(), it.type(), it.position())));
  EXPECT_TRUE(it.notEquals(DMapIterator()));
}

TEST_F(Iterators, ofTwoStoresDiffer) {
  DMap other(1, typeParameter);
  EXPECT_FALSE(store_.end().equals(other.end()));
}

}  // namespace
}  // namespace ztb::dmap
