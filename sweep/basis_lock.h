// Lets one of several processes solve the unchanged model for all, and the others wait for its
// basis.
//
// The lock is a file of the folder of parts, .KEY.basis.lock, which is locked as long as its holder
// lives. On storage without locks nobody waits, and each process solves the model for itself.
#ifndef ZTB_SWEEP_BASIS_LOCK_H_
#define ZTB_SWEEP_BASIS_LOCK_H_

#include <atomic>
#include <string>

namespace sweep {

class BasisLock {
 public:
  // Waits for the lock, but not beyond `stopped`.
  BasisLock(const std::string& basisFile, const std::atomic<bool>& stopped);
  BasisLock(const BasisLock&) = delete;
  BasisLock& operator=(const BasisLock&) = delete;
  ~BasisLock();

 private:
  std::string name_;
  int descriptor_ = -1;
  bool isHeld_ = false;
};

}  // namespace sweep

#endif  // ZTB_SWEEP_BASIS_LOCK_H_
