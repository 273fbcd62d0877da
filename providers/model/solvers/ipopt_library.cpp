#include "providers/model/solvers/ipopt_solver.h"
#include "providers/model/solvers/ipopt_turn.h"
#include "providers/model/solvers/solver_face.h"

void* ztbIpoptTurn() {
  static std::mutex turn;
  return &turn;
}

const ztbSolverFunctions* ztbSolverLibrary() {
  return &lomu::solverFunctions<lomu::IpoptSolver>;
}
