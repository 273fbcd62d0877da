// What export writes, import --dir reads back: every value bit for bit.

#include <bit>
#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;

// Everything that the exported interface tells of a database, as text with the bits of values.
std::string describe(const ztb::Database& database) {
  std::string text;
  for (int number = 1; number <= database.labelCount(); ++number) {
    text += "label >" + database.label(number).str() + "<\n";
  }
  for (int position = 0; position < database.symbolCount(); ++position) {
    const ztb::Symbol symbol = database.symbolAt(position);
    text += "symbol " + symbol.name().str() + " type " +
            std::to_string(static_cast<int>(symbol.type())) + " text >" + symbol.text().str() + "<";
    if (symbol.type() == ztb::Type::alias) {
      text += " of " + database.symbol(symbol.name()).name().str() + '\n';
      continue;
    }
    text += " info " + std::to_string(symbol.userInfo());
    for (const ztb::Domain& domain : symbol.domains()) {
      text += " in " + domain.name.str() + (domain.set ? "" : "?");
    }
    text += '\n';
    ztb::Rows rows = symbol.rows();
    for (auto at = rows.begin(); at != rows.end(); ++at) {
      for (const int key : (*at).keys) {
        text += std::to_string(key) + ' ';
      }
      if (symbol.type() == ztb::Type::set) {
        text += ">" + at.record().text().str() + "<";
      } else {
        for (const double value : (*at).values) {
          text += std::to_string(std::bit_cast<std::uint64_t>(value)) + ' ';
        }
      }
      text += '\n';
    }
  }
  return text;
}

class RoundTripTest : public ProgramTest {
 protected:
  // Writes the database, exports and imports it, and expects the same database.
  void expectSame(ztb::Database& database) const {
    database.write(path("a.rxf"));
    ztbFine({"export", "a.rxf", "--all", "--csv", "out"});
    ztbFine({"import", "b.rxf", "--dir", "out"});
    EXPECT_EQ(describe(ztb::Database::open(path("b.rxf"))),
              describe(ztb::Database::open(path("a.rxf"))));
    EXPECT_EQ(ztb({"diff", "a.rxf", "b.rxf"}).status, 0);
  }
};

constexpr std::uint64_t valueBits[] = {
    0x0000000000000000, 0x8000000000000000, 0x0000000000000001, 0x8000000000000001,
    0x0000000000000002, 0x000FFFFFFFFFFFFF, 0x0010000000000000, 0x3FB999999999999A,
    0x7FEFFFFFFFFFFFFF, 0xFFEFFFFFFFFFFFFF, 0x7FF0000000000000, 0xFFF0000000000000,
    0x7FF8000000000000, 0x7FF8000000000001, 0x7FF0000000000001, 0xFFF8000000000000,
    0xFFFFFFFFFFFFFFFF, 0x7E37E43C8800759C, 0x7E37E43C8800759D, 0x3FF0000000000001};

TEST_F(RoundTripTest, KeepsEveryKindOfValue) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  ztb::Symbol v = database.addVariable("v", 5, {"*"});
  int row = 0;
  for (const std::uint64_t bits : valueBits) {
    const int key[] = {database.mergeLabel("l" + std::to_string(++row))};
    const auto value = std::bit_cast<double>(bits);
    p.put(key, value);
    v.put(key, {1, value, 2, value, 3});
  }
  expectSame(database);
}

TEST_F(RoundTripTest, KeepsEveryKindOfLabel) {
  ztb::Database database;
  database.mergeLabel("never used, but first");
  ztb::Symbol s = database.addSet("s", {"*"});
  for (const std::string& label :
       {std::string("a,b"), std::string("say \"hi\""), std::string("it's"), std::string("  lead"),
        std::string(), std::string("\xE9t\xE9"), std::string("\xEF\xBB\xBFx"), std::string("1e3"),
        std::string("na"), std::string("\"quoted\""), std::string("="), std::string(63, 'x'),
        std::string("\x7F\x80\xFF")}) {
    database.mergeLabel(label);
    s.add(label);
  }
  database.mergeLabel("never used, and last");
  expectSame(database);
}

TEST_F(RoundTripTest, KeepsEveryKindOfText) {
  ztb::Database database;
  ztb::Symbol s = database.addSet("s", {"*", "*"}, "of the symbol, \"quoted\"\nand broken");
  int row = 0;
  for (const std::string& text :
       {std::string(), std::string("a,b"), std::string("two\r\nlines\n"), std::string(" blanks "),
        std::string("\""), std::string("tab\there"), std::string(255, 't'),
        std::string("\xE9t\xE9")}) {
    s.add("a", "b" + std::to_string(++row)).setText(text);
  }
  expectSame(database);
}

TEST_F(RoundTripTest, KeepsEveryKindOfSymbol) {
  ztb::Database database;
  ztb::Symbol i =
      database.addSymbol("i", ztb::Type::set, std::vector<ztb::DomainArgument>{"*"}, "Nodes", 42);
  i.add("n1");
  i.add("n2").setText("second");
  const ztb::Symbol j = database.addAlias("j", i);
  database.addAlias("everything", database.universe());
  ztb::Symbol sub = database.addSet("sub", {i});
  sub.add("n2");
  database.addParameter("overAlias", {j, i, "*", "unknownSet"})
      .add("n1", "n2", "z", "n1")
      .setLevel(1);
  database.addParameter("scalar", {}).add().setLevel(-0.0);
  database.addParameter("noRecord", {});
  for (int subtype = 0; subtype <= 9; ++subtype) {
    database.addVariable("v" + std::to_string(subtype), subtype, {i}).add("n1");
  }
  for (int subtype = 0; subtype <= 6; ++subtype) {
    ztb::Symbol equation = database.addEquation("e" + std::to_string(subtype), subtype, {});
    equation.add().setMarginal(2.5);
  }
  expectSame(database);
}

TEST_F(RoundTripTest, KeepsTwentyDimensions) {
  ztb::Database database;
  const std::vector<ztb::DomainArgument> domains(20, ztb::DomainArgument("*"));
  ztb::Symbol p = database.addSymbol("p", ztb::Type::parameter, domains);
  std::vector<int> numbers;
  for (int position = 0; position < 20; ++position) {
    numbers.push_back(database.mergeLabel("l" + std::to_string(position)));
  }
  p.put(numbers, 7);
  expectSame(database);
}

// A set that names as its domain one that comes later in the file.
TEST_F(RoundTripTest, KeepsADomainThatComesLater) {
  ztb::Database database;
  database.addParameter("p", {"later"}).add("x").setLevel(1);
  database.addSet("later", {"*"}).add("x");
  expectSame(database);
  const ztb::Database copy = ztb::Database::open(path("b.rxf"));
  EXPECT_TRUE(copy.symbol("p").domains()[0].set);
}

TEST_F(RoundTripTest, KeepsAnEmptyDatabase) {
  ztb::Database database;
  expectSame(database);
}

TEST_F(RoundTripTest, KeepsDomainsThatAreChecked) {
  ztb::Database database;
  ztb::Symbol i = database.addSet("i", {"*"});
  i.add("x");
  database.addParameter("p", {i}).add("x").setLevel(3);
  database.write(path("a.rxf"), true);
  ztbFine({"export", "a.rxf", "--all", "--csv", "out"});
  ztbFine({"import", "b.rxf", "--dir", "out", "--check-domains"});
  EXPECT_EQ(read("a.rxf"), read("b.rxf"));
}

}  // namespace
