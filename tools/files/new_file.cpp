#include "tools/files/new_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

#include "tools/text/failure.h"

namespace tool {

namespace {

constexpr mode_t permissionBits = 0777;

// Bits of a new file. The mask can only be asked for by setting it.
mode_t modeOfNewFiles() {
  const mode_t mask = umask(077);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

NewFile::NewFile(std::string path) : path_(std::move(path)) {
  lookAtOld();
  const std::filesystem::path name(path_);
  temporary_ = (name.parent_path() / fmt::format(".{}.XXXXXX", name.filename().string())).string();
  const int fd = mkostemp(temporary_.data(), O_CLOEXEC);
  if (fd < 0) {
    fail();
  }
  stream_ = fdopen(fd, "wb");
  if (stream_ == nullptr) {
    const int error = errno;
    close(fd);
    unlink(temporary_.c_str());
    errno = error;
    fail();
  }
}

NewFile::~NewFile() {
  if (stream_ != nullptr) {
    std::fclose(stream_);
    unlink(temporary_.c_str());
  }
}

void NewFile::lookAtOld() {
  struct stat old {};
  if (lstat(path_.c_str(), &old) != 0) {
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
  if (access(path_.c_str(), W_OK) != 0) {
    fail();
  }
  mode_ = old.st_mode & permissionBits;
}

void NewFile::publish() {
  if (std::fflush(stream_) != 0 || std::ferror(stream_) != 0 ||
      fchmod(fileno(stream_), mode_) != 0) {
    fail();
  }
  std::FILE* stream = std::exchange(stream_, nullptr);
  if (std::fclose(stream) != 0 || std::rename(temporary_.c_str(), path_.c_str()) != 0) {
    const int error = errno;
    unlink(temporary_.c_str());
    errno = error;
    fail();
  }
}

void NewFile::fail() const {
  throw Failure(fmt::format("{}: cannot be written: {}", path_, std::strerror(errno)));
}

}  // namespace tool
