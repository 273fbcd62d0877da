#include "core/symbol_table.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/unit/spy_store.h"
#include "tests/unit/symbols.h"

namespace ztb::symtable {
namespace {

using unittest::symbolOf;

class SymbolTable : public testing::Test {
 protected:
  AbstractZTBSymbol* add(const std::string& name, int dim, int type) {
    return table_.add(name, symbolOf(dim, type, name));
  }
  // Set i, alias j of i and parameter p.
  void addThree() {
    i_ = add("i", 1, dmap::typeSet);
    j_ = add("j", 1, dmap::typeAlias);
    j_->aliasTarget = i_;
    p_ = add("p", 1, dmap::typeParameter);
  }

  TSymbolTable table_;
  AbstractZTBSymbol* i_ = nullptr;
  AbstractZTBSymbol* j_ = nullptr;
  AbstractZTBSymbol* p_ = nullptr;
};

TEST_F(SymbolTable, isEmptyAtFirst) {
  EXPECT_TRUE(table_.empty());
  EXPECT_EQ(0, table_.size());
  EXPECT_EQ(0, table_.orderedSize());
  EXPECT_FALSE(table_.contains("i"));
}

TEST_F(SymbolTable, countsAliasesInTheNamesButNotInTheOrder) {
  addThree();
  EXPECT_FALSE(table_.empty());
  EXPECT_EQ(3, table_.size());
  EXPECT_EQ(2, table_.orderedSize());
  EXPECT_EQ(i_, table_.orderedAt(0));
  EXPECT_EQ(p_, table_.orderedAt(1));
  EXPECT_EQ(p_, table_.atNumber(2));
  EXPECT_EQ(j_, table_.atNumber(1));
  EXPECT_EQ(i_, table_.first());
}

TEST_F(SymbolTable, namesFoldCaseAndKeepTheFirstSpelling) {
  addThree();
  EXPECT_TRUE(table_.contains("I"));
  EXPECT_EQ(i_, table_.atName("I"));
  std::vector<std::string> names;
  EXPECT_TRUE(table_.forEachNamed([&](const std::string& name, AbstractZTBSymbol*) {
    names.push_back(name);
    return true;
  }));
  EXPECT_EQ((std::vector<std::string>{"i", "j", "p"}), names);
}

TEST_F(SymbolTable, atNameHandsOutTheAliasItself) {
  addThree();
  EXPECT_EQ(j_, table_.atName("j"));
  EXPECT_NE(i_, table_.atName("j"));
}

TEST_F(SymbolTable, atNameOfAnAbsentNameThrows) {
  addThree();
  EXPECT_THROW(static_cast<void>(table_.atName("q")), std::logic_error);
}

TEST_F(SymbolTable, aNameThatIsThereIsRefusedAndNothingChanges) {
  addThree();
  EXPECT_THROW(add("P", 2, dmap::typeSet), std::logic_error);
  EXPECT_EQ(3, table_.size());
  EXPECT_EQ(2, table_.orderedSize());
  EXPECT_EQ(p_, table_.atName("P"));
}

TEST_F(SymbolTable, forEachVisitsAliasesToo) {
  addThree();
  std::vector<AbstractZTBSymbol*> visited;
  EXPECT_TRUE(table_.forEach([&](AbstractZTBSymbol* symbol) {
    visited.push_back(symbol);
    return true;
  }));
  EXPECT_EQ((std::vector<AbstractZTBSymbol*>{i_, j_, p_}), visited);
}

TEST_F(SymbolTable, aVisitorThatGivesFalseEndsTheWalkAfterASingleCall) {
  addThree();
  int calls = 0;
  EXPECT_FALSE(table_.forEach([&](AbstractZTBSymbol*) {
    ++calls;
    return false;
  }));
  EXPECT_EQ(1, calls);
  EXPECT_FALSE(table_.forEachNamed([&](const std::string&, AbstractZTBSymbol* symbol) {
    ++calls;
    return symbol != j_;
  }));
  EXPECT_EQ(3, calls);
}

TEST_F(SymbolTable, aWalkOverNothingIsTrue) {
  EXPECT_TRUE(table_.forEach([](AbstractZTBSymbol*) { return false; }));
  EXPECT_TRUE(table_.forEachNamed([](const std::string&, AbstractZTBSymbol*) { return false; }));
}

TEST_F(SymbolTable, clearAllLeavesTheNamesAndEverySymbolEmptyAndNotLoaded) {
  addThree();
  const int key = 1;
  const double value = 2.5;
  i_->insertRecord(&key, &value);
  p_->insertRecord(&key, &value);
  table_.clearAll();
  EXPECT_EQ(3, table_.size());
  EXPECT_TRUE(table_.contains("p"));
  EXPECT_TRUE(i_->isEmpty());
  EXPECT_TRUE(p_->isEmpty());
  EXPECT_FALSE(i_->loaded);
  EXPECT_FALSE(j_->loaded);
  EXPECT_FALSE(p_->loaded);
}

TEST_F(SymbolTable, replacePutsTheNewSymbolInBothPlacesAndGivesTheOldOneBack) {
  addThree();
  const std::unique_ptr<AbstractZTBSymbol> old(p_);
  AbstractZTBSymbol* replacement = symbolOf(1, dmap::typeParameter, "p").release();
  table_.replace(p_, replacement);
  EXPECT_EQ(replacement, table_.atNumber(2));
  EXPECT_EQ(replacement, table_.atName("p"));
  EXPECT_EQ(replacement, table_.orderedAt(1));
  EXPECT_EQ(i_, table_.orderedAt(0));
  EXPECT_EQ(3, table_.size());
}

TEST_F(SymbolTable, replaceOfAnAliasLeavesTheOrderAlone) {
  addThree();
  const std::unique_ptr<AbstractZTBSymbol> old(j_);
  AbstractZTBSymbol* replacement = symbolOf(1, dmap::typeAlias, "j").release();
  table_.replace(j_, replacement);
  EXPECT_EQ(replacement, table_.atName("j"));
  EXPECT_EQ(2, table_.orderedSize());
  EXPECT_EQ(p_, table_.orderedAt(1));
}

TEST(SymbolTableEnd, deletesEverySymbolAliasesIncluded) {
  const int before = unittest::spy().living;
  {
    TSymbolTable table;
    table.add("i", unittest::spySymbol(1, dmap::typeSet, "i"));
    table.add("j", unittest::spySymbol(1, dmap::typeAlias, "j"));
    EXPECT_EQ(before + 2, unittest::spy().living);
  }
  EXPECT_EQ(before, unittest::spy().living);
}

}  // namespace
}  // namespace ztb::symtable
