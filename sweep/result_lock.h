// Keeps two sweeps from writing one result at the same time.
//
// The lock is a file .NAME.lock beside the result file, locked as long as the sweep or one of its
// worker processes lives and removed when the sweep ends. One that a killed sweep left behind is
// locked by nobody and in nobody's way. Two names of one result file (a link and its target) have
// one lock.
#ifndef ZTB_SWEEP_RESULT_LOCK_H_
#define ZTB_SWEEP_RESULT_LOCK_H_

#include <string>

namespace sweep {

class ResultLock {
 public:
  // Takes the lock of this result file. The workers of a sweep that was just killed may live for an
  // instant longer, so a lock that is held is waited for, but only for two seconds. Throws Failure
  // that names the process that holds it, or what keeps the lock from being made.
  explicit ResultLock(const std::string& out);
  ResultLock(const ResultLock&) = delete;
  ResultLock& operator=(const ResultLock&) = delete;
  ~ResultLock();

 private:
  void open();
  bool tryToTake();
  [[nodiscard]] bool isStillThere() const;
  [[nodiscard]] std::string holder() const;
  void tellHolder() const;

  std::string out_;
  std::string path_;
  int descriptor_ = -1;
};

}  // namespace sweep

#endif  // ZTB_SWEEP_RESULT_LOCK_H_
