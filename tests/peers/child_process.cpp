#include "tests/peers/child_process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>

namespace peertest {
namespace {

// A scenario that hangs, on a lock say, is ended by a signal in place of holding up all tests.
constexpr unsigned secondsToHang = 120;

[[noreturn]] void runAndExit(const std::function<void()>& scenario) {
  alarm(secondsToHang);
  try {
    scenario();
  } catch (const std::exception& exception) {
    ADD_FAILURE() << "exception: " << exception.what();
  }
  std::exit(testing::Test::HasFailure() ? 1 : 0);
}

std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 4096> chunk;
  ssize_t count = 0;
  while ((count = read(descriptor, chunk.data(), chunk.size())) > 0) {
    text.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

ChildResult inChild(const std::function<void()>& scenario) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe for a child process");
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no child process");
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    dup2(ends[1], STDERR_FILENO);
    close(ends[0]);
    close(ends[1]);
    runAndExit(scenario);
  }
  close(ends[1]);
  ChildResult result{.exitCode = 0, .output = readAll(ends[0])};
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return result;
}

void expectPassesInChild(const std::function<void()>& scenario) {
  const ChildResult result = inChild(scenario);
  EXPECT_EQ(result.exitCode, 0) << result.output;
}

}  // namespace peertest
