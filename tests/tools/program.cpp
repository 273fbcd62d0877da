#include "tests/tools/program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tooltest {

namespace {

std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void redirect(const std::string& path, int flags, int target) {
  const int file = open(path.c_str(), flags, 0600);
  if (file < 0 || dup2(file, target) < 0) {
    _exit(126);
  }
}

}  // namespace

Outcome ProgramTest::ztb(const std::vector<std::string>& arguments,
                         const std::string& input) const {
  const ztbtest::TempFolder streams;
  std::ofstream(streams.file("in"), std::ios::binary) << input;
  std::vector<char*> argv{const_cast<char*>("ztb")};
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    redirect(streams.file("in"), O_RDONLY, STDIN_FILENO);
    redirect(streams.file("out"), O_WRONLY | O_CREAT, STDOUT_FILENO);
    redirect(streams.file("err"), O_WRONLY | O_CREAT, STDERR_FILENO);
    if (chdir(folder_.path().c_str()) == 0) {
      execv(ZTB_PROGRAM, argv.data());
    }
    _exit(127);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return {.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status),
          .output = contentOf(streams.file("out")),
          .errors = contentOf(streams.file("err"))};
}

std::string ProgramTest::ztbFine(const std::vector<std::string>& arguments) const {
  const Outcome outcome = ztb(arguments);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  return outcome.output;
}

void ProgramTest::expectFails(int status, const std::string& errors,
                              const std::vector<std::string>& arguments) const {
  const Outcome outcome = ztb(arguments);
  EXPECT_EQ(outcome.status, status);
  EXPECT_EQ(outcome.errors, errors);
}

void ProgramTest::write(const std::string& file, const std::string& content) const {
  std::ofstream(path(file), std::ios::binary) << content;
}

std::string ProgramTest::read(const std::string& file) const {
  return contentOf(path(file));
}

bool ProgramTest::exists(const std::string& file) const {
  return std::filesystem::exists(path(file));
}

}  // namespace tooltest
