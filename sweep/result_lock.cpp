#include "sweep/result_lock.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace sweep {

using tool::Failure;
using tool::withFile;

namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds kBetweenTries{20};
constexpr int kTries = 100;
constexpr int kMostLinks = 40;

// The file that a path leads to over links, which need not exist yet.
fs::path behindLinks(fs::path path) {
  std::error_code error;
  for (int links = 0; links < kMostLinks && fs::is_symlink(path, error); ++links) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  return path;
}

fs::path lockOf(const std::string& out) {
  const fs::path result = behindLinks(tool::pathOf(out));
  std::error_code error;
  const fs::path folder =
      fs::canonical(result.has_parent_path() ? result.parent_path() : ".", error);
  return (error ? result.parent_path() : folder) /
         tool::pathOf(fmt::format(".{}.lock", tool::nameOf(result.filename())));
}

}  // namespace

ResultLock::ResultLock(const std::string& out) : out_(out), path_(tool::nameOf(lockOf(out))) {
  for (int tried = 0; tried < kTries; ++tried) {
    if (tried > 0) {
      std::this_thread::sleep_for(kBetweenTries);
    }
    open();
    if (tryToTake()) {
      tellHolder();
      return;
    }
    if (tried + 1 == kTries) {
      const std::string who = holder();
      posix::close(std::exchange(descriptor_, -1));
      throw Failure(withFile(out_, fmt::format("another sweep is writing this result ({})", who)));
    }
    posix::close(std::exchange(descriptor_, -1));
  }
}

ResultLock::~ResultLock() {
  // The file goes while it is still locked, so that whoever waits for it finds it gone.
  posix::unlink(path_.c_str());
  posix::close(descriptor_);
}

void ResultLock::open() {
  descriptor_ =
      posix::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0644);
  if (descriptor_ < 0) {
    const fs::path folder = tool::pathOf(out_).parent_path();
    const bool noFolder = errno == ENOENT || errno == ENOTDIR;
    throw Failure(withFile(noFolder ? tool::nameOf(folder) : path_, tool::systemText(errno)));
  }
  posix::FileStatus opened{};
  if (posix::fstat(descriptor_, &opened) != 0 || !S_ISREG(opened.st_mode) || opened.st_nlink > 1) {
    posix::close(std::exchange(descriptor_, -1));
    throw Failure(withFile(path_, "is no lock of a sweep; move it away"));
  }
}

bool ResultLock::tryToTake() {
  if (posix::flock(descriptor_, LOCK_EX | LOCK_NB) == 0) {
    return isStillThere();
  }
  if (errno == EWOULDBLOCK || errno == EINTR) {
    return false;
  }
  const std::string reason = tool::systemText(errno);
  posix::close(std::exchange(descriptor_, -1));
  throw Failure(withFile(path_, "cannot be locked: " + reason));
}

// The sweep that held the lock may have removed the file since it was opened here.
bool ResultLock::isStillThere() const {
  posix::FileStatus opened{};
  posix::FileStatus named{};
  return posix::fstat(descriptor_, &opened) == 0 && posix::stat(path_.c_str(), &named) == 0 &&
         opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

std::string ResultLock::holder() const {
  std::array<char, 32> text{};
  const ssize_t length = posix::pread(descriptor_, text.data(), text.size(), 0);
  int process = 0;
  if (length > 0) {
    std::from_chars(text.data(), text.data() + length, process);
  }
  return process > 0 ? fmt::format("process {}", process) : "its process is not known";
}

// A lock that does not say who holds it is as good, so no result is looked at but to satisfy the
// compiler.
void ResultLock::tellHolder() const {
  const std::string text = fmt::format("{}\n", getpid());
  if (posix::ftruncate(descriptor_, 0) != 0 ||
      posix::pwrite(descriptor_, text.data(), text.size(), 0) < 0) {
    return;
  }
}

}  // namespace sweep
