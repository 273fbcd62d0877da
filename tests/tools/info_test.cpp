#include <nlohmann/json.hpp>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;

class InfoTest : public ProgramTest {
 protected:
  // A set of two labels, an alias of it, a parameter over both, a variable and a scalar.
  void makeFile() const {
    ztb::Database database;
    ztb::Symbol food = database.addSet("food", {"*"}, "Things to eat");
    food.add("Milk");
    food.add("Eggs");
    database.addAlias("f", food);
    database.addParameter("price", {food}, "Cents").add("Milk").setLevel(11);
    database.addVariable("buy", 3, {food, "*"});
    database.addParameter("pi", {});
    database.mergeLabel("unused");
    database.write(path("a.rxf"));
  }
};

TEST_F(InfoTest, ListsSymbolsAndTotals) {
  makeFile();
  EXPECT_EQ(ztbFine({"info", "a.rxf"}),
            "Symbol  Type       Dim  Domains  Records  Store  Text\n"
            "------  ---------  ---  -------  -------  -----  -------------\n"
            "food    set          1  *              2  map    Things to eat\n"
            "f       alias        1  = food\n"
            "price   parameter    1  food           1  map    Cents\n"
            "buy     variable     2  food, *        0  map\n"
            "pi      parameter    0                 0  map\n"
            "\n"
            "a.rxf: 5 symbols (1 set, 2 parameters, 1 variable, 1 alias), 3 labels, 3 records\n");
}

TEST_F(InfoTest, PrintsJson) {
  makeFile();
  const auto json = nlohmann::json::parse(ztbFine({"info", "a.rxf", "--json"}));
  EXPECT_EQ(json["symbol_count"], 5);
  EXPECT_EQ(json["label_count"], 3);
  EXPECT_EQ(json["record_count"], 3);
  ASSERT_EQ(json["symbols"].size(), 5U);
  EXPECT_EQ(json["symbols"][0]["name"], "food");
  EXPECT_EQ(json["symbols"][0]["records"], 2);
  EXPECT_EQ(json["symbols"][1]["alias_of"], "food");
  EXPECT_FALSE(json["symbols"][1].contains("records"));
  EXPECT_EQ(json["symbols"][2]["store"], "map");
  EXPECT_FALSE(json["symbols"][1].contains("store"));
  EXPECT_EQ(json["symbols"][3]["type"], "variable");
  EXPECT_EQ(json["symbols"][3]["domains"], (nlohmann::json{"food", "*"}));
  EXPECT_EQ(json["symbols"][3]["user_info"], 3);
}

TEST_F(InfoTest, TellsTotalsOfAnEmptyFile) {
  ztb::Database().write(path("a.rxf"));
  EXPECT_EQ(ztbFine({"info", "a.rxf"}), "a.rxf: 0 symbols, 0 labels, 0 records\n");
}

TEST_F(InfoTest, NamesAFileThatIsNotThere) {
  expectFails(1, "ztb: No such file: none.rxf\n", {"info", "none.rxf"});
}

TEST_F(InfoTest, NamesAFolder) {
  expectFails(1, "ztb: Is a folder: .\n", {"info", "."});
}

TEST_F(InfoTest, NamesAFileThatIsNoRxfFile) {
  write("a.csv", "food\nMilk\n");
  expectFails(1, "ztb: Not an RXF file: a.csv\n", {"info", "a.csv"});
}

}  // namespace
