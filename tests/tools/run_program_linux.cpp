#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

#include "tests/support/full_disk.h"
#include "tests/tools/run_program.h"

namespace tooltest {

namespace {

void redirect(const std::string& path, int flags, int target) {
  const int file = open(path.c_str(), flags, 0600);
  if (file < 0 || dup2(file, target) < 0) {
    _exit(126);
  }
}

void redirectOutput(const ztbtest::TempFolder& streams, OutputTo output) {
  std::array<int, 2> ends{};
  switch (output) {
    case OutputTo::newFile:
      return redirect(streams.file("out"), O_WRONLY | O_CREAT, STDOUT_FILENO);
    case OutputTo::fullDisk:
      return redirect(ztbtest::kFullDisk, O_WRONLY, STDOUT_FILENO);
    case OutputTo::deadPipe:
      if (pipe(ends.data()) != 0 || close(ends[0]) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) {
        _exit(126);
      }
  }
}

}  // namespace

int runProgram(const std::string& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& folder, const ztbtest::TempFolder& streams,
               OutputTo output) {
  std::vector<char*> argv{const_cast<char*>("ztb")};
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    redirect(streams.file("in"), O_RDONLY, STDIN_FILENO);
    redirectOutput(streams, output);
    redirect(streams.file("err"), O_WRONLY | O_CREAT, STDERR_FILENO);
    if (chdir(folder.c_str()) == 0) {
      execv(program.c_str(), argv.data());
    }
    _exit(127);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace tooltest
