// What stands between a model instance and a solver library.
//
// A solver library is a shared library with one exported function, `ztbMakeSolver`. It sees the
// model as arrays that stay the instance's and that hold still from load or update to the end of
// the next solve. Bounds are IEEE infinities where there are none. Every problem is a minimization:
// the instance turns the signs of a maximization. Constraint rows count from 0 here; the objective
// is no row.
#ifndef ZTB_PROVIDERS_MODEL_SOLVER_API_H_
#define ZTB_PROVIDERS_MODEL_SOLVER_API_H_

#include <cstdint>
#include <string>
#include <vector>

namespace lomu {

inline constexpr int kSolverApiVersion = 2;

inline constexpr int kObjectiveRow = -1;

// value * column1 * column2 in a row, or in the objective.
struct SolverProduct {
  int row;
  int column1;
  int column2;
  double value;
};

struct SolverProblem {
  int columnCount = 0;
  int rowCount = 0;
  const double* cost = nullptr;
  const double* lower = nullptr;
  const double* upper = nullptr;
  const char* isInteger = nullptr;  // one flag a column
  const double* rowLower = nullptr;
  const double* rowUpper = nullptr;
  // The matrix by columns: entries start[j] to start[j + 1] - 1 are those of column j.
  const int* start = nullptr;
  const int* rowOf = nullptr;
  const double* value = nullptr;
  const std::vector<SolverProduct>* products = nullptr;
  const double* level = nullptr;  // where a solver that starts from a point may start
  bool hasIntegers = false;
  // Shape, cost, values and products are those of any other problem with the same number; 0
  // promises nothing.
  std::uint64_t coefficientsAsOf = 0;
};

struct SolverLimits {
  double seconds = 1e10;
  int iterations = 2147483647;
  double relativeGap = 1e-9;
  bool (*terminated)(void* context) = nullptr;
  void* context = nullptr;
};

enum class Outcome {
  optimal,
  locallyOptimal,
  infeasible,
  unbounded,
  iterationLimit,
  timeLimit,
  terminated,
  failed
};

// Where a column or a row stands.
enum class Position { atLower = 0, atUpper = 1, basic = 2, superbasic = 3 };

// What a solve left. Vectors are sized by the instance before the solve: columns, rows.
// `hasPoint` tells whether the levels hold a point that satisfies all rows and bounds;
// `rowMarginal` is the change of the minimized objective per unit of right-hand side.
struct SolverResult {
  Outcome outcome = Outcome::failed;
  bool hasPoint = false;
  double iterations = 0;
  std::vector<double> level;
  std::vector<Position> position;
  std::vector<double> rowMarginal;
  std::vector<Position> rowPosition;
  std::string reason;  // of a failure
};

class Solver {
 public:
  Solver() = default;
  virtual ~Solver() = default;
  Solver(const Solver&) = delete;
  Solver& operator=(const Solver&) = delete;

  // Takes a problem over, as the first or in the place of the one before. False with the reason.
  virtual bool load(const SolverProblem& problem, std::string& reason) = 0;

  // Takes over what changed in the problem since load or update: bounds, cost, values of the
  // matrix. Its shape did not change. False when the solver has to be made afresh.
  virtual bool update(const SolverProblem& problem) = 0;

  virtual void solve(const SolverLimits& limits, SolverResult& result) = 0;
};

}  // namespace lomu

// A new solver, to be deleted by the caller; null when `apiVersion` is another than this library's.
using MakeSolver = lomu::Solver*(int apiVersion);
extern "C" [[gnu::visibility("default")]] MakeSolver ztbMakeSolver;

#endif  // ZTB_PROVIDERS_MODEL_SOLVER_API_H_
