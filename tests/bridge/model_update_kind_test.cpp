// Which calls an update of a parameter or an equation takes, for every action and update type.
#include <ostream>
#include <tuple>

#include "tests/bridge/bridge_fixture.h"

namespace ztbtest {
namespace {

// What an action does, as calls of the model.
struct Calls {
  const char* recorded;  // where the data has a record, with the value 2
  const char* zero;      // where it has none and that is taken as 0
  const char* base;      // where it has none and the base value comes back
};

struct Kind {
  const char* name;
  const char* symbol;      // as the database has it
  const char* dictionary;  // as the model has it
  const char* number;      // of the symbol in the model
  const char* uels;        // the call that asks for keys
  const char* label;       // of the record
  const char* first;       // row or column with the record
  const char* second;      // the one without
  Calls calls[6];          // by action
};

// For the names of tests.
void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.name;
}

// Bounds go to columns and levels to rows, by the numbers of the columns price_var. Column 2 is at
// 0.25, column 3 at 0.75, both without bounds; row 2 is at 11 and 0.2, row 3 at 12 and 0.3.
constexpr Kind parameter = {
    "Parameter",
    "price",
    "price_var",
    "4",
    "nmtColUels",
    "flour",
    "2",
    "3",
    {{R"(
model pbiSetVarLOne 2 2
model pbiSetAltVarLowerOne 2 2
model pbiSetAltVarUpperOne 2 2)",
      R"(
model pbiSetVarLOne 3 0
model pbiSetAltVarLowerOne 3 0
model pbiSetAltVarUpperOne 3 0)",
      R"(
model pbiSetVarLOne 3 0.75
model pbiSetAltVarLowerOne 3 0.75
model pbiSetAltVarUpperOne 3 0.75)"},
     {R"(
model pbiSetAltVarUpperOne 2 2
model pbiGetVarLOne 2)",
      R"(
model pbiSetAltVarUpperOne 3 0
model pbiGetVarLOne 3
model pbiSetVarLOne 3 0)",
      R"(
model pbiAltBoundsSet 0
model pbiGetVarUpperOne 3
model pbiAltBoundsSet 1
model pbiSetAltVarUpperOne 3 inf
model pbiGetVarLOne 3)"},
     {R"(
model pbiSetAltVarLowerOne 2 2
model pbiGetVarLOne 2
model pbiSetVarLOne 2 2)",
      R"(
model pbiSetAltVarLowerOne 3 0
model pbiGetVarLOne 3)",
      R"(
model pbiAltBoundsSet 0
model pbiGetVarLowerOne 3
model pbiAltBoundsSet 1
model pbiSetAltVarLowerOne 3 -inf
model pbiGetVarLOne 3)"},
     {R"(
model pbiSetAltVarUpperOne 2 2
model pbiGetVarLOne 2
model pbiSetAltVarLowerOne 2 2
model pbiGetVarLOne 2
model pbiSetVarLOne 2 2)",
      R"(
model pbiSetAltVarUpperOne 3 0
model pbiGetVarLOne 3
model pbiSetVarLOne 3 0
model pbiSetAltVarLowerOne 3 0
model pbiGetVarLOne 3)",
      R"(
model pbiAltBoundsSet 0
model pbiGetVarUpperOne 3
model pbiAltBoundsSet 1
model pbiSetAltVarUpperOne 3 inf
model pbiGetVarLOne 3
model pbiAltBoundsSet 0
model pbiGetVarLowerOne 3
model pbiAltBoundsSet 1
model pbiSetAltVarLowerOne 3 -inf
model pbiGetVarLOne 3)"},
     {"model pbiSetEquLOne 2 2", "model pbiSetEquLOne 3 0", "model pbiSetEquLOne 3 12"},
     {R"(
model pbiGetEquLOne 2
model pbiGetEquStatOne 2
model pbiGetEquCStatOne 2
model pbiSetSolutionEquRec 2 11 2 7 8)",
      R"(
model pbiGetEquLOne 3
model pbiGetEquStatOne 3
model pbiGetEquCStatOne 3
model pbiSetSolutionEquRec 3 12 0 9 10)",
      R"(
model pbiGetEquLOne 3
model pbiGetEquStatOne 3
model pbiGetEquCStatOne 3
model pbiSetSolutionEquRec 3 12 0.3 9 10)"}}};

// Bounds go to columns by the numbers of the rows need. Row 1 is at 10 and 0.1, row 2 at 11 and
// 0.2; column 1 is at 6 from 1 to 100, column 2 at 0.25 without bounds.
constexpr Kind equation = {
    "Equation",
    "need",
    "need",
    "2",
    "nmtRowUels",
    "iron",
    "1",
    "2",
    {{R"(
model pbiSetVarLOne 1 2
model pbiSetAltVarLowerOne 1 2
model pbiSetAltVarUpperOne 1 2)",
      R"(
model pbiSetVarLOne 2 0
model pbiSetAltVarLowerOne 2 0
model pbiSetAltVarUpperOne 2 0)",
      R"(
model pbiSetVarLOne 2 0.25
model pbiSetAltVarLowerOne 2 0.25
model pbiSetAltVarUpperOne 2 0.25)"},
     {R"(
model pbiSetAltVarUpperOne 1 2
model pbiGetVarLOne 1
model pbiSetVarLOne 1 2)",
      R"(
model pbiSetAltVarUpperOne 2 0
model pbiGetVarLOne 2
model pbiSetVarLOne 2 0)",
      R"(
model pbiAltBoundsSet 0
model pbiGetVarUpperOne 2
model pbiAltBoundsSet 1
model pbiSetAltVarUpperOne 2 inf
model pbiGetVarLOne 2)"},
     {R"(
model pbiSetAltVarLowerOne 1 2
model pbiGetVarLOne 1)",
      R"(
model pbiSetAltVarLowerOne 2 0
model pbiGetVarLOne 2)",
      R"(
model pbiAltBoundsSet 0
model pbiGetVarLowerOne 2
model pbiAltBoundsSet 1
model pbiSetAltVarLowerOne 2 -inf
model pbiGetVarLOne 2)"},
     {R"(
model pbiSetAltVarUpperOne 1 2
model pbiGetVarLOne 1
model pbiSetVarLOne 1 2
model pbiSetAltVarLowerOne 1 2
model pbiGetVarLOne 1)",
      R"(
model pbiSetAltVarUpperOne 2 0
model pbiGetVarLOne 2
model pbiSetVarLOne 2 0
model pbiSetAltVarLowerOne 2 0
model pbiGetVarLOne 2)",
      R"(
model pbiAltBoundsSet 0
model pbiGetVarUpperOne 2
model pbiAltBoundsSet 1
model pbiSetAltVarUpperOne 2 inf
model pbiGetVarLOne 2
model pbiAltBoundsSet 0
model pbiGetVarLowerOne 2
model pbiAltBoundsSet 1
model pbiSetAltVarLowerOne 2 -inf
model pbiGetVarLOne 2)"},
     {"model pbiSetEquLOne 1 2", "model pbiSetEquLOne 2 0", "model pbiSetEquLOne 2 11"},
     {R"(
model pbiGetEquLOne 1
model pbiGetEquStatOne 1
model pbiGetEquCStatOne 1
model pbiSetSolutionEquRec 1 10 2 5 6)",
      R"(
model pbiGetEquLOne 2
model pbiGetEquStatOne 2
model pbiGetEquCStatOne 2
model pbiSetSolutionEquRec 2 11 0 7 8)",
      R"(
model pbiGetEquLOne 2
model pbiGetEquStatOne 2
model pbiGetEquCStatOne 2
model pbiSetSolutionEquRec 2 11 0.2 7 8)"}}};

class ModelUpdateKind : public BridgeTest,
                        public testing::WithParamInterface<std::tuple<Kind, int, int>> {
 protected:
  ModelUpdateKind() {
    // A row for the number of the last column of price_var.
    symbol("limit", 0, 6);
    row({}, {12, 0.3, 0, 1, 0}, 2, 9, 10);
    prepare();
    data("price", {});
  }
};

TEST_P(ModelUpdateKind, walksAndWrites) {
  const auto& [kind, action, updateType] = GetParam();
  const Calls& calls = kind.calls[action];
  const Lines without[] = {lines(calls.zero), lines(calls.base), {}};
  void* const values = data("values", {{kind.label, 2}, {"elsewhere", 3}});
  void* const symbol = db().find(kind.symbol);
  log();
  EXPECT_SUCCESS(db(), update(symbol, action, values, updateType));
  EXPECT_EQ(1, noMatch_);
  const std::string number = kind.number;
  const std::string uels = std::string("dict ") + kind.uels + ' ';
  const Lines opening = {"dict nmtSymIndex \"" + std::string(kind.dictionary) + '"',
                         "dict nmtSymType " + number, "dict nmtSymDim " + number,
                         "dict nmtFindFirstRowCol " + number + " [0]", uels + kind.first};
  const std::string next = "dict nmtFindNextRowCol search2";
  const Lines wanted = opening + lines(calls.recorded) + Lines{next, uels + kind.second} +
                       without[updateType] + Lines{next, "dict nmtFindClose search2"};
  EXPECT_EQ(wanted, log());
}

std::string nameOf(const testing::TestParamInfo<ModelUpdateKind::ParamType>& info) {
  const auto& [kind, action, updateType] = info.param;
  return std::string(kind.name) + "Action" + std::to_string(action) + "Type" +
         std::to_string(updateType);
}

INSTANTIATE_TEST_SUITE_P(All, ModelUpdateKind,
                         testing::Combine(testing::Values(parameter, equation),
                                          testing::Range(0, 6), testing::Range(0, 3)),
                         nameOf);

}  // namespace
}  // namespace ztbtest
