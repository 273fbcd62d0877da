// A model written down row by row, handed to a solver library as arrays by columns.
#ifndef ZTB_TESTS_SOLVERS_SMALL_MODEL_H_
#define ZTB_TESTS_SOLVERS_SMALL_MODEL_H_

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "providers/model/solver.h"

namespace ztbtest {

inline constexpr double kInf = std::numeric_limits<double>::infinity();

struct SmallModel {
  std::vector<double> cost, lower, upper;
  std::vector<char> isInteger;
  std::vector<double> rowLower, rowUpper;
  std::vector<std::vector<double>> rows;  // dense, a coefficient a column
  std::vector<lomu::SolverProduct> products;
  std::vector<double> level;
  std::uint64_t coefficientsAsOf = 0;
  std::uint64_t matrixAsOf = 0;  // 0: the number of the coefficients

  // Adds a column and returns its number.
  int column(double costOf, double lowerOf, double upperOf, bool integer = false);
  // Adds a row; columns must all be there.
  int row(std::vector<double> coefficients, double lowerOf, double upperOf);

  // The arrays, valid until the next call or change. A place is kept for every coefficient, zeros
  // included.
  const lomu::SolverProblem& problem();

  [[nodiscard]] double objective(const std::vector<double>& at) const;
  [[nodiscard]] double activity(std::size_t rowNumber, const std::vector<double>& at) const;

 private:
  lomu::SolverProblem problem_{};
  std::vector<int> start_, rowOf_;
  std::vector<double> value_;
};

// A solver of one of the libraries: "clp", "cbc", "glpk" or "ipopt".
std::unique_ptr<lomu::Solver> openSolver(const std::string& name);

// A result sized for the model.
lomu::SolverResult resultFor(const SmallModel& model);

// Solves with a solver of its own; a refusal fails the test.
lomu::SolverResult solveFresh(const std::string& solver, SmallModel& model,
                              const lomu::SolverLimits& limits = {});
lomu::SolverResult solveLive(lomu::Solver& solver, const SmallModel& model,
                             const lomu::SolverLimits& limits = {});

}  // namespace ztbtest

#endif  // ZTB_TESTS_SOLVERS_SMALL_MODEL_H_
