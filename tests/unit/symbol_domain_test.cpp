// Records outside their domains, found through the membership tables of the domain sets.
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "tests/unit/symbols.h"

namespace ztb {
namespace {

using unittest::Keys;
using unittest::keysOf;
using unittest::parameterOver;
using unittest::symbolOf;

class DomainViolation : public testing::Test {
 protected:
  DomainViolation() { rowSet_->domainMembership = {0, 1, 0, 1, 0, 0}; }

  // Keys of all violations behind the first record.
  std::vector<Keys> violationsBehindTheFirst() {
    std::vector<Keys> result;
    const auto record = symbol_->firstRecord();
    while (symbol_->toNextDomainViolation(*record)) {
      result.push_back(keysOf(*record));
    }
    EXPECT_TRUE(symbol_->isEnd(*record));
    return result;
  }

  // Of the row set, labels 1 and 3 are members.
  std::unique_ptr<AbstractZTBSymbol> rowSet_ = symbolOf(1, dmap::typeSet, "rows");
  std::unique_ptr<AbstractZTBSymbol> columnSet_ = symbolOf(1, dmap::typeSet, "columns");
  std::unique_ptr<AbstractZTBSymbol> symbol_ =
      parameterOver(2, {{1, 1}, {1, 2}, {2, 1}, {3, 3}, {4, 4}});
};

TEST_F(DomainViolation, isARecordWhoseLabelHas0InTheTable) {
  symbol_->domainSymbols = {rowSet_.get(), nullptr};
  EXPECT_EQ((std::vector<Keys>{{2, 1}, {4, 4}}), violationsBehindTheFirst());
}

TEST_F(DomainViolation, anyPositionCounts) {
  columnSet_->domainMembership = {0, 1, 1, 0, 1, 0};
  symbol_->domainSymbols = {rowSet_.get(), columnSet_.get()};
  EXPECT_EQ((std::vector<Keys>{{2, 1}, {3, 3}, {4, 4}}), violationsBehindTheFirst());
}

TEST_F(DomainViolation, anyValueButZeroIsAMember) {
  rowSet_->domainMembership = {0, 5, -1, 1, 2, 0};
  symbol_->domainSymbols = {rowSet_.get(), nullptr};
  EXPECT_TRUE(violationsBehindTheFirst().empty());
}

TEST_F(DomainViolation, aLabelNewerThanTheTableIsNoMember) {
  rowSet_->domainMembership = {0, 1, 1, 1};
  symbol_->domainSymbols = {rowSet_.get(), nullptr};
  EXPECT_EQ((std::vector<Keys>{{4, 4}}), violationsBehindTheFirst());
}

TEST_F(DomainViolation, theRecordUnderTheHandleIsNotTested) {
  const auto record = symbol_->findRecord(Keys{2, 1}.data());
  symbol_->domainSymbols = {rowSet_.get(), nullptr};
  ASSERT_TRUE(symbol_->toNextDomainViolation(*record));
  EXPECT_EQ((Keys{4, 4}), keysOf(*record));
}

TEST_F(DomainViolation, aDomainWithoutATableIsNotLookedAt) {
  symbol_->domainSymbols = {columnSet_.get(), columnSet_.get()};
  EXPECT_TRUE(violationsBehindTheFirst().empty());
}

TEST_F(DomainViolation, anAliasAnswersThroughItsSet) {
  const auto alias = symbolOf(1, dmap::typeAlias, "r");
  alias->aliasTarget = rowSet_.get();
  symbol_->domainSymbols = {alias.get(), nullptr};
  EXPECT_EQ((std::vector<Keys>{{2, 1}, {4, 4}}), violationsBehindTheFirst());
}

TEST_F(DomainViolation, anAliasWithoutATargetIsNotLookedAt) {
  const auto alias = symbolOf(1, dmap::typeAlias, "r");
  alias->aliasTarget = nullptr;
  symbol_->domainSymbols = {alias.get(), alias.get()};
  EXPECT_TRUE(violationsBehindTheFirst().empty());
}

TEST_F(DomainViolation, aDomainListShorterThanTheDimensionIsTolerated) {
  symbol_->domainSymbols = {rowSet_.get()};
  EXPECT_EQ((std::vector<Keys>{{2, 1}, {4, 4}}), violationsBehindTheFirst());
  symbol_->domainSymbols.clear();
  EXPECT_TRUE(violationsBehindTheFirst().empty());
}

TEST_F(DomainViolation, searchFromTheEndThrows) {
  symbol_->domainSymbols = {rowSet_.get(), nullptr};
  const auto record = symbol_->lastRecord();
  record->storeIterator().next();
  EXPECT_THROW(symbol_->toNextDomainViolation(*record), std::logic_error);
}

}  // namespace
}  // namespace ztb
