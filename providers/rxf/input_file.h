// A file that is open for reading at any place.
//
// The file stays the one that was opened, also when another is published under its name meanwhile.
#ifndef ZTB_PROVIDERS_RXF_INPUT_FILE_H_
#define ZTB_PROVIDERS_RXF_INPUT_FILE_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "providers/rxf/system_calls.h"

namespace rxffile {

class InputFile {
 public:
  // Opens a file. Failures: noSuchFile, noPermission, isFolder, notRegularFile, cannotOpen; the
  // detail names the file.
  InputFile(SystemCalls& calls, const std::string& path);
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  [[nodiscard]] const std::string& path() const { return path_; }

  // The name as texts show it: of a long one only its end, so that there is room for the reason.
  [[nodiscard]] std::string shownName() const;

  // Length in bytes at the time of opening.
  [[nodiscard]] std::uint64_t size() const { return size_; }

  // Reads exactly `size` bytes from `offset`. Failures: cutShort when the file ends before that,
  // readFailed; the detail names the file.
  void read(std::uint64_t offset, void* data, std::size_t size) const;

 private:
  SystemCalls& calls_;
  std::string path_;
  int fd_;
  std::uint64_t size_ = 0;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_INPUT_FILE_H_
