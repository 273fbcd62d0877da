// What is refused while a file is written, with its number and its text.

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <limits>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

// A file being written with labels a, b, c.
class WriteError : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(file_.openWrite(path_), 0);
    file_.startLabels();
    for (const char* label : {"a", "b", "c"}) file_.addLabel(label);
    file_.finishLabels();
  }

  bool write(const std::vector<int>& keys) {
    const double value = 1;
    return file_.write(keys.data(), &value);
  }

  void expectOnlyError(int number, const std::string& text) {
    EXPECT_EQ(file_.errorCount(), 1);
    EXPECT_EQ(file_.takeLastError(), number);
    EXPECT_EQ(file_.errorText(number), text);
  }

  // Records of symbol 1 of the finished file.
  std::vector<Record> records() {
    EXPECT_EQ(file_.close(), 0);
    PeerFile reader;
    EXPECT_EQ(reader.openRead(path_), 0);
    return readContent(reader).symbols.at(0).records;
  }

  // Closing drops the file.
  void expectWithheld() {
    EXPECT_NE(file_.close(), 0);
    EXPECT_EQ(folder_.names(), std::vector<std::string>{});
  }

  TempFolder folder_;
  std::string path_ = folder_.file("x.rxf");
  PeerFile file_;
};

TEST_F(WriteError, aFileWithARecordOutsideTheLabelsIsNotPublished) {
  file_.startWriting("p", "", 2, kParameter, 0);
  EXPECT_FALSE(write({1, 0}));
  EXPECT_TRUE(write({1, 1}));
  EXPECT_FALSE(write({1, 4}));
  EXPECT_FALSE(write({-1, 1}));
  EXPECT_FALSE(write({0, 0}));
  EXPECT_TRUE(write({3, 3}));
  file_.finishWriting();
  EXPECT_EQ(file_.errorCount(), 4);
  EXPECT_EQ(file_.takeLastError(), 19);
  EXPECT_EQ(file_.drainErrors(),
            std::vector<std::string>(3,
                                     "Key outside the registered labels: p, key 0 at position "
                                     "2, expected 1 to 3"));
  expectWithheld();
}

TEST_F(WriteError, aFileWithARecordThatDoesNotAscendIsNotPublished) {
  file_.startWriting("p", "", 2, kParameter, 0);
  EXPECT_TRUE(write({1, 3}));
  EXPECT_TRUE(write({2, 2}));
  EXPECT_FALSE(write({2, 1}));
  EXPECT_FALSE(write({1, 3}));
  EXPECT_TRUE(write({2, 3}));
  file_.finishWriting();
  EXPECT_EQ(file_.errorCount(), 2);
  EXPECT_EQ(file_.takeLastError(), 20);
  EXPECT_EQ(file_.errorText(20),
            "Keys not in ascending order: p, key 1 at position 2, behind key 2 of record 2");
  expectWithheld();
}

TEST_F(WriteError, aFileWithARecordThatStandsTwiceIsNotPublished) {
  file_.startWriting("p", "", 1, kParameter, 0);
  write({2});
  EXPECT_FALSE(write({2}));
  file_.finishWriting();
  expectOnlyError(21, "Record stands twice: p, behind record 1");
  expectWithheld();
}

TEST_F(WriteError, aScalarHasOneRecord) {
  file_.startWriting("p", "", 0, kParameter, 0);
  EXPECT_TRUE(write({}));
  EXPECT_FALSE(write({}));
  file_.finishWriting();
  expectOnlyError(21, "Record stands twice: p, behind record 1");
  expectWithheld();
}

TEST_F(WriteError, orderIsKeptAcrossTheBorderOfABlock) {
  file_.startLabels();
  for (int i = 3; i < 70000; ++i) file_.addLabel(("l" + std::to_string(i)).c_str());
  file_.finishLabels();
  file_.startWriting("p", "", 1, kParameter, 0);
  for (int i = 1; i <= 65536; ++i) ASSERT_TRUE(write({i}));
  EXPECT_TRUE(write({65537}));
  file_.finishWriting();
  EXPECT_EQ(records().size(), 65537U);
  ASSERT_EQ(file_.openWrite(path_), 0);
  file_.startLabels();
  for (int i = 0; i < 70000; ++i) file_.addLabel(("l" + std::to_string(i)).c_str());
  file_.finishLabels();
  file_.startWriting("p", "", 1, kParameter, 0);
  for (int i = 1; i <= 65536; ++i) ASSERT_TRUE(write({i}));
  EXPECT_FALSE(write({65536}));
  EXPECT_FALSE(write({1}));
  file_.finishWriting();
  EXPECT_EQ(file_.errorCount(), 2);
  EXPECT_EQ(file_.takeLastError(), 20);
  EXPECT_EQ(file_.takeLastError(), 21);
  EXPECT_NE(file_.close(), 0);
  EXPECT_EQ(records().size(), 65537U);
}

TEST_F(WriteError, aSymbolOfATakenNameIsRefused) {
  file_.startWriting("p", "", 0, kParameter, 0);
  file_.finishWriting();
  EXPECT_FALSE(file_.startWriting("P", "", 1, kSet, 0));
  expectOnlyError(17, "Symbol stands twice: P is symbol 1 already");
  EXPECT_FALSE(file_.addAlias("p", "*"));
  EXPECT_EQ(file_.takeLastError(), 17);
  expectWithheld();
}

TEST_F(WriteError, aSymbolThatCannotBeIsRefused) {
  EXPECT_FALSE(file_.startWriting("9p", "", 0, kParameter, 0));
  expectOnlyError(16, "Symbol name not acceptable: >9p<: it does not begin with a letter");
  EXPECT_FALSE(file_.startWriting("p", std::string(256, 't').c_str(), 0, kParameter, 0));
  EXPECT_EQ(file_.takeLastError(), 26);
  EXPECT_EQ(file_.errorText(26), "Text longer than 255 bytes: text of symbol p has 256");
  EXPECT_FALSE(file_.startWriting("p", "", 21, kParameter, 0));
  EXPECT_EQ(file_.takeLastError(), 27);
  EXPECT_EQ(file_.errorText(27), "Dimension outside 0 to 20: p has 21");
  EXPECT_FALSE(file_.startWriting("p", "", -1, kParameter, 0));
  EXPECT_EQ(file_.takeLastError(), 27);
  EXPECT_FALSE(file_.startWriting("p", "", 1, kAlias, 0));
  EXPECT_EQ(file_.takeLastError(), 28);
  EXPECT_EQ(file_.errorText(28), "Symbol type not known: p has type 4, expected 0 to 3");
  EXPECT_FALSE(file_.startWriting(nullptr, nullptr, 1, 0, 0));
  EXPECT_EQ(file_.takeLastError(), 16);
  EXPECT_TRUE(file_.startWriting("p", std::string(255, 't').c_str(), 20, kParameter, 0));
  file_.finishWriting();
  expectWithheld();
}

TEST_F(WriteError, anAliasOfNoSetIsRefused) {
  file_.startWriting("p", "", 1, kParameter, 0);
  file_.finishWriting();
  EXPECT_FALSE(file_.addAlias("a1", "p"));
  expectOnlyError(18, "Alias target is no set written before: alias a1 of p");
  EXPECT_FALSE(file_.addAlias("a1", "later"));
  EXPECT_EQ(file_.takeLastError(), 18);
  EXPECT_FALSE(file_.addAlias("a1", nullptr));
  EXPECT_EQ(file_.takeLastError(), 18);
  expectWithheld();
}

TEST_F(WriteError, aFileWithARefusedLabelIsNotPublished) {
  file_.startLabels();
  EXPECT_FALSE(file_.addLabel("it's \"it\""));
  expectOnlyError(14, "Label not acceptable: label 4, >it's \"it\"<: it holds both kinds of quote");
  EXPECT_TRUE(file_.addLabel("d"));
  file_.finishLabels();
  EXPECT_NE(file_.close(), 0);
  EXPECT_TRUE(folder_.names().empty());
}

TEST_F(WriteError, aLabelThatStandsTwiceIsRefused) {
  file_.startLabels();
  EXPECT_FALSE(file_.addLabel("B  "));
  expectOnlyError(15, "Label stands twice: >B  <, as label 2 and again behind label 3");
  file_.finishLabels();
  EXPECT_NE(file_.close(), 0);
  EXPECT_TRUE(folder_.names().empty());
}

TEST_F(WriteError, aFileWithARefusedTextIsNotPublished) {
  EXPECT_EQ(file_.addText(std::string(256, 't').c_str()), 0);
  EXPECT_EQ(file_.errorCount(), 1);
  EXPECT_EQ(file_.takeLastError(), 26);
  EXPECT_EQ(file_.errorText(26),
            "Text longer than 255 bytes: set text 1, >" + std::string(80, 't') + "<");
  EXPECT_EQ(file_.addText(std::string(255, 't').c_str()), 1);
  EXPECT_NE(file_.close(), 0);
  EXPECT_TRUE(folder_.names().empty());
}

TEST_F(WriteError, aFileWithATextThatStandsTwiceIsNotPublished) {
  ASSERT_EQ(file_.addText("Wheat"), 1);
  EXPECT_EQ(file_.addText("wHEAT"), 0);
  expectOnlyError(36, "Text stands twice: set text 2, >wHEAT<, as text 1");
  EXPECT_NE(file_.close(), 0);
  EXPECT_TRUE(folder_.names().empty());
}

TEST_F(WriteError, anEmptyTextStandsTwiceSinceItIsNumber0) {
  EXPECT_EQ(file_.addText(""), 0);
  expectOnlyError(36, "Text stands twice: set text 1, ><, as text 0");
  EXPECT_NE(file_.close(), 0);
  EXPECT_TRUE(folder_.names().empty());
}

TEST_F(WriteError, aSetThatNamesATextThatIsNotThereIsNotPublished) {
  for (const double value : {3.0, 2.5, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    PeerFile file;
    ASSERT_EQ(file.openWrite(folder_.file("y.rxf")), 0);
    file.startLabels();
    file.addLabel("a");
    file.finishLabels();
    const int key = 1;
    file.startWriting("i", "", 1, kSet, 0);
    EXPECT_TRUE(file.write(&key, &value));
    file.finishWriting();
    file.addText("one");
    file.addText("two");
    EXPECT_EQ(file.errorCount(), 1);
    EXPECT_EQ(file.takeLastError(), 37);
    std::array<char, 256> number{};
    std::snprintf(number.data(), number.size(), "%g", value);
    EXPECT_EQ(file.errorText(37),
              std::string("Text not in the table: a record of set i names text ") + number.data() +
                  ", there are 2");
    EXPECT_NE(file.close(), 0);
  }
  file_.close();
  EXPECT_EQ(folder_.names(), std::vector<std::string>{"x.rxf"});
}

TEST_F(WriteError, callsOutOfOrderAreRefusedAndTheFileIsNotPublished) {
  const auto expectOrder = [&](bool result, const std::string& what) {
    EXPECT_FALSE(result) << what;
    EXPECT_EQ(file_.takeLastError(), 25) << what;
    EXPECT_EQ(file_.errorText(25), "Call out of order: " + what);
  };
  expectOrder(file_.addLabel("x"), "a label");
  expectOrder(file_.finishLabels(), "end of labels");
  expectOrder(write({1}), "a record without a symbol");
  expectOrder(file_.finishWriting(), "end of a symbol");
  file_.startLabels();
  expectOrder(file_.startWriting("p", "", 1, kSet, 0), "start of a symbol");
  file_.finishLabels();
  file_.startWriting("p", "", 1, kSet, 0);
  expectOrder(file_.startWriting("q", "", 1, kSet, 0), "start of a symbol");
  expectOrder(file_.addAlias("q", "p"), "an alias");
  expectOrder(file_.startLabels(), "start of labels");
  write({2});
  file_.finishWriting();
  expectWithheld();
}

TEST_F(WriteError, questionsAndDomainsOutOfOrderAreHarmless) {
  const auto expectOrder = [&](bool result, const std::string& what) {
    EXPECT_FALSE(result) << what;
    EXPECT_EQ(file_.takeLastError(), 25) << what;
    EXPECT_EQ(file_.errorText(25), "Call out of order: " + what);
  };
  expectOrder(file_.setDomain(nullptr), "domain without a symbol");
  expectOrder(file_.findSymbol("p") != 0, "looking for a symbol");
  bool started = false;
  expectOrder(file_.startReading(1, started) != -1, "start of reading");
  expectOrder(file_.openRead(path_) == 0, "opening with a file open");
  file_.startWriting("p", "", 1, kSet, 0);
  write({2});
  expectOrder(file_.setDomain(nullptr), "domain behind the records of a symbol");
  file_.finishWriting();
  file_.addText("t");
  EXPECT_EQ(records(), (std::vector<Record>{record({2}, {1})}));
}

TEST_F(WriteError, aFileClosedWithASymbolOpenIsNotPublished) {
  file_.startWriting("p", "", 1, kSet, 0);
  EXPECT_EQ(file_.close(), 25);
  EXPECT_EQ(file_.errorText(25), "Call out of order: closing with a symbol or the labels open");
  EXPECT_TRUE(folder_.names().empty());
}

TEST(WriteOpening, aClosedObjectRefusesToWrite) {
  PeerFile file;
  EXPECT_FALSE(file.startLabels());
  EXPECT_FALSE(file.finishWriting());
  EXPECT_EQ(file.addText("t"), 0);
  const double value = 1;
  const int key = 1;
  EXPECT_FALSE(file.write(&key, &value));
  EXPECT_EQ(file.errorCount(), 4);
  EXPECT_EQ(file.close(), 0);
}

TEST(WriteOpening, whatCannotBeWrittenIsToldApart) {
  const TempFolder folder;
  PeerFile file;
  EXPECT_EQ(file.openWrite(folder.file("none/x")), 1);
  EXPECT_EQ(file.errorText(1), "No such file: the folder does not exist");
  EXPECT_EQ(file.openWrite(folder.path()), 3);
  EXPECT_EQ(file.errorText(3), "Is a folder");
  EXPECT_EQ(file.openWrite("/dev/null"), 4);
  EXPECT_EQ(file.errorText(4), "Not a regular file");
  EXPECT_EQ(file.openWrite(""), 13);
  EXPECT_EQ(file.errorText(13), "File name not acceptable: it is empty");
  EXPECT_EQ(file.openWrite(folder.file(std::string(300, 'n'))), 12);
  EXPECT_EQ(file.openWrite(folder.file("x"), std::string(256, 'p')), 26);
  EXPECT_TRUE(folder.names().empty());
  EXPECT_EQ(file.openWrite(folder.file("x"), std::string(255, 'p')), 0);
}

TEST(WriteOpening, openingForgetsTheErrorsOfBefore) {
  const TempFolder folder;
  PeerFile file;
  file.openWrite(folder.path());
  EXPECT_EQ(file.openWrite(folder.file("x")), 0);
  EXPECT_EQ(file.errorCount(), 0);
  EXPECT_EQ(file.takeLastError(), 0);
}

}  // namespace
}  // namespace rxftest
