// A folder for temporary files.
#ifndef ZTB_TOOLS_FILES_SCRATCH_FOLDER_H_
#define ZTB_TOOLS_FILES_SCRATCH_FOLDER_H_

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "tools/text/failure.h"

namespace tool {

// A folder that goes with everything in it.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    path_ = ((error ? std::filesystem::path("/tmp") : folder) / "ztb.XXXXXX").string();
    if (mkdtemp(path_.data()) == nullptr) {
      throw Failure(path_ + ": cannot be made");
    }
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }

  [[nodiscard]] std::string file(const std::string& name) const { return path_ + '/' + name; }

 private:
  std::string path_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_SCRATCH_FOLDER_H_
