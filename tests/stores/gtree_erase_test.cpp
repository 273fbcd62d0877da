// Taking records out of the trie, and what clear leaves of it.
#include <gtest/gtest.h>

#include <stdexcept>
#include <variant>
#include <vector>

#include "tests/stores/tree_rows.h"

namespace ztb::storetest {
namespace {

TEST(GTree, eraseFromTheMiddleOfAListLinksItsNeighbours) {
  Tree tree(2, {{1, 1}, {1, 2}, {1, 3}});
  tree.erase({1, 2});
  EXPECT_EQ((std::vector<Key>{{1, 1}, {1, 3}}), tree.keys());
  EXPECT_EQ(2, tree.tree.count());
}

TEST(GTree, eraseOfAListsHeadMakesItsSuccessorTheHead) {
  Tree tree(2, {{1, 1}, {1, 2}, {2, 1}});
  tree.erase({1, 1});
  EXPECT_EQ((std::vector<Key>{{1, 2}, {2, 1}}), tree.keys());
}

TEST(GTree, eraseOfTheLastChildBelowTheFirstLevelUnlinksItsParent) {
  Tree tree(2, {{1, 1}, {2, 1}, {3, 1}});
  tree.erase({2, 1});
  EXPECT_EQ((std::vector<Key>{{1, 1}, {3, 1}}), tree.keys());
  tree.append({4, 1}, 4);
  EXPECT_EQ((std::vector<Key>{{1, 1}, {3, 1}, {4, 1}}), tree.keys());
}

TEST(GTree, eraseOfTheLastRecordMovesTheRightEndBack) {
  Tree tree(2, {{1, 1}, {1, 4}, {3, 2}});
  tree.erase({3, 2});
  tree.append({1, 5}, 9);
  EXPECT_EQ((Rows{{{1, 1}, 1}, {{1, 4}, 2}, {{1, 5}, 9}}), tree.rows());
}

TEST(GTree, afterEraseOfTheLastRecordTheOneBeforeItIsOverwritten) {
  Tree tree(2, {{1, 1}, {1, 4}, {3, 2}});
  tree.erase({3, 2});
  tree.append({1, 4}, 9);
  EXPECT_EQ((Rows{{{1, 1}, 1}, {{1, 4}, 9}}), tree.rows());
}

TEST(GTree, eraseOfTheLastRecordThrowsWhereTheOneBeforeItIsAnEmptyBranch) {
  Tree tree(3, {{1, 1, 1}, {1, 2, 1}, {1, 3, 1}});
  tree.erase({1, 2, 1});
  try {
    tree.erase({1, 3, 1});
    FAIL() << "found a record in an empty branch";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ("the trie holds a branch without records", error.what());
  }
  EXPECT_EQ(2, tree.tree.count());
  EXPECT_TRUE(tree.find({1, 3, 1}));
}

TEST(GTree, eraseOfAWholeTreeOfThreeLevelsFromTheFrontEmptiesIt) {
  Tree tree(3, {{1, 1, 1}, {1, 2, 1}, {1, 3, 1}});
  for (const int second : {1, 2, 3}) {
    tree.erase({1, second, 1});
  }
  EXPECT_EQ(0, tree.tree.count());
  EXPECT_TRUE(tree.tree.begin() == Path(3));
}

TEST(GTree, eraseOfTheRecordInsertedLastLeavesNothingOfItInThePlaceOfTheNext) {
  Tree tree(2);
  for (const int second : {1, 2, 3, 4}) {
    tree.insert({1, second}, second);
  }
  tree.erase({1, 4});
  tree.erase({1, 3});
  tree.insert({1, 5}, 5);
  tree.insert({2, 1}, 6);
  EXPECT_EQ((Rows{{{1, 1}, 1}, {{1, 2}, 2}, {{1, 5}, 5}, {{2, 1}, 6}}), tree.rows());
}

TEST(GTree, eraseOfTheLastChildOnADeeperLevelLeavesTheNodeAboveWithoutChild) {
  Tree tree(3, {{1, 1, 1}, {1, 2, 1}, {1, 3, 1}});
  tree.erase({1, 2, 1});
  EXPECT_EQ(2, tree.tree.count());
  Path path = tree.tree.begin();
  tree.tree.next(path);
  EXPECT_EQ((Key{1, 2, 0}), keyOf(path));
  EXPECT_EQ(nullptr, path.node[2]);
  try {
    tree.tree.next(path);
    FAIL() << "went on from a missing node";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ("the path leads through a missing node of the trie", error.what());
  }
}

TEST(GTree, aBranchWithoutRecordsTakesOneAgain) {
  Tree tree(3, {{1, 1, 1}, {1, 2, 1}, {1, 3, 1}});
  tree.erase({1, 2, 1});
  tree.append({1, 2, 7}, 9);
  EXPECT_EQ((Rows{{{1, 1, 1}, 1}, {{1, 2, 7}, 9}, {{1, 3, 1}, 3}}), tree.rows());
}

TEST(GTree, eraseOfTheOnlyRecordLeavesAnEmptyTreeWhoseFirstNodeStays) {
  Tree tree(2, {{1, 1}});
  tree.erase({1, 1});
  EXPECT_EQ(0, tree.tree.count());
  EXPECT_TRUE(tree.tree.begin() == Path(2));
  EXPECT_THROW(tree.append({2, 2}, 1), std::logic_error);
  EXPECT_EQ((Key{1, 7}), keyOf(tree.insert({1, 7}, 2)));
  EXPECT_EQ((Rows{{{1, 7}, 2}}), tree.rows());
}

TEST(GTree, onOneLevelTheOnlyRecordsNodeIsNoRecordWhenItsKeyComesAgain) {
  Tree tree(1, keysOver({4}));
  tree.erase({4});
  const Path again = tree.insert({4}, 9);
  EXPECT_EQ(9, *again.node[0]->values());
  EXPECT_EQ((Rows{{{4}, 9}}), tree.rows());
  tree.append({5}, 10);
  EXPECT_EQ((Rows{{{4}, 9}, {{5}, 10}}), tree.rows());
}

TEST(GTree, onOneLevelTheOnlyRecordsNodeIsGoneWhenAnotherKeyComes) {
  for (const int key : {3, 5}) {
    Tree tree(1, keysOver({4}));
    tree.erase({4});
    tree.insert({key}, 9);
    EXPECT_EQ((Rows{{{key}, 9}}), tree.rows());
    EXPECT_FALSE(tree.find({4}));
  }
}

TEST(GTree, eraseOfAnErasedOnlyRecordThrowsAndCountsNothing) {
  Tree tree(1, keysOver({4}));
  const Path only = *tree.find({4});
  tree.tree.erase(only);
  EXPECT_THROW(tree.tree.erase(only), std::logic_error);
  EXPECT_EQ(0, tree.tree.count());
}

TEST(GTree, eraseThrowsWhereThePathStandsOnNoRecord) {
  Tree tree(2, {{1, 1}, {1, 2}});
  EXPECT_THROW(tree.tree.erase(endPath), std::logic_error);
  EXPECT_THROW(tree.tree.erase(Path(2)), std::logic_error);
  EXPECT_EQ(2, tree.tree.count());
}

TEST(GTree, clearForgetsTheNodesButNotTheLastRecord) {
  Tree tree(2, {{1, 1}, {2, 2}});
  tree.tree.clear();
  EXPECT_EQ(0, tree.tree.count());
  EXPECT_FALSE(tree.find({1, 1}));
  EXPECT_TRUE(tree.tree.begin() == Path(2));
}

TEST(GTree, insertSequentialAfterClearStartsAnew) {
  Tree tree(2, {{1, 1}, {2, 2}});
  tree.tree.clear();
  tree.append({1, 5}, 7);
  tree.append({1, 6}, 8);
  EXPECT_EQ((Rows{{{1, 5}, 7}, {{1, 6}, 8}}), tree.rows());
}

TEST(GTree, insertAnywhereOfTheOldLastKeyAfterClearAddsNoRecord) {
  Tree tree(2, {{1, 1}, {2, 2}});
  const Path old = *tree.find({2, 2});
  tree.tree.clear();
  EXPECT_TRUE(old == tree.insert({2, 2}, 9));
  EXPECT_EQ(9, *old.node[1]->values());
  EXPECT_EQ(0, tree.tree.count());
}

TEST(GTree, insertAnywhereAboveTheOldLastKeyAfterClearStartsAnew) {
  Tree tree(2, {{1, 1}, {2, 2}});
  tree.tree.clear();
  EXPECT_EQ((Key{3, 1}), keyOf(tree.insert({3, 1}, 9)));
  tree.append({3, 2}, 10);
  EXPECT_EQ((Rows{{{3, 1}, 9}, {{3, 2}, 10}}), tree.rows());
}

TEST(GTree, insertAnywhereBelowTheOldLastKeyAfterClearGivesTheOldPath) {
  Tree tree(2, {{1, 1}, {2, 2}});
  const Path old = *tree.find({2, 2});
  tree.tree.clear();
  EXPECT_TRUE(old == tree.insert({1, 5}, 9));
  EXPECT_EQ((Rows{{{1, 5}, 9}}), tree.rows());
}

TEST(GTree, insertAnywhereAboveAForgottenLastKeyIsCountedButLinkedToWhatIsGone) {
  Tree tree(2, {{1, 1}, {2, 2}});
  tree.tree.clear();
  tree.insert({1, 5}, 7);
  EXPECT_EQ((Key{3, 1}), keyOf(tree.insert({3, 1}, 9)));
  EXPECT_EQ(2, tree.tree.count());
  EXPECT_EQ((std::vector<Key>{{1, 5}}), tree.keys());
  EXPECT_FALSE(tree.find({3, 1}));
}

TEST(GTree, insertSequentialOfAForgottenLastKeyWritesToWhatIsGone) {
  Tree tree(2, {{1, 1}, {2, 2}});
  tree.tree.clear();
  tree.insert({1, 5}, 7);
  EXPECT_EQ((Key{2, 2}), keyOf(tree.append({2, 2}, 9)));
  EXPECT_EQ((Rows{{{1, 5}, 7}}), tree.rows());
}

TEST(GTree, aRecordThatAForgottenBranchHidesIsWrittenAndCountedAgain) {
  Tree tree(2, {{1, 1}, {1, 5}});
  tree.tree.clear();
  tree.insert({1, 3}, 7);
  EXPECT_EQ((Key{1, 3}), keyOf(tree.append({1, 3}, 8)));
  EXPECT_EQ(2, tree.tree.count());
  EXPECT_EQ(8, *tree.find({1, 3})->node[1]->values());
}

TEST(GTree, startAnewForgetsTheLastRecordTooAndGivesThePathOfTheNextFirst) {
  Tree tree(2, {{1, 1}, {2, 2}});
  tree.tree.startAnew();
  EXPECT_EQ(0, tree.tree.count());
  EXPECT_EQ((Key{2, 2}), keyOf(tree.insert({2, 2}, 7)));
  EXPECT_EQ((Key{1, 3}), keyOf(tree.insert({1, 3}, 8)));
  EXPECT_EQ((Key{2, 3}), keyOf(tree.append({2, 3}, 9)));
  EXPECT_EQ((Rows{{{1, 3}, 8}, {{2, 2}, 7}, {{2, 3}, 9}}), tree.rows());
}

TEST(GTree, releaseForgetsTheLastRecordToo) {
  Tree tree(2, {{1, 1}, {2, 2}});
  tree.tree.release();
  EXPECT_EQ(0, tree.tree.count());
  tree.append({2, 2}, 7);
  tree.append({2, 3}, 8);
  EXPECT_EQ((Rows{{{2, 2}, 7}, {{2, 3}, 8}}), tree.rows());
}

}  // namespace
}  // namespace ztb::storetest
