#include "tests/tools/run_program_windows.h"

#include <gtest/gtest.h>

#include "providers/windows/wide_text.h"
#include "tests/tools/run_program.h"

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

}  // namespace

Program::Program(const std::string& program, const std::vector<std::string>& arguments,
                 const std::filesystem::path& folder, const ztbtest::TempFolder& streams) {
  std::wstring line = quoted(program);
  for (const std::string& argument : arguments) line += L' ' + quoted(argument);
  STARTUPINFOW how = {};
  how.cb = sizeof how;
  how.dwFlags = STARTF_USESTDHANDLES;
  how.hStdInput = opened(streams.file("in"), GENERIC_READ, OPEN_EXISTING);
  how.hStdOutput = opened(streams.file("out"), GENERIC_WRITE, CREATE_NEW);
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

int runProgram(const std::string& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& folder, const ztbtest::TempFolder& streams) {
  return Program(program, arguments, folder, streams).wait();
}

}  // namespace tooltest
