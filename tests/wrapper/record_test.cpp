#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <utility>
#include <ztb/ztb.hpp>

namespace {

TEST(Record, ReadsAndWritesEveryField) {
  ztb::Database database;
  ztb::Record record = database.addVariable("v", 1, {"*"}).add("a");
  EXPECT_EQ(record.upper(), 1);
  EXPECT_EQ(record.scale(), 1);
  record.setLevel(2);
  record.setMarginal(3);
  record.setLower(4);
  record.setUpper(5);
  record.setScale(6);
  EXPECT_EQ(record.level(), 2);
  EXPECT_EQ(record.marginal(), 3);
  EXPECT_EQ(record.lower(), 4);
  EXPECT_EQ(record.upper(), 5);
  EXPECT_EQ(record.scale(), 6);
}

TEST(Record, ReadsKeysAndRawValues) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*"});
  ztb::Record record = p.add("a", "b");
  record.setLevel(7);
  EXPECT_EQ(record.key(0), "a");
  EXPECT_EQ(record.key(1).str(), "b");
  EXPECT_THROW(static_cast<void>(record.key(2)), ztb::Error);
  std::array<int, 2> numbers{};
  std::array<double, ztb::fieldCount> values{};
  record.raw(numbers.data(), values.data());
  EXPECT_EQ(numbers, (std::array{1, 2}));
  EXPECT_EQ(values[0], 7);
}

TEST(Record, ReadsAndWritesTexts) {
  ztb::Database database;
  ztb::Record record = database.addSet("s", {"*"}).add("a");
  EXPECT_TRUE(record.text().empty());
  record.setText("some text");
  EXPECT_EQ(record.text(), "some text");
  record.setText("");
  EXPECT_TRUE(record.text().empty());
  EXPECT_THROW(record.setText(std::string(256, 't')), ztb::Error);
}

TEST(Record, MovesBothWays) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  p.add("a");
  p.add("b");
  ztb::Record record = *p.find("a");
  EXPECT_FALSE(record.hasPrevious());
  EXPECT_TRUE(record.hasNext());
  EXPECT_TRUE(record.moveNext());
  EXPECT_EQ(record.key(0), "b");
  EXPECT_FALSE(record.moveNext());
  EXPECT_EQ(record.key(0), "b");
  EXPECT_TRUE(record.movePrevious());
  EXPECT_FALSE(record.movePrevious());
}

TEST(Record, KnowsItsCopies) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  ztb::Record record = p.add("a");
  p.add("b");
  ztb::Record copy = record.copy();
  EXPECT_TRUE(copy.sameAs(record));
  copy.moveNext();
  EXPECT_FALSE(copy.sameAs(record));
}

TEST(Record, StandsOnTheNextOneAfterErase) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  p.add("a");
  p.add("b");
  ztb::Record record = *p.find("a");
  record.erase();
  EXPECT_EQ(record.key(0), "b");
  EXPECT_EQ(p.recordCount(), 1);
}

TEST(Record, IsMoved) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  ztb::Record first = p.add("a");
  ztb::Record second = p.add("b");
  first = std::move(second);
  EXPECT_EQ(first.key(0), "b");
  const ztb::Record third = std::move(first);
  EXPECT_EQ(third.key(0), "b");
}

}  // namespace
