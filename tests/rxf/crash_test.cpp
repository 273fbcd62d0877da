// The process ends at every system call of a write: afterwards the target is the old file or the
// new one, whole, and the next write removes what was left.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>

#include "providers/rxf/rxf_object.h"
#include "tests/rxf/content.h"
#include "tests/rxf/failing_calls.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

using rxffile::RxfObject;
using Mode = FailingCalls::Mode;

void write(rxffile::SystemCalls& calls, const std::string& path, const Content& content) {
  const auto object = std::make_unique<RxfObject>(calls);
  if (object->openWrite(path.c_str(), "") != 0) return;
  object->storeDomainSets(false);
  writeContent(*object, content);
  object->errorCount();
  object->close();
}

// True when the child came to the end of its write.
bool writeInChild(Mode mode, int at, const std::string& path, const Content& content) {
  const pid_t child = fork();
  if (child == 0) {
    FailingCalls calls(mode, at, 0);
    write(calls, path, content);
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_TRUE(WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == FailingCalls::kEndStatus);
  return WEXITSTATUS(status) == 0;
}

class Crash : public testing::TestWithParam<Mode> {};

TEST_P(Crash, atAnyCallLeavesTheOldOrTheNewFile) {
  const TempFolder folder;
  const std::string path = folder.file("x");
  const Content before = {{"old"}, {}, {}};
  write(rxffile::operatingSystem(), path, before);
  const std::string oldBytes = readFile(path);
  write(rxffile::operatingSystem(), folder.file("y"), smallContent());
  const std::string newBytes = readFile(folder.file("y"));
  int old = 0;
  int renewed = 0;
  for (int at = 1;; ++at) {
    SCOPED_TRACE(at);
    writeFile(path, oldBytes);
    const bool complete = writeInChild(GetParam(), at, path, smallContent());
    const std::string now = readFile(path);
    EXPECT_TRUE(now == oldBytes || now == newBytes);
    ++(now == oldBytes ? old : renewed);
    const auto reader = std::make_unique<RxfObject>(rxffile::operatingSystem());
    EXPECT_EQ(reader->openRead(path.c_str()), 0);
    write(rxffile::operatingSystem(), path, smallContent());
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"x", "y"})) << "a temporary file is left";
    EXPECT_TRUE(readFile(path) == newBytes);
    if (complete) break;
  }
  EXPECT_GT(old, 5);
  EXPECT_GT(renewed, 1);
}

INSTANTIATE_TEST_SUITE_P(Moments, Crash,
                         testing::Values(Mode::endBefore, Mode::endAfter, Mode::endWithin));

}  // namespace
}  // namespace rxftest
