#include <windows.h>

#include <mutex>
#include <utility>

#include "tools/models/solve_interrupt.h"

namespace tool {

namespace {

// Who is told of Ctrl-C runs in a thread of its own, which a solve that ends must wait for.
std::mutex mutexOfSolved;
ztbModel* solved = nullptr;

// The first time only: the next one ends the process.
BOOL WINAPI endSolve(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
  const std::lock_guard lock(mutexOfSolved);
  ztbModel* const model = std::exchange(solved, nullptr);
  if (model == nullptr) return FALSE;
  ztbModelTerminate(model);
  return TRUE;
}

}  // namespace

struct SolveInterrupt::Before {};

SolveInterrupt::SolveInterrupt(const ztb::Model& model) : before_(std::make_unique<Before>()) {
  solved = model.handle();
  SetConsoleCtrlHandler(endSolve, TRUE);
}

SolveInterrupt::~SolveInterrupt() {
  SetConsoleCtrlHandler(endSolve, FALSE);
  const std::lock_guard lock(mutexOfSolved);
  solved = nullptr;
}

}  // namespace tool
