// Symbols: their fields, and the ways in which records get in and out.
#include "store/symbol.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include "store/dmap.h"
#include "tests/unit/symbols.h"

namespace ztb {
namespace {

using unittest::Keys;
using unittest::parameterOver;
using unittest::parameterWith;
using unittest::Records;
using unittest::recordsOf;
using unittest::symbolOf;
using Five = std::array<double, 5>;

constexpr Five variableValues = {1, 2, 3, 4, 5};
constexpr Five equationValues = {6, 7, 8, 9, 10};

Five slotsOf(const double* values) {
  Five result{};
  std::copy_n(values, 5, result.begin());
  return result;
}

TEST(SymbolFactory, givesALoadedSymbolThatStandsForItself) {
  SymbolDescription description;
  description.name = "price";
  description.dim = 2;
  description.type = dmap::typeParameter;
  description.number = 7;
  description.userInfo = 11;
  description.text = "of a food";
  const auto symbol = makeSymbol(dmap::StorageKind::dMap, nullptr, description);
  EXPECT_EQ("price", symbol->name);
  EXPECT_EQ("of a food", symbol->text);
  EXPECT_EQ(2, symbol->dim);
  EXPECT_EQ(dmap::typeParameter, symbol->type);
  EXPECT_EQ(7, symbol->symbolNumber);
  EXPECT_EQ(11, symbol->userInfo);
  EXPECT_EQ(nullptr, symbol->database);
  EXPECT_EQ(symbol.get(), symbol->aliasTarget);
  EXPECT_TRUE(symbol->domainMembership.empty());
  EXPECT_TRUE(symbol->loaded);
  EXPECT_FALSE(symbol->usedAsDomain);
  EXPECT_FALSE(symbol->writeRecorded);
  EXPECT_TRUE(symbol->domainSymbols.empty());
  EXPECT_TRUE(symbol->domainNames.empty());
  EXPECT_TRUE(symbol->isEmpty());
  EXPECT_EQ(0, symbol->recordCount());
  EXPECT_EQ(dmap::StorageKind::dMap, symbol->storageKind());
}

TEST(SymbolFactory, givesNullForAKindThatNoStoreHas) {
  for (const std::int32_t kind : {-1, 3, 100}) {
    EXPECT_EQ(nullptr, makeSymbol(static_cast<dmap::StorageKind>(kind), nullptr, {}));
    EXPECT_EQ(nullptr, makeUniverseRecord(static_cast<dmap::StorageKind>(kind), nullptr, 1));
  }
}

TEST(SymbolRecords, clearRemovesThemAll) {
  const auto symbol = parameterOver(1, {{1}, {2}});
  EXPECT_EQ(2, symbol->recordCount());
  symbol->clearRecords();
  EXPECT_TRUE(symbol->isEmpty());
  const auto again = symbol->addRecord(Keys{2}.data(), nullptr, nullptr);
  ASSERT_NE(nullptr, again);
  EXPECT_EQ((Records{{{2}, 0.0}}), recordsOf(*symbol));
}

TEST(SymbolRecords, beginAndEndPositionsAreTold) {
  const auto symbol = parameterOver(1, {{1}, {2}});
  const auto record = symbol->firstRecord();
  EXPECT_TRUE(symbol->isBegin(record->storeIterator()));
  EXPECT_FALSE(symbol->isEnd(*record));
  record->storeIterator().next();
  EXPECT_FALSE(symbol->isBegin(record->storeIterator()));
  record->storeIterator().next();
  EXPECT_TRUE(symbol->isEnd(*record));
  EXPECT_TRUE(symbol->isEndPosition(record->storeIterator()));
}

TEST(SymbolRecords, findGivesTheRecordOrNull) {
  const auto symbol = parameterWith(2, {{{1, 2}, 5.0}});
  const auto record = symbol->findRecord(Keys{1, 2}.data());
  ASSERT_NE(nullptr, record);
  EXPECT_EQ(5.0, *record->values());
  EXPECT_EQ(IterationMode::symbol, record->mode());
  EXPECT_EQ(nullptr, symbol->findRecord(Keys{2, 1}.data()));
  EXPECT_EQ(nullptr, symbol->findRecord(Keys{1, 0}.data()));
}

TEST(SymbolRecords, firstAndLast) {
  const auto symbol = parameterOver(1, {{5}, {3}, {9}});
  EXPECT_EQ(3, symbol->firstRecord()->keys()[0]);
  EXPECT_EQ(9, symbol->lastRecord()->keys()[0]);
  EXPECT_EQ(IterationMode::symbol, symbol->lastRecord()->mode());
}

TEST(AddRecord, takesAKeyBetweenOthersAndAboveAll) {
  const auto symbol = parameterOver(2, {{1, 1}, {3, 3}});
  EXPECT_NE(nullptr, symbol->addRecord(Keys{2, 9}.data(), nullptr, nullptr));
  EXPECT_NE(nullptr, symbol->addRecord(Keys{3, 4}.data(), nullptr, nullptr));
  EXPECT_NE(nullptr, symbol->addRecord(Keys{1, 0}.data(), nullptr, nullptr));
  EXPECT_EQ((Records{{{1, 0}, 0.0}, {{1, 1}, 1.0}, {{2, 9}, 0.0}, {{3, 3}, 2.0}, {{3, 4}, 0.0}}),
            recordsOf(*symbol));
}

TEST(AddRecord, refusesAKeyThatIsThereAndKeepsItsValues) {
  const auto symbol = parameterWith(2, {{{1, 1}, 7.0}});
  EXPECT_EQ(nullptr, symbol->addRecord(Keys{1, 1}.data(), nullptr, nullptr));
  EXPECT_EQ((Records{{{1, 1}, 7.0}}), recordsOf(*symbol));
}

TEST(AddRecord, aNewSetOrParameterRecordStartsAt0WhateverWasPassed) {
  for (const int type : {dmap::typeSet, dmap::typeParameter}) {
    const auto symbol = symbolOf(1, type);
    const auto record =
        symbol->addRecord(Keys{1}.data(), variableValues.data(), equationValues.data());
    EXPECT_EQ(0.0, *record->values());
  }
}

TEST(AddRecord, aVariableTakesItsValuesAndAnEquationItsOwn) {
  const auto variable = symbolOf(1, dmap::typeVariable);
  auto record = variable->addRecord(Keys{1}.data(), variableValues.data(), nullptr);
  EXPECT_EQ(variableValues, slotsOf(record->values()));
  const auto equation = symbolOf(1, dmap::typeEquation);
  record = equation->addRecord(Keys{1}.data(), nullptr, equationValues.data());
  EXPECT_EQ(equationValues, slotsOf(record->values()));
}

TEST(AddRecord, theHandleWalksTheSymbol) {
  const auto symbol = parameterOver(1, {{1}, {3}});
  const auto record = symbol->addRecord(Keys{2}.data(), nullptr, nullptr);
  EXPECT_EQ(IterationMode::symbol, record->mode());
  EXPECT_EQ(symbol.get(), record->symbol());
  ASSERT_TRUE(record->moveNext(0));
  EXPECT_EQ(3, record->keys()[0]);
}

TEST(MergeRecord, ofAKeyPresentGivesItsValuesUnchanged) {
  const auto symbol = symbolOf(1, dmap::typeVariable);
  symbol->insertRecord(Keys{1}.data(), equationValues.data());
  AbstractZTBSymbol::RecordHandle record;
  const auto [merged, values] =
      symbol->mergeRecord(Keys{1}.data(), variableValues.data(), nullptr, &record);
  EXPECT_TRUE(merged);
  EXPECT_EQ(equationValues, slotsOf(values));
  EXPECT_EQ(values, record->values());
  EXPECT_EQ(1, symbol->recordCount());
}

TEST(MergeRecord, ofANewKeyAddsIt) {
  const auto symbol = parameterWith(1, {{{5}, 1.0}});
  const auto [merged, values] = symbol->mergeRecord(Keys{4}.data(), nullptr, nullptr, nullptr);
  EXPECT_TRUE(merged);
  EXPECT_EQ(0.0, *values);
  *values = 2.5;
  EXPECT_EQ((Records{{{4}, 2.5}, {{5}, 1.0}}), recordsOf(*symbol));
}

TEST(MergeRecord, ofAScalarOverwritesWithTheStartValue) {
  const auto symbol = parameterWith(0, {{{}, 7.0}});
  const auto [merged, values] = symbol->mergeRecord(nullptr, nullptr, nullptr, nullptr);
  EXPECT_TRUE(merged);
  EXPECT_EQ(0.0, *values);
  EXPECT_EQ(1, symbol->recordCount());
}

TEST(StoreRecord, overwritesOrKeeps) {
  const auto symbol = parameterWith(1, {{{1}, 1.0}});
  const double value = 9;
  EXPECT_EQ(1.0, *symbol->storeRecord(Keys{1}.data(), &value, false)->values());
  EXPECT_EQ(9.0, *symbol->storeRecord(Keys{1}.data(), &value, true)->values());
  EXPECT_EQ(9.0, *symbol->storeRecord(Keys{2}.data(), &value, false)->values());
  EXPECT_EQ(9.0, *symbol->storeRecord(Keys{3}.data(), &value, true)->values());
  EXPECT_EQ(3, symbol->recordCount());
}

TEST(PutRecord, overwritesOrKeepsAsStoreRecordDoes) {
  const auto symbol = parameterWith(1, {{{1}, 1.0}});
  const double value = 9;
  EXPECT_TRUE(symbol->putRecord(Keys{1}.data(), &value, false));
  EXPECT_EQ(1.0, *symbol->findRecord(Keys{1}.data())->values());
  EXPECT_TRUE(symbol->putRecord(Keys{1}.data(), &value, true));
  EXPECT_EQ(9.0, *symbol->findRecord(Keys{1}.data())->values());
  EXPECT_TRUE(symbol->putRecord(Keys{2}.data(), &value, false));
  EXPECT_EQ(9.0, *symbol->findRecord(Keys{2}.data())->values());
  EXPECT_EQ(2, symbol->recordCount());
}

TEST(PutRecord, overwritesAllSlotsOfAVariable) {
  const auto symbol = symbolOf(2, dmap::typeVariable);
  const std::array<double, 5> first = {1, 2, 3, 4, 5};
  const std::array<double, 5> second = {6, 7, 8, 9, 10};
  const Keys key = {3, 4};
  EXPECT_TRUE(symbol->putRecord(key.data(), first.data(), true));
  EXPECT_TRUE(symbol->putRecord(key.data(), second.data(), true));
  const double* values = symbol->findRecord(key.data())->values();
  EXPECT_EQ(second, (std::array<double, 5>{values[0], values[1], values[2], values[3], values[4]}));
}

TEST(SymbolOfImpossibleDimension, everyWayInGivesNothing) {
  const auto symbol = symbolOf(21, dmap::typeParameter);
  const std::array<int, 21> keys{};
  const double value = 1;
  EXPECT_EQ(nullptr, symbol->addRecord(keys.data(), nullptr, nullptr));
  AbstractZTBSymbol::RecordHandle record;
  const auto [merged, values] = symbol->mergeRecord(keys.data(), nullptr, nullptr, &record);
  EXPECT_FALSE(merged);
  EXPECT_EQ(nullptr, values);
  EXPECT_EQ(nullptr, record);
  EXPECT_EQ(nullptr, symbol->storeRecord(keys.data(), &value, true));
  EXPECT_EQ(nullptr, symbol->storeRecord(keys.data(), &value, false));
  EXPECT_FALSE(symbol->putRecord(keys.data(), &value, true));
  EXPECT_FALSE(symbol->putRecord(keys.data(), &value, false));
  symbol->insertRecord(keys.data(), &value);
  symbol->appendRecord(keys.data(), &value);
  EXPECT_TRUE(symbol->isEmpty());
  EXPECT_TRUE(recordsOf(*symbol).empty());
}

TEST(AssignRecords, appendsAndKeepsWhatIsThere) {
  const auto target = parameterWith(1, {{{2}, 1.0}, {{5}, 2.0}});
  const auto source = parameterWith(1, {{{1}, 10.0}, {{2}, 20.0}, {{7}, 30.0}});
  target->assignRecords(*source);
  EXPECT_EQ((Records{{{1}, 10.0}, {{2}, 1.0}, {{5}, 2.0}, {{7}, 30.0}}), recordsOf(*target));
  EXPECT_EQ(3, source->recordCount());
}

TEST(AssignRecords, copiesAllSlotsBitForBit) {
  const auto source = symbolOf(1, dmap::typeVariable);
  const Five values{-0.0, 1e300, 5e-324, -1, 2};
  source->insertRecord(Keys{1}.data(), values.data());
  const auto target = symbolOf(1, dmap::typeVariable);
  target->assignRecords(*source);
  const auto record = target->firstRecord();
  EXPECT_EQ(0, std::memcmp(values.data(), record->values(), sizeof values));
}

TEST(EraseRecord, leavesTheHandleOnTheFollowingRecord) {
  const auto symbol = parameterOver(1, {{1}, {2}, {3}});
  const auto record = symbol->findRecord(Keys{2}.data());
  symbol->eraseRecord(*record);
  EXPECT_EQ(3, record->keys()[0]);
  EXPECT_EQ((Records{{{1}, 1.0}, {{3}, 3.0}}), recordsOf(*symbol));
  symbol->eraseRecord(*record);
  EXPECT_TRUE(symbol->isEnd(*record));
  EXPECT_EQ(1, symbol->recordCount());
}

TEST(EraseRecord, ofAScalarLeavesTheHandleAtTheEnd) {
  const auto symbol = parameterWith(0, {{{}, 7.0}});
  const auto record = symbol->firstRecord();
  symbol->eraseRecord(*record);
  EXPECT_TRUE(symbol->isEmpty());
  EXPECT_TRUE(symbol->isEnd(*record));
}

TEST(EraseRecord, throughAHandleAtTheEndThrowsAndChangesNothing) {
  const auto symbol = parameterOver(1, {{1}});
  const auto record = symbol->lastRecord();
  record->storeIterator().next();
  EXPECT_THROW(symbol->eraseRecord(*record), std::logic_error);
  EXPECT_EQ(1, symbol->recordCount());
}

}  // namespace
}  // namespace ztb
