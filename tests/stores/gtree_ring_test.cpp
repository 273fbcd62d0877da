// The ring that the trie's first labels run in after the first of them has lost its only record: no
// call runs in circles there.
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <vector>

#include "store/dmap_gtree.h"
#include "tests/stores/tree_rows.h"

namespace ztb::storetest {
namespace {

void expectRing(const std::function<void()>& call) {
  try {
    call();
    FAIL() << "went through the ring";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ("the labels of the trie run in a ring", error.what());
  }
}

// The labels 1, 3 and 5, of which 5 is followed by 3; 1 is no record, but still the first.
class Ring : public testing::TestWithParam<int> {
 protected:
  Ring() : dim_(GetParam()), tree_(dim_, {key(1), key(3), key(5)}) { tree_.erase(key(1)); }

  Key key(int label) const {
    Key result(static_cast<std::size_t>(dim_), 1);
    result[0] = label;
    return result;
  }

  int dim_;
  Tree tree_;
};

TEST_P(Ring, isClosedByTheStatedStep) {
  EXPECT_EQ(2, tree_.tree.count());
  EXPECT_EQ(tree_.find(key(3))->node[0], tree_.find(key(5))->node[0]->next);
  EXPECT_EQ(1, tree_.tree.begin().node[0]->key);
}

TEST_P(Ring, stopsAWalkAtItsLastLabel) {
  Path path = *tree_.find(key(3));
  tree_.tree.next(path);
  EXPECT_EQ(key(5), keyOf(path));
  expectRing([&] { tree_.tree.next(path); });
  EXPECT_EQ(key(5), keyOf(path));
  expectRing([&] { static_cast<void>(tree_.tree.nextPath(path)); });
  EXPECT_TRUE(endPath == tree_.tree.nextPathOrEnd(path));
}

TEST_P(Ring, stopsAWalkBackwardsFromTheEnd) {
  expectRing([&] { static_cast<void>(tree_.tree.prev(endPath)); });
}

TEST_P(Ring, letsALookupThroughOnlyAsFarAsItsLastLabel) {
  EXPECT_TRUE(tree_.find(key(3)));
  EXPECT_TRUE(tree_.find(key(5)));
  EXPECT_FALSE(tree_.find(key(4)));
  expectRing([&] { tree_.find(key(6)); });
  expectRing([&] { tree_.bound(key(6)); });
  const Path hint = *tree_.find(key(3));
  expectRing([&] { static_cast<void>(tree_.tree.findPath(key(6).data(), &hint)); });
}

TEST_P(Ring, isOpenedByARecordBehindTheLastOne) {
  tree_.append(key(6), 9);
  EXPECT_EQ(key(6), keyOf(*tree_.find(key(6))));
  EXPECT_FALSE(tree_.find(key(7)));
  EXPECT_EQ(key(6), keyOf(tree_.tree.prev(endPath)));
}

TEST_P(Ring, stopsAnAdditionBehindALastOneThatIsNotRemembered) {
  // The last record is erased, and the one before it is remembered and attached behind; 5 is not.
  Tree tree(dim_);
  for (const int label : {7, 1, 3, 5}) {
    tree.insert(key(label), label);
  }
  tree.erase(key(7));
  tree.erase(key(1));
  const bool remembers = dim_ == 1;
  if (remembers) {
    EXPECT_EQ(key(6), keyOf(tree.insert(key(6), 6)));
  } else {
    expectRing([&] { tree.insert(key(6), 6); });
    EXPECT_EQ(2, tree.tree.count());
  }
}

TEST_P(Ring, stopsTheEraseOfWhatIsNotInIt) {
  const Path first = tree_.tree.begin();
  if (dim_ == 1) {
    expectRing([&] { tree_.tree.erase(first); });
  } else {
    EXPECT_THROW(tree_.tree.erase(first), std::logic_error);
  }
  EXPECT_EQ(2, tree_.tree.count());
}

INSTANTIATE_TEST_SUITE_P(Levels, Ring, testing::Values(1, 2));

TEST(RingOfOneLevel, countsPlacesAsFarAsItsLastLabel) {
  Tree tree(1, keysOver({1, 3, 5}));
  tree.erase({1});
  EXPECT_EQ(1, tree.tree.pathIndex(*tree.find({3})));
  EXPECT_EQ(2, tree.tree.pathIndex(*tree.find({5})));
  expectRing([&] { static_cast<void>(tree.tree.pathIndex(Path(2))); });
  expectRing([&] { static_cast<void>(tree.tree.pathAt(3)); });
}

TEST(TrieStoreRing, aDeletedRecordsPlaceMovesToTheEndAndNotIntoTheRing) {
  dmap::DMapGTree store(1, 1);
  appendAll(store, keysOver({1, 3, 5}));
  store.erase(store.begin());
  const Key last = {5};
  EXPECT_TRUE(store.behind(store.find(last.data())).equals(store.end()));
  const Key before = {3};
  EXPECT_TRUE(store.behind(store.find(before.data())).equals(store.find(last.data())));
}

TEST(TrieStoreRing, storingOverTheLastLabelThrowsAndChangesNothing) {
  dmap::DMapGTree store(1, 1);
  appendAll(store, keysOver({1, 3, 5}));
  store.erase(store.begin());
  const Key key = {6};
  const double value = 9;
  expectRing([&] { store.insertOrAssign(store.end(), key.data(), &value); });
  EXPECT_EQ(2, store.size());
}

}  // namespace
}  // namespace ztb::storetest
