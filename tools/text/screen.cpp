#include "tools/text/screen.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

namespace tool {

bool outputIsTerminal() {
  return isatty(STDOUT_FILENO) != 0;
}

bool takesColour(int stream) {
  const char* const refused = std::getenv("NO_COLOR");
  const char* const kind = std::getenv("TERM");
  return isatty(stream) != 0 && (refused == nullptr || *refused == '\0') &&
         (kind == nullptr || std::string_view(kind) != "dumb");
}

std::size_t tableWidth(const std::optional<std::size_t>& asked) {
  if (asked) {
    return *asked;
  }
  struct winsize size {};
  if (!outputIsTerminal() || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) {
    return 0;
  }
  return size.ws_col;
}

std::string emphasised(std::string_view text, bool colour) {
  return colour ? "\x1b[1m" + std::string(text) + "\x1b[0m" : std::string(text);
}

}  // namespace tool
