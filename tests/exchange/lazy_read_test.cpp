// Reading a symbol's records when somebody first touches them, and closing the file.
#include "core/frame.h"
#include "core/operations.h"
#include "tests/exchange/exchange_fixture.h"

namespace ztb::exchangetest {
namespace {

class LazyRead : public ExchangeTest {
 protected:
  LazyRead() {
    makeDiet();
    load();
  }
};

TEST_F(LazyRead, takesTheCallsInOrder) {
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_EQ(lines(R"(
1 rxfFindSymbol "cost"
1 rxfDataReadRawStart 3
1 rxfDataReadRaw
1 rxfDataReadRaw
1 rxfDataReadDone)"),
            log());
  EXPECT_TRUE(at("cost").loaded);
  EXPECT_EQ((Records{{{1}, {0.25}}, {{2}, {0.5}}}), recordsOf(at("cost")));
}

TEST_F(LazyRead, happensOnce) {
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  log();
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_EQ(Lines(), log());
}

TEST_F(LazyRead, readsTheOneSymbolAlone) {
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_FALSE(at("foods").loaded);
  EXPECT_FALSE(at("amount").loaded);
}

TEST_F(LazyRead, goesByNameAndNotByNumber) {
  at("cost").symbolNumber = 1;
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_EQ((Lines{"1 rxfDataReadRawStart 3"}), log("rxfDataReadRawStart"));
  EXPECT_EQ(2, at("cost").recordCount());
}

TEST_F(LazyRead, keepsTextNumbersAndTranslatesSpecialValues) {
  EXPECT_TRUE(db_->ensureLoaded(at("foods")));
  EXPECT_EQ((Records{{{1}, {1}}, {{2}, {2}}}), recordsOf(at("foods")));
  EXPECT_TRUE(db_->ensureLoaded(at("amount")));
  EXPECT_EQ((Records{{{2}, {1, 2, 0, internalPlusInfinity, 1}}}), recordsOf(at("amount")));
}

TEST_F(LazyRead, readsAsManyRecordsAsThePeerSays) {
  peer_.fail("rxfDataReadRawStart", 0, 0);
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_EQ((Lines{"1 rxfFindSymbol \"cost\"", "1 rxfDataReadRawStart 3", "1 rxfDataReadDone"}),
            log());
  EXPECT_TRUE(at("cost").isEmpty());
}

TEST_F(LazyRead, looksAtNoResultOfTheSearch) {
  peer_.fail("rxfFindSymbol", 0, 0);
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_EQ((Lines{"1 rxfFindSymbol \"cost\"", "1 rxfDataReadRawStart 0", "1 rxfDataReadDone"}),
            log());
}

TEST_F(LazyRead, looksAtNoResultOfTheReads) {
  // The second read does nothing, so the first record comes again and is kept as it is.
  peer_.fail("rxfDataReadRaw", 1, 0);
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_EQ(2U, log("rxfDataReadRaw").size() - 1);  // the start is in this list too
  EXPECT_EQ((Records{{{1}, {0.25}}}), recordsOf(at("cost")));
}

TEST_F(LazyRead, appendsRecordsInWhateverOrderTheyComeToTheirPlace) {
  peer_.file("g.rxf");
  labels({"a", "b", "c"});
  symbol("p", 2, dmap::typeParameter);
  record({3, 1}, {31});
  record({1, 3}, {13});
  record({1, 2}, {12});
  ZTB other(scripted::Client::directory().c_str());
  ASSERT_EQ(1, other.InitFromRXF("g.rxf"));
  AbstractZTBSymbol& p = *other.symbols.atName("p");
  ASSERT_TRUE(other.ensureLoaded(p));
  EXPECT_EQ((Records{{{1, 2}, {12}}, {{1, 3}, {13}}, {{3, 1}, {31}}}), recordsOf(p));
}

TEST_F(LazyRead, ofAnAliasFailsOnceAndIsNotTriedAgain) {
  EXPECT_FALSE(db_->ensureLoaded(at("f")));
  EXPECT_STREQ("Cannot load alias f", db_->lastError);
  EXPECT_TRUE(at("f").loaded);
  EXPECT_EQ(Lines(), log());
  EXPECT_TRUE(db_->ensureLoaded(at("f")));
}

TEST_F(LazyRead, isWhatARecordOperationBeginsWith) {
  const char* keys[] = {"milk"};
  void* record = nullptr;
  EXPECT_EQ(1, ztbFindRecord(handleOf(db_.get()), &at("cost"), keys, &record));
  double value = 0;
  EXPECT_EQ(1, ztbGetLevel(handleOf(db_.get()), record, &value));
  EXPECT_EQ(0.5, value);
  EXPECT_EQ(1, ztbFreeSymbolIterator(handleOf(db_.get()), record));
}

TEST_F(LazyRead, closingWithoutLoadingReadsNothing) {
  EXPECT_TRUE(db_->ensureLoaded(at("foods")));
  log();
  EXPECT_EQ(1, db_->CloseRXF(false));
  EXPECT_EQ((Lines{"1 rxfClose"}), log());
  EXPECT_EQ(Source::db, db_->initFrom);
  EXPECT_FALSE(at("cost").loaded);
  EXPECT_EQ(2, at("foods").recordCount());
}

TEST_F(LazyRead, afterClosingWithoutLoadingFailsOnceAndThenSeesNoRecords) {
  EXPECT_EQ(1, db_->CloseRXF(false));
  EXPECT_FALSE(db_->ensureLoaded(at("cost")));
  EXPECT_STREQ("Symbol cost not initialized from RXF or PBI: 3", db_->lastError);
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_TRUE(at("cost").isEmpty());
}

TEST_F(LazyRead, closingWithLoadingReadsWhatIsStillOutInTableOrder) {
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  log();
  EXPECT_EQ(1, db_->CloseRXF(true));
  EXPECT_EQ(lines(R"(
1 rxfFindSymbol "foods"
1 rxfDataReadRawStart 1
1 rxfDataReadRaw
1 rxfDataReadRaw
1 rxfDataReadDone
1 rxfFindSymbol "amount"
1 rxfDataReadRawStart 4
1 rxfDataReadRaw
1 rxfDataReadDone
1 rxfClose)"),
            log());
  EXPECT_EQ(Source::db, db_->initFrom);
  EXPECT_EQ(1, at("amount").recordCount());
  EXPECT_FALSE(at("f").loaded);
}

TEST_F(LazyRead, closingTwiceFails) {
  EXPECT_EQ(1, db_->CloseRXF(false));
  EXPECT_EQ(0, db_->CloseRXF(false));
  EXPECT_STREQ("Database not initialized from RXF", db_->lastError);
  EXPECT_EQ((Lines{"1 rxfClose"}), log());
}

TEST_F(LazyRead, closingTakesAnyNumberButZeroForTrue) {
  EXPECT_EQ(1, ztbCloseRXF(handleOf(db_.get()), -7));
  EXPECT_TRUE(at("cost").loaded);
}

class Closing : public ExchangeTest {};

TEST_F(Closing, withoutAFileFailsAndAsksThePeerNothing) {
  EXPECT_EQ(0, db_->CloseRXF(true));
  EXPECT_STREQ("Database not initialized from RXF", db_->lastError);
  add("p", 1, dmap::typeParameter);
  EXPECT_EQ(0, db_->CloseRXF(false));
  EXPECT_EQ(Source::db, db_->initFrom);
  EXPECT_EQ(Lines(), log());
}

TEST_F(Closing, aFailedOpeningWorks) {
  EXPECT_EQ(0, db_->InitFromRXF("none.rxf"));
  EXPECT_EQ(1, db_->CloseRXF(true));
  EXPECT_EQ(Source::db, db_->initFrom);
}

}  // namespace
}  // namespace ztb::exchangetest
