// The names that return the handle they make: same outcome and same texts as the plain name, null
// on failure, and the plain result in the last argument.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/support/database.h"

namespace ztbtest {
namespace {

class Twin : public testing::Test {
 protected:
  Twin() : data(db.addParameter("p")) {
    db.put(data, {"a"}, 1.0);
    db.put(data, {"b"}, 2.0);
  }

  // A handle was made: status 1, no text.
  Record made(void* handle) {
    EXPECT_NE(nullptr, handle);
    EXPECT_EQ(1, status);
    EXPECT_TRUE(db.errorUntouched()) << db.lastError();
    return {db, handle};
  }

  void expectNone(const std::string& text, void* handle) {
    EXPECT_EQ(nullptr, handle);
    EXPECT_EQ(0, status);
    EXPECT_EQ(text, db.lastError());
    status = 7;
  }

  Database db;
  void* data;
  int status = 7;
};

TEST_F(Twin, findsSymbols) {
  void* const alias = db.addAlias("j", db.addSet("i"));
  EXPECT_EQ(data, lib().c__ztbfindsymbolpy(db, "P", &status));
  EXPECT_EQ(1, status);
  EXPECT_EQ(alias, lib().c__ztbfindsymbolwithaliaspy(db, "j", &status));
  EXPECT_EQ(db.find("i"), lib().c__ztbfindsymbolpy(db, "j", &status));
  EXPECT_EQ(data, lib().c__ztbgetsymbolbyindexpy(db, 0, &status));
  EXPECT_EQ(alias, lib().c__ztbgetsymbolbynumberpy(db, 2, &status));
  EXPECT_EQ(db.universe(), lib().c__ztbgetsymbolbynumberpy(db, -1, &status));
  EXPECT_EQ(1, status);
}

TEST_F(Twin, failsToFindSymbolsWithThePlainTexts) {
  expectNone("Cannot find symbol q", lib().c__ztbfindsymbolpy(db, "q", &status));
  expectNone("Symbol name cannot be NULL", lib().c__ztbfindsymbolpy(db, nullptr, &status));
  expectNone("Cannot find symbol q", lib().c__ztbfindsymbolwithaliaspy(db, "q", &status));
  expectNone("Symbol index 1 is out of range", lib().c__ztbgetsymbolbyindexpy(db, 1, &status));
  expectNone("Symbol index -2 is out of range", lib().c__ztbgetsymbolbynumberpy(db, -2, &status));
}

TEST_F(Twin, addsSymbols) {
  void* const set = lib().c__ztbaddsymbolpy(db, "i", 1, ZTB_SET, 3, "text", &status);
  ASSERT_NE(nullptr, set);
  EXPECT_EQ(1, status);
  EXPECT_EQ(set, db.find("i"));
  EXPECT_EQ("text", db.symbolText(set, ZTB_SYMBOL_INFO_TEXT));
  EXPECT_EQ(3, db.symbolInfo(set, ZTB_SYMBOL_INFO_USER_INFO));
  expectNone("Symbol i exists already",
             lib().c__ztbaddsymbolpy(db, "i", 1, ZTB_SET, 0, "", &status));
  expectNone("Dimension must be greater than 0 for a Set",
             lib().c__ztbaddsymbolpy(db, "k", 0, ZTB_SET, 0, "", &status));
}

TEST_F(Twin, addsSymbolsOverDomainsAndReportsOneWithoutAHandleToo) {
  void* domain = db.addSet("i");
  void* const symbol =
      lib().c__ztbaddsymbolxpy(db, "q", 1, ZTB_PARAMETER, 0, "", &domain, nullptr, &status);
  EXPECT_EQ(1, status);
  EXPECT_EQ(symbol, db.find("q"));
  status = 7;
  EXPECT_EQ(nullptr,
            lib().c__ztbaddsymbolxpy(db, "q", 1, ZTB_PARAMETER, 0, "", &domain, nullptr, &status));
  EXPECT_EQ(1, status) << "the plain name reports one here";
  EXPECT_EQ("Symbol q exists already", db.lastError());
  expectNone("Name of symbol cannot be NULL",
             lib().c__ztbaddsymbolxpy(db, nullptr, 0, 1, 0, "", nullptr, nullptr, &status));
}

TEST_F(Twin, findsRecords) {
  db.markError();
  Keys keys{"b"};
  Keys any{" "};
  EXPECT_EQ(2.0, db.level(made(lib().c__ztbfindrecordpy(db, data, keys, &status))));
  EXPECT_EQ(1.0, db.level(made(lib().c__ztbfindfirstrecordpy(db, data, &status))));
  EXPECT_EQ(2.0, db.level(made(lib().c__ztbfindlastrecordpy(db, data, &status))));
  EXPECT_EQ(1.0, db.level(made(lib().c__ztbfindfirstrecordslicepy(db, data, any, &status))));
  EXPECT_EQ(2.0, db.level(made(lib().c__ztbfindlastrecordslicepy(db, data, any, &status))));
}

TEST_F(Twin, failsToFindRecordsWithThePlainTexts) {
  void* const empty = db.addParameter("q");
  Keys keys{"z"};
  expectNone("No symbol handle specified", lib().c__ztbfindrecordpy(db, nullptr, keys, &status));
  expectNone("Cannot find element z (on position 1) in Symbol p",
             lib().c__ztbfindrecordpy(db, data, keys, &status));
  expectNone("Cannot find a record in Symbol q", lib().c__ztbfindfirstrecordpy(db, empty, &status));
  expectNone("Cannot find a record in Symbol q", lib().c__ztbfindlastrecordpy(db, empty, &status));
  expectNone("Cannot find slice element z (on position 1) in Symbol p",
             lib().c__ztbfindfirstrecordslicepy(db, data, keys, &status));
  expectNone("Cannot define a slice on the Universe",
             lib().c__ztbfindlastrecordslicepy(db, db.universe(), keys, &status));
}

TEST_F(Twin, copiesHandles) {
  const Record record = db.record(data, {"b"});
  db.markError();
  const Record copy = made(lib().c__ztbcopysymboliteratorpy(db, record, &status));
  EXPECT_EQ(1, lib().c__ztbsamerecord(db, record, copy));
  expectNone("No source symbol record handle specified",
             lib().c__ztbcopysymboliteratorpy(db, nullptr, &status));
}

TEST_F(Twin, addsAndMergesRecords) {
  db.markError();
  Keys keys{"c"};
  const Record added = made(lib().c__ztbaddrecordpy(db, data, keys, &status));
  const Record merged = made(lib().c__ztbmergerecordpy(db, data, keys, &status));
  EXPECT_EQ(1, lib().c__ztbsamerecord(db, added, merged));
  expectNone("Record (\"c\") exists already for symbol p",
             lib().c__ztbaddrecordpy(db, data, keys, &status));
  expectNone("Cannot merge records to the Universe",
             lib().c__ztbmergerecordpy(db, db.universe(), keys, &status));
}

TEST_F(Twin, storesByNumber) {
  const int key = 2;
  const std::array<double, 5> values{9, 0, 0, 0, 0};
  db.markError();
  EXPECT_EQ(9.0, db.level(made(lib().c__ztbmergerecordintpy(db, data, &key, 1, 1, 1, values.data(),
                                                            &status))));
  const int unknown = 50;
  expectNone("Error when adding record to symbol p: UEL 50 is unknown. Largest known UEL is 2",
             lib().c__ztbmergerecordintpy(db, data, &unknown, 1, 1, 1, values.data(), &status));
}

TEST_F(Twin, storesSetRecordsByNumber) {
  void* const set = db.addSet("i");
  const int key = 2;
  db.markError();
  EXPECT_EQ(
      "text",
      db.elementText(made(lib().c__ztbmergesetrecordintpy(db, set, &key, 1, 1, "text", &status))));
  expectNone("ztbMergeSetRecordInt can only be used with set symbols",
             lib().c__ztbmergesetrecordintpy(db, data, &key, 1, 1, "text", &status));
}

TEST_F(Twin, storingWithoutAHandleReturnsNullWithStatusOne) {
  const int key = 1;
  const std::array<double, 5> values{9, 0, 0, 0, 0};
  EXPECT_EQ(nullptr, lib().c__ztbmergerecordintpy(db, data, &key, 1, 0, 1, values.data(), &status));
  EXPECT_EQ(1, status);
  EXPECT_EQ(9.0, db.level(db.first(data)));
}

TEST_F(Twin, choosesAStoreAndGivesNoHandleWhenThatFails) {
  EXPECT_EQ(db.find("p"),
            lib().c__ztbselectrecordstoragepy(db, data, ZTB_STORAGE_TREE_MAP, &status));
  EXPECT_EQ(1, status);
  expectNone("Unexpected exception in ztbSelectRecordStorage: symbol * is not in the symbol table",
             lib().c__ztbselectrecordstoragepy(db, db.universe(), ZTB_STORAGE_TRIE, &status));
}

TEST_F(Twin, carriesThePlainNameInTheTextOfAnException) {
  void* const bad = db.addVariable("v", 1, 99);
  Keys keys{"a"};
  EXPECT_EQ(nullptr, lib().c__ztbaddrecordpy(db, bad, keys, &status));
  EXPECT_EQ(0, status);
  EXPECT_EQ(0U, db.lastError().find("Unexpected exception in ztbAddRecord: ")) << db.lastError();
  EXPECT_EQ(nullptr, lib().c__ztbmergerecordpy(db, bad, keys, &status));
  EXPECT_EQ(0U, db.lastError().find("Unexpected exception in ztbMergeRecord: ")) << db.lastError();
}

TEST_F(Twin, namesTheMergeOfAnyRecordInTheTextOfAnExceptionByNumber) {
  void* const bad = db.addVariable("v", 1, 99);
  const int key = 1;
  EXPECT_EQ(nullptr, lib().c__ztbmergerecordintpy(db, bad, &key, 1, 1, 0, nullptr, &status));
  EXPECT_EQ(0U, db.lastError().find("Unexpected exception in ztbMergeRecordInt: "))
      << db.lastError();
}

}  // namespace
}  // namespace ztbtest
