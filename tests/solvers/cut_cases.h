// Small problems at random that cuts are made for, and the check of a cut against all of a
// problem's points: for each choice of integers the most that the left side comes to, by Clp where
// there are other columns.
#ifndef ZTB_TESTS_SOLVERS_CUT_CASES_H_
#define ZTB_TESTS_SOLVERS_CUT_CASES_H_

#include <random>
#include <string>
#include <vector>

#include "providers/model/solvers/cut_problem.h"
#include "providers/model/solvers/linear_form.h"

namespace ztbtest {

class CutCase {
 public:
  static constexpr unsigned kKinds = 10;

  // Of one of the kinds, each with rows that some cuts are made of.
  explicit CutCase(unsigned seed);

  lomu::LinearForm form;

  // A point that cuts may be asked for: an optimum with random costs of the rows, the bounds and
  // the cuts that were given before, or any point in the bounds. False when there is no point.
  bool nextPoint(std::vector<double>& point);
  // Counts for the points from here on.
  void add(const lomu::Cut& cut);

  // By how much the cut takes something away that it must not; 0 or less when nothing, and
  // -infinity when no choice of integers leaves a point.
  double excess(const lomu::Cut& cut);
  [[nodiscard]] std::string text(const lomu::Cut& cut) const;

 private:
  struct Row {
    std::vector<double> value;
    double lower, upper;
  };

  int below(int count);
  double coefficient();
  int column(double lower, double upper, bool integer);
  void row(std::vector<double> value, double lower, double upper);
  void anyRows(int count, bool sides);
  void plain();
  void knapsacks(bool withOthers);
  void fixedCosts();
  void lots();
  void switches();
  void pairs();
  void finish();
  [[nodiscard]] double mostOf(const std::vector<double>& value, const std::vector<double>& lower,
                              const std::vector<double>& upper) const;

  std::mt19937 random_;
  unsigned kind_;
  bool isFractional_;
  std::vector<Row> rows_;
  std::vector<lomu::Cut> given_;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_SOLVERS_CUT_CASES_H_
