#include <cmath>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;

class SqlTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol food = database.addSet("food", {"*"});
    food.add("Milk").setText("quarts");
    food.add("Tofu");
    ztb::Symbol price = database.addParameter("price", {food});
    price.add("Milk").setLevel(11.5);
    price.add("Tofu").setLevel(1e300);
    ztb::Symbol holds = database.addParameter("holds", {food, "*"});
    holds.add("Milk", "iron").setLevel(1);
    holds.add("Milk", "kcal").setLevel(3);
    holds.add("Tofu", "iron").setLevel(-INFINITY);
    database.write(path("diet.rxf"));
    price.find("Milk")->setLevel(12);
    database.write(path("main.rxf"));
  }

  std::string sql(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"sql", "diet.rxf"});
    return ztbFine(arguments);
  }
};

TEST_F(SqlTest, PrintsATableForPeople) {
  EXPECT_EQ(sql({"select food, dim_2 as nutrient, value from holds where food = 'MILK'"}),
            "food  nutrient  value\n"
            "----  --------  -----\n"
            "Milk  iron          1\n"
            "Milk  kcal          3\n");
  EXPECT_EQ(sql({"select food from food where food = 'none'"}),
            "food\n"
            "----\n");
}

TEST_F(SqlTest, PrintsCsvAndJson) {
  const std::string query =
      "select food, value, 7 as n, '' as t from holds where dim_2 = 'iron' "
      "union all select food, value, 8, null from price where food = 'tofu'";
  EXPECT_EQ(sql({query, "--csv"}), "food,value,n,t\nMilk,1,7,\"\"\nTofu,-inf,7,\"\"\nTofu,,8,\n");
  EXPECT_EQ(sql({query, "--json"}),
            "[\n"
            "  {\"food\":\"Milk\",\"value\":1.0,\"n\":7,\"t\":\"\"},\n"
            "  {\"food\":\"Tofu\",\"value\":\"-inf\",\"n\":7,\"t\":\"\"},\n"
            "  {\"food\":\"Tofu\",\"value\":null,\"n\":8,\"t\":null}\n"
            "]\n");
  EXPECT_EQ(sql({"select * from food where food = 'x'", "--json"}), "[]\n");
}

TEST_F(SqlTest, QueriesSeveralFilesByTheirNames) {
  EXPECT_EQ(
      ztbFine({"sql", "diet.rxf", "main.rxf", "diet.rxf",
               "select a.value as a, b.value as b from diet.price a join main_2.price b using "
               "(food) join diet_2.price using (food) where food = 'milk'",
               "--csv"}),
      "a,b\n11.5,12\n");
}

TEST_F(SqlTest, PrintsBytesAsSqlSpellsThemAndTextsWhole) {
  const std::string query = "select x'41ff00' as b, 'a' || char(0) || 'b' as t, x'' as e";
  EXPECT_EQ(sql({query}),
            "b          t       e\n"
            "---------  ------  ---\n"
            "x'41ff00'  a\\x00b  x''\n");
  EXPECT_EQ(sql({query, "--csv"}), std::string("b,t,e\nx'41ff00',a\0b,x''\n", 24));
  EXPECT_EQ(sql({query, "--json"}),
            "[\n  {\"b\":\"x'41ff00'\",\"t\":\"a\\u0000b\",\"e\":\"x''\"}\n]\n");
  expectFails(1, "ztb: --into t(c) = v: row 1: label 'a\\x00b' has a zero byte\n",
              {"sql", "diet.rxf", "select 'a' || char(0) || 'b' as c, 1 as v", "--into", "t(c) = v",
               "--out", "new.rxf"});
}

TEST_F(SqlTest, MakesASymbolOfTheRows) {
  EXPECT_EQ(sql({"select food, sum(value) as total from holds group by food order by 2", "--into",
                 "total(food) \"All of it\"", "--out", "new.rxf"}),
            "new.rxf: total, 2 records\n");
  EXPECT_EQ(ztbFine({"show", "new.rxf", "total"}),
            "parameter total(food): All of it\n"
            "\n"
            "food  value\n"
            "----  -----\n"
            "Milk      4\n"
            "Tofu   -inf\n"
            "\n"
            "2 records\n");
  // All else is there as before.
  EXPECT_EQ(ztbFine({"sql", "new.rxf", "select count(*) as n from holds", "--csv"}), "n\n3\n");
  const tooltest::Outcome nulls = ztb({"sql", "diet.rxf", "select value, food from price", "--into",
                                       "p2(food) = value", "--out", "new.rxf"});
  EXPECT_EQ(nulls.output, "new.rxf: p2, 2 records\n");
  EXPECT_EQ(nulls.errors,
            "ztb: warning: p2: 1 null is na: in SQL undef, na and any other NaN are null\n");
  EXPECT_EQ(ztbFine({"show", "new.rxf", "p2", "--csv"}), "food,value\nMilk,11.5\nTofu,na\n");
  const tooltest::Outcome rounded =
      ztb({"sql", "diet.rxf",
           "with v(k, v) as (values ('a', 9007199254740992), ('b', 9007199254740993), "
           "('c', 9223372036854775807), ('d', -9223372036854775807 - 1)) select * from v",
           "--into", "p3(k) = v", "--out", "new.rxf"});
  EXPECT_EQ(rounded.errors,
            "ztb: warning: p3: 2 whole numbers are no double, the nearest one is taken\n");
  EXPECT_EQ(ztbFine({"show", "new.rxf", "p3", "--csv"}),
            "k,value\na,9007199254740992\nb,9007199254740992\nc,9223372036854775808\n"
            "d,-9223372036854775808\n");
  // Columns of labels alone make a set; the file may be the one that is read.
  EXPECT_EQ(sql({"select distinct dim_2 as nutrient from holds", "--into",
                 "nutrient(nutrient in *)", "--out", "diet.rxf"}),
            "diet.rxf: nutrient, 2 records\n");
  EXPECT_EQ(sql({"select nutrient from nutrient", "--csv"}), "nutrient\niron\nkcal\n");
}

TEST_F(SqlTest, TellsWhatIsWrong) {
  expectFails(1, "ztb: no such table: pric\n", {"sql", "diet.rxf", "select * from pric"});
  expectFails(1, "ztb: no such table: main.price; the databases are called diet, main_2\n",
              {"sql", "diet.rxf", "main.rxf", "select * from main.price"});
  expectFails(1, "ztb: Error opening RXF file: No such file: none.rxf\n",
              {"sql", "none.rxf", "select 1"});
  expectFails(1, "ztb: a query that gives rows is expected, as select does\n",
              {"sql", "diet.rxf", "drop table price"});
  expectFails(2, "ztb: the query has a parameter, which nothing is given for\n",
              {"sql", "diet.rxf", "select ?"});
  expectFails(2, "ztb: --into names the new symbol and --out its file: give both or none\n",
              {"sql", "diet.rxf", "select 1", "--into", "a(b)"});
  expectFails(2, "ztb: --into a(b): the query gives no column b\n",
              {"sql", "diet.rxf", "select 1 as x", "--into", "a(b)", "--out", "new.rxf"});
  expectFails(
      2, "ztb: --into a(food): which column has the values? write = COLUMN behind it\n",
      {"sql", "diet.rxf", "select food, 1, 2 from food", "--into", "a(food)", "--out", "n"});
  expectFails(1, "ztb: --into a(food): row 2: Record (\"Milk\") exists already for symbol a\n",
              {"sql", "diet.rxf", "select food, value from holds", "--into", "a(food)", "--out",
               "new.rxf"});
  expectFails(1, "ztb: --into a(food): row 1: 'quarts' is no number\n",
              {"sql", "diet.rxf", "select * from food", "--into", "a(food)", "--out", "new.rxf"});
  expectFails(
      1, "ztb: --into a(food): row 1: a label is null\n",
      {"sql", "diet.rxf", "select null as food, 1 as a", "--into", "a(food)", "--out", "new.rxf"});
  expectFails(1, "ztb: --into a(x): row 1: a label is bytes, x'41', no text\n",
              {"sql", "diet.rxf", "select x'41' as x, 1", "--into", "a(x)", "--out", "new.rxf"});
  expectFails(2,
              "ztb: --into a: '(' and the key columns are expected; a scalar is written with () at "
              "char 2\n",
              {"sql", "diet.rxf", "select 1 as v", "--into", "a", "--out", "new.rxf"});
  expectFails(
      1, "ztb: --into a(): row 2: one row is expected, since there are no key columns\n",
      {"sql", "diet.rxf", "select 1 as v union all select 2", "--into", "a()", "--out", "new.rxf"});
  expectFails(2,
              "ztb: --json: two columns are called 'food', which an object cannot have: name one "
              "with as\n",
              {"sql", "diet.rxf", "select food, 1, food from food", "--json"});
  EXPECT_FALSE(exists("new.rxf"));
}

}  // namespace
