#include "providers/rxf/input_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "providers/rxf/failure.h"

namespace rxffile {

namespace {

Failure openFailure(int error, const std::string& path) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return {ErrorNumber::noSuchFile, DetailText("%s", path.c_str())};
    case EACCES:
    case EPERM:
      return {ErrorNumber::noPermission, DetailText("%s cannot be read", path.c_str())};
    case EISDIR:
      return {ErrorNumber::isFolder, DetailText("%s", path.c_str())};
    // On Windows, where the library of C has no words for this number.
    case ETXTBSY:
      return {ErrorNumber::noPermission,
              DetailText("%s cannot be read: another program has it open", path.c_str())};
    default:
      return {ErrorNumber::cannotOpen, DetailText("%s: %s", path.c_str(), std::strerror(error))};
  }
}

}  // namespace

InputFile::InputFile(SystemCalls& calls, const std::string& path)
    // A pipe without a writer must not hold the caller.
    : calls_(calls),
      path_(path),
      fd_(calls.open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0)) {
  if (fd_ < 0) throw openFailure(errno, path_);
  if (calls_.fstat(fd_, &opened_) != 0) {
    const int error = errno;
    calls_.close(fd_);
    throw openFailure(error, path_);
  }
  if (!S_ISREG(opened_.st_mode)) {
    calls_.close(fd_);
    throw Failure(S_ISDIR(opened_.st_mode) ? ErrorNumber::isFolder : ErrorNumber::notRegularFile,
                  DetailText("%s", path_.c_str()));
  }
  size_ = static_cast<std::uint64_t>(opened_.st_size);
}

InputFile::~InputFile() {
  calls_.close(fd_);
}

std::string InputFile::shownName() const {
  constexpr std::size_t longest = 80;
  if (path_.size() <= longest) return path_;
  return "..." + path_.substr(path_.size() - longest);
}

void InputFile::willRead(std::uint64_t offset, std::uint64_t size) const {
  if (offset < size_) {
    calls_.willRead(fd_, static_cast<off_t>(offset),
                    static_cast<off_t>(std::min(size, size_ - offset)));
  }
}

void InputFile::requireUnchanged() const {
  FileStatus now{};
  if (calls_.fstat(fd_, &now) != 0) {
    throw Failure(ErrorNumber::readFailed, DetailText("%s", std::strerror(errno)));
  }
  if (now.st_size != opened_.st_size) {
    throw Failure(ErrorNumber::changed,
                  DetailText("it had %lld bytes, now %lld", static_cast<long long>(opened_.st_size),
                             static_cast<long long>(now.st_size)));
  }
  if (now.st_dev != opened_.st_dev || now.st_ino != opened_.st_ino ||
      now.st_mtim.tv_sec != opened_.st_mtim.tv_sec ||
      now.st_mtim.tv_nsec != opened_.st_mtim.tv_nsec) {
    throw Failure(ErrorNumber::changed, DetailText("it was written to"));
  }
}

void InputFile::read(std::uint64_t offset, void* data, std::size_t size, const char* place) const {
  auto* to = static_cast<char*>(data);
  while (size > 0) {
    const ssize_t got = calls_.pread(fd_, to, size, static_cast<off_t>(offset));
    if (got < 0) {
      if (errno == EINTR) continue;
      throw Failure(ErrorNumber::readFailed, DetailText("%s: %s", place, std::strerror(errno)));
    }
    if (got == 0) {
      throw Failure(ErrorNumber::cutShort,
                    DetailText("%s: the file ends at byte %llu, expected more", place,
                               static_cast<unsigned long long>(offset)));
    }
    to += got;
    offset += static_cast<std::uint64_t>(got);
    size -= static_cast<std::size_t>(got);
  }
}

}  // namespace rxffile
