// The two ways in which a symbol's domain goes into a file: checked before the records, or noted
// behind them.
#include "tests/exchange/exchange_fixture.h"

namespace ztb::exchangetest {
namespace {

class WriteDomains : public ExchangeTest {
 protected:
  WriteDomains() { i_ = &add("i", 1, dmap::typeSet); }

  AbstractZTBSymbol* universe() { return db_->universe.get(); }

  // The calls that concern domains and errors, without the last question for errors.
  Lines domainCalls() {
    Lines result = log();
    std::erase_if(result, [](const std::string& line) {
      return line.find("rxfSymbolSetDomain") == std::string::npos &&
             line.find("rxfErrorCount") == std::string::npos &&
             line.find("rxfGetLastError") == std::string::npos;
    });
    EXPECT_EQ("2 rxfErrorCount", result.back());
    result.pop_back();
    return result;
  }

  AbstractZTBSymbol* i_ = nullptr;
};

TEST_F(WriteDomains, ofKnownSetsAreChecked) {
  addOver("p", dmap::typeParameter, {i_, i_});
  EXPECT_EQ(1, write());
  EXPECT_EQ((Lines{"2 rxfErrorCount", "2 rxfSymbolSetDomain (\"i\" \"i\")"}), domainCalls());
}

TEST_F(WriteDomains, ofKnownSetsAreNotedIfNoCheckIsAskedFor) {
  addOver("p", dmap::typeParameter, {i_, i_});
  EXPECT_EQ(1, write("out.rxf", 1));
  EXPECT_EQ((Lines{"2 rxfSymbolSetDomainX 2 (\"i\" \"i\")"}), domainCalls());
}

TEST_F(WriteDomains, areNotCheckedForAnyNumberButZero) {
  addOver("p", dmap::typeParameter, {i_, i_});
  EXPECT_EQ(1, write("out.rxf", -42));
  EXPECT_EQ((Lines{"2 rxfSymbolSetDomainX 2 (\"i\" \"i\")"}), domainCalls());
}

TEST_F(WriteDomains, ofKnownSetsAndTheUniverseAreCheckedWithStar) {
  addOver("p", dmap::typeParameter, {universe(), i_});
  EXPECT_EQ(1, write());
  EXPECT_EQ((Lines{"2 rxfErrorCount", "2 rxfSymbolSetDomain (\"*\" \"i\")"}), domainCalls());
}

TEST_F(WriteDomains, ofTheUniverseAloneTakeNoCall) {
  addOver("p", dmap::typeParameter, {universe(), universe()});
  EXPECT_EQ(1, write());
  EXPECT_EQ(Lines(), domainCalls());
}

TEST_F(WriteDomains, ofTheUniverseAloneTakeNoCallUncheckedEither) {
  addOver("p", dmap::typeParameter, {universe(), universe()});
  EXPECT_EQ(1, write("out.rxf", 1));
  EXPECT_EQ(Lines(), domainCalls());
}

TEST_F(WriteDomains, withAnUnknownNameAreNotedUnderThatNameAndNeverChecked) {
  addOver("p", dmap::typeParameter, {i_, nullptr, universe()}, {nullptr, "elsewhere", nullptr});
  EXPECT_EQ(1, write());
  EXPECT_EQ((Lines{"2 rxfSymbolSetDomainX 2 (\"i\" \"elsewhere\" \"*\")"}), domainCalls());
}

TEST_F(WriteDomains, withUnknownNamesAloneAreNoted) {
  addOver("p", dmap::typeParameter, {nullptr}, {"elsewhere"});
  EXPECT_EQ(1, write());
  EXPECT_EQ((Lines{"2 rxfSymbolSetDomainX 2 (\"elsewhere\")"}), domainCalls());
}

TEST_F(WriteDomains, whoseNamesAllBeginWithStarAreNotNoted) {
  addOver("p", dmap::typeParameter, {nullptr, universe()}, {"*odd", nullptr});
  EXPECT_EQ(1, write());
  EXPECT_EQ(Lines(), domainCalls());
}

TEST_F(WriteDomains, standBeforeTheRecordsWhenCheckedAndBehindThemWhenNoted) {
  addLabels({"a"});
  const double value = 1;
  addOver("p", dmap::typeParameter, {i_}).insertRecord(Keys{1}.data(), &value);
  EXPECT_EQ(1, write());
  Lines all = log();
  auto record = std::ranges::find(all, "2 rxfDataWriteRaw [1] [1]");
  ASSERT_NE(all.end(), record);
  EXPECT_EQ("2 rxfSymbolSetDomain (\"i\")", *(record - 1));
  EXPECT_EQ(1, write("out.rxf", 1));
  all = log();
  record = std::ranges::find_if(
      all, [](const std::string& line) { return line.ends_with("rxfDataWriteRaw [1] [1]"); });
  ASSERT_NE(all.end(), record);
  EXPECT_TRUE((record + 1)->ends_with(" rxfDataWriteDone"));
  EXPECT_TRUE((record + 2)->ends_with(" rxfSymbolSetDomainX 2 (\"i\")"));
}

TEST_F(WriteDomains, numberSymbolsByTheirPlaceInTheTableAliasesIncluded) {
  add("j", 1, dmap::typeAlias, 0);
  addOver("p", dmap::typeParameter, {&at("j")});
  EXPECT_EQ(1, write("out.rxf", 1));
  EXPECT_EQ((Lines{"2 rxfSymbolSetDomainX 3 (\"j\")"}), domainCalls());
}

TEST_F(WriteDomains, thatThePeerRefusesWithoutAnErrorAreNoted) {
  addOver("p", dmap::typeParameter, {i_});
  peer_.fail("rxfSymbolSetDomain", 0, 0);
  EXPECT_EQ(1, write());
  EXPECT_EQ((Lines{"2 rxfErrorCount", "2 rxfSymbolSetDomain (\"i\")", "2 rxfErrorCount",
                   "2 rxfSymbolSetDomainX 2 (\"i\")"}),
            domainCalls());
}

TEST_F(WriteDomains, thatThePeerRefusesWithErrorsAreNotedAndTheErrorsAreDrainedAndForgiven) {
  addOver("p", dmap::typeParameter, {i_});
  peer_.fail("rxfSymbolSetDomain", 0, 0);
  peer_.raise("rxfSymbolSetDomain", 0, 55);
  peer_.raise("rxfSymbolSetDomain", 0, 56);
  EXPECT_EQ(1, write()) << db_->lastError;
  EXPECT_EQ((Lines{"2 rxfErrorCount", "2 rxfSymbolSetDomain (\"i\")", "2 rxfErrorCount",
                   "2 rxfGetLastError", "2 rxfGetLastError", "2 rxfSymbolSetDomainX 2 (\"i\")"}),
            domainCalls());
  EXPECT_EQ("relaxed (\"i\")", dump().back());
}

TEST_F(WriteDomains, refusedForSeveralSymbolsAreAllForgiven) {
  addOver("p", dmap::typeParameter, {i_});
  addOver("q", dmap::typeParameter, {i_});
  for (int symbol = 0; symbol < 2; ++symbol) {
    peer_.fail("rxfSymbolSetDomain", symbol, 0);
    peer_.raise("rxfSymbolSetDomain", symbol, 55);
  }
  EXPECT_EQ(1, write()) << db_->lastError;
}

TEST_F(WriteDomains, refusedDoNotExcuseAnErrorOfAnotherCall) {
  addOver("p", dmap::typeParameter, {i_});
  peer_.fail("rxfSymbolSetDomain", 0, 0);
  peer_.raise("rxfSymbolSetDomain", 0, 55);
  peer_.raise("rxfDataWriteDone", 1, 66);
  EXPECT_EQ(0, write());
  EXPECT_STREQ("1 RXF Error(s). First Error: Scripted error 66", db_->lastError);
}

TEST_F(WriteDomains, whoseListIsShorterThanTheDimensionCountAsUnknown) {
  AbstractZTBSymbol& p = addOver("p", dmap::typeParameter, {i_, i_});
  p.domainSymbols.resize(1);
  p.domainNames.resize(1);
  EXPECT_EQ(1, write());
  EXPECT_EQ((Lines{"2 rxfSymbolSetDomainX 2 (\"i\" \"*\")"}), domainCalls());
}

}  // namespace
}  // namespace ztb::exchangetest
