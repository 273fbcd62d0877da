// The part of a linear problem that a solver has to see: columns whose bounds are equal, which is
// how data stand in a model, are left out, and what they add to the rows is taken from the bounds
// of the rows.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_MOVING_PART_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_MOVING_PART_H_

#include <cmath>
#include <cstddef>
#include <vector>

#include "providers/model/solvers/linear_form.h"

namespace lomu {

class MovingPart {
 public:
  // Leaves out all columns that stand still now; none where nothing would remain.
  void choose(const LinearForm& form);
  // Takes in the columns that were left out and do not stand still any more, or all of them.
  void takeIn(const LinearForm& form);
  void takeAll();
  // Whether a column of the part has a coefficient other than 0.
  [[nodiscard]] bool hasEntries(const LinearForm& form) const;
  // Works out the bounds of the rows. REQUIRES that what is left out stands still.
  void shiftRows(const LinearForm& form);

  // The form's number of each column of the part.
  [[nodiscard]] const std::vector<int>& columns() const { return columns_; }
  // The form's numbers of the columns that are left out.
  [[nodiscard]] const std::vector<int>& leftOutColumns() const { return others_; }
  // A column's number in the part, or leftOut.
  [[nodiscard]] int place(int column) const { return places_[static_cast<std::size_t>(column)]; }
  [[nodiscard]] const std::vector<double>& rowLower() const { return rowLower_; }
  [[nodiscard]] const std::vector<double>& rowUpper() const { return rowUpper_; }

  static constexpr int leftOut = -1;
  static bool standsStill(double lower, double upper) {
    return lower == upper && std::isfinite(lower);
  }

 private:
  void number();

  std::vector<int> places_;
  std::vector<int> columns_;
  std::vector<int> others_;  // the columns that are left out
  std::vector<double> rowLower_, rowUpper_, shift_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_MOVING_PART_H_
