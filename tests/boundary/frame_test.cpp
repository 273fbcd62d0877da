// The database object as a whole: what it answers about itself, how failures are told, and the log.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/database.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

TEST(Info, answersZeroForEveryKeyOfANewDatabase) {
  const Database db;
  for (int key = 0; key <= 4; ++key) {
    EXPECT_EQ(0, db.info(key)) << "key " << key;
  }
}

TEST(Info, countsSymbolsWithAndWithoutAliasesAndLabels) {
  Database db;
  void* const set = db.addSet("i");
  db.addAlias("j", set);
  db.addParameter("p");
  db.uel("one");
  db.uel("two");
  EXPECT_EQ(2, db.info(ZTB_INFO_SYMBOL_COUNT));
  EXPECT_EQ(3, db.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
  EXPECT_EQ(2, db.info(ZTB_INFO_UEL_COUNT));
  EXPECT_EQ(0, db.info(ZTB_INFO_RECORD_STORAGE));
  EXPECT_EQ(0, db.info(ZTB_INFO_FILE_BACKED));
}

TEST(Info, zeroesItsOtherOutArgumentsAndFillsNeither) {
  const Database db;
  int number = 7;
  double real = 7.5;
  TextBuffer text;
  EXPECT_EQ(1, lib().c__ztbinfo(db, ZTB_INFO_UEL_COUNT, &number, &real, text));
  EXPECT_EQ(0, number);
  EXPECT_EQ(0.0, real);
  EXPECT_EQ("", text.str());
}

TEST(Info, keyFiveFailsWithATextThatAllowsFive) {
  Database db;
  EXPECT_FAILURE(db, "infoKey needs to be between 0 and 5, saw 5",
                 lib().c__ztbinfo(db, 5, nullptr, nullptr, nullptr));
}

TEST(Info, negativeKeyFailsLikeOneThatIsTooLarge) {
  Database db;
  EXPECT_FAILURE(db, "infoKey needs to be between 0 and 5, saw -1",
                 lib().c__ztbinfo(db, -1, nullptr, nullptr, nullptr));
}

TEST(Info, emptiesItsOutArgumentsBeforeItRefusesAKey) {
  const Database db;
  int number = 7;
  double real = 7.5;
  TextBuffer text;
  EXPECT_EQ(0, lib().c__ztbinfo(db, 6, &number, &real, text));
  EXPECT_EQ(0, number);
  EXPECT_EQ(0.0, real);
  EXPECT_EQ("", text.str());
}

TEST(LastError, isEmptyOnANewDatabase) {
  const Database db;
  TextBuffer text;
  EXPECT_EQ(0, lib().c__ztbgetlasterror(db, text));
  EXPECT_EQ("", text.str());
}

TEST(LastError, outlivesLaterSuccessesAndItsOwnReading) {
  Database db;
  void* symbol = nullptr;
  ASSERT_EQ(0, lib().c__ztbfindsymbol(db, "nowhere", &symbol));
  db.addSet("i");
  for (int i = 0; i < 2; ++i) {
    TextBuffer text;
    EXPECT_EQ(1, lib().c__ztbgetlasterror(db, text));
    EXPECT_EQ("Cannot find symbol nowhere", text.str());
  }
}

TEST(LastError, isCutTo255Chars) {
  const Database db;
  const std::string name(300, 'n');
  void* symbol = nullptr;
  ASSERT_EQ(0, lib().c__ztbfindsymbol(db, name.c_str(), &symbol));
  EXPECT_EQ(("Cannot find symbol " + name).substr(0, 255), db.lastError());
}

TEST(LastError, belongsToItsDatabase) {
  const Database first;
  const Database second;
  void* symbol = nullptr;
  ASSERT_EQ(0, lib().c__ztbfindsymbol(first, "nowhere", &symbol));
  EXPECT_EQ("Cannot find symbol nowhere", first.lastError());
  EXPECT_EQ("", second.lastError());
}

TEST(PrintLog, writesTheWholeTextAndALineEndWithoutACallback) {
  const Database db;
  const std::string text(300, 'x');
  StdoutCapture capture;
  const int result = lib().c__ztbprintlog(db, text.c_str());
  EXPECT_EQ(text + "\n", capture.text());
  EXPECT_EQ(1, result);
}

TEST(PrintLog, takesPercentSignsAsTheyAre) {
  const Database db;
  StdoutCapture capture;
  lib().c__ztbprintlog(db, "100%s %d");
  EXPECT_EQ("100%s %d\n", capture.text());
}

TEST(PrintLog, withoutATextFails) {
  Database db;
  EXPECT_UNEXPECTED(db, "ztbPrintLog", lib().c__ztbprintlog(db, nullptr));
}

TEST(SetDebug, returnsOneAndUsesNoHandle) {
  const Database db;
  EXPECT_EQ(1, lib().c__ztbsetdebug(db, 0));
  EXPECT_EQ(1, lib().c__ztbsetdebug(nullptr, 0));
}

}  // namespace
}  // namespace ztbtest
