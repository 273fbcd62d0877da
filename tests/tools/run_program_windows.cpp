#include "tests/tools/run_program_windows.h"

#include <gtest/gtest.h>

#include "providers/windows/wide_text.h"
#include "tests/support/full_disk.h"
#include "tests/tools/run_program.h"

// Behind windows.h, which it does not include.
#include <tlhelp32.h>

namespace tooltest {

namespace {

// A word as programs of Microsoft's runtime read it.
std::wstring quoted(const std::string& word) {
  std::wstring text = L"\"";
  std::size_t slashes = 0;
  for (const wchar_t unit : ztbwindows::wideText(word.c_str())) {
    if (unit == L'"') text.append(slashes + 1, L'\\');
    slashes = unit == L'\\' ? slashes + 1 : 0;
    text += unit;
  }
  return text.append(slashes, L'\\') + L'"';
}

HANDLE opened(const std::string& path, DWORD access, DWORD creation) {
  SECURITY_ATTRIBUTES handedDown = {sizeof handedDown, nullptr, TRUE};
  return CreateFileW(ztbwindows::wideText(path.c_str()).c_str(), access,
                     FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &handedDown, creation,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

HANDLE openedOutput(const ztbtest::TempFolder& streams, OutputTo output) {
  if (output == OutputTo::newFile) return opened(streams.file("out"), GENERIC_WRITE, CREATE_NEW);
  if (output == OutputTo::fullDisk) {
    return opened(ztbtest::kFullDisk, GENERIC_WRITE, OPEN_EXISTING);
  }
  SECURITY_ATTRIBUTES handedDown = {sizeof handedDown, nullptr, TRUE};
  HANDLE reader = nullptr;
  HANDLE writer = nullptr;
  EXPECT_TRUE(CreatePipe(&reader, &writer, &handedDown, 0) != 0) << "error " << GetLastError();
  CloseHandle(reader);
  return writer;
}

}  // namespace

Program::Program(const std::string& program, const std::vector<std::string>& arguments,
                 const std::filesystem::path& folder, const ztbtest::TempFolder& streams,
                 OutputTo output) {
  std::wstring line = quoted(program);
  for (const std::string& argument : arguments) line += L' ' + quoted(argument);
  STARTUPINFOW how = {};
  how.cb = sizeof how;
  how.dwFlags = STARTF_USESTDHANDLES;
  how.hStdInput = opened(streams.file("in"), GENERIC_READ, OPEN_EXISTING);
  how.hStdOutput = openedOutput(streams, output);
  how.hStdError = opened(streams.file("err"), GENERIC_WRITE, CREATE_NEW);
  PROCESS_INFORMATION made = {};
  EXPECT_TRUE(CreateProcessW(ztbwindows::wideText(program.c_str()).c_str(), line.data(), nullptr,
                             nullptr, TRUE, CREATE_NEW_PROCESS_GROUP, nullptr, folder.c_str(), &how,
                             &made) != 0)
      << "error " << GetLastError();
  for (const HANDLE handle : {how.hStdInput, how.hStdOutput, how.hStdError}) CloseHandle(handle);
  if (made.hThread != nullptr) CloseHandle(made.hThread);
  process_ = made.hProcess;
  number_ = made.dwProcessId;
}

Program::~Program() {
  if (process_ == nullptr) return;
  TerminateProcess(process_, 1);
  CloseHandle(process_);
}

int Program::wait() {
  if (process_ == nullptr) return 127;
  WaitForSingleObject(process_, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(process_, &status);
  return static_cast<int>(status);
}

std::vector<DWORD> childrenOf(DWORD parent) {
  std::vector<DWORD> children;
  const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32W entry = {};
  entry.dwSize = sizeof entry;
  for (BOOL found = Process32FirstW(all, &entry); found != 0; found = Process32NextW(all, &entry)) {
    if (entry.th32ParentProcessID == parent && wcsstr(entry.szExeFile, L"ztb") != nullptr) {
      children.push_back(entry.th32ProcessID);
    }
  }
  CloseHandle(all);
  return children;
}

bool hasLoaded(DWORD process, const wchar_t* library) {
  const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, process);
  if (all == INVALID_HANDLE_VALUE) return false;
  MODULEENTRY32W entry = {};
  entry.dwSize = sizeof entry;
  bool found = false;
  for (BOOL more = Module32FirstW(all, &entry); more != 0 && !found;
       more = Module32NextW(all, &entry)) {
    found = wcscmp(entry.szModule, library) == 0;
  }
  CloseHandle(all);
  return found;
}

int runProgram(const std::string& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& folder, const ztbtest::TempFolder& streams,
               OutputTo output) {
  return Program(program, arguments, folder, streams, output).wait();
}

}  // namespace tooltest
