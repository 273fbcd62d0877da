#include <cmath>
#include <limits>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::ProgramTest;

class ImportTest : public ProgramTest {
 protected:
  ztb::Database open() const { return ztb::Database::open(path("out.rxf")); }
};

TEST_F(ImportTest, MakesSetsAndParametersFromOneFile) {
  write("foods.csv",
        "food,unit,price,weight\n"
        "Milk,1 qt.,11,2.1\n"
        "\"Ham, smoked\",1 lb.,27.4,1\n");
  EXPECT_EQ(ztbFine({"import", "out.rxf", "--from", "foods.csv", "--set",
                     "food(food) : unit \"Things to eat\"", "--parameter",
                     "cost(food) = price 'Cents'", "--parameter", "weight(food)"}),
            "out.rxf: 3 symbols, 2 labels, 6 records\n");
  const ztb::Database database = open();
  const ztb::Symbol food = database.symbol("food");
  EXPECT_EQ(food.type(), ztb::Type::set);
  EXPECT_EQ(food.text(), "Things to eat");
  EXPECT_EQ(food.domains()[0].name, "*");
  EXPECT_EQ(food.find("Milk")->text(), "1 qt.");
  const ztb::Symbol cost = database.symbol("cost");
  EXPECT_EQ(cost.text(), "Cents");
  EXPECT_EQ(cost.domains()[0].name, "food");
  EXPECT_EQ(cost.recordCount(), 2);
  EXPECT_EQ(cost.find("Ham, smoked")->level(), 27.4);
  EXPECT_EQ(database.symbol("weight").find("milk")->level(), 2.1);
}

TEST_F(ImportTest, ReadsSeveralFilesInTheirOrder) {
  write("a.csv", "i\nx\ny\n");
  write("b.csv", "j,i,v\nq,y,1\n");
  ztbFine({"import", "out.rxf", "--from", "a.csv", "--set", "i", "--from", "b.csv", "--set", "j",
           "--parameter", "p(i, j) = v"});
  const ztb::Database database = open();
  EXPECT_EQ(database.label(1), "x");
  EXPECT_EQ(database.label(2), "y");
  EXPECT_EQ(database.label(3), "q");
  EXPECT_EQ(database.symbol("p").domains()[0].name, "i");
  EXPECT_EQ(database.symbol("p").domains()[1].name, "j");
  EXPECT_EQ(database.symbol("p").find("y", "q")->level(), 1);
}

TEST_F(ImportTest, TakesDomainsThatAreNamed) {
  write("n.csv", "node\na\nb\n");
  write("arcs.csv", "from,to,cost,node\na,b,5,z\n");
  ztbFine({"import", "out.rxf", "--from", "n.csv", "--set", "node", "--from", "arcs.csv",
           "--parameter", "cost(from in node, to in NODE)", "--parameter",
           "other(node in *) = cost"});
  const ztb::Database database = open();
  EXPECT_EQ(database.symbol("cost").domains()[0].set->name(), "node");
  EXPECT_EQ(database.symbol("cost").domains()[1].set->name(), "node");
  EXPECT_EQ(database.symbol("other").domains()[0].name, "*");
}

// As aliases of the set, in front of the symbol that needs them first.
TEST_F(ImportTest, KeepsTheNamesOfColumnsOverANamedSet) {
  write("airports.csv", "airport\nLHR\nOSL\n");
  write("routes.csv", "from,to,miles,stops\nLHR,OSL,751,0\n");
  EXPECT_EQ(ztbFine({"import", "out.rxf", "--check-domains", "--from", "airports.csv", "--set",
                     "airport", "--from", "routes.csv", "--parameter",
                     "miles(from in airport, to in airport)", "--parameter", "stops(from, to)"}),
            "out.rxf: 5 symbols, 2 labels, 4 records\n");
  for (const char* name : {"miles", "stops"}) {
    EXPECT_EQ(ztbFine({"show", "out.rxf", name, "--csv", "--head", "0"}), "from,to,value\n");
    const std::vector<ztb::Domain> domains = open().symbol(name).domains();
    EXPECT_EQ(domains[0].name, "from");
    EXPECT_EQ(domains[1].name, "to");
  }
  EXPECT_EQ(ztbFine({"check", "out.rxf", "--domains"}),
            "out.rxf: fine: 5 symbols, 2 labels, 4 records\n");
  ztbFine({"export", "out.rxf", "--all", "--csv", "exported"});
  EXPECT_EQ(read("exported/miles.csv"), "from,to,value\nLHR,OSL,751\n");
  ztbFine({"import", "again.rxf", "--dir", "exported"});
  EXPECT_EQ(ztbFine({"diff", "out.rxf", "again.rxf"}), "no difference: 5 symbols, 4 records\n");
}

TEST_F(ImportTest, KeepsTheNamesOfColumnsWithoutASet) {
  write("routes.csv", "airline,from,to city,miles\nBA,LHR,OSL,751\n");
  ztbFine({"import", "out.rxf", "--from", "routes.csv", "--parameter",
           "miles(airline, from, to city)", "--set", "leg(from, to city)", "--set",
           "line(airline)"});
  EXPECT_EQ(ztbFine({"show", "out.rxf", "miles", "--csv"}),
            "airline,from,to city,value\nBA,LHR,OSL,751\n");
  EXPECT_EQ(ztbFine({"show", "out.rxf", "leg", "--csv"}), "from,to city,text\nLHR,OSL,\n");
  // A plain set stays one over all labels, under its own name.
  EXPECT_EQ(ztbFine({"show", "out.rxf", "line", "--csv"}), "line,text\nBA,\n");
  EXPECT_EQ(open().symbol("line").domains()[0].name, "*");
  EXPECT_FALSE(open().symbol("miles").domains()[1].set);
}

TEST_F(ImportTest, TellsWhichNamesOfColumnsItCannotKeep) {
  write("a.csv", "node,from it,p,v\nx,x,x,1\n");
  const Outcome outcome =
      ztb({"import", "out.rxf", "--from", "a.csv", "--set", "node", "--parameter",
           "p(from it in node) = v", "--parameter", "q(p in node) = v"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors,
            "ztb: warning: --parameter p(from it in node) = v: a position is called node and not "
            "'from it': 'from it' is not a valid name for a VELT symbol\n"
            "ztb: warning: --parameter q(p in node) = v: a position is called node and not 'p': "
            "another symbol has this name\n");
}

// As in Python: a row without any value is no record, one with some keeps the others' defaults.
TEST_F(ImportTest, LeavesOutEmptyFieldsOfVariables) {
  write("a.csv", "i,level,upper\nx,1.5,\ny, ,7\nz,,\n");
  ztbFine(
      {"import", "out.rxf", "--skip-empty", "--from", "a.csv", "--variable", "positive buy(i)"});
  EXPECT_EQ(ztbFine({"show", "out.rxf", "buy", "--csv"}),
            "i,level,marginal,lower,upper,scale\nx,1.5,0,0,inf,1\ny,0,0,0,7,1\n");
  expectFails(1,
              "a.csv:2:7: upper: is empty, expected a number\n"
              "a.csv:3:3: level: is empty, expected a number\n"
              "a.csv:4:3: level: is empty, expected a number\n"
              "a.csv:4:4: upper: is empty, expected a number\n"
              "ztb: out.rxf: not written: 4 problems in the input\n",
              {"import", "out.rxf", "--from", "a.csv", "--variable", "positive buy(i)"});
}

TEST_F(ImportTest, TellsThatNamesAreOneWhateverTheirCase) {
  write("a.csv", "food\nx\n");
  expectFails(2,
              "ztb: --set FOOD: The name FOOD is that of symbol food already (the case of letters "
              "does not matter): Symbol FOOD exists already\n",
              {"import", "out.rxf", "--from", "a.csv", "--set", "food", "--set", "FOOD"});
}

TEST_F(ImportTest, ReadsVariablesWithTheBoundsOfTheirKind) {
  write("a.csv", "i,amount,cap,lower\nx,1.5,9,-2\n");
  ztbFine({"import", "out.rxf", "--from", "a.csv", "--variable",
           "positive buy(i) = level: amount, upper: cap 'Bought'", "--variable", "take(i) = amount",
           "--variable", "binary all(i)"});
  EXPECT_EQ(ztbFine({"show", "out.rxf", "buy", "--csv"}),
            "i,level,marginal,lower,upper,scale\nx,1.5,0,0,9,1\n");
  EXPECT_EQ(ztbFine({"show", "out.rxf", "take", "--csv"}),
            "i,level,marginal,lower,upper,scale\nx,1.5,0,-inf,inf,1\n");
  EXPECT_EQ(ztbFine({"show", "out.rxf", "all", "--csv"}),
            "i,level,marginal,lower,upper,scale\nx,0,0,-2,1,1\n");
  EXPECT_EQ(open().symbol("buy").text(), "Bought");
  EXPECT_EQ(open().symbol("buy").userInfo(), 3);
  write("b.csv", "i\nx\n");
  expectFails(1,
              "b.csv:1:1: no column level, marginal, lower, upper, scale; the columns are i\n"
              "ztb: out.rxf: not written: 1 problem in the input\n",
              {"import", "out.rxf", "--from", "b.csv", "--variable", "x(i)"});
}

TEST_F(ImportTest, ReadsDecimalCommas) {
  write("a.csv", "i;v\nx;1,5\ny;-,25\n");
  ztbFine({"import", "out.rxf", "--separator", ";", "--decimal", ",", "--from", "a.csv",
           "--parameter", "v(i)"});
  EXPECT_EQ(open().symbol("v").find("x")->level(), 1.5);
  EXPECT_EQ(open().symbol("v").find("y")->level(), -0.25);
  expectFails(2,
              "ztb: --decimal ,: the comma parts the fields; give --separator ';' or tab as well\n",
              {"import", "out.rxf", "--decimal", ",", "--from", "a.csv", "--parameter", "v(i)"});
  expectFails(2, "ztb: --decimal x: expected a point or a comma\n",
              {"import", "out.rxf", "--decimal", "x", "--from", "a.csv", "--parameter", "v(i)"});
}

TEST_F(ImportTest, ReadsAScalar) {
  write("a.csv", "name,value\npi,3.25\n");
  ztbFine({"import", "out.rxf", "--from", "a.csv", "--parameter", "pi() = value"});
  EXPECT_EQ(open().symbol("pi").find()->level(), 3.25);
}

TEST_F(ImportTest, TakesEachElementOnceWhenAsked) {
  write("a.csv", "i,t\nx,first\ny,\nX,second\n");
  EXPECT_EQ(ztbFine({"import", "out.rxf", "--from", "a.csv", "--distinct-set", "i : t"}),
            "out.rxf: 1 symbol, 2 labels, 2 records\n");
  EXPECT_EQ(open().symbol("i").find("x")->text(), "first");
}

TEST_F(ImportTest, LeavesEmptyValuesOutWhenAsked) {
  write("a.csv", "i,v,w\nx,1,\ny, ,2\n");
  ztbFine({"import", "out.rxf", "--skip-empty", "--from", "a.csv", "--parameter", "v(i)",
           "--parameter", "w(i)"});
  const ztb::Database database = open();
  EXPECT_EQ(database.symbol("v").recordCount(), 1);
  EXPECT_EQ(database.symbol("w").find("y")->level(), 2);
}

TEST_F(ImportTest, ReadsOtherSeparators) {
  write("a.csv", "i;v\nx,y;1\n");
  ztbFine({"import", "out.rxf", "--separator", ";", "--from", "a.csv", "--parameter", "v(i)"});
  EXPECT_EQ(open().symbol("v").find("x,y")->level(), 1);
  write("b.tsv", "i\tv\nx\t2\n");
  ztbFine({"import", "out.rxf", "--separator", "tab", "--from", "b.tsv", "--parameter", "v(i)"});
  EXPECT_EQ(open().symbol("v").find("x")->level(), 2);
}

TEST_F(ImportTest, ReadsStandardInput) {
  const Outcome outcome =
      ztb({"import", "out.rxf", "--from", "-", "--parameter", "v(i)"}, "i,v\nx,4\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(open().symbol("v").find("x")->level(), 4);
}

TEST_F(ImportTest, ReadsWhatSpreadsheetsWrite) {
  write("a.csv", "\xEF\xBB\xBFi,v\r\n\"x \"\"y\"\"\",+1.5\r\n  lead,INF\r\n\xE9t\xE9,-0");
  ztbFine({"import", "out.rxf", "--from", "a.csv", "--parameter", "v(I)"});
  const ztb::Database database = open();
  EXPECT_EQ(database.symbol("v").find("x \"y\"")->level(), 1.5);
  EXPECT_EQ(database.symbol("v").find("  lead")->level(), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::signbit(database.symbol("v").find("\xE9t\xE9")->level()));
}

TEST_F(ImportTest, TakesAQuotedEmptyLabelAndCutsTrailingBlanks) {
  write("a.csv", "i,v\n\"\",1\nx  ,2\n");
  ztbFine({"import", "out.rxf", "--from", "a.csv", "--parameter", "v(i)"});
  const ztb::Database database = open();
  EXPECT_EQ(database.label(1), "");
  EXPECT_EQ(database.label(2), "x");
  EXPECT_EQ(database.symbol("v").find("")->level(), 1);
}

TEST_F(ImportTest, TakesALabelOf63CharsAndATextOf255) {
  const std::string label(63, 'l');
  const std::string text(255, 't');
  write("a.csv", "i,t\n" + label + "," + text + "\n");
  ztbFine({"import", "out.rxf", "--from", "a.csv", "--set", "i : t"});
  EXPECT_EQ(open().symbol("i").find(label)->text(), text);
}

TEST_F(ImportTest, WarnsOfATextThatDiffersInCaseOnly) {
  write("a.csv", "i,t\nx,Kilo\ny,kilo\n");
  const Outcome outcome = ztb({"import", "out.rxf", "--from", "a.csv", "--set", "i : t"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors,
            "a.csv:3:3: warning: text 'kilo' is kept as 'Kilo', its first spelling\n");
  EXPECT_EQ(open().symbol("i").find("y")->text(), "Kilo");
}

TEST_F(ImportTest, ReplacesAnOlderFile) {
  write("a.csv", "i\nx\n");
  ztbFine({"import", "out.rxf", "--from", "a.csv", "--set", "i"});
  ztbFine({"import", "out.rxf", "--from", "a.csv", "--set", "j(i)"});
  EXPECT_FALSE(open().findSymbol("i"));
  EXPECT_TRUE(open().findSymbol("j"));
}

TEST_F(ImportTest, ChecksDomainsWhenAsked) {
  write("i.csv", "i\nx\ny\n");
  write("p.csv", "i,v\ny,1\nx,2\n");
  ztbFine({"import", "out.rxf", "--check-domains", "--from", "i.csv", "--set", "i", "--from",
           "p.csv", "--parameter", "v(i)"});
  EXPECT_EQ(open().symbol("v").recordCount(), 2);
}

// A file holds the domains of a symbol either all checked or as names.
TEST_F(ImportTest, KeepsNamesWithoutASetWhenCheckingUnlessBesideASet) {
  write("i.csv", "i\nx\n");
  write("p.csv", "i,from,to,v\nx,a,b,1\n");
  const Outcome outcome =
      ztb({"import", "out.rxf", "--check-domains", "--from", "i.csv", "--set", "i", "--from",
           "p.csv", "--parameter", "v(from, to)", "--parameter", "w(i, to) = v"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(
      outcome.errors,
      "ztb: warning: --parameter w(i, to) = v: a position is not called 'to': with --check-domains "
      "a name without a set is not kept beside a set\n");
  EXPECT_EQ(ztbFine({"show", "out.rxf", "v", "--csv"}), "from,to,value\na,b,1\n");
  EXPECT_EQ(ztbFine({"show", "out.rxf", "w", "--csv"}), "i,dim_2,value\nx,b,1\n");
  EXPECT_TRUE(open().symbol("w").domains()[0].set);
}

// Rows that come in no order, 200,000 of them, end up as the records that they are.
TEST_F(ImportTest, ReadsTwoHundredThousandRows) {
  std::string csv = "a,b,v\n";
  for (int row = 0; row < 200000; ++row) {
    const int shuffled = static_cast<int>(row * 7919LL % 200000);
    csv += 'a' + std::to_string(shuffled / 400) + ",b" + std::to_string(shuffled % 400) + ',' +
           std::to_string(shuffled) + ".5\n";
  }
  write("big.csv", csv);
  EXPECT_EQ(ztbFine({"import", "out.rxf", "--from", "big.csv", "--parameter", "v(a, b)"}),
            "out.rxf: 1 symbol, 900 labels, 200000 records\n");
  const ztb::Database database = open();
  const ztb::Symbol v = database.symbol("v");
  EXPECT_EQ(v.recordCount(), 200000);
  EXPECT_EQ(v.find("a0", "b0")->level(), 0.5);
  EXPECT_EQ(v.find("a499", "b399")->level(), 199999.5);
  double sum = 0;
  for (const auto [keys, values] : v.rows()) {
    sum += values[0];
  }
  EXPECT_EQ(sum, 20000000000.0);
}

}  // namespace
