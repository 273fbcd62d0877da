// Finding symbols by name, position and number.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/database.h"

namespace ztbtest {
namespace {

int token = 0;
void* const untouched = &token;

class FindSymbol : public testing::Test {
 protected:
  FindSymbol() : set(db.addSet("i")), alias(db.addAlias("j", set)), data(db.addParameter("p")) {}

  Database db;
  void* set;
  void* alias;
  void* data;
  void* found = untouched;
};

TEST_F(FindSymbol, byNameFoldsCase) {
  EXPECT_SUCCESS(db, lib().c__ztbfindsymbol(db, "P", &found));
  EXPECT_EQ(data, found);
  EXPECT_SUCCESS(db, lib().c__ztbfindsymbolwithalias(db, "I", &found));
  EXPECT_EQ(set, found);
}

TEST_F(FindSymbol, resolvesAnAliasOnlyWithoutAlias) {
  EXPECT_EQ(1, lib().c__ztbfindsymbol(db, "j", &found));
  EXPECT_EQ(set, found);
  EXPECT_EQ(1, lib().c__ztbfindsymbolwithalias(db, "j", &found));
  EXPECT_EQ(alias, found);
  EXPECT_NE(set, alias);
}

TEST_F(FindSymbol, givesTheSameHandleEachTime) {
  EXPECT_EQ(db.find("p"), db.find("p"));
  EXPECT_EQ(db.findWithAlias("j"), db.findWithAlias("j"));
}

TEST_F(FindSymbol, starIsTheUniverse) {
  EXPECT_EQ(1, lib().c__ztbfindsymbol(db, "*", &found));
  void* withAlias = untouched;
  EXPECT_EQ(1, lib().c__ztbfindsymbolwithalias(db, "*", &withAlias));
  EXPECT_EQ(found, withAlias);
  EXPECT_EQ("*", db.symbolText(found, ZTB_SYMBOL_INFO_NAME));
}

TEST_F(FindSymbol, refusesANullName) {
  EXPECT_FAILURE(db, "Symbol name cannot be NULL", lib().c__ztbfindsymbol(db, nullptr, &found));
  EXPECT_EQ(nullptr, found);
  found = untouched;
  EXPECT_FAILURE(db, "Symbol name cannot be NULL",
                 lib().c__ztbfindsymbolwithalias(db, nullptr, &found));
  EXPECT_EQ(nullptr, found);
}

TEST_F(FindSymbol, unknownNamesAreQuotedAsGiven) {
  for (const char* name : {"NoWhere", "", "**", "* ", " p", "p "}) {
    found = untouched;
    EXPECT_FAILURE(db, "Cannot find symbol " + std::string(name),
                   lib().c__ztbfindsymbol(db, name, &found));
    EXPECT_EQ(nullptr, found);
    found = untouched;
    EXPECT_FAILURE(db, "Cannot find symbol " + std::string(name),
                   lib().c__ztbfindsymbolwithalias(db, name, &found));
    EXPECT_EQ(nullptr, found);
  }
}

TEST_F(FindSymbol, byIndexSkipsAliases) {
  EXPECT_SUCCESS(db, lib().c__ztbgetsymbolbyindex(db, 0, &found));
  EXPECT_EQ(set, found);
  EXPECT_SUCCESS(db, lib().c__ztbgetsymbolbyindex(db, 1, &found));
  EXPECT_EQ(data, found);
}

TEST_F(FindSymbol, byNumberCountsAliasesAndDoesNotResolveThem) {
  EXPECT_SUCCESS(db, lib().c__ztbgetsymbolbynumber(db, 0, &found));
  EXPECT_EQ(set, found);
  EXPECT_SUCCESS(db, lib().c__ztbgetsymbolbynumber(db, 1, &found));
  EXPECT_EQ(alias, found);
  EXPECT_SUCCESS(db, lib().c__ztbgetsymbolbynumber(db, 2, &found));
  EXPECT_EQ(data, found);
}

TEST_F(FindSymbol, minusOneIsTheUniverseByIndexAndNumber) {
  EXPECT_SUCCESS(db, lib().c__ztbgetsymbolbyindex(db, -1, &found));
  EXPECT_EQ(db.universe(), found);
  found = untouched;
  EXPECT_SUCCESS(db, lib().c__ztbgetsymbolbynumber(db, -1, &found));
  EXPECT_EQ(db.universe(), found);
}

TEST_F(FindSymbol, refusesIndexesOutOfRange) {
  for (const int index : {2, 3, -2, 2147483647, -2147483647 - 1}) {
    found = untouched;
    EXPECT_FAILURE(db, numbered("Symbol index ", index) + " is out of range",
                   lib().c__ztbgetsymbolbyindex(db, index, &found));
    EXPECT_EQ(nullptr, found);
  }
}

TEST_F(FindSymbol, refusesNumbersOutOfRange) {
  for (const int number : {3, 4, -2}) {
    found = untouched;
    EXPECT_FAILURE(db, numbered("Symbol index ", number) + " is out of range",
                   lib().c__ztbgetsymbolbynumber(db, number, &found));
    EXPECT_EQ(nullptr, found);
  }
}

TEST(FindSymbolInNewDatabase, onlyTheUniverseIsThere) {
  Database db;
  void* found = untouched;
  EXPECT_EQ(1, lib().c__ztbgetsymbolbyindex(db, -1, &found));
  EXPECT_FAILURE(db, "Symbol index 0 is out of range", lib().c__ztbgetsymbolbyindex(db, 0, &found));
  EXPECT_FAILURE(db, "Symbol index 0 is out of range",
                 lib().c__ztbgetsymbolbynumber(db, 0, &found));
  EXPECT_FAILURE(db, "Cannot find symbol i", lib().c__ztbfindsymbol(db, "i", &found));
}

}  // namespace
}  // namespace ztbtest
