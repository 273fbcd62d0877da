// The two ways in which a command ends badly; main() turns them into a message and an exit code.
#ifndef ZTB_TOOLS_FAILURE_H_
#define ZTB_TOOLS_FAILURE_H_

#include <stdexcept>
#include <string>

namespace tool {

// Exit codes of the program.
enum ExitCode : int { exitFine = 0, exitFailed = 1, exitUsage = 2 };

// The work could not be done: the text names the file and what is wrong with it.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The command line asks for something that makes no sense: the text says what would.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// text with "FILE: " in front, unless the file stands in it as a word already.
std::string withFile(const std::string& file, const std::string& text);

}  // namespace tool

#endif  // ZTB_TOOLS_FAILURE_H_
