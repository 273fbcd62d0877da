#include <bit>
#include <limits>
#include <nlohmann/json.hpp>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::ProgramTest;

class DiffTest : public ProgramTest {
 protected:
  // Expects the files to differ, with this output.
  void expectDiffers(const std::string& output,
                     const std::vector<std::string>& options = {}) const {
    std::vector<std::string> arguments{"diff", "a.rxf", "b.rxf"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = ztb(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output, output);
  }

  // Writes a file with one parameter p over labels x and y, in one order or the other.
  void writeParameter(const std::string& file, double x, double y, bool turned = false) const {
    ztb::Database database;
    database.mergeLabel(turned ? "y" : "x");
    ztb::Symbol p = database.addParameter("p", {"*"});
    p.add("x").setLevel(x);
    p.add("y").setLevel(y);
    database.write(path(file));
  }
};

TEST_F(DiffTest, FindsNoDifferenceUnderAnotherNumbering) {
  writeParameter("a.rxf", 1, 2);
  writeParameter("b.rxf", 1, 2, true);
  EXPECT_EQ(ztbFine({"diff", "a.rxf", "b.rxf"}), "no difference: 1 symbol, 2 records\n");
}

TEST_F(DiffTest, ShowsRecordsGoneAddedAndChanged) {
  ztb::Database before;
  ztb::Symbol p = before.addParameter("p", {"*", "*"});
  p.add("a", "u").setLevel(1);
  p.add("a", "v").setLevel(2);
  p.add("b", "u").setLevel(3);
  before.write(path("a.rxf"));
  ztb::Database after;
  ztb::Symbol q = after.addParameter("P", {"*", "*"});
  q.add("c", "u").setLevel(4);
  q.add("b", "u").setLevel(3);
  q.add("a", "v").setLevel(2.5);
  after.write(path("b.rxf"));
  expectDiffers(
      "~ parameter p(*, *)\n"
      "    records: 1 gone, 1 added, 1 changed\n"
      "    - (\"a\",\"u\") 1\n"
      "    ~ (\"a\",\"v\") 2 -> 2.5\n"
      "    + (\"c\",\"u\") 4\n"
      "a.rxf and b.rxf differ in 1 symbol\n");
}

TEST_F(DiffTest, ShowsSymbolsGoneAddedAndChanged) {
  ztb::Database before;
  before.addSet("s", {"*"}, "old");
  before.addParameter("gone", {"*"});
  before.addParameter("kind", {"*"});
  before.addVariable("v", 3, {"*"});
  before.write(path("a.rxf"));
  ztb::Database after;
  const ztb::Symbol s = after.addSet("s", {"*"}, "new");
  after.addSet("kind", {"*", "*"});
  after.addVariable("v", 5, {s});
  after.addParameter("more", {});
  after.write(path("b.rxf"));
  expectDiffers(
      "~ set s(*)\n"
      "    text: 'old' -> 'new'\n"
      "- parameter gone(*)\n"
      "~ parameter kind(*)\n"
      "    type: 'parameter' -> 'set'\n"
      "    dimension: '1' -> '2'\n"
      "    domains: '*' -> '*, *'\n"
      "~ variable v(*)\n"
      "    domains: '*' -> 's'\n"
      "    user info: '3' -> '5'\n"
      "+ parameter more\n"
      "a.rxf and b.rxf differ in 5 symbols\n");
}

TEST_F(DiffTest, ShowsTextsAndFields) {
  ztb::Database before;
  ztb::Symbol s = before.addSet("s", {"*"});
  s.add("a").setText("one");
  s.add("b").setText("two");
  before.addVariable("v", 3, {}).add();
  before.write(path("a.rxf"));
  ztb::Database after;
  s = after.addSet("s", {"*"});
  s.add("a");
  s.add("c").setText("three");
  ztb::Record record = after.addVariable("v", 3, {}).add();
  record.setLevel(4);
  record.setUpper(10);
  after.write(path("b.rxf"));
  expectDiffers(
      "~ set s(*)\n"
      "    records: 1 gone, 1 added, 1 changed\n"
      "    ~ (\"a\") 'one' -> ''\n"
      "    - (\"b\") 'two'\n"
      "    + (\"c\") 'three'\n"
      "~ variable v\n"
      "    records: 0 gone, 0 added, 1 changed\n"
      "    ~ () level 0 -> 4, upper inf -> 10\n"
      "a.rxf and b.rxf differ in 2 symbols\n");
}

TEST_F(DiffTest, ShowsAliasesOfOtherSets) {
  for (const bool second : {false, true}) {
    ztb::Database database;
    const ztb::Symbol i = database.addSet("i", {"*"});
    const ztb::Symbol j = database.addSet("j", {"*"});
    database.addAlias("a", second ? j : i, "same text");
    database.write(path(second ? "b.rxf" : "a.rxf"));
  }
  const Outcome outcome = ztb({"diff", "a.rxf", "b.rxf"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.output.find("    alias of: 'i' -> 'j'\n"), std::string::npos) << outcome.output;
}

TEST_F(DiffTest, TellsBitsApartWithoutATolerance) {
  writeParameter("a.rxf", 0.0, 1);
  writeParameter("b.rxf", -0.0, 1);
  expectDiffers(
      "~ parameter p(*)\n"
      "    records: 0 gone, 0 added, 1 changed\n"
      "    ~ (\"x\") 0 -> -0\n"
      "a.rxf and b.rxf differ in 1 symbol\n");
  EXPECT_EQ(ztb({"diff", "a.rxf", "b.rxf", "--tolerance", "0"}).status, 0);
}

TEST_F(DiffTest, LetsDifferencesUpToTheTolerancePass) {
  writeParameter("a.rxf", 1, 2);
  writeParameter("b.rxf", 1.5, 1.75);
  EXPECT_EQ(ztb({"diff", "a.rxf", "b.rxf", "--tolerance", "0.5"}).status, 0);
  EXPECT_EQ(ztb({"diff", "a.rxf", "b.rxf", "--tolerance", "0.49"}).status, 1);
}

TEST_F(DiffTest, ComparesSpecialValuesByKindWhateverTheTolerance) {
  const double inf = std::numeric_limits<double>::infinity();
  const auto eps = std::bit_cast<double>(1ULL);
  const auto na = std::bit_cast<double>(0x7FF8000000000000ULL);
  const auto nan = std::bit_cast<double>(0x7FF8000000000001ULL);
  writeParameter("a.rxf", inf, na);
  writeParameter("b.rxf", inf, na);
  EXPECT_EQ(ztb({"diff", "a.rxf", "b.rxf", "--tolerance", "9"}).status, 0);
  writeParameter("b.rxf", -inf, nan);
  expectDiffers(
      "~ parameter p(*)\n"
      "    records: 0 gone, 0 added, 2 changed\n"
      "    ~ (\"x\") inf -> -inf\n"
      "    ~ (\"y\") na -> nan:0x7ff8000000000001\n"
      "a.rxf and b.rxf differ in 1 symbol\n",
      {"--tolerance", "9"});
  writeParameter("a.rxf", eps, 1e300);
  writeParameter("b.rxf", 0, 1.5e300);
  EXPECT_EQ(ztb({"diff", "a.rxf", "b.rxf", "--tolerance", "1e300"}).status, 1);
}

TEST_F(DiffTest, CountsWhatItDoesNotShow) {
  writeParameter("a.rxf", 1, 2);
  writeParameter("b.rxf", 3, 4);
  expectDiffers(
      "~ parameter p(*)\n"
      "    records: 0 gone, 0 added, 2 changed\n"
      "    ~ (\"x\") 1 -> 3\n"
      "    ... and 1 record more\n"
      "a.rxf and b.rxf differ in 1 symbol\n",
      {"--head", "1"});
}

TEST_F(DiffTest, PrintsJson) {
  writeParameter("a.rxf", 1, 2);
  writeParameter("b.rxf", 1, std::numeric_limits<double>::infinity());
  const Outcome outcome = ztb({"diff", "a.rxf", "b.rxf", "--json"});
  EXPECT_EQ(outcome.status, 1);
  const auto json = nlohmann::json::parse(outcome.output);
  EXPECT_EQ(json["same"], false);
  EXPECT_EQ(json["symbols"][0]["name"], "p");
  EXPECT_EQ(json["symbols"][0]["change"], "changed");
  EXPECT_EQ(json["symbols"][0]["records_changed"], 1);
  EXPECT_EQ(json["symbols"][0]["records"][0]["keys"], (nlohmann::json{"y"}));
  EXPECT_EQ(json["symbols"][0]["records"][0]["before"]["value"], 2);
  EXPECT_EQ(json["symbols"][0]["records"][0]["after"]["value"], "inf");
  EXPECT_EQ(nlohmann::json::parse(ztbFine({"diff", "a.rxf", "a.rxf", "--json"}))["same"], true);
}

TEST_F(DiffTest, RefusesABadTolerance) {
  writeParameter("a.rxf", 1, 2);
  expectFails(2, "ztb: --tolerance: expected a number of at least 0\n",
              {"diff", "a.rxf", "a.rxf", "--tolerance=-1"});
  EXPECT_EQ(ztb({"diff", "a.rxf", "a.rxf", "--tolerance", "x"}).status, 2);
}

TEST_F(DiffTest, NamesAFileThatIsNotThere) {
  writeParameter("a.rxf", 1, 2);
  expectFails(1, "ztb: No such file: b.rxf\n", {"diff", "a.rxf", "b.rxf"});
}

}  // namespace
