#include "tests/support/temp_folder.h"

#include <random>
#include <stdexcept>
#include <system_error>

namespace ztbtest {

TempFolder::TempFolder() {
  std::random_device random;
  do {
    path_ = std::filesystem::temp_directory_path() / ("ztb-test-" + std::to_string(random()));
    // False for one that is there already.
  } while (!std::filesystem::create_directory(path_));
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace ztbtest
