// The built ztb command at work while the test goes on, to be interrupted.
#ifndef ZTB_TESTS_TOOLS_BACKGROUND_PROGRAM_H_
#define ZTB_TESTS_TOOLS_BACKGROUND_PROGRAM_H_

#include <sys/types.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace tooltest {

// How messages tell the end of a child that was ended by killChild(), and what BackgroundProgram's
// wait() gives after its kill().
#ifdef _WIN32
inline constexpr const char* kKilledChild = "ended with exit code 9";
#else
inline constexpr const char* kKilledChild = "was ended by signal 9";
#endif
inline constexpr int kKilled = -9;

// Ends a process, and stops one that is then never heard of again.
void killChild(pid_t child);
void stopChild(pid_t child);

// A run in a folder; it is killed at the end of this object's life if it still goes on.
class BackgroundProgram {
 public:
  // Standard error goes to the file `errors` in the folder, standard output to the file `output`
  // that is there, or nowhere.
  BackgroundProgram(const std::string& folder, const std::vector<std::string>& arguments,
                    const std::string& errors, const std::string& output = "");
  BackgroundProgram(const BackgroundProgram&) = delete;
  BackgroundProgram& operator=(const BackgroundProgram&) = delete;
  ~BackgroundProgram();

  // Blocks until a file whose name ends so was moved into place in the folder, or in the folder
  // out.rxf.parts in it if that was there at the start; false if the program can have ended without
  // one.
  bool waitForFile(const std::string& ending);
  pid_t process() const;
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
  // What the system has of it.
  struct Run;

  std::unique_ptr<Run> run_;
};

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_BACKGROUND_PROGRAM_H_
