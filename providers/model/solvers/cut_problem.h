// A problem as those look at it that make cutting planes: its rows, and the bounds that its columns
// have at the root of a search, so that what follows from them holds at every node.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CUT_PROBLEM_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CUT_PROBLEM_H_

#include <vector>

#include "providers/model/solvers/conflicts.h"
#include "providers/model/solvers/linear_form.h"

namespace lomu {

// A place of the matrix; `at` is a column or a row.
struct CutEntry {
  int at;
  double value;
};

// A bound of a column that moves with an integer column: constant + slope * column.
struct MovingBound {
  int column;
  double constant, slope;
  int row;  // that it comes from
};

// What holds at every point of the problem with integers: the sum of value * column is at most
// `right`.
struct Cut {
  std::vector<int> column;
  std::vector<double> value;
  double right = 0;
};

struct CutProblem {
  std::vector<double> lower, upper;  // infinite where there is none
  std::vector<char> isInteger;
  std::vector<double> rowLower, rowUpper;
  std::vector<std::vector<CutEntry>> row, column;          // zeros left out
  std::vector<std::vector<MovingBound>> lowerBy, upperBy;  // of columns that are no integers
  Conflicts conflicts;

  explicit CutProblem(const LinearForm& form);

  [[nodiscard]] int columnCount() const { return static_cast<int>(lower.size()); }
  [[nodiscard]] int rowCount() const { return static_cast<int>(row.size()); }
  [[nodiscard]] bool isBinary(int j) const;
  [[nodiscard]] double activity(int i, const double* point) const;
  [[nodiscard]] double norm(int i) const { return norm_[static_cast<std::size_t>(i)]; }

  // Makes a cut fit to be handed to a solver: without coefficients that are tiny beside the
  // others, which the bounds of their columns make up for; with a right side that is rounded down
  // where the left one is a whole number, and has a little room where the numbers are no whole
  // ones. False where it is not fit for that, or the point does not violate it by enough.
  bool settle(Cut& cut, const double* point) const;

 private:
  void findMovingBounds();

  std::vector<double> norm_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CUT_PROBLEM_H_
