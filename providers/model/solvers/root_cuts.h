// All ways to cut together at the root of a search, and whether they are worth having there and
// below. Cuts that raise the bound by little beside what it is below the best point make nodes slow
// and spare none: disjunctions by large coefficients are searched in a third of the time without.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_ROOT_CUTS_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_ROOT_CUTS_H_

#include <OsiSolverInterface.hpp>
#include <cstddef>
#include <memory>
#include <vector>

#include "providers/model/solvers/cut_problem.h"
#include "providers/model/solvers/watch.h"

namespace lomu {

class RootCuts {
 public:
  // Adds cuts that hold at every point of the problem and that `point` violates.
  using Find = void (*)(const CutProblem& problem, const double* point, std::vector<Cut>& cuts);

  // Takes no more than `iterations`. REQUIRES that the watch outlives this.
  RootCuts(std::shared_ptr<const CutProblem> problem, std::vector<Find> ways, Watch& watch,
           int iterations);

  // Cuts in rounds on a copy of the solver, which stands at a best point of the linear problem and
  // whose dual objective limit is what the best point known has, and dives from there for a better
  // one.
  void run(const OsiSolverInterface& solver);

  [[nodiscard]] bool hasRun() const { return hasRun_; }
  // True before the run.
  [[nodiscard]] bool areUseful() const { return areUseful_; }
  // Those of one way that the best point touches in the last round. Empty from the second call on,
  // and where they are not useful.
  std::vector<Cut> take(std::size_t way);
  // Fills in the point that was found, once, where its objective is below `objective`.
  bool takePoint(double& objective, double* point);
  // How many iterations it took.
  [[nodiscard]] int iterations() const { return most_ - left_; }

 private:
  struct OfWay {
    std::size_t way;
    Cut cut;
  };

  bool cutInRounds(OsiSolverInterface& linear, double limit);
  bool addRound(OsiSolverInterface& linear);
  void dropLoose(int rows, OsiSolverInterface& linear);
  void judge(const OsiSolverInterface& linear, double first, int firstUndecided, double limit);

  std::shared_ptr<const CutProblem> problem_;
  std::vector<Find> ways_;
  Watch& watch_;
  int most_, left_;  // iterations
  std::vector<OfWay> cuts_;
  std::vector<double> point_;
  double objective_ = 0;  // of the point
  bool hasRun_ = false;
  bool areUseful_ = true;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_ROOT_CUTS_H_
