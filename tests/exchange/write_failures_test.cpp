// Writes that fail: the text, what the peer is still asked, and what is left.
#include <cstddef>
#include <stdexcept>

#include "tests/exchange/exchange_fixture.h"

namespace ztb::exchangetest {
namespace {

class WriteFailures : public ExchangeTest {
 protected:
  // The last calls of a failed write.
  Lines lastCalls(std::ptrdiff_t count) {
    const Lines all = log();
    return {all.end() - count, all.end()};
  }
  // No file is there, the target is freed, and a second write works.
  void expectNothingLeftAndUsable() {
    EXPECT_EQ(Lines(), dump());
    EXPECT_EQ(nullptr, peer_.dump("out.rxf"));
    EXPECT_EQ(1, peer_.objects());
    EXPECT_EQ(1, peers::rxfFamily.state.objectCount);
    EXPECT_EQ(1, write()) << db_->lastError;
  }
};

TEST_F(WriteFailures, anOpeningThatFailsIsToldInThePeersWordsBeforeTheFileName) {
  peer_.errorText(13, "Disk full");
  peer_.fail("rxfOpenWrite", 0, 13);
  EXPECT_EQ(0, write());
  EXPECT_STREQ("Disk full: out.rxf", db_->lastError);
  EXPECT_EQ((Lines{"2 XCreate", "2 rxfOpenWrite \"out.rxf\" \"\"", "2 rxfErrorStr 13", "2 XFree"}),
            log());
  expectNothingLeftAndUsable();
}

TEST_F(WriteFailures, aLongOpeningTextIsCut) {
  const std::string text(255, 'e');
  peer_.errorText(13, text.c_str());
  peer_.fail("rxfOpenWrite", 0, 13);
  EXPECT_EQ(0, write());
  EXPECT_EQ(text, db_->lastError);
}

TEST_F(WriteFailures, aRefusedTableOfSpecialValuesEndsTheWrite) {
  add("p", 1, dmap::typeParameter);
  peer_.fail("rxfSetSpecialValues", 0, 0);
  EXPECT_EQ(0, write());
  EXPECT_STREQ("Error setting special values", db_->lastError);
  EXPECT_EQ((Lines{"2 rxfSetSpecialValues", "2 XFree"}), lastCalls(2));
  expectNothingLeftAndUsable();
}

TEST_F(WriteFailures, aRefusedAliasEndsTheWriteWithoutClosing) {
  add("i", 1, dmap::typeSet);
  add("j", 1, dmap::typeAlias, 0);
  add("p", 1, dmap::typeParameter);
  peer_.fail("rxfAddAlias", 0, 0);
  EXPECT_EQ(0, write());
  EXPECT_STREQ("Error writing alias j of set i to RXF", db_->lastError);
  EXPECT_EQ((Lines{"2 rxfAddAlias \"j\" \"i\"", "2 XFree"}), lastCalls(2));
  expectNothingLeftAndUsable();
}

TEST_F(WriteFailures, aRefusedAliasOfTheUniverseIsNamedStar) {
  add("all", 1, dmap::typeAlias, -1);
  peer_.fail("rxfAddAlias", 0, 0);
  EXPECT_EQ(0, write());
  EXPECT_STREQ("Error writing alias all of set * to RXF", db_->lastError);
}

TEST_F(WriteFailures, aRefusedSymbolEndsTheWriteWithoutClosing) {
  add("i", 1, dmap::typeSet);
  add("p", 1, dmap::typeParameter);
  peer_.fail("rxfDataWriteRawStart", 1, 0);
  EXPECT_EQ(0, write());
  EXPECT_STREQ("Error writing symbol p to RXF", db_->lastError);
  EXPECT_EQ((Lines{"2 rxfDataWriteRawStart \"p\" \"\" 1 1 0", "2 XFree"}), lastCalls(2));
  expectNothingLeftAndUsable();
}

TEST_F(WriteFailures, anErrorInThePeersQueueEndsTheWriteWithClosing) {
  addLabels({"a"});
  peer_.errorText(21, "Bad label");
  peer_.raise("rxfUELRegisterRaw", 0, 21);
  EXPECT_EQ(0, write());
  EXPECT_STREQ("1 RXF Error(s). First Error: Bad label", db_->lastError);
  EXPECT_EQ((Lines{"2 rxfErrorCount", "2 rxfGetLastError", "2 rxfGetLastError", "2 rxfErrorStr 21",
                   "2 rxfClose", "2 XFree"}),
            lastCalls(6));
  EXPECT_EQ(1, write()) << db_->lastError;
}

TEST_F(WriteFailures, ofSeveralErrorsTheOneDrainedLastIsNamed) {
  addLabels({"a", "b", "c"});
  for (int call = 0; call < 3; ++call) {
    peer_.raise("rxfUELRegisterRaw", call, 31 + call);
  }
  EXPECT_EQ(0, write());
  // The queue gives the latest error first.
  EXPECT_STREQ("3 RXF Error(s). First Error: Scripted error 31", db_->lastError);
}

// The peer tells one error and gives no end of them.
TEST_F(WriteFailures, aPeerWhoseErrorsDoNotEndIsLeftAtSomePoint) {
  addLabels({"a"});
  peer_.raise("rxfUELRegisterRaw", 0, 31);
  peer_.failAlways("rxfGetLastError", 8);
  EXPECT_EQ(0, write());
  EXPECT_STREQ("100000 RXF Error(s). First Error: Scripted error 8", db_->lastError);
  EXPECT_EQ(ZTB_ERROR_DAMAGED_FILE, db_->errorKind);
}

TEST_F(WriteFailures, aRecordThatAStrictDomainRefusesIsReportedAtTheEnd) {
  addLabels({"a", "b"});
  AbstractZTBSymbol& i = add("i", 1, dmap::typeSet);
  AbstractZTBSymbol& p = addOver("p", dmap::typeParameter, {&i});
  const double value = 1;
  p.insertRecord(Keys{1}.data(), &value);
  p.insertRecord(Keys{2}.data(), &value);
  peer_.fail("rxfDataWriteRaw", 0, 0);
  peer_.raise("rxfDataWriteRaw", 0, 77);
  EXPECT_EQ(0, write());
  EXPECT_STREQ("1 RXF Error(s). First Error: Scripted error 77", db_->lastError);
  EXPECT_EQ((Lines{"2 rxfDataWriteRaw [1] [1]", "2 rxfDataWriteRaw [2] [1]"}),
            log("rxfDataWriteRaw ["));
}

TEST_F(WriteFailures, aCountWithoutAQueueIsOneErrorWithTheTextOf0) {
  // The peer counts an error but its queue is empty.
  peer_.fail("rxfErrorCount", 0, 1);
  peer_.errorText(0, "nothing");
  EXPECT_EQ(0, write());
  EXPECT_STREQ("1 RXF Error(s). First Error: nothing", db_->lastError);
}

TEST_F(WriteFailures, leaveTheRecordsAlone) {
  addLabels({"a"});
  AbstractZTBSymbol& p = add("p", 1, dmap::typeParameter);
  const double value = 2.5;
  p.insertRecord(Keys{1}.data(), &value);
  peer_.fail("rxfDataWriteRawStart", 0, 0);
  EXPECT_EQ(0, write());
  EXPECT_EQ((Records{{{1}, {2.5}}}), recordsOf(p));
  EXPECT_EQ(Source::db, db_->initFrom);
}

TEST_F(WriteFailures, ofASymbolWithTooManyPositionsThrowAndFreeTheTarget) {
  const std::vector<AbstractZTBSymbol*> domains(21, db_->universe.get());
  addOver("wide", dmap::typeParameter, domains);
  EXPECT_THROW(write(), std::logic_error);
  EXPECT_EQ(1, peer_.objects());
}

}  // namespace
}  // namespace ztb::exchangetest
