#include <fcntl.h>
#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <clocale>
#include <cstring>

#include "tools/text/console.h"

namespace tool {

bool isTerminal(int stream) {
  return isatty(stream) != 0;
}

std::size_t terminalWidth() {
  struct winsize size {};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool localeTakesUtf8() {
  const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
  if (locale == nullptr) return false;
  const bool takes = std::strcmp(nl_langinfo_l(CODESET, locale), "UTF-8") == 0;
  freelocale(locale);
  return takes;
}

void occupyStandardStreams() {
  for (int stream = 0; stream <= 2; ++stream) {
    if (fcntl(stream, F_GETFD) < 0) {
      static_cast<void>(open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY));
    }
  }
}

void showWritten(std::FILE* /*stream*/) {}

bool outputReaderIsGone() {
  return false;
}

}  // namespace tool
