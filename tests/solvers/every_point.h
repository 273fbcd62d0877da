// Small problems at random whose every point can be tried: integers of few values, and one column
// behind them that need not be an integer.
#ifndef ZTB_TESTS_SOLVERS_EVERY_POINT_H_
#define ZTB_TESTS_SOLVERS_EVERY_POINT_H_

#include <functional>
#include <vector>

#include "providers/model/solvers/linear_form.h"
#include "tests/solvers/small_model.h"

namespace ztbtest {

// Knapsacks, packings, coverings and partitions, equalities, differences and ties to an integer,
// with coefficients that are whole or tenths. Integers have up to four values, most two.
SmallModel randomSmallIntegers(unsigned seed);

// Levels of all columns with the interval that they leave the one that is no integer, whose level
// here is the least of it.
struct IntegerPoint {
  std::vector<double> level;
  std::size_t moving;  // the one
  double least, most;
};

// Calls `visit` with each choice of integers within bounds that leaves the other column something
// within bounds and rows, with a room of 1e-9. REQUIRES columns that are integers with finite
// bounds or stand still, but for one at most, and one that is no integer.
void forEveryPoint(const lomu::LinearForm& form,
                   const std::function<void(const IntegerPoint&)>& visit);

// The lowest objective of all points: -infinity without an end, and infinity without a point.
double bestOfEveryPoint(const lomu::LinearForm& form);

}  // namespace ztbtest

#endif  // ZTB_TESTS_SOLVERS_EVERY_POINT_H_
