#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

#include "providers/windows/wide_text.h"
#include "tools/files/system_files.h"

namespace tool {

std::filesystem::path pathOf(std::string_view name) {
  return ztbwindows::wideText(std::string(name).c_str());
}

std::string nameOf(const std::filesystem::path& path) {
  return ztbwindows::narrowText(path.generic_wstring());
}

// Opened here, so that others may rename and remove the file meanwhile, as elsewhere.
std::FILE* openStream(const std::string& name, const char* mode) {
  const std::string_view way(mode);
  const bool both = way.find('+') != std::string_view::npos;
  int flags = O_RDONLY;
  if (both || way.front() != 'r') flags = both ? O_RDWR : O_WRONLY;
  if (way.front() == 'w') flags |= O_CREAT | O_TRUNC;
  if (way.front() == 'a') flags |= O_CREAT;
  const int file = posix::open(name.c_str(), flags);
  if (file < 0) return nullptr;
  std::FILE* const stream = fdopen(file, mode);
  if (stream == nullptr) posix::close(file);
  if (stream != nullptr && way.front() == 'a') std::fseek(stream, 0, SEEK_END);
  return stream;
}

std::string temporaryFolder() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  std::string name = error ? "." : nameOf(folder);
  while (name.size() > 1 && name.back() == '/') name.pop_back();
  return name;
}

int openTemporary(const std::string& folder, std::string& name) {
  return posix::openTemporary(folder, ".ztb.", name);
}

int makeTemporaryFolder(std::string& name) {
  return posix::makeTemporaryFolder(temporaryFolder(), "ztb.", name);
}

std::string systemText(int code) {
  return code == ETXTBSY ? "another program has it open" : std::strerror(code);
}

}  // namespace tool
