// ztb/arrow.hpp, the C++ wrapper.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>
#include <ztb/arrow.hpp>

#include "tests/formats/arrow_batches.h"

namespace {

using formatstest::Batches;
using formatstest::Column;
using formatstest::HandMade;

class ArrowWrapperTest : public testing::TestWithParam<ztb::Store> {};

TEST_P(ArrowWrapperTest, TakesASymbolOutAndIn) {
  ztb::Database database;
  database.selectStore(GetParam());
  ztb::Symbol price = database.addParameter("price", {"food"});
  price.add("Milk").setLevel(0.1 + 0.2);
  price.add("Tofu").setLevel(-std::numeric_limits<double>::infinity());
  ztb::Database other;
  other.selectStore(GetParam());
  ztb::Symbol copy = ztb::fromArrow(other, "price", ztb::toArrow(price, ZTB_ARROW_IN_PLACE, 1));
  EXPECT_EQ(copy.recordCount(), 2);
  EXPECT_EQ(copy.find("Milk")->level(), 0.1 + 0.2);
  EXPECT_EQ(copy.domains().front().name.str(), "food");
  // Of the same database, too, where handles of records end on stores without fixed places.
  const ztb::Symbol twice = ztb::fromArrow(database, "twice", ztb::toArrow(price));
  const ztb::Record old = *twice.find("Milk");
  price.find("Milk")->setLevel(7);
  ztb::fillFromArrow(twice, ztb::toArrow(price));
  EXPECT_EQ(twice.find("Milk")->level(), 7);
  if (GetParam() != ztb::Store::map) {
    EXPECT_THROW(static_cast<void>(old.level()), ztb::Error);
  }
}

INSTANTIATE_TEST_SUITE_P(Stores, ArrowWrapperTest,
                         testing::Values(ztb::Store::map, ztb::Store::vector, ztb::Store::trie));

TEST(ArrowWrapper, ReleasesAStreamOnceWhoeverReadIt) {
  ztb::Database database;
  database.addParameter("price", {"food"}).add("Milk").setLevel(2);
  ztb::ArrowStream stream = ztb::toArrow(database["price"]);
  ztb::ArrowStream moved = std::move(stream);
  EXPECT_EQ(stream.get()->release, nullptr);
  stream = std::move(moved);
  ASSERT_NE(stream.get()->release, nullptr);
  const Batches batches(std::exchange(*stream.get(), ArrowArrayStream{}));
  EXPECT_EQ(batches.numbers(1), std::vector<double>{2});
}

TEST(ArrowWrapper, ThrowsWhatIsWrongAndChangesNothing) {
  ztb::Database database;
  ztb::Symbol price = database.addParameter("price", {"food"});
  price.add("Milk").setLevel(2);
  const auto data = [](HandMade& made) { return ztb::ArrowStream(*made.stream()); };
  HandMade missing;
  missing.add(Column::texts("food", {"Milk", "Tofu"}))
      .add(Column::doubles("value", {1, 2}, {false, true}));
  try {
    ztb::fillFromArrow(price, data(missing));
    FAIL() << "nothing is thrown";
  } catch (const ztb::Error& error) {
    EXPECT_STREQ(error.operation(), "ztbArrowFill");
    EXPECT_EQ(std::string(error.text()), "column value, row 1: a value is missing");
  }
  EXPECT_EQ(price.recordCount(), 1);
  EXPECT_EQ(price.find("Milk")->level(), 2);
  HandMade skipped;
  skipped.add(Column::doubles("value", {1, 2}, {false, true}))
      .add(Column::texts("food", {"Tofu", "Milk"}));
  ztb::fillFromArrow(price, data(skipped), {.keys = {"food"}, .nulls = ZTB_ARROW_NULLS_SKIPPED});
  EXPECT_EQ(price.recordCount(), 1);
  EXPECT_EQ(price.find("Tofu")->level(), 1);
  HandMade again;
  again.add(Column::texts("food", {"Milk"}));
  EXPECT_THROW(ztb::fromArrow(database, "price", data(again)), ztb::Error);
  HandMade set;
  set.add(Column::texts("i", {"Milk"})).add(Column::texts("value", {"Tofu"}));
  const ztb::Symbol pairs = ztb::fromArrow(database, "pairs", data(set), {}, ZTB_SET);
  EXPECT_EQ(pairs.type(), ztb::Type::set);
  EXPECT_TRUE(pairs.find("Milk", "Tofu").has_value());
}

}  // namespace
