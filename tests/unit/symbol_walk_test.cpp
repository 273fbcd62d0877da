// Walks over all records of a symbol with a visitor.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tests/unit/symbols.h"

namespace ztb {
namespace {

using unittest::Keys;
using unittest::keysOf;
using unittest::parameterOver;
using unittest::parameterWith;
using unittest::Records;
using unittest::recordsOf;

class SymbolWalk : public testing::Test {
 protected:
  std::unique_ptr<AbstractZTBSymbol> symbol_ = parameterOver(2, {{2, 1}, {1, 10}, {1, 2}});
  std::unique_ptr<AbstractZTBSymbol> none_ = parameterOver(2, {});
};

TEST_F(SymbolWalk, keysComeInOrder) {
  std::vector<Keys> visited;
  symbol_->forEachKey([&](const int* keys) { visited.emplace_back(keys, keys + 2); });
  EXPECT_EQ((std::vector<Keys>{{1, 2}, {1, 10}, {2, 1}}), visited);
}

TEST_F(SymbolWalk, recordsComeWithTheirValues) {
  EXPECT_EQ((Records{{{1, 2}, 3.0}, {{1, 10}, 2.0}, {{2, 1}, 1.0}}), recordsOf(*symbol_));
}

TEST_F(SymbolWalk, valuesComeInOrder) {
  std::vector<double> visited;
  symbol_->forEachValue([&](const double* values) { visited.push_back(*values); });
  EXPECT_EQ((std::vector<double>{3, 2, 1}), visited);
}

TEST_F(SymbolWalk, whileStopsAtTheFirstFalse) {
  int calls = 0;
  EXPECT_FALSE(symbol_->forEachRecordWhile([&](const int* keys, const double*) {
    ++calls;
    return keys[1] != 10;
  }));
  EXPECT_EQ(2, calls);
  EXPECT_TRUE(symbol_->forEachRecordWhile([](const int*, const double*) { return true; }));
}

TEST_F(SymbolWalk, overNoRecordsCallsNobody) {
  int calls = 0;
  none_->forEachKey([&](const int*) { ++calls; });
  none_->forEachRecord([&](const int*, const double*) { ++calls; });
  none_->forEachValue([&](const double*) { ++calls; });
  EXPECT_TRUE(none_->forEachRecordWhile([&](const int*, const double*) { return ++calls == 0; }));
  EXPECT_EQ(0, calls);
}

TEST_F(SymbolWalk, ofAScalarVisitsItsRecordOnce) {
  const auto scalar = parameterWith(0, {{{}, 4.5}});
  int calls = 0;
  scalar->forEachRecord([&](const int*, const double* values) {
    ++calls;
    EXPECT_EQ(4.5, *values);
  });
  EXPECT_EQ(1, calls);
}

TEST_F(SymbolWalk, anEmptyFunctionThrowsAtTheFirstRecord) {
  EXPECT_THROW(symbol_->forEachKey({}), std::bad_function_call);
  EXPECT_THROW(symbol_->forEachRecord({}), std::bad_function_call);
  EXPECT_THROW(symbol_->forEachRecordWhile({}), std::bad_function_call);
  EXPECT_THROW(symbol_->forEachValue({}), std::bad_function_call);
  EXPECT_THROW(symbol_->firstRejected({}), std::bad_function_call);
}

TEST_F(SymbolWalk, anEmptyFunctionDoesNoHarmWithoutRecords) {
  EXPECT_NO_THROW(none_->forEachKey({}));
  EXPECT_NO_THROW(none_->forEachRecord({}));
  EXPECT_TRUE(none_->forEachRecordWhile({}));
  EXPECT_NO_THROW(none_->forEachValue({}));
  EXPECT_TRUE(none_->firstRejected({}).first);
}

TEST_F(SymbolWalk, anExceptionOfTheVisitorPassesThrough) {
  EXPECT_THROW(symbol_->forEachKey([](const int*) { throw std::runtime_error("enough"); }),
               std::runtime_error);
}

TEST_F(SymbolWalk, firstRejectedStandsOnTheRecordThatWasRefused) {
  int calls = 0;
  const auto [passed, record] = symbol_->firstRejected([&](const int* keys, const double*) {
    ++calls;
    return keys[1] != 10;
  });
  EXPECT_FALSE(passed);
  EXPECT_EQ(2, calls);
  EXPECT_EQ((Keys{1, 10}), keysOf(*record));
  EXPECT_EQ(IterationMode::symbol, record->mode());
}

TEST_F(SymbolWalk, firstRejectedStandsAtTheEndWhenNoneIsRefused) {
  const auto [passed, record] =
      symbol_->firstRejected([](const int*, const double*) { return true; });
  EXPECT_TRUE(passed);
  ASSERT_NE(nullptr, record);
  EXPECT_TRUE(symbol_->isEnd(*record));
}

}  // namespace
}  // namespace ztb
