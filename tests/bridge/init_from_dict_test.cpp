// Labels and symbols of a database out of a model's dictionary.
#include "tests/bridge/bridge_fixture.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

class InitFromDict : public BridgeTest {
 protected:
  int initFromDict() { return lib().c__ztbinitfromdict(db(), model_.handle()); }

  // An empty model.
  void emptyModel() { model_.reset(); }

  Labels labels() {
    Labels result;
    for (int number = 1; number <= db().info(ZTB_INFO_UEL_COUNT); ++number) {
      TextBuffer text;
      lib().c__ztbgetuelbyindex(db(), number, text);
      result.push_back(text.str());
    }
    return result;
  }

  // A line for each symbol: name, dimension, type. Does not touch records.
  Lines symbols() {
    Lines result;
    for (int number = 0; number < db().info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS); ++number) {
      void* symbol = nullptr;
      lib().c__ztbgetsymbolbynumber(db(), number, &symbol);
      result.push_back(db().symbolText(symbol, ZTB_SYMBOL_INFO_NAME) + ' ' +
                       std::to_string(db().symbolInfo(symbol, ZTB_SYMBOL_INFO_DIMENSION)) + ' ' +
                       std::to_string(db().symbolInfo(symbol, ZTB_SYMBOL_INFO_TYPE)));
    }
    return result;
  }
};

TEST_F(InitFromDict, asksForLabelsThenSymbols) {
  EXPECT_SUCCESS(db(), initFromDict());
  EXPECT_EQ(lines(R"(
model pbiDict
model pbiPinfSet inf
model pbiMinfSet -inf
dict nmtNUels
dict nmtUelLabel 1 64
dict nmtUelLabel 2 64
dict nmtUelLabel 3 64
dict nmtUelLabel 4 64
dict nmtNLSyms
dict nmtSymName 1 64
dict nmtSymType 1
dict nmtSymText 1 256
dict nmtSymDim 1
dict nmtSymUserInfo 1
dict nmtSymName 2 64
dict nmtSymType 2
dict nmtSymText 2 256
dict nmtSymDim 2
dict nmtSymUserInfo 2
dict nmtSymName 3 64
dict nmtSymType 3
dict nmtSymText 3 256
dict nmtSymDim 3
dict nmtSymUserInfo 3
dict nmtSymName 4 64
dict nmtSymType 4
dict nmtSymText 4 256
dict nmtSymDim 4
dict nmtSymUserInfo 4
dict nmtSymName 5 64
dict nmtSymType 5
dict nmtSymText 5 256
dict nmtSymDim 5
dict nmtSymUserInfo 5)"),
            log());
}

TEST_F(InitFromDict, numbersLabelsAndSymbolsAsTheDictionaryDoes) {
  ASSERT_EQ(1, initFromDict());
  EXPECT_EQ((Labels{"flour", "milk", "iron", "protein"}), labels());
  EXPECT_EQ((Lines{"cost 0 3", "need 1 3", "buy 1 2", "price_var 1 2", "total 0 2"}), symbols());
  EXPECT_EQ(0, db().info(ZTB_INFO_FILE_BACKED));
}

TEST_F(InitFromDict, takesTextUserInformationAndTheUniverseAsDomain) {
  prepare();
  void* const buy = db().find("buy");
  EXPECT_EQ("of each food", db().symbolText(buy, ZTB_SYMBOL_INFO_TEXT));
  EXPECT_EQ(3, db().symbolInfo(buy, ZTB_SYMBOL_INFO_USER_INFO));
  EXPECT_EQ(2, db().symbolInfo(buy, ZTB_SYMBOL_INFO_NUMBER));
  EXPECT_EQ(1, db().symbolInfo(db().find("need"), ZTB_SYMBOL_INFO_USER_INFO));
  void* domain = nullptr;
  TextBuffers names;
  EXPECT_EQ(1, lib().c__ztbgetdomain(db(), buy, 1, &domain, names));
  EXPECT_EQ(db().universe(), domain);
}

TEST_F(InitFromDict, ofAModelWithoutSymbolsGivesItsLabelsAlone) {
  emptyModel();
  const std::string longest(63, 'a');
  model_.addLabel(longest.c_str());
  model_.addLabel("b");
  EXPECT_SUCCESS(db(), initFromDict());
  EXPECT_EQ((Labels{longest, "b"}), labels());
  EXPECT_EQ(Lines(), symbols());
}

TEST_F(InitFromDict, putsNewSymbolsOnTheStoreOfTheDatabase) {
  for (const int store : {0, 1, 2}) {
    renew();
    lib().c__ztbselectrecordstorage(db(), nullptr, store);
    prepare();
    EXPECT_EQ(store, db().symbolInfo(db().find("buy"), ZTB_SYMBOL_INFO_STORAGE));
  }
}

TEST_F(InitFromDict, refusesADatabaseWithLabels) {
  db().uel("flour");
  EXPECT_FAILURE(db(), "Uels present. Cannot load Uels from dictionary.", initFromDict());
  EXPECT_EQ(Lines(), log());
}

TEST_F(InitFromDict, refusesADatabaseThatReadsAFile) {
  rxf_.file("empty.rxf");
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db(), "empty.rxf"));
  EXPECT_FAILURE(db(), "Database incorrectly initialized.", initFromDict());
  EXPECT_EQ(Lines(), log());
  ASSERT_EQ(1, lib().c__ztbcloserxf(db(), 0));
  EXPECT_SUCCESS(db(), initFromDict());
}

TEST_F(InitFromDict, refusesADatabaseThatReadsAModel) {
  emptyModel();
  prepare();
  EXPECT_FAILURE(db(), "Database incorrectly initialized.", initFromDict());
  EXPECT_EQ(Lines(), log());
}

TEST_F(InitFromDict, namesLabelsBeforeTheState) {
  prepare();
  EXPECT_FAILURE(db(), "Uels present. Cannot load Uels from dictionary.", initFromDict());
}

TEST_F(InitFromDict, canBeRepeatedWhileThereAreNoLabels) {
  emptyModel();
  symbol("x", 0, 5);
  EXPECT_EQ(1, initFromDict());
  EXPECT_SUCCESS(db(), initFromDict());
  EXPECT_EQ((Lines{"x 0 2"}), symbols());
}

TEST_F(InitFromDict, failsWithTheTextOfARefusedRegistrationAndCanBeTriedAgain) {
  model_.answer("pbiDict", 0, 0);
  EXPECT_FAILURE(db(), "No dictionary available", initFromDict());
  EXPECT_SUCCESS(db(), initFromDict());
}

TEST_F(InitFromDict, failsWithTheTextOfARefusedLabelAndKeepsThoseBefore) {
  emptyModel();
  for (const char* label : {"a", "'\"", "b"}) {
    model_.addLabel(label);
  }
  symbol("x", 0, 5);
  EXPECT_FAILURE(db(), "Label with single and double quote not allowed >'\"<", initFromDict());
  EXPECT_EQ((Labels{"a"}), labels());
  EXPECT_EQ(Lines(), symbols());
}

TEST_F(InitFromDict, looksOnlyVariablesAndEquationsUpInTheModel) {
  void* const set = db().addSet("s");
  db().addAlias("t", set);
  db().addParameter("p");
  db().addVariable("buy");
  db().addEquation("need");
  EXPECT_SUCCESS(db(), initFromDict());
  EXPECT_EQ((Lines{"dict nmtSymIndex \"buy\"", "dict nmtSymIndex \"need\""}), log("nmtSymIndex"));
  EXPECT_EQ(8, db().info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
}

TEST_F(InitFromDict, refusesAVariableAndAnEquationThatTheModelLacks) {
  db().addParameter("first");
  db().addVariable("elsewhere");
  db().addEquation("never_asked_for");
  EXPECT_FAILURE(db(), "Variable/Equation symbol elsewhere does not exist in model",
                 initFromDict());
  EXPECT_EQ((Lines{"dict nmtSymIndex \"elsewhere\""}), log("nmtSymIndex"));
  EXPECT_EQ(4, db().info(ZTB_INFO_UEL_COUNT));
  EXPECT_EQ(3U, symbols().size());
  renew();
  db().addEquation("odd");
  model_.answer("nmtSymIndex", 0, 0);
  EXPECT_FAILURE(db(), "Variable/Equation symbol odd does not exist in model", initFromDict());
}

TEST_F(InitFromDict, keepsAMatchingVariableWithItsRecords) {
  db().put(db().addVariable("TOTAL", 0), {}, 3.0);
  EXPECT_EQ(0, initFromDict()) << "the dictionary knows names by their case";
  renew();
  db().put(db().addVariable("total", 0), {}, 3.0);
  EXPECT_SUCCESS(db(), initFromDict());
  EXPECT_EQ((Lines{"total 0 2", "cost 0 3", "need 1 3", "buy 1 2", "price_var 1 2"}), symbols());
  EXPECT_EQ((std::vector<Row>{{{}, 3.0}}), db().rows(db().find("total")));
}

TEST_F(InitFromDict, refusesAnotherDimensionBeforeAnotherType) {
  db().addEquation("buy", 2);
  EXPECT_FAILURE(db(), "Mismatch in dimension for symbol buy", initFromDict());
  EXPECT_EQ((Lines{"dict nmtSymDim 1", "dict nmtSymDim 2", "dict nmtSymDim 3"}), log("nmtSymDim"));
  EXPECT_EQ((Lines{"buy 2 3", "cost 0 3", "need 1 3"}), symbols());
}

TEST_F(InitFromDict, refusesAnEquationThatIsAVariableInTheModel) {
  db().addEquation("buy");
  EXPECT_FAILURE(db(), "Mismatch in type for symbol buy", initFromDict());
}

TEST_F(InitFromDict, refusesASetUnderTheNameOfAVariable) {
  db().addSet("buy");
  EXPECT_FAILURE(db(), "Mismatch in type for symbol buy", initFromDict());
}

TEST_F(InitFromDict, refusesASymbolThatIsNeitherVariableNorEquationAndKeepsThoseBefore) {
  for (const int type : {4, 7}) {
    emptyModel();
    renew();
    symbol("x", 0, 5);
    symbol("odd", 0, type);
    symbol("y", 0, 6);
    EXPECT_FAILURE(db(), "PBI symbol type not variable or equation of symbol odd", initFromDict());
    EXPECT_EQ((Lines{"x 0 2"}), symbols());
  }
}

TEST_F(InitFromDict, failsForASymbolWithoutAStore) {
  void* symbol = db().addVariable("buy");
  lib().c__ztbselectrecordstorage(db(), &symbol, 9);
  EXPECT_UNEXPECTED(db(), "ztbInitFromDict", initFromDict());
  renew();
  lib().c__ztbselectrecordstorage(db(), nullptr, 9);
  EXPECT_UNEXPECTED(db(), "ztbInitFromDict", initFromDict());
}

TEST_F(InitFromDict, aSymbolReadBeforePreparationFailsOnceAndThenIsEmpty) {
  ASSERT_EQ(1, initFromDict());
  void* const buy = db().find("buy");
  log();
  int count = -1;
  EXPECT_FAILURE(
      db(), "Symbol buy not initialized from RXF or PBI: 3",
      lib().c__ztbsymbolinfo(db(), buy, ZTB_SYMBOL_INFO_RECORD_COUNT, &count, nullptr, nullptr));
  EXPECT_EQ(0, db().recordCount(buy));
  ASSERT_EQ(1, lib().c__ztbinitupdate(db(), nullptr));
  EXPECT_EQ(0, db().recordCount(buy)) << "it counts as loaded";
  EXPECT_EQ(2, db().recordCount(db().find("need")));
}

}  // namespace
}  // namespace ztbtest
