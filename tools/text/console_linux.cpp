#include <sys/ioctl.h>
#include <unistd.h>

#include "tools/text/console.h"

namespace tool {

bool isTerminal(int stream) {
  return isatty(stream) != 0;
}

std::size_t terminalWidth() {
  struct winsize size {};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

}  // namespace tool
