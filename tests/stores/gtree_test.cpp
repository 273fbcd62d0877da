#include <gtest/gtest.h>

#include <stdexcept>
#include <variant>
#include <vector>

#include "tests/stores/tree_rows.h"

namespace ztb::storetest {
namespace {

TEST(GTree, theEndPathHasDepth1AndANullNode) {
  EXPECT_EQ(1, endPath.depth);
  EXPECT_EQ(nullptr, endPath.node[0]);
}

TEST(GTree, pathsAreEqualWhenTheirDepthsAndNodesInUseAre) {
  Tree tree(2, {{1, 1}, {1, 2}});
  EXPECT_TRUE(*tree.find({1, 1}) == *tree.find({1, 1}));
  EXPECT_FALSE(*tree.find({1, 1}) == *tree.find({1, 2}));
  EXPECT_FALSE(Path(1) == Path(2));
}

TEST(GTree, anEmptyTreeOfOneLevelBeginsAtItsEnd) {
  EXPECT_TRUE(Tree(1).tree.begin() == endPath);
}

TEST(GTree, anEmptyTreeOfTwoLevelsOrMoreDoesNotBeginAtItsEnd) {
  EXPECT_FALSE(Tree(2).tree.begin() == endPath);
  EXPECT_EQ(2, Tree(2).tree.begin().depth);
}

TEST(GTree, recordsThatShareAPrefixShareNodes) {
  Tree tree(2, {{1, 1}, {1, 2}, {2, 1}});
  const Path first = *tree.find({1, 1});
  const Path second = *tree.find({1, 2});
  const Path third = *tree.find({2, 1});
  EXPECT_EQ(first.node[0], second.node[0]);
  EXPECT_NE(first.node[0], third.node[0]);
  EXPECT_EQ((Rows{{{1, 1}, 1}, {{1, 2}, 2}, {{2, 1}, 3}}), tree.rows());
}

TEST(GTree, insertSequentialOfTheLastKeyAgainOverwritesItAndTheCountStays) {
  Tree tree(2, {{1, 1}, {1, 2}});
  tree.append({1, 2}, 9);
  EXPECT_EQ(2, tree.tree.count());
  EXPECT_EQ((Rows{{{1, 1}, 1}, {{1, 2}, 9}}), tree.rows());
}

TEST(GTree, insertSequentialOfAnotherKeyPresentKeepsIt) {
  Tree tree(2, {{1, 1}, {1, 2}, {2, 1}});
  EXPECT_EQ((Key{1, 1}), keyOf(tree.append({1, 1}, 9)));
  EXPECT_EQ((Rows{{{1, 1}, 1}, {{1, 2}, 2}, {{2, 1}, 3}}), tree.rows());
}

TEST(GTree, insertSequentialOfAKeyBelowTheLastPutsItInItsPlace) {
  Tree tree(2, {{2, 2}, {2, 9}, {5, 5}});
  tree.append({2, 5}, 10);
  tree.append({1, 7}, 11);
  tree.append({5, 4}, 12);
  tree.append({3, 1}, 13);
  EXPECT_EQ((Rows{{{1, 7}, 11},
                  {{2, 2}, 1},
                  {{2, 5}, 10},
                  {{2, 9}, 2},
                  {{3, 1}, 13},
                  {{5, 4}, 12},
                  {{5, 5}, 3}}),
            tree.rows());
}

TEST(GTree, insertAnywhereTakesKeysInAnyOrder) {
  Tree tree(3);
  for (const Key& key :
       {Key{2, 1, 1}, Key{1, 2, 3}, Key{2, 1, 0}, Key{9, 9, 9}, Key{1, 2, 1}, Key{1, 1, 9}}) {
    tree.insert(key, 1);
  }
  EXPECT_EQ((std::vector<Key>{{1, 1, 9}, {1, 2, 1}, {1, 2, 3}, {2, 1, 0}, {2, 1, 1}, {9, 9, 9}}),
            tree.keys());
  EXPECT_EQ(6, tree.tree.count());
}

TEST(GTree, insertAnywhereOfAKeyPresentThatIsNotTheLastKeepsIt) {
  Tree tree(1, keysOver({1, 3, 5}));
  tree.insert({3}, 9);
  EXPECT_EQ((Rows{{{1}, 1}, {{3}, 2}, {{5}, 3}}), tree.rows());
}

TEST(GTree, insertAnywhereOfTheLastKeyOverwritesIt) {
  Tree tree(1, keysOver({1, 3, 5}));
  tree.insert({5}, 9);
  EXPECT_EQ((Rows{{{1}, 1}, {{3}, 2}, {{5}, 9}}), tree.rows());
}

TEST(GTree, theFirstInsertAnywhereGivesAPathOnNothingFromTwoLevelsOn) {
  Tree tree(2);
  const Path path = tree.insert({1, 1}, 5);
  EXPECT_EQ(2, path.depth);
  EXPECT_EQ(nullptr, path.node[0]);
  EXPECT_EQ((Rows{{{1, 1}, 5}}), tree.rows());
}

TEST(GTree, theFirstInsertAnywhereGivesTheRecordOnOneLevel) {
  Tree tree(1);
  EXPECT_EQ(Key{4}, keyOf(tree.insert({4}, 5)));
  EXPECT_EQ((Rows{{{4}, 5}}), tree.rows());
}

TEST(GTree, insertSequentialAfterInsertAnywhereThrowsFromTwoLevelsOn) {
  Tree tree(2);
  tree.insert({1, 1}, 5);
  tree.insert({1, 2}, 6);
  EXPECT_THROW(tree.append({1, 3}, 7), std::logic_error);
  EXPECT_EQ((Rows{{{1, 1}, 5}, {{1, 2}, 6}}), tree.rows());
}

TEST(GTree, insertSequentialAfterInsertAnywhereGoesOnOnOneLevel) {
  Tree tree(1);
  tree.insert({1}, 5);
  tree.append({3}, 6);
  EXPECT_EQ((Rows{{{1}, 5}, {{3}, 6}}), tree.rows());
}

TEST(GTree, findPathWantsEveryLevel) {
  Tree tree(2, {{1, 1}, {1, 3}, {3, 1}});
  EXPECT_EQ((Key{1, 3}), keyOf(*tree.find({1, 3})));
  for (const Key& absent : {Key{1, 2}, Key{1, 4}, Key{2, 1}, Key{4, 1}, Key{0, 1}, Key{1, 0}}) {
    EXPECT_FALSE(tree.find(absent)) << absent[0] << ',' << absent[1];
  }
  EXPECT_FALSE(Tree(2).find({1, 1}));
}

TEST(GTree, findPathTakesAHintAboveOrBelowTheKey) {
  Tree tree(2, {{1, 1}, {2, 2}, {2, 4}, {3, 3}});
  const Path hint = *tree.find({2, 2});
  for (const Key& present : {Key{1, 1}, Key{2, 2}, Key{2, 4}, Key{3, 3}}) {
    const auto [found, path] = tree.tree.findPath(present.data(), &hint);
    EXPECT_TRUE(found) << present[0] << ',' << present[1];
    EXPECT_EQ(present, keyOf(path));
  }
  for (const Key& absent : {Key{1, 2}, Key{2, 1}, Key{2, 3}, Key{3, 4}, Key{0, 0}}) {
    EXPECT_FALSE(tree.tree.findPath(absent.data(), &hint).first) << absent[0] << ',' << absent[1];
  }
}

TEST(GTree, lowerBoundPathIsABoundAtEachLevelByItself) {
  Tree tree(2, {{2, 1}, {2, 5}, {4, 7}});
  EXPECT_EQ((Key{2, 1}), keyOf(*tree.bound({1, 0})));
  EXPECT_EQ((Key{2, 5}), keyOf(*tree.bound({1, 3})));
  EXPECT_EQ((Key{4, 7}), keyOf(*tree.bound({3, 6})));
  EXPECT_FALSE(tree.bound({1, 9}));
  EXPECT_FALSE(tree.bound({2, 6}));
  EXPECT_FALSE(tree.bound({5, 1}));
}

TEST(GTree, lowerBoundPathTakes0AsTheFirstNode) {
  Tree tree(2, {{2, 1}, {2, 5}, {4, 7}});
  EXPECT_EQ((Key{2, 1}), keyOf(*tree.bound({0, 0})));
}

TEST(GTree, lowerBoundPathReportsFoundWhereAListIsEmpty) {
  Tree tree(3, {{1, 1, 1}, {2, 1, 1}, {2, 2, 1}});
  tree.erase({2, 1, 1});
  const Path path = tree.bound({2, 1, 1}).value();
  EXPECT_EQ((Key{2, 1, 0}), keyOf(path));
}

TEST(GTree, predecessorPathGivesTheRecordBefore) {
  Tree tree(2, {{1, 1}, {1, 4}, {3, 2}, {3, 5}});
  const auto before = [&](const Key& key) {
    const auto [found, path] = tree.tree.predecessorPath(key.data());
    return found ? keyOf(path) : Key{};
  };
  EXPECT_EQ((Key{3, 2}), before({3, 5}));
  EXPECT_EQ((Key{1, 4}), before({3, 2}));
  EXPECT_EQ((Key{1, 1}), before({1, 4}));
  EXPECT_EQ(Key{}, before({2, 2}));
}

TEST(GTree, thePredecessorOfTheFirstRecordIsTheGreatestUnderTheFirstNode) {
  Tree tree(2, {{1, 1}, {1, 4}, {3, 2}});
  const Key first = {1, 1};
  const auto [found, path] = tree.tree.predecessorPath(first.data());
  EXPECT_TRUE(found);
  EXPECT_EQ((Key{1, 4}), keyOf(path));
}

TEST(GTree, nextLeadsPastTheLastRecordToTheEndPath) {
  Tree tree(2, {{1, 1}, {2, 2}});
  Path path = tree.tree.begin();
  tree.tree.next(path);
  EXPECT_EQ((Key{2, 2}), keyOf(path));
  EXPECT_TRUE(tree.tree.nextPath(path) == endPath);
  tree.tree.next(path);
  EXPECT_TRUE(path == endPath);
}

TEST(GTree, nextThrowsAtTheEnd) {
  Tree tree(2, {{1, 1}});
  Path path = endPath;
  try {
    tree.tree.next(path);
    FAIL() << "went on from the end";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ("the path stands on no record of the trie", error.what());
  }
  Tree flat(1, keysOver({1}));
  EXPECT_THROW(flat.tree.next(path), std::logic_error);
}

TEST(GTree, prevOfTheEndIsTheGreatestRecord) {
  Tree tree(3, {{1, 1, 1}, {1, 5, 2}, {4, 1, 1}, {4, 1, 8}});
  EXPECT_EQ((Key{4, 1, 8}), keyOf(tree.tree.prev(endPath)));
}

TEST(GTree, prevWalksBackwards) {
  Tree tree(2, {{1, 1}, {1, 4}, {3, 2}});
  Path path = tree.tree.prev(endPath);
  path = tree.tree.prev(path);
  EXPECT_EQ((Key{1, 4}), keyOf(path));
  EXPECT_EQ((Key{1, 1}), keyOf(tree.tree.prev(path)));
}

TEST(GTree, prevOfAPathThatIsGoneStaysWhereItIs) {
  Tree tree(2, {{1, 1}, {1, 4}, {3, 2}});
  const Path gone = *tree.find({1, 4});
  tree.tree.erase(gone);
  EXPECT_TRUE(gone == tree.tree.prev(gone));
}

TEST(GTree, prevOnAnEmptyTreeThrows) {
  EXPECT_THROW(static_cast<void>(Tree(2).tree.prev(endPath)), std::logic_error);
}

TEST(GTree, pathAtAndPathIndexCountInOrder) {
  Tree tree(2, {{1, 1}, {1, 4}, {3, 2}});
  EXPECT_EQ((Key{1, 1}), keyOf(tree.tree.pathAt(0)));
  EXPECT_EQ((Key{3, 2}), keyOf(tree.tree.pathAt(2)));
  EXPECT_TRUE(endPath == tree.tree.pathAt(3));
  EXPECT_EQ(0, tree.tree.pathIndex(*tree.find({1, 1})));
  EXPECT_EQ(2, tree.tree.pathIndex(*tree.find({3, 2})));
  EXPECT_EQ(3, tree.tree.pathIndex(endPath));
  EXPECT_THROW(static_cast<void>(tree.tree.pathAt(4)), std::logic_error);
}

TEST(GTree, holdsTwentyLevelsAndFiveSlots) {
  GTree tree(20, 5);
  Key key(20, 3);
  tree.insertSequential(key.data(), slots);
  key[19] = 4;
  const Path last = tree.insertSequential(key.data(), slots);
  EXPECT_EQ(key, keyOf(last));
  EXPECT_TRUE(std::equal(slots, slots + 5, last.node[19]->values()));
  EXPECT_EQ(2, tree.count());
}

TEST(GTree, valuesStayWhereTheyAreWhileTheTreeGrows) {
  Tree tree(1);
  const Path first = tree.append({1}, 1.5);
  const double* values = first.node[0]->values();
  for (int i = 2; i <= 5000; ++i) {
    tree.append({i}, i);
  }
  EXPECT_EQ(values, tree.find({1})->node[0]->values());
  EXPECT_EQ(1.5, *values);
}

TEST(GTree, setBlockCapacityChangesNothingButBlocks) {
  Tree tree(2, {{1, 1}});
  tree.tree.setBlockCapacity(1000);
  tree.append({1, 2}, 2);
  tree.tree.setBlockCapacity(-1);
  for (int i = 3; i <= 500; ++i) {
    tree.append({1, i}, i);
  }
  EXPECT_EQ(500U, tree.rows().size());
  EXPECT_EQ((Row{{1, 500}, 500}), tree.rows().back());
}

TEST(GTreeNode, contentIsReadAsWhatItIsOrThrows) {
  gtree::Node parent(1);
  gtree::Node leaf(2);
  double value = 3;
  leaf.setValues(&value);
  parent.setChild(&leaf);
  EXPECT_EQ(&leaf, parent.child());
  EXPECT_EQ(&value, leaf.values());
  EXPECT_EQ(nullptr, leaf.childOrNull());
  try {
    static_cast<void>(leaf.child());
    FAIL() << "gave values as a child";
  } catch (const std::bad_variant_access& error) {
    EXPECT_STREQ("bad variant access", error.what());
  }
  EXPECT_THROW(static_cast<void>(parent.values()), std::bad_variant_access);
}

}  // namespace
}  // namespace ztb::storetest
