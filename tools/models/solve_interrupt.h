// SIGINT and SIGTERM during a solve end the solve, and not the process: the best point found so far
// is kept. On Windows these are Ctrl-C and Ctrl-Break.
#ifndef ZTB_TOOLS_MODELS_SOLVE_INTERRUPT_H_
#define ZTB_TOOLS_MODELS_SOLVE_INTERRUPT_H_

#include <memory>
#include <ztb/model.hpp>

namespace tool {

// Holds while it lives, for one model of the process at a time. A second signal ends the process,
// as ever.
class SolveInterrupt {
 public:
  explicit SolveInterrupt(const ztb::Model& model);
  SolveInterrupt(const SolveInterrupt&) = delete;
  SolveInterrupt& operator=(const SolveInterrupt&) = delete;
  ~SolveInterrupt();

 private:
  // What the process did before.
  struct Before;
  std::unique_ptr<Before> before_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_MODELS_SOLVE_INTERRUPT_H_
