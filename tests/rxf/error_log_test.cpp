#include "providers/rxf/error_log.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "providers/rxf/error_table.h"

namespace rxffile {
namespace {

std::string textOf(const ErrorLog& log, int number) {
  std::array<char, 256> text{};
  log.compose(number, text.data());
  return text.data();
}

TEST(ErrorLog, givesTheLatestFirstAndZeroWhenEmpty) {
  ErrorLog log;
  log.record(ErrorNumber::recordTwice, DetailText("one"));
  log.record(ErrorNumber::diskFull, DetailText("two"));
  log.record(ErrorNumber::diskFull, DetailText("three"));
  EXPECT_EQ(log.count(), 3);
  EXPECT_EQ(log.takeLatest(), 9);
  EXPECT_EQ(log.takeLatest(), 9);
  EXPECT_EQ(log.takeLatest(), 21);
  EXPECT_EQ(log.takeLatest(), 0);
  EXPECT_EQ(log.count(), 3) << "taking does not lower the count";
}

TEST(ErrorLog, keepsTheDetailOfTheEarliestPendingError) {
  ErrorLog log;
  log.record(ErrorNumber::recordTwice, DetailText("in p, behind record %d", 7));
  log.record(ErrorNumber::recordTwice, DetailText("in q"));
  EXPECT_EQ(textOf(log, 21), "Record stands twice: in p, behind record 7");
  log.takeLatest();
  log.takeLatest();
  EXPECT_EQ(textOf(log, 21), "Record stands twice: in p, behind record 7");
  log.record(ErrorNumber::recordTwice, DetailText("in r"));
  EXPECT_EQ(textOf(log, 21), "Record stands twice: in r");
}

TEST(ErrorLog, millionsOfErrorsAreAllGivenBack) {
  ErrorLog log;
  constexpr int many = 3000000;
  for (int i = 0; i < many; ++i) log.record(ErrorNumber::keyOutsideLabels, DetailText());
  log.record(ErrorNumber::outsideDomain, DetailText());
  int taken = 0;
  while (log.takeLatest() != 0) ++taken;
  EXPECT_EQ(taken, many + 1);
}

TEST(ErrorLog, aTextIsCutAt255Bytes) {
  ErrorLog log;
  log.record(ErrorNumber::damaged, DetailText("%s", std::string(400, 'x').c_str()));
  EXPECT_EQ(textOf(log, 8).size(), 255U);
}

TEST(ErrorLog, anUnknownNumberIsNamed) {
  const ErrorLog log;
  EXPECT_EQ(textOf(log, 4711), "Unknown error number 4711");
  EXPECT_EQ(textOf(log, 0), "Unknown error number 0");
  EXPECT_EQ(textOf(log, -1), "Unknown error number -1");
}

TEST(ErrorTable, aNumberKeepsItsText) {
  const std::array<const char*, 37> texts = {
      "No such file",
      "No permission",
      "Is a folder",
      "Not a regular file",
      "Not an RXF file",
      "File has a newer version of the format",
      "File is cut short",
      "File is damaged",
      "Disk full",
      "Writing failed",
      "Reading failed",
      "File cannot be opened",
      "File name not acceptable",
      "Label not acceptable",
      "Label stands twice",
      "Symbol name not acceptable",
      "Symbol stands twice",
      "Alias target is no set written before",
      "Key outside the registered labels",
      "Keys not in ascending order",
      "Record stands twice",
      "Domain is no set written before",
      "Domain set is not one-dimensional",
      "Record outside its domain",
      "Call out of order",
      "Text longer than 255 bytes",
      "Dimension outside 0 to 20",
      "Symbol type not known",
      "Limit exceeded",
      "No such symbol number",
      "No such label number",
      "An alias has no records of its own",
      "Out of memory",
      "Internal error",
      "File was changed while it was open",
      "Text stands twice",
      "Text not in the table",
  };
  int number = 0;
  for (const char* text : texts) {
    EXPECT_STREQ(generalErrorText(++number), text) << number;
  }
  EXPECT_EQ(number + 1, kErrorNumberEnd);
}

TEST(ErrorTable, everyNumberHasATextOfItsOwn) {
  for (int number = 1; number < kErrorNumberEnd; ++number) {
    ASSERT_NE(generalErrorText(number), nullptr) << number;
    for (int other = 1; other < number; ++other) {
      EXPECT_STRNE(generalErrorText(number), generalErrorText(other));
    }
  }
  EXPECT_EQ(generalErrorText(kErrorNumberEnd), nullptr);
}

}  // namespace
}  // namespace rxffile
