// Ipopt: continuous problems, with products of columns or without, made afresh for every solve.
// With products of columns that move its best is a local one.
//
// Linear problems that Ipopt brings to no end are decided by two further ones: one without a cost,
// whether there is a point at all, and one of directions, whether the cost falls without end. Where
// rows have products, Ipopt can prove neither, and the solve fails with that reason.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_SOLVER_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_SOLVER_H_

#include <string>

#include "providers/model/solvers/linear_form.h"
#include "providers/model/solvers/watch.h"

namespace lomu {

class IpoptSolver : public Solver {
 public:
  bool load(const SolverProblem& problem, std::string& reason) override;
  bool update(const SolverProblem& problem) override;
  void solve(const SolverLimits& limits, SolverResult& result) override;

 private:
  struct Run {
    Outcome outcome = Outcome::failed;
    bool hasPoint = false;
    double objective = 0;
    bool localInfeasibility = false;
    bool diverged = false;
    bool rowsHaveProducts = false;
    bool objectiveHasProducts = false;
    bool isConvex = false;       // a local optimum is a global one
    bool rowsAreConvex = false;  // the rows alone
  };

  void solveWithin(Watch& watch, SolverResult& result);
  static Run run(const SolverProblem& problem, Watch& watch, SolverResult& result);
  void decideUnsolved(const Run& first, Watch& watch, SolverResult& result) const;
  [[nodiscard]] bool fallsWithoutEnd(Watch& watch, SolverResult& result) const;
  void leavePositions(SolverResult& result) const;

  SolverProblem problem_{};
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_IPOPT_SOLVER_H_
