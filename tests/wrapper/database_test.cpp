#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>
#include <ztb/ztb.hpp>

namespace {

static_assert(!std::is_copy_constructible_v<ztb::Database>);
static_assert(std::is_nothrow_move_constructible_v<ztb::Database>);
static_assert(std::is_trivially_copyable_v<ztb::Symbol>);
static_assert(std::is_convertible_v<std::string_view, ztb::ZString>);

TEST(Database, StartsEmpty) {
  const ztb::Database database;
  EXPECT_EQ(database.labelCount(), 0);
  EXPECT_EQ(database.symbolCount(), 0);
  EXPECT_FALSE(database.fileBacked());
  EXPECT_EQ(database.lastError(), "");
}

TEST(Database, NumbersLabelsFromOne) {
  ztb::Database database;
  EXPECT_EQ(database.mergeLabel("a"), 1);
  EXPECT_EQ(database.mergeLabel(std::string("b")), 2);
  EXPECT_EQ(database.mergeLabel("A  "), 1);
  EXPECT_EQ(database.labelCount(), 2);
  EXPECT_EQ(database.label(2), "b");
  EXPECT_EQ(database.findLabel("B"), 2);
  EXPECT_EQ(database.findLabel("c"), std::nullopt);
}

TEST(Database, KeepsSymbolsAndRecordsValidWhenMoved) {
  ztb::Database first;
  ztb::Symbol p = first.addParameter("p", {"*"});
  const ztb::Record record = p.add("a");
  ztb::Database second = std::move(first);
  p.merge("a").setLevel(4);
  EXPECT_EQ(record.level(), 4);
  EXPECT_EQ(second.symbol("p"), p);
  ztb::Database third;
  third = std::move(second);
  EXPECT_EQ(third.symbolCount(), 1);
}

TEST(Database, FindsSymbolsByNameAndPosition) {
  ztb::Database database;
  const ztb::Symbol i = database.addSet("i", {"*"}, "Nodes");
  const ztb::Symbol j = database.addAlias("j", i);
  const ztb::Symbol p = database.addParameter("p", {j, i, "*", "later"});
  EXPECT_EQ(database.symbolCount(), 3);
  EXPECT_EQ(database.symbolAt(1), j);
  EXPECT_EQ(database.symbol("P"), p);
  EXPECT_EQ(database.symbol("j"), i);
  EXPECT_EQ(database.findSymbolOrAlias("J"), j);
  EXPECT_EQ(database.findSymbol("q"), std::nullopt);
  EXPECT_EQ(database.symbol("*"), database.universe());
  EXPECT_EQ(j.type(), ztb::Type::alias);
  EXPECT_EQ(database.universe().name(), "*");
}

TEST(Database, TellsDomainsByNameAndSet) {
  ztb::Database database;
  const ztb::Symbol i = database.addSet("i", {"*"});
  const ztb::Symbol j = database.addAlias("j", i);
  const std::vector<ztb::Domain> domains =
      database.addParameter("p", {j, i, "*", std::string("later")}).domains();
  ASSERT_EQ(domains.size(), 4U);
  EXPECT_EQ(domains[0].name, "j");
  EXPECT_EQ(domains[0].set, i);
  EXPECT_EQ(domains[1].name, "i");
  EXPECT_EQ(domains[2].name, "*");
  EXPECT_EQ(domains[2].set, database.universe());
  EXPECT_EQ(domains[3].name, "later");
  EXPECT_FALSE(domains[3].set);
}

// The C interface makes symbols with more positions than records can have.
TEST(Database, TellsTheDomainsOfASymbolWithoutRoomForRecords) {
  ztb::Database database;
  void* handle = nullptr;
  std::vector<void*> universes(25, database.universe().handle());
  ASSERT_EQ(c__ztbaddsymbolx(database.handle(), "wide", 25, ZTB_PARAMETER, 0, "", universes.data(),
                             nullptr, &handle),
            1);
  const std::vector<ztb::Domain> domains = ztb::Symbol(database.handle(), handle).domains();
  ASSERT_EQ(domains.size(), 25U);
  EXPECT_EQ(domains[24].name, "*");
  EXPECT_EQ(domains[24].set, database.universe());
}

// A set or alias of one position, whatever the case of letters; any other name checks nothing.
TEST(Database, TakesTheNameOfASetAsADomainForTheSet) {
  ztb::Database database;
  const ztb::Symbol food = database.addSet("food", {"*"});
  database.addAlias("dish", food);
  database.addSet("pairs", {"*", "*"});
  database.addParameter("cost", {"*"});
  const std::vector<ztb::DomainArgument> names{
      "Food", "dish", "pairs", "cost", "nope", "*", ztb::DomainArgument::nameAlone("food")};
  const std::vector<ztb::Domain> domains =
      database.addSymbol("p", ztb::Type::parameter, names).domains();
  EXPECT_EQ(domains[0].set, food);
  EXPECT_EQ(domains[0].name, "food");
  EXPECT_EQ(domains[1].set, food);
  EXPECT_EQ(domains[1].name, "dish");
  EXPECT_EQ(domains[5].set, database.universe());
  for (const auto& [position, name] : std::vector<std::pair<std::size_t, const char*>>{
           {2, "pairs"}, {3, "cost"}, {4, "nope"}, {6, "food"}}) {
    EXPECT_FALSE(domains[position].set) << name;
    EXPECT_EQ(domains[position].name, name);
  }
}

TEST(Database, MakesEveryTypeOfSymbol) {
  ztb::Database database;
  EXPECT_EQ(database.addSet("s", {"*", "*"}, "text").dimension(), 2);
  EXPECT_EQ(database.symbol("s").text(), "text");
  const ztb::Symbol v = database.addVariable("v", 5, {"*"});
  EXPECT_EQ(v.type(), ztb::Type::variable);
  EXPECT_EQ(v.userInfo(), 5);
  EXPECT_EQ(v.valueCount(), 5U);
  const ztb::Symbol e = database.addEquation("e", 1, {});
  EXPECT_EQ(e.type(), ztb::Type::equation);
  EXPECT_EQ(e.dimension(), 0);
  const std::vector<ztb::DomainArgument> twenty(20, ztb::DomainArgument("*"));
  EXPECT_EQ(database.addSymbol("big", ztb::Type::parameter, twenty).dimension(), 20);
}

TEST(Database, ChoosesTheStoreOfNewSymbolsAndMovesOthers) {
  ztb::Database database;
  const ztb::Symbol i = database.addSet("i", {"*"});
  ztb::Symbol p = database.addParameter("p", {i});
  p.add("a").setLevel(2);
  p.add("b").setLevel(3);
  EXPECT_EQ(database.store(), ztb::Store::map);
  database.selectStore(ztb::Store::vector);
  EXPECT_EQ(database.store(), ztb::Store::vector);
  EXPECT_EQ(p.store(), ztb::Store::map);
  EXPECT_EQ(database.addParameter("q", {}).store(), ztb::Store::vector);
  const ztb::Symbol moved = database.moveTo(p, ztb::Store::trie);
  EXPECT_EQ(moved.store(), ztb::Store::trie);
  EXPECT_EQ(database.symbol("p"), moved);
  EXPECT_EQ(moved.recordCount(), 2);
  EXPECT_EQ(moved.find("b")->level(), 3);
  const std::vector<ztb::Domain> domains = moved.domains();
  ASSERT_EQ(domains.size(), 1U);
  EXPECT_EQ(domains[0].name, "");
  EXPECT_FALSE(domains[0].set);
}

TEST(Database, MakesAnAliasOfTheUniverse) {
  ztb::Database database;
  database.addSet("s", {"*"});
  database.addAlias("all", database.universe());
  EXPECT_EQ(database.symbol("all"), database.universe());
}

TEST(Database, MakesAliasesOfSetsAlone) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  ztb::Symbol s = database.addSet("s", {"*", "*"});
  const ztb::Symbol t = database.addAlias("t", s);
  EXPECT_EQ(database.addAlias("u", t).dimension(), 2);
  EXPECT_EQ(database.symbol("u"), s) << "what the alias stands for";
  ztb::Database other;
  const auto refusal = [&](const ztb::Symbol& target) -> std::string {
    try {
      database.addAlias("bad", target);
    } catch (const ztb::Error& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_EQ(refusal(p), "Symbol p is no set, which alone an alias can stand for");
  EXPECT_EQ(refusal(other.addSet("foreign", {"*"})), "Symbol foreign belongs to another database");
  EXPECT_EQ(refusal(other.universe()), "Symbol * belongs to another database");
  EXPECT_FALSE(database.findSymbol("bad"));
}

TEST(Database, MapsSpecialValues) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {});
  ztb::SpecialValues mine = database.specialValues();
  EXPECT_EQ(mine[ZTB_UNDEFINED], 1e300);
  mine[ZTB_EPSILON] = 0;
  database.setSpecialValues(mine);
  EXPECT_EQ(database.userSpecialValues()[ZTB_EPSILON], 0);
  EXPECT_EQ(database.specialValues()[ZTB_EPSILON], 4.9406564584124654e-324);
  p.put({}, 4.9406564584124654e-324);
  EXPECT_EQ(p.find()->level(), 0);
}

}  // namespace
