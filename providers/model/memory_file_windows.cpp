#include <windows.h>

#include <array>
#include <string>
#include <system_error>

#include "providers/model/memory_file.h"
#include "providers/windows/wide_text.h"

namespace lomu {

namespace {

[[noreturn]] void failFile(DWORD error) {
  throw std::system_error(static_cast<int>(error), std::system_category(), "file in memory");
}

}  // namespace

// In the folder for such files; the system keeps one with this attribute in memory while it can.
MemoryFile::MemoryFile(std::string_view text) {
  std::array<wchar_t, MAX_PATH + 1> folder{};
  std::array<wchar_t, MAX_PATH + 1> name{};
  if (GetTempPathW(MAX_PATH + 1, folder.data()) == 0) failFile(GetLastError());
  if (GetTempFileNameW(folder.data(), L"ztb", 0, name.data()) == 0) failFile(GetLastError());
  const HANDLE file = CreateFileW(name.data(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                  CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY, nullptr);
  DWORD error = file == INVALID_HANDLE_VALUE ? GetLastError() : 0;
  while (error == 0 && !text.empty()) {
    constexpr std::size_t atOnce = 1U << 24U;
    DWORD written = 0;
    const auto wanted = static_cast<DWORD>(text.size() < atOnce ? text.size() : atOnce);
    if (WriteFile(file, text.data(), wanted, &written, nullptr) == 0) error = GetLastError();
    text.remove_prefix(written);
  }
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
  if (error != 0) {
    DeleteFileW(name.data());
    failFile(error);
  }
  path_ = ztbwindows::narrowText(name.data());
}

MemoryFile::~MemoryFile() {
  DeleteFileW(ztbwindows::wideText(path_.c_str()).c_str());
}

}  // namespace lomu
