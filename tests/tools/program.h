// Runs the built ztb command in a folder of its own.
#ifndef ZTB_TESTS_TOOLS_PROGRAM_H_
#define ZTB_TESTS_TOOLS_PROGRAM_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/temp_folder.h"
#include "tests/tools/run_program.h"

namespace tooltest {

// The solvers of the catalogue, and how a message lists them.
std::vector<std::string> solvers();
std::string listOfSolvers();

// What no regular file is. Not NUL: Wine lets the device behind it be replaced.
#ifdef _WIN32
inline constexpr const char* kDevice = "LPT9";
#else
inline constexpr const char* kDevice = "/dev/null";
#endif

// How a run ended; status is minus the signal's number if a signal ended it.
struct Outcome {
  int status = 0;
  std::string output;
  std::string errors;
};

// A test with an empty folder, in which the program runs, so that messages name files without a
// path.
class ProgramTest : public testing::Test {
 protected:
  Outcome ztb(const std::vector<std::string>& arguments, const std::string& input = "",
              OutputTo output = OutputTo::newFile) const;

  // Runs it and expects success without a word on standard error; gives what it printed.
  std::string ztbFine(const std::vector<std::string>& arguments) const;

  // The same for a run that must fail with this status and exactly these errors.
  void expectFails(int status, const std::string& errors,
                   const std::vector<std::string>& arguments) const;

  void write(const std::string& file, const std::string& content) const;
  std::string read(const std::string& file) const;
  bool exists(const std::string& file) const;
  std::string path(const std::string& file) const { return folder_.file(file); }

 private:
  ztbtest::TempFolder folder_;
};

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_PROGRAM_H_
