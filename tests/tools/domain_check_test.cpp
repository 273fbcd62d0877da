#include <nlohmann/json.hpp>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::ProgramTest;

class DomainCheckTest : public ProgramTest {
 protected:
  // A set of two foods, an alias of it, and parameters that break their domains here and there.
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol food = database.addSet("food", {"*"});
    food.add("Milk");
    food.add("Tofu");
    const ztb::Symbol alias = database.addAlias("dish", food);
    ztb::Symbol price = database.addParameter("price", {food});
    price.add("Milk").setLevel(11);
    ztb::Symbol blends = database.addParameter("blends", {food, "*", alias});
    blends.add("Milk", "x", "Tofu").setLevel(1);
    blends.add("Lard", "x", "Milk").setLevel(2);
    blends.add("Milk", "x", "Lard").setLevel(3);
    blends.add("Lard", "x", "Ham").setLevel(4);
    ztb::Symbol best = database.addSet("best", {food});
    best.add("Lard");
    database.addParameter("loose", {"nowhere"}).add("Lard").setLevel(1);
    database.write(path("a.rxf"));
  }
};

TEST_F(DomainCheckTest, listsEachRecordWithThePositionsThatBreak) {
  const Outcome outcome = ztb({"check", "a.rxf", "--domains"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: a.rxf: 4 records outside their domains, in 2 symbols\n");
  EXPECT_EQ(outcome.output,
            "parameter blends(food, *, dish): 3 records outside its domains\n"
            "\n"
            "food  dim_2  dish  outside\n"
            "----  -----  ----  --------------\n"
            "Milk  x      Lard  3 dish\n"
            "Lard  x      Milk  1 food\n"
            "Lard  x      Ham   1 food, 3 dish\n"
            "\n"
            "set best(food): 1 record outside its domains\n"
            "\n"
            "food  outside\n"
            "----  -------\n"
            "Lard  1 food\n"
            "\n"
            "loose(nowhere): position 1 is not checked: nowhere is no set of one position in this "
            "file\n");
}

TEST_F(DomainCheckTest, printsTheSameAsJson) {
  const Outcome outcome = ztb({"check", "a.rxf", "--domains", "--json"});
  EXPECT_EQ(outcome.status, 1);
  const auto json = nlohmann::json::parse(outcome.output);
  EXPECT_EQ(json["file"], "a.rxf");
  ASSERT_EQ(json["violations"].size(), 4U);
  EXPECT_EQ(json["violations"][2], nlohmann::json::parse(R"({
    "symbol": "blends", "keys": ["Lard", "x", "Ham"],
    "positions": [1, 3], "domains": ["food", "dish"]})"));
  EXPECT_EQ(json["violations"][3]["symbol"], "best");
  EXPECT_EQ(json["not_checked"],
            nlohmann::json::parse(R"([{"symbol": "loose", "position": 1, "domain": "nowhere"}])"));
}

// A file numbers its symbols from 1, for which a check of the whole database passes over the symbol
// behind one that it looks at.
TEST_F(DomainCheckTest, looksAtEverySymbolOfTheFile) {
  ztb::Database database;
  const ztb::Symbol s = database.addSet("s", {"*"});
  for (const char* name : {"p1", "p2", "p3", "p4"}) {
    database.addParameter(name, {s}).add("x").setLevel(1);
  }
  database.write(path("b.rxf"));
  const Outcome outcome = ztb({"check", "b.rxf", "--domains"});
  EXPECT_EQ(outcome.errors, "ztb: b.rxf: 4 records outside their domains, in 4 symbols\n");
}

TEST_F(DomainCheckTest, findsNothingWhereEveryLabelIsInItsSet) {
  ztbFine({"copy", "a.rxf", "food", "price", "fine.rxf"});
  EXPECT_EQ(ztbFine({"check", "fine.rxf", "--domains"}),
            "fine.rxf: fine: 2 symbols, 2 labels, 3 records\n");
  EXPECT_EQ(nlohmann::json::parse(ztbFine({"check", "fine.rxf", "--domains", "--json"})),
            nlohmann::json::parse(R"({"file": "fine.rxf", "violations": [], "not_checked": []})"));
}

TEST_F(DomainCheckTest, tellsDamageBeforeAnything) {
  std::string content = read("a.rxf");
  const std::size_t at = content.size() / 2;
  content[at] = static_cast<char>(~content[at]);
  write("b.rxf", content);
  const Outcome outcome = ztb({"check", "b.rxf", "--domains"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errors.find("outside"), std::string::npos);
}

TEST_F(DomainCheckTest, hasJsonForDomainsOnly) {
  expectFails(2, "ztb: --json: goes with --domains\n", {"check", "a.rxf", "--json"});
}

TEST_F(DomainCheckTest, fitsTheWidthAskedFor) {
  ztb::Database database;
  const ztb::Symbol food = database.addSet("food", {"*"});
  database.addParameter("price", {food}).add("a food that is in no set").setLevel(1);
  database.write(path("c.rxf"));
  EXPECT_EQ(ztb({"check", "c.rxf", "--domains", "--width", "24"}).output,
            "parameter price(food): 1\n"
            "record outside its\n"
            "domains\n"
            "\n"
            "food             outside\n"
            "---------------  -------\n"
            "a food that is\xE2\x80\xA6  1 food\n"
            "\n");
}

}  // namespace
