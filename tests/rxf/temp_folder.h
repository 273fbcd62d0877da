// A folder of a test's own, removed with everything in it at the end; and whole files as strings.
#ifndef ZTB_TESTS_RXF_TEMP_FOLDER_H_
#define ZTB_TESTS_RXF_TEMP_FOLDER_H_

#include <string>
#include <vector>

namespace rxftest {

class TempFolder {
 public:
  TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder();

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }

  // Names in the folder, sorted.
  [[nodiscard]] std::vector<std::string> names() const;

 private:
  std::string path_;
};

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& bytes);

}  // namespace rxftest

#endif  // ZTB_TESTS_RXF_TEMP_FOLDER_H_
