#include "bench/scratch_folder.h"

#include <stdlib.h>

#include <stdexcept>
#include <system_error>

namespace bench {

ScratchFolder::ScratchFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "ztb_bench_XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("cannot make a folder " + name);
  }
  path_ = name;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

const ScratchFolder& scratchFolder() {
  static const ScratchFolder folder;
  return folder;
}

}  // namespace bench
