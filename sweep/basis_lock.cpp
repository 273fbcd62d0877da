#include "sweep/basis_lock.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <thread>

namespace sweep {

namespace {

constexpr std::chrono::milliseconds kBetweenLooks{20};

}  // namespace

BasisLock::BasisLock(const std::string& basisFile, const std::atomic<bool>& stopped) {
  const std::filesystem::path path(basisFile);
  name_ = (path.parent_path() / fmt::format(".{}.lock", path.filename().string())).string();
  descriptor_ = ::open(name_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  while (descriptor_ >= 0 && flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
    if (stopped || (errno != EWOULDBLOCK && errno != EINTR)) return;
    std::this_thread::sleep_for(kBetweenLooks);
  }
  isHeld_ = descriptor_ >= 0;
}

BasisLock::~BasisLock() {
  if (descriptor_ < 0) return;
  // Who waits for this file gets its lock and finds the basis.
  if (isHeld_) ::unlink(name_.c_str());
  ::close(descriptor_);
}

}  // namespace sweep
