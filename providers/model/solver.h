// A solver as the C++ code on both sides of ztb/solver.h has it. The model library reaches one
// through SolverLibrary; a solver library of ours implements one and gives it its plain C face by
// solvers/solver_face.h.
#ifndef ZTB_PROVIDERS_MODEL_SOLVER_H_
#define ZTB_PROVIDERS_MODEL_SOLVER_H_

#include <ztb/solver.h>

#include <cstddef>
#include <limits>
#include <span>
#include <string>
#include <vector>

namespace lomu {

inline constexpr int kObjectiveRow = ztbSolverObjective;

using SolverProduct = ztbSolverProduct;
using SolverProblem = ztbSolverProblem;

inline std::span<const SolverProduct> productsOf(const SolverProblem& problem) {
  return {problem.products, static_cast<std::size_t>(problem.productCount)};
}
inline void setProducts(SolverProblem& problem, std::span<const SolverProduct> products) {
  problem.products = products.data();
  problem.productCount = static_cast<std::int64_t>(products.size());
}

struct SolverLimits : ztbSolverLimits {
  SolverLimits()
      : SolverLimits(ztbSolverLimits{1e10, 2147483647, 1e-9, 0, nullptr, nullptr, nullptr}) {}
  explicit SolverLimits(const ztbSolverLimits& limits) : ztbSolverLimits(limits) {}
};

enum class Outcome {
  optimal = ztbSolverOptimal,
  locallyOptimal = ztbSolverLocallyOptimal,
  infeasible = ztbSolverInfeasible,
  unbounded = ztbSolverUnbounded,
  iterationLimit = ztbSolverIterationLimit,
  timeLimit = ztbSolverTimeLimit,
  terminated = ztbSolverTerminated,
  failed = ztbSolverFailed
};

// Where a column or a row stands.
enum class Position {
  atLower = ztbSolverAtLower,
  atUpper = ztbSolverAtUpper,
  basic = ztbSolverBasic,
  superbasic = ztbSolverSuperbasic
};

// What a solve left. begin() makes it ready for one.
// `hasPoint` tells whether the levels hold a point that satisfies all rows and bounds;
// `rowMarginal` is the change of the minimized objective per unit of right-hand side.
struct SolverResult {
  Outcome outcome = Outcome::failed;
  bool hasPoint = false;
  double iterations = 0;
  double bound = -std::numeric_limits<double>::infinity();
  bool startTaken = false;
  std::vector<double> level;
  std::vector<Position> position;
  std::vector<double> rowMarginal;
  std::vector<Position> rowPosition;
  // Of an optimum that was looked at for doubt, the marginals of its columns in the minimized
  // problem, what the linear terms of each row come to, else both empty, and what those of the
  // costs do.
  std::vector<double> columnMarginal;
  std::vector<double> rowLevel;
  double cost = 0;
  // Proofs of claims, as ztb/solver.h has them; empty without one.
  std::vector<double> columnRay;
  std::vector<double> rowRay;
  std::string reason;  // of a failure

  void begin(std::size_t columns, std::size_t rows) {
    outcome = Outcome::failed;
    hasPoint = false;
    iterations = 0;
    bound = -std::numeric_limits<double>::infinity();
    startTaken = false;
    level.assign(columns, 0.0);
    position.assign(columns, Position::basic);
    rowMarginal.assign(rows, 0.0);
    rowPosition.assign(rows, Position::basic);
    columnMarginal.clear();
    rowLevel.clear();
    columnRay.clear();
    rowRay.clear();
    reason.clear();
  }
};

using SolverRanges = ztbSolverRanges;

class Solver {
 public:
  Solver() = default;
  virtual ~Solver() = default;
  Solver(const Solver&) = delete;
  Solver& operator=(const Solver&) = delete;

  // As the functions of ztbSolverFunctions, but they may throw.
  virtual bool load(const SolverProblem& problem, std::string& reason) = 0;
  virtual bool update(const SolverProblem& problem) = 0;
  virtual void solve(const SolverLimits& limits, SolverResult& result) = 0;
  virtual bool ranges(SolverRanges& /*ranges*/) { return false; }
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVER_H_
