#include "tools/text/failure.h"

#include <cstddef>
#include <string_view>

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

}  // namespace tool
