// A sparse problem whose data change at random while its shape stays: costs, right-hand sides,
// bounds and coefficients, so that solvable, infeasible, unbounded and degenerate states follow
// each other.
#ifndef ZTB_TESTS_SOLVERS_CHANGING_PROBLEM_H_
#define ZTB_TESTS_SOLVERS_CHANGING_PROBLEM_H_

#include <cstdint>
#include <random>
#include <string>

#include "providers/model/solvers/linear_form.h"

namespace ztbtest {

class ChangingProblem {
 public:
  // Of a file in MPS format.
  ChangingProblem(const std::string& file, unsigned seed);
  // Made by chance, with a point; `integers` columns are integer.
  ChangingProblem(int columns, int rows, double density, int integers, unsigned seed);
  // From sources to targets, all amounts equal, so that many bases are one point.
  static ChangingProblem transport(int sources, int targets, unsigned seed);

  // Changes a few data; at times takes them all back.
  void change();

  [[nodiscard]] lomu::SolverProblem problem() const;
  [[nodiscard]] double objective(const std::vector<double>& level) const;

 private:
  double between(double low, double high);
  std::size_t below(std::size_t count);
  bool happens(int oneIn) { return below(static_cast<std::size_t>(oneIn)) == 0; }
  void addRow(double lower, double upper);
  void keep();
  void changeCost();
  void changeRow();
  void changeBounds();
  void changeValue();

  std::mt19937 random_;
  lomu::LinearForm now_;
  lomu::LinearForm first_;
  std::uint64_t coefficientsAsOf_;
  std::uint64_t matrixAsOf_;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_SOLVERS_CHANGING_PROBLEM_H_
