#include "bindings/python/native/left_work.h"

#include <pybind11/pybind11.h>

#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "bindings/python/native/interruption.h"

namespace python {

namespace {

namespace py = pybind11;

struct Job {
  std::mutex mutex;
  std::condition_variable ended;
  bool done = false;
  bool left = false;
  std::exception_ptr failure;
};

// How many threads run work; never destroyed, since one may end last of all.
struct Running {
  std::mutex mutex;
  std::condition_variable fewer;
  int count = 0;
};
Running& running() {
  static auto* const all = new Running;
  return *all;
}

void countRunning(int change) {
  const std::lock_guard lock(running().mutex);
  running().count += change;
  running().fewer.notify_all();
}

void run(Job& job, Shared connection, const std::function<void()>& work) {
  std::exception_ptr failure;
  try {
    work();
  } catch (...) {
    failure = std::current_exception();
  }
  {
    const std::lock_guard lock(job.mutex);
    job.failure = failure;
    job.done = true;
    if (job.left) {
      connection->endTurn();
    }
    job.ended.notify_all();
  }
  // Whoever left may have let the database go: then it ends here.
  connection.reset();
  countRunning(-1);
}

// Whether the work has come to its end within a short time.
bool isDone(Job& job) {
  const py::gil_scoped_release released;
  std::unique_lock lock(job.mutex);
  return job.ended.wait_for(lock, betweenSignalLooks, [&] { return job.done; });
}

}  // namespace

void runOrLeave(const Shared& connection, std::function<void()> work) {
  const auto job = std::make_shared<Job>();
  countRunning(1);
  try {
    std::thread([job, connection, work = std::move(work)]() mutable {
      run(*job, std::move(connection), work);
    }).detach();
  } catch (...) {
    countRunning(-1);
    throw;
  }
  while (!isDone(*job)) {
    if (PyErr_CheckSignals() == 0) {
      continue;
    }
    py::error_already_set raised;
    const std::lock_guard lock(job->mutex);
    if (!job->done) {
      job->left = true;
      connection->leaveTurn();
    }
    throw raised;
  }
  if (job->failure) {
    std::rethrow_exception(job->failure);
  }
}

void awaitLeftWork() {
  const py::gil_scoped_release released;
  std::unique_lock lock(running().mutex);
  running().fewer.wait(lock, [] { return running().count == 0; });
}

}  // namespace python
