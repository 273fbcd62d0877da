// The structure of the tree behind the default store: the rules of a red-black tree hold after
// every change, and it holds what a standard set holds.
#include "store/node_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <iterator>
#include <random>
#include <set>
#include <vector>

#include "store/node_pool.h"

namespace ztb::dmap {
namespace {

struct NumberNode : TreeLink {
  int number = 0;
};

class NodeTreeTest : public testing::Test {
 protected:
  NumberNode* nodeOf(int number) {
    nodes_.emplace_back();
    nodes_.back().number = number;
    return &nodes_.back();
  }
  static int numberOf(TreeLink* node) { return static_cast<NumberNode*>(node)->number; }

  void append(int count) {
    for (int number = 0; number < count; ++number) {
      tree_.linkLast(nodeOf(number));
    }
  }

  TreeLink* find(int number) {
    TreeLink* node = tree_.isTree() ? tree_.root() : nullptr;
    while (node != nullptr && numberOf(node) != number) {
      node = number < numberOf(node) ? node->left : node->right;
    }
    return node;
  }

  void insert(int number) {
    if (!tree_.isTree()) {
      tree_.linkLast(nodeOf(number));
      tree_.settle();
      return;
    }
    TreeLink* node = tree_.root();
    while (true) {
      const bool asLeft = number < numberOf(node);
      TreeLink* child = asLeft ? node->left : node->right;
      if (child == nullptr) {
        tree_.linkBelow(nodeOf(number), node, asLeft);
        return;
      }
      node = child;
    }
  }

  std::vector<int> forward() {
    std::vector<int> numbers;
    for (TreeLink* node = tree_.first(); !node->isHead(); node = node->next()) {
      numbers.push_back(numberOf(node));
    }
    return numbers;
  }
  std::vector<int> backward() {
    std::vector<int> numbers;
    for (std::size_t left = tree_.size(); left > 0; --left) {
      TreeLink* node = numbers.empty() ? tree_.head()->prev() : last_->prev();
      last_ = node;
      numbers.push_back(numberOf(node));
    }
    return numbers;
  }

  // The number of black nodes on every way down, or -1 where a rule is broken.
  static int blackHeight(TreeLink* node, const TreeLink* parent) {
    if (node == nullptr) {
      return 0;
    }
    const bool redPair = node->isRed() && !parent->isHead() && parent->isRed();
    if (node->parent() != parent || redPair || node->isListed()) {
      return -1;
    }
    const int left = blackHeight(node->left, node);
    const int right = blackHeight(node->right, node);
    return left < 0 || left != right ? -1 : left + (node->isRed() ? 0 : 1);
  }
  bool keepsTheRules() {
    TreeLink* root = tree_.root();
    return !tree_.isTree() || (!root->isRed() && blackHeight(root, tree_.head()) > 0);
  }
  static int depth(TreeLink* node) {
    return node == nullptr ? 0 : 1 + std::max(depth(node->left), depth(node->right));
  }

  void expectIs(const std::set<int>& numbers) {
    ASSERT_TRUE(keepsTheRules());
    ASSERT_EQ(tree_.size(), numbers.size());
    ASSERT_EQ(forward(), std::vector<int>(numbers.begin(), numbers.end()));
    ASSERT_EQ(backward(), std::vector<int>(numbers.rbegin(), numbers.rend()));
  }

  std::deque<NumberNode> nodes_;
  NodeTree tree_;
  TreeLink* last_ = nullptr;
};

TEST_F(NodeTreeTest, NodesThatArriveInOrderAreAListUntilTheyAreSearched) {
  append(3);
  EXPECT_FALSE(tree_.isTree());
  EXPECT_EQ(forward(), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(backward(), (std::vector<int>{2, 1, 0}));
  tree_.settle();
  EXPECT_EQ(numberOf(tree_.root()), 1);
}

TEST_F(NodeTreeTest, AListOfAnyLengthBecomesATreeOfLeastDepth) {
  for (int count = 1; count <= 300; ++count) {
    nodes_.clear();
    tree_.forget();
    append(count);
    tree_.settle();
    std::set<int> numbers;
    int levels = 0;
    for (int number = 0; number < count; ++number) {
      numbers.insert(number);
    }
    while ((1 << levels) <= count) {
      ++levels;
    }
    expectIs(numbers);
    ASSERT_EQ(depth(tree_.root()), levels) << count;
  }
}

TEST_F(NodeTreeTest, AnyNodeGoesFromAListWhichStaysOne) {
  for (const int gone : {0, 2, 4}) {
    nodes_.clear();
    tree_.forget();
    append(5);
    std::set<int> numbers{0, 1, 2, 3, 4};
    numbers.erase(gone);
    TreeLink* node = tree_.first();
    for (int step = 0; step < gone; ++step) {
      node = node->next();
    }
    tree_.unlink(node);
    EXPECT_FALSE(tree_.isTree());
    expectIs(numbers);
  }
}

TEST_F(NodeTreeTest, TheLastNodeLeavesItEmptyAndReadyForAListAgain) {
  append(1);
  tree_.settle();
  tree_.unlink(tree_.first());
  expectIs({});
  EXPECT_TRUE(tree_.first()->isHead());
  EXPECT_TRUE(tree_.last()->isHead());
  append(2);
  EXPECT_FALSE(tree_.isTree());
  tree_.unlink(tree_.last());
  tree_.unlink(tree_.last());
  expectIs({});
}

TEST_F(NodeTreeTest, HoldsWhatASetHoldsThroughRandomChanges) {
  std::mt19937 random(20);
  for (const int range : {3, 20, 200, 2000}) {
    nodes_.clear();
    tree_.forget();
    std::set<int> numbers;
    for (int step = 0; step < 4000; ++step) {
      // Now more comes than goes, now more goes.
      const int number = static_cast<int>(random() % static_cast<unsigned>(range));
      const bool growing = (step / 500) % 2 == 0;
      if (random() % 4 < (growing ? 3U : 1U)) {
        if (numbers.insert(number).second) {
          if (!numbers.empty() && *numbers.rbegin() == number && random() % 2 == 0) {
            tree_.linkLast(nodeOf(number));
            tree_.settle();
          } else {
            insert(number);
          }
        }
      } else if (numbers.erase(number) == 1) {
        tree_.unlink(find(number));
      }
      if (range < 300 || step % 100 == 0) {
        expectIs(numbers);
      }
    }
    expectIs(numbers);
  }
}

TEST(NodePoolTest, HandsANodeThatWasGivenBackOutNext) {
  NodePool pool(48);
  void* first = pool.take();
  void* second = pool.take();
  EXPECT_NE(first, second);
  pool.give(first);
  pool.give(second);
  EXPECT_EQ(pool.take(), second);
  EXPECT_EQ(pool.take(), first);
}

TEST(NodePoolTest, NodesOfAllBlocksAreApart) {
  NodePool pool(48);
  std::set<char*> nodes;
  for (int count = 0; count < 100000; ++count) {
    char* node = static_cast<char*>(pool.take());
    std::fill_n(node, 48, 'x');
    ASSERT_TRUE(nodes.insert(node).second);
  }
  char* before = nullptr;
  for (char* node : nodes) {
    ASSERT_TRUE(before == nullptr || node - before >= 48);
    before = node;
  }
}

// What lies ready for nodes to come is at most a fourth of what is in use, and a few nodes.
TEST(NodePoolTest, LeavesLittleMemoryUnused) {
  NodePool pool(48);
  for (std::size_t count = 1; count <= 30000; ++count) {
    pool.take();
    ASSERT_LE(pool.reserved(), count + count / 4 + 4) << count;
  }
}

}  // namespace
}  // namespace ztb::dmap
