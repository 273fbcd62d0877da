#include "providers/rxf/output_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <utility>

#include "providers/rxf/checksum.h"
#include "providers/rxf/failure.h"
#include "providers/rxf/file_mode.h"

namespace rxffile {

namespace {

constexpr std::size_t kPendingBytes = std::size_t{1} << 18U;
constexpr int kMaxLinks = 40;
constexpr int kMaxTemporaries = 1000;
constexpr std::size_t kMaxPlainBase = 200;
constexpr std::size_t kMaxShownName = 120;
constexpr mode_t kOwnOnly = 0600;
constexpr mode_t kPermissionBits = 0777;

bool isDiskFull(int error) {
  return error == ENOSPC || error == EDQUOT;
}

Failure makeFailure(int error, const char* what) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return {ErrorNumber::noSuchFile, DetailText("the folder does not exist")};
    case EACCES:
    case EPERM:
    case EROFS:
      return {ErrorNumber::noPermission, DetailText("%s", what)};
    case EISDIR:
      return {ErrorNumber::isFolder, DetailText()};
    default:
      return {isDiskFull(error) ? ErrorNumber::diskFull : ErrorNumber::cannotOpen,
              DetailText("%s", std::strerror(error))};
  }
}

// The folder part of a path with its final separator, empty for a bare name.
std::string folderOf(const std::string& path) {
  return path.substr(0, path.find_last_of(kSeparators) + 1);
}

}  // namespace

OutputFile::OutputFile(SystemCalls& calls, const std::string& path)
    : calls_(calls), path_(path), target_(path) {
  pending_.reserve(kPendingBytes);
  resolveTarget();
  checkTarget();
  try {
    makeTemporary();
  } catch (...) {
    discard();
    throw;
  }
}

OutputFile::~OutputFile() {
  discard();
}

void OutputFile::discard() {
  if (fd_ < 0) return;
  if (!published_) calls_.unlink(temporary_.c_str());
  calls_.close(fd_);
}

void OutputFile::resolveTarget() {
  std::array<char, PATH_MAX> link;
  for (int links = 0; links < kMaxLinks; ++links) {
    const ssize_t length = calls_.readlink(target_.c_str(), link.data(), link.size());
    if (length < 0) return;
    const std::string next(link.data(), static_cast<std::size_t>(length));
    target_ = next.front() == '/' ? next : folderOf(target_) + next;
  }
  throw makeFailure(ELOOP, "");
}

void OutputFile::checkTarget() {
  folder_ = folderOf(target_);
  if (folder_.size() == target_.size()) throw Failure(ErrorNumber::isFolder, DetailText());
  FileStatus status{};
  if (calls_.stat(target_.c_str(), &status) != 0) {
    if (errno == ENOENT) return;
    throw makeFailure(errno, "the folder cannot be entered");
  }
  if (!S_ISREG(status.st_mode)) {
    throw Failure(S_ISDIR(status.st_mode) ? ErrorNumber::isFolder : ErrorNumber::notRegularFile,
                  DetailText());
  }
  if (calls_.access(target_.c_str(), W_OK) != 0) {
    throw makeFailure(errno, "the file cannot be written");
  }
}

void OutputFile::makeTemporary() {
  std::string base = target_.substr(folder_.size());
  if (base.size() > kMaxPlainBase) {
    std::array<char, 24> hash;
    std::snprintf(hash.data(), hash.size(), "~%016llx",
                  static_cast<unsigned long long>(checksum(base.data(), base.size())));
    base = base.substr(0, kMaxPlainBase) + hash.data();
  }
  const auto nameOf = [&](int number) {
    return folder_ + "." + base + "." + std::to_string(number) + ".rxftmp";
  };
  int number = 0;
  // Two tries: the first may remove what a killed writer left under this name.
  while (!tryTemporary(nameOf(number)) && !tryTemporary(nameOf(number))) {
    if (++number == kMaxTemporaries) {
      throw Failure(ErrorNumber::cannotOpen, DetailText("too many writers of the file"));
    }
  }
  while (number < kMaxTemporaries && removeIfLeft(nameOf(++number))) {
  }
}

bool OutputFile::tryTemporary(const std::string& name) {
  temporary_ = name;
  const int made =
      calls_.open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, kOwnOnly);
  if (made < 0) {
    if (errno != EEXIST) throw makeFailure(errno, "the folder cannot be written");
    removeIfLeft(name);
    return false;
  }
  // Where a file system has no locks the writer goes on without one. Another writer that looks for
  // left files may hold the new file for a moment, and remove it.
  while (calls_.flock(made, LOCK_EX) != 0 && errno == EINTR) {
  }
  FileStatus status{};
  if (calls_.fstat(made, &status) == 0 && status.st_nlink > 0) {
    fd_ = made;
    // Where others may already do something with it, the file system has no bits of its own.
    hasBits_ = (status.st_mode & kPermissionBits & ~kOwnOnly) == 0;
    return true;
  }
  calls_.unlink(name.c_str());
  calls_.close(made);
  return false;
}

// Removes a temporary file whose writer is gone. False when there is no such file.
bool OutputFile::removeIfLeft(const std::string& name) {
  const int left = calls_.open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0);
  if (left < 0) return errno != ENOENT;
  // Only who holds the lock may remove the file, so the name still leads to it after the test.
  FileStatus opened{};
  FileStatus named{};
  if (calls_.flock(left, LOCK_EX | LOCK_NB) == 0 && calls_.fstat(left, &opened) == 0 &&
      calls_.stat(name.c_str(), &named) == 0 && opened.st_dev == named.st_dev &&
      opened.st_ino == named.st_ino) {
    calls_.unlink(name.c_str());
  }
  calls_.close(left);
  return true;
}

void OutputFile::append(const void* data, std::size_t size) {
  if (pending_.size() + size > kPendingBytes) flush();
  if (size >= kPendingBytes) {
    writeAll(flushed_, data, size);
    flushed_ += size;
    return;
  }
  const auto* from = static_cast<const std::uint8_t*>(data);
  pending_.insert(pending_.end(), from, from + size);
}

void OutputFile::overwrite(std::uint64_t offset, const void* data, std::size_t size) {
  flush();
  writeAll(offset, data, size);
}

void OutputFile::rewindTo(std::uint64_t length) {
  if (published_) {
    goOnBeside(length);
    return;
  }
  flush();
  while (calls_.ftruncate(fd_, static_cast<off_t>(length)) != 0) {
    if (errno != EINTR) failWriting(errno);
  }
  flushed_ = length;
}

void OutputFile::sync() {
  flush();
  while (calls_.fsync(fd_) != 0) {
    if (errno != EINTR) failWriting(errno);
  }
}

void OutputFile::goOnBeside(std::uint64_t length) {
  const int whole = std::exchange(fd_, -1);
  published_ = false;
  try {
    makeTemporary();
    copyFrom(whole, length);
  } catch (...) {
    calls_.close(whole);
    throw;
  }
  calls_.close(whole);
  flushed_ = length;
}

void OutputFile::copyFrom(int fd, std::uint64_t length) {
  Bytes piece(kPendingBytes);
  for (std::uint64_t at = 0; at < length;) {
    const std::size_t wanted = std::min<std::uint64_t>(piece.size(), length - at);
    const ssize_t got = calls_.pread(fd, piece.data(), wanted, static_cast<off_t>(at));
    if (got < 0) {
      if (errno == EINTR) continue;
      failWriting(errno);
    }
    if (got == 0) failWriting(EIO);
    writeAll(at, piece.data(), static_cast<std::size_t>(got));
    at += static_cast<std::uint64_t>(got);
  }
}

void OutputFile::publish() {
  openToOthers();
  // Opened first, so that behind the change of names only the sync itself can fail.
  const int folder = openFolder();
  try {
    replaceTarget();
  } catch (...) {
    if (folder >= 0) calls_.close(folder);
    throw;
  }
  if (folder >= 0) syncFolder(folder);
}

// Gives the file, now whole, the bits of the one that it replaces, or those of a new file.
void OutputFile::openToOthers() {
  FileStatus status{};
  mode_t mode = 0;
  if (calls_.stat(target_.c_str(), &status) == 0) {
    if (!S_ISREG(status.st_mode)) {
      throw Failure(ErrorNumber::writeFailed,
                    DetailText("%s: it is no regular file any more", shownName().c_str()));
    }
    mode = status.st_mode & kPermissionBits;
  } else if (errno == ENOENT) {
    mode = newFileMode();
  } else {
    failWriting(errno);
  }
  if (!hasBits_ || mode == kOwnOnly) return;
  while (calls_.fchmod(fd_, mode) != 0) {
    if (errno == EINTR) continue;
    throw Failure(ErrorNumber::writeFailed,
                  DetailText("%s: the permission bits %03o cannot be set: %s", shownName().c_str(),
                             static_cast<unsigned>(mode), std::strerror(errno)));
  }
}

void OutputFile::replaceTarget() {
  if (calls_.rename(temporary_.c_str(), target_.c_str()) != 0) failReplacing(errno);
  published_ = true;
}

// -1 for a folder that may be written but not read, and so cannot be synced.
int OutputFile::openFolder() const {
  const char* folder = folder_.empty() ? "." : folder_.c_str();
  const int fd = calls_.open(folder, O_RDONLY | O_CLOEXEC | O_DIRECTORY, 0);
  if (fd < 0 && errno != EACCES) failWriting(errno);
  return fd;
}

// Ends `fd`, too.
void OutputFile::syncFolder(int fd) const {
  int result = 0;
  do {
    result = calls_.fsync(fd);
  } while (result != 0 && errno == EINTR);
  const int error = errno;
  calls_.close(fd);
  // Some file systems have no sync of folders.
  if (result == 0 || error == EINVAL || error == ENOTSUP) return;
  throw Failure(ErrorNumber::writeFailed,
                DetailText("%s is replaced, but its folder could not be brought to the disk: %s",
                           shownName().c_str(), std::strerror(error)));
}

void OutputFile::flush() {
  if (pending_.empty()) return;
  writeAll(flushed_, pending_.data(), pending_.size());
  flushed_ += pending_.size();
  pending_.clear();
}

void OutputFile::writeAll(std::uint64_t offset, const void* data, std::size_t size) {
  const auto* from = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t written = calls_.pwrite(fd_, from, size, static_cast<off_t>(offset));
    if (written < 0) {
      if (errno == EINTR) continue;
      failWriting(errno);
    }
    if (written == 0) failWriting(ENOSPC);
    from += written;
    offset += static_cast<std::uint64_t>(written);
    size -= static_cast<std::size_t>(written);
  }
}

// The end of a long name tells more than its beginning.
std::string OutputFile::shownName() const {
  if (path_.size() <= kMaxShownName) return path_;
  return "..." + path_.substr(path_.size() - kMaxShownName);
}

void OutputFile::failWriting(int error) const {
  if (isDiskFull(error)) throw Failure(ErrorNumber::diskFull, DetailText("%s", path_.c_str()));
  throw Failure(ErrorNumber::writeFailed,
                DetailText("%s: %s", shownName().c_str(), std::strerror(error)));
}

void OutputFile::failReplacing(int error) const {
  if (error == EBUSY) {
    throw Failure(ErrorNumber::writeFailed,
                  DetailText("%s is a mount point, which a new file cannot take the place of by "
                             "renaming; write to another name",
                             shownName().c_str()));
  }
  if (error == ETXTBSY) {
    throw Failure(ErrorNumber::noPermission,
                  DetailText("%s cannot be replaced: another program has it open; the old file is "
                             "as it was",
                             shownName().c_str()));
  }
  if (error != EPERM && error != EACCES) failWriting(error);
  FileStatus file{};
  FileStatus folder{};
  const uid_t user = geteuid();
  const bool sticky = calls_.stat(folder_.empty() ? "." : folder_.c_str(), &folder) == 0 &&
                      calls_.stat(target_.c_str(), &file) == 0 && (folder.st_mode & S_ISVTX) != 0 &&
                      folder.st_uid != user && file.st_uid != user;
  throw Failure(ErrorNumber::noPermission,
                DetailText("%s cannot be replaced: %s", shownName().c_str(),
                           sticky ? "it belongs to another user and lies in a sticky folder"
                                  : std::strerror(error)));
}

}  // namespace rxffile
