// Making symbols over given domains: which domains are taken, in which order they are refused, and
// that this operation reports success without a handle.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

int token = 0;
void* const untouched = &token;

class AddSymbolX : public testing::Test {
 protected:
  int add(const char* name, int type, std::vector<void*> domains,
          std::vector<const char*> domainNames = {}, const char* text = "") {
    domainNames.resize(domains.size(), "");
    return lib().c__ztbaddsymbolx(db, name, static_cast<int>(domains.size()), type, 0, text,
                                  domains.data(), domainNames.data(), &symbol);
  }

  // The call reports success, makes no symbol and leaves this text.
  void expectNoSymbol(const std::string& text, const char* name, int type,
                      const std::vector<void*>& domains) {
    const int before = db.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS);
    symbol = untouched;
    db.markError();
    EXPECT_EQ(1, add(name, type, domains));
    EXPECT_EQ(nullptr, symbol);
    EXPECT_EQ(text, db.lastError());
    EXPECT_EQ(before, db.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
  }

  Database db;
  void* symbol = untouched;
};

TEST_F(AddSymbolX, takesSetsAndAliasesOfDimensionOneAndTheUniverse) {
  void* const set = db.addSet("i");
  void* const alias = db.addAlias("j", set);
  EXPECT_SUCCESS(db, add("p", ZTB_PARAMETER, {set, alias, db.universe()}));
  std::array<void*, 3> domains{};
  TextBuffers names;
  ASSERT_EQ(1, lib().c__ztbgetdomain(db, symbol, 3, domains.data(), names));
  EXPECT_EQ(set, domains[0]);
  EXPECT_EQ("i", names[0].str());
  EXPECT_EQ(set, domains[1]) << "an alias is reported by the handle of its set";
  EXPECT_EQ("j", names[1].str()) << "and by its own name";
  EXPECT_EQ(db.universe(), domains[2]);
  EXPECT_EQ("*", names[2].str());
}

TEST_F(AddSymbolX, aNullDomainIsTheUniverseByItsTwoNamesAndAnyOtherNameStays) {
  EXPECT_SUCCESS(
      db, add("p", ZTB_PARAMETER, {nullptr, nullptr, nullptr, nullptr}, {"*", " ", "nowhere", ""}));
  std::array<void*, 4> domains{untouched, untouched, untouched, untouched};
  TextBuffers names;
  ASSERT_EQ(1, lib().c__ztbgetdomain(db, symbol, 4, domains.data(), names));
  EXPECT_EQ(db.universe(), domains[0]);
  EXPECT_EQ("*", names[0].str());
  EXPECT_EQ(db.universe(), domains[1]);
  EXPECT_EQ("*", names[1].str());
  EXPECT_EQ(nullptr, domains[2]);
  EXPECT_EQ("nowhere", names[2].str());
  EXPECT_EQ(nullptr, domains[3]);
  EXPECT_EQ("", names[3].str());
}

TEST_F(AddSymbolX, aLongNameOfADomainComesBackCutToItsRoom) {
  const std::string name(300, 'n');
  const std::string shown(255, 'n');
  EXPECT_SUCCESS(db, add("p", ZTB_PARAMETER, {nullptr, nullptr}, {name.c_str(), "short"}));
  std::array<void*, 2> domains{untouched, untouched};
  TextBuffers names;
  ASSERT_EQ(1, lib().c__ztbgetdomain(db, symbol, 2, domains.data(), names));
  EXPECT_EQ(shown, names[0].str());
  EXPECT_EQ("short", names[1].str());
  StringBlock block;
  ASSERT_EQ(1, lib().d__ztbgetdomain(db, symbol, 2, domains.data(), block));
  EXPECT_EQ(shown, block.shortString(0));
  EXPECT_EQ("short", block.shortString(1));
  ASSERT_EQ(1, lib().n__ztbgetdomain(db, symbol, 2, domains.data(), block));
  EXPECT_EQ(shown, block.flatString(0));
  EXPECT_EQ("short", block.flatString(1));
}

TEST_F(AddSymbolX, aNameOfASetThatExistsStaysANameOnly) {
  db.addSet("i");
  ASSERT_EQ(1, add("p", ZTB_PARAMETER, {nullptr}, {"i"}));
  std::array<void*, 1> domains{untouched};
  TextBuffers names;
  ASSERT_EQ(1, lib().c__ztbgetdomain(db, symbol, 1, domains.data(), names));
  EXPECT_EQ(nullptr, domains[0]);
  EXPECT_EQ("i", names[0].str());
}

TEST_F(AddSymbolX, readsNoNamesWhenAllDomainsAreGiven) {
  void* domain = db.addSet("i");
  EXPECT_EQ(1, lib().c__ztbaddsymbolx(db, "p", 1, ZTB_PARAMETER, 0, "", &domain, nullptr, &symbol));
  EXPECT_NE(nullptr, symbol);
}

TEST_F(AddSymbolX, aNullNameOfANullDomainMakesNoSymbol) {
  void* domain = nullptr;
  const char* name = nullptr;
  for (const char** names : {&name, static_cast<const char**>(nullptr)}) {
    symbol = untouched;
    db.markError();
    EXPECT_EQ(1, lib().c__ztbaddsymbolx(db, "p", 1, ZTB_PARAMETER, 0, "", &domain, names, &symbol));
    EXPECT_EQ(nullptr, symbol);
    EXPECT_EQ("Domain 1 of Symbol p has neither a set nor a name", db.lastError());
  }
  EXPECT_EQ(0, db.info(ZTB_INFO_SYMBOL_COUNT));
}

TEST_F(AddSymbolX, aNameThatExistsGivesOneAndANullHandle) {
  db.addSet("Food");
  expectNoSymbol("Symbol FOOD exists already", "FOOD", ZTB_SET, {db.universe()});
}

TEST_F(AddSymbolX, refusesADomainOfAnotherDimension) {
  expectNoSymbol("1 <> Dim of Symbol ij", "p", ZTB_PARAMETER, {db.addSet("ij", 2)});
  expectNoSymbol("1 <> Dim of Symbol c", "p", ZTB_PARAMETER, {db.addParameter("c", 0)});
}

TEST_F(AddSymbolX, refusesADomainThatIsNoSet) {
  expectNoSymbol("Symbol c not a set/alias", "p", ZTB_PARAMETER, {db.addParameter("c")});
  expectNoSymbol("Symbol v not a set/alias", "p", ZTB_PARAMETER, {db.addVariable("v")});
  expectNoSymbol("Symbol e not a set/alias", "p", ZTB_PARAMETER, {db.addEquation("e")});
}

TEST_F(AddSymbolX, refusesADomainOfAnotherDatabase) {
  Database other;
  expectNoSymbol("Symbol i not in this database", "p", ZTB_PARAMETER, {other.addSet("i")});
}

TEST_F(AddSymbolX, refusesTheUniverseOfAnotherDatabase) {
  Database other;
  expectNoSymbol("Universe from different database", "p", ZTB_PARAMETER, {other.universe()});
}

TEST_F(AddSymbolX, testsDimensionThenTypeThenDatabase) {
  Database other;
  expectNoSymbol("1 <> Dim of Symbol c", "p", ZTB_PARAMETER, {other.addParameter("c", 2)});
  expectNoSymbol("Symbol d not a set/alias", "p", ZTB_PARAMETER, {other.addParameter("d")});
}

TEST_F(AddSymbolX, theFirstBadPositionDecides) {
  void* const set = db.addSet("i");
  void* const wide = db.addSet("ij", 2);
  void* const data = db.addParameter("c");
  expectNoSymbol("Symbol c not a set/alias", "p", ZTB_PARAMETER, {set, data, wide});
  expectNoSymbol("1 <> Dim of Symbol ij", "p", ZTB_PARAMETER, {set, wide, data});
}

TEST_F(AddSymbolX, aNameIsTestedForExistenceBeforeTheDomains) {
  void* const wide = db.addSet("ij", 2);
  expectNoSymbol("Symbol ij exists already", "ij", ZTB_PARAMETER, {wide});
}

TEST_F(AddSymbolX, aNameRefusedForItsDomainsIsStillFree) {
  expectNoSymbol("1 <> Dim of Symbol ij", "p", ZTB_PARAMETER, {db.addSet("ij", 2)});
  EXPECT_EQ(1, add("p", ZTB_PARAMETER, {db.universe()}));
  EXPECT_NE(nullptr, symbol);
}

TEST_F(AddSymbolX, runsTheNameAndTextTestsAndLeavesThePlaceForTheHandleAlone) {
  EXPECT_FAILURE(db, "Name of symbol cannot be NULL", add(nullptr, ZTB_SET, {db.universe()}));
  EXPECT_FAILURE(db, "'1a' is not a valid name for a VELT symbol",
                 add("1a", ZTB_SET, {db.universe()}));
  EXPECT_FAILURE(db, "Explanatory text too long. Max length is 255",
                 add("a", ZTB_SET, {db.universe()}, {}, std::string(256, 't').c_str()));
  EXPECT_EQ(untouched, symbol);
}

TEST_F(AddSymbolX, aNullTextCountsAsEmpty) {
  EXPECT_EQ(1, add("a", ZTB_SET, {db.universe()}, {}, nullptr));
  EXPECT_EQ("", db.symbolText(symbol, ZTB_SYMBOL_INFO_TEXT));
}

TEST_F(AddSymbolX, makesASetOfDimensionZero) {
  EXPECT_SUCCESS(db, add("s", ZTB_SET, {}));
  ASSERT_NE(nullptr, symbol);
  EXPECT_EQ(0, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_DIMENSION));
  db.put(symbol, {});
  EXPECT_EQ(1, db.recordCount(symbol));
}

TEST_F(AddSymbolX, makesASymbolBeyondTheLargestDimensionThatStaysEmpty) {
  ASSERT_EQ(1, add("p", ZTB_PARAMETER, std::vector<void*>(21, db.universe())));
  ASSERT_NE(nullptr, symbol);
  EXPECT_EQ(21, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_DIMENSION));
  EXPECT_EQ(0, db.recordCount(symbol));
  void* record = untouched;
  Keys keys(Labels(21, "a"));
  EXPECT_FAILURE(db, "Cannot find any record in Symbol p (p is empty)",
                 lib().c__ztbfindrecord(db, symbol, keys, &record));
  EXPECT_EQ(nullptr, record);
  EXPECT_EQ(0, lib().c__ztbaddrecord(db, symbol, keys, &record));
  EXPECT_EQ(nullptr, record);
  EXPECT_EQ(0, lib().c__ztbmergerecord(db, symbol, keys, &record));
  EXPECT_EQ(nullptr, record);
  EXPECT_EQ(0, db.recordCount(symbol));
}

TEST_F(AddSymbolX, makesASymbolOfNegativeDimensionThatStaysEmpty) {
  EXPECT_EQ(1,
            lib().c__ztbaddsymbolx(db, "p", -1, ZTB_PARAMETER, 0, "", nullptr, nullptr, &symbol));
  ASSERT_NE(nullptr, symbol);
  EXPECT_EQ(-1, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_DIMENSION));
  EXPECT_EQ(0, db.recordCount(symbol));
  void* record = untouched;
  EXPECT_EQ(0, lib().c__ztbaddrecord(db, symbol, nullptr, &record));
  EXPECT_EQ(nullptr, record);
}

TEST_F(AddSymbolX, anAliasTakesItsTargetLikeOneMadeWithoutDomains) {
  void* const set = db.addSet("i");
  void* domain = db.universe();
  ASSERT_EQ(1, lib().c__ztbaddsymbolx(db, "j", 1, ZTB_ALIAS, 0, "", &domain, nullptr, &symbol));
  EXPECT_EQ(set, db.find("j"));
}

}  // namespace
}  // namespace ztbtest
