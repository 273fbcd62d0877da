#include "providers/rxf/output_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "providers/rxf/failure.h"
#include "tests/rxf/temp_folder.h"

namespace rxffile {
namespace {

using rxftest::readFile;
using rxftest::TempFolder;
using rxftest::writeFile;

void writeThrough(const std::string& path, const std::string& bytes) {
  OutputFile file(operatingSystem(), path);
  file.append(bytes.data(), bytes.size());
  file.sync();
  file.publish();
}

ErrorNumber openingError(const std::string& path) {
  try {
    const OutputFile file(operatingSystem(), path);
  } catch (const Failure& failure) {
    return failure.number();
  }
  return ErrorNumber::none;
}

mode_t modeOf(const std::string& path) {
  struct stat status {};
  stat(path.c_str(), &status);
  return status.st_mode & 07777U;
}

TEST(OutputFile, theTargetIsUntouchedUntilPublished) {
  const TempFolder folder;
  writeFile(folder.file("x"), "old");
  {
    OutputFile file(operatingSystem(), folder.file("x"));
    file.append("new", 3);
    file.sync();
    EXPECT_EQ(readFile(folder.file("x")), "old");
    EXPECT_EQ(folder.names().size(), 2U);
  }
  EXPECT_EQ(readFile(folder.file("x")), "old");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
}

TEST(OutputFile, publishingReplacesTheTarget) {
  const TempFolder folder;
  writeFile(folder.file("x"), "old");
  writeThrough(folder.file("x"), "new");
  EXPECT_EQ(readFile(folder.file("x")), "new");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
}

TEST(OutputFile, permissionBitsOfTheTargetAreKept) {
  const TempFolder folder;
  for (const mode_t bits : {0640U, 0666U, 0600U, 0700U}) {
    writeFile(folder.file("x"), "old");
    chmod(folder.file("x").c_str(), bits);
    writeThrough(folder.file("x"), "new");
    EXPECT_EQ(modeOf(folder.file("x")), bits);
  }
}

TEST(OutputFile, bitsThatChangeTheUserOfAProgramAreNotKept) {
  const TempFolder folder;
  writeFile(folder.file("x"), "old");
  chmod(folder.file("x").c_str(), 07755);
  writeThrough(folder.file("x"), "new");
  EXPECT_EQ(modeOf(folder.file("x")), 0755U);
}

TEST(OutputFile, onlyTheOwnerMayReadItUntilItIsWhole) {
  const TempFolder folder;
  const mode_t before = umask(0);
  writeFile(folder.file("x"), "old");
  chmod(folder.file("x").c_str(), 0666);
  for (const char* name : {"x", "y"}) {
    OutputFile file(operatingSystem(), folder.file(name));
    const std::string temporary = folder.file("." + std::string(name) + ".0.rxftmp");
    EXPECT_EQ(modeOf(temporary), 0600U);
    file.append("new", 3);
    file.sync();
    EXPECT_EQ(modeOf(temporary), 0600U);
    file.publish();
    EXPECT_EQ(modeOf(folder.file(name)), 0666U);
  }
  umask(before);
}

TEST(OutputFile, bitsThatTheTargetGetsMeanwhileAreKept) {
  const TempFolder folder;
  writeFile(folder.file("x"), "old");
  chmod(folder.file("x").c_str(), 0644);
  OutputFile file(operatingSystem(), folder.file("x"));
  chmod(folder.file("x").c_str(), 0600);
  file.sync();
  file.publish();
  EXPECT_EQ(modeOf(folder.file("x")), 0600U);
}

TEST(OutputFile, aTargetThatBecameAFolderOrAPipeIsLeftAlone) {
  const TempFolder folder;
  const auto failure = [&](const std::string& name, const auto& make) -> std::string {
    OutputFile file(operatingSystem(), folder.file(name));
    file.sync();
    make(folder.file(name));
    try {
      file.publish();
    } catch (const Failure& caught) {
      EXPECT_EQ(caught.number(), ErrorNumber::writeFailed);
      return caught.what();
    }
    return "";
  };
  EXPECT_EQ(failure("f", [](const std::string& path) { mkdir(path.c_str(), 0700); }),
            folder.file("f") + ": it is no regular file any more");
  EXPECT_EQ(failure("p", [](const std::string& path) { mkfifo(path.c_str(), 0600); }),
            folder.file("p") + ": it is no regular file any more");
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"f", "p"}));
}

TEST(OutputFile, theNameOfADeepFolderLeavesRoomForTheReason) {
  const TempFolder folder;
  const std::string path = folder.file(std::string(200, 'n'));
  OutputFile file(operatingSystem(), path);
  file.sync();
  mkdir(path.c_str(), 0700);
  try {
    file.publish();
    FAIL();
  } catch (const Failure& caught) {
    EXPECT_EQ(caught.what(), "..." + std::string(120, 'n') + ": it is no regular file any more");
  }
}

TEST(OutputFile, aNewFileHasTheBitsThatTheUmaskLeaves) {
  const TempFolder folder;
  const mode_t before = umask(027);
  writeThrough(folder.file("x"), "new");
  umask(before);
  EXPECT_EQ(modeOf(folder.file("x")), 0640U);
}

TEST(OutputFile, aSymbolicLinkIsWrittenThrough) {
  const TempFolder folder;
  mkdir(folder.file("sub").c_str(), 0700);
  writeFile(folder.file("sub/real"), "old");
  ASSERT_EQ(symlink("sub/real", folder.file("link").c_str()), 0);
  writeThrough(folder.file("link"), "new");
  EXPECT_EQ(readFile(folder.file("sub/real")), "new");
  struct stat status {};
  ASSERT_EQ(lstat(folder.file("link").c_str(), &status), 0);
  EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST(OutputFile, aSymbolicLinkToNothingMakesTheFileThatItNames) {
  const TempFolder folder;
  ASSERT_EQ(symlink("real", folder.file("link").c_str()), 0);
  writeThrough(folder.file("link"), "new");
  EXPECT_EQ(readFile(folder.file("real")), "new");
}

TEST(OutputFile, aRingOfSymbolicLinksCannotBeOpened) {
  const TempFolder folder;
  ASSERT_EQ(symlink("b", folder.file("a").c_str()), 0);
  ASSERT_EQ(symlink("a", folder.file("b").c_str()), 0);
  EXPECT_EQ(openingError(folder.file("a")), ErrorNumber::cannotOpen);
}

TEST(OutputFile, whatAKilledWriterLeftIsRemoved) {
  const TempFolder folder;
  writeFile(folder.file(".x.0.rxftmp"), "left");
  writeFile(folder.file(".x.1.rxftmp"), "left");
  writeThrough(folder.file("x"), "new");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
}

TEST(OutputFile, aWriterAtWorkIsLeftAlone) {
  const TempFolder folder;
  OutputFile first(operatingSystem(), folder.file("x"));
  first.append("first", 5);
  first.sync();
  writeThrough(folder.file("x"), "second");
  EXPECT_EQ(readFile(folder.file("x")), "second");
  first.publish();
  EXPECT_EQ(readFile(folder.file("x")), "first");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
}

TEST(OutputFile, aNameOf255BytesCanBeWritten) {
  const TempFolder folder;
  const std::string name(255, 'n');
  writeThrough(folder.file(name), "new");
  EXPECT_EQ(folder.names(), std::vector<std::string>{name});
}

TEST(OutputFile, whatCannotBeReplacedIsToldApart) {
  const TempFolder folder;
  EXPECT_EQ(openingError(folder.file("none/x")), ErrorNumber::noSuchFile);
  EXPECT_EQ(openingError(folder.path()), ErrorNumber::isFolder);
  EXPECT_EQ(openingError(folder.path() + "/"), ErrorNumber::isFolder);
  EXPECT_EQ(openingError("/dev/null"), ErrorNumber::notRegularFile);
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  EXPECT_EQ(openingError(folder.file("pipe")), ErrorNumber::notRegularFile);
}

// As it is for a user who is not root and owns neither the file nor its sticky folder.
class StickyFolder : public SystemCalls {
 public:
  int stat(const char* path, struct stat* status) override {
    const int result = SystemCalls::stat(path, status);
    status->st_uid = geteuid() + 1;
    if (S_ISDIR(status->st_mode)) status->st_mode |= S_ISVTX;
    return result;
  }
  int rename(const char*, const char*) override {
    errno = EPERM;
    return -1;
  }
};

TEST(OutputFile, aFileOfAnotherUserInAStickyFolderCannotBeReplaced) {
  const TempFolder folder;
  writeFile(folder.file("x"), "old");
  StickyFolder calls;
  {
    OutputFile file(calls, folder.file("x"));
    file.append("new", 3);
    file.sync();
    try {
      file.publish();
      ADD_FAILURE() << "published";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.number(), ErrorNumber::noPermission);
      EXPECT_EQ(std::string(failure.what()),
                folder.file("x") +
                    " cannot be replaced: it belongs to another user and lies in a sticky folder");
    }
  }
  EXPECT_EQ(readFile(folder.file("x")), "old");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
}

TEST(OutputFile, rewindingDropsWhatStoodBehind) {
  const TempFolder folder;
  OutputFile file(operatingSystem(), folder.file("x"));
  file.append("abcdef", 6);
  file.sync();
  file.rewindTo(3);
  EXPECT_EQ(file.position(), 3U);
  file.append("XY", 2);
  file.overwrite(0, "Z", 1);
  file.sync();
  file.publish();
  EXPECT_EQ(readFile(folder.file("x")), "ZbcXY");
}

TEST(OutputFile, rewindingAPublishedFileGoesOnBesideIt) {
  const TempFolder folder;
  {
    OutputFile file(operatingSystem(), folder.file("x"));
    file.append("abcdef", 6);
    file.sync();
    file.publish();
    EXPECT_TRUE(file.published());
    file.rewindTo(3);
    EXPECT_FALSE(file.published());
    file.append("XY", 2);
    file.sync();
    EXPECT_EQ(readFile(folder.file("x")), "abcdef");
    file.publish();
    EXPECT_EQ(readFile(folder.file("x")), "abcXY");
    file.rewindTo(0);
  }
  EXPECT_EQ(readFile(folder.file("x")), "abcXY");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
}

TEST(OutputFile, largeAndSmallPiecesKeepTheirOrder) {
  const TempFolder folder;
  std::string expected;
  OutputFile file(operatingSystem(), folder.file("x"));
  for (std::size_t i = 0; i < 40; ++i) {
    const std::string piece(i % 4 == 3 ? 400000 : 1000 * i, static_cast<char>('a' + i % 26));
    file.append(piece.data(), piece.size());
    expected += piece;
    EXPECT_EQ(file.position(), expected.size());
  }
  file.sync();
  file.publish();
  EXPECT_TRUE(readFile(folder.file("x")) == expected);
}

}  // namespace
}  // namespace rxffile
