// ztb merge, concat, rename, where, aggregate and show --sort, run as a user runs them.

#include <limits>
#include <string>
#include <vector>
#include <ztb/rxf.hpp>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::ProgramTest;

class DataSetTest : public ProgramTest {
 protected:
  // Sets, a parameter, a variable, an alias and a scalar; b.rxf has its labels in another order.
  void SetUp() override {
    ztb::Database a;
    ztb::Symbol food = a.addSet("food", {"*"}, "Foods");
    food.add("Milk").setText("1 qt.");
    food.add("Tofu");
    ztb::Symbol price = a.addParameter("price", {food}, "Cents");
    price.add("Milk").setLevel(11);
    price.add("Tofu").setLevel(-0.0);
    a.addAlias("dish", food);
    a.addParameter("rate", {}).add().setLevel(2);
    a.write(path("a.rxf"), true);
    ztb::Database b;
    b.mergeLabel("unused");
    food = b.addSet("food", {"*"});
    food.add("Ham").setText("1 lb.");
    food.add("milk");
    price = b.addParameter("price", {food});
    price.add("Ham").setLevel(1e300);
    price.add("milk").setLevel(11);
    ztb::Symbol x = b.addVariable("x", 3, {food});
    x.add("Ham").setMarginal(0.5);
    b.addParameter("rate", {}).add().setLevel(2);
    b.write(path("b.rxf"), true);
  }

  std::string csv(const std::string& file, const std::string& symbol) const {
    return ztbFine({"show", file, symbol, "--csv"});
  }
  std::vector<std::string> labels(const std::string& file) const {
    const ztb::RxfFile opened(path(file));
    std::vector<std::string> result;
    for (int number = 1; number <= opened.labelCount(); ++number) {
      result.emplace_back(opened.label(number));
    }
    return result;
  }
};

using Labels = std::vector<std::string>;

TEST_F(DataSetTest, mergePutsSymbolsTogether) {
  EXPECT_EQ(ztb({"merge", "a.rxf", "b.rxf", "c.rxf"}).output,
            "c.rxf: 5 symbols, 4 labels, 8 records\n");
  EXPECT_EQ(labels("c.rxf"), (Labels{"Milk", "Tofu", "unused", "Ham"}));
  EXPECT_EQ(csv("c.rxf", "food"), "food,text\nMilk,1 qt.\nTofu,\nHam,1 lb.\n");
  EXPECT_EQ(csv("c.rxf", "price"), "food,value\nMilk,11\nTofu,-0\nHam,undef\n");
  EXPECT_EQ(csv("c.rxf", "x"), "food,level,marginal,lower,upper,scale\nHam,0,0.5,0,inf,1\n");
  EXPECT_EQ(csv("c.rxf", "rate"), "value\n2\n");
  const ztb::RxfFile c(path("c.rxf"));
  EXPECT_EQ(c["price"].domainKind, ZTB_RXF_DOMAIN_CHECKED);
  EXPECT_EQ(c["price"].text, "Cents");
  EXPECT_EQ(c["x"].userInfo, 3);
  EXPECT_EQ(c["dish"].aliasTarget, c["food"].number);
}

TEST_F(DataSetTest, mergeTellsOfSpellings) {
  EXPECT_EQ(ztb({"merge", "a.rxf", "b.rxf", "c.rxf"}).errors,
            "ztb: 1 spelling kept as the first file has them: only the case of letters differs\n");
}

TEST_F(DataSetTest, mergeTellsAllConflictsAndWritesNothing) {
  ztb::Database b;
  ztb::Symbol food = b.addSet("food", {"*"});
  food.add("Tofu").setText("a block");
  food.add("Milk").setText("1 l");
  b.addParameter("price", {"food"}).add("Milk").setLevel(12.5);
  b.addSet("rate", {"*"});
  b.addParameter("dish", {"*"});
  b.write(path("b.rxf"));
  write("c.rxf", "old");
  expectFails(1,
              "rate: parameter in a.rxf, set in b.rxf\n"
              "dish: alias in a.rxf, parameter in b.rxf\n"
              "food(\"Milk\"): '1 qt.' in a.rxf, '1 l' in b.rxf\n"
              "price(\"Milk\"): 11 in a.rxf, 12.5 in b.rxf\n"
              "ztb: c.rxf: not written: 4 conflicts between the files\n",
              {"merge", "a.rxf", "b.rxf", "c.rxf"});
  expectFails(1,
              "rate: parameter in a.rxf, set in b.rxf\n"
              "... and 3 more\n"
              "ztb: c.rxf: not written: 4 conflicts between the files\n",
              {"merge", "a.rxf", "b.rxf", "c.rxf", "--max-errors", "1"});
  EXPECT_EQ(read("c.rxf"), "old");
}

TEST_F(DataSetTest, mergeTellsOfPositionsDomainsAndSubtypes) {
  ztb::Database a;
  a.addParameter("p", {"i", "j"});
  a.addParameter("q", {"i"});
  ztb::Symbol x = a.addVariable("x", 3, {});
  x.add().setUpper(3);
  ztb::Symbol y = a.addVariable("y", 5, {});
  y.add().setUpper(3);
  a.write(path("a.rxf"));
  ztb::Database b;
  b.addParameter("p", {"i"});
  b.addParameter("q", {"j"});
  b.addVariable("x", 5, {});
  y = b.addVariable("y", 5, {});
  y.add().setUpper(4);
  b.write(path("b.rxf"));
  expectFails(1,
              "p: 2 positions in a.rxf, 1 position in b.rxf\n"
              "q: q(i) in a.rxf, q(j) in b.rxf\n"
              "x: subtype 3 in a.rxf, 5 in b.rxf\n"
              "y: upper 3 in a.rxf, 4 in b.rxf\n"
              "ztb: c.rxf: not written: 4 conflicts between the files\n",
              {"merge", "a.rxf", "b.rxf", "c.rxf"});
}

TEST_F(DataSetTest, mergePrefersAFile) {
  ztb::Database b;
  b.addParameter("rate", {}).add().setLevel(3);
  b.write(path("b.rxf"));
  ztbFine({"merge", "a.rxf", "b.rxf", "c.rxf", "--prefer", "first"});
  EXPECT_EQ(csv("c.rxf", "rate"), "value\n2\n");
  // The result may be one of the files.
  ztbFine({"merge", "a.rxf", "b.rxf", "a.rxf", "--prefer", "last"});
  EXPECT_EQ(csv("a.rxf", "rate"), "value\n3\n");
  EXPECT_EQ(csv("a.rxf", "price"), "food,value\nMilk,11\nTofu,-0\n");
  expectFails(2, "ztb: --prefer b.rxf: expected first or last\n",
              {"merge", "a.rxf", "b.rxf", "c.rxf", "--prefer", "b.rxf"});
}

TEST_F(DataSetTest, mergeGivesEachFileACase) {
  EXPECT_EQ(ztb({"merge", "a.rxf", "b.rxf", "c.rxf", "--case", "scenario"}).status, 0);
  EXPECT_EQ(labels("c.rxf"), (Labels{"a", "b", "Milk", "Tofu", "unused", "Ham"}));
  EXPECT_EQ(csv("c.rxf", "scenario"), "scenario,text\na,\nb,\n");
  EXPECT_EQ(csv("c.rxf", "food"), "food,text\nMilk,1 qt.\nTofu,\nHam,1 lb.\n");
  EXPECT_EQ(csv("c.rxf", "price"),
            "scenario,food,value\na,Milk,11\na,Tofu,-0\nb,Milk,11\nb,Ham,undef\n");
  EXPECT_EQ(csv("c.rxf", "rate"), "scenario,value\na,2\nb,2\n");
  expectFails(2, "ztb: --case s: a.rxf and a.rxf would both be the case a\n",
              {"merge", "a.rxf", "a.rxf", "c.rxf", "--case", "s"});
  expectFails(1,
              "food: is a symbol of a.rxf; give --case another name\n"
              "ztb: d.rxf: not written: 1 conflict between the files\n",
              {"merge", "a.rxf", "b.rxf", "d.rxf", "--case", "food"});
}

TEST_F(DataSetTest, damagedAndMissingInputsWriteNothing) {
  std::string bytes = read("a.rxf");
  bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
  write("bad.rxf", bytes);
  for (const std::string command : {"merge", "concat"}) {
    const Outcome outcome = ztb({command, "b.rxf", "bad.rxf", "c.rxf"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errors.find("bad.rxf"), std::string::npos) << outcome.errors;
  }
  EXPECT_EQ(ztb({"where", "bad.rxf", "c.rxf", "--where", "value > 1"}).status, 1);
  EXPECT_EQ(ztb({"rename", "bad.rxf", "c.rxf", "price = cost"}).status, 1);
  EXPECT_EQ(ztb({"aggregate", "bad.rxf", "price", "--sum", "--out", "c.rxf"}).status, 1);
  EXPECT_FALSE(exists("c.rxf"));
  expectFails(1, "ztb: none.rxf: cannot be read: No such file or directory\n",
              {"merge", "a.rxf", "none.rxf", "c.rxf"});
  // All files that cannot be read are told.
  write("no.rxf", "no such file");
  expectFails(1,
              "none.rxf: cannot be read: No such file or directory\n"
              "Not an RXF file: no.rxf\n"
              "ztb: c.rxf: not written: 2 files cannot be read\n",
              {"merge", "none.rxf", "a.rxf", "no.rxf", "c.rxf"});
}

TEST_F(DataSetTest, concatAppendsParts) {
  ztb::Database february;
  ztb::Symbol food = february.addSet("food", {"*"});
  food.add("Ham");
  food.add("Milk");
  february.addParameter("price", {food}).add("Ham").setLevel(4);
  february.addAlias("dish", food);
  february.addParameter("rate", {}).add().setLevel(2);
  february.write(path("b.rxf"), true);
  EXPECT_EQ(ztbFine({"concat", "a.rxf", "b.rxf", "c.rxf"}),
            "c.rxf: 4 symbols, 3 labels, 7 records\n");
  EXPECT_EQ(csv("c.rxf", "price"), "food,value\nMilk,11\nTofu,-0\nHam,4\n");
  EXPECT_EQ(csv("c.rxf", "food"), "food,text\nMilk,1 qt.\nTofu,\nHam,\n");
  EXPECT_EQ(csv("c.rxf", "rate"), "value\n2\n");
}

TEST_F(DataSetTest, concatTakesNoRecordTwiceAndWantsAllSymbols) {
  expectFails(1,
              "dish: is in a.rxf, not in b.rxf\n"
              "x: is in b.rxf, not in a.rxf\n"
              "price(\"Milk\"): stands in a.rxf and in b.rxf\n"
              "ztb: c.rxf: not written: 3 conflicts between the files\n",
              {"concat", "a.rxf", "b.rxf", "c.rxf"});
}

TEST_F(DataSetTest, renameChangesNamesEverywhere) {
  EXPECT_EQ(ztbFine({"rename", "a.rxf", "a.rxf", "food=meal", "price = dish", "dish = price",
                     "--label", "Milk = \"whole = milk\""}),
            "a.rxf: 4 symbols, 2 labels, 5 records\n");
  EXPECT_EQ(csv("a.rxf", "dish"), "meal,value\nwhole = milk,11\nTofu,-0\n");
  const ztb::RxfFile file(path("a.rxf"));
  EXPECT_EQ(file["price"].aliasTarget, file["meal"].number);
  EXPECT_EQ(file["dish"].domainKind, ZTB_RXF_DOMAIN_CHECKED);
}

TEST_F(DataSetTest, renameTellsOfClashes) {
  expectFails(1,
              "a.rxf: no symbol 'cost'\n"
              "a.rxf: symbol 'Price' gets two names\n"
              "a.rxf: two symbols would have the name 'FOOD'\n"
              "a.rxf: two labels would have the name 'milk'\n"
              "ztb: c.rxf: not written: 4 problems with the new names\n",
              {"rename", "a.rxf", "c.rxf", "cost = a", "price = FOOD", "Price = b", "--label",
               "Tofu = milk"});
  expectFails(2,
              "ztb: 'price': expected OLD = NEW, each in double quotes where it has an = or blanks "
              "at its ends\n",
              {"rename", "a.rxf", "c.rxf", "price"});
  expectFails(2, "ztb: nothing to rename: give 'OLD = NEW' for symbols, or --label 'OLD = NEW'\n",
              {"rename", "a.rxf", "c.rxf"});
  EXPECT_FALSE(exists("c.rxf"));
}

class WhereTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol i = database.addSet("i", {"*"});
    ztb::Symbol p = database.addParameter("p", {i, "year"});
    const std::vector<double> values{1,
                                     -2.5,
                                     1e300,
                                     std::numeric_limits<double>::quiet_NaN(),
                                     std::numeric_limits<double>::infinity(),
                                     -std::numeric_limits<double>::infinity(),
                                     std::numeric_limits<double>::denorm_min(),
                                     0};
    for (std::size_t record = 0; record < values.size(); ++record) {
      const std::string label =
          std::string("a*").substr(0, 1 + record % 2) + std::to_string(record);
      i.add(label).setText(record == 3 ? "third" : "");
      p.add(label, std::to_string(2020 + record)).setLevel(values[record]);
    }
    ztb::Symbol x = database.addVariable("x", 5, {i});
    x.add("a0").setMarginal(2);
    x.add("a2").setLower(-7);
    database.write(path("a.rxf"), true);
  }

  // The labels of the years of p that fulfil a condition, behind 202.
  std::string years(const std::string& condition) const {
    ztbFine({"where", "a.rxf", "b.rxf", "--where", condition});
    const ztb::RxfFile file(path("b.rxf"));
    std::string result;
    for (ztb::RxfRecords records(file, file["p"]); records.next();) {
      for (const int year : records.keys(1)) result += file.label(year).substr(3);
    }
    return result;
  }
};

TEST_F(WhereTest, comparesValues) {
  EXPECT_EQ(years("value > 0"), "046");
  EXPECT_EQ(years("value >= 0"), "0467");
  EXPECT_EQ(years("value <= -2.5"), "15");
  EXPECT_EQ(years("value = undef"), "2");
  EXPECT_EQ(years("VALUE == na"), "3");
  EXPECT_EQ(years("value != NA"), "0124567");
  EXPECT_EQ(years("value = 0"), "7");
  EXPECT_EQ(years("value in (eps, inf,-inf)"), "456");
  EXPECT_EQ(years("value not in (eps, 1)"), "123457");
  EXPECT_EQ(years("not (value < 5)"), "234");
  EXPECT_EQ(years("value<>1 and value>-3 or 1 = a0"), "01467");
}

TEST_F(WhereTest, comparesPositions) {
  EXPECT_EQ(years("i = \"A*0\" or i = 'a*6'"), "06");
  EXPECT_EQ(years("i = \"a\\*1\""), "1");
  EXPECT_EQ(years("i in ('\\\\', 'a0')"), "0");  // a backslash, as it stands
  EXPECT_EQ(years("2 = 2021"), "1");
  EXPECT_EQ(years("year >= 2026"), "67");
  EXPECT_EQ(years("year in (2020, \"*7\")"), "07");
  EXPECT_EQ(years("\"i\" != \"a*\""), "");
  EXPECT_EQ(years("i < 3"), "");
}

TEST_F(WhereTest, looksAtSymbolsThatHaveWhatItNames) {
  EXPECT_EQ(ztbFine({"where", "a.rxf", "b.rxf", "--where", "marginal = 2 or lower < 0"}),
            "b.rxf: 3 symbols, 16 labels, 18 records\n");
  EXPECT_EQ(ztbFine({"where", "a.rxf", "b.rxf", "--where", "marginal = 2"}),
            "b.rxf: 3 symbols, 16 labels, 17 records\n");
  ztbFine({"where", "a.rxf", "b.rxf", "--where", "text = \"TH*\""});
  EXPECT_EQ(ztbFine({"show", "b.rxf", "i", "--csv"}), "i,text\na*3,third\n");
  // What i has lost stands in p still.
  EXPECT_EQ(ztb::RxfFile(path("b.rxf"))["p"].domainKind, ZTB_RXF_DOMAIN_NAMES);
  ztbFine({"where", "a.rxf", "b.rxf", "--where", "i = a0", "--symbol", "p"});
  EXPECT_EQ(ztbFine({"show", "b.rxf", "p", "--csv"}), "i,year,value\na0,2020,1\n");
  EXPECT_EQ(ztb::RxfFile(path("b.rxf"))["i"].recordCount, 8);
}

TEST_F(WhereTest, tellsWhereAConditionIsWrong) {
  const auto fails = [this](const std::string& condition, const std::string& what) {
    expectFails(2, "ztb: --where " + condition + ": " + what + "\n",
                {"where", "a.rxf", "b.rxf", "--where", condition});
  };
  fails("value > x", "column 9: 'x' is not a number");
  fails("value >> 3", "column 8: expected a number");
  fails("value 3", "column 7: expected a comparison or in");
  fails("value > 3 or", "column 13: expected a field, the name or number of a position, not or (");
  fails("(value > 3", "column 11: expected )");
  fails("value > 3 value", "column 11: expected and, or, or the end");
  fails("i = \"Milk", "column 5: the quote that opens here is never closed");
  fails("i not = 3", "column 7: expected in");
  fails("i = \"a\\\"", "column 5: ends in a backslash, which takes a char behind it");
  fails("i = '\\\\\\'", "column 5: ends in a backslash, which takes a char behind it");
  fails("i = ,", "column 5: expected a label");
  fails("nothing = 3",
        "no symbol of a.rxf has all fields and positions that it names, such as 'nothing'");
  expectFails(2, "ztb: --where scale = 1: p has no field or position 'scale'\n",
              {"where", "a.rxf", "b.rxf", "--where", "scale = 1", "--symbol", "p"});
  EXPECT_FALSE(exists("b.rxf"));
}

class AggregateTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol i = database.addSet("i", {"*"});
    i.add("a");
    i.add("b");
    ztb::Symbol p = database.addParameter("p", {i, "j"});
    p.add("a", "u").setLevel(1e16);
    p.add("a", "v").setLevel(1);
    p.add("a", "w").setLevel(-1e16);
    p.add("b", "v").setLevel(-3);
    p.add("b", "w").setLevel(0.5);
    ztb::Symbol s = database.addParameter("s", {"case", "*"});
    const double na = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const double eps = std::numeric_limits<double>::denorm_min();
    const double undef = 1e300;
    const std::vector<std::vector<double>> cases{{1, na},     {na, undef},    {inf, 2},
                                                 {inf, -inf}, {eps, eps},     {eps, 3},
                                                 {0, eps},    {inf, -inf, na}};
    for (std::size_t number = 0; number < cases.size(); ++number) {
      for (std::size_t at = 0; at < cases[number].size(); ++at) {
        s.add("c" + std::to_string(number), std::to_string(at)).setLevel(cases[number][at]);
      }
    }
    ztb::Symbol x = database.addVariable("x", 5, {i});
    x.add("a").setUpper(4);
    x.add("b").setUpper(6);
    database.write(path("a.rxf"), true);
  }

  std::string csv(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"aggregate", "a.rxf"});
    arguments.emplace_back("--csv");
    return ztbFine(arguments);
  }
};

TEST_F(AggregateTest, sumsUpByPositions) {
  EXPECT_EQ(csv({"p", "--by", "i", "--sum"}), "i,value\na,1\nb,-2.5\n");
  EXPECT_EQ(csv({"p", "--by", "j", "--sum"}), "j,value\nu,1e+16\nv,-2\nw,-1e+16\n");
  EXPECT_EQ(csv({"p", "--by", "2,1", "--count"}), "j,i,value\nu,a,1\nv,a,1\nv,b,1\nw,a,1\nw,b,1\n");
}

TEST_F(AggregateTest, knowsMeanMinMaxAndCount) {
  EXPECT_EQ(csv({"p", "--by", "i", "--mean"}), "i,value\na,0.3333333333333333\nb,-1.25\n");
  EXPECT_EQ(csv({"p", "--by", "i", "--min"}), "i,value\na,-1e+16\nb,-3\n");
  EXPECT_EQ(csv({"p", "--max"}), "value\n1e+16\n");
  EXPECT_EQ(csv({"i", "--count"}), "value\n2\n");
  EXPECT_EQ(csv({"x", "--field", "upper", "--sum"}), "value\n10\n");
}

TEST_F(AggregateTest, hasRulesForSpecialValues) {
  EXPECT_EQ(csv({"s", "--by", "case", "--sum"}),
            "case,value\nc0,na\nc1,undef\nc2,inf\nc3,undef\nc4,eps\nc5,3\nc6,0\nc7,na\n");
  EXPECT_EQ(csv({"s", "--by", "case", "--min"}),
            "case,value\nc0,na\nc1,undef\nc2,2\nc3,-inf\nc4,eps\nc5,eps\nc6,0\nc7,na\n");
  EXPECT_EQ(csv({"s", "--by", "case", "--max", "--skip-na"}),
            "case,value\nc0,1\nc1,undef\nc2,inf\nc3,inf\nc4,eps\nc5,3\nc6,eps\nc7,inf\n");
}

TEST_F(AggregateTest, makesAFile) {
  EXPECT_EQ(ztbFine({"aggregate", "a.rxf", "p", "--by", "i", "--sum", "--out", "b.rxf"}),
            "b.rxf: 2 symbols, 16 labels, 4 records\n");
  const ztb::RxfFile file(path("b.rxf"));
  EXPECT_EQ(file["p_sum"].text, "sum of p(i, j)");
  EXPECT_EQ(file["p_sum"].domains, std::vector<std::string_view>{"i"});
  ztbFine({"aggregate", "a.rxf", "p", "--sum", "--out", "a.rxf", "--name", "all"});
  EXPECT_EQ(ztbFine({"show", "a.rxf", "all", "--csv"}), "value\n-1.5\n");
}

TEST_F(AggregateTest, tellsWhatItDoesNotTake) {
  expectFails(2, "ztb: --by k: p has no position 'k'; its positions are i, j\n",
              {"aggregate", "a.rxf", "p", "--by", "k", "--sum"});
  expectFails(2, "ztb: --by i,1: position '1' stands twice\n",
              {"aggregate", "a.rxf", "p", "--by", "i,1", "--sum"});
  expectFails(2, "ztb: give one of --sum, --mean, --min, --max and --count\n",
              {"aggregate", "a.rxf", "p"});
  expectFails(2, "ztb: give one of --sum, --mean, --min, --max and --count\n",
              {"aggregate", "a.rxf", "p", "--sum", "--max"});
  expectFails(2, "ztb: i is a set, whose elements can be counted only\n",
              {"aggregate", "a.rxf", "i", "--sum"});
  expectFails(2, "ztb: --field upper: p is a parameter, which has no fields\n",
              {"aggregate", "a.rxf", "p", "--sum", "--field", "upper"});
  expectFails(2, "ztb: --out: prints nothing; leave out --csv and --json\n",
              {"aggregate", "a.rxf", "p", "--sum", "--csv", "--out", "b.rxf"});
}

TEST_F(AggregateTest, showSortsByAValue) {
  const auto sorted = [this](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"show", "a.rxf"});
    arguments.emplace_back("--csv");
    return ztbFine(arguments);
  };
  EXPECT_EQ(sorted({"p", "--sort", "value"}),
            "i,j,value\na,w,-1e+16\nb,v,-3\nb,w,0.5\na,v,1\na,u,1e+16\n");
  EXPECT_EQ(sorted({"p", "--sort", "value", "--descending", "--head", "2"}),
            "i,j,value\na,u,1e+16\na,v,1\n");
  EXPECT_EQ(sorted({"s", "--sort", "value", "--slice", "*,1"}),
            "case,dim_2,value\nc3,1,-inf\nc7,1,-inf\nc4,1,eps\nc6,1,eps\nc2,1,2\nc5,1,3\nc1,1,"
            "undef\nc0,1,na\n");
  EXPECT_EQ(sorted({"s", "--sort", "value", "--descending", "--slice", "*,0"}),
            "case,dim_2,value\nc2,0,inf\nc3,0,inf\nc7,0,inf\nc0,0,1\nc4,0,eps\nc5,0,eps\nc6,0,"
            "0\nc1,0,na\n");
  EXPECT_EQ(sorted({"x", "--sort", "upper", "--descending", "--field", "upper"}),
            "i,upper\nb,6\na,4\n");
  expectFails(2, "ztb: --sort level: p(i, j) is a parameter, whose values are value\n",
              {"show", "a.rxf", "p", "--sort", "level"});
  expectFails(2, "ztb: --sort value: i(*) is a set, which has no values\n",
              {"show", "a.rxf", "i", "--sort", "value"});
  expectFails(2, "ztb: --descending: goes with --sort\n", {"show", "a.rxf", "p", "--descending"});
}

}  // namespace
