// Makes one growth or copy of the vector store's arrays fail. An executable that uses it is linked
// with --wrap=realloc and, since compilers turn a growth from nothing into it, --wrap=malloc.
#ifndef ZTB_TESTS_STORES_FAILING_REALLOC_H_
#define ZTB_TESTS_STORES_FAILING_REALLOC_H_

namespace ztb::storetest {

// While an object of this class lives, the allocation of the given number, counted from 1, fails.
class FailingRealloc {
 public:
  explicit FailingRealloc(int number);
  ~FailingRealloc();
  FailingRealloc(const FailingRealloc&) = delete;
  FailingRealloc& operator=(const FailingRealloc&) = delete;

  // Whether it was reached.
  [[nodiscard]] static bool happened();
};

}  // namespace ztb::storetest

#endif  // ZTB_TESTS_STORES_FAILING_REALLOC_H_
