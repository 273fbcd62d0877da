#include "formats/sets/open_files.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>

#include "formats/file_name.h"
#include "formats/import_run.h"

namespace formats {

std::vector<std::unique_ptr<tool::ExchangeFile>> openFiles(const std::vector<std::string>& paths,
                                                           tool::Progress& progress) {
  std::vector<std::unique_ptr<tool::ExchangeFile>> files;
  for (const std::string& path : paths) {
    if (path != "-" && !isThere(path)) {
      throw tool::systemFailure(path, "cannot be read", ENOENT);
    }
    progress.step("opening " + path);
    files.push_back(std::make_unique<tool::ExchangeFile>(path));
  }
  return files;
}

}  // namespace formats
