#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <deque>
#include <exception>
#include <utility>
#include <vector>

#include "tools/sweep/worker_processes.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

// A signal may break these calls off.
template <class Call>
auto repeated(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) {
    result = call();
  }
  return result;
}

[[noreturn]] void runWorker(pid_t parent, int descriptor,
                            const std::function<void(const WorkerChannel&)>& work) {
  // The parent may have ended before this call.
  if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != parent) {
    _exit(exitFailed);
  }
  const WorkerChannel channel(descriptor);
  try {
    work(channel);
  } catch (const std::exception& error) {
    channel.send(WorkerMessage::failed, error.what());
  }
  channel.send(WorkerMessage::through);
  std::fflush(stdout);
  std::fflush(stderr);
  // Nothing that was made before the fork is this process's to end.
  _exit(exitFine);
}

}  // namespace

struct WorkerProcesses::Crew {
  struct Worker {
    pid_t process = -1;
    int descriptor = -1;     // -1: the worker has ended
    std::string unread;      // the beginning of a line
    bool isThrough = false;  // as it said
  };

  void receive(std::size_t number);
  void end(std::size_t number);

  std::vector<Worker> workers;
  std::deque<WorkerMessage> messages;
};

WorkerProcesses::WorkerProcesses() : crew_(std::make_unique<Crew>()) {}

WorkerProcesses::~WorkerProcesses() {
  for (std::size_t number = 0; number < crew_->workers.size(); ++number) {
    if (crew_->workers[number].descriptor >= 0) {
      kill(number);
      crew_->end(number);
    }
  }
}

void WorkerProcesses::start(const WorkerTask& task) {
  std::fflush(stdout);
  std::fflush(stderr);
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw Failure(fmt::format("no pipe for a worker process: {}", std::strerror(errno)));
  }
  const pid_t parent = getpid();
  const pid_t process = fork();
  if (process == 0) {
    close(ends[0]);
    runWorker(parent, ends[1], task.work);
  }
  const int error = errno;
  close(ends[1]);
  if (process < 0) {
    close(ends[0]);
    throw Failure(fmt::format("no worker process: {}", std::strerror(error)));
  }
  crew_->workers.push_back({.process = process, .descriptor = ends[0], .unread = ""});
}

void WorkerProcesses::kill(std::size_t worker) {
  if (crew_->workers[worker].descriptor >= 0) {
    ::kill(crew_->workers[worker].process, SIGKILL);
  }
}

void WorkerProcesses::askToStop() const {
  for (const Crew::Worker& worker : crew_->workers) {
    if (worker.descriptor >= 0) ::kill(worker.process, SIGTERM);
  }
}

int WorkerProcesses::running() const {
  return static_cast<int>(std::ranges::count_if(
      crew_->workers, [](const Crew::Worker& worker) { return worker.descriptor >= 0; }));
}

bool WorkerProcesses::busy() const {
  return !crew_->messages.empty() ||
         std::ranges::any_of(crew_->workers,
                             [](const Crew::Worker& worker) { return worker.descriptor >= 0; });
}

std::optional<WorkerMessage> WorkerProcesses::next(std::chrono::milliseconds time) {
  if (crew_->messages.empty()) {
    std::vector<pollfd> waited;
    std::vector<std::size_t> numbers;
    for (std::size_t number = 0; number < crew_->workers.size(); ++number) {
      if (crew_->workers[number].descriptor >= 0) {
        waited.push_back({.fd = crew_->workers[number].descriptor, .events = POLLIN, .revents = 0});
        numbers.push_back(number);
      }
    }
    if (waited.empty() || poll(waited.data(), waited.size(), static_cast<int>(time.count())) <= 0) {
      return std::nullopt;
    }
    for (std::size_t place = 0; place < waited.size(); ++place) {
      if (waited[place].revents != 0) {
        crew_->receive(numbers[place]);
      }
    }
  }
  if (crew_->messages.empty()) {
    return std::nullopt;
  }
  WorkerMessage message = std::move(crew_->messages.front());
  crew_->messages.pop_front();
  return message;
}

void WorkerProcesses::Crew::receive(std::size_t number) {
  Worker& worker = workers[number];
  std::array<char, 65536> buffer{};
  const ssize_t count =
      repeated([&] { return ::read(worker.descriptor, buffer.data(), buffer.size()); });
  if (count <= 0) {
    end(number);
    return;
  }
  worker.unread.append(buffer.data(), static_cast<std::size_t>(count));
  std::size_t begin = 0;
  for (std::size_t stop = worker.unread.find('\n'); stop != std::string::npos;
       stop = worker.unread.find('\n', begin)) {
    const char kind = worker.unread[begin];
    if (kind == WorkerMessage::through) {
      worker.isThrough = true;
    } else {
      messages.push_back({.worker = number,
                          .kind = kind,
                          .text = worker.unread.substr(begin + 1, stop - begin - 1)});
    }
    begin = stop + 1;
  }
  worker.unread.erase(0, begin);
}

void WorkerProcesses::Crew::end(std::size_t number) {
  Worker& worker = workers[number];
  close(std::exchange(worker.descriptor, -1));
  int status = 0;
  repeated([&] { return waitpid(worker.process, &status, 0); });
  if (worker.isThrough) return;
  if (WIFSIGNALED(status)) {
    messages.push_back(
        {.worker = number,
         .kind = WorkerMessage::died,
         .text = fmt::format("its worker process was ended by signal {}", WTERMSIG(status))});
  } else {
    messages.push_back(
        {.worker = number,
         .kind = WorkerMessage::died,
         .text = fmt::format("its worker process ended with exit code {}", WEXITSTATUS(status))});
  }
}

}  // namespace tool
