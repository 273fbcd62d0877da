#include <fmt/format.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "providers/windows/wide_text.h"
#include "tools/sweep/worker_processes.h"
#include "tools/sweep/worker_request.h"
#include "tools/text/failure.h"

namespace tool {

// A handle of Windows that is closed.
class WorkerHandle {
 public:
  WorkerHandle() = default;
  explicit WorkerHandle(HANDLE handle) : handle_(handle) {}
  WorkerHandle(WorkerHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  WorkerHandle& operator=(WorkerHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~WorkerHandle() { close(); }

  void close() {
    if (handle_ != nullptr) CloseHandle(std::exchange(handle_, nullptr));
  }
  [[nodiscard]] HANDLE get() const { return handle_; }
  [[nodiscard]] HANDLE* into() { return &handle_; }

 private:
  HANDLE handle_ = nullptr;
};

namespace {

// Longer than any path of Windows.
constexpr DWORD kLongestPath = 32768;
// Ends a worker that is to be ended.
constexpr UINT kCodeOfEnded = 9;

[[noreturn]] void noWorker(const char* call) {
  throw Failure(fmt::format("no worker process: {}: error {} of Windows", call, GetLastError()));
}

struct Pipe {
  Pipe() {
    if (CreatePipe(read.into(), write.into(), nullptr, 0) == 0) noWorker("CreatePipe");
  }
  WorkerHandle read;
  WorkerHandle write;
};

void handDown(const WorkerHandle& handle) {
  if (SetHandleInformation(handle.get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT) == 0)
    noWorker("SetHandleInformation");
}

// Standard error of this process, for another one; none where there is none.
WorkerHandle ownErrors() {
  WorkerHandle copy;
  const HANDLE self = GetCurrentProcess();
  DuplicateHandle(self, GetStdHandle(STD_ERROR_HANDLE), self, copy.into(), 0, TRUE,
                  DUPLICATE_SAME_ACCESS);
  return copy;
}

// What a new process has of this one's handles: those that are named and no others.
class HandedDown {
 public:
  explicit HandedDown(std::vector<HANDLE> handles) : handles_(std::move(handles)) {
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    bytes_.resize(size);
    if (InitializeProcThreadAttributeList(list(), 1, 0, &size) == 0)
      noWorker("InitializeProcThreadAttributeList");
    if (UpdateProcThreadAttribute(list(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(),
                                  handles_.size() * sizeof(HANDLE), nullptr, nullptr) == 0) {
      noWorker("UpdateProcThreadAttribute");
    }
  }
  HandedDown(const HandedDown&) = delete;
  HandedDown& operator=(const HandedDown&) = delete;
  ~HandedDown() { DeleteProcThreadAttributeList(list()); }

  [[nodiscard]] LPPROC_THREAD_ATTRIBUTE_LIST list() {
    return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(bytes_.data());
  }

 private:
  std::vector<HANDLE> handles_;
  std::vector<char> bytes_;
};

WorkerHandle newJob() {
  WorkerHandle job(CreateJobObjectW(nullptr, nullptr));
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  if (job.get() == nullptr || SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation,
                                                      &limits, sizeof limits) == 0) {
    noWorker("SetInformationJobObject");
  }
  return job;
}

std::wstring ownProgram() {
  std::wstring path(kLongestPath, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
  return path;
}

bool writeAll(const WorkerHandle& pipe, const std::string& text) {
  for (std::size_t at = 0; at < text.size();) {
    DWORD written = 0;
    if (WriteFile(pipe.get(), text.data() + at, static_cast<DWORD>(text.size() - at), &written,
                  nullptr) == 0) {
      return false;
    }
    at += written;
  }
  return true;
}

}  // namespace

struct WorkerProcesses::Crew {
  struct Worker {
    WorkerHandle process;
    WorkerHandle input;
    WorkerHandle output;
    std::thread reader;
    bool ended = false;
  };

  // Reads what a worker sends, until it ends.
  void read(std::size_t number, HANDLE output, HANDLE process);

  // The system ends what is in the job when its handle goes, with this process too.
  WorkerHandle job = newJob();
  std::vector<Worker> workers;
  mutable std::mutex mutex;  // of `ended` and of messages
  std::condition_variable wake;
  std::deque<WorkerMessage> messages;
};

void WorkerProcesses::Crew::read(std::size_t number, HANDLE output, HANDLE process) {
  std::string unread;
  bool isThrough = false;
  std::array<char, 4096> bytes{};
  DWORD count = 0;
  while (ReadFile(output, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) != 0 &&
         count > 0) {
    unread.append(bytes.data(), count);
    const std::lock_guard lock(mutex);
    for (std::size_t stop = unread.find('\n'); stop != std::string::npos;
         stop = unread.find('\n')) {
      const char kind = unread.front();
      if (kind == WorkerMessage::through) {
        isThrough = true;
      } else {
        messages.push_back({.worker = number, .kind = kind, .text = unread.substr(1, stop - 1)});
      }
      unread.erase(0, stop + 1);
    }
    wake.notify_one();
  }
  WaitForSingleObject(process, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(process, &code);
  const std::lock_guard lock(mutex);
  if (!isThrough) {
    messages.push_back({.worker = number,
                        .kind = WorkerMessage::died,
                        .text = "its worker process ended with exit code " +
                                (code > 255 ? fmt::format("{:#x}", code) : std::to_string(code))});
  }
  workers[number].ended = true;
  wake.notify_one();
}

WorkerProcesses::WorkerProcesses() : crew_(std::make_unique<Crew>()) {}

WorkerProcesses::~WorkerProcesses() {
  for (std::size_t number = 0; number < crew_->workers.size(); ++number) kill(number);
  for (Crew::Worker& worker : crew_->workers) worker.reader.join();
}

void WorkerProcesses::start(const WorkerTask& task) {
  const std::string request = task.request() + '\n';
  Pipe in;
  Pipe out;
  const WorkerHandle errors = ownErrors();
  handDown(in.read);
  handDown(out.write);
  std::vector<HANDLE> handles{in.read.get(), out.write.get()};
  if (errors.get() != nullptr) handles.push_back(errors.get());
  HandedDown handed(std::move(handles));
  STARTUPINFOEXW how = {};
  how.StartupInfo.cb = sizeof how;
  how.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
  how.StartupInfo.hStdInput = in.read.get();
  how.StartupInfo.hStdOutput = out.write.get();
  how.StartupInfo.hStdError = errors.get();
  how.lpAttributeList = handed.list();
  const std::wstring program = ownProgram();
  std::wstring line = L"\"" + program + L"\" " + ztbwindows::wideText(kWorkerCommand);
  PROCESS_INFORMATION made = {};
  // Ctrl-C is this process's to hear.
  const DWORD flags = CREATE_SUSPENDED | CREATE_NEW_PROCESS_GROUP | EXTENDED_STARTUPINFO_PRESENT;
  if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr,
                     &how.StartupInfo, &made) == 0) {
    noWorker("CreateProcess");
  }
  WorkerHandle process(made.hProcess);
  const WorkerHandle thread(made.hThread);
  if (AssignProcessToJobObject(crew_->job.get(), process.get()) == 0) {
    const DWORD error = GetLastError();
    TerminateProcess(process.get(), kCodeOfEnded);
    SetLastError(error);
    noWorker("AssignProcessToJobObject");
  }
  ResumeThread(thread.get());
  in.read.close();
  out.write.close();
  // A worker that ends before it has read all tells that by its end.
  static_cast<void>(writeAll(in.write, request));
  const std::lock_guard lock(crew_->mutex);
  const std::size_t number = crew_->workers.size();
  Crew::Worker& worker = crew_->workers.emplace_back();
  worker.process = std::move(process);
  worker.input = std::move(in.write);
  worker.output = std::move(out.read);
  worker.reader =
      std::thread(&Crew::read, crew_.get(), number, worker.output.get(), worker.process.get());
}

void WorkerProcesses::kill(std::size_t worker) {
  const std::lock_guard lock(crew_->mutex);
  if (!crew_->workers[worker].ended) {
    TerminateProcess(crew_->workers[worker].process.get(), kCodeOfEnded);
  }
}

void WorkerProcesses::askToStop() const {
  for (const Crew::Worker& worker : crew_->workers) {
    static_cast<void>(writeAll(worker.input, "\n"));
  }
}

int WorkerProcesses::running() const {
  const std::lock_guard lock(crew_->mutex);
  return static_cast<int>(std::ranges::count(crew_->workers, false, &Crew::Worker::ended));
}

bool WorkerProcesses::busy() const {
  const std::lock_guard lock(crew_->mutex);
  return !crew_->messages.empty() ||
         std::ranges::any_of(crew_->workers, [](const auto& worker) { return !worker.ended; });
}

std::optional<WorkerMessage> WorkerProcesses::next(std::chrono::milliseconds time) {
  std::unique_lock lock(crew_->mutex);
  const auto isOver = [this] {
    return !crew_->messages.empty() ||
           std::ranges::all_of(crew_->workers, [](const auto& worker) { return worker.ended; });
  };
  crew_->wake.wait_for(lock, time, isOver);
  if (crew_->messages.empty()) return std::nullopt;
  WorkerMessage message = std::move(crew_->messages.front());
  crew_->messages.pop_front();
  return message;
}

}  // namespace tool
