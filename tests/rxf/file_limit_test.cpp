// A file-size limit of the process is an error of the write and ends nothing, whatever the process
// does with the signal of that limit.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

volatile std::sig_atomic_t handled = 0;

void countSignal(int /*signal*/) {
  handled = handled + 1;
}

Content oneLabel(const std::string& label) {
  return {{label}, {}, {}};
}

// Writes under a limit of 200 bytes and gives 0, or the number of what was not as expected.
int writeUnderLimit(const std::string& path) {
  const struct rlimit limit = {200, 200};
  if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return 1;
  PeerFile file;
  if (file.openWrite(path) != 0) return 2;
  file.storeDomainSets(false);
  writeContent(file, oneLabel(std::string(60, 'n')));
  if (file.errorCount() != 1) return 3;
  if (file.errorText(file.takeLastError()) != "Writing failed: " + path + ": File too large") {
    return 4;
  }
  if (file.close() == 0) return 5;
  sigset_t waiting;
  sigemptyset(&waiting);
  sigpending(&waiting);
  if (sigismember(&waiting, SIGXFSZ) == 1 || handled != 0) return 6;
  sigset_t mask;
  sigemptyset(&mask);
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  if (sigismember(&mask, SIGXFSZ) == 1) return 7;
  return 0;
}

class FileLimit : public testing::TestWithParam<void (*)(int)> {};

TEST_P(FileLimit, isAnErrorAndNoDeath) {
  const TempFolder folder;
  const std::string path = folder.file("x");
  {
    PeerFile file;
    ASSERT_EQ(file.openWrite(path), 0);
    writeContent(file, oneLabel("old"));
    ASSERT_EQ(file.close(), 0);
  }
  const std::string before = readFile(path);
  const pid_t child = fork();
  if (child == 0) {
    std::signal(SIGXFSZ, GetParam());
    _exit(writeUnderLimit(path));
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(readFile(path), before);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"x"});
}

INSTANTIATE_TEST_SUITE_P(Handlings, FileLimit, testing::Values(SIG_DFL, SIG_IGN, &countSignal));

}  // namespace
}  // namespace rxftest
