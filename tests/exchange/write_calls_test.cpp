// Which calls of the peer a write takes, in which order, and what then stands in the file.
#include "tests/exchange/exchange_fixture.h"

namespace ztb::exchangetest {
namespace {

class WriteCalls : public ExchangeTest {};

TEST_F(WriteCalls, ofAnEmptyDatabase) {
  EXPECT_EQ(1, write());
  EXPECT_EQ(lines(R"(
2 XCreate
2 rxfOpenWrite "out.rxf" ""
2 rxfStoreDomainSetsSet 0
2 rxfGetSpecialValues
2 rxfSetSpecialValues
2 rxfUELRegisterRawStart
2 rxfUELRegisterDone
2 rxfErrorCount
2 rxfClose
2 XFree)"),
            log());
  ASSERT_NE(nullptr, peer_.dump("out.rxf"));
  EXPECT_EQ(Lines(), dump());
  EXPECT_EQ(Source::none, db_->initFrom);
}

TEST_F(WriteCalls, ofADatabaseInMemory) {
  addLabels({"flour", "unused", "milk"});
  AbstractZTBSymbol& foods = add("foods", 1, dmap::typeSet, 0, "what there is");
  add("f", 1, dmap::typeAlias, 0);
  AbstractZTBSymbol& cost = addOver("cost", dmap::typeParameter, {&foods}, {}, 0, "of a food");
  const double text = db_->textNumber("a food");
  foods.insertRecord(Keys{3}.data(), &text);
  foods.insertRecord(Keys{1}.data(), &text);
  const double price = 0.25;
  cost.insertRecord(Keys{1}.data(), &price);
  EXPECT_EQ(1, write());
  EXPECT_EQ(lines(R"(
2 XCreate
2 rxfOpenWrite "out.rxf" ""
2 rxfStoreDomainSetsSet 0
2 rxfGetSpecialValues
2 rxfSetSpecialValues
2 rxfUELRegisterRawStart
2 rxfUELRegisterRaw "flour"
2 rxfUELRegisterRaw "unused"
2 rxfUELRegisterRaw "milk"
2 rxfUELRegisterDone
2 rxfDataWriteRawStart "foods" "what there is" 1 0 0
2 rxfDataWriteRaw [1] [1]
2 rxfDataWriteRaw [3] [1]
2 rxfDataWriteDone
2 rxfAddAlias "f" "foods"
2 rxfDataWriteRawStart "cost" "of a food" 1 1 0
2 rxfErrorCount
2 rxfSymbolSetDomain ("foods")
2 rxfDataWriteRaw [1] [0.25]
2 rxfDataWriteDone
2 rxfAddSetText "a food"
2 rxfErrorCount
2 rxfClose
2 XFree)"),
            log());
  EXPECT_EQ(lines(R"(
text "a food"
label "flour"
label "unused"
label "milk"
symbol 1 "foods" 1 0 0 "what there is"
record [1] [1]
record [3] [1]
symbol 2 "f" 1 4 1 ""
symbol 3 "cost" 1 1 0 "of a food"
domain ("foods")
record [1] [0.25])"),
            dump());
}

TEST_F(WriteCalls, tellThePeerTheInternalSpecialValuesAndLeaveItsFurtherEntries) {
  db_->specialValues = {1, 2, 3, 4, 5};
  db_->userSpecialValues = db_->specialValues;
  db_->specialValueMode = SpecialValueMode::all;
  EXPECT_EQ(1, write());
  for (int code = 0; code < 5; ++code) {
    EXPECT_TRUE(
        sameBits(internalSpecialValues[static_cast<std::size_t>(code)], peer_.tableEntry(code)))
        << code;
  }
  for (int entry = 5; entry < 16; ++entry) {
    EXPECT_EQ(1000.0 + entry, peer_.tableEntry(entry));
  }
}

TEST_F(WriteCalls, giveStoredSpecialValuesToThePeerAsTheyAre) {
  addLabels({"a"});
  const std::array<double, 5> values = internalSpecialValues;
  add("v", 1, dmap::typeVariable).insertRecord(Keys{1}.data(), values.data());
  EXPECT_EQ(1, write());
  EXPECT_EQ((Lines{"2 rxfDataWriteRaw [1] [1e+300 nan inf -inf 5e-324]"}),
            log("rxfDataWriteRaw ["));
  EXPECT_EQ("record [1] [8.25e+290 8.5e+290 8.75e+290 -8.75e+290 8.125e-290]", dump().back());
}

TEST_F(WriteCalls, giveAnEquationsSubtypeFrom53) {
  add("e", 1, dmap::typeEquation, 2);
  add("v", 1, dmap::typeVariable, 2);
  add("s", 1, dmap::typeSet, 1);
  EXPECT_EQ(1, write());
  EXPECT_EQ((Lines{"symbol 1 \"e\" 1 3 55 \"\"", "symbol 2 \"v\" 1 2 2 \"\"",
                   "symbol 3 \"s\" 1 0 1 \"\""}),
            dump());
}

TEST_F(WriteCalls, nameTheUniverseStarForItsAlias) {
  add("all", 1, dmap::typeAlias, -1);
  ASSERT_EQ(db_->universe.get(), at("all").aliasTarget);
  EXPECT_EQ(1, write());
  EXPECT_EQ((Lines{"2 rxfAddAlias \"all\" \"*\""}), log("rxfAddAlias"));
}

TEST_F(WriteCalls, ofAScalarHaveNeitherKeysNorADomain) {
  const double value = 4.5;
  add("total", 0, dmap::typeParameter).insertRecord(nullptr, &value);
  EXPECT_EQ(1, write());
  EXPECT_EQ(lines(R"(
2 rxfDataWriteRawStart "total" "" 0 1 0
2 rxfDataWriteRaw [] [4.5]
2 rxfDataWriteDone
2 rxfErrorCount
2 rxfClose
2 XFree)"),
            [&] {
              const Lines all = log();
              return Lines(all.end() - 6, all.end());
            }());
}

TEST_F(WriteCalls, addTextsBehindAllRecordsInPoolOrder) {
  for (const char* text : {"one", "two", "three"}) {
    db_->textNumber(text);
  }
  add("s", 1, dmap::typeSet);
  EXPECT_EQ(1, write());
  const Lines all = log();
  const auto first = std::ranges::find(all, "2 rxfAddSetText \"one\"");
  ASSERT_NE(all.end(), first);
  EXPECT_EQ("2 rxfDataWriteDone", *(first - 1));
  EXPECT_EQ(
      (Lines{"2 rxfAddSetText \"one\"", "2 rxfAddSetText \"two\"", "2 rxfAddSetText \"three\""}),
      Lines(first, first + 3));
}

TEST_F(WriteCalls, lookAtNoResultOfTexts) {
  db_->textNumber("one");
  db_->textNumber("two");
  peer_.fail("rxfAddSetText", 0, 0);
  EXPECT_EQ(1, write());
  EXPECT_EQ((Lines{"text \"two\""}), dump());
}

TEST_F(WriteCalls, canBeRepeated) {
  addLabels({"a"});
  add("p", 1, dmap::typeParameter);
  EXPECT_EQ(1, write("one.rxf"));
  EXPECT_EQ(1, write("two.rxf"));
  EXPECT_EQ(dump("one.rxf"), dump("two.rxf"));
  EXPECT_EQ(1, peer_.objects());
}

TEST_F(WriteCalls, leaveTheDatabaseReadableBack) {
  addLabels({"a", "b"});
  AbstractZTBSymbol& i = add("i", 1, dmap::typeSet);
  AbstractZTBSymbol& p = addOver("p", dmap::typeParameter, {&i});
  const double zero = 0;
  const double value = -2.5;
  i.insertRecord(Keys{2}.data(), &zero);
  p.insertRecord(Keys{2}.data(), &value);
  ASSERT_EQ(1, write());
  ZTB other(scripted::Client::directory().c_str());
  ASSERT_EQ(1, other.InitFromRXF("out.rxf"));
  AbstractZTBSymbol& q = *other.symbols.atName("p");
  ASSERT_TRUE(other.ensureLoaded(q));
  EXPECT_EQ((Records{{{2}, {-2.5}}}), recordsOf(q));
  EXPECT_EQ(other.symbols.atName("i"), q.domainSymbols.at(0));
}

}  // namespace
}  // namespace ztb::exchangetest
