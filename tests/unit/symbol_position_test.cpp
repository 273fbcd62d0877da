// The place of the last positioned write, which a symbol offers its store as the next hint.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/unit/spy_store.h"
#include "tests/unit/symbols.h"

namespace ztb {
namespace {

using unittest::Keys;
using unittest::spy;
using unittest::spySymbol;
using Calls = std::vector<std::string>;

class LastPosition : public testing::Test {
 protected:
  LastPosition() {
    insertAtPosition(5);
    spy().reset();
  }
  ~LastPosition() override { spy().reset(); }

  void insertAtPosition(int key) { symbol_->insertRecordAtPosition(&key, &value_); }
  void insert(int key) { symbol_->insertRecord(&key, &value_); }

  // The hint of the next write.
  std::string hint() {
    spy().calls.clear();
    insertAtPosition(99);
    const std::string call = spy().calls.back();
    return call.substr(call.find(" at ") + 4);
  }

  double value_ = 1;
  std::unique_ptr<unittest::SpySymbol> symbol_ = spySymbol(1, dmap::typeParameter);
};

TEST_F(LastPosition, isTheEndAtFirst) {
  const auto fresh = spySymbol(1, dmap::typeParameter);
  const int key = 1;
  fresh->insertRecordAtPosition(&key, &value_);
  EXPECT_EQ((Calls{"insertHint 1 at end"}), spy().calls);
}

TEST_F(LastPosition, insertRecordAtPositionMovesIt) {
  insertAtPosition(3);
  insertAtPosition(4);
  EXPECT_EQ((Calls{"insertHint 3 at 5", "insertHint 4 at 3"}), spy().calls);
  EXPECT_EQ("4", hint());
}

TEST_F(LastPosition, mergeRecordMovesItAlsoToARecordThatIsThere) {
  symbol_->mergeRecord(Keys{7}.data(), nullptr, nullptr, nullptr);
  symbol_->mergeRecord(Keys{5}.data(), nullptr, nullptr, nullptr);
  EXPECT_EQ((Calls{"insertHint 7 at 5", "insertHint 5 at 7"}), spy().calls);
  EXPECT_EQ("5", hint());
}

TEST_F(LastPosition, storeRecordMovesIt) {
  symbol_->storeRecord(Keys{7}.data(), &value_, true);
  symbol_->storeRecord(Keys{6}.data(), &value_, false);
  EXPECT_EQ((Calls{"insertOrAssign 7 at 5", "insertHint 6 at 7"}), spy().calls);
  EXPECT_EQ("6", hint());
}

TEST_F(LastPosition, putRecordMovesIt) {
  symbol_->putRecord(Keys{7}.data(), &value_, true);
  symbol_->putRecord(Keys{6}.data(), &value_, false);
  EXPECT_EQ((Calls{"insertOrAssign 7 at 5", "insertHint 6 at 7"}), spy().calls);
  EXPECT_EQ("6", hint());
}

TEST_F(LastPosition, addInsertAndAppendLeaveIt) {
  symbol_->addRecord(Keys{2}.data(), nullptr, nullptr);
  insert(3);
  symbol_->appendRecord(Keys{8}.data(), &value_);
  EXPECT_EQ((Calls{"insertHint 2 at 5", "insert 3", "append 8"}), spy().calls);
  EXPECT_EQ("5", hint());
}

TEST_F(LastPosition, addRecordHintsWithTheLowerBound) {
  insert(8);
  spy().calls.clear();
  symbol_->addRecord(Keys{6}.data(), nullptr, nullptr);
  symbol_->addRecord(Keys{9}.data(), nullptr, nullptr);
  EXPECT_EQ((Calls{"insertHint 6 at 8", "insertHint 9 at end"}), spy().calls);
}

TEST_F(LastPosition, findingLeavesIt) {
  insert(8);
  symbol_->findRecord(Keys{8}.data());
  EXPECT_EQ("5", hint());
}

TEST_F(LastPosition, eraseOfItsRecordPutsItOnTheFollowingOne) {
  insert(8);
  symbol_->eraseRecord(*symbol_->findRecord(Keys{5}.data()));
  EXPECT_EQ("8", hint());
}

TEST_F(LastPosition, eraseOfTheLastRecordPutsItOnTheEnd) {
  symbol_->eraseRecord(*symbol_->findRecord(Keys{5}.data()));
  EXPECT_EQ("end", hint());
}

TEST_F(LastPosition, eraseOfAnotherRecordLeavesIt) {
  insert(8);
  symbol_->eraseRecord(*symbol_->findRecord(Keys{8}.data()));
  EXPECT_EQ("5", hint());
}

TEST_F(LastPosition, clearRecordsPutsItOnTheEnd) {
  symbol_->clearRecords();
  EXPECT_EQ("end", hint());
}

TEST_F(LastPosition, assignRecordsAppends) {
  const auto source = unittest::parameterOver(1, {{2}, {3}});
  symbol_->assignRecords(*source);
  EXPECT_EQ((Calls{"append 2", "append 3"}), spy().calls);
  EXPECT_EQ("5", hint());
}

}  // namespace
}  // namespace ztb
