#include "tests/support/temp_folder.h"

#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace ztbtest {

TempFolder::TempFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "ztb-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("cannot make a temporary folder like " + name);
  }
  path_ = name;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace ztbtest
