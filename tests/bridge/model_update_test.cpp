// Which calls of the model an update takes: the walk, and every action and update type for a
// variable.
#include "tests/bridge/bridge_fixture.h"

namespace ztbtest {
namespace {

struct Case {
  const char* symbol;
  int action;
  int updateType;
  const char* calls;  // of the model, without its name
};

class ModelUpdate : public BridgeTest {
 protected:
  ModelUpdate() {
    prepare();
    data("price", {});
  }

  // Each case on a fresh model; the data symbol has one record with the value 2.
  void expectCalls(const char* label, const std::vector<Case>& cases) {
    for (const Case& one : cases) {
      SCOPED_TRACE(std::string(one.symbol) + ", action " + std::to_string(one.action) +
                   ", update type " + std::to_string(one.updateType));
      model_.reset();
      makeDiet();
      renew();
      prepare();
      data("price", {});
      void* const values = data("values", {{label, 2}});
      log();
      EXPECT_SUCCESS(db(), update(db().find(one.symbol), one.action, values, one.updateType));
      EXPECT_EQ(0, noMatch_);
      Lines wanted;
      for (const std::string& call : lines(one.calls)) {
        wanted.push_back("model " + call);
      }
      EXPECT_EQ(wanted, log("pbi"));
      EXPECT_EQ(0, model_.alive("search"));
    }
  }
};

TEST_F(ModelUpdate, walksTheSymbolOnce) {
  void* const values = data("values", {{"flour", 2}});
  EXPECT_SUCCESS(db(), update(db().find("buy"), 4, values, 2));
  EXPECT_EQ(lines(R"(
dict nmtSymIndex "buy"
dict nmtSymType 3
dict nmtSymDim 3
dict nmtFindFirstRowCol 3 [0]
dict nmtColUels 0
model pbiSetVarLOne 0 2
dict nmtFindNextRowCol search2
dict nmtColUels 1
dict nmtFindNextRowCol search2
dict nmtFindClose search2)"),
            log());
}

TEST_F(ModelUpdate, asksForTheKeysOfRowsOfAnEquation) {
  void* const values = data("values", {{"iron", 2}});
  EXPECT_SUCCESS(db(), update(db().find("need"), 4, values, 2));
  EXPECT_EQ(lines(R"(
dict nmtSymIndex "need"
dict nmtSymType 2
dict nmtSymDim 2
dict nmtFindFirstRowCol 2 [0]
dict nmtRowUels 1
model pbiSetEquLOne 1 2
dict nmtFindNextRowCol search2
dict nmtRowUels 2
dict nmtFindNextRowCol search2
dict nmtFindClose search2)"),
            log());
}

TEST_F(ModelUpdate, looksAParameterUpAsAVariable) {
  void* const values = data("values", {{"milk", 2}});
  EXPECT_SUCCESS(db(), update(db().find("price"), 0, values, 2));
  EXPECT_EQ(lines(R"(
dict nmtSymIndex "price_var"
dict nmtSymType 4
dict nmtSymDim 4
dict nmtFindFirstRowCol 4 [0]
dict nmtColUels 2
dict nmtFindNextRowCol search2
dict nmtColUels 3
model pbiSetVarLOne 3 2
model pbiSetAltVarLowerOne 3 2
model pbiSetAltVarUpperOne 3 2
dict nmtFindNextRowCol search2
dict nmtFindClose search2)"),
            log());
}

TEST_F(ModelUpdate, ofAScalarHasAnEmptyKey) {
  void* const values = db().add("values", 0, ZTB_PARAMETER);
  db().put(values, {}, 2.0);
  log();
  EXPECT_SUCCESS(db(), update(db().find("total"), 4, values, 1));
  EXPECT_EQ(lines(R"(
dict nmtSymIndex "total"
dict nmtSymType 5
dict nmtSymDim 5
dict nmtFindFirstRowCol 5 []
dict nmtColUels 4
model pbiSetVarLOne 4 2
dict nmtFindNextRowCol search2
dict nmtFindClose search2)"),
            log());
  EXPECT_EQ(0, noMatch_);
}

// Column 0 has the record, column 1 has none.
TEST_F(ModelUpdate, actsOnColumnsWithoutARecordAsWithZero) {
  expectCalls("flour", {{"buy", 0, 0, R"(
pbiSetVarLOne 0 2
pbiSetAltVarLowerOne 0 2
pbiSetAltVarUpperOne 0 2
pbiSetVarLOne 1 0
pbiSetAltVarLowerOne 1 0
pbiSetAltVarUpperOne 1 0)"},
                        {"buy", 1, 0, R"(
pbiSetAltVarUpperOne 0 2
pbiGetVarLOne 0
pbiSetVarLOne 0 2
pbiSetAltVarUpperOne 1 0
pbiGetVarLOne 1
pbiSetVarLOne 1 0)"},
                        {"buy", 2, 0, R"(
pbiSetAltVarLowerOne 0 2
pbiGetVarLOne 0
pbiSetAltVarLowerOne 1 0
pbiGetVarLOne 1)"},
                        {"buy", 3, 0, R"(
pbiSetAltVarUpperOne 0 2
pbiGetVarLOne 0
pbiSetVarLOne 0 2
pbiSetAltVarLowerOne 0 2
pbiGetVarLOne 0
pbiSetAltVarUpperOne 1 0
pbiGetVarLOne 1
pbiSetVarLOne 1 0
pbiSetAltVarLowerOne 1 0
pbiGetVarLOne 1)"},
                        {"buy", 4, 0, R"(
pbiSetVarLOne 0 2
pbiSetVarLOne 1 0)"},
                        {"buy", 5, 0, R"(
pbiGetVarLOne 0
pbiGetVarStatOne 0
pbiGetVarCStatOne 0
pbiSetSolutionVarRec 0 5 2 1 2
pbiGetVarLOne 1
pbiGetVarStatOne 1
pbiGetVarCStatOne 1
pbiSetSolutionVarRec 1 6 0 3 4)"}});
}

constexpr const char* fixToBase = R"(
pbiSetVarLOne 0 2
pbiSetAltVarLowerOne 0 2
pbiSetAltVarUpperOne 0 2
pbiSetVarLOne 1 6
pbiSetAltVarLowerOne 1 6
pbiSetAltVarUpperOne 1 6)";

TEST_F(ModelUpdate, takesColumnsWithoutARecordBackToTheirBase) {
  expectCalls("flour", {{"buy", 0, 1, fixToBase},
                        {"buy", 1, 1, R"(
pbiSetAltVarUpperOne 0 2
pbiGetVarLOne 0
pbiSetVarLOne 0 2
pbiAltBoundsSet 0
pbiGetVarUpperOne 1
pbiAltBoundsSet 1
pbiSetAltVarUpperOne 1 100
pbiGetVarLOne 1)"},
                        {"buy", 2, 1, R"(
pbiSetAltVarLowerOne 0 2
pbiGetVarLOne 0
pbiAltBoundsSet 0
pbiGetVarLowerOne 1
pbiAltBoundsSet 1
pbiSetAltVarLowerOne 1 1
pbiGetVarLOne 1)"},
                        {"buy", 3, 1, R"(
pbiSetAltVarUpperOne 0 2
pbiGetVarLOne 0
pbiSetVarLOne 0 2
pbiSetAltVarLowerOne 0 2
pbiGetVarLOne 0
pbiAltBoundsSet 0
pbiGetVarUpperOne 1
pbiAltBoundsSet 1
pbiSetAltVarUpperOne 1 100
pbiGetVarLOne 1
pbiAltBoundsSet 0
pbiGetVarLowerOne 1
pbiAltBoundsSet 1
pbiSetAltVarLowerOne 1 1
pbiGetVarLOne 1)"},
                        {"buy", 4, 1, R"(
pbiSetVarLOne 0 2
pbiSetVarLOne 1 6)"},
                        {"buy", 5, 1, R"(
pbiGetVarLOne 0
pbiGetVarStatOne 0
pbiGetVarCStatOne 0
pbiSetSolutionVarRec 0 5 2 1 2
pbiGetVarLOne 1
pbiGetVarStatOne 1
pbiGetVarCStatOne 1
pbiSetSolutionVarRec 1 6 0.6 3 4)"}});
}

TEST_F(ModelUpdate, takesUnknownUpdateTypesAsBase) {
  expectCalls("flour",
              {{"buy", 0, 7, fixToBase}, {"buy", 0, 3, fixToBase}, {"buy", 0, -1, fixToBase}});
}

TEST_F(ModelUpdate, leavesColumnsWithoutARecordWhenAccumulating) {
  expectCalls("flour", {{"buy", 0, 2, R"(
pbiSetVarLOne 0 2
pbiSetAltVarLowerOne 0 2
pbiSetAltVarUpperOne 0 2)"},
                        {"buy", 1, 2, R"(
pbiSetAltVarUpperOne 0 2
pbiGetVarLOne 0
pbiSetVarLOne 0 2)"},
                        {"buy", 2, 2, R"(
pbiSetAltVarLowerOne 0 2
pbiGetVarLOne 0)"},
                        {"buy", 3, 2, R"(
pbiSetAltVarUpperOne 0 2
pbiGetVarLOne 0
pbiSetVarLOne 0 2
pbiSetAltVarLowerOne 0 2
pbiGetVarLOne 0)"},
                        {"buy", 4, 2, "pbiSetVarLOne 0 2"},
                        {"buy", 5, 2, R"(
pbiGetVarLOne 0
pbiGetVarStatOne 0
pbiGetVarCStatOne 0
pbiSetSolutionVarRec 0 5 2 1 2)"}});
}

TEST_F(ModelUpdate, seesWhatAnEarlierOneWrote) {
  void* const buy = db().find("buy");
  EXPECT_EQ(1, update(buy, 0, data("first", {{"flour", 2}}), 1));
  EXPECT_EQ(1, update(buy, 0, data("second", {{"milk", 3}}), 2));
  EXPECT_EQ("column 0 2 0.5 0 inf 2 2 1 2", state("column 0"));
  EXPECT_EQ("column 1 3 0.6 1 100 3 3 3 4", state("column 1"));
}

TEST_F(ModelUpdate, switchesAlternativeBoundsOnForTheNextSolveByTheLastSymbol) {
  const struct {
    std::vector<const char*> symbols;
    bool on;
  } cases[] = {{{}, false},       {{"buy"}, true},          {{"price"}, true},
               {{"need"}, false}, {{"buy", "need"}, false}, {{"need", "buy"}, true}};
  for (const auto& one : cases) {
    renew();
    prepare();
    void* const none = data("none", {});
    data("price", {});
    for (const char* symbol : one.symbols) {
      EXPECT_EQ(1, update(db().find(symbol), 4, none, 2));
    }
    log();
    EXPECT_EQ(1, solve("dual"));
    EXPECT_EQ(one.on ? Lines{"model pbiAltBoundsSet 1"} : Lines{}, log("pbiAltBoundsSet"));
  }
}

TEST_F(ModelUpdate, ofASymbolThatTheModelLacksStillDecidesOnTheBounds) {
  void* const values = data("values", {{"flour", 1}, {"milk", 2}});
  void* const elsewhere = db().addParameter("elsewhere");
  EXPECT_SUCCESS(db(), update(elsewhere, 99, values, 0));
  EXPECT_EQ(2, noMatch_);
  EXPECT_EQ((Lines{"dict nmtSymIndex \"elsewhere_var\""}), log());
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ((Lines{"model pbiAltBoundsSet 1"}), log("pbiAltBoundsSet"));
}

}  // namespace
}  // namespace ztbtest
