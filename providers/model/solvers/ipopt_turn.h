// Ipopt's linear solver keeps its state in variables of the process: one run at a time, whichever
// library of ours begins it.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_TURN_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_TURN_H_

#include <mutex>

// Held during a run. Ipopt's library has it, and Bonmin's is linked with that one.
extern "C" __attribute__((visibility("default"))) std::mutex* ztbIpoptTurn();

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_TURN_H_
