// Records of a model's symbols, which are read when they are first touched.
#include <stdexcept>

#include "tests/bridge/bridge_fixture.h"

namespace ztbtest {
namespace {

class Solution : public BridgeTest {
 protected:
  Solution() { prepare(); }
};

TEST_F(Solution, ofAVariableIsReadColumnByColumn) {
  db().recordCount(db().find("buy"));
  EXPECT_EQ(lines(R"(
dict nmtSymIndex "buy"
dict nmtSymType 3
dict nmtSymDim 3
dict nmtFindFirstRowCol 3 [0]
model pbiGetSolutionVarRec 0
model pbiGetVarScaleOne 0
model pbiGetVarLowerOne 0
model pbiGetVarUpperOne 0
dict nmtColUels 0
dict nmtFindNextRowCol search2
model pbiGetSolutionVarRec 1
model pbiGetVarScaleOne 1
model pbiGetVarLowerOne 1
model pbiGetVarUpperOne 1
dict nmtColUels 1
dict nmtFindNextRowCol search2
dict nmtFindClose search2)"),
            log());
  EXPECT_EQ((Lines{"flour : 5 0.5 0 inf 1", "milk : 6 0.6 1 100 4"}), records("buy"));
  EXPECT_EQ(Lines(), log()) << "it is read once";
}

TEST_F(Solution, ofAnEquationIsReadRowByRowAfterTheFirstRowsType) {
  db().recordCount(db().find("need"));
  EXPECT_EQ(lines(R"(
dict nmtSymIndex "need"
dict nmtSymType 2
dict nmtSymDim 2
dict nmtFindFirstRowCol 2 [0]
model pbiGetEquTypeOne 1
model pbiGetSolutionEquRec 1
model pbiGetEquScaleOne 1
model pbiGetRhsOne 1
dict nmtRowUels 1
dict nmtFindNextRowCol search2
model pbiGetSolutionEquRec 2
model pbiGetEquScaleOne 2
model pbiGetRhsOne 2
dict nmtRowUels 2
dict nmtFindNextRowCol search2
dict nmtFindClose search2)"),
            log());
  EXPECT_EQ((Lines{"iron : 10 0.1 8 inf 2", "protein : 11 0.2 9 inf 3"}), records("need"));
}

TEST_F(Solution, ofAScalarHasOneRecord) {
  EXPECT_EQ((Lines{": 7 0 -inf inf 1"}), records("total"));
  EXPECT_EQ((Lines{": 1 2 0 0 1"}), records("cost"));
}

TEST_F(Solution, ofAnEquationWithoutRowsAsksForNoType) {
  model_.reset();
  symbol("empty", 2, 6);
  renew();
  prepare();
  EXPECT_EQ(Lines(), records("empty"));
  EXPECT_EQ(lines(R"(
dict nmtSymIndex "empty"
dict nmtSymType 1
dict nmtSymDim 1
dict nmtFindFirstRowCol 1 [0 0]
dict nmtFindClose search1)"),
            log());
}

TEST_F(Solution, boundsOfRowsComeFromTheirTypeAndRightHandSide) {
  const struct {
    int type;
    double lower;
    double upper;
  } cases[] = {{0, 4, 4},
               {1, 4, infinity},
               {2, -infinity, 4},
               {3, -infinity, infinity},
               {4, 4, 4},
               {5, -infinity, 4},
               {6, 4, 4},
               {7, -infinity, infinity},
               {-1, -infinity, infinity},
               {100, -infinity, infinity}};
  for (const auto& one : cases) {
    SCOPED_TRACE(one.type);
    model_.reset();
    symbol("row", 0, 6);
    row({}, {1, 0, 4, 1, 0}, one.type);
    renew();
    prepare();
    const Record record = db().first(db().find("row"));
    double value = 0;
    lib().c__ztbgetlower(db(), record, &value);
    EXPECT_EQ(one.lower, value);
    lib().c__ztbgetupper(db(), record, &value);
    EXPECT_EQ(one.upper, value);
  }
}

TEST_F(Solution, boundsOfAllRowsFollowTheTypeOfTheFirst) {
  model_.reset();
  model_.addLabel("a");
  model_.addLabel("b");
  symbol("mixed", 1, 6);
  row({1}, {0, 0, 4, 1, 0}, 2);
  row({2}, {0, 0, 5, 1, 0}, 1);
  renew();
  prepare();
  EXPECT_EQ((Lines{"a : 0 0 -inf 4 1", "b : 0 0 -inf 5 1"}), records("mixed"));
}

TEST_F(Solution, ofASymbolThatIsNoVariableAnyMoreIsReadAsEqualRows) {
  model_.answer("nmtSymType", 0, 7);
  model_.answer("nmtFindNextRowCol", 0, -1);
  db().recordCount(db().find("need"));
  EXPECT_EQ(lines(R"(
model pbiGetSolutionEquRec 1
model pbiGetEquScaleOne 1
model pbiGetRhsOne 1)"),
            log("pbi"));
  EXPECT_EQ((Lines{"iron : 10 0.1 8 8 2"}), records("need"));
}

TEST_F(Solution, ofASolveTakesThePlaceOfWhatWasRead) {
  EXPECT_EQ((Lines{"flour : 5 0.5 0 inf 1", "milk : 6 0.6 1 100 4"}), records("buy"));
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ((Lines{"flour : 0 1 0 inf 1", "milk : 1 1 1 100 4"}), records("buy"));
  EXPECT_EQ((Lines{"iron : 8 1 8 inf 2", "protein : 7.5 1 9 inf 3"}), records("need"));
  EXPECT_EQ((Lines{": -0.5 1 0 0 1"}), records("cost"));
  EXPECT_EQ(1, solve("barrier"));
  EXPECT_EQ((Lines{"flour : 0 2 0 inf 1", "milk : 1 2 1 100 4"}), records("buy"));
}

TEST_F(Solution, showsAlternativeBoundsWhenTheyAreInForce) {
  void* const values = data("values", {{"flour", 3}});
  EXPECT_EQ(1, update(db().find("buy"), 0, values, 2));
  EXPECT_EQ((Lines{"flour : 3 0.5 0 inf 1", "milk : 6 0.6 1 100 4"}), records("buy"));
  EXPECT_EQ(1, solve("dual"));
  EXPECT_EQ((Lines{"flour : 3 1 3 3 1", "milk : 1 1 1 100 4"}), records("buy"));
  EXPECT_EQ((Lines{"flour : 0.25 1 0.25 0.25 1", "milk : 0.75 1 0.75 0.75 1"}),
            records("price_var"));
}

TEST_F(Solution, infinitiesAreShownAsTheCallerWantsThem) {
  const double wanted[5] = {1e300, 2e300, 3e300, -3e300, 4e300};
  EXPECT_EQ(1, lib().c__ztbsetspecialvalues(db(), wanted));
  EXPECT_EQ((Lines{": 7 0 -3e+300 3e+300 1"}), records("total"));
}

TEST_F(Solution, isReadByEveryStoreInOrder) {
  for (const int store : {0, 1, 2}) {
    SCOPED_TRACE(store);
    model_.reset();
    makeDiet();
    renew();
    lib().c__ztbselectrecordstorage(db(), nullptr, store);
    prepare();
    EXPECT_EQ((Lines{"flour : 5 0.5 0 inf 1", "milk : 6 0.6 1 100 4"}), records("buy"));
    EXPECT_EQ((Lines{": 7 0 -inf inf 1"}), records("total"));
    EXPECT_EQ(1, solve("dual"));
    EXPECT_EQ((Lines{"iron : 8 1 8 inf 2", "protein : 7.5 1 9 inf 3"}), records("need"));
    EXPECT_EQ((Lines{"flour : 0 1 0 inf 1", "milk : 1 1 1 100 4"}), records("buy"));
    EXPECT_EQ((Lines{": -inf 1 -inf inf 1"}), records("total"));
  }
}

// More records than go into a store at a time.
TEST_F(Solution, ofManyColumnsIsReadWhole) {
  for (const int store : {0, 1, 2}) {
    SCOPED_TRACE(store);
    model_.reset();
    Lines expected;
    for (int k = 1; k <= 100; ++k) {
      const std::string label = "l" + std::to_string(1000 + k);
      model_.addLabel(label.c_str());
      expected.push_back(label + " : " + std::to_string(k) + " 0.5 0 inf 1");
    }
    symbol("many", 1, 5);
    for (int k = 1; k <= 100; ++k) column({k}, {static_cast<double>(k), 0.5, 0, infinity, 1});
    renew();
    lib().c__ztbselectrecordstorage(db(), nullptr, store);
    prepare();
    EXPECT_EQ(expected, records("many"));
  }
}

// A store that keeps what comes as it comes says so when the column is there, not later.
TEST_F(Solution, thatDoesNotAscendEndsWhereTheVectorStoreRefusesIt) {
  model_.reset();
  for (const char* label : {"a", "b", "c", "d", "e"}) model_.addLabel(label);
  symbol("mixed", 1, 5);
  for (const int label : {1, 3, 4, 2, 5}) column({label}, {1, 0, 0, infinity, 1});
  renew();
  lib().c__ztbselectrecordstorage(db(), nullptr, 1);
  prepare();
  EXPECT_THROW(db().recordCount(db().find("mixed")), std::runtime_error);
  EXPECT_EQ(
      (Lines{"dict nmtColUels 0", "dict nmtColUels 1", "dict nmtColUels 2", "dict nmtColUels 3"}),
      log("nmtColUels"));
}

TEST_F(Solution, ofASymbolMovedToAnotherStoreUnreadIsReadThere) {
  for (const int store : {1, 2}) {
    renew();
    prepare();
    void* buy = db().find("buy");
    EXPECT_EQ(1, lib().c__ztbselectrecordstorage(db(), &buy, store));
    EXPECT_EQ(Lines(), log());
    EXPECT_EQ((Lines{"flour : 5 0.5 0 inf 1", "milk : 6 0.6 1 100 4"}), records("buy"));
  }
}

TEST_F(Solution, endsTheHandlesOnTheOneBeforeOnEveryStore) {
  for (const int store : {0, 1, 2}) {
    renew();
    lib().c__ztbselectrecordstorage(db(), nullptr, store);
    prepare();
    const Record before = db().record(db().find("buy"), {"milk"});
    EXPECT_EQ((Labels{"milk"}), db().labels(before, 1));
    EXPECT_EQ(1, solve("dual"));
    double value = 0;
    EXPECT_FAILURE(db(),
                   "Unexpected exception in ztbGetLevel: the record handle stands on no record",
                   lib().c__ztbgetlevel(db(), before, &value));
    // The model stays from store to store, and its marginals count the solves.
    const std::string solves = std::to_string(store + 1);
    EXPECT_EQ((Lines{"flour : 0 " + solves + " 0 inf 1", "milk : 1 " + solves + " 1 100 4"}),
              records("buy"));
    EXPECT_FAILURE(db(),
                   "Unexpected exception in ztbRecordMovePrev: the record handle stands on no "
                   "record",
                   lib().c__ztbrecordmoveprev(db(), before));
  }
}

class UnsortedSolution : public Solution {
 protected:
  // A database on a store, and a model whose walk over x does not follow the labels.
  void use(int store) {
    model_.reset();
    for (const char* label : {"a", "b", "c"}) {
      model_.addLabel(label);
    }
    symbol("x", 1, 5);
    for (const int label : {3, 1, 2}) {
      column({label}, {1.0 * label, 0, 0, 9, 1});
    }
    model_.addSolver("dual", 1);
    renew();
    lib().c__ztbselectrecordstorage(db(), nullptr, store);
    prepare();
  }
};

TEST_F(UnsortedSolution, isSortedByTrees) {
  for (const int store : {0, 2}) {
    use(store);
    EXPECT_EQ((Lines{"a : 1 0 0 9 1", "b : 2 0 0 9 1", "c : 3 0 0 9 1"}), records("x"));
    EXPECT_EQ(1, solve("dual"));
    EXPECT_EQ((Lines{"a : 0 1 0 9 1", "b : 0 1 0 9 1", "c : 0 1 0 9 1"}), records("x"));
  }
}

TEST_F(UnsortedSolution, isRefusedByTheVectorStore) {
  use(1);
  void* record = nullptr;
  EXPECT_UNEXPECTED(db(), "ztbFindFirstRecord",
                    lib().c__ztbfindfirstrecord(db(), db().find("x"), &record));
  EXPECT_EQ(0, model_.alive("search"));
}

TEST_F(Solution, isReadByTheTwinsToo) {
  int status = -1;
  void* record = lib().c__ztbfindfirstrecordpy(db(), db().find("buy"), &status);
  ASSERT_NE(nullptr, record);
  EXPECT_EQ(1, status);
  EXPECT_EQ(5, db().level(Record(db(), record)));
  Keys keys{"protein"};
  record = lib().c__ztbfindrecordpy(db(), db().find("need"), keys, &status);
  ASSERT_NE(nullptr, record);
  EXPECT_EQ(11, db().level(Record(db(), record)));
}

TEST_F(Solution, isFoundByLabelsWithQuotes) {
  model_.reset();
  model_.addLabel("o'neill");
  model_.addLabel("6\" pipe");
  symbol("x", 2, 5);
  column({1, 2}, {4, 0, 0, 9, 1});
  renew();
  prepare();
  EXPECT_EQ(4, db().level(db().record(db().find("x"), {"O'Neill", "6\" pipe"})));
  Keys unknown{"o'neill", "7\" pipe"};
  void* record = nullptr;
  EXPECT_EQ(0, lib().c__ztbfindrecord(db(), db().find("x"), unknown, &record));
  EXPECT_EQ(nullptr, record);
}

TEST_F(Solution, withANumberThatNoLabelHasIsReadButCannotBeNamed) {
  model_.reset();
  model_.addLabel("a");
  symbol("x", 1, 5);
  column({9}, {4, 0, 0, 9, 1});
  renew();
  prepare();
  const Record record = db().first(db().find("x"));
  EXPECT_EQ(4, db().level(record));
  EXPECT_THROW(db().labels(record, 1), std::runtime_error);
}

TEST_F(Solution, ofASymbolThatTheModelLacksIsEmpty) {
  rxf_.file("data.rxf");
  rxf_.addLabel("flour");
  rxf_.addSymbol("elsewhere", 1, 1, 0, "");
  const int keys[] = {1};
  const double value = 2;
  rxf_.addRecord(keys, &value);
  renew();
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db(), "data.rxf"));
  ASSERT_EQ(1, lib().c__ztbcloserxf(db(), 0));
  ASSERT_EQ(1, lib().c__ztbregisterpbi(db(), model_.handle()));
  ASSERT_EQ(1, lib().c__ztbinitupdate(db(), nullptr));
  log();
  EXPECT_EQ(0, db().recordCount(db().find("elsewhere")));
  EXPECT_EQ((Lines{"dict nmtSymIndex \"elsewhere\""}), log());
}

TEST_F(Solution, ofANewSolveTakesThePlaceOfWhatAFileDidNotGive) {
  rxf_.file("data.rxf");
  for (const char* label : {"flour", "milk", "iron", "protein"}) rxf_.addLabel(label);
  rxf_.addSymbol("buy", 1, 2, 3, "");
  renew();
  ASSERT_EQ(1, lib().c__ztbinitfromrxf(db(), "data.rxf"));
  rxf_.fail("rxfDataReadRawStart", 0, -1);
  rxf_.raise("rxfDataReadRawStart", 0, 8);
  void* record = nullptr;
  const auto findFirst = [&] {
    return lib().c__ztbfindfirstrecord(db(), db().find("buy"), &record);
  };
  const std::string text = "Symbol buy could not be read from data.rxf: Scripted error 8";
  EXPECT_FAILURE(db(), text, findFirst());
  ASSERT_EQ(1, lib().c__ztbcloserxf(db(), 0));
  ASSERT_EQ(1, lib().c__ztbregisterpbi(db(), model_.handle()));
  ASSERT_EQ(1, lib().c__ztbinitupdate(db(), nullptr));
  EXPECT_FAILURE(db(), text, findFirst());
  ASSERT_EQ(1, solve("dual")) << db().lastError();
  EXPECT_EQ((Lines{"flour : 0 1 0 inf 1", "milk : 1 1 1 100 4"}), records("buy"));
}

TEST_F(Solution, ofTooManyPositionsIsRefusedAndNotTriedAgain) {
  model_.answer("nmtSymDim", 0, 21);
  void* record = nullptr;
  EXPECT_UNEXPECTED(db(), "ztbFindFirstRecord",
                    lib().c__ztbfindfirstrecord(db(), db().find("buy"), &record));
  EXPECT_EQ(0, model_.alive("search"));
  EXPECT_EQ(0, db().recordCount(db().find("buy")));
}

}  // namespace
}  // namespace ztbtest
