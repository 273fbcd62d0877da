#include "tests/tools/background_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstring>
#include <fstream>

namespace tooltest {

BackgroundProgram::BackgroundProgram(std::string folder, const std::vector<std::string>& arguments,
                                     const std::string& errors, const std::string& output) {
  watch_ = inotify_init1(IN_CLOEXEC);
  EXPECT_GE(inotify_add_watch(watch_, folder.c_str(), IN_MOVED_TO), 0);
  inotify_add_watch(watch_, (folder + "/out.rxf.parts").c_str(), IN_MOVED_TO);
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe(ends.data()), 0);
  std::vector<char*> argv{const_cast<char*>("ztb")};
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  process_ = fork();
  if (process_ == 0) {
    // Its end of the pipe is open in it and in its children as long as they run.
    close(ends[0]);
    if (chdir(folder.c_str()) == 0) {
      const int out = open(output.c_str(), O_WRONLY);
      const int err = open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      if (dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0) {
        execv(ZTB_PROGRAM, argv.data());
      }
    }
    _exit(127);
  }
  close(ends[1]);
  end_ = ends[0];
}

BackgroundProgram::~BackgroundProgram() {
  if (process_ > 0) {
    kill();
    wait();
  }
  close(watch_);
  close(end_);
}

bool BackgroundProgram::waitForFile(const std::string& prefix, const std::string& ending) {
  while (true) {
    std::array<pollfd, 2> waited{{{.fd = watch_, .events = POLLIN, .revents = 0},
                                  {.fd = end_, .events = POLLIN, .revents = 0}}};
    if (poll(waited.data(), waited.size(), -1) < 0 || waited[0].revents == 0) {
      return false;
    }
    alignas(inotify_event) std::array<char, 4096> buffer{};
    const ssize_t count = read(watch_, buffer.data(), buffer.size());
    for (ssize_t at = 0; at < count;) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + at, sizeof event);
      const std::string name(buffer.data() + at + sizeof event);
      if (name.starts_with(prefix) && name.ends_with(ending)) {
        return true;
      }
      at += static_cast<ssize_t>(sizeof event + event.len);
    }
  }
}

bool BackgroundProgram::goesOn() const {
  siginfo_t ended{};
  return waitid(P_PID, static_cast<id_t>(process_), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
         ended.si_pid == 0;
}

std::vector<pid_t> BackgroundProgram::children() const {
  const std::string id = std::to_string(process_);
  std::ifstream in("/proc/" + id + "/task/" + id + "/children");
  std::vector<pid_t> children;
  for (pid_t child = 0; in >> child;) {
    children.push_back(child);
  }
  return children;
}

pid_t BackgroundProgram::waitForChildBut(pid_t known) const {
  while (!hasEnded()) {
    for (const pid_t child : children()) {
      if (child != known) return child;
    }
  }
  return 0;
}

bool BackgroundProgram::waitForChildren(std::size_t count) const {
  while (!hasEnded()) {
    if (children().size() >= count) return true;
  }
  return false;
}

bool BackgroundProgram::hasEnded() const {
  siginfo_t ended{};
  EXPECT_EQ(waitid(P_PID, static_cast<id_t>(process_), &ended, WEXITED | WNOHANG | WNOWAIT), 0);
  return ended.si_pid != 0;
}

void BackgroundProgram::kill() {
  ::kill(process_, SIGKILL);
}

int BackgroundProgram::wait() {
  int status = 0;
  EXPECT_EQ(waitpid(process_, &status, 0), process_);
  process_ = -1;
  // Children end with it; the end of the pipe tells that they have.
  char nothing = 0;
  EXPECT_EQ(read(end_, &nothing, 1), 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace tooltest
