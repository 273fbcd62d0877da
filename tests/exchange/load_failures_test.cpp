// Openings that fail: the text, and the state of the database afterwards.
#include "core/frame.h"
#include "core/operations.h"
#include "tests/exchange/exchange_fixture.h"

namespace ztb::exchangetest {
namespace {

class LoadFailures : public ExchangeTest {
 protected:
  // A second attempt is refused by the state that the first one left.
  void expectNoSecondAttempt() {
    peer_.file("good.rxf");
    EXPECT_EQ(0, db_->InitFromRXF("good.rxf"));
    EXPECT_STREQ("Database has been initialized, cannot initialize from good.rxf", db_->lastError);
  }
};

TEST_F(LoadFailures, aFileThatCannotBeOpenedIsToldInThePeersWords) {
  peer_.errorText(1, "No such file");
  EXPECT_EQ(0, db_->InitFromRXF("none.rxf"));
  EXPECT_STREQ("Error opening RXF file: No such file", db_->lastError);
  EXPECT_EQ(Source::rxf, db_->initFrom);
  EXPECT_EQ("none.rxf", db_->rxfFileName);
  EXPECT_TRUE(db_->symbols.empty());
  expectNoSecondAttempt();
}

TEST_F(LoadFailures, theErrorNumberOfTheOpeningGoesToThePeer) {
  makeDiet();
  peer_.fail("rxfOpenRead", 0, 4711);
  EXPECT_EQ(0, db_->InitFromRXF("diet.rxf"));
  EXPECT_STREQ("Error opening RXF file: Scripted error 4711", db_->lastError);
}

TEST_F(LoadFailures, aRefusedTableOfSpecialValuesEndsTheOpening) {
  makeDiet();
  peer_.fail("rxfSetReadSpecialValues", 0, 0);
  EXPECT_EQ(0, db_->InitFromRXF("diet.rxf"));
  EXPECT_STREQ("Error setting special values", db_->lastError);
  EXPECT_EQ(Source::rxf, db_->initFrom);
  EXPECT_EQ(1, db_->textPool.size());
  EXPECT_EQ("1 rxfSetReadSpecialValues", log().back());
  expectNoSecondAttempt();
}

TEST_F(LoadFailures, aRefusedLabelEndsTheOpeningWithTheTextOfTheLabelList) {
  peer_.file("f.rxf");
  const std::string tooLong(64, 'x');
  labels({"a", "b", tooLong.c_str(), "c"});
  symbol("s", 1, dmap::typeSet);
  EXPECT_EQ(0, db_->InitFromRXF("f.rxf"));
  EXPECT_EQ("Label exceeds maximum size of 63: >" + tooLong + "<", db_->lastError);
  EXPECT_EQ(Source::rxf, db_->initFrom);
  EXPECT_EQ(3, db_->uels.size());
  EXPECT_TRUE(db_->symbols.empty());
  expectNoSecondAttempt();
}

TEST_F(LoadFailures, aLabelRefusedWithoutATextLeavesTheLastErrorAsItWas) {
  peer_.file("f.rxf");
  labels({"tab\there"});
  db_->fail("earlier");
  EXPECT_EQ(0, db_->InitFromRXF("f.rxf"));
  EXPECT_STREQ("earlier", db_->lastError);
}

TEST_F(LoadFailures, aDatabaseThatHasAnOpenFileIsRefused) {
  makeDiet();
  load();
  EXPECT_EQ(0, db_->InitFromRXF("other.rxf"));
  EXPECT_STREQ("Database has been initialized, cannot initialize from other.rxf", db_->lastError);
  EXPECT_EQ("diet.rxf", db_->rxfFileName);
  EXPECT_EQ(Source::rxf, db_->initFrom);
}

TEST_F(LoadFailures, aDatabaseThatHadAFileIsRefusedAfterClosing) {
  makeDiet();
  load();
  EXPECT_EQ(1, db_->CloseRXF(false));
  EXPECT_EQ(0, db_->InitFromRXF("diet.rxf"));
  EXPECT_STREQ("Database has been initialized, cannot initialize from diet.rxf", db_->lastError);
  EXPECT_EQ(Source::db, db_->initFrom);
}

TEST_F(LoadFailures, aDatabaseWithASymbolOfItsOwnIsRefused) {
  makeDiet();
  add("p", 1, dmap::typeParameter);
  EXPECT_EQ(0, db_->InitFromRXF("diet.rxf"));
  EXPECT_STREQ("Database has been initialized, cannot initialize from diet.rxf", db_->lastError);
}

TEST_F(LoadFailures, aDatabaseWithLabelsAloneIsNotNoticed) {
  makeDiet();
  addLabels({"earlier"});
  EXPECT_EQ(1, db_->InitFromRXF("diet.rxf"));
  EXPECT_STREQ("flour", db_->uels.at(2));
}

TEST_F(LoadFailures, aFileWithASymbolTwiceIsAnUnexpectedExceptionOfTheOperation) {
  peer_.file("f.rxf");
  symbol("s", 1, dmap::typeSet);
  symbol("S", 1, dmap::typeSet);
  EXPECT_EQ(0, ztbInitFromRXF(handleOf(db_.get()), "f.rxf"));
  EXPECT_EQ(0U, std::string(db_->lastError).find("Unexpected exception in ztbInitFromRXF: "));
  EXPECT_EQ(1, db_->symbols.size());
}

TEST_F(LoadFailures, anAliasBeforeItsSetIsAnUnexpectedExceptionOfTheOperation) {
  peer_.file("f.rxf");
  symbol("a", 1, dmap::typeAlias, 2);
  symbol("i", 1, dmap::typeSet);
  EXPECT_EQ(0, ztbInitFromRXF(handleOf(db_.get()), "f.rxf"));
  EXPECT_EQ(0U, std::string(db_->lastError).find("Unexpected exception in ztbInitFromRXF: "));
}

}  // namespace
}  // namespace ztb::exchangetest
