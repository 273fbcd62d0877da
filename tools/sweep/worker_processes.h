// Processes that share a job and tell the parent, in lines of text through a pipe, how they get on.
//
// On Linux they are forked, so each has to be started while the program has one thread and holds
// nothing that may not be copied. On Windows each is a ztb of its own, which reads what it is to
// do. They end when the parent does, in whatever way that ends.
#ifndef ZTB_TOOLS_SWEEP_WORKER_PROCESSES_H_
#define ZTB_TOOLS_SWEEP_WORKER_PROCESSES_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tool {

// A worker's end of its pipe.
class WorkerChannel {
 public:
  explicit WorkerChannel(int descriptor) : descriptor_(descriptor) {}
  // Control characters in the text become blanks.
  void send(char kind, std::string text = "") const;

 private:
  int descriptor_;
};

struct WorkerMessage {
  // Beside the kinds that workers send: the worker could not do its work; text is why. What it had
  // left undone stays undone.
  static constexpr char failed = '!';
  // The worker was ended from outside; text is how.
  static constexpr char died = '#';
  // The last word of a worker whose work came to its end; the program does not see it. One that
  // ends without it has died, whatever its exit code.
  static constexpr char through = '$';

  std::size_t worker = 0;  // in the order of their starts, from 0
  char kind = 0;
  std::string text;
};

// What a worker does.
struct WorkerTask {
  // In a copy of this process.
  std::function<void(const WorkerChannel&)> work;
  // What a ztb is told, in one line, that does the same (worker_request.h).
  std::function<std::string()> request;
};

class WorkerProcesses {
 public:
  WorkerProcesses();
  WorkerProcesses(const WorkerProcesses&) = delete;
  WorkerProcesses& operator=(const WorkerProcesses&) = delete;
  // Kills the workers that still run.
  ~WorkerProcesses();

  // Does a task in a new process. What it throws is sent as a message of the kind failed. Throws
  // Failure if there is no process to be had.
  void start(const WorkerTask& task);

  // Ends a worker that runs, stopped ones too; the message that it died follows.
  void kill(std::size_t worker);

  // Has whenAskedToStop() tell all workers that run.
  void askToStop() const;

  [[nodiscard]] int running() const;
  // Whether some worker runs, or messages are left.
  [[nodiscard]] bool busy() const;
  // The next message; nothing when none came within the time, or when the last worker ended.
  std::optional<WorkerMessage> next(std::chrono::milliseconds time);

 private:
  struct Crew;
  std::unique_ptr<Crew> crew_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_WORKER_PROCESSES_H_
