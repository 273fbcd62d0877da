// The names that make and free a database, and what tells them apart.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/library.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

// A handle that is freed at the end of its scope.
struct Handle {
  ztbRec* ztb = nullptr;
  Handle() = default;
  ~Handle() { lib().xfree(&ztb); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
};

void expectUsable(ztbRec* ztb) {
  ASSERT_NE(nullptr, ztb);
  int number = 0;
  EXPECT_EQ(1, lib().c__ztbmergeuel(ztb, "a", &number));
  EXPECT_EQ(1, number);
}

TEST(Create, makesADatabaseAndEmptiesTheMessage) {
  Handle handle;
  TextBuffer message;
  EXPECT_EQ(1, lib().ztbcreate(&handle.ztb, message, ZTB_TEXT_BUFFER_SIZE));
  EXPECT_EQ("", message.str());
  expectUsable(handle.ztb);
}

TEST(Create, leavesTheMessageAloneWhenItsLengthIsZero) {
  Handle handle;
  TextBuffer message;
  EXPECT_EQ(1, lib().ztbcreate(&handle.ztb, message, 0));
  EXPECT_TRUE(message.untouched());
}

TEST(Create, takesNoMessageBufferWhenItsLengthIsZero) {
  Handle handle;
  EXPECT_EQ(1, lib().ztbcreate(&handle.ztb, nullptr, 0));
  expectUsable(handle.ztb);
}

TEST(Create, overwritesWhateverTheHandleHeld) {
  int other = 0;
  Handle handle;
  handle.ztb = reinterpret_cast<ztbRec*>(&other);
  TextBuffer message;
  EXPECT_EQ(1, lib().ztbcreate(&handle.ztb, message, ZTB_TEXT_BUFFER_SIZE));
  EXPECT_NE(reinterpret_cast<ztbRec*>(&other), handle.ztb);
  expectUsable(handle.ztb);
}

TEST(Create, makesADatabaseOfItsOwnEachTime) {
  Handle first;
  Handle second;
  TextBuffer message;
  lib().ztbcreate(&first.ztb, message, ZTB_TEXT_BUFFER_SIZE);
  lib().ztbcreate(&second.ztb, message, ZTB_TEXT_BUFFER_SIZE);
  EXPECT_NE(first.ztb, second.ztb);
  expectUsable(first.ztb);
  expectUsable(second.ztb);
}

TEST(CreateWithFolder, makesADatabaseAndEmptiesTheMessage) {
  Handle handle;
  TextBuffer message;
  EXPECT_EQ(1, lib().ztbcreated(&handle.ztb, peerFolder().c_str(), message, ZTB_TEXT_BUFFER_SIZE));
  EXPECT_EQ("", message.str());
  TextBuffer error;
  EXPECT_EQ(0, lib().c__ztbgetlasterror(handle.ztb, error)) << error.str();
  expectUsable(handle.ztb);
}

TEST(CreateWithFolder, leavesTheMessageAloneWhenItsLengthIsZero) {
  Handle handle;
  TextBuffer message;
  EXPECT_EQ(1, lib().ztbcreated(&handle.ztb, "", message, 0));
  EXPECT_TRUE(message.untouched());
}

TEST(CreateWithFolder, reportsOnlyANullPlaceForTheHandle) {
  TextBuffer message;
  EXPECT_EQ(0, lib().ztbcreated(nullptr, "", message, ZTB_TEXT_BUFFER_SIZE));
  EXPECT_EQ("Error while creating object", message.str());
}

TEST(CreateWithFolder, cutsTheMessageToItsLength) {
  TextBuffer message;
  EXPECT_EQ(0, lib().ztbcreated(nullptr, "", message, 10));
  EXPECT_EQ("Error whi", message.str());
  EXPECT_EQ(textFiller, static_cast<char*>(message)[10]);
}

TEST(CreateWithFolder, aMessageOfLengthOneIsOnlyItsEnd) {
  TextBuffer message;
  EXPECT_EQ(0, lib().ztbcreated(nullptr, "", message, 1));
  EXPECT_EQ("", message.str());
}

TEST(CreateWithFolder, takesTheFolderAsAShortStringAndTheMessageAsAPlainOne) {
  Handle handle;
  TextBuffer message;
  const ShortString folder(peerFolder());
  EXPECT_EQ(1, lib().d__ztbcreated(&handle.ztb, folder, message, ZTB_TEXT_BUFFER_SIZE));
  EXPECT_EQ("", message.str());
  TextBuffer error;
  EXPECT_EQ(0, lib().c__ztbgetlasterror(handle.ztb, error)) << error.str();
  expectUsable(handle.ztb);

  TextBuffer text;
  EXPECT_EQ(0, lib().d__ztbcreated(nullptr, folder, text, ZTB_TEXT_BUFFER_SIZE));
  EXPECT_EQ("Error while creating object", text.str());
}

TEST(CreateWithoutMessage, makesAUsableDatabaseByEveryName) {
  const ShortString noFolder("");
  for (const auto& create : {lib().xcreate, lib().ztbxcreate}) {
    Handle handle;
    create(&handle.ztb);
    expectUsable(handle.ztb);
  }
  for (const auto& create : {lib().xcreated, lib().ztbxcreated}) {
    Handle handle;
    create(&handle.ztb, "");
    expectUsable(handle.ztb);
  }
  for (const auto& create : {lib().d__xcreated, lib().d__ztbxcreated}) {
    Handle handle;
    create(&handle.ztb, noFolder);
    expectUsable(handle.ztb);
  }
}

TEST(Free, emptiesTheHandleAndReportsOne) {
  Handle handle;
  lib().xcreate(&handle.ztb);
  EXPECT_EQ(1, lib().ztbfree(&handle.ztb));
  EXPECT_EQ(nullptr, handle.ztb);
}

TEST(Free, ofAnEmptyHandleReportsOneAndLeavesItEmpty) {
  ztbRec* ztb = nullptr;
  EXPECT_EQ(1, lib().ztbfree(&ztb));
  EXPECT_EQ(nullptr, ztb);
}

TEST(Free, twiceThroughTheSameVariableIsHarmless) {
  ztbRec* ztb = nullptr;
  lib().xcreate(&ztb);
  EXPECT_EQ(1, lib().ztbfree(&ztb));
  EXPECT_EQ(1, lib().ztbfree(&ztb));
  lib().xcreate(&ztb);
  lib().xfree(&ztb);
  lib().xfree(&ztb);
  EXPECT_EQ(nullptr, ztb);
}

TEST(Free, withoutAResultEmptiesTheHandleByEitherName) {
  for (const auto& release : {lib().xfree, lib().ztbxfree}) {
    ztbRec* ztb = nullptr;
    lib().xcreate(&ztb);
    ASSERT_NE(nullptr, ztb);
    release(&ztb);
    EXPECT_EQ(nullptr, ztb);
  }
}

TEST(Free, endsADatabaseThatHoldsSymbolsAndRecords) {
  ztbRec* ztb = nullptr;
  lib().xcreate(&ztb);
  void* symbol = nullptr;
  ASSERT_EQ(1, lib().c__ztbaddsymbol(ztb, "v", 2, ZTB_VARIABLE, 0, "text", &symbol));
  const char* keys[] = {"a", "b"};
  void* record = nullptr;
  ASSERT_EQ(1, lib().c__ztbaddrecord(ztb, symbol, keys, &record));
  EXPECT_EQ(1, lib().c__ztbfreesymboliterator(ztb, record));
  EXPECT_EQ(1, lib().ztbfree(&ztb));
}

}  // namespace
}  // namespace ztbtest
