// A file in memory with a path, for readers that open files by name.
#ifndef ZTB_TESTS_FUZZ_MEMORY_FILE_H_
#define ZTB_TESTS_FUZZ_MEMORY_FILE_H_

#include <string>
#include <string_view>

namespace formatfuzz {

class MemoryFile {
 public:
  MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile();

  // Makes these bytes all that is in the file.
  void put(std::string_view bytes) const;
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  int file_;
  std::string path_;
};

}  // namespace formatfuzz

#endif  // ZTB_TESTS_FUZZ_MEMORY_FILE_H_
