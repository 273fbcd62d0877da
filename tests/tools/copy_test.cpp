#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::ProgramTest;

class CopyTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztb::Database database;
    database.mergeLabel("never used");
    ztb::Symbol plant = database.addSet("plant", {"*"}, "Where it is made");
    plant.add("Ulm").setText("Danube");
    plant.add("Bern").setText("Aare");
    const ztb::Symbol site = database.addAlias("site", plant, "A second name");
    ztb::Symbol near = database.addSymbol(
        "near", ztb::Type::set, std::vector<ztb::DomainArgument>{plant, site}, "Pairs", 42);
    near.add("Bern", "Ulm").setText("Danube");
    ztb::Symbol cost = database.addParameter("cost", {site, "later", "nowhere"});
    cost.add("Bern", "b", "z").setLevel(1e300);
    cost.add("Ulm", "a", "z").setLevel(-0.0);
    ztb::Symbol later = database.addSet("later", {"*"});
    later.add("b");
    later.add("a");
    ztb::Symbol flow = database.addVariable("flow", 5, {plant});
    flow.add("Bern").setMarginal(2);
    database.addEquation("balance", 2, {}).add().setUpper(3);
    database.addParameter("other", {"*"}).add("elsewhere").setLevel(1);
    database.write(path("a.rxf"));
  }

  // Names of the symbols of a file, in their order.
  std::vector<std::string> symbols(const std::string& file) const {
    const ztb::Database database = ztb::Database::open(path(file));
    std::vector<std::string> names;
    for (int position = 0; position < database.symbolCount(); ++position) {
      names.push_back(database.symbolAt(position).name().str());
    }
    return names;
  }

  std::vector<std::string> labels(const std::string& file) const {
    const ztb::Database database = ztb::Database::open(path(file));
    std::vector<std::string> result;
    for (int number = 1; number <= database.labelCount(); ++number) {
      result.push_back(database.label(number).str());
    }
    return result;
  }

  // Whether a symbol is the same in both files, in all that the command shows of it.
  void expectSame(const std::string& symbol) const {
    EXPECT_EQ(ztbFine({"show", "b.rxf", symbol, "--json"}),
              ztbFine({"show", "a.rxf", symbol, "--json"}));
  }
};

using Names = std::vector<std::string>;

TEST_F(CopyTest, bringsTheSetsThatAreDomains) {
  EXPECT_EQ(ztbFine({"copy", "a.rxf", "flow", "b.rxf"}), "b.rxf: 2 symbols, 2 labels, 3 records\n");
  EXPECT_EQ(symbols("b.rxf"), (Names{"plant", "flow"}));
  expectSame("plant");
  expectSame("flow");
}

TEST_F(CopyTest, bringsAliasesWithTheirSets) {
  ztbFine({"copy", "a.rxf", "near", "b.rxf"});
  EXPECT_EQ(symbols("b.rxf"), (Names{"plant", "site", "near"}));
  expectSame("near");
  const ztb::Database copy = ztb::Database::open(path("b.rxf"));
  EXPECT_EQ(copy.symbol("near").userInfo(), 42);
  EXPECT_EQ(copy.symbol("near").domains()[1].name, "site");
  EXPECT_EQ(copy.symbol("site").name(), "plant");
}

TEST_F(CopyTest, keepsADomainThatComesLaterAndOneThatIsOnlyAName) {
  ztbFine({"copy", "a.rxf", "cost", "b.rxf"});
  EXPECT_EQ(symbols("b.rxf"), (Names{"plant", "site", "cost", "later"}));
  expectSame("cost");
  const std::vector<ztb::Domain> domains =
      ztb::Database::open(path("b.rxf")).symbol("cost").domains();
  EXPECT_TRUE(domains[0].set);
  EXPECT_TRUE(domains[1].set);
  EXPECT_FALSE(domains[2].set);
  EXPECT_EQ(domains[2].name, "nowhere");
}

TEST_F(CopyTest, keepsTheOrderOfLabelsAndLeavesOutThoseNotUsed) {
  ztbFine({"copy", "a.rxf", "cost", "b.rxf"});
  EXPECT_EQ(labels("b.rxf"), (Names{"Ulm", "Bern", "b", "z", "a"}));
  ztbFine({"copy", "a.rxf", "later", "c.rxf"});
  EXPECT_EQ(labels("c.rxf"), (Names{"b", "a"}));
}

TEST_F(CopyTest, takesAnAliasOrScalarByItself) {
  ztbFine({"copy", "a.rxf", "SITE", "balance", "b.rxf"});
  EXPECT_EQ(symbols("b.rxf"), (Names{"plant", "site", "balance"}));
  expectSame("balance");
}

TEST_F(CopyTest, ofAllSymbolsDiffersInNothing) {
  ztbFine({"copy", "a.rxf", "near", "cost", "flow", "balance", "other", "b.rxf"});
  EXPECT_EQ(ztb({"diff", "a.rxf", "b.rxf"}).status, 0);
}

TEST_F(CopyTest, checksDomainsWhenAsked) {
  ztbFine({"copy", "a.rxf", "flow", "b.rxf", "--check-domains"});
  ztb::Database database;
  const ztb::Symbol s = database.addSet("s", {"*"});
  database.addParameter("p", {s}).add("outside").setLevel(1);
  database.write(path("loose.rxf"));
  ztbFine({"copy", "loose.rxf", "p", "c.rxf"});
  write("d.rxf", "old");
  expectFails(1,
              "ztb: d.rxf: 1 RXF Error(s). First Error: Record outside its domain: p, label "
              ">outside< at position 1 is not in s\n",
              {"copy", "loose.rxf", "p", "d.rxf", "--check-domains"});
  EXPECT_EQ(read("d.rxf"), "old");
}

TEST_F(CopyTest, replacesAnOldTargetOnlyWhenAllIsWell) {
  write("b.rxf", "old");
  expectFails(1, "ztb: a.rxf: Cannot find symbol nosuch\n",
              {"copy", "a.rxf", "flow", "nosuch", "b.rxf"});
  EXPECT_EQ(read("b.rxf"), "old");
  ztbFine({"copy", "a.rxf", "flow", "b.rxf"});
  expectSame("flow");
}

TEST_F(CopyTest, refusesItsOwnSourceAndTheUniverse) {
  expectFails(2, "ztb: ./a.rxf: would be replaced by a part of itself; name another file\n",
              {"copy", "a.rxf", "flow", "./a.rxf"});
  expectFails(2, "ztb: *: the universe is no symbol to copy\n", {"copy", "a.rxf", "*", "b.rxf"});
  EXPECT_EQ(ztb({"copy", "a.rxf", "b.rxf"}).status, 2);
  EXPECT_FALSE(exists("b.rxf"));
}

TEST_F(CopyTest, copiesNoDamagedRecords) {
  const std::string content = read("a.rxf");
  for (std::size_t at = 8; at < content.size(); at += 23) {
    std::string damaged = content;
    damaged[at] = static_cast<char>(~damaged[at]);
    write("damaged.rxf", damaged);
    const Outcome outcome = ztb({"copy", "damaged.rxf", "cost", "near", "b.rxf"});
    if (outcome.status == 0) {
      expectSame("cost");
      expectSame("near");
    }
  }
}

}  // namespace
