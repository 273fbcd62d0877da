#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

namespace {

TEST(Symbol, FindsRecordsAndAddsNoLabels) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*"});
  EXPECT_FALSE(p.find("a", "b"));
  p.add("a", std::string("b")).setLevel(1);
  EXPECT_TRUE(p.find("A", "B"));
  EXPECT_FALSE(p.find("b", "a"));
  EXPECT_FALSE(p.find("a", "c"));
  EXPECT_EQ(database.labelCount(), 2);
}

TEST(Symbol, TakesKeysThatAreCountedAtRunTime) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*"});
  const std::vector<const char*> keys{"a", "b"};
  p.add(ztb::Keys(keys)).setLevel(3);
  EXPECT_EQ(p.find(ztb::Keys(keys))->level(), 3);
  EXPECT_EQ(p.merge(ztb::Keys(keys)).level(), 3);
}

TEST(Symbol, TakesATextAsAKey) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  const ztb::Text label = p.add("a").key(0);
  EXPECT_TRUE(p.find(label));
}

TEST(Symbol, MergesRecords) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  p.merge("a").setLevel(2);
  EXPECT_EQ(p.merge("a").level(), 2);
  EXPECT_EQ(p.recordCount(), 1);
}

TEST(Symbol, PutsRecordsByNumbers) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*"});
  const std::array numbers{database.mergeLabel("a"), database.mergeLabel("b")};
  p.put(numbers, 4.0);
  p.putUnchecked(numbers, 5.0);
  EXPECT_EQ(p.find("a", "b")->level(), 5);
  ztb::Symbol v = database.addVariable("v", 3, {"*", "*"});
  v.put(numbers, {1, 2, 3, 4, 5});
  EXPECT_EQ(v.find("a", "b")->scale(), 5);
  v.putUnchecked(numbers, {5, 4, 3, 2, 1});
  EXPECT_EQ(v.find("a", "b")->marginal(), 4);
}

TEST(Symbol, PutsElementsByNumbers) {
  ztb::Database database;
  ztb::Symbol s = database.addSet("s", {"*"});
  const int number[] = {database.mergeLabel("a")};
  s.putElement(number, "text");
  EXPECT_EQ(s.find("a")->text(), "text");
  s.putElementUnchecked(number, nullptr);
  EXPECT_EQ(s.find("a")->text(), "text");
}

TEST(Symbol, PutsTheRecordOfAScalar) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {});
  p.put({}, 3.25);
  EXPECT_EQ(p.find()->level(), 3.25);
  EXPECT_THROW(p.add(), ztb::Error);
}

TEST(Symbol, IsCleared) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  p.add("a");
  p.clear();
  EXPECT_EQ(p.recordCount(), 0);
  EXPECT_THROW(database.universe().clear(), ztb::Error);
}

TEST(Symbol, KeepsUserInfo) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  EXPECT_EQ(p.userInfo(), 0);
  p.setUserInfo(-7);
  EXPECT_EQ(p.userInfo(), -7);
}

TEST(Symbol, RefusesANullHandle) {
  ztb::Database database;
  EXPECT_THROW(ztb::Symbol(database.handle(), nullptr), ztb::Error);
}

TEST(Symbol, OfTheUniverseCountsLabels) {
  ztb::Database database;
  database.mergeLabel("a");
  database.mergeLabel("b");
  EXPECT_EQ(database.universe().recordCount(), 2);
  EXPECT_EQ(database.universe().find("b")->key(0), "b");
  EXPECT_THROW(static_cast<void>(database.universe().domains()), ztb::Error);
}

}  // namespace
