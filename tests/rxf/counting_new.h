// How much memory the program has in use, as operator new and operator delete see it.
#ifndef ZTB_TESTS_RXF_COUNTING_NEW_H_
#define ZTB_TESTS_RXF_COUNTING_NEW_H_

#include <cstddef>

namespace rxftest {

// The most memory in use since it was made.
class HeapPeak {
 public:
  HeapPeak();
  HeapPeak(const HeapPeak&) = delete;
  HeapPeak& operator=(const HeapPeak&) = delete;

  [[nodiscard]] std::size_t bytes() const;
};

}  // namespace rxftest

#endif  // ZTB_TESTS_RXF_COUNTING_NEW_H_
