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
  [[nodiscard]] std::string path() const;

 private:
  int descriptor_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MEMORY_FILE_H_
