// Every system call of a write and of a read fails once: the file is the old one or the new one,
// nothing is left beside it, and every failure is told.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "providers/rxf/rxf_object.h"
#include "tests/rxf/content.h"
#include "tests/rxf/failing_calls.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

using rxffile::RxfObject;
using Mode = FailingCalls::Mode;

Content oldContent() {
  return {{"old"}, {}, {}};
}

struct Outcome {
  int opened = 0;
  int errors = 0;  // as the core asks before closing
  int closed = 0;

  [[nodiscard]] bool fine() const { return opened == 0 && errors == 0 && closed == 0; }
};

// Writes as the core does.
Outcome write(rxffile::SystemCalls& calls, const std::string& path, const Content& content) {
  const auto object = std::make_unique<RxfObject>(calls);
  Outcome outcome;
  outcome.opened = object->openWrite(path.c_str(), "");
  if (outcome.opened != 0) return outcome;
  object->storeDomainSets(false);
  writeContent(*object, content);
  outcome.errors = object->errorCount();
  outcome.closed = object->close();
  return outcome;
}

Content read(const std::string& path) {
  const auto object = std::make_unique<RxfObject>(rxffile::operatingSystem());
  EXPECT_EQ(object->openRead(path.c_str()), 0);
  return readContent(*object);
}

class SystemFault : public testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(write(rxffile::operatingSystem(), path_, oldContent()).fine());
  }

  // The new file where the write was fine, otherwise the old one; but for a failure of bringing the
  // folder to the disk, which comes behind the change.
  void expectAsTold(const Outcome& outcome, const std::string& failedCall) {
    const Content now = read(path_);
    if (outcome.fine()) {
      EXPECT_TRUE(now == smallContent()) << failedCall;
    } else if (failedCall != "fsync" || now != smallContent()) {
      EXPECT_TRUE(now == oldContent()) << failedCall;
    }
  }

  TempFolder folder_;
  std::string path_ = folder_.file("x");
};

TEST_P(SystemFault, ofOneCallOfAWriteLeavesTheOldOrTheNewFile) {
  for (int at = 1;; ++at) {
    SCOPED_TRACE(at);
    write(rxffile::operatingSystem(), path_, oldContent());
    FailingCalls calls(Mode::failOnce, at, GetParam());
    const Outcome outcome = write(calls, path_, smallContent());
    expectAsTold(outcome, calls.failed());
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"x"}) << calls.failed();
    // Nothing fails without being counted at the core's last question.
    if (outcome.opened == 0 && outcome.errors == 0) {
      EXPECT_EQ(outcome.closed, 0) << calls.failed();
    }
    if (calls.failed().empty()) {
      EXPECT_GT(at, 12);
      EXPECT_TRUE(outcome.fine());
      break;
    }
  }
}

TEST_P(SystemFault, ofAllCallsFromOneOnLeavesTheOldOrTheNewFileAndTheNextWriteSweeps) {
  for (int at = 1;; ++at) {
    SCOPED_TRACE(at);
    write(rxffile::operatingSystem(), path_, oldContent());
    FailingCalls calls(Mode::failOn, at, GetParam());
    const Outcome outcome = write(calls, path_, smallContent());
    expectAsTold(outcome, calls.failed());
    EXPECT_TRUE(write(rxffile::operatingSystem(), path_, oldContent()).fine());
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"x"});
    if (calls.failed().empty()) break;
  }
}

TEST_P(SystemFault, ofOneCallOfAReadGivesAnErrorAndNoWrongRecord) {
  write(rxffile::operatingSystem(), path_, smallContent());
  for (int at = 1;; ++at) {
    SCOPED_TRACE(at);
    FailingCalls calls(Mode::failOnce, at, GetParam());
    {
      const auto object = std::make_unique<RxfObject>(calls);
      if (object->openRead(path_.c_str()) == 0) {
        const Content content = readContent(*object);
        const Content expected = smallContent();
        ASSERT_EQ(content.symbols.size(), expected.symbols.size());
        for (std::size_t i = 0; i < expected.symbols.size(); ++i) {
          if (content.symbols[i].records.empty()) continue;
          EXPECT_EQ(content.symbols[i].records, expected.symbols[i].records);
        }
        if (content != expected) {
          EXPECT_GT(object->errorCount(), 0);
        }
      } else {
        EXPECT_EQ(object->errorCount(), 1);
      }
    }
    if (calls.failed().empty()) break;
  }
}

INSTANTIATE_TEST_SUITE_P(Errors, SystemFault, testing::Values(ENOSPC, EIO, EACCES));

std::string errorTextOf(const RxfObject& object, int number) {
  std::array<char, 256> text{};
  object.errorText(number, text.data());
  return text.data();
}

// What the error count tells, by the name of each call of the publishing that fails; every other
// failure is left out. The text comes with the content that the file has then.
std::map<std::string, std::pair<std::string, Content>> publishingTexts(const std::string& path,
                                                                       int systemError) {
  std::map<std::string, std::pair<std::string, Content>> texts;
  for (int at = 1;; ++at) {
    write(rxffile::operatingSystem(), path, oldContent());
    FailingCalls calls(Mode::failOnce, at, systemError);
    const auto object = std::make_unique<RxfObject>(calls);
    if (object->openWrite(path.c_str(), "") != 0) continue;
    writeContent(*object, smallContent());
    object->errorCount();
    if (!calls.failed().empty()) continue;
    object->storeDomainSets(false);
    const int errors = object->errorCount();
    if (calls.failed().empty()) return texts;
    if (errors == 0) continue;
    EXPECT_EQ(errors, 1) << calls.failed();
    const std::string text = errorTextOf(*object, object->takeLastError());
    EXPECT_NE(object->close(), 0);
    texts[calls.failed()] = {text, read(path)};
  }
}

TEST(SystemFaults, aPublishingThatFailsIsCountedAndToldAndLeavesTheOldFile) {
  const TempFolder folder;
  const std::string path = folder.file("x");
  const Content before = oldContent();
  const std::string failed = "Writing failed: " + path;
  const std::map<std::string, std::pair<std::string, Content>> broken = {
      {"stat", {failed + ": Input/output error", before}},
      {"fchmod", {failed + ": the permission bits 640 cannot be set: Input/output error", before}},
      {"open", {failed + ": Input/output error", before}},
      {"rename", {failed + ": Input/output error", before}},
      {"fsync",
       {failed + " is replaced, but its folder could not be brought to the disk: "
                 "Input/output error",
        smallContent()}}};
  writeFile(path, "");
  chmod(path.c_str(), 0640);
  EXPECT_EQ(publishingTexts(path, EIO), broken);
}

TEST(SystemFaults, aMountPointIsToldAsTheReason) {
  const TempFolder folder;
  EXPECT_EQ(publishingTexts(folder.file("x"), EBUSY).at("rename"),
            (std::pair<std::string, Content>{
                "Writing failed: " + folder.file("x") +
                    " is a mount point, which a new file cannot take the place of by renaming; "
                    "write to another name",
                oldContent()}));
}

TEST(SystemFaults, aFileThatMayNotBeReplacedIsToldWithTheReason) {
  const TempFolder folder;
  EXPECT_EQ(publishingTexts(folder.file("x"), EPERM).at("rename"),
            (std::pair<std::string, Content>{"No permission: " + folder.file("x") +
                                                 " cannot be replaced: Operation not permitted",
                                             oldContent()}));
}

TEST(SystemFaults, aFolderThatMayNotBeReadIsNotSynced) {
  const TempFolder folder;
  const auto texts = publishingTexts(folder.file("x"), EACCES);
  EXPECT_EQ(texts.count("open"), 0U);
  EXPECT_EQ(texts.count("rename"), 1U);
}

TEST(SystemFaults, aFullDiskIsCountedBeforeClosing) {
  const TempFolder folder;
  write(rxffile::operatingSystem(), folder.file("x"), oldContent());
  for (int at = 1;; ++at) {
    FailingCalls calls(Mode::failOnce, at, ENOSPC);
    const auto object = std::make_unique<RxfObject>(calls);
    if (object->openWrite(folder.file("x").c_str(), "") != 0) continue;
    writeContent(*object, smallContent());
    const int errors = object->errorCount();
    if (calls.failed().empty()) {
      EXPECT_EQ(errors, 0);
      break;
    }
    if (calls.failed() != "pwrite" && calls.failed() != "fsync") continue;
    EXPECT_EQ(errors, 1) << calls.failed();
    EXPECT_EQ(object->takeLastError(), 9);
    std::array<char, 256> text{};
    object->errorText(9, text.data());
    EXPECT_EQ(std::string(text.data()), "Disk full: " + folder.file("x"));
    EXPECT_NE(object->close(), 0);
    EXPECT_TRUE(read(folder.file("x")) == oldContent());
  }
}

TEST(SystemFaults, aFailedWriteHasItsOwnNumber) {
  const TempFolder folder;
  bool met = false;
  for (int at = 1; !met; ++at) {
    FailingCalls calls(Mode::failOnce, at, EIO);
    const auto object = std::make_unique<RxfObject>(calls);
    if (object->openWrite(folder.file("x").c_str(), "") != 0) continue;
    writeContent(*object, smallContent());
    object->errorCount();
    ASSERT_FALSE(calls.failed().empty());
    if (calls.failed() != "pwrite") continue;
    met = true;
    EXPECT_EQ(object->takeLastError(), 10);
    std::array<char, 256> text{};
    object->errorText(10, text.data());
    EXPECT_EQ(std::string(text.data()),
              "Writing failed: " + folder.file("x") + ": Input/output error");
  }
}

TEST(SystemFaults, aReadThatFailsHasItsOwnNumber) {
  const TempFolder folder;
  write(rxffile::operatingSystem(), folder.file("x"), smallContent());
  // Opening takes two calls; the third reads the header.
  FailingCalls calls(Mode::failOnce, 3, EIO);
  const auto object = std::make_unique<RxfObject>(calls);
  EXPECT_EQ(object->openRead(folder.file("x").c_str()), 11);
  std::array<char, 256> text{};
  object->errorText(11, text.data());
  EXPECT_EQ(std::string(text.data()),
            "Reading failed: " + folder.file("x") + ": Input/output error");
}

TEST(SystemFaults, aFileThatMayNotBeReadIsNamed) {
  const TempFolder folder;
  write(rxffile::operatingSystem(), folder.file("x"), oldContent());
  for (const int error : {EACCES, EPERM}) {
    FailingCalls calls(Mode::failOnce, 1, error);
    const auto object = std::make_unique<RxfObject>(calls);
    EXPECT_EQ(object->openRead(folder.file("x").c_str()), 2);
    EXPECT_EQ(object->takeLastError(), 2);
    EXPECT_EQ(errorTextOf(*object, 2), "No permission: " + folder.file("x") + " cannot be read");
  }
}

// What opening a file for writing tells under an error number when the call of each name fails.
std::map<std::string, std::string> openingTexts(const std::string& path, int systemError,
                                                int number) {
  std::map<std::string, std::string> texts;
  for (int at = 1;; ++at) {
    FailingCalls calls(Mode::failOnce, at, systemError);
    const auto object = std::make_unique<RxfObject>(calls);
    const int error = object->openWrite(path.c_str(), "");
    if (calls.failed().empty()) return texts;
    if (error == number) {
      EXPECT_EQ(object->takeLastError(), number);
      texts.emplace(calls.failed(), errorTextOf(*object, number));
    }
  }
}

TEST(SystemFaults, aFileThatMayNotBeWrittenIsToldWithTheReason) {
  using Texts = std::map<std::string, std::string>;
  const TempFolder folder;
  write(rxffile::operatingSystem(), folder.file("x"), oldContent());
  const Texts expected = {{"stat", "No permission: the folder cannot be entered"},
                          {"access", "No permission: the file cannot be written"},
                          {"open", "No permission: the folder cannot be written"}};
  for (const int error : {EACCES, EPERM, EROFS}) {
    EXPECT_EQ(openingTexts(folder.file("x"), error, 2), expected);
  }
  EXPECT_TRUE(read(folder.file("x")) == oldContent());
}

TEST(SystemFaults, aDiskWithoutRoomForTheFileIsToldAtOpening) {
  const TempFolder folder;
  EXPECT_EQ(openingTexts(folder.file("x"), ENOSPC, 9).at("open"),
            "Disk full: No space left on device");
}

TEST(SystemFaults, interruptedCallsAreTakenUpAgain) {
  const TempFolder folder;
  for (int at = 1;; ++at) {
    FailingCalls calls(Mode::failOnce, at, EINTR);
    const Outcome outcome = write(calls, folder.file("x"), smallContent());
    const std::string& failed = calls.failed();
    if (failed.empty()) break;
    if (failed == "pwrite" || failed == "flock") {
      EXPECT_TRUE(outcome.fine()) << failed;
    }
  }
}

TEST(SystemFaults, readsAndWritesOfAFewBytesAddUp) {
  const TempFolder folder;
  FailingCalls calls(Mode::shortOnes, 0, 0);
  EXPECT_TRUE(write(calls, folder.file("x"), smallContent()).fine());
  const auto object = std::make_unique<RxfObject>(calls);
  ASSERT_EQ(object->openRead(folder.file("x").c_str()), 0);
  EXPECT_TRUE(readContent(*object) == smallContent());
}

}  // namespace
}  // namespace rxftest
