#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "tests/tools/background_program.h"
#include "tests/tools/run_program_windows.h"

namespace tooltest {

namespace {

// Between two looks at what another process does.
void pause() {
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

void end(DWORD process, UINT code) {
  const HANDLE handle = OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, process);
  if (handle == nullptr) return;
  TerminateProcess(handle, code);
  WaitForSingleObject(handle, INFINITE);
  CloseHandle(handle);
}

// The files of a folder and of the parts in it. Those that begin with a point are not in their
// place yet.
std::set<std::string> namesIn(const std::filesystem::path& folder) {
  std::set<std::string> names;
  for (const std::filesystem::path& in : {folder, folder / "out.rxf.parts"}) {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(in, error), none; !error && entry != none;
         entry.increment(error)) {
      const std::u8string name = entry->path().filename().u8string();
      if (!name.starts_with(u8'.')) names.emplace(name.begin(), name.end());
    }
  }
  return names;
}

}  // namespace

void killChild(pid_t child) {
  end(static_cast<DWORD>(child), 9);
}

void stopChild(pid_t child) {
  const HANDLE process = OpenProcess(PROCESS_SUSPEND_RESUME, FALSE, static_cast<DWORD>(child));
  using Suspend = LONG(NTAPI*)(HANDLE);
  const auto suspend = reinterpret_cast<Suspend>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtSuspendProcess")));
  EXPECT_EQ(suspend(process), 0);
  CloseHandle(process);
}

struct BackgroundProgram::Run {
  // A place with the standard input of a program, which is empty.
  struct Streams : ztbtest::TempFolder {
    Streams() { std::ofstream(file("in")).close(); }
  };

  Run(const std::string& in, const std::vector<std::string>& arguments)
      : folder(in), known(namesIn(in)), program(ZTB_PROGRAM, arguments, in, streams) {}

  // Copies what went to a stream into a file of the folder.
  void keep(const char* stream, const std::string& file) const {
    if (file.empty()) return;
    const std::ifstream in(streams.file(stream), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    std::ofstream(folder + "/" + file, std::ios::binary) << text.str();
  }

  const Streams streams;
  const std::string folder;
  // Names that were there before, or have been seen.
  std::set<std::string> known;
  std::string errors;
  std::string output;
  Program program;
  // Those that end with a program that is killed.
  std::vector<HANDLE> orphans;
  bool waited = false;
};

BackgroundProgram::BackgroundProgram(const std::string& folder,
                                     const std::vector<std::string>& arguments,
                                     const std::string& errors, const std::string& output)
    : run_(new Run(folder, arguments)) {
  run_->errors = errors;
  run_->output = output;
}

BackgroundProgram::~BackgroundProgram() {
  if (!run_->waited) {
    kill();
    wait();
  }
}

bool BackgroundProgram::waitForFile(const std::string& ending) {
  while (true) {
    // Looked at before the files: what was published before the end is seen.
    const bool ended = !goesOn();
    for (const std::string& name : namesIn(run_->folder)) {
      if (run_->known.insert(name).second && name.ends_with(ending)) return true;
    }
    if (ended) return false;
    pause();
  }
}

pid_t BackgroundProgram::process() const {
  return static_cast<pid_t>(run_->program.number());
}

bool BackgroundProgram::goesOn() const {
  return WaitForSingleObject(run_->program.process(), 0) == WAIT_TIMEOUT;
}

std::vector<pid_t> BackgroundProgram::children() const {
  std::vector<pid_t> children;
  for (const DWORD child : childrenOf(run_->program.number())) {
    if (hasLoaded(child, L"ztbsweep.dll")) children.push_back(static_cast<pid_t>(child));
  }
  return children;
}

pid_t BackgroundProgram::waitForChildBut(pid_t known) const {
  for (; goesOn(); pause()) {
    for (const pid_t child : children()) {
      if (child != known) return child;
    }
  }
  return 0;
}

bool BackgroundProgram::waitForChildren(std::size_t count) const {
  for (; goesOn(); pause()) {
    if (children().size() >= count) return true;
  }
  return false;
}

void BackgroundProgram::kill() {
  for (const DWORD child : childrenOf(run_->program.number())) {
    const HANDLE handle = OpenProcess(SYNCHRONIZE, FALSE, child);
    if (handle != nullptr) run_->orphans.push_back(handle);
  }
  TerminateProcess(run_->program.process(), static_cast<UINT>(kKilled));
}

int BackgroundProgram::wait() {
  const int status = run_->program.wait();
  for (const HANDLE orphan : run_->orphans) {
    WaitForSingleObject(orphan, INFINITE);
    CloseHandle(orphan);
  }
  run_->orphans.clear();
  run_->waited = true;
  run_->keep("err", run_->errors);
  run_->keep("out", run_->output);
  return status;
}

}  // namespace tooltest
