// A file that is open for reading at any place.
//
// The file stays the one that was opened, also when another is published under its name meanwhile.
// One that is written to in its place is no longer what was opened: requireUnchanged() tells.
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
  [[nodiscard]] SystemCalls& calls() const { return calls_; }

  // The name as texts show it: of a long one only its end, so that there is room for the reason.
  [[nodiscard]] std::string shownName() const;

  // Length in bytes at the time of opening.
  [[nodiscard]] std::uint64_t size() const { return size_; }

  // Reads exactly `size` bytes from `offset`. Failures: cutShort when the file ends before that,
  // readFailed; the detail begins with `place`, or with the file's name.
  void read(std::uint64_t offset, void* data, std::size_t size, const char* place) const;
  void read(std::uint64_t offset, void* data, std::size_t size) const {
    read(offset, data, size, shownName().c_str());
  }

  // Says that these bytes are read soon.
  void willRead(std::uint64_t offset, std::uint64_t size) const;

  // Failures: changed when size, identity or time of the last write are not those of the opening;
  // readFailed. The detail does not name the file.
  void requireUnchanged() const;

 private:
  SystemCalls& calls_;
  std::string path_;
  int fd_;
  std::uint64_t size_ = 0;
  FileStatus opened_{};
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_INPUT_FILE_H_
