// What a symbol takes along to another store, and what it leaves.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <utility>

#include "store/symbol_factory.h"

namespace ztb::storetest {
namespace {

using dmap::StorageKind;

constexpr std::array kinds = {StorageKind::dMap, StorageKind::dMapVector, StorageKind::dMapGTree};

std::unique_ptr<AbstractZTBSymbol> describedSymbol(StorageKind kind) {
  SymbolDescription description;
  description.name = "flow";
  description.dim = 2;
  description.type = dmap::typeEquation;
  description.number = 7;
  description.userInfo = 4;
  description.text = "from here to there";
  return makeSymbol(kind, nullptr, std::move(description));
}

TEST(SymbolMove, takesTheDescriptionAndTheMarksAlong) {
  const LabelRanks membership = {0, 1};
  for (const StorageKind from : kinds) {
    for (const StorageKind to : kinds) {
      if (from == to) {
        continue;
      }
      const auto source = describedSymbol(from);
      source->loaded = false;
      source->usedAsDomain = true;
      source->writeRecorded = true;
      source->domainMembership = membership;
      const auto moved = convertSymbol(to, *source);
      EXPECT_EQ(to, moved->storageKind());
      EXPECT_EQ("flow", moved->name);
      EXPECT_EQ("from here to there", moved->text);
      EXPECT_EQ(2, moved->dim);
      EXPECT_EQ(dmap::typeEquation, moved->type);
      EXPECT_EQ(7, moved->symbolNumber);
      EXPECT_EQ(4, moved->userInfo);
      EXPECT_FALSE(moved->loaded);
      EXPECT_TRUE(moved->usedAsDomain);
      EXPECT_TRUE(moved->writeRecorded);
      EXPECT_EQ(membership, moved->domainMembership);
      EXPECT_EQ(source->database, moved->database);
    }
  }
}

TEST(SymbolMove, loadedAndUnmarkedStaySo) {
  const auto moved = convertSymbol(StorageKind::dMapGTree, *describedSymbol(StorageKind::dMap));
  EXPECT_TRUE(moved->loaded);
  EXPECT_FALSE(moved->usedAsDomain);
  EXPECT_FALSE(moved->writeRecorded);
  EXPECT_TRUE(moved->domainMembership.empty());
}

TEST(SymbolMove, leavesDomainsAndTheAliasTargetBehind) {
  const auto source = describedSymbol(StorageKind::dMap);
  const auto target = describedSymbol(StorageKind::dMap);
  source->aliasTarget = target.get();
  source->domainSymbols = {target.get(), nullptr};
  source->domainNames = {"", "j"};
  const auto moved = convertSymbol(StorageKind::dMapVector, *source);
  EXPECT_EQ(moved.get(), moved->aliasTarget);
  EXPECT_TRUE(moved->domainSymbols.empty());
  EXPECT_TRUE(moved->domainNames.empty());
  EXPECT_EQ(target.get(), source->aliasTarget);
  EXPECT_EQ(2U, source->domainSymbols.size());
}

TEST(SymbolMove, toTheStoreThatItHasOrToNoneGivesNothing) {
  for (const StorageKind kind : kinds) {
    const auto symbol = describedSymbol(kind);
    EXPECT_EQ(nullptr, convertSymbol(kind, *symbol));
    for (const int code : {-1, 3, 99}) {
      EXPECT_EQ(nullptr, convertSymbol(static_cast<StorageKind>(code), *symbol)) << code;
    }
  }
}

TEST(SymbolMove, aTrieThatTookItsRecordsByAMoveRemembersNoLastOne) {
  const auto source = describedSymbol(StorageKind::dMap);
  const std::array<double, 5> values = {1, 2, 3, 4, 5};
  for (const int second : {1, 2}) {
    const std::array<int, 2> key = {1, second};
    source->insertRecord(key.data(), values.data());
  }
  const auto moved = convertSymbol(StorageKind::dMapGTree, *source);
  const std::array<int, 2> above = {1, 3};
  EXPECT_THROW(moved->appendRecord(above.data(), values.data()), std::logic_error);
  EXPECT_EQ(2, moved->recordCount());
  moved->insertRecord(above.data(), values.data());
  EXPECT_EQ(3, moved->recordCount());
}

}  // namespace
}  // namespace ztb::storetest
