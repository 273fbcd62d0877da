// Makes one allocation of the program fail.
#ifndef ZTB_TESTS_RXF_FAILING_NEW_H_
#define ZTB_TESTS_RXF_FAILING_NEW_H_

namespace rxftest {

// While it lives, allocation `at` (from 1) of those made by operator new under an Armed fails.
class FailingNew {
 public:
  class Armed {
   public:
    Armed();
    Armed(const Armed&) = delete;
    Armed& operator=(const Armed&) = delete;
    ~Armed();
  };

  explicit FailingNew(int at);
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
  ~FailingNew();

  // Whether the allocation was reached.
  [[nodiscard]] static bool failed();
};

}  // namespace rxftest

#endif  // ZTB_TESTS_RXF_FAILING_NEW_H_
