#include "tests/solvers/changing_problem.h"

#include <glpk.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ztbtest {

namespace {

constexpr double kUnbounded = std::numeric_limits<double>::infinity();

std::uint64_t nextNumber() {
  static std::uint64_t last = 0;
  return ++last;
}

double finite(double value) {
  return std::abs(value) >= 1e300 ? std::copysign(kUnbounded, value) : value;
}

}  // namespace

ChangingProblem::ChangingProblem(const std::string& file, unsigned seed) : random_(seed) {
  glp_term_out(GLP_OFF);
  glp_prob* read = glp_create_prob();
  EXPECT_EQ(glp_read_mps(read, GLP_MPS_DECK, nullptr, file.c_str()), 0) << file;
  now_.rowCount = glp_get_num_rows(read);
  now_.columnCount = glp_get_num_cols(read);
  for (int i = 1; i <= now_.rowCount; ++i) {
    now_.rowLower.push_back(finite(glp_get_row_lb(read, i)));
    now_.rowUpper.push_back(finite(glp_get_row_ub(read, i)));
  }
  std::vector<int> rowOf(now_.rowLower.size() + 1);
  std::vector<double> value(rowOf.size());
  now_.start.push_back(0);
  for (int j = 1; j <= now_.columnCount; ++j) {
    now_.cost.push_back(glp_get_obj_coef(read, j));
    now_.lower.push_back(finite(glp_get_col_lb(read, j)));
    now_.upper.push_back(finite(glp_get_col_ub(read, j)));
    now_.isInteger.push_back(glp_get_col_kind(read, j) == GLP_CV ? 0 : 1);
    const int count = glp_get_mat_col(read, j, rowOf.data(), value.data());
    for (int k = 1; k <= count; ++k) {
      now_.rowOf.push_back(rowOf[static_cast<std::size_t>(k)] - 1);
      now_.value.push_back(value[static_cast<std::size_t>(k)]);
    }
    now_.start.push_back(static_cast<int>(now_.rowOf.size()));
  }
  glp_delete_prob(read);
  keep();
}

ChangingProblem::ChangingProblem(int columns, int rows, double density, int integers, unsigned seed)
    : random_(seed) {
  std::vector<double> activity(static_cast<std::size_t>(rows));
  now_.columnCount = columns;
  now_.rowCount = rows;
  now_.start.push_back(0);
  for (int j = 0; j < columns; ++j) {
    const double low = happens(8) ? -kUnbounded : std::floor(between(-5, 5));
    const double high = happens(4) ? kUnbounded : std::max(low, -5.0) + std::floor(between(1, 10));
    const double at = std::floor(between(std::max(low, -5.0), std::min(high, 15.0)));
    now_.lower.push_back(low);
    now_.upper.push_back(high);
    now_.isInteger.push_back(j < integers ? 1 : 0);
    for (int i = 0; i < rows; ++i) {
      if (between(0, 1) >= density) continue;
      const double value = happens(3) ? 1 : between(-4, 4);
      now_.rowOf.push_back(i);
      now_.value.push_back(value);
      activity[static_cast<std::size_t>(i)] += value * at;
    }
    // Dearer the more it uses, so that a part of the problems has an end.
    now_.cost.push_back(std::isinf(low) ? 0 : between(-1, 3));
    now_.start.push_back(static_cast<int>(now_.rowOf.size()));
  }
  for (const double at : activity) {
    const std::size_t kind = below(4);
    addRow(kind == 1 ? -kUnbounded : at - (kind == 0 ? 0 : between(0, 2)),
           kind == 2 ? kUnbounded : at + (kind == 0 ? 0 : between(0, 2)));
  }
  keep();
}

ChangingProblem ChangingProblem::transport(int sources, int targets, unsigned seed) {
  ChangingProblem made(0, 0, 0, 0, seed);
  made.now_.rowCount = sources + targets;
  made.now_.columnCount = sources * targets;
  for (int s = 0; s < sources; ++s) made.addRow(-kUnbounded, targets);
  for (int t = 0; t < targets; ++t) made.addRow(sources, kUnbounded);
  for (int s = 0; s < sources; ++s) {
    for (int t = 0; t < targets; ++t) {
      made.now_.cost.push_back(1 + static_cast<double>(made.below(4)));
      made.now_.lower.push_back(0);
      made.now_.upper.push_back(kUnbounded);
      made.now_.isInteger.push_back(0);
      for (const int row : {s, sources + t}) {
        made.now_.rowOf.push_back(row);
        made.now_.value.push_back(1);
      }
      made.now_.start.push_back(static_cast<int>(made.now_.rowOf.size()));
    }
  }
  made.keep();
  return made;
}

void ChangingProblem::addRow(double lower, double upper) {
  now_.rowLower.push_back(lower);
  now_.rowUpper.push_back(upper);
}

void ChangingProblem::keep() {
  for (const char flag : now_.isInteger) now_.hasIntegers = now_.hasIntegers || flag != 0;
  first_ = now_;
  matrixAsOf_ = coefficientsAsOf_ = nextNumber();
}

double ChangingProblem::between(double low, double high) {
  return low + (high - low) * (static_cast<double>(random_()) / 4294967296.0);
}

std::size_t ChangingProblem::below(std::size_t count) {
  return random_() % count;
}

void ChangingProblem::changeCost() {
  const std::size_t j = below(now_.cost.size());
  const double first = first_.cost[j];
  now_.cost[j] = happens(6) ? -first : happens(6) ? 0 : first * between(0.5, 2);
  coefficientsAsOf_ = nextNumber();
}

void ChangingProblem::changeRow() {
  const std::size_t i = below(now_.rowLower.size());
  const double size = std::max(
      1.0, std::abs(std::isinf(first_.rowLower[i]) ? first_.rowUpper[i] : first_.rowLower[i]));
  const double by = happens(8) ? between(-20, 20) * size : between(-0.2, 0.2) * size;
  now_.rowLower[i] = happens(8) ? -kUnbounded : first_.rowLower[i] + by;
  now_.rowUpper[i] = happens(8) ? kUnbounded : first_.rowUpper[i] + by;
}

void ChangingProblem::changeBounds() {
  const std::size_t j = below(now_.lower.size());
  switch (below(6)) {
    case 0:
      now_.lower[j] = -kUnbounded;
      break;
    case 1:
      now_.upper[j] = kUnbounded;
      break;
    case 2:
      now_.lower[j] = now_.upper[j] = std::isinf(first_.lower[j]) ? 0 : first_.lower[j];
      break;
    case 3:
      now_.upper[j] = std::isinf(now_.lower[j]) ? 10 : now_.lower[j] + std::floor(between(0, 20));
      break;
    default:
      now_.lower[j] = first_.lower[j];
      now_.upper[j] = first_.upper[j];
  }
}

void ChangingProblem::changeValue() {
  const std::size_t e = below(now_.value.size());
  now_.value[e] = happens(6) ? 0 : first_.value[e] * between(0.5, 2);
  matrixAsOf_ = coefficientsAsOf_ = nextNumber();
}

void ChangingProblem::change() {
  if (happens(12)) {
    now_ = first_;
    matrixAsOf_ = coefficientsAsOf_ = nextNumber();
    return;
  }
  for (std::size_t times = 1 + below(4); times > 0; --times) {
    switch (below(4)) {
      case 0:
        changeCost();
        break;
      case 1:
        changeRow();
        break;
      case 2:
        changeBounds();
        break;
      default:
        changeValue();
    }
  }
}

lomu::SolverProblem ChangingProblem::problem() const {
  lomu::SolverProblem problem = now_.problem();
  problem.coefficientsAsOf = coefficientsAsOf_;
  problem.matrixAsOf = matrixAsOf_;
  return problem;
}

double ChangingProblem::objective(const std::vector<double>& level) const {
  double sum = 0;
  for (std::size_t j = 0; j < level.size(); ++j) sum += now_.cost[j] * level[j];
  return sum;
}

}  // namespace ztbtest
