// What a symbol tells about itself: the info keys, dimension, type and domains; and the changes to
// a whole symbol.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/support/database.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

int token = 0;
void* const untouched = &token;

TEST(SymbolInfo, countsRecords) {
  Database db;
  void* const data = db.addParameter("p", 2);
  db.put(data, {"a", "b"});
  db.put(data, {"a", "c"});
  EXPECT_EQ(2, db.recordCount(data));
}

TEST(SymbolInfo, anAliasCountsNoRecords) {
  Database db;
  void* const set = db.addSet("i");
  db.put(set, {"a"});
  EXPECT_EQ(0, db.recordCount(db.addAlias("j", set)));
  EXPECT_EQ(1, db.recordCount(set));
}

TEST(SymbolInfo, theUniverseAnswersEveryKey) {
  Database db;
  db.uel("a");
  db.uel("b");
  void* const universe = db.universe();
  EXPECT_EQ("*", db.symbolText(universe, ZTB_SYMBOL_INFO_NAME));
  EXPECT_EQ(1, db.symbolInfo(universe, ZTB_SYMBOL_INFO_DIMENSION));
  EXPECT_EQ(ZTB_SET, db.symbolInfo(universe, ZTB_SYMBOL_INFO_TYPE));
  EXPECT_EQ(2, db.symbolInfo(universe, ZTB_SYMBOL_INFO_RECORD_COUNT));
  EXPECT_EQ(0, db.symbolInfo(universe, ZTB_SYMBOL_INFO_USER_INFO));
  EXPECT_EQ("universe", db.symbolText(universe, ZTB_SYMBOL_INFO_TEXT));
  EXPECT_EQ(-1, db.symbolInfo(universe, ZTB_SYMBOL_INFO_NUMBER));
  EXPECT_EQ(0, db.symbolInfo(universe, ZTB_SYMBOL_INFO_WRITE_RECORDED));
  EXPECT_EQ(0, db.symbolInfo(universe, ZTB_SYMBOL_INFO_STORAGE));
}

TEST(SymbolInfo, emptiesTheOtherOutArgumentAndNeverTouchesTheDouble) {
  Database db;
  void* const symbol = db.add("p", 1, ZTB_PARAMETER, 5, "text");
  int number = 7;
  double real = 7.5;
  TextBuffer text;
  EXPECT_SUCCESS(db,
                 lib().c__ztbsymbolinfo(db, symbol, ZTB_SYMBOL_INFO_NAME, &number, &real, text));
  EXPECT_EQ(0, number);
  EXPECT_EQ(7.5, real);
  EXPECT_EQ("p", text.str());
  EXPECT_SUCCESS(
      db, lib().c__ztbsymbolinfo(db, symbol, ZTB_SYMBOL_INFO_USER_INFO, &number, &real, text));
  EXPECT_EQ(5, number);
  EXPECT_EQ(7.5, real);
  EXPECT_EQ("", text.str());
}

TEST(SymbolInfo, takesNoPlacesForAnyKey) {
  Database db;
  void* const symbol = db.addParameter("p");
  for (int key = ZTB_SYMBOL_INFO_NAME; key <= ZTB_SYMBOL_INFO_STORAGE; ++key) {
    EXPECT_SUCCESS(db, lib().c__ztbsymbolinfo(db, symbol, key, nullptr, nullptr, nullptr));
  }
}

TEST(SymbolInfo, refusesUnknownKeysWithEmptiedOutArguments) {
  Database db;
  void* const symbol = db.addParameter("p");
  for (const int key : {9, -1, 100}) {
    int number = 7;
    double real = 7.5;
    TextBuffer text;
    EXPECT_FAILURE(db, numbered("No valid infoKey, saw ", key),
                   lib().c__ztbsymbolinfo(db, symbol, key, &number, &real, text));
    EXPECT_EQ(0, number);
    EXPECT_EQ(7.5, real);
    EXPECT_EQ("", text.str());
  }
}

TEST(SymbolInfo, refusesANullSymbolWithEmptiedOutArguments) {
  Database db;
  int number = 7;
  TextBuffer text;
  EXPECT_FAILURE(db, "No symbol handle specified",
                 lib().c__ztbsymbolinfo(db, nullptr, 99, &number, nullptr, text));
  EXPECT_EQ(0, number);
  EXPECT_EQ("", text.str());
}

TEST(SymbolDim, givesTheDimensionAndRefusesNull) {
  Database db;
  int dim = -1;
  EXPECT_SUCCESS(db, lib().c__ztbsymboldim(db, db.addParameter("p", 20), &dim));
  EXPECT_EQ(20, dim);
  EXPECT_SUCCESS(db, lib().c__ztbsymboldim(db, db.universe(), &dim));
  EXPECT_EQ(1, dim);
  EXPECT_FAILURE(db, "No symbol handle specified", lib().c__ztbsymboldim(db, nullptr, &dim));
}

TEST(SymbolType, givesTheTypeAndRefusesNull) {
  Database db;
  int type = -1;
  EXPECT_SUCCESS(db, lib().c__ztbsymboltype(db, db.addEquation("e"), &type));
  EXPECT_EQ(ZTB_EQUATION, type);
  EXPECT_SUCCESS(db, lib().c__ztbsymboltype(db, db.addAlias("a", db.addSet("i")), &type));
  EXPECT_EQ(ZTB_ALIAS, type);
  EXPECT_FAILURE(db, "No symbol handle specified", lib().c__ztbsymboltype(db, nullptr, &type));
}

TEST(SetUserInfo, storesAnyNumber) {
  Database db;
  void* const symbol = db.addVariable("v");
  EXPECT_SUCCESS(db, lib().c__ztbsetuserinfo(db, symbol, -12345));
  EXPECT_EQ(-12345, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_USER_INFO));
}

TEST(SetUserInfo, refusesNullAndTheUniverse) {
  Database db;
  EXPECT_FAILURE(db, "No symbol handle specified", lib().c__ztbsetuserinfo(db, nullptr, 1));
  EXPECT_FAILURE(db, "Cannot set UserInfo of Universe",
                 lib().c__ztbsetuserinfo(db, db.universe(), 1));
  EXPECT_EQ(0, db.symbolInfo(db.universe(), ZTB_SYMBOL_INFO_USER_INFO));
}

TEST(SetUserInfo, ofAnAliasDoesNotMoveItsTarget) {
  Database db;
  void* const first = db.addSet("i");
  db.addSet("k");
  void* const alias = db.addAlias("j", first);
  ASSERT_EQ(1, lib().c__ztbsetuserinfo(db, alias, 1));
  EXPECT_EQ(first, db.find("j"));
}

TEST(ClearSymbol, removesAllRecordsAndKeepsTheLabels) {
  Database db;
  void* const data = db.addParameter("p");
  db.put(data, {"a"}, 1.0);
  db.put(data, {"b"}, 2.0);
  EXPECT_SUCCESS(db, lib().c__ztbclearsymbol(db, data));
  EXPECT_EQ(0, db.recordCount(data));
  EXPECT_EQ(2, db.info(ZTB_INFO_UEL_COUNT));
  db.put(data, {"b"});
  EXPECT_EQ(0.0, db.level(db.first(data)));
  EXPECT_EQ(1, db.recordCount(data));
}

TEST(ClearSymbol, emptiesAScalar) {
  Database db;
  void* const data = db.addParameter("p", 0);
  db.put(data, {}, 4.0);
  EXPECT_EQ(1, lib().c__ztbclearsymbol(db, data));
  EXPECT_EQ(0, db.recordCount(data));
  db.put(data, {});
  EXPECT_EQ(0.0, db.level(db.first(data)));
}

TEST(ClearSymbol, ofAnEmptySymbolOrAnAliasSucceeds) {
  Database db;
  void* const set = db.addSet("i");
  db.put(set, {"a"});
  EXPECT_EQ(1, lib().c__ztbclearsymbol(db, db.addParameter("p")));
  EXPECT_EQ(1, lib().c__ztbclearsymbol(db, db.addAlias("j", set)));
  EXPECT_EQ(1, db.recordCount(set)) << "the set of a cleared alias keeps its records";
}

TEST(ClearSymbol, refusesNullAndTheUniverse) {
  Database db;
  EXPECT_FAILURE(db, "No symbol handle specified", lib().c__ztbclearsymbol(db, nullptr));
  EXPECT_FAILURE(db, "Cannot clear the Universe", lib().c__ztbclearsymbol(db, db.universe()));
}

TEST(GetDomain, refusesNullAndTheUniverse) {
  Database db;
  std::array<void*, 1> domains{untouched};
  TextBuffers names;
  EXPECT_FAILURE(db, "No symbol handle specified",
                 lib().c__ztbgetdomain(db, nullptr, 1, domains.data(), names));
  EXPECT_FAILURE(db, "The Universe has no domain",
                 lib().c__ztbgetdomain(db, db.universe(), 1, domains.data(), names));
  EXPECT_EQ(untouched, domains[0]);
  EXPECT_TRUE(names[0].untouched());
}

TEST(GetDomain, takesItsLengthFromTheSymbolAndNotFromItsArgument) {
  Database db;
  void* const set = db.addSet("i");
  void* const data = db.addOver("p", ZTB_PARAMETER, {set, set});
  std::array<void*, 3> domains{untouched, untouched, untouched};
  TextBuffers names;
  EXPECT_SUCCESS(db, lib().c__ztbgetdomain(db, data, 0, domains.data(), names));
  EXPECT_EQ(set, domains[1]);
  EXPECT_EQ("i", names[1].str());
  EXPECT_EQ(untouched, domains[2]);
  EXPECT_TRUE(names[2].untouched());
}

TEST(GetDomain, cutsALongNameTo255Chars) {
  Database db;
  const std::string name(300, 'n');
  void* const data = db.addOverNames("p", ZTB_PARAMETER, {name.c_str()});
  std::array<void*, 1> domains{untouched};
  TextBuffers names;
  EXPECT_SUCCESS(db, lib().c__ztbgetdomain(db, data, 1, domains.data(), names));
  EXPECT_EQ(nullptr, domains[0]);
  EXPECT_EQ(std::string(255, 'n'), names[0].str());
}

TEST(GetDomain, ofAScalarIsNothing) {
  Database db;
  EXPECT_SUCCESS(db, lib().c__ztbgetdomain(db, db.addParameter("p", 0), 0, nullptr, nullptr));
}

TEST(GetDomain, ofAnAliasIsTheDomainOfItsSet) {
  Database db;
  void* const outer = db.addSet("all");
  void* const inner = db.addOver("some", ZTB_SET, {outer});
  void* const alias = db.addAlias("a", inner);
  std::array<void*, 1> domains{};
  TextBuffers names;
  EXPECT_SUCCESS(db, lib().c__ztbgetdomain(db, alias, 1, domains.data(), names));
  EXPECT_EQ(outer, domains[0]);
  EXPECT_EQ("all", names[0].str());
}

TEST(GetDomain, ofAnAliasWiderThanItsSetIsNothingBeyondIt) {
  Database db;
  void* const outer = db.addSet("all");
  db.addOver("some", ZTB_SET, {outer});
  void* const alias = db.add("a", 2, ZTB_ALIAS, 1);
  std::array<void*, 2> domains{untouched, untouched};
  TextBuffers names;
  EXPECT_SUCCESS(db, lib().c__ztbgetdomain(db, alias, 2, domains.data(), names));
  EXPECT_EQ(outer, domains[0]);
  EXPECT_EQ("all", names[0].str());
  EXPECT_EQ(nullptr, domains[1]);
  EXPECT_EQ("", names[1].str());
}

TEST(GetDomain, ofAnAliasOfTheUniverseIsItsOwn) {
  Database db;
  void* domain = db.addSet("i");
  void* alias = nullptr;
  ASSERT_EQ(1, lib().c__ztbaddsymbolx(db, "a", 1, ZTB_ALIAS, 999, "", &domain, nullptr, &alias));
  ASSERT_EQ(db.universe(), db.find("a"));
  std::array<void*, 1> domains{};
  TextBuffers names;
  EXPECT_SUCCESS(db, lib().c__ztbgetdomain(db, alias, 1, domains.data(), names));
  EXPECT_EQ(domain, domains[0]);
  EXPECT_EQ("i", names[0].str());
}

TEST(GetDomain, anAliasOfTheUniverseAsDomainGivesTheUniverse) {
  Database db;
  void* const alias = db.add("u", 1, ZTB_ALIAS, -1);
  void* const data = db.addOver("p", ZTB_PARAMETER, {alias});
  std::array<void*, 1> domains{};
  TextBuffers names;
  EXPECT_SUCCESS(db, lib().c__ztbgetdomain(db, data, 1, domains.data(), names));
  EXPECT_EQ(db.universe(), domains[0]);
  EXPECT_EQ("u", names[0].str());
}

}  // namespace
}  // namespace ztbtest
