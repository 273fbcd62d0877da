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

  // Full name of a file in the folder.
  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_SUPPORT_TEMP_FOLDER_H_
