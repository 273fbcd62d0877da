// Calls of the system on files that fail, for a library that the test program is linked with: the
// program exports functions of these names, which are met before the system's own.
#ifndef ZTB_TESTS_RXF_DOOR_FAILING_SYSTEM_H_
#define ZTB_TESTS_RXF_DOOR_FAILING_SYSTEM_H_

#include <string>

namespace rxftest {

// While it lives, call `at`, from 1, fails with `error`. One at a time.
class FailingSystem {
 public:
  FailingSystem(int at, int error);
  FailingSystem(const FailingSystem&) = delete;
  FailingSystem& operator=(const FailingSystem&) = delete;
  ~FailingSystem();

  // Name of the call that failed, empty when there were not so many.
  [[nodiscard]] std::string failed() const;
};

}  // namespace rxftest

#endif  // ZTB_TESTS_RXF_DOOR_FAILING_SYSTEM_H_
