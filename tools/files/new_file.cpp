#include "tools/files/new_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <utility>

#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

constexpr mode_t permissionBits = 0777;
constexpr int mostTemporaries = 64;
// With what stands around it a name of a file is not too long.
constexpr std::size_t longestBase = 200;

// Bits of a new file. The mask can only be asked for by setting it.
mode_t modeOfNewFiles() {
  const mode_t mask = umask(077);
  umask(mask);
  return 0666 & ~mask;
}

// A new file with its lock, which a file system without locks does not give; -1 with errno where
// there is none, EEXIST where the name is taken.
int openLocked(const std::string& name) {
  const int fd =
      posix::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (fd < 0) return fd;
  while (posix::flock(fd, LOCK_EX) != 0 && errno == EINTR) {
  }
  // Another writer may have taken it for one that was left, before it had the lock.
  posix::FileStatus status{};
  if (posix::fstat(fd, &status) == 0 && status.st_nlink > 0) return fd;
  posix::close(fd);
  errno = EEXIST;
  return -1;
}

// Removes a file whose writer is gone; false where there is none, or its writer lives.
bool removeIfLeft(const std::string& name) {
  const int fd = posix::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (fd < 0) {
    // Its writer may have given it its own name meanwhile.
    errno = EEXIST;
    return false;
  }
  posix::FileStatus opened{};
  posix::FileStatus named{};
  // Who holds the lock knows that the name still leads to the file.
  const bool left = posix::flock(fd, LOCK_EX | LOCK_NB) == 0 && posix::fstat(fd, &opened) == 0 &&
                    posix::stat(name.c_str(), &named) == 0 && opened.st_dev == named.st_dev &&
                    opened.st_ino == named.st_ino;
  if (left) posix::unlink(name.c_str());
  posix::close(fd);
  errno = EEXIST;
  return left;
}

}  // namespace

NewFile::NewFile(std::string path) : path_(std::move(path)) {
  lookAtOld();
  const int fd = makeTemporary();
  stream_ = fdopen(fd, "wb");
  if (stream_ == nullptr) {
    const int error = errno;
    posix::close(fd);
    posix::unlink(temporary_.c_str());
    errno = error;
    fail();
  }
}

NewFile::~NewFile() {
  const bool isLeft = stream_ != nullptr || isLent_;
  if (stream_ != nullptr) std::fclose(stream_);
  if (isLeft) posix::unlink(temporary_.c_str());
}

// Makes the file under the first name that no other writer has, and removes what killed ones left.
// A writer holds the lock of its file as long as the file has its temporary name.
int NewFile::makeTemporary() {
  const std::filesystem::path name = pathOf(path_);
  std::string base = nameOf(name.filename());
  if (base.size() > longestBase) {
    base = fmt::format("{}~{:016x}", base.substr(0, longestBase), std::hash<std::string>()(base));
  }
  const auto temporaryOf = [&](int number) {
    return nameOf(name.parent_path() / pathOf(fmt::format(".{}.{}.ztbtmp", base, number)));
  };
  int fd = -1;
  int number = 0;
  for (; fd < 0; ++number) {
    if (number == mostTemporaries) {
      throw Failure(fmt::format("{}: cannot be written: too many writers of the file", path_));
    }
    temporary_ = temporaryOf(number);
    // The second try is behind the removal of a file that was left under the name.
    fd = openLocked(temporary_);
    if (fd < 0 && errno == EEXIST && removeIfLeft(temporary_)) fd = openLocked(temporary_);
    if (fd < 0 && errno != EEXIST) fail();
  }
  while (number < mostTemporaries && removeIfLeft(temporaryOf(number))) ++number;
  return fd;
}

void NewFile::lookAtOld() {
  posix::FileStatus old{};
  if (posix::lstat(path_.c_str(), &old) != 0) {
    if (errno != ENOENT) {
      fail();
    }
    mode_ = modeOfNewFiles();
    return;
  }
  if (S_ISLNK(old.st_mode)) {
    throw Failure(fmt::format("{}: is a symbolic link, nothing is written through it", path_));
  }
  if (!S_ISREG(old.st_mode)) {
    throw Failure(fmt::format("{}: is no regular file, nothing is written to it", path_));
  }
  if (posix::access(path_.c_str(), W_OK) != 0) {
    fail();
  }
  mode_ = old.st_mode & permissionBits;
}

const std::string& NewFile::lend() {
  if (!posix::opensForAll) {
    isLent_ = true;
    if (std::fclose(std::exchange(stream_, nullptr)) != 0) fail();
  }
  return temporary_;
}

void NewFile::publish() {
  if (isLent_) {
    if (posix::rename(temporary_.c_str(), path_.c_str()) != 0) fail();
    isLent_ = false;
    return;
  }
  if (std::fflush(stream_) != 0 || std::ferror(stream_) != 0 ||
      posix::fchmod(fileno(stream_), mode_) != 0) {
    fail();
  }
  std::FILE* stream = std::exchange(stream_, nullptr);
  // Keeps the lock until the file has its name.
  const int lock = posix::duplicate(fileno(stream));
  const bool good =
      std::fclose(stream) == 0 && posix::rename(temporary_.c_str(), path_.c_str()) == 0;
  const int error = errno;
  if (!good) posix::unlink(temporary_.c_str());
  if (lock >= 0) posix::close(lock);
  errno = error;
  if (!good) fail();
}

void NewFile::fail() const {
  throw systemFailure(path_, "cannot be written", errno);
}

}  // namespace tool
