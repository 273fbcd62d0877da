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

#include "tests/tools/background_program.h"

namespace tooltest {

void killChild(pid_t child) {
  ::kill(child, SIGKILL);
}

void stopChild(pid_t child) {
  ::kill(child, SIGSTOP);
}

struct BackgroundProgram::Run {
  pid_t process = -1;
  int watch = -1;
  // Becomes readable when the program and its children have ended.
  int end = -1;
};

BackgroundProgram::BackgroundProgram(const std::string& folder,
                                     const std::vector<std::string>& arguments,
                                     const std::string& errors, const std::string& output)
    : run_(std::make_unique<Run>()) {
  run_->watch = inotify_init1(IN_CLOEXEC);
  EXPECT_GE(inotify_add_watch(run_->watch, folder.c_str(), IN_MOVED_TO), 0);
  inotify_add_watch(run_->watch, (folder + "/out.rxf.parts").c_str(), IN_MOVED_TO);
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe(ends.data()), 0);
  std::vector<char*> argv{const_cast<char*>("ztb")};
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  run_->process = fork();
  if (run_->process == 0) {
    // Its end of the pipe is open in it and in its children as long as they run.
    close(ends[0]);
    if (chdir(folder.c_str()) == 0) {
      const int out = open(output.empty() ? "/dev/null" : output.c_str(), O_WRONLY);
      const int err = open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      if (dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0) {
        execv(ZTB_PROGRAM, argv.data());
      }
    }
    _exit(127);
  }
  close(ends[1]);
  run_->end = ends[0];
}

BackgroundProgram::~BackgroundProgram() {
  if (run_->process > 0) {
    kill();
    wait();
  }
  close(run_->watch);
  close(run_->end);
}

bool BackgroundProgram::waitForFile(const std::string& ending) {
  while (true) {
    std::array<pollfd, 2> waited{{{.fd = run_->watch, .events = POLLIN, .revents = 0},
                                  {.fd = run_->end, .events = POLLIN, .revents = 0}}};
    if (poll(waited.data(), waited.size(), -1) < 0 || waited[0].revents == 0) {
      return false;
    }
    alignas(inotify_event) std::array<char, 4096> buffer{};
    const ssize_t count = read(run_->watch, buffer.data(), buffer.size());
    for (ssize_t at = 0; at < count;) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + at, sizeof event);
      const std::string name(buffer.data() + at + sizeof event);
      if (name.ends_with(ending)) {
        return true;
      }
      at += static_cast<ssize_t>(sizeof event + event.len);
    }
  }
}

pid_t BackgroundProgram::process() const {
  return run_->process;
}

bool BackgroundProgram::goesOn() const {
  siginfo_t ended{};
  return waitid(P_PID, static_cast<id_t>(run_->process), &ended, WEXITED | WNOHANG | WNOWAIT) ==
             0 &&
         ended.si_pid == 0;
}

std::vector<pid_t> BackgroundProgram::children() const {
  const std::string id = std::to_string(run_->process);
  std::ifstream in("/proc/" + id + "/task/" + id + "/children");
  std::vector<pid_t> children;
  for (pid_t child = 0; in >> child;) {
    children.push_back(child);
  }
  return children;
}

pid_t BackgroundProgram::waitForChildBut(pid_t known) const {
  while (goesOn()) {
    for (const pid_t child : children()) {
      if (child != known) return child;
    }
  }
  return 0;
}

bool BackgroundProgram::waitForChildren(std::size_t count) const {
  while (goesOn()) {
    if (children().size() >= count) return true;
  }
  return false;
}

void BackgroundProgram::kill() {
  ::kill(run_->process, SIGKILL);
}

int BackgroundProgram::wait() {
  int status = 0;
  EXPECT_EQ(waitpid(run_->process, &status, 0), run_->process);
  run_->process = -1;
  // Children end with it; the end of the pipe tells that they have.
  char nothing = 0;
  EXPECT_EQ(read(run_->end, &nothing, 1), 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace tooltest
