// A database whose exchange-file library cannot be opened: it works, and only what needs the
// library fails. An executable of its own, because a library that has been opened once stays open.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/library.h"
#include "tests/support/temp_folder.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

class MissingPeer : public testing::Test {
 protected:
  MissingPeer() {
    result_ =
        lib().ztbcreated(&ztb_, folder_.path().string().c_str(), message_, ZTB_TEXT_BUFFER_SIZE);
  }
  ~MissingPeer() override { lib().xfree(&ztb_); }

  std::string lastError() const {
    TextBuffer text;
    lib().c__ztbgetlasterror(ztb_, text);
    return text.str();
  }

  std::string reason() const { return "Could not load shared library " + folder_.path().string(); }

  TempFolder folder_;
  TextBuffer message_;
  ztbRec* ztb_ = nullptr;
  int result_ = -1;
};

TEST_F(MissingPeer, creationSucceedsAndTheLastErrorTellsTheReason) {
  EXPECT_EQ(1, result_);
  EXPECT_EQ("", message_.str());
  const std::string wanted = "RXF create did not succeed: " + reason();
  EXPECT_EQ(wanted, lastError().substr(0, wanted.size()));
  EXPECT_NE(std::string::npos, lastError().find("rxfcclib64"));
}

TEST_F(MissingPeer, theDatabaseWorksInMemory) {
  void* symbol = nullptr;
  EXPECT_EQ(1, lib().c__ztbaddsymbol(ztb_, "p", 1, ZTB_PARAMETER, 0, "", &symbol));
  const char* keys[] = {"a"};
  void* record = nullptr;
  EXPECT_EQ(1, lib().c__ztbaddrecord(ztb_, symbol, keys, &record));
  EXPECT_EQ(1, lib().c__ztbfreesymboliterator(ztb_, record));
}

TEST_F(MissingPeer, writingAFileFailsWithTheReason) {
  EXPECT_EQ(0, lib().c__ztbwriterxf(ztb_, folder_.file("x.rxf").c_str(), 0));
  const std::string wanted = "RXF create did not succeed: " + reason();
  EXPECT_EQ(wanted, lastError().substr(0, wanted.size()));
}

TEST_F(MissingPeer, openingAFileFailsWithAText) {
  int ignored = 0;
  ASSERT_EQ(0, lib().c__ztbinfo(ztb_, -1, &ignored, nullptr, nullptr));
  const std::string before = lastError();
  EXPECT_EQ(0, lib().c__ztbinitfromrxf(ztb_, folder_.file("x.rxf").c_str()));
  EXPECT_NE(before, lastError());
}

TEST_F(MissingPeer, theDatabaseCanBeFreedAfterAFailedOpening) {
  EXPECT_EQ(0, lib().c__ztbinitfromrxf(ztb_, folder_.file("x.rxf").c_str()));
  EXPECT_EQ(1, lib().ztbfree(&ztb_));
  EXPECT_EQ(nullptr, ztb_);
}

}  // namespace
}  // namespace ztbtest
