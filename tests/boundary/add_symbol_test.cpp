// Making symbols over the universe: the order of the tests, their texts, and what a new symbol is.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/support/database.h"

namespace ztbtest {
namespace {

int token = 0;
void* const untouched = &token;

std::string invalidName(const std::string& name) {
  return std::string("'").append(name).append("' is not a valid name for a VELT symbol");
}

class AddSymbol : public testing::Test {
 protected:
  int add(const char* name, int dim, int type, int userInfo = 0, const char* text = "") {
    return lib().c__ztbaddsymbol(db, name, dim, type, userInfo, text, &symbol);
  }

  Database db;
  void* symbol = untouched;
};

TEST_F(AddSymbol, answersWithWhatItWasGiven) {
  EXPECT_SUCCESS(db, add("Cost", 2, ZTB_PARAMETER, 17, "cost of a unit"));
  ASSERT_NE(untouched, symbol);
  EXPECT_EQ("Cost", db.symbolText(symbol, ZTB_SYMBOL_INFO_NAME));
  EXPECT_EQ(2, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_DIMENSION));
  EXPECT_EQ(ZTB_PARAMETER, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_TYPE));
  EXPECT_EQ(17, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_USER_INFO));
  EXPECT_EQ("cost of a unit", db.symbolText(symbol, ZTB_SYMBOL_INFO_TEXT));
  EXPECT_EQ(0, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_NUMBER));
  EXPECT_EQ(0, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_RECORD_COUNT));
  EXPECT_EQ(0, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_WRITE_RECORDED));
  EXPECT_EQ(0, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_STORAGE));
}

TEST_F(AddSymbol, takesEveryTypeOfDimensionOneToTwenty) {
  for (int type = ZTB_SET; type <= ZTB_ALIAS; ++type) {
    for (int dim = 1; dim <= 20; ++dim) {
      const std::string name = numbered("s", type) + numbered("_", dim);
      EXPECT_EQ(1, add(name.c_str(), dim, type)) << name;
    }
  }
}

// A type is not checked; one below 2 has one value slot, any other five.
TEST_F(AddSymbol, aTypeThatThereIsNotKeepsItsRecordsInEveryStore) {
  for (int n = 1; n <= 9; ++n) {
    db.uel(numbered("a", n).c_str());
  }
  int count = 0;
  for (const int store : {ZTB_STORAGE_TREE_MAP, ZTB_STORAGE_VECTOR, ZTB_STORAGE_TRIE}) {
    ASSERT_EQ(1, lib().c__ztbselectrecordstorage(db, nullptr, store));
    for (const int type : {-1, -256, 5, 255, 256, 257}) {
      SCOPED_TRACE(numbered("store ", store) + numbered(", type ", type));
      ASSERT_EQ(1, add(numbered("s", ++count).c_str(), 1, type));
      EXPECT_EQ(type, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_TYPE));
      for (int key = 1; key <= 9; ++key) {
        void* handle = nullptr;
        ASSERT_EQ(1, lib().c__ztbmergerecordint(db, symbol, &key, 1, 1, &handle, 0, nullptr));
        const Record record(db, handle);
        ASSERT_EQ(1, lib().c__ztbsetlevel(db, record, key * 1.5));
      }
      double level = 1.5;
      for (const Row& row : db.rows(symbol)) {
        EXPECT_EQ(level, row.level);
        level += 1.5;
      }
      EXPECT_EQ(10 * 1.5, level);
      double scale = -1.0;
      EXPECT_EQ(type < 0 ? 0 : 1, lib().c__ztbgetscale(db, db.first(symbol), &scale));
    }
  }
}

TEST_F(AddSymbol, aScalarOfAnyTypeButASetIsAccepted) {
  EXPECT_EQ(1, add("p", 0, ZTB_PARAMETER));
  EXPECT_EQ(1, add("v", 0, ZTB_VARIABLE));
  EXPECT_EQ(1, add("e", 0, ZTB_EQUATION));
  EXPECT_EQ(1, add("a", 0, ZTB_ALIAS));
  EXPECT_FAILURE(db, "Dimension must be greater than 0 for a Set", add("s", 0, ZTB_SET));
}

TEST_F(AddSymbol, theTestForASetOfDimensionZeroComesFirst) {
  EXPECT_FAILURE(db, "Dimension must be greater than 0 for a Set", add(nullptr, 0, ZTB_SET));
  EXPECT_FAILURE(db, "Dimension must be greater than 0 for a Set", add("1a", 0, ZTB_SET));
}

TEST_F(AddSymbol, refusesDimensionsOutsideZeroToTwenty) {
  EXPECT_FAILURE(db, "Dimension must be greater or equal 0 and smaller or equal 20 (saw 21)",
                 add("p", 21, ZTB_PARAMETER));
  EXPECT_FAILURE(db, "Dimension must be greater or equal 0 and smaller or equal 20 (saw -1)",
                 add("p", -1, ZTB_SET));
}

TEST_F(AddSymbol, testsTheDimensionBeforeTheName) {
  EXPECT_FAILURE(db, "Dimension must be greater or equal 0 and smaller or equal 20 (saw 21)",
                 add(nullptr, 21, ZTB_PARAMETER));
}

TEST_F(AddSymbol, refusesANullName) {
  EXPECT_FAILURE(db, "Name of symbol cannot be NULL", add(nullptr, 1, ZTB_SET));
}

TEST_F(AddSymbol, refusesNamesThatBreakTheRules) {
  for (const char* name : {"", "_a", "1a", "a b", "a-b", "a.b", "*", " ", "a*", "\xE4", "a\xE4"}) {
    EXPECT_FAILURE(db, invalidName(name), add(name, 1, ZTB_SET));
  }
}

TEST_F(AddSymbol, takesNamesOfLettersDigitsAndUnderscores) {
  for (const char* name : {"a", "Z9", "a_1", "x__", "A_b_C"}) {
    EXPECT_EQ(1, add(name, 1, ZTB_SET)) << name;
  }
}

TEST_F(AddSymbol, takesNamesOfSixtyThreeCharsAndNotOfSixtyFour) {
  EXPECT_EQ(1, add(std::string(63, 'n').c_str(), 1, ZTB_SET));
  const std::string over(64, 'n');
  EXPECT_FAILURE(db, invalidName(over), add(over.c_str(), 1, ZTB_SET));
}

TEST_F(AddSymbol, takesTextsOf255CharsAndNotOf256) {
  EXPECT_EQ(1, add("a", 1, ZTB_SET, 0, std::string(255, 't').c_str()));
  EXPECT_EQ(std::string(255, 't'), db.symbolText(symbol, ZTB_SYMBOL_INFO_TEXT));
  EXPECT_FAILURE(db, "Explanatory text too long. Max length is 255",
                 add("b", 1, ZTB_SET, 0, std::string(256, 't').c_str()));
}

TEST_F(AddSymbol, testsTheNameBeforeTheText) {
  EXPECT_FAILURE(db, "'1' is not a valid name for a VELT symbol",
                 add("1", 1, ZTB_SET, 0, std::string(256, 't').c_str()));
}

TEST_F(AddSymbol, aNullTextCountsAsEmpty) {
  EXPECT_EQ(1, add("a", 1, ZTB_SET, 0, nullptr));
  EXPECT_EQ("", db.symbolText(symbol, ZTB_SYMBOL_INFO_TEXT));
}

TEST_F(AddSymbol, aRefusalByTheTestsLeavesThePlaceForTheHandleAlone) {
  EXPECT_EQ(0, add("s", 0, ZTB_SET));
  EXPECT_EQ(0, add("s", 21, ZTB_SET));
  EXPECT_EQ(0, add(nullptr, 1, ZTB_SET));
  EXPECT_EQ(0, add("1", 1, ZTB_SET));
  EXPECT_EQ(untouched, symbol);
  EXPECT_EQ(0, db.info(ZTB_INFO_SYMBOL_COUNT));
}

TEST_F(AddSymbol, refusesANameThatExistsInAnyCaseQuotingTheOneGiven) {
  db.addSet("Food");
  EXPECT_FAILURE(db, "Symbol fOOD exists already", add("fOOD", 2, ZTB_PARAMETER));
  EXPECT_EQ(nullptr, symbol);
  EXPECT_EQ(1, db.info(ZTB_INFO_SYMBOL_COUNT));
  EXPECT_EQ("Food", db.symbolText(db.find("food"), ZTB_SYMBOL_INFO_NAME));
}

TEST_F(AddSymbol, putsTheUniverseInEveryPosition) {
  ASSERT_EQ(1, add("p", 3, ZTB_PARAMETER));
  std::array<void*, 3> domains{};
  std::array<std::array<char, 256>, 3> names{};
  std::array<char*, 3> places{names[0].data(), names[1].data(), names[2].data()};
  ASSERT_EQ(1, lib().c__ztbgetdomain(db, symbol, 3, domains.data(), places.data()));
  for (size_t d = 0; d < 3; ++d) {
    EXPECT_EQ(db.universe(), domains.at(d));
    EXPECT_STREQ("*", places.at(d));
  }
}

TEST_F(AddSymbol, numbersSymbolsAndAliasesTogether) {
  void* const set = db.addSet("i");
  void* const alias = db.addAlias("j", set);
  void* const parameter = db.addParameter("p");
  EXPECT_EQ(0, db.symbolInfo(set, ZTB_SYMBOL_INFO_NUMBER));
  EXPECT_EQ(1, db.symbolInfo(alias, ZTB_SYMBOL_INFO_NUMBER));
  EXPECT_EQ(2, db.symbolInfo(parameter, ZTB_SYMBOL_INFO_NUMBER));
  EXPECT_EQ(2, db.info(ZTB_INFO_SYMBOL_COUNT));
  EXPECT_EQ(3, db.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
}

TEST_F(AddSymbol, anAliasStandsForTheSetOfItsNumber) {
  db.addParameter("p");
  void* const set = db.addSet("i");
  ASSERT_EQ(1, add("j", 1, ZTB_ALIAS, 1));
  EXPECT_EQ(set, db.find("j"));
  EXPECT_EQ(symbol, db.findWithAlias("j"));
}

TEST_F(AddSymbol, anAliasOfAnythingButASetSilentlyAliasesTheUniverse) {
  db.addParameter("p");
  void* const set = db.addSet("i");
  db.addAlias("j", set);
  for (const int number : {999, -1, 0, 2, 3}) {
    const std::string name = numbered("k", number + 10);
    ASSERT_EQ(1, add(name.c_str(), 1, ZTB_ALIAS, number));
    EXPECT_EQ(db.universe(), db.find(name.c_str())) << "number " << number;
  }
}

TEST_F(AddSymbol, holdsThousandsOfSymbols) {
  for (int i = 0; i < 2000; ++i) {
    ASSERT_EQ(1, add((numbered("s", i)).c_str(), 1, ZTB_SET));
  }
  EXPECT_EQ(2000, db.info(ZTB_INFO_SYMBOL_COUNT));
  for (int i = 0; i < 2000; ++i) {
    EXPECT_EQ(i, db.symbolInfo(db.find((numbered("S", i)).c_str()), ZTB_SYMBOL_INFO_NUMBER));
  }
}

}  // namespace
}  // namespace ztbtest
