#include <atomic>
#include <csignal>

#include "tools/models/solve_interrupt.h"

namespace tool {

namespace {

std::atomic<ztbModel*> solved{nullptr};

void endSolve(int /*signal*/) {
  if (ztbModel* model = solved.load()) ztbModelTerminate(model);
}

}  // namespace

struct SolveInterrupt::Before {
  struct sigaction interrupt {};
  struct sigaction terminate {};
};

SolveInterrupt::SolveInterrupt(const ztb::Model& model) : before_(std::make_unique<Before>()) {
  solved.store(model.handle());
  struct sigaction action {};
  action.sa_handler = &endSolve;
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, &before_->interrupt);
  sigaction(SIGTERM, &action, &before_->terminate);
}

SolveInterrupt::~SolveInterrupt() {
  sigaction(SIGINT, &before_->interrupt, nullptr);
  sigaction(SIGTERM, &before_->terminate, nullptr);
  solved.store(nullptr);
}

}  // namespace tool
