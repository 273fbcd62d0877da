// ztb/arrow.h: symbols as Arrow streams and back. What goes out is looked at cell by cell, and what
// comes in is made by hand, so that neither side is judged by the other.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ztb/arrow.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/formats/arrow_batches.h"

namespace {

using formatstest::Batches;
using formatstest::Column;
using formatstest::HandMade;
using testing::ElementsAre;

constexpr double infinity = std::numeric_limits<double>::infinity();

double ofBits(std::uint64_t bits) {
  return std::bit_cast<double>(bits);
}

ztbArrowOptions optionsOf(int flags, int batch) {
  ztbArrowOptions options{};
  options.flags = flags;
  options.batchRecords = batch;
  return options;
}

// The stream of a symbol, read to its end.
Batches exported(const ztb::Symbol& symbol, int flags = 0, int batch = 0) {
  const ztbArrowOptions options = optionsOf(flags, batch);
  ArrowArrayStream stream{};
  std::array<char, 256> message{};
  EXPECT_EQ(ztbArrowExport(symbol.database(), symbol.handle(), &options, &stream, message.data(),
                           static_cast<int>(message.size())),
            1)
      << message.data();
  return Batches(stream);
}

// The text of a refusal, empty where there was none.
std::string fill(const ztb::Symbol& symbol, HandMade& data, int nulls = ZTB_ARROW_NULLS_REFUSED,
                 std::vector<const char*> keys = {}) {
  const ztbArrowImportOptions options{.keys = keys.empty() ? nullptr : keys.data(),
                                      .keyCount = static_cast<int>(keys.size()),
                                      .nulls = nulls};
  std::array<char, 512> message{};
  const int result = ztbArrowFill(symbol.database(), symbol.handle(), data.stream(), &options,
                                  message.data(), message.size());
  EXPECT_EQ(result == 0, message[0] != '\0');
  EXPECT_EQ(data.stream()->release, nullptr);
  return message.data();
}

std::vector<std::string> labelsOf(const ztb::Database& database) {
  std::vector<std::string> labels;
  for (int number = 1; number <= database.labelCount(); ++number) {
    labels.push_back(database.label(number).str());
  }
  return labels;
}

ztb::Symbol addPrices(ztb::Database& database) {
  ztb::Symbol price = database.addParameter("price", {"food", "*"});
  price.add("Milk", "a").setLevel(1.5);
  price.add("Milk", "b").setLevel(-0.0);
  price.add("Tofu", "a").setLevel(4);
  return price;
}

class ArrowExport : public testing::TestWithParam<ztb::Store> {
 protected:
  ArrowExport() { database_.selectStore(GetParam()); }
  ztb::Database database_;
};

TEST_P(ArrowExport, ShowsAParameterByColumns) {
  const Batches batches = exported(addPrices(database_));
  EXPECT_THAT(batches.names(), ElementsAre("food", "dim_2", "value"));
  EXPECT_THAT(batches.formats(), ElementsAre("i:u", "i:u", "g"));
  EXPECT_THAT(batches.labels(0), ElementsAre("Milk", "Milk", "Tofu"));
  EXPECT_THAT(batches.labels(1), ElementsAre("a", "b", "a"));
  EXPECT_THAT(batches.numbers(2), ElementsAre(1.5, 0.0, 4.0));
  EXPECT_TRUE(std::signbit(batches.numbers(2)[1]));
}

TEST_P(ArrowExport, ShowsTheFiveFieldsOfAVariable) {
  ztb::Symbol x = database_.addVariable("x", 4, {"*"});
  x.add("i").setMarginal(2);
  const Batches batches = exported(x);
  EXPECT_THAT(batches.names(),
              ElementsAre("label", "level", "marginal", "lower", "upper", "scale"));
  EXPECT_THAT(batches.numbers(2), ElementsAre(2.0));
  // A negative variable.
  EXPECT_THAT(batches.numbers(3), ElementsAre(-infinity));
  EXPECT_THAT(batches.numbers(4), ElementsAre(0.0));
}

TEST_P(ArrowExport, ShowsTextsOfASet) {
  ztb::Symbol food = database_.addSet("food", {"*"});
  food.add("Milk").setText("1 qt.");
  food.add("Tofu");
  const Batches batches = exported(food);
  EXPECT_THAT(batches.names(), ElementsAre("food", "text"));
  EXPECT_THAT(batches.labels(1), ElementsAre("1 qt.", ""));
  database_.addAlias("dish", food);
  EXPECT_THAT(exported(*database_.findSymbolOrAlias("dish")).labels(0),
              ElementsAre("Milk", "Tofu"));
}

TEST_P(ArrowExport, ShowsAScalarAndAnEmptySymbol) {
  ztb::Symbol pi = database_.addParameter("pi", {});
  EXPECT_EQ(exported(pi).lengths().size(), 0U);
  pi.add().setLevel(3.25);
  EXPECT_THAT(exported(pi).numbers(0), ElementsAre(3.25));
  EXPECT_THAT(exported(database_.addParameter("none", {"*", "*"})).names(),
              ElementsAre("dim_1", "dim_2", "value"));
}

TEST_P(ArrowExport, GoesInBatchesOfBoundedSize) {
  ztb::Symbol p = database_.addParameter("p", {"*", "*"});
  for (int i = 0; i < 7; ++i) {
    for (const char* j : {"x", "y"}) p.add("i" + std::to_string(i), j).setLevel(i);
  }
  const Batches batches = exported(p, 0, 4);
  EXPECT_THAT(batches.lengths(), ElementsAre(4, 4, 4, 2));
  EXPECT_EQ(batches.labels(0)[13], "i6");
  EXPECT_THAT(batches.labels(1)[12], "x");
  // A dictionary has the labels of its batch alone.
  EXPECT_THAT(batches.dictionarySizes(0), ElementsAre(2, 2, 2, 1));
}

TEST_P(ArrowExport, SpellsSpecialValuesAsTheCallerHasSetThem) {
  ztb::Symbol p = database_.addParameter("p", {"*"});
  const std::array<double, 6> values{1e300,     ofBits(0x7FF8000000000000), infinity, -infinity,
                                     ofBits(1), ofBits(0x7FF8000000000123)};
  for (std::size_t i = 0; i < values.size(); ++i) {
    p.add("i" + std::to_string(i)).setLevel(values[i]);
  }
  const auto bits = [](const std::vector<double>& read) {
    std::vector<std::uint64_t> result;
    for (const double value : read) result.push_back(std::bit_cast<std::uint64_t>(value));
    return result;
  };
  EXPECT_THAT(bits(exported(p, ZTB_ARROW_IN_PLACE).numbers(1)),
              ElementsAre(0x7E37E43C8800759C, 0x7FF8000000000000, 0x7FF0000000000000,
                          0xFFF0000000000000, 1, 0x7FF8000000000123));
  EXPECT_THAT(exported(p, ZTB_ARROW_NA_AS_NULL).nulls(1),
              ElementsAre(false, true, false, false, false, false));
  database_.setSpecialValues({-1, -2, -3, -4, -5});
  const std::vector<double> shown = exported(p, ZTB_ARROW_IN_PLACE).numbers(1);
  EXPECT_THAT(std::vector<double>(shown.begin(), shown.begin() + 5),
              ElementsAre(-1, -2, -3, -4, -5));
  EXPECT_THAT(exported(p, ZTB_ARROW_NA_AS_NULL).nulls(1),
              ElementsAre(false, true, false, false, false, false));
}

TEST_P(ArrowExport, FailsWhenRecordsChangeUnderIt) {
  ztb::Symbol price = addPrices(database_);
  const ztbArrowOptions options = optionsOf(0, 2);
  ArrowArrayStream stream{};
  std::array<char, 256> message{};
  ASSERT_EQ(ztbArrowExport(price.database(), price.handle(), &options, &stream, message.data(),
                           static_cast<int>(message.size())),
            1);
  ArrowArray first{};
  ASSERT_EQ(stream.get_next(&stream, &first), 0);
  price.clear();
  ArrowArray second{};
  EXPECT_NE(stream.get_next(&stream, &second), 0);
  EXPECT_STREQ(stream.get_last_error(&stream),
               "records of the database were changed while they were read");
  EXPECT_NE(stream.get_next(&stream, &second), 0);
  // The first batch outlives the stream and the records.
  stream.release(&stream);
  EXPECT_EQ(static_cast<const double*>(first.children[2]->buffers[1])[0], 1.5);
  first.release(&first);
}

INSTANTIATE_TEST_SUITE_P(Stores, ArrowExport,
                         testing::Values(ztb::Store::map, ztb::Store::vector, ztb::Store::trie),
                         [](const testing::TestParamInfo<ztb::Store>& store) {
                           return store.param == ztb::Store::map      ? "map"
                                  : store.param == ztb::Store::vector ? "vector"
                                                                      : "trie";
                         });

TEST(ArrowStream, ShowsValuesOfTheVectorStoreWhereTheyLie) {
  ztb::Database database;
  database.selectStore(ztb::Store::vector);
  ztb::Symbol price = addPrices(database);
  price.find("Tofu", "a")->setLevel(database.specialValues()[ZTB_NOT_AVAILABLE]);
  const double* values = nullptr;
  ASSERT_EQ(ztbValuesInPlace(database.handle(), price.handle(), &values), 1);
  for (const int flags :
       {0, static_cast<int>(ZTB_ARROW_IN_PLACE), static_cast<int>(ZTB_ARROW_NA_AS_NULL)}) {
    EXPECT_THAT(exported(price, flags, 2).addresses(2), ElementsAre(values, values + 2));
  }
  // Reading and releasing leaves them there.
  EXPECT_EQ(price.find("Milk", "a")->level(), 1.5);
  price.find("Milk", "a")->setLevel(2.5);
  ASSERT_THAT(exported(price, 0, 2).addresses(2), ElementsAre(values, values + 2));
  // A batch that has a value which the caller spells otherwise is a copy, no other is.
  database.setSpecialValues({-1, -2, -3, -4, -5});
  const Batches spelled = exported(price, 0, 2);
  EXPECT_EQ(spelled.addresses(2)[0], values);
  EXPECT_NE(spelled.addresses(2)[1], values + 2);
  EXPECT_THAT(spelled.numbers(2), ElementsAre(2.5, 0, -2));
}

// Exports that are alive at once, each with the values of its time.
TEST(ArrowStream, BatchesStayAsTheyWereWhateverBecomesOfTheDatabase) {
  std::vector<std::unique_ptr<Batches>> batches;
  const auto hold = [&](const ztb::Symbol& symbol) {
    const ztbArrowOptions options = optionsOf(0, 2);
    ArrowArrayStream stream{};
    ASSERT_EQ(ztbArrowExport(symbol.database(), symbol.handle(), &options, &stream, nullptr, 0), 1);
    batches.push_back(std::make_unique<Batches>(stream));
  };
  {
    ztb::Database database;
    database.selectStore(ztb::Store::vector);
    ztb::Symbol price = addPrices(database);
    hold(price);
    price.find("Milk", "b")->setLevel(7);
    hold(price);
    price.add("Tofu", "b").setLevel(8);
    hold(price);
    price.remove("Milk", "a");
    hold(price);
    price.clear();
    price.add("Milk", "a").setLevel(9);
    hold(price);
    ztb::Symbol moved = database.moveTo(price, ztb::Store::trie);
    moved.find("Milk", "a")->setLevel(10);
    hold(moved);
  }
  const std::vector<std::vector<double>> expected = {{1.5, 0, 4}, {1.5, 7, 4}, {1.5, 7, 4, 8},
                                                     {7, 4, 8},   {9},         {10}};
  ASSERT_EQ(batches.size(), expected.size());
  // Released in an order of their own, on other threads.
  for (const std::size_t at : {3U, 0U, 5U, 1U, 4U, 2U}) {
    EXPECT_EQ(batches[at]->numbers(2), expected[at]) << at;
    std::thread([&] { batches[at].reset(); }).join();
  }
}

TEST(ArrowStream, AsksItsOwnerAroundEachUse) {
  struct Owner {
    int entered = 0;
    int left = 0;
    int released = 0;
    bool refuses = false;
  } owner;
  ztb::Database database;
  const ztb::Symbol price = addPrices(database);
  const ztbArrowOptions options{
      .flags = 0,
      .batchRecords = 2,
      .owner = &owner,
      .enter =
          [](void* self, char* message, int size) {
            auto* mine = static_cast<Owner*>(self);
            ++mine->entered;
            std::snprintf(message, static_cast<std::size_t>(size), "not now");
            return mine->refuses ? 0 : 1;
          },
      .leave = [](void* self) { ++static_cast<Owner*>(self)->left; },
      .release = [](void* self) { ++static_cast<Owner*>(self)->released; }};
  ArrowArrayStream stream{};
  std::array<char, 64> message{};
  ASSERT_EQ(ztbArrowExport(database.handle(), price.handle(), &options, &stream, message.data(),
                           static_cast<int>(message.size())),
            1);
  ArrowArray batch{};
  ASSERT_EQ(stream.get_next(&stream, &batch), 0);
  batch.release(&batch);
  EXPECT_EQ(owner.entered, 1);
  EXPECT_EQ(owner.left, 1);
  owner.refuses = true;
  EXPECT_NE(stream.get_next(&stream, &batch), 0);
  EXPECT_STREQ(stream.get_last_error(&stream), "not now");
  EXPECT_EQ(owner.left, 1);
  stream.release(&stream);
  EXPECT_EQ(owner.released, 1);
  // It is released also where nothing was made.
  const ztbArrowOptions wrong{.flags = 0,
                              .batchRecords = -1,
                              .owner = &owner,
                              .enter = nullptr,
                              .leave = nullptr,
                              .release = options.release};
  EXPECT_EQ(ztbArrowExport(database.handle(), price.handle(), &wrong, &stream, message.data(),
                           message.size()),
            0);
  EXPECT_STREQ(message.data(), "a batch has at most 1048576 records");
  EXPECT_EQ(owner.released, 2);
}

TEST(ArrowStream, RefusesWhatIsNoUtf8AndTheUniverse) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  p.add("caf\xE9").setLevel(1);
  ArrowArrayStream stream{};
  std::array<char, 256> message{};
  ASSERT_EQ(ztbArrowExport(database.handle(), p.handle(), nullptr, &stream, message.data(),
                           static_cast<int>(message.size())),
            1);
  ArrowArray batch{};
  EXPECT_NE(stream.get_next(&stream, &batch), 0);
  EXPECT_THAT(stream.get_last_error(&stream), testing::EndsWith("' is no UTF-8"));
  stream.release(&stream);
  const ztb::Symbol universe = database.symbol("*");
  EXPECT_EQ(ztbArrowExport(database.handle(), universe.handle(), nullptr, &stream, message.data(),
                           message.size()),
            0);
  EXPECT_STREQ(message.data(), "the universe has labels and no records");
}

TEST(ArrowStream, ComesBackAsItWas) {
  ztb::Database database;
  ztb::Symbol price = addPrices(database);
  price.add("Fish", "b").setLevel(ofBits(0x7FF8000000000123));
  ArrowArrayStream stream{};
  std::array<char, 256> message{};
  ASSERT_EQ(ztbArrowExport(database.handle(), price.handle(), nullptr, &stream, message.data(),
                           static_cast<int>(message.size())),
            1);
  ztb::Database other;
  other.addSet("food", {"*"});
  void* made = nullptr;
  ASSERT_EQ(ztbArrowMake(other.handle(), "price", -1, &stream, nullptr, &made, message.data(),
                         static_cast<int>(message.size())),
            1)
      << message.data();
  const ztb::Symbol back(other.handle(), made);
  EXPECT_EQ(back.type(), ztb::Type::parameter);
  EXPECT_EQ(back.recordCount(), 4);
  EXPECT_TRUE(std::signbit(back.find("Milk", "b")->level()));
  EXPECT_EQ(std::bit_cast<std::uint64_t>(back.find("Fish", "b")->level()), 0x7FF8000000000123U);
  EXPECT_TRUE(back.domains()[0].set.has_value());
  EXPECT_EQ(back.domains()[1].name.str(), "dim_2");
  // New labels come position by position, in the order of rows.
  EXPECT_THAT(labelsOf(other), ElementsAre("Milk", "Tofu", "Fish", "a", "b"));
}

class ArrowFill : public testing::TestWithParam<ztb::Store> {
 protected:
  ArrowFill() { database_.selectStore(GetParam()); }
  ztb::Database database_;
};

TEST_P(ArrowFill, TakesAllKindsOfLabels) {
  ztb::Symbol p = database_.addParameter("p", {"*", "*", "*", "*", "*"});
  p.add("o", "l", "d", "e", "r").setLevel(9);
  HandMade data;
  data.add(Column::texts("a", {"x", "y"}))
      .add(Column::largeTexts("b", {"a label of more than 12 bytes", ""}))
      .add(Column::textViews("c", {"short", "a view of more than 12 bytes"}))
      .add(Column::days("d", {0, -1}))
      .add(Column::whole("e", {-7, 2024}))
      .add(Column::doubles("value", {1, 2}));
  database_.mergeLabel("");
  ASSERT_EQ(fill(p, data), "");
  EXPECT_EQ(p.recordCount(), 2);
  EXPECT_EQ(p.find("x", "a label of more than 12 bytes", "short", "1970-01-01", "-7")->level(), 1);
  EXPECT_EQ(p.find("y", "", "a view of more than 12 bytes", "1969-12-31", "2024")->level(), 2);
}

TEST_P(ArrowFill, TakesTimesAsIsoTexts) {
  ztb::Symbol s = database_.addSet("s", {"*"});
  HandMade data;
  data.add(Column::times("t", "tsn:", {0, 1'500'000'000, 1'000'000'001, 86'400'000'000'000}));
  ASSERT_EQ(fill(s, data), "");
  HandMade zoned;
  ztb::Symbol z = database_.addSet("z", {"*"});
  zoned.add(Column::times("t", "tsm:UTC", {-1}));
  ASSERT_EQ(fill(z, zoned), "");
  EXPECT_THAT(labelsOf(database_), ElementsAre("1970-01-01", "1970-01-01T00:00:01.500000",
                                               "1970-01-01T00:00:01.000000001", "1970-01-02",
                                               "1969-12-31T23:59:59.999000+00:00"));
}

TEST_P(ArrowFill, TakesTimesOfDayAsIsoTexts) {
  ztb::Symbol s = database_.addSet("s", {"*"});
  HandMade data;
  data.add(Column::times("t", "ttu", {0, 45'296'500'000, 86'399'999'999}));
  ASSERT_EQ(fill(s, data), "");
  ztb::Symbol z = database_.addSet("z", {"*"});
  HandMade fine;
  fine.add(Column::times("t", "ttn", {1}));
  ASSERT_EQ(fill(z, fine), "");
  HandMade coarse;
  Column clock = Column::days("t", {3661});  // of 32 bits, too
  clock.format = "tts";
  coarse.add(clock);
  ASSERT_EQ(fill(z, coarse), "");
  EXPECT_THAT(labelsOf(database_), ElementsAre("00:00:00", "12:34:56.500000", "23:59:59.999999",
                                               "00:00:00.000000001", "01:01:01"));
}

TEST_P(ArrowFill, TakesDecimalsAsTheNearestDoubles) {
  ztb::Symbol x = database_.addVariable("x", 3, {"*"});
  constexpr std::uint64_t minus = ~std::uint64_t{0};
  constexpr std::uint64_t top = std::uint64_t{1} << 63U;
  HandMade data;
  data.add(Column::texts("label", {"i", "j", "k"}))
      .add(Column::decimals("level", "d:38,2", {{123, 0}, {minus, minus}, {0, top}}))
      .add(Column::decimals("marginal", "d:18,3,64", {{1001}, {0}, {minus - 999}}))
      .add(Column::decimals("lower", "d:38,-2", {{5, 0}, {minus - 6, minus}, {0, 1}}))
      .add(Column::decimals("upper", "d:76,20,256",
                            {{0, 0, 1, 0}, {minus, minus, minus, minus}, {0, 0, 0, top}}));
  ASSERT_EQ(fill(x, data), "");
  const auto fields = [&](const char* label) {
    const ztb::Record record = *x.find(label);
    return std::vector{record.level(), record.marginal(), record.lower(), record.upper()};
  };
  EXPECT_THAT(fields("i"), ElementsAre(1.23, 1.001, 500, 3.4028236692093844e18));
  EXPECT_THAT(fields("j"), ElementsAre(-0.01, 0, -700, -1e-20));
  EXPECT_THAT(fields("k"), ElementsAre(-1.7014118346046924e36, -1, 1844674407370955161600.0,
                                       -5.7896044618658095e56));
}

TEST_P(ArrowFill, TakesDictionariesSlicesAndBatches) {
  ztb::Symbol p = database_.addParameter("p", {"*"});
  HandMade data;
  data.add(Column::dictionary("i", {"b", "unused", "a"}, {2, 0, 2, 0}))
      .add(Column::doubles("v", {0, 1, 2, 3}));
  // Of four rows the second and third.
  data.slice(1, 2);
  data.addBatch({Column::dictionary("i", {"c"}, {0}), Column::doubles("v", {7})});
  ASSERT_EQ(fill(p, data), "");
  EXPECT_EQ(p.recordCount(), 3);
  EXPECT_EQ(p.find("b")->level(), 1);
  EXPECT_EQ(p.find("a")->level(), 2);
  EXPECT_EQ(p.find("c")->level(), 7);
  EXPECT_THAT(labelsOf(database_), ElementsAre("b", "a", "c"));
}

TEST_P(ArrowFill, TakesAllKindsOfNumbers) {
  ztb::Symbol x = database_.addVariable("x", 3, {"*"});
  HandMade data;
  data.add(Column::texts("label", {"i", "j"}))
      .add(Column::truths("Level", {true, false}))
      .add(Column::floats("marginal", {0.5F, -2}))
      .add(Column::halves("lower", {0x3C00, 0xC000}))
      .add(Column::whole("upper", {1LL << 53, -3}));
  ASSERT_EQ(fill(x, data), "");
  const ztb::Record i = *x.find("i");
  EXPECT_EQ(i.level(), 1);
  EXPECT_EQ(i.marginal(), 0.5);
  EXPECT_EQ(i.lower(), 1);
  EXPECT_EQ(i.upper(), 9007199254740992.0);
  // What no column tells is as a new record has it.
  EXPECT_EQ(i.scale(), 1);
  EXPECT_EQ(x.find("j")->lower(), -2);
}

TEST_P(ArrowFill, TakesNullsByChoice) {
  const auto withNull = [](HandMade& data) {
    data.add(Column::texts("i", {"a", "b"})).add(Column::doubles("v", {1, 2}, {false, true}));
  };
  ztb::Symbol p = database_.addParameter("p", {"*"});
  HandMade refused;
  withNull(refused);
  EXPECT_EQ(fill(p, refused), "column v, row 1: a value is missing");
  EXPECT_EQ(database_.labelCount(), 0);
  HandMade skipped;
  withNull(skipped);
  ASSERT_EQ(fill(p, skipped, ZTB_ARROW_NULLS_SKIPPED), "");
  EXPECT_EQ(p.recordCount(), 1);
  EXPECT_THAT(labelsOf(database_), ElementsAre("a"));
  HandMade taken;
  withNull(taken);
  ASSERT_EQ(fill(p, taken, ZTB_ARROW_NULLS_AS_NA), "");
  EXPECT_EQ(std::bit_cast<std::uint64_t>(p.find("b")->level()), 0x7FF8000000000000U);

  ztb::Symbol x = database_.addVariable("x", 4, {"*"});
  HandMade fields;
  fields.add(Column::texts("i", {"a", "b"}))
      .add(Column::doubles("lower", {0, 0}, {true, true}))
      .add(Column::doubles("level", {5, 0}, {false, true}));
  ASSERT_EQ(fill(x, fields, ZTB_ARROW_NULLS_SKIPPED), "");
  EXPECT_EQ(x.recordCount(), 1);
  EXPECT_EQ(x.find("a")->level(), 5);
  EXPECT_EQ(x.find("a")->lower(), -infinity);
}

TEST_P(ArrowFill, FindsItsColumnsByName) {
  ztb::Symbol p = database_.addParameter("p", {"from", "to"});
  HandMade swapped;
  swapped.add(Column::texts("to", {"y"}))
      .add(Column::doubles("tons", {3}))
      .add(Column::texts("FROM", {"x"}));
  ASSERT_EQ(fill(p, swapped), "");
  EXPECT_EQ(p.find("x", "y")->level(), 3);
  HandMade named;
  named.add(Column::doubles("tons", {4}))
      .add(Column::texts("b", {"u"}))
      .add(Column::texts("a", {"w"}));
  ASSERT_EQ(fill(p, named, ZTB_ARROW_NULLS_REFUSED, {"a", "b"}), "");
  EXPECT_EQ(p.find("w", "u")->level(), 4);
}

TEST_P(ArrowFill, RefusesWithTheNameOfTheColumnAndKeepsAll) {
  ztb::Symbol p = database_.addParameter("p", {"*"});
  p.add("kept").setLevel(1);
  const auto refusal = [&](std::vector<Column> columns) {
    HandMade data;
    for (Column& column : columns) data.add(std::move(column));
    return fill(p, data);
  };
  EXPECT_EQ(refusal({Column::lists("i", {1}), Column::doubles("v", {1})}),
            "column i: is a list, expected labels: texts, whole numbers or dates");
  EXPECT_EQ(refusal({Column::doubles("i", {1}), Column::doubles("v", {1})}),
            "column i: is numbers, expected labels: texts, whole numbers or dates");
  EXPECT_EQ(refusal({Column::texts("i", {"a"}), Column::texts("v", {"1"})}),
            "column v: is texts, expected numbers");
  EXPECT_EQ(refusal({Column::texts("i", {"a"}), Column::dictionary("v", {"1"}, {0})}),
            "column v: is a dictionary of texts, expected numbers");
  EXPECT_EQ(refusal({Column::decimals("i", "d:10,2", {{1, 0}}), Column::doubles("v", {1})}),
            "column i: is decimal numbers, expected labels: texts, whole numbers or dates");
  for (const char* odd :
       {"d:10", "d:10,", "d:10,2,", "d:10,2,100", "d:10,2,128,", "d:,2", "d:9,x"}) {
    EXPECT_EQ(refusal({Column::texts("i", {"a"}), Column::decimals("v", odd, {{1, 0}})}),
              "column v: is decimal numbers, expected numbers")
        << odd;
  }
  EXPECT_EQ(refusal({Column::times("i", "ttu", {-1}), Column::doubles("v", {1})}),
            "column i, row 0: a time that no day has");
  Column outer = Column::dictionary("i", {"a"}, {0});
  outer.entries = std::make_shared<Column>(Column::dictionary("", {"a"}, {0}));
  EXPECT_EQ(refusal({outer, Column::doubles("v", {1})}),
            "column i: is a dictionary of dictionaries, expected labels: texts, whole numbers or "
            "dates");
  EXPECT_EQ(refusal({Column::texts("i", {"new", "NEW "}), Column::doubles("v", {1, 2})}),
            "row 1: another row, 0, has the same labels (\"new\")");
  EXPECT_EQ(refusal({Column::texts("i", {"new"}, {true}), Column::doubles("v", {1})}),
            "column i, row 0: a label is missing");
  EXPECT_EQ(refusal({Column::texts("i", {"a"}), Column::whole("v", {(1LL << 53) + 1})}),
            "column v, row 0: no double is 9007199254740993");
  EXPECT_EQ(refusal({Column::dictionary("i", {"a"}, {1}), Column::doubles("v", {1})}),
            "column i, row 0: is damaged: its entry lies beyond the dictionary");
  EXPECT_EQ(refusal({Column::texts("i", {std::string(64, 'a')}), Column::doubles("v", {1})}),
            "Label exceeds maximum size of 63: >" + std::string(64, 'a') + "<");
  EXPECT_EQ(refusal({Column::texts("i", {"a"})}),
            "symbol p: expected one column of numbers beside the columns of labels, and there are "
            "none");
  EXPECT_EQ(
      refusal({Column::texts("i", {"a"}), Column::doubles("v", {1}), Column::doubles("w", {1})}),
      "symbol p: expected one column of numbers beside the columns of labels, and there are "
      "v, w");
  EXPECT_EQ(refusal({}), "0 columns () are not enough for the 1 position of symbol p");
  EXPECT_EQ(p.recordCount(), 1);
  EXPECT_EQ(p.find("kept")->level(), 1);
  EXPECT_THAT(labelsOf(database_), ElementsAre("kept"));
}

TEST_P(ArrowFill, RefusesRowsThatAreNull) {
  ztb::Symbol p = database_.addParameter("p", {"*"});
  for (const std::int64_t count : {std::int64_t{1}, std::int64_t{-1}}) {
    HandMade data;
    data.add(Column::texts("i", {"a", "b", "c"})).add(Column::doubles("v", {1, 2, 3}));
    data.slice(1, 2);
    data.nullRow(2, count);
    EXPECT_EQ(fill(p, data), "row 1: a row cannot be null");
  }
  HandMade data;
  data.add(Column::texts("i", {"a", "b", "c"})).add(Column::doubles("v", {1, 2, 3}));
  data.slice(1, 2);
  data.nullRow(0, -1);
  EXPECT_EQ(fill(p, data), "");
  EXPECT_EQ(p.recordCount(), 2);
}

TEST_P(ArrowFill, TellsWhatTheStreamTells) {
  ztb::Symbol p = database_.addParameter("p", {"*"});
  HandMade data;
  data.add(Column::texts("i", {"a"})).add(Column::doubles("v", {1}));
  data.failAfterBatches("the cable was cut");
  EXPECT_EQ(fill(p, data), "the cable was cut");
  EXPECT_EQ(fill(p, data), "the stream was released already");
}

INSTANTIATE_TEST_SUITE_P(Stores, ArrowFill,
                         testing::Values(ztb::Store::map, ztb::Store::vector, ztb::Store::trie),
                         [](const testing::TestParamInfo<ztb::Store>& store) {
                           return store.param == ztb::Store::map      ? "map"
                                  : store.param == ztb::Store::vector ? "vector"
                                                                      : "trie";
                         });

TEST(ArrowMake, TellsTheKindByTheColumns) {
  ztb::Database database;
  const auto make = [&](const char* name, std::vector<Column> columns, int type = -1) {
    HandMade data;
    for (Column& column : columns) data.add(std::move(column));
    void* symbol = nullptr;
    std::array<char, 512> message{};
    if (ztbArrowMake(database.handle(), name, type, data.stream(), nullptr, &symbol, message.data(),
                     message.size()) == 0) {
      return std::string(message.data());
    }
    const ztb::Symbol made(database.handle(), symbol);
    return std::to_string(static_cast<int>(made.type())) + "/" + std::to_string(made.dimension());
  };
  EXPECT_EQ(make("s", {Column::texts("i", {"a"}), Column::texts("j", {"a"})}), "0/2");
  EXPECT_EQ(make("t", {Column::texts("i", {"a"}), Column::texts("text", {"a"})}), "0/1");
  EXPECT_EQ(make("p", {Column::texts("i", {"a"}), Column::doubles("tons", {1})}), "1/1");
  EXPECT_EQ(make("q", {Column::whole("i", {1}), Column::whole("value", {1})}), "1/1");
  EXPECT_EQ(make("r", {Column::whole("value", {1})}), "1/0");
  EXPECT_EQ(make("x", {Column::doubles("Level", {1}), Column::texts("i", {"a"})}), "2/1");
  EXPECT_EQ(make("e", {Column::texts("i", {"a"}), Column::doubles("level", {1})}, ZTB_EQUATION),
            "3/1");
  const int labels = database.labelCount();
  EXPECT_EQ(make("P", {Column::texts("i", {"new"}), Column::doubles("v", {1})}),
            "Symbol P exists already");
  EXPECT_EQ(make("u", {Column::texts("i", {"new"})}, 4), "4 is no type of a symbol with records");
  EXPECT_EQ(database.labelCount(), labels);
}

}  // namespace
