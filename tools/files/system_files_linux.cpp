#include <fmt/format.h>

#include <cstdlib>
#include <cstring>
#include <system_error>

#include "tools/files/system_files.h"

namespace tool {

std::filesystem::path pathOf(std::string_view name) {
  return {name};
}

std::string nameOf(const std::filesystem::path& path) {
  return path.string();
}

std::FILE* openStream(const std::string& name, const char* mode) {
  return std::fopen(name.c_str(), (std::string(mode) + "e").c_str());
}

std::string temporaryFolder() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  return error ? "/tmp" : folder.string();
}

int openTemporary(const std::string& folder, std::string& name) {
  name = pathOf(folder) / ".ztb.XXXXXX";
  const int file = mkostemp(name.data(), O_CLOEXEC);
  if (file < 0) return file;
  unlink(name.c_str());
  name = fmt::format("/proc/self/fd/{}", file);
  return file;
}

int makeTemporaryFolder(std::string& name) {
  name = pathOf(temporaryFolder()) / "ztb.XXXXXX";
  return mkdtemp(name.data()) == nullptr ? -1 : 0;
}

std::string systemText(int code) {
  return std::strerror(code);
}

}  // namespace tool
