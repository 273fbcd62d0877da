#include <csignal>

#include "tools/sweep/end_request.h"

namespace tool {

namespace {

volatile std::sig_atomic_t wasAskedToEnd = 0;

void noteRequest(int) {
  wasAskedToEnd = 1;
}

// The next one ends the process.
void noteInterrupt(int) {
  wasAskedToEnd = 1;
  std::signal(SIGINT, SIG_DFL);
}

void (*stopOfWorker)() = nullptr;

}  // namespace

void watchForEnd(bool interruptToo) {
  std::signal(SIGTERM, noteRequest);
  if (interruptToo && std::signal(SIGINT, noteInterrupt) == SIG_IGN) {
    std::signal(SIGINT, SIG_IGN);  // as of a program that runs in the background
  }
}

bool isAskedToEnd() {
  return wasAskedToEnd != 0;
}

void whenAskedToStop(void (*stop)()) {
  stopOfWorker = stop;
  std::signal(SIGTERM, [](int) { stopOfWorker(); });
}

}  // namespace tool
