#include "tools/text/failure.h"

#include <cerrno>
#include <cstddef>
#include <string>
#include <string_view>

#include "tools/files/system_files.h"

namespace tool {

namespace {

bool endsWord(char c) {
  return std::string_view(" ,:;").find(c) != std::string_view::npos;
}

}  // namespace

std::string withFile(std::string_view fileName, std::string_view message) {
  const std::string file = ztb::displayText(fileName);
  std::string text = ztb::displayText(message);
  for (std::size_t at = text.find(file); at != std::string::npos; at = text.find(file, at + 1)) {
    const std::size_t end = at + file.size();
    if ((at == 0 || text[at - 1] == ' ') && (end == text.size() || endsWord(text[end]))) {
      return text;
    }
  }
  return file + ": " + text;
}

Failure failureOf(std::string_view file, const ztb::Error& error) {
  return Failure(withFile(file, error.what()), static_cast<int>(error.kind()));
}

Failure systemFailure(std::string_view file, std::string_view what, int code) {
  const bool isMissing = code == ENOENT || code == ENOTDIR;
  const int kind = isMissing        ? ZTB_ERROR_NO_FILE
                   : code == ENOMEM ? ZTB_ERROR_OUT_OF_MEMORY
                                    : ZTB_ERROR_IO;
  return Failure(std::string(file) + ": " + std::string(what) + ": " + systemText(code), kind);
}

}  // namespace tool
