#include <io.h>
#include <windows.h>

#include "tools/text/console.h"

namespace tool {

namespace {

HANDLE consoleOf(int stream) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(stream));
}

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

}  // namespace tool
