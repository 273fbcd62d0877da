// A smaller problem in integers with the same best objective, from which a point of the whole one
// is put together: columns that stand still, columns that follow from another, rows that nothing
// can break and rows that say the same are left out; bounds of integers, sides and coefficients are
// tightened. Each step keeps every point that the problem has, but for those that put a column to a
// bound, when asked to, that costs and rows let it go to.
//
// Numbers are compared with the room of point_check.h, so that a point is kept when it satisfies
// the problem as far as any point has to.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_REDUCTION_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_REDUCTION_H_

#include <utility>
#include <vector>

#include "providers/model/solvers/linear_form.h"
#include "providers/model/solvers/probing.h"
#include "providers/model/solvers/watch.h"

namespace lomu {

class Reduction {
 public:
  // `everyPoint`: no point is to be lost, not even one beside another as good.
  Reduction(const LinearForm& form, bool everyPoint, Watch& watch);

  // Reduces until nothing changes, the work is more than it is worth or the watch ends it. False
  // when no point was found to be possible; the reduction is of no use then.
  bool run();
  // Takes bounds over that were found for small(), and ties of its columns that hold in every
  // point. False as in run, which is to be called next.
  bool take(const LinearForm& probed, const std::vector<Tie>& ties);

  // The problem as it is now. Its last column is always there, stands at 1 and has no entries: its
  // cost is that of the columns left out.
  [[nodiscard]] const LinearForm& small() const { return small_; }
  // How many coefficients were tightened.
  [[nodiscard]] int strengthened() const { return strengthened_; }
  // The levels of the whole problem for those of the small one.
  [[nodiscard]] std::vector<double> whole(const double* smallLevel) const;
  // The levels of the small problem in a point of the whole one.
  [[nodiscard]] std::vector<double> part(const std::vector<double>& wholeLevel) const;

 private:
  struct Entry {
    int column;
    double value;
  };
  struct Row {
    std::vector<Entry> entries;
    double lower, upper;
    double absorbed = 0;  // the largest term that went into the sides
    bool isGone = false;
    bool isWaiting = false;
  };
  // What a row can come to: finite parts, how many are infinite, and its largest term.
  struct Sums {
    double least = 0, most = 0, largest = 0;
    int leastInfinite = 0, mostInfinite = 0;
  };

  void queue(int row);
  void queueRowsOf(int column);
  void remove(int row);
  bool narrow(int column, double newLower, double newUpper);
  [[nodiscard]] bool isFixed(int column) const;
  void build();

  // reduction_rows.cpp: what a row tells by itself.
  [[nodiscard]] Sums sumsOf(const Row& row) const;
  [[nodiscard]] std::pair<double, double> ends(const Entry& entry) const;
  [[nodiscard]] double roomOf(const Row& row, const Sums& sums) const;
  bool visit(int row);
  void absorbFixed(Row& row);
  bool takeSingle(int row);
  bool takeEquality(int row, bool& taken);
  bool tightenBounds(int row, const Sums& sums);
  bool roundSides(Row& row, const Sums& sums);
  void tightenCoefficients(int row);

  // reduction_pairs.cpp: what rows tell together, and costs.
  void tie(const Tie& tie);
  bool mergeParallelRows();
  bool sendToBounds();

  const LinearForm& form_;
  Watch& watch_;
  bool everyPoint_;
  std::vector<double> lower_, upper_, cost_;
  double constant_ = 0;
  std::vector<Row> rows_;
  std::vector<std::vector<int>> rowsOf_;  // of columns; some may have lost the column
  std::vector<int> waiting_;
  std::vector<Tie> ties_;     // in the order that they were found
  std::vector<char> isTied_;  // columns
  std::vector<int> columns_;  // of the small problem
  int strengthened_ = 0;
  double work_;
  LinearForm small_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_REDUCTION_H_
