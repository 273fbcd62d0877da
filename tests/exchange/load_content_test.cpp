// What a database holds when it was opened on a file.
#include <stdexcept>

#include "tests/exchange/exchange_fixture.h"

namespace ztb::exchangetest {
namespace {

class LoadContent : public ExchangeTest {};

TEST_F(LoadContent, keepsTheFilesTextAndLabelNumbers) {
  makeDiet();
  load();
  EXPECT_EQ(3, db_->textPool.size());
  EXPECT_STREQ("", db_->textPool.at(0));
  EXPECT_STREQ("a food", db_->textPool.at(1));
  EXPECT_STREQ("fresh", db_->textPool.at(2));
  EXPECT_EQ(2, db_->textPool.value("fresh"));
  EXPECT_EQ(4, db_->uels.size());
  EXPECT_STREQ("flour", db_->uels.at(1));
  EXPECT_STREQ("iron", db_->uels.at(3));
}

TEST_F(LoadContent, keepsATextThatStandsTwiceOnceAndRenumbersNothing) {
  peer_.file("f.rxf");
  for (const char* text : {"one", "two", "ONE", "three"}) {
    peer_.addText(text);
  }
  labels({"a"});
  symbol("s", 1, dmap::typeSet);
  record({1}, {4});
  load("f.rxf");
  EXPECT_EQ(4, db_->textPool.size());
  EXPECT_STREQ("three", db_->textPool.at(3));
  EXPECT_EQ(3, db_->textPool.value("three"));
  ASSERT_TRUE(db_->ensureLoaded(at("s")));
  EXPECT_EQ((Records{{{1}, {4}}}), recordsOf(at("s")));
}

TEST_F(LoadContent, takesAnEmptyTextForTheFirstEntry) {
  peer_.file("f.rxf");
  peer_.addText("");
  peer_.addText("one");
  load("f.rxf");
  EXPECT_EQ(2, db_->textPool.size());
  EXPECT_EQ(1, db_->textPool.value("one"));
}

TEST_F(LoadContent, makesEverySymbolWithoutItsRecords) {
  makeDiet();
  load();
  EXPECT_EQ(4, db_->symbols.size());
  EXPECT_EQ(3, db_->symbols.orderedSize());
  int number = 0;
  db_->symbols.forEach([&](const AbstractZTBSymbol* symbol) {
    ++number;
    EXPECT_EQ(number, symbol->symbolNumber);
    EXPECT_FALSE(symbol->loaded) << symbol->name;
    EXPECT_TRUE(symbol->isEmpty()) << symbol->name;
    EXPECT_EQ(db_.get(), symbol->database);
    return true;
  });
  const AbstractZTBSymbol& amount = at("amount");
  EXPECT_EQ("amount", amount.name);
  EXPECT_EQ("bought", amount.text);
  EXPECT_EQ(1, amount.dim);
  EXPECT_EQ(dmap::typeVariable, amount.type);
  EXPECT_EQ(3, amount.userInfo);
}

TEST_F(LoadContent, countsTheSubtypeOfAnEquationFrom53) {
  peer_.file("f.rxf");
  symbol("e0", 1, dmap::typeEquation, 53);
  symbol("e3", 1, dmap::typeEquation, 56);
  symbol("odd", 1, dmap::typeEquation, 0);
  symbol("v", 1, dmap::typeVariable, 53);
  load("f.rxf");
  EXPECT_EQ(0, at("e0").userInfo);
  EXPECT_EQ(3, at("e3").userInfo);
  EXPECT_EQ(-53, at("odd").userInfo);
  EXPECT_EQ(53, at("v").userInfo);
}

TEST_F(LoadContent, anAliasStandsForItsSet) {
  makeDiet();
  load();
  EXPECT_EQ(&at("foods"), at("f").aliasTarget);
  EXPECT_EQ(1, at("f").userInfo);
  EXPECT_EQ(&at("foods"), at("foods").aliasTarget);
}

TEST_F(LoadContent, anAliasWithUserInfo0StandsForTheUniverse) {
  peer_.file("f.rxf");
  symbol("everything", 1, dmap::typeAlias, 0);
  load("f.rxf");
  EXPECT_EQ(db_->universe.get(), at("everything").aliasTarget);
}

TEST_F(LoadContent, anAliasMayStandForALaterNumberedSetByItsName) {
  peer_.file("f.rxf");
  symbol("i", 1, dmap::typeSet);
  symbol("j", 1, dmap::typeSet);
  symbol("a", 1, dmap::typeAlias, 2);
  symbol("b", 1, dmap::typeAlias, 1);
  load("f.rxf");
  EXPECT_EQ(&at("j"), at("a").aliasTarget);
  EXPECT_EQ(&at("i"), at("b").aliasTarget);
}

TEST_F(LoadContent, anAliasBeforeItsSetIsAFailedOpening) {
  peer_.file("f.rxf");
  symbol("a", 1, dmap::typeAlias, 2);
  symbol("i", 1, dmap::typeSet);
  EXPECT_THROW(db_->InitFromRXF("f.rxf"), std::logic_error);
}

TEST_F(LoadContent, aScalarHasNoDomain) {
  peer_.file("f.rxf");
  symbol("total", 0, dmap::typeParameter);
  record({}, {4.5});
  load("f.rxf");
  EXPECT_TRUE(at("total").domainSymbols.empty());
  EXPECT_TRUE(at("total").domainNames.empty());
  ASSERT_TRUE(db_->ensureLoaded(at("total")));
  EXPECT_EQ((Records{{{}, {4.5}}}), recordsOf(at("total")));
}

TEST_F(LoadContent, namesFoldCaseAndKeepTheSpellingOfTheFile) {
  makeDiet();
  load();
  EXPECT_EQ("cost", db_->lookUp("COST")->name);
}

}  // namespace
}  // namespace ztb::exchangetest
