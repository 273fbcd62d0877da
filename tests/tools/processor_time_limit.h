// A limit of processor time, as Linux has it.
#ifndef ZTB_TESTS_TOOLS_PROCESSOR_TIME_LIMIT_H_
#define ZTB_TESTS_TOOLS_PROCESSOR_TIME_LIMIT_H_

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace tooltest {

// Programs started in its life may use some seconds of processor time each, so that one that is
// waited for in vain ends.
class ProcessorTimeLimit {
 public:
  explicit ProcessorTimeLimit(rlim_t seconds) {
    EXPECT_EQ(getrlimit(RLIMIT_CPU, &before_), 0);
    rlimit limit = before_;
    limit.rlim_cur = seconds;
    EXPECT_EQ(setrlimit(RLIMIT_CPU, &limit), 0);
  }
  ProcessorTimeLimit(const ProcessorTimeLimit&) = delete;
  ProcessorTimeLimit& operator=(const ProcessorTimeLimit&) = delete;
  ~ProcessorTimeLimit() { setrlimit(RLIMIT_CPU, &before_); }

 private:
  rlimit before_{};
};

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_PROCESSOR_TIME_LIMIT_H_
