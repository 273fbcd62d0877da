#include <nlohmann/json.hpp>
#include <string>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;

class ModelTest : public ProgramTest {
 protected:
  // Costs 3 and 5, coefficients 1 and 2, a bound of 20; two rows of need and one of room.
  void SetUp() override {
    write("m.lp",
          "Maximize\n total: 3 ship(a) + 5 ship(b) - open\nSubject To\n"
          " need(x): ship(a) + ship(b) >= 10\n need(y): ship(a) + 2 ship(b) >= 4\n"
          " room: ship(a) - 20 open <= 0\nBounds\n ship(a) <= 20\nBinaries\n open\nEnd\n");
  }
};

TEST_F(ModelTest, ListsFamiliesAndTotals) {
  EXPECT_EQ(ztbFine({"model", "m.lp"}),
            "Family  Of       Dim  Count  Kind        Entries  Coefficients  Bounds, sides\n"
            "------  -------  ---  -----  ----------  -------  ------------  -------------\n"
            "ship    columns    1      2  continuous        7  1 to 5        20\n"
            "open    columns    0      1  binary            2  1 to 20       1\n"
            "total   rows       0      1  free              3  1 to 5\n"
            "need    rows       1      2  >=                4  1 to 2        4 to 10\n"
            "room    rows       0      1  <=                2  1 to 20\n"
            "\n"
            "m.lp: maximize, 3 columns, 1 binary, 3 rows, 9 terms, coefficients 1 to 20\n");
}

TEST_F(ModelTest, PrintsJson) {
  const auto json = nlohmann::json::parse(ztbFine({"model", "m.lp", "--json"}));
  EXPECT_EQ(json["sense"], "maximize");
  EXPECT_EQ(json["columns"], 3);
  EXPECT_EQ(json["binaries"], 1);
  EXPECT_EQ(json["rows"], 3);
  EXPECT_EQ(json["terms"], 9);
  EXPECT_EQ(json["coefficients"], nlohmann::json::array({1.0, 20.0}));
  ASSERT_EQ(json["families"].size(), 5U);
  EXPECT_EQ(json["families"][3]["name"], "need");
  EXPECT_EQ(json["families"][3]["of"], "rows");
  EXPECT_EQ(json["families"][3]["count"], 2);
  EXPECT_EQ(json["families"][3]["sides"], nlohmann::json::array({4.0, 10.0}));
  EXPECT_EQ(json["families"][2]["sides"], nullptr);
}

TEST_F(ModelTest, WritesAModelThatReadsBack) {
  const std::string shown = ztbFine({"model", "m.lp", "--write", "w.mps"});
  std::string again = ztbFine({"model", "w.mps", "--write", "w.lp"});
  again.replace(again.find("w.mps"), 5, "m.lp");
  EXPECT_EQ(shown, again);
  EXPECT_EQ(ztbFine({"model", "w.lp", "--json"}).substr(20),
            ztbFine({"model", "m.lp", "--json"}).substr(20));
}

TEST_F(ModelTest, PrintsNotesOfTheReading) {
  write("n.lp", "min x\nbounds\n y <= 3\nend\nrest\n");
  const tooltest::Outcome outcome = ztb({"model", "n.lp"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(
      outcome.errors,
      "ztb: n.lp:3:2: the variable \"y\" stands in no row and not in the objective; it is taken "
      "all the same\nztb: n.lp:5:1: what stands behind End is passed over\n");
}

TEST_F(ModelTest, NotesGoToStandardErrorOfASolve) {
  write("n.lp", "min x\nbounds\n x >= 3\nend\nrest\n");
  const tooltest::Outcome outcome = ztb({"solve", "n.lp", "--solver", "clp"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "ztb: n.lp:5:1: what stands behind End is passed over\n");
}

TEST_F(ModelTest, TellsWhatIsWrong) {
  write("bad.lp", "min x\nst\n x >=\nend\n");
  expectFails(1, "ztb: bad.lp:4:1: found \"end\", expected a number, a name or a bracket\n",
              {"model", "bad.lp"});
  expectFails(1, "ztb: w.txt: unknown ending, expected .lp or .mps\n",
              {"model", "m.lp", "--write", "w.txt"});
}

TEST_F(ModelTest, ShowsTheFirstOfManyFamilies) {
  std::string text = "min\n";
  for (int j = 0; j < 100; ++j) text += " + x" + std::to_string(j) + "\n";
  write("many.lp", text + "end\n");
  const std::string some = ztbFine({"model", "many.lp"});
  EXPECT_NE(some.find("... and 41 more families (--all shows them)\n"), std::string::npos) << some;
  EXPECT_EQ(some.find("x60 "), std::string::npos);
  EXPECT_NE(ztbFine({"model", "many.lp", "--all"}).find("x99 "), std::string::npos);
}

}  // namespace
