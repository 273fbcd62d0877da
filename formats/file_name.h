// Names of files and folders, which are UTF-8 on every system.
#ifndef ZTB_FORMATS_FILE_NAME_H_
#define ZTB_FORMATS_FILE_NAME_H_

#include <filesystem>
#include <string>
#include <system_error>

#include "tools/files/system_files.h"

namespace formats {

// The name of a file in a folder.
inline std::string nameIn(const std::string& folder, const std::string& name) {
  return tool::nameOf(tool::pathOf(folder) / tool::pathOf(name));
}

// The folder that a file is in, "." for the current one.
inline std::string folderOf(const std::string& name) {
  const std::filesystem::path folder = tool::pathOf(name).parent_path();
  return folder.empty() ? "." : tool::nameOf(folder);
}

// Whether there is a file or folder of the name; false too where that cannot be told.
inline bool isThere(const std::string& name) {
  std::error_code error;
  return std::filesystem::exists(tool::pathOf(name), error);
}

inline bool isFolder(const std::string& name) {
  std::error_code error;
  return std::filesystem::is_directory(tool::pathOf(name), error);
}

inline bool isSameFile(const std::string& name, const std::string& other) {
  std::error_code error;
  return std::filesystem::equivalent(tool::pathOf(name), tool::pathOf(other), error);
}

// Whether a name can only be that of a folder.
inline bool endsAsFolder(const std::string& name) {
  return !name.empty() && !tool::pathOf(name).has_filename();
}

}  // namespace formats

#endif  // ZTB_FORMATS_FILE_NAME_H_
