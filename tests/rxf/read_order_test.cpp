// Questions and reads in any order, through the built library.

#include <gtest/gtest.h>

#include <array>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

class ReadOrder : public testing::Test {
 protected:
  void SetUp() override {
    PeerFile file;
    ASSERT_EQ(file.openWrite(path_), 0);
    writeContent(file, smallContent());
    ASSERT_EQ(file.close(), 0);
    ASSERT_EQ(file_.openRead(path_), 0);
  }

  std::vector<Record> records(int number) {
    const Symbol symbol = smallContent().symbols[static_cast<std::size_t>(number) - 1];
    return readRecords(file_, number, symbol.dim, symbol.type);
  }

  TempFolder folder_;
  std::string path_ = folder_.file("x.rxf");
  PeerFile file_;
};

TEST_F(ReadOrder, symbolsCanBeReadInAnyOrderAndTwice) {
  for (const int number : {8, 1, 5, 5, 2, 9, 6, 1}) {
    EXPECT_EQ(records(number), smallContent().symbols[static_cast<std::size_t>(number) - 1].records)
        << number;
  }
  EXPECT_EQ(file_.errorCount(), 0);
}

TEST_F(ReadOrder, aReadThatWasGivenUpDoesNotSpoilTheNext) {
  bool started = false;
  EXPECT_EQ(file_.startReading(5, started), 5);
  std::array<int, 20> keys{};
  std::array<double, 5> values{};
  int firstChanged = 0;
  file_.read(keys.data(), values.data(), &firstChanged);
  EXPECT_EQ(records(7), smallContent().symbols[6].records);
  EXPECT_EQ(file_.errorCount(), 1);
  EXPECT_EQ(file_.takeLastError(), 25);
  EXPECT_EQ(file_.errorText(25), "Call out of order: start of reading before the end of the last");
}

TEST_F(ReadOrder, nothingIsReadBeyondTheLastRecord) {
  bool started = false;
  ASSERT_EQ(file_.startReading(6, started), 1);
  std::array<int, 20> keys{};
  std::array<double, 5> values{};
  int firstChanged = -1;
  EXPECT_TRUE(file_.read(keys.data(), values.data(), &firstChanged));
  EXPECT_EQ(firstChanged, 0);
  values[0] = 42;
  EXPECT_FALSE(file_.read(keys.data(), values.data(), &firstChanged));
  EXPECT_EQ(values[0], 42);
  EXPECT_EQ(file_.errorCount(), 0);
}

TEST_F(ReadOrder, anUnknownSymbolHasNoRecords) {
  for (const int number : {0, 10, -1}) {
    bool started = true;
    EXPECT_EQ(file_.startReading(number, started), -1);
    EXPECT_FALSE(started);
    EXPECT_EQ(file_.takeLastError(), 30);
    EXPECT_EQ(file_.errorText(30),
              "No such symbol number: " + std::to_string(number) + ", expected 1 to 9");
  }
}

TEST_F(ReadOrder, anAliasHasNoRecordsOfItsOwn) {
  bool started = true;
  EXPECT_EQ(file_.startReading(3, started), -1);
  EXPECT_FALSE(started);
  EXPECT_EQ(file_.takeLastError(), 32);
  EXPECT_EQ(file_.errorText(32), "An alias has no records of its own: g");
}

TEST_F(ReadOrder, readingWithoutAStartIsOutOfOrder) {
  std::array<int, 20> keys{};
  std::array<double, 5> values{};
  int firstChanged = 0;
  EXPECT_FALSE(file_.read(keys.data(), values.data(), &firstChanged));
  EXPECT_FALSE(file_.finishReading());
  EXPECT_EQ(file_.errorCount(), 2);
}

TEST_F(ReadOrder, writingToAFileThatIsReadIsOutOfOrder) {
  EXPECT_FALSE(file_.startLabels());
  EXPECT_FALSE(file_.startWriting("p", "", 0, kParameter, 0));
  EXPECT_EQ(file_.addText("t"), 0);
  EXPECT_EQ(file_.errorCount(), 3);
}

TEST_F(ReadOrder, symbolsAreFoundWithoutRegardToCase) {
  EXPECT_EQ(file_.findSymbol("yield"), 5);
  EXPECT_EQ(file_.findSymbol("YIELD"), 5);
  EXPECT_EQ(file_.findSymbol("nothing"), 0);
  EXPECT_EQ(file_.findSymbol("*"), 0);
  EXPECT_EQ(file_.findSymbol(nullptr), 0);
  EXPECT_EQ(file_.errorCount(), 0);
}

TEST_F(ReadOrder, numberZeroIsTheUniverse) {
  std::array<char, 256> text{};
  int dim = -1;
  int type = -1;
  EXPECT_TRUE(file_.symbolInfo(0, text.data(), &dim, &type));
  EXPECT_STREQ(text.data(), "*");
  EXPECT_EQ(dim, 1);
  EXPECT_EQ(type, 0);
  int count = -1;
  int info = -1;
  EXPECT_TRUE(file_.symbolInfoX(0, &count, &info, text.data()));
  EXPECT_EQ(count, 7);
}

TEST_F(ReadOrder, recordCountsAreKnownBeforeReading) {
  std::array<char, 256> text{};
  int info = 0;
  for (int i = 1; i <= 9; ++i) {
    int count = -1;
    EXPECT_TRUE(file_.symbolInfoX(i, &count, &info, text.data()));
    EXPECT_EQ(count, static_cast<int>(
                         smallContent().symbols[static_cast<std::size_t>(i) - 1].records.size()));
  }
}

TEST_F(ReadOrder, numbersThatDoNotExistGiveEmptyAnswers) {
  std::array<char, 256> text{'x'};
  int dim = -1;
  int type = -1;
  EXPECT_FALSE(file_.symbolInfo(10, text.data(), &dim, &type));
  EXPECT_STREQ(text.data(), "");
  EXPECT_EQ(file_.takeLastError(), 30);
  EXPECT_FALSE(file_.label(0, text.data()));
  EXPECT_FALSE(file_.label(8, text.data()));
  EXPECT_EQ(file_.takeLastError(), 31);
  EXPECT_EQ(file_.errorText(31), "No such label number: 0, expected 1 to 7");
  EXPECT_FALSE(file_.elementText(0, text.data()));
  EXPECT_FALSE(file_.elementText(5, text.data()));
  EXPECT_EQ(file_.errorCount(), 3) << "the end of the texts is no error";
}

TEST_F(ReadOrder, closingTwiceIsHarmless) {
  EXPECT_EQ(file_.close(), 0);
  EXPECT_EQ(file_.close(), 0);
  EXPECT_EQ(file_.labelCount(), 0);
}

TEST_F(ReadOrder, anUnknownErrorNumberIsNamed) {
  EXPECT_EQ(file_.errorText(999), "Unknown error number 999");
}

}  // namespace
}  // namespace rxftest
