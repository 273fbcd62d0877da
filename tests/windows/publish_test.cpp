// How exchange files come into place on Windows: who has a file open keeps it as it is, names are
// UTF-8, and what a killed writer left is cleared away.

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "providers/rxf/system_calls.h"
#include "providers/windows/held_file.h"
#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

Content labelled(const std::string& label) {
  return {{label}, {}, {{"p", kParameter, 1, 0, "", {record({1}, {1})}, 0, {}, ""}}};
}

void write(const std::string& path, const Content& content) {
  PeerFile file;
  ASSERT_EQ(file.openWrite(path), 0);
  writeContent(file, content);
  ASSERT_EQ(file.close(), 0);
}

Content read(const std::string& path) {
  PeerFile file;
  EXPECT_EQ(file.openRead(path), 0);
  return readContent(file);
}

// A file that this program has open, as another would.
class Held {
 public:
  Held(const std::string& path, DWORD sharing)
      : handle_(
            CreateFileA(path.c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr)) {
    EXPECT_NE(INVALID_HANDLE_VALUE, handle_);
  }
  ~Held() { release(); }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;

  void release() {
    if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
    handle_ = INVALID_HANDLE_VALUE;
  }

 private:
  HANDLE handle_;
};

constexpr DWORD kSharedWithoutRemoval = FILE_SHARE_READ | FILE_SHARE_WRITE;

// One that is not there: Wine would let it be replaced.
TEST(PublishOnWindows, theNameOfADeviceIsNoPlace) {
  PeerFile file;
  EXPECT_EQ(4, file.openWrite("lpt9.rxf"));
}

TEST(PublishOnWindows, aFileThatAnotherProgramHasOpenStaysAndTheErrorSaysWhy) {
  const TempFolder folder;
  const std::string path = folder.file("x.rxf");
  write(path, labelled("old"));
  const std::string before = readFile(path);
  for (const DWORD sharing : {kSharedWithoutRemoval, kSharedWithoutRemoval | FILE_SHARE_DELETE}) {
    const Held held(path, sharing);
    PeerFile file;
    ASSERT_EQ(0, file.openWrite(path));
    writeContent(file, labelled("new"));
    const int error = file.close();
    EXPECT_EQ("No permission: " + path +
                  " cannot be replaced: another program has it open; the old file is as it was",
              file.errorText(error));
    file.free();
    EXPECT_EQ(before, readFile(path));
    EXPECT_EQ(std::vector<std::string>{"x.rxf"}, folder.names());
  }
  write(path, labelled("new"));
  EXPECT_TRUE(read(path) == labelled("new"));
}

TEST(PublishOnWindows, whatAnotherProgramLetsNobodyReadIsRefusedAndTheErrorSaysWhy) {
  TempFolder folder;
  const std::string target = folder.file("mine alone.rxf");
  write(target, labelled("kept"));
  Held held(target, 0);

  PeerFile reader;
  const int code = reader.openRead(target);

  EXPECT_EQ(2, code);
  EXPECT_EQ("No permission: " + target + " cannot be read: another program has it open",
            reader.errorText(code));
  held.release();
  EXPECT_EQ(labelled("kept"), read(target));
}

TEST(PublishOnWindows, whatIsHeldForAMomentIsTriedAgainUntilItIsFree) {
  const TempFolder folder;
  writeFile(folder.file("from"), "new");
  writeFile(folder.file("to"), "old");
  Held held(folder.file("to"), kSharedWithoutRemoval);
  int pauses = 0;
  const bool done = ztbwindows::tryWhileHeld(
      [&] {
        return MoveFileExA(folder.file("from").c_str(), folder.file("to").c_str(),
                           MOVEFILE_REPLACE_EXISTING) != 0;
      },
      [&](DWORD) {
        if (++pauses == 3) held.release();
      });
  EXPECT_TRUE(done);
  EXPECT_EQ(3, pauses);
  EXPECT_EQ("new", readFile(folder.file("to")));
}

TEST(PublishOnWindows, whatStaysHeldIsGivenUpAfterABoundedNumberOfTries) {
  const TempFolder folder;
  writeFile(folder.file("x"), "old");
  const Held held(folder.file("x"), kSharedWithoutRemoval);
  int pauses = 0;
  const bool done = ztbwindows::tryWhileHeld(
      [&] { return DeleteFileA(folder.file("x").c_str()) != 0; }, [&](DWORD) { ++pauses; });
  EXPECT_FALSE(done);
  EXPECT_EQ(24, pauses);
  EXPECT_EQ(ERROR_SHARING_VIOLATION, GetLastError());
}

TEST(PublishOnWindows, whatIsNotThereIsNotTriedAgain) {
  const TempFolder folder;
  int pauses = 0;
  EXPECT_FALSE(ztbwindows::tryWhileHeld([&] { return DeleteFileA(folder.file("x").c_str()) != 0; },
                                        [&](DWORD) { ++pauses; }));
  EXPECT_EQ(0, pauses);
}

// The name as Windows has it: U+017E, U+6570, and U+1F600 in two halves.
TEST(PublishOnWindows, namesAreUtf8) {
  const TempFolder folder;
  const std::string path = folder.file("\xC5\xBE\xE6\x95\xB0\xF0\x9F\x98\x80.rxf");
  write(path, labelled("a"));
  EXPECT_TRUE(read(path) == labelled("a"));
  const std::wstring wanted =
      std::filesystem::path(folder.path()).wstring() + L"/\u017E\u6570\xD83D\xDE00.rxf";
  EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(wanted.c_str()));
}

TEST(PublishOnWindows, foldersMayBePartedByBackslashes) {
  const TempFolder folder;
  std::filesystem::create_directory(folder.file("below"));
  write(folder.path() + "\\below\\x.rxf", labelled("a"));
  EXPECT_TRUE(read(folder.file("below/x.rxf")) == labelled("a"));
  EXPECT_EQ(std::vector<std::string>{"below"}, folder.names());
}

TEST(PublishOnWindows, whatAKilledWriterLeftIsRemovedByTheNextOne) {
  const TempFolder folder;
  writeFile(folder.file(".x.rxf.0.rxftmp"), "left");
  write(folder.file("x.rxf"), labelled("a"));
  EXPECT_EQ(std::vector<std::string>{"x.rxf"}, folder.names());
}

TEST(PublishOnWindows, aWriterLeavesTheFileOfAnotherThatIsAtWork) {
  const TempFolder folder;
  const std::string path = folder.file("x.rxf");
  PeerFile first;
  ASSERT_EQ(0, first.openWrite(path));
  write(path, labelled("second"));
  EXPECT_TRUE(read(path) == labelled("second"));
  writeContent(first, labelled("first"));
  ASSERT_EQ(0, first.close());
  EXPECT_TRUE(read(path) == labelled("first"));
  EXPECT_EQ(std::vector<std::string>{"x.rxf"}, folder.names());
}

TEST(PublishOnWindows, aFileThatMayOnlyBeReadIsRefusedAtOnce) {
  const TempFolder folder;
  const std::string path = folder.file("x.rxf");
  write(path, labelled("old"));
  ASSERT_NE(0, SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY));
  PeerFile file;
  const int error = file.openWrite(path);
  EXPECT_EQ("No permission: the file cannot be written", file.errorText(error));
  ASSERT_NE(0, SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL));
  EXPECT_TRUE(read(path) == labelled("old"));
}

TEST(PublishOnWindows, aFolderAndAMissingFolderHaveTheirOwnErrors) {
  const TempFolder folder;
  PeerFile file;
  EXPECT_EQ("Is a folder: " + folder.path(), file.errorText(file.openRead(folder.path())));
  const std::string missing = folder.file("none") + "/x.rxf";
  EXPECT_EQ("No such file: " + missing, file.errorText(file.openRead(missing)));
  EXPECT_EQ("No such file: the folder does not exist", file.errorText(file.openWrite(missing)));
}

}  // namespace
}  // namespace rxftest
