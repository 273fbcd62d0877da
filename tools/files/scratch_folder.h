// A folder for temporary files.
#ifndef ZTB_TOOLS_FILES_SCRATCH_FOLDER_H_
#define ZTB_TOOLS_FILES_SCRATCH_FOLDER_H_

#include <filesystem>
#include <string>
#include <system_error>

#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace tool {

// A folder that goes with everything in it.
class ScratchFolder {
 public:
  ScratchFolder() {
    if (makeTemporaryFolder(path_) != 0) throw Failure(path_ + ": cannot be made");
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code error;
    std::filesystem::remove_all(pathOf(path_), error);
  }

  [[nodiscard]] std::string file(const std::string& name) const { return path_ + '/' + name; }

 private:
  std::string path_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_SCRATCH_FOLDER_H_
