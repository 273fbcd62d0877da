#include "sweep/basis_lock.h"

#include <fmt/format.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <thread>

#include "tools/files/system_files.h"

namespace sweep {

namespace {

constexpr std::chrono::milliseconds kBetweenLooks{20};

}  // namespace

BasisLock::BasisLock(const std::string& basisFile, const std::atomic<bool>& stopped) {
  const std::filesystem::path path = tool::pathOf(basisFile);
  name_ = tool::nameOf(path.parent_path() /
                       tool::pathOf(fmt::format(".{}.lock", tool::nameOf(path.filename()))));
  descriptor_ = posix::open(name_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  while (descriptor_ >= 0 && posix::flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
    if (stopped || (errno != EWOULDBLOCK && errno != EINTR)) return;
    std::this_thread::sleep_for(kBetweenLooks);
  }
  isHeld_ = descriptor_ >= 0;
}

BasisLock::~BasisLock() {
  if (descriptor_ < 0) return;
  // Who waits for this file gets its lock and finds the basis.
  if (isHeld_) posix::unlink(name_.c_str());
  posix::close(descriptor_);
}

}  // namespace sweep
