// A few rows of a linear problem, with the columns that stand in them, as a problem of their own.
#ifndef ZTB_PROVIDERS_MODEL_PROBLEM_PART_H_
#define ZTB_PROVIDERS_MODEL_PROBLEM_PART_H_

#include <vector>

#include "providers/model/solver.h"

namespace lomu {

class ProblemPart {
 public:
  // `rows` and `columns` have a flag for each that is kept; a column is kept for a term in such a
  // row, too. REQUIRES no products, sets or semi-continuous columns.
  ProblemPart(const SolverProblem& problem, const std::vector<char>& rows,
              const std::vector<char>& columns);
  ProblemPart(const ProblemPart&) = delete;
  ProblemPart& operator=(const ProblemPart&) = delete;

  // Without costs and integers.
  [[nodiscard]] const SolverProblem& problem() const { return problem_; }
  // The numbers in the whole problem.
  [[nodiscard]] const std::vector<int>& rows() const { return rows_; }
  [[nodiscard]] const std::vector<int>& columns() const { return columns_; }

 private:
  std::vector<int> rows_, columns_, start_, rowOf_;
  std::vector<double> value_, cost_, lower_, upper_, rowLower_, rowUpper_;
  std::vector<char> noInteger_;
  SolverProblem problem_{};
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_PROBLEM_PART_H_
