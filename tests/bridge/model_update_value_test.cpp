// Which values an update takes, what it counts, and how it fails.
#include <bit>
#include <cmath>
#include <cstdint>

#include "tests/bridge/bridge_fixture.h"

namespace ztbtest {
namespace {

class ModelUpdateValue : public BridgeTest {
 protected:
  ModelUpdateValue() {
    prepare();
    buy = db().find("buy");
  }

  // Updates the model's variable with one value for flour.
  int updateWith(double value, int action = 4) {
    void* const values = data("values", {{"flour", value}});
    log();
    return update(buy, action, values, 2);
  }

  void* buy;
};

TEST_F(ModelUpdateValue, epsilonBecomesZero) {
  EXPECT_SUCCESS(db(), updateWith(std::bit_cast<double>(std::uint64_t{1})));
  EXPECT_EQ((Lines{"model pbiSetVarLOne 0 0"}), log("pbi"));
}

TEST_F(ModelUpdateValue, theNextNumberAboveEpsilonStays) {
  EXPECT_SUCCESS(db(), updateWith(std::bit_cast<double>(std::uint64_t{2})));
  EXPECT_EQ((Lines{"model pbiSetVarLOne 0 1e-323"}), log("pbi"));
}

TEST_F(ModelUpdateValue, plusInfinityTakesTheUpperBoundAwayAndLeavesTheLevel) {
  EXPECT_SUCCESS(db(), updateWith(infinity, 1));
  EXPECT_EQ((Lines{"model pbiSetAltVarUpperOne 0 inf", "model pbiGetVarLOne 0"}), log("pbi"));
}

TEST_F(ModelUpdateValue, minusInfinityTakesTheLowerBoundAwayAndLeavesTheLevel) {
  EXPECT_SUCCESS(db(), updateWith(-infinity, 2));
  EXPECT_EQ((Lines{"model pbiSetAltVarLowerOne 0 -inf", "model pbiGetVarLOne 0"}), log("pbi"));
}

TEST_F(ModelUpdateValue, largeNegativeNumbersPass) {
  EXPECT_SUCCESS(db(), updateWith(-1e305));
  EXPECT_EQ((Lines{"model pbiSetVarLOne 0 -1e+305"}), log("pbi"));
}

TEST_F(ModelUpdateValue, theNumberBelow1e300Passes) {
  EXPECT_SUCCESS(db(), updateWith(std::nextafter(1e300, 0)));
  EXPECT_EQ(1U, log("pbiSetVarLOne").size());
}

TEST_F(ModelUpdateValue, from1e300OnValuesAreBad) {
  EXPECT_FAILURE(db(), "Bad value 1e+300", updateWith(1e300));
  renew();
  prepare();
  buy = db().find("buy");
  EXPECT_FAILURE(db(), "Bad value 1.5e+305", updateWith(1.5e305));
}

TEST_F(ModelUpdateValue, aNaNIsBad) {
  EXPECT_FAILURE(db(), "Bad value nan", updateWith(std::nan("")));
}

TEST_F(ModelUpdateValue, aBadOneLeavesTheWalkOpenAndWhatWasDone) {
  void* const values = data("values", {{"flour", 2}, {"milk", 1e300}});
  log();
  EXPECT_FAILURE(db(), "Bad value 1e+300", update(buy, 0, values, 1));
  EXPECT_EQ(lines(R"(
dict nmtSymIndex "buy"
dict nmtSymType 3
dict nmtSymDim 3
dict nmtFindFirstRowCol 3 [0]
dict nmtColUels 0
model pbiSetVarLOne 0 2
model pbiSetAltVarLowerOne 0 2
model pbiSetAltVarUpperOne 0 2
dict nmtFindNextRowCol search2
dict nmtColUels 1)"),
            log());
  EXPECT_EQ(1, model_.alive("search"));
  EXPECT_EQ(-1, noMatch_);
}

TEST_F(ModelUpdateValue, aBadOneIsNamedBeforeABadAction) {
  EXPECT_FAILURE(db(), "Bad value nan", updateWith(std::nan(""), 6));
}

TEST_F(ModelUpdateValue, aLevelFollowsTheBoundThatItWouldBreak) {
  const struct {
    int action;
    double value;
    double level;  // 5 before
  } cases[] = {{1, 4, 4}, {1, 5, 5}, {1, 6, 5}, {2, 6, 6},
               {2, 5, 5}, {2, 4, 5}, {3, 4, 4}, {3, 6, 6}};
  for (const auto& one : cases) {
    model_.reset();
    makeDiet();
    renew();
    prepare();
    buy = db().find("buy");
    EXPECT_EQ(1, updateWith(one.value, one.action));
    EXPECT_EQ((Lines{}), log("pbiAltBoundsSet"));
    const std::string wanted = "column 0 " + std::to_string(static_cast<int>(one.level)) + " ";
    EXPECT_EQ(wanted, state("column 0").substr(0, wanted.size())) << one.action << ' ' << one.value;
  }
}

TEST_F(ModelUpdateValue, aLevelThatAlreadyIsTheBoundIsNotWritten) {
  EXPECT_EQ(1, updateWith(5, 3));
  EXPECT_EQ(Lines{}, log("pbiSetVarLOne"));
}

TEST_F(ModelUpdateValue, recordsThatMeetNoColumnAreCounted) {
  void* const values = data("values", {{"flour", 1}, {"iron", 2}, {"bread", 3}});
  EXPECT_SUCCESS(db(), update(buy, 4, values, 2));
  EXPECT_EQ(2, noMatch_);
  void* const one = data("one", {{"bread", 3}});
  log();
  EXPECT_SUCCESS(db(), update(buy, 4, one, 2));
  EXPECT_EQ(1, noMatch_);
  EXPECT_EQ(Lines{}, log("pbi"));
}

TEST_F(ModelUpdateValue, aPeerThatKnowsTheSymbolNoMoreCountsAllRecords) {
  void* const values = data("values", {{"flour", 1}});
  for (const double index : {0.0, -3.0}) {
    model_.answer("nmtSymIndex", 0, index);
    EXPECT_SUCCESS(db(), update(buy, 4, values, 2));
    EXPECT_EQ(1, noMatch_);
  }
}

TEST_F(ModelUpdateValue, aWalkThatDoesNotOpenIsEmptyAndClosed) {
  void* const values = data("values", {{"flour", 1}});
  log();
  model_.answer("nmtFindFirstRowCol", 0, 0);
  // No column, no bad action.
  EXPECT_SUCCESS(db(), update(buy, 99, values, 0));
  EXPECT_EQ(1, noMatch_);
  EXPECT_EQ((Lines{"dict nmtFindFirstRowCol 3 [0]", "dict nmtFindClose null"}), log("nmtFind"));
}

TEST_F(ModelUpdateValue, aBadActionIsNamedAtTheFirstColumnThatIsNotSkipped) {
  void* const values = data("values", {{"milk", 1}});
  for (const int action : {6, -1, 1000}) {
    const std::string text = "Invalid actionType, saw " + std::to_string(action);
    log();
    EXPECT_FAILURE(db(), text, update(buy, action, values, 0));
    EXPECT_EQ(1U, log("nmtColUels").size());
    EXPECT_EQ(-1, noMatch_);
    EXPECT_FAILURE(db(), text, update(buy, action, values, 1));
    log();
    EXPECT_FAILURE(db(), text, update(buy, action, values, 2));
    EXPECT_EQ(2U, log("nmtColUels").size());
  }
  EXPECT_EQ(9, model_.alive("search")) << "these walks stay open";
}

TEST_F(ModelUpdateValue, aBadActionGoesUnnoticedWhenAllColumnsAreSkipped) {
  void* const values = data("values", {{"iron", 1}});
  EXPECT_SUCCESS(db(), update(buy, 6, values, 2));
  EXPECT_EQ(1, noMatch_);
}

TEST_F(ModelUpdateValue, refusesSymbolsInThisOrder) {
  void* const set = db().addSet("s");
  void* const alias = db().addAlias("t", set);
  void* const values = data("values", {{"flour", 1}});
  log();
  EXPECT_FAILURE(db(), "No VELT symbol handle specified", update(nullptr, 9, nullptr, 0));
  EXPECT_FAILURE(db(), "No Data symbol handle specified for VELT symbol s",
                 update(set, 9, nullptr, 0));
  EXPECT_FAILURE(db(), "VELT symbol s must be parameter, variable, or equation",
                 update(set, 9, set, 0));
  EXPECT_FAILURE(db(), "VELT symbol t must be parameter, variable, or equation",
                 update(db().findWithAlias("t"), 9, set, 0));
  EXPECT_FAILURE(db(), "Data symbol s must be parameter", update(buy, 9, set, 0));
  EXPECT_FAILURE(db(), "Data symbol buy must be parameter", update(buy, 9, buy, 0));
  EXPECT_EQ(Lines(), log());
  EXPECT_EQ(-1, noMatch_);
  EXPECT_NE(nullptr, alias);
  // A parameter may be both.
  EXPECT_SUCCESS(db(), update(values, 4, values, 2));
}

TEST_F(ModelUpdateValue, withoutAModelIsRefused) {
  renew();
  void* const values = data("values", {{"flour", 1}});
  EXPECT_FAILURE(db(), "No model registered, call ztbRegisterPBI or ztbInitFromDict first",
                 update(values, 0, values, 0));
}

TEST_F(ModelUpdateValue, pendingRecordsOfADataSymbolDoNotCount) {
  rxf_.file("data.rxf");
  rxf_.addLabel("flour");
  rxf_.addSymbol("values", 1, 1, 0, "");
  const int keys[] = {1};
  const double value = 2;
  rxf_.addRecord(keys, &value);
  renew();
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db(), "data.rxf"));
  ASSERT_EQ(1, lib().c__ztbregisterpbi(db(), model_.handle()));
  void* const values = db().find("values");
  EXPECT_SUCCESS(db(), update(values, 4, values, 0));
  EXPECT_EQ(0, noMatch_);
  EXPECT_EQ(1, db().recordCount(values)) << "they can still be read";
  EXPECT_SUCCESS(db(), update(values, 4, values, 0));
  EXPECT_EQ(1, noMatch_);
}

TEST_F(ModelUpdateValue, aDataSymbolThatCouldNotBeReadFailsTheUpdate) {
  rxf_.file("data.rxf");
  rxf_.addLabel("flour");
  rxf_.addSymbol("values", 1, 1, 0, "");
  renew();
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db(), "data.rxf"));
  ASSERT_EQ(1, lib().c__ztbregisterpbi(db(), model_.handle()));
  rxf_.fail("rxfDataReadRawStart", 0, -1);
  rxf_.raise("rxfDataReadRawStart", 0, 8);
  void* const values = db().find("values");
  const std::string text = "Symbol values could not be read from data.rxf: Scripted error 8";
  void* record = nullptr;
  EXPECT_FAILURE(db(), text, lib().c__ztbfindfirstrecord(db(), values, &record));
  log();
  EXPECT_FAILURE(db(), text, update(values, 4, values, 0));
  EXPECT_EQ(Lines(), log()) << "nothing of the model changes";
}

TEST_F(ModelUpdateValue, aSymbolOfTooManyPositionsIsRefused) {
  void* const values = data("values", {{"flour", 1}});
  for (const double dim : {21.0, -1.0}) {
    model_.answer("nmtSymDim", 0, dim);
    EXPECT_UNEXPECTED(db(), "ztbUpdateModelSymbol", update(buy, 4, values, 2));
  }
  EXPECT_EQ(0, model_.alive("search"));
}

}  // namespace
}  // namespace ztbtest
