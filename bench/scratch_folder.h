// A folder for temporary files, removed with all that is in it at the end of the program.
#ifndef ZTB_BENCH_SCRATCH_FOLDER_H_
#define ZTB_BENCH_SCRATCH_FOLDER_H_

#include <filesystem>
#include <string>

namespace bench {

class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

// The one folder of this run.
const ScratchFolder& scratchFolder();

}  // namespace bench

#endif  // ZTB_BENCH_SCRATCH_FOLDER_H_
