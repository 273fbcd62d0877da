// The C functions by themselves: from C, with null handles, with numbers that there are not; and
// the names that the library exports.
#include "tests/rxf_door/c_interface.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <ztb/rxf.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>
#include <string>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

class RxfCTest : public testing::Test {
 protected:
  void SetUp() override {
    Content content;
    content.labels = {"a", "b", "c"};
    Symbol p{"p", kParameter, 1, 0, "", {record({1}, {10}), record({3}, {0.5})}, 0, {}, ""};
    content.symbols = {p};
    PeerFile file;
    ASSERT_EQ(file.openWrite(path_), 0);
    writeContent(file, content);
    ASSERT_EQ(file.close(), 0);
  }

  TempFolder folder_;
  std::string path_ = folder_.file("a.rxf");
  std::array<char, 512> message_{};
};

TEST_F(RxfCTest, ReadsFromC) {
  EXPECT_EQ(sumFromC(path_.c_str(), "P", message_.data(), 512), 1 * 10 + 3 * 0.5);
  EXPECT_STREQ(message_.data(), "");
}

TEST_F(RxfCTest, LeavesTheReasonInTheMessageCutToItsSize) {
  const std::string none = folder_.file("none");
  EXPECT_EQ(sumFromC(none.c_str(), "p", message_.data(), 512), -1);
  EXPECT_EQ(message_.data(), "No such file: " + none);
  EXPECT_EQ(sumFromC(path_.c_str(), "q", message_.data(), 512), -1);
  EXPECT_EQ(message_.data(), "No such symbol number: -1 in " + path_ + ", expected 0 to 1");
  ztbRxfFile* file = nullptr;
  message_.fill('x');
  EXPECT_EQ(ztbRxfOpen(&file, none.c_str(), message_.data(), 8), 0);
  EXPECT_STREQ(message_.data(), "No such");
  EXPECT_EQ(message_[8], 'x');
  EXPECT_EQ(ztbRxfOpen(&file, none.c_str(), nullptr, 0), 0);
}

TEST_F(RxfCTest, RefusesNullPlaces) {
  EXPECT_EQ(ztbRxfOpen(nullptr, path_.c_str(), message_.data(), 512), 0);
  EXPECT_STREQ(message_.data(), "Call out of order: there is no place for the file");
  ztbRxfFile* file = nullptr;
  EXPECT_EQ(ztbRxfOpen(&file, nullptr, message_.data(), 512), 0);
  EXPECT_STREQ(message_.data(), "File name not acceptable: it is empty");
  ASSERT_EQ(ztbRxfOpen(&file, path_.c_str(), message_.data(), 512), 1);
  EXPECT_STREQ(message_.data(), "");
  EXPECT_EQ(ztbRxfRecordsOpen(nullptr, file, 1, message_.data(), 512), 0);
  EXPECT_STREQ(message_.data(), "Call out of order: there is no place for the records");
  ztbRxfRecords* records = nullptr;
  EXPECT_EQ(ztbRxfRecordsOpen(&records, nullptr, 1, message_.data(), 512), 0);
  EXPECT_STREQ(message_.data(), "Call out of order: no file is open");
  EXPECT_EQ(records, nullptr);
  EXPECT_EQ(ztbRxfSymbol(file, 1, nullptr), 0);
  EXPECT_EQ(ztbRxfFindSymbol(file, nullptr), -1);
  EXPECT_EQ(ztbRxfFindLabel(file, nullptr), 0);
  ztbRxfClose(&file);
  EXPECT_EQ(file, nullptr);
}

TEST_F(RxfCTest, GivesNothingOfNullHandles) {
  EXPECT_EQ(ztbRxfVersion(nullptr), 0);
  EXPECT_EQ(ztbRxfProducer(nullptr), nullptr);
  EXPECT_EQ(ztbRxfSize(nullptr), 0U);
  EXPECT_EQ(ztbRxfLabelCount(nullptr), 0);
  EXPECT_EQ(ztbRxfLabel(nullptr, 1), nullptr);
  EXPECT_EQ(ztbRxfFindLabel(nullptr, "a"), 0);
  EXPECT_EQ(ztbRxfTextCount(nullptr), 0);
  EXPECT_EQ(ztbRxfText(nullptr, 0), nullptr);
  EXPECT_EQ(ztbRxfSymbolCount(nullptr), 0);
  EXPECT_EQ(ztbRxfFindSymbol(nullptr, "p"), -1);
  ztbRxfSymbolInfo info;
  EXPECT_EQ(ztbRxfSymbol(nullptr, 0, &info), 0);
  EXPECT_EQ(info.name, nullptr);
  EXPECT_EQ(ztbRxfDomain(nullptr, 0, 0), nullptr);
  EXPECT_EQ(ztbRxfMemory(nullptr, 0, 0), 0U);
  EXPECT_EQ(ztbRxfNextBlock(nullptr), -1);
  EXPECT_EQ(ztbRxfKeys(nullptr, 0), nullptr);
  EXPECT_EQ(ztbRxfValues(nullptr, 0), nullptr);
  EXPECT_EQ(ztbRxfSkipBlocks(nullptr, 1), -1);
  EXPECT_EQ(ztbRxfSkipDamage(nullptr), 0);
  EXPECT_STREQ(ztbRxfMessage(nullptr), "");
  EXPECT_EQ(ztbRxfBlockNumber(nullptr), 0);
  EXPECT_EQ(ztbRxfBlockOffset(nullptr), 0U);
  ztbRxfRewind(nullptr);
  ztbRxfClose(nullptr);
  ztbRxfRecordsClose(nullptr);
}

TEST_F(RxfCTest, GivesColumnsOnlyWhileABlockIsPresent) {
  ztbRxfFile* file = nullptr;
  ASSERT_EQ(ztbRxfOpen(&file, path_.c_str(), message_.data(), 512), 1);
  EXPECT_STREQ(ztbRxfDomain(file, 1, 0), "*");
  EXPECT_EQ(ztbRxfDomain(file, 1, 1), nullptr);
  EXPECT_EQ(ztbRxfDomain(file, 1, -1), nullptr);
  EXPECT_EQ(ztbRxfDomain(file, 2, 0), nullptr);
  ztbRxfRecords* records = nullptr;
  ASSERT_EQ(ztbRxfRecordsOpen(&records, file, 1, message_.data(), 512), 1);
  EXPECT_EQ(ztbRxfKeys(records, 0), nullptr);
  EXPECT_EQ(ztbRxfValues(records, 0), nullptr);
  ASSERT_EQ(ztbRxfNextBlock(records), 2);
  ASSERT_NE(ztbRxfKeys(records, 0), nullptr);
  EXPECT_EQ(ztbRxfKeys(records, 1), nullptr);
  EXPECT_EQ(ztbRxfKeys(records, -1), nullptr);
  EXPECT_EQ(ztbRxfValues(records, 1), nullptr);
  EXPECT_EQ(ztbRxfValues(records, -1), nullptr);
  EXPECT_EQ(ztbRxfNextBlock(records), 0);
  EXPECT_EQ(ztbRxfKeys(records, 0), nullptr);
  ztbRxfRewind(records);
  EXPECT_EQ(ztbRxfKeys(records, 0), nullptr);
  EXPECT_EQ(ztbRxfNextBlock(records), 2);
  EXPECT_EQ(ztbRxfKeys(records, 0)[1], 3);
  ztbRxfRecordsClose(&records);
  ztbRxfClose(&file);
}

// Besides the fixed names of the peer operations, those of the header and no others.
TEST_F(RxfCTest, TheLibraryExportsTheseNamesOfItsOwn) {
  Dl_info library{};
  ASSERT_NE(dladdr(exportedAddress("ztbRxfOpen"), &library), 0);
  const std::string command =
      "nm -D --defined-only --format=posix '" + std::string(library.dli_fname) + "'";
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::set<std::string> own;
  std::array<char, 512> line{};
  while (fgets(line.data(), line.size(), pipe) != nullptr) {
    const std::string text = line.data();
    const std::string name = text.substr(0, text.find(' '));
    if (!name.starts_with("C__rxf")) own.insert(name);
  }
  EXPECT_EQ(pclose(pipe), 0);
  const std::set<std::string> expected = {"C__XAPIVersion",
                                          "C__XCheck",
                                          "XCreate",
                                          "XCreateD",
                                          "XFree",
                                          "ztbRxfAddLabel",
                                          "ztbRxfAddRecords",
                                          "ztbRxfAddSymbol",
                                          "ztbRxfAddText",
                                          "ztbRxfBlockNumber",
                                          "ztbRxfBlockOffset",
                                          "ztbRxfClose",
                                          "ztbRxfCreate",
                                          "ztbRxfDiscard",
                                          "ztbRxfDomain",
                                          "ztbRxfErrorKind",
                                          "ztbRxfFindLabel",
                                          "ztbRxfFindSymbol",
                                          "ztbRxfKeys",
                                          "ztbRxfLabel",
                                          "ztbRxfLabelCount",
                                          "ztbRxfMemory",
                                          "ztbRxfMemoryLimit",
                                          "ztbRxfMemoryLimitTaken",
                                          "ztbRxfMessage",
                                          "ztbRxfNextBlock",
                                          "ztbRxfOpen",
                                          "ztbRxfProducer",
                                          "ztbRxfPublish",
                                          "ztbRxfRecordsClose",
                                          "ztbRxfRecordsOpen",
                                          "ztbRxfRewind",
                                          "ztbRxfSize",
                                          "ztbRxfSkipBlocks",
                                          "ztbRxfSkipDamage",
                                          "ztbRxfSymbol",
                                          "ztbRxfSymbolCount",
                                          "ztbRxfText",
                                          "ztbRxfTextCount",
                                          "ztbRxfValues",
                                          "ztbRxfVersion"};
  EXPECT_EQ(own, expected);
}

}  // namespace
}  // namespace rxftest
