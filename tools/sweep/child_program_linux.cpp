#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "tools/sweep/child_program.h"

namespace tool {

namespace {

Failure noStart(const std::string& program) {
  return Failure(fmt::format("{}: cannot be started: {}", program, std::strerror(errno)));
}

// A file without a name that holds a text, to be read from its beginning.
int fileOf(const std::string& text, const std::string& program) {
  const int file = memfd_create("ztb", MFD_CLOEXEC);
  if (file < 0) throw noStart(program);
  for (std::size_t at = 0; at < text.size();) {
    const ssize_t count = write(file, text.data() + at, text.size() - at);
    if (count < 0) throw noStart(program);
    at += static_cast<std::size_t>(count);
  }
  lseek(file, 0, SEEK_SET);
  return file;
}

[[noreturn]] void becomeProgram(pid_t parent, const std::array<int, 3>& streams, int answer,
                                const std::vector<char*>& words,
                                const std::vector<std::pair<std::string, std::string>>& variables) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() == parent) {
    for (int stream = 0; stream < 3; ++stream) {
      dup2(streams[static_cast<std::size_t>(stream)], stream);
    }
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGINT, SIG_DFL);
    for (const auto& [name, value] : variables) setenv(name.c_str(), value.c_str(), 1);
    execvp(words[0], words.data());
    const int error = errno;
    [[maybe_unused]] const ssize_t told = write(answer, &error, sizeof error);
  }
  _exit(127);
}

}  // namespace

bool startsPrograms() {
  return true;
}

ChildProgram::ChildProgram(const std::vector<std::string>& words, const std::string& input,
                           const std::vector<std::pair<std::string, std::string>>& variables) {
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const int in = fileOf(input, words[0]);
  errors_ = fileOf("", words[0]);
  std::array<int, 2> out{};
  // Closed by a program that starts; otherwise it tells why none does.
  std::array<int, 2> answer{};
  if (pipe2(out.data(), O_CLOEXEC) != 0 || pipe2(answer.data(), O_CLOEXEC) != 0) {
    throw noStart(words[0]);
  }
  const pid_t parent = getpid();
  process_ = fork();
  if (process_ < 0) throw noStart(words[0]);
  if (process_ == 0) becomeProgram(parent, {in, out[1], errors_}, answer[1], arguments, variables);
  close(in);
  close(out[1]);
  close(answer[1]);
  output_ = out[0];
  int error = 0;
  const bool started = read(answer[0], &error, sizeof error) != sizeof error;
  close(answer[0]);
  if (started) return;
  wait();
  close(output_);
  close(errors_);
  errno = error;
  if (error == ENOENT) throw NoProgram(words[0] + ": there is no such program");
  throw noStart(words[0]);
}

ChildProgram::~ChildProgram() {
  if (process_ > 0) {
    kill(process_, SIGKILL);
    wait();
  }
  if (output_ >= 0) close(output_);
  close(errors_);
}

std::optional<std::string> ChildProgram::line(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (true) {
    const std::size_t stop = unread_.find('\n');
    if (stop != std::string::npos || (output_ < 0 && !unread_.empty())) {
      std::string found = unread_.substr(0, stop);
      unread_.erase(0, stop == std::string::npos ? stop : stop + 1);
      return found;
    }
    if (output_ < 0) return std::nullopt;
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    pollfd ready{.fd = output_, .events = POLLIN, .revents = 0};
    if (left.count() < 0 || poll(&ready, 1, static_cast<int>(left.count())) <= 0) {
      return std::nullopt;
    }
    std::array<char, 4096> bytes{};
    const ssize_t count = read(output_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) return std::nullopt;
    if (count > 0) {
      unread_.append(bytes.data(), static_cast<std::size_t>(count));
    } else {
      close(output_);
      output_ = -1;
    }
  }
}

void ChildProgram::interrupt() const {
  if (process_ > 0) kill(process_, SIGINT);
}

int ChildProgram::wait() {
  int status = 0;
  while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string ChildProgram::errors() const {
  std::string text;
  std::array<char, 4096> bytes{};
  while (true) {
    const ssize_t count =
        pread(errors_, bytes.data(), bytes.size(), static_cast<off_t>(text.size()));
    if (count <= 0) break;
    text.append(bytes.data(), static_cast<std::size_t>(count));
  }
  while (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

ProgramEnd runProgram(const std::vector<std::string>& words, const std::string& input) {
  ChildProgram program(words, input);
  ProgramEnd end;
  while (program.isOpen()) {
    if (const auto line = program.line(std::chrono::minutes(1))) end.output += *line + '\n';
  }
  end.status = program.wait();
  end.errors = program.errors();
  return end;
}

}  // namespace tool
