// What the files make of rare answers of the system, each given by a call that a test replaces.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "providers/rxf/failure.h"
#include "providers/rxf/input_file.h"
#include "providers/rxf/output_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxffile {
namespace {

using rxftest::readFile;
using rxftest::TempFolder;
using rxftest::writeFile;

// Calls of the system, of which a test gives some its own answer; -2 leaves it to the system.
class AnsweredCalls : public SystemCalls {
 public:
  static constexpr int kOwn = -2;

  std::function<int(const char*, int)> onOpen = [](const char*, int) { return kOwn; };
  std::function<void(struct stat*, int&)> onFstat = [](struct stat*, int&) {};
  std::function<void(const char*, struct stat*, int&)> onStat = [](const char*, struct stat*,
                                                                   int&) {};
  std::function<long()> onPread = [] { return long{kOwn}; };
  std::function<long()> onPwrite = [] { return long{kOwn}; };
  std::function<int()> onFtruncate = [] { return kOwn; };
  std::function<int(int)> onFsync = [](int) { return kOwn; };
  std::function<int(int)> onFlock = [](int) { return kOwn; };
  std::function<int()> onFchmod = [] { return kOwn; };
  std::function<int()> onRename = [] { return kOwn; };

  int open(const char* path, int flags, mode_t mode) override {
    const int answer = onOpen(path, flags);
    return answer == kOwn ? SystemCalls::open(path, flags, mode) : answer;
  }
  int fstat(int fd, struct stat* status) override {
    int result = SystemCalls::fstat(fd, status);
    onFstat(status, result);
    return result;
  }
  int stat(const char* path, struct stat* status) override {
    int result = SystemCalls::stat(path, status);
    onStat(path, status, result);
    return result;
  }
  ssize_t pread(int fd, void* data, std::size_t size, off_t offset) override {
    const long answer = onPread();
    return answer == kOwn ? SystemCalls::pread(fd, data, size, offset) : answer;
  }
  ssize_t pwrite(int fd, const void* data, std::size_t size, off_t offset) override {
    const long answer = onPwrite();
    return answer == kOwn ? SystemCalls::pwrite(fd, data, size, offset) : answer;
  }
  int ftruncate(int fd, off_t length) override {
    const int answer = onFtruncate();
    return answer == kOwn ? SystemCalls::ftruncate(fd, length) : answer;
  }
  int fsync(int fd) override {
    const int answer = onFsync(fd);
    return answer == kOwn ? SystemCalls::fsync(fd) : answer;
  }
  int flock(int fd, int operation) override {
    const int answer = onFlock(operation);
    return answer == kOwn ? SystemCalls::flock(fd, operation) : answer;
  }
  int fchmod(int fd, mode_t mode) override {
    ++modesSet;
    const int answer = onFchmod();
    return answer == kOwn ? SystemCalls::fchmod(fd, mode) : answer;
  }
  int rename(const char* from, const char* to) override {
    const int answer = onRename();
    return answer == kOwn ? SystemCalls::rename(from, to) : answer;
  }

  int modesSet = 0;
};

int failWith(int error) {
  errno = error;
  return -1;
}

// Fails the first time with EINTR, as a call does that a signal interrupts.
std::function<int()> interruptedOnce() {
  return [first = true]() mutable {
    return std::exchange(first, false) ? failWith(EINTR) : AnsweredCalls::kOwn;
  };
}

bool isFolder(int fd) {
  struct stat status {};
  return fstat(fd, &status) == 0 && S_ISDIR(status.st_mode);
}

using Told = std::pair<ErrorNumber, std::string>;

// What an action fails with.
Told failureOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Failure& failure) {
    return {failure.number(), failure.what()};
  }
  return {ErrorNumber::none, ""};
}

class SystemAnswers : public testing::Test {
 protected:
  std::string path() const { return folder_.file("x"); }
  void write(const std::string& bytes) {
    OutputFile file(calls_, path());
    file.append(bytes.data(), bytes.size());
    file.sync();
    file.publish();
  }
  Told writing() {
    return failureOf([&] { write("new"); });
  }
  // The old file stands, and nothing beside it.
  void expectOldFile() {
    EXPECT_EQ(readFile(path()), "old");
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"x"});
  }

  TempFolder folder_;
  AnsweredCalls calls_;
};

TEST_F(SystemAnswers, ToTheOpeningOfANewFileAreToldApart) {
  const std::vector<std::pair<int, Told>> answers{
      {ENOENT, {ErrorNumber::noSuchFile, "the folder does not exist"}},
      {ENOTDIR, {ErrorNumber::noSuchFile, "the folder does not exist"}},
      {EACCES, {ErrorNumber::noPermission, "the folder cannot be written"}},
      {EPERM, {ErrorNumber::noPermission, "the folder cannot be written"}},
      {EROFS, {ErrorNumber::noPermission, "the folder cannot be written"}},
      {EISDIR, {ErrorNumber::isFolder, ""}},
      {ENOSPC, {ErrorNumber::diskFull, "No space left on device"}},
      {EDQUOT, {ErrorNumber::diskFull, "Disk quota exceeded"}},
      {EMFILE, {ErrorNumber::cannotOpen, "Too many open files"}}};
  writeFile(path(), "old");
  for (const auto& [error, told] : answers) {
    calls_.onOpen = [error = error](const char*, int flags) {
      return (flags & O_EXCL) != 0 ? failWith(error) : AnsweredCalls::kOwn;
    };
    EXPECT_EQ(writing(), told) << error;
    expectOldFile();
  }
}

TEST_F(SystemAnswers, ToTheOpeningOfAFileToReadAreToldApart) {
  writeFile(path(), "old");
  const std::vector<std::pair<int, Told>> answers{
      {ENOENT, {ErrorNumber::noSuchFile, path()}},
      {ENOTDIR, {ErrorNumber::noSuchFile, path()}},
      {EACCES, {ErrorNumber::noPermission, path() + " cannot be read"}},
      {EPERM, {ErrorNumber::noPermission, path() + " cannot be read"}},
      {EISDIR, {ErrorNumber::isFolder, path()}},
      {ELOOP, {ErrorNumber::cannotOpen, path() + ": Too many levels of symbolic links"}}};
  for (const auto& [error, told] : answers) {
    calls_.onOpen = [error = error](const char*, int) { return failWith(error); };
    EXPECT_EQ(failureOf([&] { const InputFile file(calls_, path()); }), told) << error;
  }
}

TEST_F(SystemAnswers, ThatEveryNameIsTakenEndTheSearchForOne) {
  writeFile(path(), "old");
  calls_.onOpen = [](const char* name, int flags) {
    if ((flags & O_EXCL) != 0) return failWith(EEXIST);
    return std::string(name).ends_with(".rxftmp") ? failWith(ENOENT) : AnsweredCalls::kOwn;
  };
  EXPECT_EQ(writing(), Told(ErrorNumber::cannotOpen, "too many writers of the file"));
  expectOldFile();
}

// Only a file that is sure to be the left one is removed; the writer takes the next name.
TEST_F(SystemAnswers, ThatLeaveDoubtWhoseALeftFileIsKeepIt) {
  writeFile(path(), "old");
  const std::string left = folder_.file(".x.0.rxftmp");
  const auto expectKept = [&](const char* what) {
    writeFile(left, "left");
    write("new");
    EXPECT_EQ(readFile(left), "left") << what;
    EXPECT_EQ(readFile(path()), "new") << what;
    calls_.onFlock = [](int) { return AnsweredCalls::kOwn; };
    calls_.onFstat = [](struct stat*, int&) {};
    calls_.onStat = [](const char*, struct stat*, int&) {};
  };
  calls_.onFlock = [](int operation) {
    return (operation & LOCK_NB) != 0 ? failWith(EWOULDBLOCK) : AnsweredCalls::kOwn;
  };
  expectKept("locked");
  calls_.onFstat = [](struct stat* status, int& result) {
    if (status->st_size == 4) result = failWith(EIO);
  };
  expectKept("not to be asked");
  calls_.onStat = [&](const char* name, struct stat*, int& result) {
    if (name == left) result = failWith(ENOENT);
  };
  expectKept("gone");
  calls_.onStat = [&](const char* name, struct stat* status, int&) {
    if (name == left) ++status->st_ino;
  };
  expectKept("another");
  calls_.onStat = [&](const char* name, struct stat* status, int&) {
    if (name == left) ++status->st_dev;
  };
  expectKept("on another disk");
  writeFile(left, "left");
  write("newer");
  EXPECT_EQ(folder_.names(), std::vector<std::string>{"x"});
}

TEST_F(SystemAnswers, ThatTheNewFileIsGoneMakeAnother) {
  calls_.onFstat = [first = true](struct stat* status, int&) mutable {
    if (std::exchange(first, false)) status->st_nlink = 0;
  };
  write("new");
  calls_.onFstat = [first = true](struct stat*, int& result) mutable {
    if (std::exchange(first, false)) result = failWith(EIO);
  };
  write("newer");
  EXPECT_EQ(readFile(path()), "newer");
  EXPECT_EQ(folder_.names(), std::vector<std::string>{"x"});
}

TEST_F(SystemAnswers, ThatALockIsInterruptedOrUnknownDoNotMatter) {
  calls_.onFlock = [locks = 0](int) mutable {
    return ++locks == 1 ? failWith(EINTR) : failWith(ENOLCK);
  };
  write("new");
  EXPECT_EQ(readFile(path()), "new");
}

TEST_F(SystemAnswers, ThatTheDiskIsFullAreToldAsThat) {
  writeFile(path(), "old");
  for (const int error : {ENOSPC, EDQUOT}) {
    calls_.onPwrite = [error] { return long{failWith(error)}; };
    EXPECT_EQ(writing(), Told(ErrorNumber::diskFull, path()));
    expectOldFile();
  }
  // Nothing written and no reason.
  calls_.onPwrite = [] { return 0L; };
  EXPECT_EQ(writing(), Told(ErrorNumber::diskFull, path()));
  calls_.onPwrite = [] { return long{failWith(EIO)}; };
  EXPECT_EQ(writing(), Told(ErrorNumber::writeFailed, path() + ": Input/output error"));
  expectOldFile();
}

TEST_F(SystemAnswers, ToCuttingTheFileAreToldOrTakenUpAgain) {
  OutputFile file(calls_, path());
  file.append("abc", 3);
  calls_.onFtruncate = interruptedOnce();
  file.rewindTo(1);
  EXPECT_EQ(file.position(), 1U);
  calls_.onFtruncate = [] { return failWith(EIO); };
  EXPECT_EQ(failureOf([&] { file.rewindTo(0); }),
            Told(ErrorNumber::writeFailed, path() + ": Input/output error"));
}

TEST_F(SystemAnswers, ToReadingAPublishedFileAgainAreToldOrTakenUpAgain) {
  OutputFile file(calls_, path());
  file.append("abc", 3);
  file.sync();
  file.publish();
  calls_.onPread = [first = true]() mutable {
    return std::exchange(first, false) ? long{failWith(EINTR)} : long{AnsweredCalls::kOwn};
  };
  file.rewindTo(2);
  file.sync();
  file.publish();
  EXPECT_EQ(readFile(path()), "ab");
  calls_.onPread = [] { return long{failWith(EIO)}; };
  EXPECT_EQ(failureOf([&] { file.rewindTo(1); }),
            Told(ErrorNumber::writeFailed, path() + ": Input/output error"));
  EXPECT_EQ(readFile(path()), "ab");
}

TEST_F(SystemAnswers, ThatAPublishedFileEndsEarlyAreTold) {
  OutputFile file(calls_, path());
  file.append("abc", 3);
  file.sync();
  file.publish();
  calls_.onPread = [] { return 0L; };
  EXPECT_EQ(failureOf([&] { file.rewindTo(2); }),
            Told(ErrorNumber::writeFailed, path() + ": Input/output error"));
  EXPECT_EQ(readFile(path()), "abc");
}

TEST_F(SystemAnswers, ToTheSyncOfAFolderThatHasNoneAreNoFailure) {
  for (const int error : {EINVAL, ENOTSUP}) {
    calls_.onFsync = [error](int fd) {
      return isFolder(fd) ? failWith(error) : AnsweredCalls::kOwn;
    };
    write("new");
    EXPECT_EQ(readFile(path()), "new");
  }
  calls_.onFsync = [first = true](int) mutable {
    return std::exchange(first, false) ? failWith(EINTR) : AnsweredCalls::kOwn;
  };
  write("newer");
  calls_.onFsync = [](int fd) { return isFolder(fd) ? failWith(EIO) : AnsweredCalls::kOwn; };
  EXPECT_EQ(writing(),
            Told(ErrorNumber::writeFailed,
                 path() + " is replaced, but its folder could not be brought to the disk: "
                          "Input/output error"));
  EXPECT_EQ(readFile(path()), "new");
}

TEST_F(SystemAnswers, ToTheBitsOfTheFileAreToldOrTakenUpAgain) {
  writeFile(path(), "old");
  chmod(path().c_str(), 0640);
  calls_.onFchmod = interruptedOnce();
  write("new");
  EXPECT_EQ(calls_.modesSet, 2);
  writeFile(path(), "old");
  chmod(path().c_str(), 0640);
  calls_.onFchmod = [] { return failWith(EPERM); };
  EXPECT_EQ(writing(),
            Told(ErrorNumber::writeFailed,
                 path() + ": the permission bits 640 cannot be set: Operation not permitted"));
  expectOldFile();
}

// Such a file system gives every file the same bits, and none can be set.
TEST_F(SystemAnswers, ThatAFileSystemHasNoBitsOfItsOwnSetNone) {
  calls_.onFstat = [](struct stat* status, int&) { status->st_mode |= 0077; };
  calls_.onFchmod = [] { return failWith(EPERM); };
  write("new");
  EXPECT_EQ(readFile(path()), "new");
  EXPECT_EQ(calls_.modesSet, 0);
}

TEST_F(SystemAnswers, ToALookAtTheTargetAreToldWithTheirReason) {
  writeFile(path(), "old");
  OutputFile file(calls_, path());
  file.append("new", 3);
  file.sync();
  calls_.onStat = [](const char*, struct stat*, int& result) { result = failWith(EIO); };
  EXPECT_EQ(failureOf([&] { file.publish(); }),
            Told(ErrorNumber::writeFailed, path() + ": Input/output error"));
  EXPECT_EQ(failureOf([&] { const OutputFile other(calls_, path()); }),
            Told(ErrorNumber::cannotOpen, "Input/output error"));
  EXPECT_EQ(readFile(path()), "old");
}

// Who may not replace a file is told of the sticky folder only where that is the reason.
TEST_F(SystemAnswers, ToAReplacementThatIsNotAllowedAreToldWithTheirReason) {
  writeFile(path(), "old");
  calls_.onRename = [] { return failWith(EPERM); };
  const Told plain{ErrorNumber::noPermission,
                   path() + " cannot be replaced: Operation not permitted"};
  EXPECT_EQ(writing(), plain) << "no sticky folder";
  const uid_t other = geteuid() + 1;
  const auto answer = [&](mode_t folderBit, uid_t folderUser, uid_t fileUser) {
    calls_.onStat = [=](const char*, struct stat* status, int&) {
      const bool folder = S_ISDIR(status->st_mode);
      status->st_uid = folder ? folderUser : fileUser;
      if (folder) status->st_mode |= folderBit;
    };
    return writing();
  };
  EXPECT_EQ(answer(S_ISVTX, geteuid(), other), plain) << "the folder is the user's";
  EXPECT_EQ(answer(S_ISVTX, other, geteuid()), plain) << "the file is the user's";
  EXPECT_EQ(answer(0, other, other), plain) << "not sticky";
  EXPECT_EQ(answer(S_ISVTX, other, other),
            Told(ErrorNumber::noPermission,
                 path() + " cannot be replaced: it belongs to another user and lies in a sticky "
                          "folder"));
  expectOldFile();
}

TEST_F(SystemAnswers, ForABareNameAreThoseOfTheFolderWhereTheProcessIs) {
  const int before = open(".", O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(chdir(folder_.path().c_str()), 0);
  OutputFile file(calls_, "x");
  file.append("new", 3);
  file.sync();
  file.publish();
  calls_.onRename = [] { return failWith(EACCES); };
  OutputFile again(calls_, "x");
  again.append("newer", 5);
  again.sync();
  const Told told = failureOf([&] { again.publish(); });
  ASSERT_EQ(fchdir(before), 0);
  close(before);
  EXPECT_EQ(told, Told(ErrorNumber::noPermission, "x cannot be replaced: Permission denied"));
  EXPECT_EQ(readFile(path()), "new");
}

// Each of these tells that another file, or another content, stands there now.
TEST_F(SystemAnswers, ThatAnOpenFileIsNotTheSameAreTold) {
  writeFile(path(), "old");
  const std::vector<std::function<void(struct stat&)>> changes{
      [](struct stat& status) { ++status.st_dev; }, [](struct stat& status) { ++status.st_ino; },
      [](struct stat& status) { ++status.st_mtim.tv_sec; },
      [](struct stat& status) { ++status.st_mtim.tv_nsec; }};
  const InputFile file(calls_, path());
  file.requireUnchanged();
  for (const auto& change : changes) {
    calls_.onFstat = [&](struct stat* status, int&) { change(*status); };
    EXPECT_EQ(failureOf([&] { file.requireUnchanged(); }),
              Told(ErrorNumber::changed, "it was written to"));
  }
  calls_.onFstat = [](struct stat* status, int&) { status->st_size = 7; };
  EXPECT_EQ(failureOf([&] { file.requireUnchanged(); }),
            Told(ErrorNumber::changed, "it had 3 bytes, now 7"));
  calls_.onFstat = [](struct stat*, int& result) { result = failWith(EIO); };
  EXPECT_EQ(failureOf([&] { file.requireUnchanged(); }),
            Told(ErrorNumber::readFailed, "Input/output error"));
}

TEST_F(SystemAnswers, ToReadsAreToldWithThePlaceOrTakenUpAgain) {
  writeFile(path(), "old");
  const InputFile file(calls_, path());
  std::string bytes(3, ' ');
  calls_.onPread = [first = true]() mutable {
    return std::exchange(first, false) ? long{failWith(EINTR)} : long{AnsweredCalls::kOwn};
  };
  file.read(0, bytes.data(), 3, "block 1");
  EXPECT_EQ(bytes, "old");
  calls_.onPread = [] { return long{failWith(EIO)}; };
  EXPECT_EQ(failureOf([&] { file.read(0, bytes.data(), 3, "block 1"); }),
            Told(ErrorNumber::readFailed, "block 1: Input/output error"));
  calls_.onPread = [] { return 0L; };
  EXPECT_EQ(failureOf([&] { file.read(1, bytes.data(), 2, "block 1"); }),
            Told(ErrorNumber::cutShort, "block 1: the file ends at byte 1, expected more"));
}

}  // namespace
}  // namespace rxffile
