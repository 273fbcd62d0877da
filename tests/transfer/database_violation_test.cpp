// Checks of a whole database: which symbols they look at, and how long their tables live.
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"
#include "tests/transfer/arrays.h"
#include "tests/transfer/violations.h"

namespace ztbtest {
namespace {

class DatabaseViolation : public testing::Test {
 protected:
  DatabaseViolation() : i(addSetOf(db, "i", {"a", "b"})) {}

  // A parameter over i with these labels.
  void* over(const char* name, const Labels& labels) {
    void* const symbol = db.addOver(name, ZTB_PARAMETER, {i});
    for (const std::string& label : labels) {
      db.put(symbol, {label.c_str()}, 1);
    }
    return symbol;
  }

  // What a call prints at trace level 1.
  template <class Call>
  std::string traceOf(Call call) {
    lib().c__ztbsetdebug(db, 1);
    StdoutCapture capture;
    call();
    std::string lines = capture.text();
    const StdoutCapture unwanted;
    lib().c__ztbsetdebug(db, 0);
    return lines;
  }

  Database db;
  void* i;
};

TEST_F(DatabaseViolation, areReportedSymbolBySymbolAndRecordByRecord) {
  over("p", {"a", "x", "y"});
  over("clean", {"b"});
  over("empty", {});
  db.addAlias("ali", i);
  db.put(db.addParameter("scalar", 0), {}, 1);
  db.put(db.addParameter("free"), {"x"}, 1);
  over("q", {"y", "b", "x"});
  EXPECT_TRUE(violates(db));
  EXPECT_EQ((std::vector<Violating>{
                {"p", {"x"}, {1}}, {"p", {"y"}, {1}}, {"q", {"x"}, {1}}, {"q", {"y"}, {1}}}),
            violationsOf(db));
}

TEST_F(DatabaseViolation, areNoneWithoutSymbols) {
  Database empty;
  void* handle = &db;
  EXPECT_SUCCESS(empty, lib().c__ztbgetfirstdbdv(empty, &handle));
  EXPECT_EQ(nullptr, handle);
  EXPECT_FALSE(violates(empty));
}

TEST_F(DatabaseViolation, areNoneAndNoCheckBeginsWithoutASymbolOverADomain) {
  void* const symbol = over("p", {});
  EXPECT_EQ(nullptr, firstInDatabase(db));
  db.put(symbol, {"late"}, 1);
  EXPECT_TRUE(violates(db, symbol));
  db.put(i, {"late"});
  EXPECT_FALSE(violates(db, symbol)) << "the table is built anew: no check of the database is on";
}

TEST_F(DatabaseViolation, areCheckedAgainstTheDomainAsItWasUntilTheCheckIsDone) {
  void* const symbol = over("p", {"a"});
  EXPECT_EQ(nullptr, firstInDatabase(db));
  db.put(symbol, {"late"}, 1);
  db.put(i, {"late"});
  EXPECT_TRUE(violates(db, symbol)) << "the check is on although it found nothing";
  EXPECT_SUCCESS(db, lib().c__ztbdomaincheckdone(db));
  EXPECT_FALSE(violates(db, symbol));
  EXPECT_SUCCESS(db, lib().c__ztbdomaincheckdone(db));
}

TEST_F(DatabaseViolation, tablesOutliveTheirHandlesUntilTheCheckIsDone) {
  void* const symbol = over("p", {"x", "y", "z"});
  Violation first = firstInDatabase(db);
  Violation second = firstIn(db, symbol);
  second.free();
  EXPECT_TRUE(first.moveNext());
  EXPECT_TRUE(first.moveNext());
  EXPECT_FALSE(first.moveNext());
  first.free();
  EXPECT_TRUE(violates(db, symbol));
  EXPECT_SUCCESS(db, lib().c__ztbdomaincheckdone(db));
}

TEST_F(DatabaseViolation, aHandleFindsNoMoreAfterTheCheckIsDone) {
  over("p", {"x", "y"});
  Violation violation = firstInDatabase(db);
  EXPECT_SUCCESS(db, lib().c__ztbdomaincheckdone(db));
  EXPECT_FALSE(violation.moveNext());
}

TEST_F(DatabaseViolation, yesOrNoEndsTheCheck) {
  void* const symbol = over("p", {"late"});
  EXPECT_TRUE(violates(db));
  db.put(i, {"late"});
  EXPECT_FALSE(violates(db));
  EXPECT_FALSE(violates(db, symbol));
  db.put(symbol, {"later"}, 1);
  EXPECT_TRUE(violates(db, symbol));
  db.put(i, {"later"});
  EXPECT_FALSE(violates(db, symbol));
}

TEST_F(DatabaseViolation, inALaterSymbolAreReachedFromAHandle) {
  over("p", {"x"});
  over("clean", {"a"});
  over("q", {"y"});
  Violation violation = firstInDatabase(db);
  EXPECT_TRUE(violation.moveToNextSymbol());
  EXPECT_EQ((Violating{"q", {"y"}, {1}}), violation.described());
  EXPECT_FALSE(violation.moveToNextSymbol());
  EXPECT_EQ((Violating{"q", {"y"}, {1}}), violation.described()) << "it stays where it was";
  EXPECT_EQ(1, lib().c__ztbdomaincheckdone(db));
}

TEST_F(DatabaseViolation, inALaterSymbolLoseTheirTablesOutsideACheckOfTheDatabase) {
  void* const first = over("p", {"x"});
  over("q", {"y", "z"});
  Violation violation = firstIn(db, first);
  EXPECT_TRUE(violation.moveToNextSymbol());
  EXPECT_EQ((Violating{"q", {"y"}, {0}}), violation.described());
  EXPECT_FALSE(violation.moveNext());
}

TEST_F(DatabaseViolation, inALaterSymbolOnAnotherStoreAreOutOfReachOfAHandle) {
  over("p", {"x", "z"});
  ASSERT_EQ(1, lib().c__ztbselectrecordstorage(db, nullptr, ZTB_STORAGE_VECTOR));
  over("q", {"y"});
  ASSERT_EQ(1, lib().c__ztbselectrecordstorage(db, nullptr, ZTB_STORAGE_TREE_MAP));
  Violation violation = firstInDatabase(db);
  int found = 77;
  EXPECT_UNEXPECTED(db, "ztbGetFirstDVInNextSymbol",
                    lib().c__ztbgetfirstdvinnextsymbol(db, violation, &found));
  EXPECT_EQ(0, found);
  EXPECT_EQ((Violating{"p", {"x"}, {1}}), violation.described());
  EXPECT_TRUE(violation.moveNext());
  EXPECT_EQ(1, lib().c__ztbdomaincheckdone(db));
}

TEST_F(DatabaseViolation, ofADomainWithALabelNumberThatNoLabelHasCannotBeTold) {
  void* const symbol = over("p", {"x"});
  putInSetByNumber(db, i, {99});
  int result = 77;
  EXPECT_UNEXPECTED(db, "ztbGetFirstDBDV", lib().c__ztbcheckdbdv(db, &result));
  EXPECT_EQ(0, result);
  ASSERT_EQ(1, lib().c__ztbclearsymbol(db, i));
  EXPECT_TRUE(violates(db, symbol)) << "no check was begun";
}

TEST_F(DatabaseViolation, traceTheOperationsThatTheyCall) {
  over("clean", {"a"});
  void* const symbol = over("p", {"x"});
  over("q", {"y"});
  int number = 0;
  void* handle = nullptr;
  EXPECT_EQ(
      "ztbCheckDBDV\nztbGetFirstDBDV\nztbGetFirstDVInSymbol\nztbGetFirstDVInSymbol\n"
      "ztbFreeDVHandle\nztbDomainCheckDone\n",
      traceOf([&] { lib().c__ztbcheckdbdv(db, &number); }));
  EXPECT_EQ("ztbCheckSymbolDV\nztbGetFirstDVInSymbol\nztbFreeDVHandle\n",
            traceOf([&] { lib().c__ztbchecksymboldv(db, symbol, &number); }));
  EXPECT_EQ("ztbGetFirstDBDV\nztbGetFirstDVInSymbol\nztbGetFirstDVInSymbol\n",
            traceOf([&] { lib().c__ztbgetfirstdbdv(db, &handle); }));
  EXPECT_EQ("ztbGetFirstDVInNextSymbol\nztbGetFirstDVInSymbol\nztbFreeDVHandle\n",
            traceOf([&] { lib().c__ztbgetfirstdvinnextsymbol(db, handle, &number); }));
  EXPECT_EQ("ztbMoveNextDVInSymbol\n",
            traceOf([&] { lib().c__ztbmovenextdvinsymbol(db, handle, &number); }));
  EXPECT_EQ("ztbFreeDVHandle\n", traceOf([&] { lib().c__ztbfreedvhandle(db, handle); }));
  EXPECT_EQ("ztbDomainCheckDone\n", traceOf([&] { lib().c__ztbdomaincheckdone(db); }));
}

TEST_F(DatabaseViolation, twinsReturnTheHandleAndTraceAsTheyAreMade) {
  void* const symbol = over("p", {"x"});
  int status = 77;
  void* handle = nullptr;
  EXPECT_EQ("ztbGetFirstDBDVPy\nztbGetFirstDBDV\nztbGetFirstDVInSymbol\n",
            traceOf([&] { handle = lib().c__ztbgetfirstdbdvpy(db, &status); }));
  const Violation violation(db, handle);
  EXPECT_NE(nullptr, handle);
  EXPECT_EQ(1, status);
  status = 77;
  EXPECT_EQ("ztbGetDVSymbolPy\n",
            traceOf([&] { handle = lib().c__ztbgetdvsymbolpy(db, violation, &status); }));
  EXPECT_EQ(symbol, handle);
  EXPECT_EQ(1, status);
  status = 77;
  EXPECT_EQ("ztbGetDVSymbolRecordPy\n",
            traceOf([&] { handle = lib().c__ztbgetdvsymbolrecordpy(db, violation, &status); }));
  const Record record(db, handle);
  EXPECT_EQ((Labels{"x"}), db.labels(record, 1));
  EXPECT_EQ(1, status);
  status = 77;
  EXPECT_EQ("ztbGetFirstDVInSymbolPy\nztbGetFirstDVInSymbol\n",
            traceOf([&] { handle = lib().c__ztbgetfirstdvinsymbolpy(db, symbol, &status); }));
  const Violation second(db, handle);
  EXPECT_NE(nullptr, handle);
  EXPECT_EQ(1, status);
}

TEST_F(DatabaseViolation, twinsFailWithNullAndThePlainTexts) {
  int status = 77;
  db.markError();
  EXPECT_EQ(nullptr, lib().c__ztbgetdvsymbolpy(db, nullptr, &status));
  EXPECT_EQ(0, status);
  EXPECT_EQ("No domain violation handle specified", db.lastError());
  status = 77;
  db.markError();
  EXPECT_EQ(nullptr, lib().c__ztbgetdvsymbolrecordpy(db, nullptr, &status));
  EXPECT_EQ(0, status);
  EXPECT_EQ("No domain violation handle specified", db.lastError());
  over("p", {"x"});
  Violation violation = firstInDatabase(db);
  ASSERT_FALSE(violation.moveNext());
  EXPECT_EQ(nullptr, lib().c__ztbgetdvsymbolpy(db, violation, &status));
  EXPECT_EQ("No valid violation handle", db.lastError());
  db.markError();
  EXPECT_EQ(nullptr, lib().c__ztbgetdvsymbolrecordpy(db, violation, &status));
  EXPECT_EQ("No valid violation handle", db.lastError());
  EXPECT_EQ(0, status);
  EXPECT_EQ(1, lib().c__ztbdomaincheckdone(db));
}

TEST_F(DatabaseViolation, twinsGiveNullAndSuccessWhereThereIsNone) {
  void* const symbol = over("p", {"a"});
  int status = 77;
  EXPECT_EQ(nullptr, lib().c__ztbgetfirstdvinsymbolpy(db, symbol, &status));
  EXPECT_EQ(1, status);
  status = 77;
  EXPECT_EQ(nullptr, lib().c__ztbgetfirstdbdvpy(db, &status));
  EXPECT_EQ(1, status);
  EXPECT_EQ(1, lib().c__ztbdomaincheckdone(db));
}

TEST_F(DatabaseViolation, twinsTellExceptionsUnderThePlainName) {
  void* const symbol = over("p", {"x"});
  const Violation violation = firstIn(db, symbol);
  ASSERT_EQ(1, lib().c__ztbselectrecordstorage(db, nullptr, ZTB_STORAGE_TRIE));
  int status = 77;
  const auto call = [&] {
    return lib().c__ztbgetdvsymbolrecordpy(db, violation, &status) == nullptr ? 0 : 1;
  };
  EXPECT_UNEXPECTED(db, "ztbGetDVSymbolRecord", call());
  EXPECT_EQ(0, status);
}

class DatabaseViolationOfFile : public testing::Test {
 protected:
  // A file whose first symbols are over a set at its end, each with one label.
  std::string write(const std::vector<std::pair<const char*, const char*>>& symbols) {
    Database db;
    for (const auto& [name, label] : symbols) {
      db.put(db.addOverNames(name, ZTB_PARAMETER, {"s"}), {label}, 1);
    }
    addSetOf(db, "s", {"a", "b"});
    std::string file = folder.file("data.rxf");
    EXPECT_EQ(1, lib().c__ztbwriterxf(db, file.c_str(), 1)) << db.lastError();
    return file;
  }

  TempFolder folder;
};

TEST_F(DatabaseViolationOfFile, areSoughtInTheFirstAndThirdOfThreeSymbolsOnly) {
  const std::string file = write({{"p", "x"}, {"q", "y"}, {"r", "z"}});
  Database db(file);
  EXPECT_EQ((std::vector<Violating>{{"p", {"x"}, {1}}, {"r", {"z"}, {1}}}), violationsOf(db));
  EXPECT_EQ((std::vector<Violating>{}), violationsOf(db, db.find("q"))) << "it was never read";
  ASSERT_EQ(1, db.recordCount(db.find("q")));
  EXPECT_EQ((std::vector<Violating>{{"q", {"y"}, {1}}}), violationsOf(db, db.find("q")));
}

TEST_F(DatabaseViolationOfFile, areNotSeenInTheSymbolDirectlyBehindACheckedOne) {
  Database db(write({{"p", "a"}, {"q", "y"}, {"r", "b"}}));
  EXPECT_FALSE(violates(db));
}

TEST_F(DatabaseViolationOfFile, areSeenInTheSecondSymbolWhenTheFirstIsEmpty) {
  Database made;
  made.addOverNames("p", ZTB_PARAMETER, {"s"});
  made.put(made.addOverNames("q", ZTB_PARAMETER, {"s"}), {"y"}, 1);
  addSetOf(made, "s", {"a"});
  const std::string file = folder.file("empty.rxf");
  ASSERT_EQ(1, lib().c__ztbwriterxf(made, file.c_str(), 1));
  Database db(file);
  EXPECT_TRUE(violates(db)) << "a symbol without records is passed over one by one";
}

TEST_F(DatabaseViolationOfFile, areSoughtInEverySymbolThatTheApiMade) {
  Database db(write({}));
  void* const s = db.find("s");
  for (const char* name : {"p", "q", "r"}) {
    db.put(db.addOver(name, ZTB_PARAMETER, {s}), {"nowhere"}, 1);
  }
  EXPECT_EQ(3U, violationsOf(db).size()) << "their numbers are their positions";
}

TEST_F(DatabaseViolationOfFile, areDecidedByTheSetOfAnAliasOfTheFile) {
  Database made;
  made.put(made.addOverNames("p", ZTB_PARAMETER, {"ali"}), {"x"}, 1);
  void* const s = addSetOf(made, "s", {"a"});
  made.addAlias("ali", s);
  const std::string file = folder.file("alias.rxf");
  ASSERT_EQ(1, lib().c__ztbwriterxf(made, file.c_str(), 1));
  Database db(file);
  EXPECT_EQ((std::vector<Violating>{{"p", {"x"}, {1}}}), violationsOf(db));
}

TEST_F(DatabaseViolationOfFile, areNoneWithAFailedReadAsTheLastError) {
  Database db(write({{"p", "x"}}));
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  void* handle = &db;
  db.markError();
  EXPECT_EQ(1, lib().c__ztbgetfirstdbdv(db, &handle));
  EXPECT_EQ(nullptr, handle);
  EXPECT_EQ("Symbol p not initialized from RXF or PBI: 3", db.lastError());
}

TEST_F(DatabaseViolationOfFile, cannotBeToldWithoutTheDomain) {
  Database db(write({{"p", "x"}}));
  ASSERT_EQ(1, db.recordCount(db.find("p")));
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  int result = 77;
  EXPECT_FAILURE(db, "Symbol s not initialized from RXF or PBI: 3",
                 lib().c__ztbcheckdbdv(db, &result));
  EXPECT_EQ(0, result);
}

}  // namespace
}  // namespace ztbtest
