// The two ways in which a command ends badly; main() turns them into a message and an exit code.
// Their texts are fit for a terminal from the start, so that a zero byte does not end them.
#ifndef ZTB_TOOLS_TEXT_FAILURE_H_
#define ZTB_TOOLS_TEXT_FAILURE_H_

#include <ztb/errors.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <ztb/display_text.hpp>
#include <ztb/error.hpp>

namespace tool {

// Exit codes of the program.
enum ExitCode : int { exitFine = 0, exitFailed = 1, exitUsage = 2 };

// The work could not be done: the text names the file and what is wrong with it, the kind is a
// ZTB_ERROR_ code for programs.
class Failure : public std::runtime_error {
 public:
  explicit Failure(std::string_view text, int kind = ZTB_ERROR_IO)
      : std::runtime_error(ztb::displayText(text)), kind_(kind) {}

  [[nodiscard]] int kind() const { return kind_; }

 private:
  int kind_;
};

// The command line asks for something that makes no sense: the text says what would.
class UsageError : public std::runtime_error {
 public:
  explicit UsageError(std::string_view text) : std::runtime_error(ztb::displayText(text)) {}
};

// text with "FILE: " in front, unless the file stands in it as a word already; fit for a terminal.
std::string withFile(std::string_view file, std::string_view text);

// What an operation on a file failed with, as a failure of the same kind that names the file.
Failure failureOf(std::string_view file, const ztb::Error& error);

// What the system said no to: "FILE: what: reason", of a kind that an errno code tells.
Failure systemFailure(std::string_view file, std::string_view what, int code);

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_FAILURE_H_
