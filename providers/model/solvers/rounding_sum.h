// A sum of rows, each times a factor: sum of value * column is at most, and together with what the
// rows leave free equal to, a right side. What the cuts by rounding are made of.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_ROUNDING_SUM_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_ROUNDING_SUM_H_

#include <vector>

#include "providers/model/solvers/cut_problem.h"

namespace lomu {

// A sparse vector over the columns that is added to in any order.
class ColumnSum {
 public:
  explicit ColumnSum(int columns);

  void add(int column, double value);
  // Sets what is there to 0 for good.
  void remove(int column);
  void clear();
  [[nodiscard]] double operator[](int column) const;
  // In the order in which they came; zeros may be among them.
  [[nodiscard]] const std::vector<int>& columns() const { return columns_; }

 private:
  std::vector<double> value_;
  std::vector<char> isThere_;
  std::vector<int> columns_;
};

class RoundingSum {
 public:
  explicit RoundingSum(const CutProblem& problem);

  // Begins anew with the side of a row that `activity` is nearer to.
  void begin(int row, double activity);
  // Adds the row times what leaves nothing of `column`.
  void addWithout(int column, int row, double activity);
  [[nodiscard]] bool has(int row) const;

  // A row of the sum, and its side: factor * (row + free) where free is what its activity is below
  // the upper side, and less than 0 for what it is above the lower one.
  struct Part {
    int row;
    bool atUpper;
    bool isEquality;
    double factor;
  };

  [[nodiscard]] const ColumnSum& value() const { return value_; }
  [[nodiscard]] const std::vector<Part>& parts() const { return parts_; }
  [[nodiscard]] double right() const { return right_; }

 private:
  void add(int row, double factor, double activity);

  const CutProblem& problem_;
  ColumnSum value_;
  std::vector<Part> parts_;
  double right_ = 0;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_ROUNDING_SUM_H_
