// Bonmin: problems with products of columns and integers, made afresh for every solve. Where
// products that move curve the objective downwards, or stand in rows, its best is a local one.
//
// Bonmin tells that there is no point by trying all integers, and an unbounded problem by trying
// long. So where rows are linear, Cbc looks first whether there is a point at all, and Ipopt
// whether the objective has an end: with integers it has none where it has none without them and
// there is a point, for numbers are rational. Cbc's point is the one that a search without a better
// one ends with. At the end Ipopt solves what is left with the integers fixed at the best point,
// which gives levels and marginals.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_BONMIN_SOLVER_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_BONMIN_SOLVER_H_

#include <string>
#include <vector>

#include "providers/model/solver.h"
#include "providers/model/solvers/watch.h"

namespace lomu {

class BonminSolver : public Solver {
 public:
  bool load(const SolverProblem& problem, std::string& reason) override;
  bool update(const SolverProblem& problem) override;
  void solve(const SolverLimits& limits, SolverResult& result) override;

 private:
  void solveWithin(Watch& watch, const SolverLimits& limits, SolverResult& result) const;
  [[nodiscard]] bool integersMove() const;
  [[nodiscard]] SolverProblem withoutIntegers() const;
  void solveContinuous(const SolverProblem& problem, const SolverLimits& limits,
                       SolverResult& result) const;
  [[nodiscard]] bool findBound(Watch& watch, const SolverLimits& limits, SolverResult& point) const;
  [[nodiscard]] bool findPoint(Watch& watch, SolverResult& result) const;
  void complete(SolverResult& result) const;

  SolverProblem problem_{};
  // Bounds of the columns: of integer ones they are integers.
  std::vector<double> lower_, upper_;
  std::vector<char> noIntegers_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_BONMIN_SOLVER_H_
