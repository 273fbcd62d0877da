#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <array>
#include <cstdio>

#include "tools/text/console.h"

namespace tool {

namespace {

HANDLE consoleOf(int stream) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(stream));
}

bool isConsole(int stream) {
  DWORD mode = 0;
  return GetConsoleMode(consoleOf(stream), &mode) != 0;
}

// More than a text has that is put into a console at once.
constexpr std::size_t kConsoleBuffer = std::size_t{1} << 20U;

}  // namespace

bool isTerminal(int stream) {
  DWORD mode = 0;
  if (GetConsoleMode(consoleOf(stream), &mode) == 0) return false;
  if ((mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) == 0 &&
      SetConsoleMode(consoleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) == 0) {
    return false;
  }
  return SetConsoleOutputCP(CP_UTF8) != 0;
}

std::size_t terminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO info;
  if (GetConsoleScreenBufferInfo(consoleOf(1), &info) == 0) return 0;
  return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
}

bool localeTakesUtf8() {
  return true;
}

void occupyStandardStreams() {
  const std::array<std::FILE*, 3> streams{stdin, stdout, stderr};
  for (int number = 0; number <= 2; ++number) {
    std::FILE* const stream = streams.at(static_cast<std::size_t>(number));
    const DWORD type = GetFileType(consoleOf(number));
    if (type == FILE_TYPE_UNKNOWN && GetLastError() != NO_ERROR) {
      static_cast<void>(std::freopen("NUL", number == 0 ? "wb" : "rb", stream));
    } else {
      _setmode(number, _O_BINARY);
      // Without a buffer of its own each byte would go to the console by itself.
      if (number > 0 && isConsole(number)) {
        static_cast<void>(std::setvbuf(stream, nullptr, _IOFBF, kConsoleBuffer));
      }
    }
  }
}

void showWritten(std::FILE* stream) {
  if (isConsole(_fileno(stream))) static_cast<void>(std::fflush(stream));
}

bool outputReaderIsGone() {
  return std::ferror(stdout) != 0 && GetFileType(consoleOf(1)) == FILE_TYPE_PIPE;
}

}  // namespace tool
