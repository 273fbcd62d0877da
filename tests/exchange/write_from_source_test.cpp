// Writing a database whose symbols are still in its file: to another file, and over the file
// itself.
#include "tests/exchange/exchange_fixture.h"

namespace ztb::exchangetest {
namespace {

class WriteFromSource : public ExchangeTest {
 protected:
  WriteFromSource() {
    makeDiet();
    load();
  }

  bool anyLoaded() {
    return !db_->symbols.forEach([](const AbstractZTBSymbol* symbol) { return !symbol->loaded; });
  }
};

TEST_F(WriteFromSource, copiesUnreadSymbolsRecordByRecord) {
  EXPECT_EQ(1, write());
  EXPECT_EQ(lines(R"(
2 XCreate
2 rxfOpenWrite "out.rxf" ""
2 rxfStoreDomainSetsSet 0
2 rxfGetSpecialValues
2 rxfSetSpecialValues
2 rxfUELRegisterRawStart
2 rxfUELRegisterRaw "flour"
2 rxfUELRegisterRaw "milk"
2 rxfUELRegisterRaw "iron"
2 rxfUELRegisterDone
2 rxfDataWriteRawStart "foods" "what there is" 1 0 0
1 rxfFindSymbol "foods"
1 rxfDataReadRawStart 1
1 rxfDataReadRaw
2 rxfDataWriteRaw [1] [1]
1 rxfDataReadRaw
2 rxfDataWriteRaw [2] [2]
1 rxfDataReadDone
2 rxfDataWriteDone
2 rxfAddAlias "f" "foods"
2 rxfDataWriteRawStart "cost" "of a food" 1 1 0
2 rxfErrorCount
2 rxfSymbolSetDomain ("foods")
1 rxfFindSymbol "cost"
1 rxfDataReadRawStart 3
1 rxfDataReadRaw
2 rxfDataWriteRaw [1] [0.25]
1 rxfDataReadRaw
2 rxfDataWriteRaw [2] [0.5]
1 rxfDataReadDone
2 rxfDataWriteDone
2 rxfDataWriteRawStart "amount" "bought" 1 2 3
1 rxfFindSymbol "amount"
1 rxfDataReadRawStart 4
1 rxfDataReadRaw
2 rxfDataWriteRaw [2] [1 2 0 inf 1]
1 rxfDataReadDone
2 rxfDataWriteDone
2 rxfAddSetText "a food"
2 rxfAddSetText "fresh"
2 rxfErrorCount
2 rxfClose
2 XFree)"),
            log());
  EXPECT_EQ(dump("diet.rxf"), dump("out.rxf"));
}

TEST_F(WriteFromSource, leavesUnreadSymbolsUnreadAndReadable) {
  EXPECT_EQ(1, write());
  EXPECT_FALSE(anyLoaded());
  EXPECT_TRUE(at("cost").isEmpty());
  EXPECT_EQ(Source::rxf, db_->initFrom);
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_EQ(2, at("cost").recordCount());
}

TEST_F(WriteFromSource, writesLoadedSymbolsFromMemory) {
  ASSERT_TRUE(db_->ensureLoaded(at("cost")));
  *at("cost").firstRecord()->valuesToWrite() = 9;
  log();
  EXPECT_EQ(1, write());
  EXPECT_EQ((Lines{"1 rxfFindSymbol \"foods\"", "1 rxfFindSymbol \"amount\""}),
            log("rxfFindSymbol"));
  const Lines written = dump();
  EXPECT_NE(written.end(), std::ranges::find(written, "record [1] [9]"));
}

TEST_F(WriteFromSource, writesNoRecordsOfSymbolsWhoseSourceIsGone) {
  ASSERT_EQ(1, db_->CloseRXF(false));
  EXPECT_EQ(1, write());
  EXPECT_FALSE(anyLoaded());
  const Lines written = dump();
  EXPECT_TRUE(std::ranges::none_of(
      written, [](const std::string& line) { return line.starts_with("record"); }));
  EXPECT_NE(written.end(), std::ranges::find(written, "symbol 3 \"cost\" 1 1 0 \"of a food\""));
}

TEST_F(WriteFromSource, overTheSourceLoadsAllAndClosesItBeforeTheOpening) {
  EXPECT_EQ(1, write("diet.rxf"));
  const Lines all = log();
  EXPECT_EQ("2 XCreate", all.at(0));
  EXPECT_EQ("1 rxfFindSymbol \"foods\"", all.at(1));
  const auto closed = std::ranges::find(all, "1 rxfClose");
  ASSERT_NE(all.end(), closed);
  EXPECT_EQ("2 rxfOpenWrite \"diet.rxf\" \"\"", *(closed + 1));
  EXPECT_TRUE(std::none_of(closed + 1, all.end(),
                           [](const std::string& line) { return line.starts_with("1 "); }));
  EXPECT_EQ(Source::db, db_->initFrom);
  EXPECT_TRUE(at("cost").loaded);
  EXPECT_FALSE(at("f").loaded);
}

TEST_F(WriteFromSource, overTheSourceGivesTheSameFile) {
  const Lines before = dump("diet.rxf");
  EXPECT_EQ(1, write("diet.rxf"));
  EXPECT_EQ(before, dump("diet.rxf"));
}

TEST_F(WriteFromSource, toANameThatDiffersInTheCaseOfLettersIsOverTheSource) {
  EXPECT_EQ(1, write("Diet.RXF"));
  EXPECT_EQ(Source::db, db_->initFrom);
  EXPECT_TRUE(at("cost").loaded);
}

TEST_F(WriteFromSource, toAnotherPathOfTheSourceIsNotOverTheSource) {
  for (const char* name : {"./diet.rxf", "diet.rx", "diet.rxf ", "dieT.rxg"}) {
    EXPECT_EQ(1, write(name)) << name;
    EXPECT_EQ(Source::rxf, db_->initFrom) << name;
    EXPECT_FALSE(anyLoaded()) << name;
  }
}

TEST_F(WriteFromSource, overTheSourceThatCannotBeOpenedHasLoadedAllAndClosed) {
  peer_.fail("rxfOpenWrite", 0, 5);
  EXPECT_EQ(0, write("diet.rxf"));
  EXPECT_STREQ("Scripted error 5: diet.rxf", db_->lastError);
  EXPECT_EQ(Source::db, db_->initFrom);
  EXPECT_EQ(2, at("cost").recordCount());
  EXPECT_EQ(2, at("foods").recordCount());
}

TEST_F(WriteFromSource, afterClosingIsAnOrdinaryWriteUnderAnyName) {
  ASSERT_EQ(1, db_->CloseRXF(true));
  log();
  EXPECT_EQ(1, write("diet.rxf"));
  EXPECT_EQ(Lines(), log("rxfFindSymbol"));
}

TEST_F(WriteFromSource, aFailureLeavesTheSourceReadable) {
  peer_.fail("rxfDataWriteRawStart", 1, 0);
  EXPECT_EQ(0, write());
  EXPECT_STREQ("Error writing symbol cost to RXF", db_->lastError);
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_EQ(2, at("cost").recordCount());
}

class WriteFromFileWithEquations : public ExchangeTest {};

TEST_F(WriteFromFileWithEquations, addsThe53ThatReadingTookAway) {
  peer_.file("e.rxf");
  labels({"a"});
  symbol("e", 1, dmap::typeEquation, 55, "balance");
  record({1}, {1, 2, 3, 4, 5});
  symbol("all", 1, dmap::typeAlias, 0);
  symbolOver("q", dmap::typeParameter, {"unknown", "*"});
  load("e.rxf");
  EXPECT_EQ(2, at("e").userInfo);
  EXPECT_EQ(1, write());
  Lines expected = dump("e.rxf");
  std::ranges::replace(expected, "domain (\"unknown\" \"*\")", "relaxed (\"unknown\" \"*\")");
  EXPECT_EQ(expected, dump());
}

TEST_F(WriteFromFileWithEquations, foldsNoBytesAbove127InFileNames) {
  peer_.file("\xC3\xA4.rxf");
  load("\xC3\xA4.rxf");
  EXPECT_EQ(1, write("\xC3\x84.rxf"));
  EXPECT_EQ(Source::rxf, db_->initFrom);
}

}  // namespace
}  // namespace ztb::exchangetest
