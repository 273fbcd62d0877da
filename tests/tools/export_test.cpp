#include <bit>
#include <filesystem>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;

class ExportTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol food = database.addSet("food", {"*"}, "Things, to eat");
    food.add("Ham, smoked").setText("1 lb.");
    database.mergeLabel("");
    food.add("");
    database.addAlias("f", food);
    database.addParameter("price", {food}).add("Ham, smoked").setLevel(27.4);
    database.addVariable("buy", 3, {food, "*"}).add("", "z");
    database.write(path("a.rxf"));
  }
};

TEST_F(ExportTest, WritesSymbolsLabelsAndRecords) {
  EXPECT_EQ(ztbFine({"export", "a.rxf", "--all", "--csv", "new/out"}),
            "new/out: 4 symbols, 3 labels, 4 records\n");
  EXPECT_EQ(read("new/out/_symbols.csv"),
            "symbol,type,dimension,domains,user_info,alias_of,text,records\n"
            "food,set,1,*,0,,\"Things, to eat\",2\n"
            "f,alias,1,*,0,food,,2\n"
            "price,parameter,1,food,0,,,1\n"
            "buy,variable,2,\"food,*\",3,,,1\n"
            "*,set,1,*,0,,All labels,3\n");
  EXPECT_EQ(read("new/out/_labels.csv"), "label\n\"Ham, smoked\"\n\"\"\nz\n");
  EXPECT_EQ(read("new/out/food.csv"), "food,text\n\"Ham, smoked\",1 lb.\n\"\",\n");
  EXPECT_EQ(read("new/out/price.csv"), "food,value\n\"Ham, smoked\",27.4\n");
  EXPECT_EQ(read("new/out/buy.csv"),
            "food,dim_2,level,marginal,lower,upper,scale\n\"\",z,0,0,0,inf,1\n");
  EXPECT_FALSE(exists("new/out/f.csv"));
}

TEST_F(ExportTest, WritesChosenSymbolsInTheOrderOfTheFile) {
  EXPECT_EQ(ztbFine({"export", "a.rxf", "price", "FOOD", "--csv", "out"}),
            "out: 2 symbols, 3 labels, 3 records\n");
  EXPECT_EQ(read("out/_symbols.csv"),
            "symbol,type,dimension,domains,user_info,alias_of,text,records\n"
            "food,set,1,*,0,,\"Things, to eat\",2\n"
            "price,parameter,1,food,0,,,1\n"
            "*,set,1,*,0,,All labels,3\n");
  EXPECT_FALSE(exists("out/buy.csv"));
}

TEST_F(ExportTest, WritesThroughNoLinkInItsFolder) {
  write("victim", "precious");
  std::filesystem::create_directory(path("out"));
  std::filesystem::create_symlink(path("victim"), path("out/price.csv"));
  std::filesystem::create_symlink(path("victim"), path("out/_symbols.csv"));
  expectFails(1, "ztb: out/price.csv: is a symbolic link, nothing is written through it\n",
              {"export", "a.rxf", "--all", "--csv", "out"});
  EXPECT_EQ(read("victim"), "precious");
  EXPECT_FALSE(exists("out/_symbols.csv"));
  std::filesystem::remove(path("out/price.csv"));
  std::filesystem::create_symlink(path("victim"), path("out/_symbols.csv"));
  ztbFine({"export", "a.rxf", "--all", "--csv", "out"});
  EXPECT_EQ(read("victim"), "precious");
  EXPECT_FALSE(std::filesystem::is_symlink(path("out/_symbols.csv")));
}

TEST_F(ExportTest, KeepsDomainNamesThatAreNoSymbolNames) {
  const std::vector<const char*> names{"my dom", "1999", "_x", "", "a,b", "say \"hi\""};
  {
    ztb::Database database;
    const std::vector<ztb::DomainArgument> domains(names.begin(), names.end());
    database.addSymbol("p", ztb::Type::parameter, domains, "", 0);
    database.write(path("names.rxf"));
  }
  ztbFine({"export", "names.rxf", "--all", "--csv", "out"});
  EXPECT_EQ(read("out/_symbols.csv"),
            "symbol,type,dimension,domains,user_info,alias_of,text,records\n"
            "p,parameter,6,\"my dom,1999,_x,\"\"\"\",\"\"a,b\"\",\"\"say "
            "\"\"\"\"hi\"\"\"\"\"\"\",0,,,0\n"
            "*,set,1,*,0,,All labels,0\n");
  ztbFine({"import", "back.rxf", "--dir", "out"});
  ztbFine({"diff", "names.rxf", "back.rxf"});
  ztbFine({"check", "back.rxf"});
  ztbFine({"copy", "names.rxf", "p", "copy.rxf"});
  ztbFine({"diff", "names.rxf", "copy.rxf"});
}

TEST_F(ExportTest, WantsTheSetOfAnAlias) {
  expectFails(2, "ztb: f is an alias of food: export food too\n",
              {"export", "a.rxf", "f", "--csv", "out"});
  EXPECT_EQ(ztbFine({"export", "a.rxf", "f", "food", "--csv", "out"}),
            "out: 2 symbols, 3 labels, 2 records\n");
}

TEST_F(ExportTest, RefusesToExportNothingOrBoth) {
  expectFails(2, "ztb: give the names of symbols, or --all\n", {"export", "a.rxf", "--csv", "out"});
  expectFails(2, "ztb: give the names of symbols, or --all\n",
              {"export", "a.rxf", "price", "--all", "--csv", "out"});
  expectFails(2, "ztb: *: the universe is no symbol to export; every export has all labels\n",
              {"export", "a.rxf", "*", "--csv", "out"});
  EXPECT_FALSE(exists("out"));
}

TEST_F(ExportTest, RefusesAnUnknownSymbolBeforeAnythingIsWritten) {
  expectFails(1, "ztb: a.rxf: Cannot find symbol nosuch\n",
              {"export", "a.rxf", "price", "nosuch", "--csv", "out"});
  EXPECT_FALSE(exists("out"));
}

TEST_F(ExportTest, NamesAFolderThatCannotBeMade) {
  write("out", "in the way");
  const tooltest::Outcome outcome = ztb({"export", "a.rxf", "--all", "--csv", "out/deeper"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: out/deeper: cannot be written: Not a directory\n");
}

}  // namespace
