#include <cmath>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;

class PivotTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztb::Database database;
    database.mergeLabel("Bern");
    ztb::Symbol plant = database.addSet("plant", {"*"});
    plant.add("Ulm");
    plant.add("Bern");
    ztb::Symbol ships = database.addParameter("ships", {plant, "good", "*"}, "Tons");
    ships.add("Ulm", "milk", "may").setLevel(3);
    ships.add("Bern", "milk", "may").setLevel(0);
    ships.add("Bern", "tofu", "may").setLevel(1e300);
    ships.add("Bern", "milk", "june").setLevel(2.5);
    ships.add("Ulm", "a, b", "june").setLevel(-INFINITY);
    ztb::Symbol flow = database.addVariable("flow", 5, {plant, plant});
    flow.add("Ulm", "Bern").setMarginal(2);
    database.addParameter("empty", {"*", "*"});
    database.addParameter("pi", {}).add().setLevel(3.25);
    // Taken, so that the command needs other names for what it makes.
    database.addSet("pivotLabels", {"*"}).add("Ulm");
    database.addSet("pivotRecords", {"*"}).add("Ulm");
    database.write(path("a.rxf"));
  }

  std::string pivot(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"pivot", "a.rxf"});
    return ztbFine(arguments);
  }
};

TEST_F(PivotTest, alignsATableAndLeavesCellsWithoutRecordBlank) {
  EXPECT_EQ(pivot({"ships", "--rows", "plant", "--columns", "good", "--slice", "*,*,may"}),
            "parameter ships(plant, good, *): Tons\n"
            "\n"
            "plant  milk   tofu\n"
            "-----  ----  -----\n"
            "Bern      0  undef\n"
            "Ulm       3\n"
            "\n"
            "2 rows x 2 columns, 3 records\n");
}

TEST_F(PivotTest, putsSeveralPositionsOnASide) {
  EXPECT_EQ(pivot({"ships", "--rows", "1", "--columns", "3,GOOD", "--csv"}),
            "plant,may.milk,may.tofu,june.milk,\"june.a, b\"\n"
            "Bern,0,undef,2.5,\n"
            "Ulm,3,,,-inf\n");
  EXPECT_EQ(pivot({"ships", "--rows", "good,plant", "--columns", "dim_3", "--csv"}),
            "good,plant,may,june\n"
            "milk,Bern,0,2.5\n"
            "milk,Ulm,3,\n"
            "tofu,Bern,undef,\n"
            "\"a, b\",Ulm,,-inf\n");
}

TEST_F(PivotTest, takesASliceOfOneLabelForTheOtherPositions) {
  EXPECT_EQ(
      pivot({"ships", "--rows", "good", "--columns", "plant", "--slice", "*,*,JUNE", "--csv"}),
      "good,Bern,Ulm\nmilk,2.5,\n\"a, b\",,-inf\n");
  expectFails(2,
              "ztb: position 3 (dim_3) is in neither --rows nor --columns and has 2 labels; choose "
              "one with --slice\n",
              {"pivot", "a.rxf", "ships", "--rows", "1", "--columns", "2"});
}

TEST_F(PivotTest, showsAFieldOfAVariable) {
  EXPECT_EQ(pivot({"flow", "--rows", "plant", "--columns", "2", "--csv", "--field", "marginal"}),
            "plant,Bern\nUlm,2\n");
  EXPECT_EQ(pivot({"flow", "--rows", "1", "--columns", "2", "--csv"}), "plant,Bern\nUlm,0\n");
}

TEST_F(PivotTest, ofNoRecordIsEmpty) {
  EXPECT_EQ(pivot({"empty", "--rows", "1", "--columns", "2", "--csv"}), "dim_1\n");
  EXPECT_EQ(pivot({"ships", "--rows", "1", "--columns", "2", "--slice", "q*,*,*", "--csv"}),
            "plant\n");
}

TEST_F(PivotTest, refusesWhatHasNoTable) {
  expectFails(
      2,
      "ztb: pi is a scalar; a table is made of a parameter, variable or equation with positions\n",
      {"pivot", "a.rxf", "pi", "--rows", "1", "--columns", "2"});
  expectFails(2,
              "ztb: plant(*) is a set; a table is made of a parameter, variable or equation with "
              "positions\n",
              {"pivot", "a.rxf", "plant", "--rows", "1", "--columns", "2"});
  expectFails(2,
              "ztb: --rows: 'from' is no position of ships(plant, good, *), expected 1 to 3 or one "
              "of plant, good, dim_3\n",
              {"pivot", "a.rxf", "ships", "--rows", "from", "--columns", "2"});
  expectFails(2, "ztb: --columns: position 1 (plant) is named twice\n",
              {"pivot", "a.rxf", "ships", "--rows", "plant", "--columns", "2,1"});
  expectFails(2,
              "ztb: --field upper: ships(plant, good, *) is a parameter; only variables and "
              "equations have fields\n",
              {"pivot", "a.rxf", "ships", "--rows", "1", "--columns", "2,3", "--field", "upper"});
  expectFails(2,
              "ztb: --field up: 'up' is no field, expected level, marginal, lower, upper or "
              "scale\n",
              {"pivot", "a.rxf", "flow", "--rows", "1", "--columns", "2", "--field", "up"});
  expectFails(
      2, "ztb: --field upper,lower: one field is expected\n",
      {"pivot", "a.rxf", "flow", "--rows", "1", "--columns", "2", "--field", "upper,lower"});
}

// Two blanks part the columns, so that 14 places are enough for the labels and one column.
TEST_F(PivotTest, showsWhatIsWiderThanTheLineInParts) {
  EXPECT_EQ(pivot({"ships", "--rows", "plant", "--columns", "good", "--slice", "*,*,may", "--width",
                   "14"}),
            "parameter\n"
            "ships(plant,\n"
            "good, *): Tons\n"
            "\n"
            "plant  milk\n"
            "-----  ----\n"
            "Bern      0\n"
            "Ulm       3\n"
            "\n"
            "plant   tofu\n"
            "-----  -----\n"
            "Bern   undef\n"
            "\n"
            "2 rows x 2\n"
            "columns, 3\n"
            "records\n");
}

TEST_F(PivotTest, roundsToTheDigitsAskedFor) {
  ztb::Database database;
  database.addParameter("p", {"*", "*"}).add("a", "b").setLevel(2.0 / 3);
  database.write(path("b.rxf"));
  EXPECT_EQ(
      ztbFine({"pivot", "b.rxf", "p", "--rows", "1", "--columns", "2", "--csv", "--digits", "3"}),
      "dim_1,b\na,0.667\n");
  expectFails(2, "ztb: --digits: goes with tables and --csv; JSON has every number whole\n",
              {"show", "b.rxf", "p", "--json", "--digits", "3"});
}

// A dense table of these would have 16 thousand million cells.
TEST_F(PivotTest, takesMemoryForRecordsOnly) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*", "*"});
  constexpr int count = 50000;
  for (int label = 0; label < count; ++label) {
    const std::string name = "l" + std::to_string(label);
    p.add(name, name, name).setLevel(label);
  }
  database.write(path("b.rxf"));
  const std::string table =
      ztbFine({"pivot", "b.rxf", "p", "--rows", "1,2", "--columns", "3", "--width", "24"});
  EXPECT_NE(table.find("\nl49999  l49999   49999\n"), std::string::npos);
  EXPECT_NE(table.find("\n50000 rows x 50000\ncolumns, 50000 records\n"), std::string::npos);
  EXPECT_EQ(ztbFine({"pivot", "b.rxf", "p", "--rows", "1,2", "--columns", "3", "--slice", "l17,*,*",
                     "--csv"}),
            "dim_1,dim_2,l17\nl17,l17,17\n");
}

}  // namespace
