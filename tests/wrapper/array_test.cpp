#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

namespace {

class ArrayTest : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* label : {"a", "b"}) rows_.add(label);
    for (const char* label : {"x", "y", "z"}) columns_.add(label);
  }

  // What `call` says when it fails.
  template <class Call>
  static std::string failure(const Call& call) {
    try {
      call();
    } catch (const ztb::Error& error) {
      return std::string(error.operation()) + ": " + error.what();
    }
    return "it did not fail";
  }

  std::vector<double> levels() {
    std::vector<double> result;
    for (const auto [keys, values] : p_.rows()) result.push_back(values[0]);
    return result;
  }

  ztb::Database database_;
  ztb::Symbol rows_ = database_.addSet("rows", {"*"});
  ztb::Symbol columns_ = database_.addSet("columns", {"*"});
  ztb::Symbol p_ = database_.addParameter("p", {"*", "*"});
  std::array<ztb::Symbol, 2> domains_{rows_, columns_};
};

TEST_F(ArrayTest, ACubeReplacesAllRecordsZerosIncluded) {
  p_.add("z", "z").setLevel(9);
  p_.assignCube(domains_, std::array{1.0, 2.0, 0.0, 4.0, 5.0, 6.0});
  EXPECT_EQ(levels(), (std::vector<double>{1, 2, 0, 4, 5, 6}));
  EXPECT_EQ(p_.find("a", "z")->level(), 0);
  EXPECT_EQ(p_.find("b", "x")->level(), 4);
  EXPECT_FALSE(p_.find("z", "z"));
}

TEST_F(ArrayTest, ValuesComeInTheOrderOfTheRecords) {
  p_.add("b", "y").setLevel(3);
  p_.add("a", "z").setLevel(-std::numeric_limits<double>::infinity());
  std::vector<double> cells(2);
  p_.copyValues(cells);
  EXPECT_EQ(cells, (std::vector<double>{-std::numeric_limits<double>::infinity(), 3}));
}

TEST_F(ArrayTest, ValuesAreThoseOfTheField) {
  ztb::Symbol v = database_.addVariable("v", 3, {"*"});
  for (const char* label : {"a", "b"}) {
    ztb::Record record = v.add(label);
    record.setLevel(label[0] == 'a' ? 1 : 2);
    record.setMarginal(label[0] == 'a' ? -1 : -2);
  }
  std::array<double, 2> cells{};
  v.copyValues(cells);
  EXPECT_EQ(cells, (std::array{1.0, 2.0}));
  v.copyValues(cells, ztb::Field::marginal);
  EXPECT_EQ(cells, (std::array{-1.0, -2.0}));
}

TEST_F(ArrayTest, AWrongSizeIsRefusedAndChangesNothing) {
  p_.add("a", "x").setLevel(7);
  std::array<double, 2> two{};
  EXPECT_EQ(failure([&] { p_.copyValues(two); }),
            "ztbDenseSymbolToDenseArray: Size of cube 2 and number of record 1 in p do not match");
  EXPECT_EQ(failure([&] { p_.assignCube(domains_, two); }),
            "ztbDenseArrayToSymbol: 2 cells given, the domains span 6");
  EXPECT_EQ(failure([&] {
              p_.assignCube({domains_.data(), 1}, two);
            }),
            "ztbDenseArrayToSymbol: 1 keys given, symbol p has 2 positions");
  EXPECT_EQ(levels(), std::vector<double>{7});
}

TEST_F(ArrayTest, WhatHasNoNumbersInPositionsIsRefused) {
  std::array<double, 2> two{};
  EXPECT_EQ(failure([&] { rows_.copyValues(two); }),
            "ztbDenseSymbolToDenseArray: Symbol rows is a set, which holds no numbers");
  EXPECT_EQ(failure([&] {
              rows_.assignCube({domains_.data(), 1}, two);
            }),
            "ztbDenseArrayToSymbol: Symbol rows is no parameter");
  ztb::Symbol scalar = database_.addParameter("scalar", {});
  EXPECT_EQ(failure([&] { scalar.copyValues(two); }),
            "ztbDenseSymbolToDenseArray: Can't map scalars");
  EXPECT_EQ(failure([&] { scalar.assignCube({}, std::array{1.0}); }),
            "ztbDenseArrayToSymbol: Can't map scalars");
}

TEST_F(ArrayTest, ACubeThatIsRefusedChangesNothing) {
  p_.add("a", "x").setLevel(7);
  const ztb::Symbol empty = database_.addSet("empty", {"*"});
  const ztb::Symbol pairs = database_.addSet("pairs", {"*", "*"});
  ztb::Database other;
  const ztb::Symbol foreign = other.addSet("foreign", {"*"});
  const auto assign = [&](const ztb::Symbol& domain) {
    return failure([&] { p_.assignCube(std::array{rows_, domain}, std::array{1.0, 2.0}); });
  };
  EXPECT_EQ(assign(database_.universe()),
            "ztbDenseArrayToSymbol: Cannot use universe as domain symbol p");
  EXPECT_EQ(assign(foreign),
            "ztbDenseArrayToSymbol: Symbol p and domain symbol foreign in different databases");
  EXPECT_EQ(assign(pairs),
            "ztbDenseArrayToSymbol: Domain symbol pairs has dimension 2, needs to be 1");
  EXPECT_EQ(assign(empty), "ztbDenseArrayToSymbol: Zero sized dimension 2");
  EXPECT_EQ(levels(), std::vector<double>{7});
}

// In 32 bits these sizes multiply to zero.
TEST_F(ArrayTest, SizesAreMultipliedIn64Bits) {
  ztb::Symbol many = database_.addSet("many", {"*"});
  for (int place = 0; place < 65536; ++place) {
    many.putElementUnchecked(std::array{database_.mergeLabel("m" + std::to_string(place))},
                             nullptr);
  }
  p_.add("a", "x").setLevel(7);
  EXPECT_EQ(failure([&] {
              p_.assignCube(std::array{many, many}, {});
            }),
            "ztbDenseArrayToSymbol: a cube of [65536,65536] has more than 2147483647 cells, which "
            "the library cannot count");
  double cell = 0;
  EXPECT_EQ(failure([&] {
              p_.copyValues({&cell, (std::size_t{1} << 32) + 1});
            }),
            "ztbDenseSymbolToDenseArray: Size of cube 4294967297 and number of record 1 in p do "
            "not match");
  EXPECT_EQ(levels(), std::vector<double>{7});
}

}  // namespace
