#include <csignal>

#include "tools/sweep/end_request.h"

namespace tool {

namespace {

volatile std::sig_atomic_t wasAskedToEnd = 0;

void noteRequest(int) {
  wasAskedToEnd = 1;
}

void (*stopOfWorker)() = nullptr;

}  // namespace

void watchForEnd(bool interruptToo) {
  std::signal(SIGTERM, noteRequest);
  if (interruptToo) std::signal(SIGINT, noteRequest);
}

bool isAskedToEnd() {
  return wasAskedToEnd != 0;
}

void whenAskedToStop(void (*stop)()) {
  stopOfWorker = stop;
  std::signal(SIGTERM, [](int) { stopOfWorker(); });
}

}  // namespace tool
