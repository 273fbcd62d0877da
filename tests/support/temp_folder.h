// A new empty folder that disappears with all it holds at the end of its scope.
#ifndef ZTB_TESTS_SUPPORT_TEMP_FOLDER_H_
#define ZTB_TESTS_SUPPORT_TEMP_FOLDER_H_

#include <filesystem>
#include <string>

namespace ztbtest {

class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

  // Full name of a file in the folder, UTF-8 on each system.
  std::string file(const std::string& name) const {
    const std::u8string folder = path_.generic_u8string();
    return std::string(folder.begin(), folder.end()) + "/" + name;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_SUPPORT_TEMP_FOLDER_H_
