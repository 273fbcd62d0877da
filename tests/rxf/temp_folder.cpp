#include "tests/rxf/temp_folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace rxftest {

TempFolder::TempFolder() {
  std::random_device random;
  std::filesystem::path path;
  do {
    path = std::filesystem::temp_directory_path() / ("rxf-test-" + std::to_string(random()));
    // False for one that is there already.
  } while (!std::filesystem::create_directory(path));
  path_ = path.string();
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::vector<std::string> TempFolder::names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, const std::string& bytes) {
  // A file that is cut and written anew may be brought to the disk at once; a new one is not.
  std::filesystem::remove(path);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out.flush()) throw std::runtime_error("cannot write " + path);
}

}  // namespace rxftest
