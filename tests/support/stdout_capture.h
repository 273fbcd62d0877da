// What the process writes to its standard output between construction and text(), by whatever
// stream of whatever library, taken at the level of the file descriptor.
#ifndef ZTB_TESTS_SUPPORT_STDOUT_CAPTURE_H_
#define ZTB_TESTS_SUPPORT_STDOUT_CAPTURE_H_

#include <cstdio>
#include <string>

namespace ztbtest {

class StdoutCapture {
 public:
  StdoutCapture();
  ~StdoutCapture();
  StdoutCapture(const StdoutCapture&) = delete;
  StdoutCapture& operator=(const StdoutCapture&) = delete;

  // Ends the capture and gives what was written.
  std::string text();

 private:
  void restore();

  std::FILE* file_;
  int savedDescriptor_;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_SUPPORT_STDOUT_CAPTURE_H_
