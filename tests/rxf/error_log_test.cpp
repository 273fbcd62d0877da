// The errors of an object, as who uses the library gets at them: how many there were, which are
// pending, and what each was about.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <string>

#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

// A file being written with the labels a, b and c.
class ErrorLog : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(file_.openWrite(folder_.file("x.rxf")), 0);
    file_.startLabels();
    for (const char* label : {"a", "b", "c"}) file_.addLabel(label);
    file_.finishLabels();
  }

  // Writes a symbol of one dimension with a record at each key.
  void writeSymbol(const char* name, const std::vector<int>& keys) {
    const double value = 1;
    ASSERT_TRUE(file_.startWriting(name, "", 1, 1, 0));
    for (const int key : keys) file_.write(&key, &value);
    ASSERT_TRUE(file_.finishWriting());
  }

  TempFolder folder_;
  PeerFile file_;
};

TEST_F(ErrorLog, givesTheLatestFirstAndZeroWhenEmpty) {
  writeSymbol("p", {2, 2, 9, 9});
  EXPECT_EQ(file_.errorCount(), 3);
  EXPECT_EQ(file_.takeLastError(), 19);
  EXPECT_EQ(file_.takeLastError(), 19);
  EXPECT_EQ(file_.takeLastError(), 21);
  EXPECT_EQ(file_.takeLastError(), 0);
  EXPECT_EQ(file_.errorCount(), 3) << "taking does not lower the count";
}

TEST_F(ErrorLog, keepsTheDetailOfTheEarliestPendingError) {
  writeSymbol("p", {1, 1});
  writeSymbol("q", {1, 2, 2});
  EXPECT_EQ(file_.errorText(21), "Record stands twice: p, behind record 1");
  file_.takeLastError();
  file_.takeLastError();
  EXPECT_EQ(file_.errorText(21), "Record stands twice: p, behind record 1");
  writeSymbol("r", {1, 2, 3, 3});
  EXPECT_EQ(file_.errorText(21), "Record stands twice: r, behind record 3");
}

TEST_F(ErrorLog, millionsOfErrorsAreAllGivenBack) {
  constexpr int many = 3000000;
  writeSymbol("p", std::vector<int>(many, 9));
  writeSymbol("q", {1, 1});
  EXPECT_EQ(file_.errorCount(), many + 1);
  EXPECT_EQ(file_.takeLastError(), 21);
  int taken = 0;
  while (file_.takeLastError() == 19) ++taken;
  EXPECT_EQ(taken, many);
}

TEST_F(ErrorLog, aTextIsCutAt255Bytes) {
  const std::string missing = folder_.file(std::string(200, 'x') + "/" + std::string(200, 'y'));
  PeerFile reader;
  EXPECT_EQ(reader.openRead(missing), 1);
  EXPECT_EQ(reader.errorText(1), ("No such file: " + missing).substr(0, 255));
}

TEST_F(ErrorLog, anUnknownNumberIsNamed) {
  EXPECT_EQ(file_.errorText(4711), "Unknown error number 4711");
  EXPECT_EQ(file_.errorText(0), "Unknown error number 0");
  EXPECT_EQ(file_.errorText(-1), "Unknown error number -1");
}

// Numbers and texts as the description of the format promises them.
std::map<int, std::string> promisedTexts() {
  std::ifstream in(ZTB_SOURCE_FOLDER "/docs/reference/rxf-format.md");
  std::map<int, std::string> texts;
  const std::regex cell(R"(\| (\d+) \| ([^|]*[^| ]) )");
  bool reached = false;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("## ")) reached = line == "## Error numbers of the library";
    if (!reached) continue;
    for (std::sregex_iterator at(line.begin(), line.end(), cell), end; at != end; ++at) {
      texts[std::stoi((*at)[1])] = (*at)[2];
    }
  }
  return texts;
}

TEST_F(ErrorLog, aNumberHasTheTextThatTheFormatsDescriptionPromises) {
  const std::map<int, std::string> texts = promisedTexts();
  ASSERT_GE(texts.size(), 37U);
  for (const auto& [number, text] : texts) {
    EXPECT_EQ(file_.errorText(number), text) << number;
  }
  const int behind = texts.rbegin()->first + 1;
  EXPECT_EQ(static_cast<int>(texts.size()), behind - 1) << "a number is left out";
  EXPECT_EQ(file_.errorText(behind), "Unknown error number " + std::to_string(behind))
      << "a number that is not described";
}

}  // namespace
}  // namespace rxftest
