// A limit of processor time, as Linux has it.
#ifndef ZTB_TESTS_TOOLS_PROCESSOR_TIME_LIMIT_H_
#define ZTB_TESTS_TOOLS_PROCESSOR_TIME_LIMIT_H_

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace tooltest {

// Programs started in its life may use some seconds of processor time each, so that one that is
// waited for in vain ends. Windows has none; there the test as a whole is ended.
class ProcessorTimeLimit {
 public:
#ifdef _WIN32
  explicit ProcessorTimeLimit(unsigned /*seconds*/) {}
#else
  explicit ProcessorTimeLimit(rlim_t seconds) {
    EXPECT_EQ(getrlimit(RLIMIT_CPU, &before_), 0);
    rlimit limit = before_;
    limit.rlim_cur = seconds;
    EXPECT_EQ(setrlimit(RLIMIT_CPU, &limit), 0);
  }
  ~ProcessorTimeLimit() {
    setrlimit(RLIMIT_CPU, &before_);
  }
#endif
  ProcessorTimeLimit(const ProcessorTimeLimit&) = delete;
  ProcessorTimeLimit& operator=(const ProcessorTimeLimit&) = delete;
#ifndef _WIN32

 private:
  rlimit before_{};
#endif
};

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_PROCESSOR_TIME_LIMIT_H_
