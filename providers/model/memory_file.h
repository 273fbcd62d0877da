// A file without a place in any folder, for libraries that read files by their names.
#ifndef ZTB_PROVIDERS_MODEL_MEMORY_FILE_H_
#define ZTB_PROVIDERS_MODEL_MEMORY_FILE_H_

#include <string>
#include <string_view>

namespace lomu {

class MemoryFile {
 public:
  // Throws std::system_error.
  explicit MemoryFile(std::string_view text);
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  // What opens it, within this process.
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  // -1 where the system has files in memory only by a name.
  int descriptor_ = -1;
  std::string path_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MEMORY_FILE_H_
