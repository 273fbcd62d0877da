// Another program at work for this one: it is given a text to read, its lines are read as they
// come, and it ends when this process ends, in whatever way that ends.
#ifndef ZTB_TOOLS_SWEEP_CHILD_PROGRAM_H_
#define ZTB_TOOLS_SWEEP_CHILD_PROGRAM_H_

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/text/failure.h"

namespace tool {

// Whether other programs can be started here: not on Windows.
bool startsPrograms();

// There is no program of the name.
class NoProgram : public Failure {
 public:
  using Failure::Failure;
};

class ChildProgram {
 public:
  // Starts the program that the first word names, looked for on PATH unless it has a slash, with
  // `input` as its standard input and `variables` in its environment. Throws NoProgram, and Failure
  // for what else keeps it from being started.
  ChildProgram(const std::vector<std::string>& words, const std::string& input,
               const std::vector<std::pair<std::string, std::string>>& variables = {});
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;
  // Kills it where it still runs.
  ~ChildProgram();

  // The next line of its standard output; nothing when none came within the time, or none is left.
  std::optional<std::string> line(std::chrono::milliseconds time);
  // Whether line() has more to give.
  [[nodiscard]] bool isOpen() const { return output_ >= 0 || !unread_.empty(); }
  // Asks it to end, with SIGINT.
  void interrupt() const;

  // Waits for its end: the exit code, or 128 and the number of the signal that ended it.
  int wait();
  // What it wrote on standard error, without the last ends of lines; after wait().
  [[nodiscard]] std::string errors() const;

 private:
  pid_t process_ = -1;
  int output_ = -1;
  int errors_ = -1;
  std::string unread_;
};

// Runs a program to its end: the exit code, standard output and standard error.
struct ProgramEnd {
  int status = 0;
  std::string output;
  std::string errors;
};
ProgramEnd runProgram(const std::vector<std::string>& words, const std::string& input = "");

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_CHILD_PROGRAM_H_
