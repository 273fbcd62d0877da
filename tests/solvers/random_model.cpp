#include "tests/solvers/random_model.h"

#include <algorithm>

namespace ztbtest {

RandomModel::RandomModel(unsigned seed, int columns, int rows, double density) : random_(seed) {
  for (int j = 0; j < columns; ++j) {
    const double low = between(-5, 5);
    const double high = low + between(1, 10);
    model.column(between(-3, 3), low, high);
    point_.push_back(between(low, high));
  }
  for (int i = 0; i < rows; ++i) {
    std::vector<double> coefficients(static_cast<std::size_t>(columns), 0.0);
    for (double& c : coefficients) {
      if (between(0, 1) < density) c = between(-4, 4);
    }
    model.row(coefficients, 0, 0);
    setRow(static_cast<std::size_t>(i));
  }
}

double RandomModel::between(double low, double high) {
  return low + (high - low) * (static_cast<double>(random_()) / 4294967296.0);
}

int RandomModel::below(std::size_t count) {
  return static_cast<int>(random_() % count);
}

// Row types in turn: equation, from below, from above, range, free.
void RandomModel::setRow(std::size_t i) {
  const double activity = model.activity(i, point_);
  const double room = between(0, 3);
  switch (i % 5) {
    case 0:
      model.rowLower[i] = model.rowUpper[i] = activity;
      break;
    case 1:
      model.rowLower[i] = activity - room;
      model.rowUpper[i] = kInf;
      break;
    case 2:
      model.rowLower[i] = -kInf;
      model.rowUpper[i] = activity + room;
      break;
    case 3:
      model.rowLower[i] = activity - room;
      model.rowUpper[i] = activity + between(0, 3);
      break;
    default:
      model.rowLower[i] = -kInf;
      model.rowUpper[i] = kInf;
  }
}

void RandomModel::standStill() {
  for (std::size_t j = 0; j < model.cost.size(); j += 3) {
    model.lower[j] = model.upper[j] = point_[j];
  }
}

void RandomModel::moveOneThatStood() {
  const auto j = static_cast<std::size_t>(below((model.cost.size() + 2) / 3)) * 3;
  model.lower[j] = model.upper[j] = point_[j] + between(-0.1, 0.1);
  if (below(3) == 0) model.upper[j] += 2;
  if (below(6) == 0) model.lower[j] = -kInf;
}

void RandomModel::changeBounds() {
  const auto j = static_cast<std::size_t>(below(model.cost.size()));
  const auto i = static_cast<std::size_t>(below(model.rows.size()));
  switch (below(8)) {
    case 0:
      model.rowLower[i] = 40;
      model.rowUpper[i] = kInf;
      break;
    case 1:
      model.lower[j] = model.upper[j] = point_[j];
      break;
    case 2:
    case 3:
      model.lower[j] = point_[j] - between(0, 4);
      model.upper[j] = point_[j] + between(0, 4);
      break;
    default:
      for (std::size_t row = 0; row < model.rows.size(); ++row) {
        if (model.rowLower[row] == 40 || row == i) setRow(row);
      }
  }
}

void RandomModel::change() {
  const auto j = static_cast<std::size_t>(below(model.cost.size()));
  const auto i = static_cast<std::size_t>(below(model.rows.size()));
  switch (below(4)) {
    case 0:
      model.cost[j] = between(-3, 3);
      break;
    case 1:
      model.lower[j] = point_[j] - between(0, 4);
      model.upper[j] = point_[j] + between(0, 4);
      break;
    case 2:
      setRow(i);
      break;
    default:
      model.rows[i][j] = below(4) == 0 ? 0 : between(-4, 4);
      setRow(i);
  }
}

}  // namespace ztbtest
