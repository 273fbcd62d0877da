// Starts a program as each system does.
#ifndef ZTB_TESTS_TOOLS_RUN_PROGRAM_H_
#define ZTB_TESTS_TOOLS_RUN_PROGRAM_H_

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/temp_folder.h"

namespace tooltest {

// Where standard output goes: into a new file, onto a disk that is full, or into a pipe whose
// reader is gone.
enum class OutputTo { newFile, fullDisk, deadPipe };

// Runs a program in a folder, with the file "in" of `streams` as its standard input and the new
// files "out" and "err" as its output, and waits for its end: its exit code, or minus the number of
// the signal that ended it.
int runProgram(const std::string& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& folder, const ztbtest::TempFolder& streams,
               OutputTo output = OutputTo::newFile);

// How a program ends that writes into a dead pipe: by signal 13 where there is one for it.
#ifdef _WIN32
inline constexpr int kEndAtDeadPipe = 1;
#else
inline constexpr int kEndAtDeadPipe = -13;
#endif

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_RUN_PROGRAM_H_
