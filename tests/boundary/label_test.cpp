// The universe of labels: what is accepted, how a label is normalised and compared, and the texts.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/database.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

constexpr int sentinel = -77;

std::string tooLong(const std::string& label) {
  return ("Label exceeds maximum size of 63: >" + label + "<").substr(0, 255);
}

std::string label(const Database& db, int number) {
  TextBuffer text;
  EXPECT_EQ(1, lib().c__ztbgetuelbyindex(db, number, text));
  return text.str();
}

TEST(MergeLabel, numbersFromOneAndFoldsCaseKeepingTheFirstSpelling) {
  Database db;
  EXPECT_EQ(1, db.uel("a"));
  EXPECT_EQ(2, db.uel("b"));
  EXPECT_EQ(1, db.uel("A"));
  EXPECT_EQ("a", label(db, 1));
  EXPECT_EQ(2, db.info(ZTB_INFO_UEL_COUNT));
}

TEST(MergeLabel, leavesTheLastErrorAlone) {
  Database db;
  int number = sentinel;
  EXPECT_SUCCESS(db, lib().c__ztbmergeuel(db, "a", &number));
  EXPECT_EQ(1, number);
}

TEST(MergeLabel, cutsTrailingBlanks) {
  Database db;
  EXPECT_EQ(1, db.uel("a"));
  EXPECT_EQ(1, db.uel("a   "));
  EXPECT_EQ(2, db.uel("b  "));
  EXPECT_EQ("b", label(db, 2));
  EXPECT_EQ(2, db.findUel("b"));
}

TEST(MergeLabel, keepsLeadingAndInnerBlanks) {
  Database db;
  EXPECT_EQ(1, db.uel("a"));
  EXPECT_EQ(2, db.uel(" a"));
  EXPECT_EQ(3, db.uel("a a"));
  EXPECT_EQ(" a", label(db, 2));
}

TEST(MergeLabel, foldsOnlyAsciiLetters) {
  Database db;
  EXPECT_EQ(1, db.uel("\xC4"));
  EXPECT_EQ(2, db.uel("\xE4"));
  EXPECT_EQ(3, db.uel("@"));
  EXPECT_EQ(4, db.uel("`"));
  EXPECT_EQ(5, db.uel("["));
  EXPECT_EQ(6, db.uel("{"));
  EXPECT_EQ("\xE4", label(db, 2));
}

TEST(MergeLabel, takesEveryByteFrom32Up) {
  Database db;
  for (int byte = 33; byte < 256; ++byte) {
    const std::string one(1, static_cast<char>(byte));
    int number = 0;
    EXPECT_EQ(1, lib().c__ztbmergeuel(db, one.c_str(), &number)) << byte;
  }
  EXPECT_EQ(256 - 33 - 26, db.info(ZTB_INFO_UEL_COUNT));
}

TEST(MergeLabel, acceptsSixtyThreeCharsAndRefusesSixtyFour) {
  Database db;
  const std::string longest(63, 'x');
  EXPECT_EQ(1, db.uel(longest.c_str()));
  EXPECT_EQ(longest, label(db, 1));
  const std::string over(64, 'x');
  int number = sentinel;
  EXPECT_FAILURE(db, tooLong(over), lib().c__ztbmergeuel(db, over.c_str(), &number));
  EXPECT_EQ(sentinel, number);
}

TEST(MergeLabel, measuresTheTrimmedLabel) {
  Database db;
  EXPECT_EQ(1, db.uel((std::string(63, 'x') + std::string(10, ' ')).c_str()));
  EXPECT_EQ(std::string(63, 'x'), label(db, 1));
  EXPECT_EQ(2, db.uel(std::string("y").append(200, ' ').c_str()));
  EXPECT_EQ("y", label(db, 2));
}

TEST(MergeLabel, refusesSixtyFourCharsFollowedByBlanks) {
  Database db;
  const std::string over = std::string(64, 'x') + "     ";
  int number = sentinel;
  EXPECT_FAILURE(db, tooLong(over), lib().c__ztbmergeuel(db, over.c_str(), &number));
  EXPECT_EQ(sentinel, number);
}

TEST(MergeLabel, countsBlanksBeforeTheLastChar) {
  Database db;
  const std::string over = std::string("a").append(100, ' ').append("b");
  int number = sentinel;
  EXPECT_FAILURE(db, tooLong(over), lib().c__ztbmergeuel(db, over.c_str(), &number));
}

TEST(MergeLabel, textOfALongLabelIsCutTo255Chars) {
  Database db;
  const std::string over(400, 'x');
  int number = sentinel;
  EXPECT_FAILURE(db, tooLong(over), lib().c__ztbmergeuel(db, over.c_str(), &number));
  EXPECT_EQ(255U, db.lastError().size());
}

TEST(MergeLabel, acceptsOneKindOfQuote) {
  Database db;
  EXPECT_EQ(1, db.uel("it's"));
  EXPECT_EQ(2, db.uel("6\" pipe"));
  EXPECT_EQ(3, db.uel("''"));
  EXPECT_EQ(4, db.uel("\"\""));
  EXPECT_EQ("6\" pipe", label(db, 2));
}

TEST(MergeLabel, refusesBothKindsOfQuoteInEitherOrder) {
  Database db;
  int number = sentinel;
  EXPECT_FAILURE(db, "Label with single and double quote not allowed >a'b\"c<",
                 lib().c__ztbmergeuel(db, "a'b\"c", &number));
  EXPECT_FAILURE(db, "Label with single and double quote not allowed >\"'<",
                 lib().c__ztbmergeuel(db, "\"'", &number));
  EXPECT_EQ(sentinel, number);
  EXPECT_EQ(0, db.info(ZTB_INFO_UEL_COUNT));
}

TEST(MergeLabel, looksForQuotesBehindTheLongestLabelToo) {
  Database db;
  const std::string text = std::string("'").append(99, 'x').append("\"");
  int number = sentinel;
  EXPECT_FAILURE(db, "Label with single and double quote not allowed >" + text + "<",
                 lib().c__ztbmergeuel(db, text.c_str(), &number));
}

TEST(MergeLabel, refusesControlCharsWithoutAText) {
  Database db;
  for (int byte = 1; byte < 32; ++byte) {
    const std::string text = std::string("a") + static_cast<char>(byte);
    int number = sentinel;
    EXPECT_SILENT_FAILURE(db, lib().c__ztbmergeuel(db, text.c_str(), &number));
    EXPECT_EQ(sentinel, number);
  }
  EXPECT_EQ(0, db.info(ZTB_INFO_UEL_COUNT));
}

TEST(MergeLabel, looksForControlCharsBehindTheLongestLabelToo) {
  Database db;
  const std::string text = std::string(100, 'x') + "\t";
  int number = sentinel;
  EXPECT_SILENT_FAILURE(db, lib().c__ztbmergeuel(db, text.c_str(), &number));
}

TEST(MergeLabel, theFirstFaultOfTheWalkDecides) {
  Database db;
  int number = sentinel;
  EXPECT_FAILURE(db, "Label with single and double quote not allowed >'\"\t<",
                 lib().c__ztbmergeuel(db, "'\"\t", &number));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbmergeuel(db, "'\t\"", &number));
}

TEST(MergeLabel, refusesNullWithoutAText) {
  Database db;
  int number = sentinel;
  EXPECT_SILENT_FAILURE(db, lib().c__ztbmergeuel(db, nullptr, &number));
  EXPECT_EQ(sentinel, number);
}

TEST(MergeLabel, ofBlanksIsTheReservedNumberZero) {
  Database db;
  for (const size_t count : {size_t{1}, size_t{3}, size_t{64}, size_t{300}}) {
    int number = sentinel;
    EXPECT_SUCCESS(db, lib().c__ztbmergeuel(db, std::string(count, ' ').c_str(), &number));
    EXPECT_EQ(0, number) << count << " blanks";
  }
  EXPECT_EQ(0, db.info(ZTB_INFO_UEL_COUNT));
}

TEST(MergeLabel, anEmptyLabelIsALabelOfItsOwn) {
  Database db;
  EXPECT_EQ(-1, db.findUel(""));
  EXPECT_EQ(1, db.uel(""));
  EXPECT_EQ(1, db.uel(""));
  EXPECT_EQ(1, db.findUel(""));
  EXPECT_EQ("", label(db, 1));
}

TEST(MergeLabel, tellsThousandsOfLabelsApart) {
  Database db;
  constexpr int count = 16000;
  for (int i = 1; i <= count; ++i) {
    ASSERT_EQ(i, db.uel((numbered("Label", i)).c_str()));
  }
  for (int i = 1; i <= count; ++i) {
    ASSERT_EQ(i, db.findUel((numbered("LABEL", i)).c_str()));
  }
  EXPECT_EQ("Label16000", label(db, count));
  EXPECT_EQ(-1, db.findUel("Label16001"));
}

TEST(FindLabel, ofAnUnknownLabelIsMinusOneAndSuccess) {
  Database db;
  int number = sentinel;
  EXPECT_SUCCESS(db, lib().c__ztbfinduel(db, "nowhere", &number));
  EXPECT_EQ(-1, number);
  EXPECT_EQ(0, db.info(ZTB_INFO_UEL_COUNT));
}

TEST(FindLabel, normalisesLikeMerge) {
  Database db;
  db.uel("Corn flour");
  EXPECT_EQ(1, db.findUel("CORN FLOUR  "));
  EXPECT_EQ(-1, db.findUel(" corn flour"));
  EXPECT_EQ(0, db.findUel("   "));
}

TEST(FindLabel, refusesLikeMerge) {
  Database db;
  int number = sentinel;
  const std::string over(64, 'x');
  EXPECT_FAILURE(db, tooLong(over), lib().c__ztbfinduel(db, over.c_str(), &number));
  EXPECT_FAILURE(db, "Label with single and double quote not allowed >'\"<",
                 lib().c__ztbfinduel(db, "'\"", &number));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbfinduel(db, "a\tb", &number));
  EXPECT_SILENT_FAILURE(db, lib().c__ztbfinduel(db, nullptr, &number));
  EXPECT_EQ(sentinel, number);
}

TEST(LabelByNumber, givesEveryLabel) {
  Database db;
  db.uel("one");
  db.uel("two");
  TextBuffer text;
  EXPECT_SUCCESS(db, lib().c__ztbgetuelbyindex(db, 2, text));
  EXPECT_EQ("two", text.str());
}

TEST(LabelByNumber, refusesTheReservedEntryAndNumbersOutOfRange) {
  Database db;
  db.uel("one");
  db.uel("two");
  TextBuffer text;
  EXPECT_FAILURE(db, "Uel index 0 out of range [1,2]", lib().c__ztbgetuelbyindex(db, 0, text));
  EXPECT_FAILURE(db, "Uel index 3 out of range [1,2]", lib().c__ztbgetuelbyindex(db, 3, text));
  EXPECT_FAILURE(db, "Uel index -1 out of range [1,2]", lib().c__ztbgetuelbyindex(db, -1, text));
}

TEST(LabelByNumber, rangeOfAnEmptyUniverseEndsAtZero) {
  Database db;
  TextBuffer text;
  EXPECT_FAILURE(db, "Uel index 1 out of range [1,0]", lib().c__ztbgetuelbyindex(db, 1, text));
}

}  // namespace
}  // namespace ztbtest
