// The two ways in which a command ends badly; main() turns them into a message and an exit code.
// Their texts are fit for a terminal from the start, so that a zero byte does not end them.
#ifndef ZTB_TOOLS_TEXT_FAILURE_H_
#define ZTB_TOOLS_TEXT_FAILURE_H_

#include <stdexcept>
#include <string>
#include <string_view>
#include <ztb/display_text.hpp>

namespace tool {

// Exit codes of the program.
enum ExitCode : int { exitFine = 0, exitFailed = 1, exitUsage = 2 };

// The work could not be done: the text names the file and what is wrong with it.
class Failure : public std::runtime_error {
 public:
  explicit Failure(std::string_view text) : std::runtime_error(ztb::displayText(text)) {}
};

// The command line asks for something that makes no sense: the text says what would.
class UsageError : public std::runtime_error {
 public:
  explicit UsageError(std::string_view text) : std::runtime_error(ztb::displayText(text)) {}
};

// text with "FILE: " in front, unless the file stands in it as a word already; fit for a terminal.
std::string withFile(std::string_view file, std::string_view text);

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_FAILURE_H_
