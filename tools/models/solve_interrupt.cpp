#include "tools/models/solve_interrupt.h"

#include <atomic>

namespace tool {

namespace {

std::atomic<ztbModel*> solved{nullptr};

void endSolve(int /*signal*/) {
  if (ztbModel* model = solved.load()) ztbModelTerminate(model);
}

}  // namespace

SolveInterrupt::SolveInterrupt(const ztb::Model& model) {
  solved.store(model.handle());
  struct sigaction action {};
  action.sa_handler = &endSolve;
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, &interrupt_);
  sigaction(SIGTERM, &action, &terminate_);
}

SolveInterrupt::~SolveInterrupt() {
  sigaction(SIGINT, &interrupt_, nullptr);
  sigaction(SIGTERM, &terminate_, nullptr);
  solved.store(nullptr);
}

}  // namespace tool
