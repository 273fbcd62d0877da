// Searches of long lists, which leave places behind to begin at.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

#include "tests/stores/tree_rows.h"

namespace ztb::storetest {
namespace {

// Finds, insertions in the middle and deletions in turn, beside a standard map.
TEST(GTreeSearch, staysRightAsRecordsOfLongListsComeAndGo) {
  constexpr int width = 900;
  Tree tree(2);
  std::map<Key, double> model;
  std::mt19937 random(7);
  const auto any = [&] {
    const int first = static_cast<int>(random() % 3) * 400 + 1;
    return Key{first, static_cast<int>(random() % width) + 1};
  };
  for (int step = 0; step < 60000; ++step) {
    const Key key = any();
    const auto known = model.find(key);
    const std::optional<Path> path = tree.find(key);
    ASSERT_EQ(path.has_value(), known != model.end()) << key[0] << ',' << key[1];
    if (path) {
      ASSERT_EQ(*path->node[1]->values(), known->second);
    }
    if (!path) {
      tree.insert(key, step);
      model.emplace(key, step);
    } else if (random() % 3 == 0 && key[1] > 1) {
      tree.erase(key);
      model.erase(key);
    }
  }
  EXPECT_EQ(Rows(model.begin(), model.end()), tree.rows());
}

TEST(GTreeSearch, beginsAnewWithTheTree) {
  std::vector<Key> keys;
  for (int first = 1; first <= 100; ++first) {
    for (int second = 1; second <= 100; ++second) keys.push_back({first, second});
  }
  Tree tree(2, keys);
  for (const Key& key : keys) ASSERT_EQ(keyOf(*tree.find(key)), key);
  for (const bool releases : {false, true}) {
    releases ? tree.tree.release() : tree.tree.startAnew();
    EXPECT_FALSE(tree.find({50, 50}));
    for (int second = 2; second <= 200; second += 2) tree.append({7, second}, second);
    for (int second = 1; second <= 200; ++second) {
      ASSERT_EQ(tree.find({7, second}).has_value(), second % 2 == 0) << second;
    }
    EXPECT_FALSE(tree.find({50, 50}));
  }
}

// The nodes of a deleted record are no place to begin at, at the first level neither.
TEST(GTreeSearch, beginsAtNoNodeThatIsOutOfItsList) {
  Tree tree(1);
  for (int key = 1; key <= 200; ++key) tree.append({key}, key);
  ASSERT_TRUE(tree.find({200}));
  for (int key = 2; key <= 199; ++key) {
    tree.erase({key});
    ASSERT_FALSE(tree.find({key})) << key;
    ASSERT_EQ(keyOf(*tree.find({key + 1})), Key{key + 1});
  }
  tree.insert({100}, 1);
  EXPECT_EQ(tree.keys(), (std::vector<Key>{{1}, {100}, {200}}));
  EXPECT_TRUE(tree.find({100}));
}

}  // namespace
}  // namespace ztb::storetest
