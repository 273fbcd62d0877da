// Which calls of the peer opening a file takes, and in which order.
#include "tests/exchange/exchange_fixture.h"

namespace ztb::exchangetest {
namespace {

class LoadCalls : public ExchangeTest {};

TEST_F(LoadCalls, ofAFileWithNothingInIt) {
  peer_.file("empty.rxf");
  EXPECT_EQ(1, db_->InitFromRXF("empty.rxf"));
  EXPECT_EQ(lines(R"(
1 rxfOpenRead "empty.rxf"
1 rxfGetSpecialValues
1 rxfSetReadSpecialValues
1 rxfGetElemText 1
1 rxfUMUelInfo
1 rxfSystemInfo)"),
            log());
  EXPECT_EQ(Source::rxf, db_->initFrom);
  EXPECT_EQ("empty.rxf", db_->rxfFileName);
  EXPECT_EQ(1, db_->CloseRXF(false));
}

TEST_F(LoadCalls, readTextsLabelsSymbolsAndDomainsButNoRecord) {
  makeDiet();
  EXPECT_EQ(1, db_->InitFromRXF("diet.rxf"));
  EXPECT_EQ(lines(R"(
1 rxfOpenRead "diet.rxf"
1 rxfGetSpecialValues
1 rxfSetReadSpecialValues
1 rxfGetElemText 1
1 rxfGetElemText 2
1 rxfGetElemText 3
1 rxfUMUelInfo
1 rxfUMUelGet 1
1 rxfUMUelGet 2
1 rxfUMUelGet 3
1 rxfSystemInfo
1 rxfSymbolInfo 1
1 rxfSymbolInfoX 1
1 rxfSymbolInfo 2
1 rxfSymbolInfoX 2
1 rxfSymbolInfo 1
1 rxfSymbolInfo 3
1 rxfSymbolInfoX 3
1 rxfSymbolInfo 4
1 rxfSymbolInfoX 4
1 rxfSymbolGetDomainX 1
1 rxfSymbolGetDomainX 3
1 rxfSymbolGetDomainX 4)"),
            log());
}

TEST_F(LoadCalls, tellThePeerTheInternalSpecialValuesAndLeaveItsFurtherEntries) {
  makeDiet();
  load();
  for (int code = 0; code < 5; ++code) {
    EXPECT_TRUE(
        sameBits(internalSpecialValues[static_cast<std::size_t>(code)], peer_.tableEntry(code)))
        << code;
  }
  for (int entry = 5; entry < 16; ++entry) {
    EXPECT_EQ(1000.0 + entry, peer_.tableEntry(entry));
  }
}

TEST_F(LoadCalls, tellTheInternalSpecialValuesWhateverTheCallerSet) {
  makeDiet();
  db_->specialValues = {1, 2, 3, 4, 5};
  db_->userSpecialValues = db_->specialValues;
  db_->specialValueMode = SpecialValueMode::all;
  load();
  EXPECT_TRUE(sameBits(1e300, peer_.tableEntry(0)));
}

TEST_F(LoadCalls, stopAtTheFirstTextThatIsNotThere) {
  makeDiet();
  peer_.fail("rxfGetElemText", 1, 0);
  EXPECT_EQ(1, db_->InitFromRXF("diet.rxf"));
  EXPECT_EQ((Lines{"1 rxfGetElemText 1", "1 rxfGetElemText 2"}), log("rxfGetElemText"));
  EXPECT_EQ(2, db_->textPool.size());
}

TEST_F(LoadCalls, areNoneOnADatabaseThatHasASource) {
  makeDiet();
  load();
  EXPECT_EQ(0, db_->InitFromRXF("diet.rxf"));
  EXPECT_EQ(Lines(), log());
}

TEST_F(LoadCalls, ofAFailedOpeningAskForTheTextOfTheError) {
  EXPECT_EQ(0, db_->InitFromRXF("none.rxf"));
  EXPECT_EQ((Lines{"1 rxfOpenRead \"none.rxf\"", "1 rxfErrorStr 1"}), log());
}

TEST_F(LoadCalls, ofTheEndCloseTheFileAndFreeTheObject) {
  makeDiet();
  load();
  db_.reset();
  EXPECT_EQ((Lines{"1 rxfClose", "1 XFree"}), log());
}

TEST_F(LoadCalls, ofTheEndWithoutAFileFreeTheObjectAlone) {
  db_.reset();
  EXPECT_EQ((Lines{"1 XFree"}), log());
}

TEST_F(LoadCalls, ofTheEndAfterAFailedOpeningCloseAllTheSame) {
  EXPECT_EQ(0, db_->InitFromRXF("none.rxf"));
  log();
  db_.reset();
  EXPECT_EQ((Lines{"1 rxfClose", "1 XFree"}), log());
}

TEST_F(LoadCalls, ofTheEndAfterClosingFreeTheObjectAlone) {
  makeDiet();
  load();
  EXPECT_EQ(1, db_->CloseRXF(false));
  log();
  db_.reset();
  EXPECT_EQ((Lines{"1 XFree"}), log());
}

}  // namespace
}  // namespace ztb::exchangetest
