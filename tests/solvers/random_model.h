// Linear models at random that have a point, and changes of them at random that keep one.
#ifndef ZTB_TESTS_SOLVERS_RANDOM_MODEL_H_
#define ZTB_TESTS_SOLVERS_RANDOM_MODEL_H_

#include <random>

#include "tests/solvers/small_model.h"

namespace ztbtest {

class RandomModel {
 public:
  // `density` is the share of coefficients that are not 0.
  RandomModel(unsigned seed, int columns, int rows, double density);

  SmallModel model;

  // Changes some bounds, right-hand sides, costs or coefficients; the shape stays.
  void change();

  // Columns that stand still, one in three of all, and a move of one of them: to another place, or
  // off and on again.
  void standStill();
  void moveOneThatStood();

  // Changes some bounds or right-hand sides alone; at times so that no point is left.
  void changeBounds();

 private:
  double between(double low, double high);
  int below(std::size_t count);
  void setRow(std::size_t i);

  std::mt19937 random_;
  std::vector<double> point_;  // satisfies all rows and bounds
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_SOLVERS_RANDOM_MODEL_H_
