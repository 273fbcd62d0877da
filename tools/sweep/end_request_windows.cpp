#include <windows.h>

#include <atomic>
#include <cstdio>
#include <thread>

#include "tools/sweep/end_request.h"

namespace tool {

namespace {

std::atomic<bool> wasAskedToEnd{false};

// Runs in a thread of its own.
BOOL WINAPI noteRequest(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
  return wasAskedToEnd.exchange(true) ? FALSE : TRUE;
}

BOOL WINAPI ignoreRequest(DWORD event) {
  return event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT ? TRUE : FALSE;
}

}  // namespace

void watchForEnd(bool /*interruptToo*/) {
  static const bool watched = SetConsoleCtrlHandler(noteRequest, TRUE) != 0;
  static_cast<void>(watched);
}

bool isAskedToEnd() {
  return wasAskedToEnd;
}

// The parent writes a line to standard input, or is gone. What the console says is for it to hear.
void whenAskedToStop(void (*stop)()) {
  SetConsoleCtrlHandler(ignoreRequest, TRUE);
  std::thread([stop] {
    std::getc(stdin);
    stop();
  }).detach();
}

}  // namespace tool
