#include "core/uel_list.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>

namespace ztb::uellist {
namespace {

class UelList : public testing::Test {
 protected:
  // -99 in the out-argument shows whether it was written.
  static constexpr int untouched = -99;

  int merged(const std::string& label) {
    int number = untouched;
    EXPECT_TRUE(list_.merge(label.c_str(), &number)) << label;
    return number;
  }
  int found(const std::string& label) {
    int number = untouched;
    EXPECT_TRUE(list_.find(label.c_str(), &number)) << label;
    return number;
  }
  // Both ways in refuse the label, write no number and leave this message.
  void expectRefused(const char* label, const std::string& message) {
    int number = untouched;
    const int before = list_.size();
    EXPECT_FALSE(list_.merge(label, &number));
    EXPECT_EQ(message, message_);
    std::strcpy(message_, "earlier");
    EXPECT_FALSE(list_.find(label, &number));
    EXPECT_EQ(message, message_);
    EXPECT_EQ(untouched, number);
    EXPECT_EQ(before, list_.size());
  }

  char message_[256] = "earlier";
  UELList list_{message_, sizeof message_};
};

TEST_F(UelList, startsWithTheReservedBlank) {
  EXPECT_EQ(1, list_.size());
  EXPECT_STREQ(" ", list_.at(0));
}

TEST_F(UelList, numbersLabelsFrom1AndFoldsCase) {
  EXPECT_EQ(1, merged("a"));
  EXPECT_EQ(2, merged("b"));
  EXPECT_EQ(1, merged("A"));
  EXPECT_STREQ("a", list_.at(1));
  EXPECT_EQ(3, list_.size());
}

TEST_F(UelList, findOfALabelNeverMergedYieldsMinus1AndSuccess) {
  EXPECT_EQ(-1, found("never"));
  EXPECT_EQ(1, list_.size());
}

TEST_F(UelList, trailingBlanksNeverReachTheList) {
  EXPECT_EQ(1, merged("a"));
  EXPECT_EQ(1, merged("a   "));
  EXPECT_EQ(2, merged("b  "));
  EXPECT_STREQ("b", list_.at(2));
  EXPECT_EQ(2, found("B "));
}

TEST_F(UelList, leadingAndInnerBlanksStay) {
  EXPECT_EQ(1, merged("a"));
  EXPECT_EQ(2, merged(" a"));
  EXPECT_EQ(3, merged("a a "));
  EXPECT_STREQ(" a", list_.at(2));
  EXPECT_STREQ("a a", list_.at(3));
}

TEST_F(UelList, acceptsALabelOf63Chars) {
  const std::string longest(63, 'x');
  EXPECT_EQ(1, merged(longest));
  EXPECT_EQ(longest, list_.at(1));
}

TEST_F(UelList, acceptsALabelOf63CharsAndTrailingBlanks) {
  const std::string longest(63, 'x');
  EXPECT_EQ(1, merged(longest + std::string(10, ' ')));
  EXPECT_EQ(longest, list_.at(1));
}

TEST_F(UelList, refusesALabelOf64CharsNaming63) {
  const std::string label(64, 'x');
  expectRefused(label.c_str(), "Label exceeds maximum size of 63: >" + label + "<");
}

TEST_F(UelList, refusesALabelOf64CharsAndTrailingBlanksAsGiven) {
  const std::string label = std::string(64, 'x') + "   ";
  expectRefused(label.c_str(), "Label exceeds maximum size of 63: >" + label + "<");
}

TEST_F(UelList, theMessageIsCutTo255Chars) {
  const std::string label(300, 'x');
  expectRefused(label.c_str(),
                ("Label exceeds maximum size of 63: >" + std::string(300, 'x')).substr(0, 255));
}

TEST_F(UelList, acceptsOneKindOfQuote) {
  EXPECT_EQ(1, merged("'a'"));
  EXPECT_EQ(2, merged("\"a\""));
  EXPECT_EQ(3, merged("5'"));
}

TEST_F(UelList, refusesBothKindsOfQuoteInEitherOrder) {
  expectRefused("a'b\"c", "Label with single and double quote not allowed >a'b\"c<");
  expectRefused("\"'", "Label with single and double quote not allowed >\"'<");
}

TEST_F(UelList, refusesBothKindsOfQuoteAlsoBeyondChar64) {
  const std::string label = "'" + std::string(80, 'x') + "\"";
  expectRefused(label.c_str(), "Label with single and double quote not allowed >" + label + "<");
}

TEST_F(UelList, refusesAControlCharWithoutAMessage) {
  expectRefused("a\tb", "earlier");
  expectRefused("\x01", "earlier");
  expectRefused("a\n", "earlier");
  expectRefused(("a" + std::string(80, ' ') + "\x1F").c_str(), "earlier");
}

TEST_F(UelList, theFirstFaultMetDecides) {
  expectRefused("'\t\"", "earlier");
  expectRefused("'\"\t", "Label with single and double quote not allowed >'\"\t<");
}

TEST_F(UelList, refusesNullWithoutAMessage) {
  expectRefused(nullptr, "earlier");
}

TEST_F(UelList, acceptsBytesFrom127Up) {
  EXPECT_EQ(1, merged("\x7F"));
  EXPECT_EQ(2, merged("\x80\xFF"));
  EXPECT_EQ(2, found("\x80\xFF"));
}

TEST_F(UelList, aLabelOfBlanksIsTheReservedEntry) {
  EXPECT_EQ(0, merged("   "));
  EXPECT_EQ(0, found(" "));
  EXPECT_EQ(0, merged(std::string(100, ' ')));
  EXPECT_EQ(1, list_.size());
}

TEST_F(UelList, theEmptyLabelIsALabelOfItsOwn) {
  EXPECT_EQ(-1, found(""));
  EXPECT_EQ(1, merged(""));
  EXPECT_EQ(1, merged(""));
  EXPECT_EQ(1, found(""));
  EXPECT_STREQ("", list_.at(1));
}

TEST_F(UelList, aSuccessLeavesTheMessage) {
  merged("a");
  found("b");
  EXPECT_STREQ("earlier", message_);
}

TEST_F(UelList, assignStoresAllEntriesInOrder) {
  char message[256] = "";
  UELList other(message, sizeof message);
  int number = 0;
  ASSERT_TRUE(other.merge("b", &number));
  ASSERT_TRUE(other.merge("", &number));
  ASSERT_TRUE(other.merge("a", &number));
  list_.assign(other);
  EXPECT_EQ(4, list_.size());
  EXPECT_STREQ(" ", list_.at(0));
  EXPECT_STREQ("b", list_.at(1));
  EXPECT_STREQ("", list_.at(2));
  EXPECT_EQ(3, found("A"));
}

TEST_F(UelList, assignKeepsLabelsThatAreThere) {
  char message[256] = "";
  UELList other(message, sizeof message);
  int number = 0;
  ASSERT_TRUE(other.merge("b", &number));
  ASSERT_TRUE(other.merge("A", &number));
  merged("a");
  list_.assign(other);
  EXPECT_EQ(3, list_.size());
  EXPECT_STREQ("a", list_.at(1));
  EXPECT_EQ(2, found("b"));
}

TEST_F(UelList, assignOfItselfDoesNothing) {
  merged("a");
  list_.assign(list_);
  EXPECT_EQ(2, list_.size());
}

TEST_F(UelList, labelOfANumberOutsideTheListThrows) {
  merged("a");
  EXPECT_STREQ("a", list_.labelOf(1));
  EXPECT_THROW(static_cast<void>(list_.labelOf(2)), std::logic_error);
  EXPECT_THROW(static_cast<void>(list_.labelOf(-1)), std::logic_error);
}

}  // namespace
}  // namespace ztb::uellist
