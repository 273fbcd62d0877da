// Ipopt's linear solver keeps its state in variables of the process: one run at a time, whichever
// library of ours begins it.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_TURN_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_TURN_H_

#include <mutex>

// Ipopt's library has the lock, a std::mutex, and Bonmin's is linked with that one.
extern "C" __attribute__((visibility("default"))) void* ztbIpoptTurn();

namespace lomu {

// Held during a run.
inline std::mutex& ipoptTurn() {
  return *static_cast<std::mutex*>(ztbIpoptTurn());
}

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_TURN_H_
