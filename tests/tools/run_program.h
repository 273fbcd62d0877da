// Starts a program as each system does.
#ifndef ZTB_TESTS_TOOLS_RUN_PROGRAM_H_
#define ZTB_TESTS_TOOLS_RUN_PROGRAM_H_

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/temp_folder.h"

namespace tooltest {

// Runs a program in a folder, with the file "in" of `streams` as its standard input and the new
// files "out" and "err" as its output, and waits for its end: its exit code, or minus the number of
// the signal that ended it.
int runProgram(const std::string& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& folder, const ztbtest::TempFolder& streams);

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_RUN_PROGRAM_H_
