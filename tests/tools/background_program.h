// The built ztb command at work while the test goes on, to be interrupted.
#ifndef ZTB_TESTS_TOOLS_BACKGROUND_PROGRAM_H_
#define ZTB_TESTS_TOOLS_BACKGROUND_PROGRAM_H_

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace tooltest {

// A run in a folder; it is killed at the end of this object's life if it still goes on.
class BackgroundProgram {
 public:
  // Standard error goes to the file `errors` in the folder, standard output to `output`.
  BackgroundProgram(std::string folder, const std::vector<std::string>& arguments,
                    const std::string& errors, const std::string& output = "/dev/null");
  BackgroundProgram(const BackgroundProgram&) = delete;
  BackgroundProgram& operator=(const BackgroundProgram&) = delete;
  ~BackgroundProgram();

  // Blocks until a file whose name begins and ends so was moved into place in the folder, or in the
  // folder out.rxf.parts in it if that was there at the start; false if the program can have ended
  // without one.
  bool waitForFile(const std::string& prefix, const std::string& ending = "");
  pid_t process() const { return process_; }
  bool goesOn() const;
  // The processes that it started and that still run.
  std::vector<pid_t> children() const;
  // Waits for a child that is not `known` and gives its process; 0 when the program has ended.
  pid_t waitForChildBut(pid_t known) const;
  // Waits until it has `count` children at once; false when the program has ended.
  bool waitForChildren(std::size_t count) const;
  void kill();
  // Waits for the end: the exit code, or minus the signal's number.
  int wait();

 private:
  [[nodiscard]] bool hasEnded() const;

  pid_t process_ = -1;
  int watch_ = -1;
  // Becomes readable when the program and its children have ended.
  int end_ = -1;
};

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_BACKGROUND_PROGRAM_H_
