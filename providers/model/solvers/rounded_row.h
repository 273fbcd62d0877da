// A sum of rows as rounding takes it: integers that are measured from one of their bounds, on the
// left side of "at most", and what continuous columns and slacks may add on the right one.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_ROUNDED_ROW_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_ROUNDED_ROW_H_

#include <vector>

#include "providers/model/solvers/rounding_sum.h"

namespace lomu {

class RoundedRow {
 public:
  // REQUIRES that both outlive this.
  RoundedRow(const CutProblem& problem, const double* point);

  // Which of the bounds of a continuous column counts where its level is as near to two.
  enum class Prefer { lower, moving };

  // Takes the sum times `sign`, 1 or -1. False where there is nothing to round, or something
  // without a bound in it.
  bool take(const RoundingSum& sum, double sign, Prefer prefer);

  // The most violated cut over several divisors and sides of integers, told by the distance of the
  // point from it; 0 when there is none. Afterwards `cut` gives it.
  double round();
  void cut(Cut& cut);

  // How many coefficients were looked at since the last call.
  long takeWork();

 private:
  // factor * level on the left side, where level = column - lower or upper - column.
  struct Term {
    int column;
    double factor, level;
    bool fromUpper;
    double range;  // of the level, infinite where there is no end
  };

  bool takeColumn(const RoundingSum& sum, int column, double factor, Prefer prefer);
  void takeSlack(const RoundingSum::Part& part, double factor);
  bool takeInteger(int column, double factor);
  void addToRight(double value);
  void turn(Term& term);
  [[nodiscard]] double distance(double divisor);
  void tryDivisor(double divisor);

  const CutProblem& problem_;
  const double* point_;
  ColumnSum whole_;  // factors of integers
  ColumnSum rest_;   // what may be added on the right side: restConstant_ + rest_ * columns
  ColumnSum made_;
  double restConstant_ = 0, restLevel_ = 0, restSquare_ = 0;
  double right_ = 0;
  double size_ = 0;  // of all that was added to the right side
  bool exact_ = false;
  std::vector<Term> terms_;
  double divisor_ = 0, distance_ = 0;  // the best ones so far
  long work_ = 0;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_ROUNDED_ROW_H_
