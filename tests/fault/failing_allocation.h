// Replaces the allocation functions of the whole process, the library under test included, by ones
// that can be told to fail.
//
// An executable that links failing_allocation.cpp must export its symbols, so that libraries opened
// at run time take its functions and not those of the standard library.
#ifndef ZTB_TESTS_FAULT_FAILING_ALLOCATION_H_
#define ZTB_TESTS_FAULT_FAILING_ALLOCATION_H_

namespace ztbtest {

enum class Failures { one, allFromThere };

// While an object of this class lives, the allocation of the given number, counted from 1, fails,
// and with `allFromThere` every later one too. Only one such object may live at a time.
class FailingAllocation {
 public:
  FailingAllocation(long number, Failures failures);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  // Whether an allocation has failed.
  bool happened() const;
};

// Allocations of the process that were not released yet.
long liveAllocations();

}  // namespace ztbtest

#endif  // ZTB_TESTS_FAULT_FAILING_ALLOCATION_H_
