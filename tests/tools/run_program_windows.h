// A program at work on Windows while the test goes on.
#ifndef ZTB_TESTS_TOOLS_RUN_PROGRAM_WINDOWS_H_
#define ZTB_TESTS_TOOLS_RUN_PROGRAM_WINDOWS_H_

#include <windows.h>
// Words of the tests that this header takes as macros.
#undef ERROR
#undef interface
#undef near
#undef far
#undef small

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/temp_folder.h"
#include "tests/tools/run_program.h"

namespace tooltest {

// Started as runProgram() does; ended with this object.
class Program {
 public:
  Program(const std::string& program, const std::vector<std::string>& arguments,
          const std::filesystem::path& folder, const ztbtest::TempFolder& streams,
          OutputTo output = OutputTo::newFile);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program();

  [[nodiscard]] HANDLE process() const { return process_; }
  // Also that of a group of processes of its own, which Ctrl-Break can be sent to.
  [[nodiscard]] DWORD number() const { return number_; }
  // Waits for its end: the exit code.
  int wait();

 private:
  HANDLE process_ = nullptr;
  DWORD number_ = 0;
};

// The processes of ztb that a process has started.
std::vector<DWORD> childrenOf(DWORD parent);

// Whether a process is far enough to have loaded a library. One that is ended while it starts may
// not have been started for its parent.
bool hasLoaded(DWORD process, const wchar_t* library);

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_RUN_PROGRAM_WINDOWS_H_
