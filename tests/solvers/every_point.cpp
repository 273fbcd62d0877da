#include "tests/solvers/every_point.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace ztbtest {

namespace {

constexpr double kTiny = 1e-9;

class RandomRows {
 public:
  explicit RandomRows(unsigned seed) : random_(seed) {}

  SmallModel model() {
    const int integers = between(3, 6);
    for (int j = 0; j < integers; ++j) {
      const int lower = between(0, 3) == 0 ? between(-2, 2) : 0;
      const int width = between(0, 3) == 0 ? between(0, 3) : 1;
      model_.column(between(-5, 5), lower, lower + width, true);
    }
    const double lowest = between(0, 2) == 0 ? -kInf : between(-6, 0);
    model_.column(between(-2, 2), lowest, between(0, 2) == 0 ? kInf : between(0, 6));
    for (int rows = between(2, 6); rows > 0; --rows) addRow();
    return model_;
  }

 private:
  int between(int low, int high) { return std::uniform_int_distribution<>(low, high)(random_); }

  void addRow() {
    const std::size_t count = model_.cost.size();
    std::vector<double> row(count);
    const int kind = between(0, 4);
    for (std::size_t j = 0; j + 1 < count; ++j) {
      if (between(0, 2) == 0) continue;
      if (kind == 0) row[j] = between(1, 9);
      if (kind == 1) row[j] = 1;
      if (kind == 2) row[j] = between(-4, 4);
      if (kind == 3) row[j] = between(-20, 20) / 10.0;
      if (kind == 4) row[j] = between(0, 2) == 0 ? between(-8, 8) : 0;
    }
    if (kind >= 2 && between(0, 1) == 0) row[count - 1] = between(0, 1) == 0 ? 1 : -1.5;
    // A side at or near what a point of integers comes to.
    double side = between(0, 2) - 1;
    for (std::size_t j = 0; j + 1 < count; ++j) {
      side +=
          row[j] * between(static_cast<int>(model_.lower[j]), static_cast<int>(model_.upper[j]));
    }
    const int sense = between(0, 3);
    if (sense == 0) model_.row(row, side, side);
    if (sense == 1) model_.row(row, -kInf, side);
    if (sense == 2) model_.row(row, side, kInf);
    if (sense == 3) model_.row(row, side - between(0, 3), side);
  }

  std::mt19937 random_;
  SmallModel model_;
};

bool leaves(const lomu::LinearForm& form, IntegerPoint& point) {
  point.least = form.lower[point.moving];
  point.most = form.upper[point.moving];
  std::vector<double> activity(form.rowLower.size());
  std::vector<double> ofMoving(form.rowLower.size());
  for (std::size_t j = 0; j < form.cost.size(); ++j) {
    for (int e = form.start[j]; e < form.start[j + 1]; ++e) {
      const auto i = static_cast<std::size_t>(form.rowOf[static_cast<std::size_t>(e)]);
      const double value = form.value[static_cast<std::size_t>(e)];
      if (j != point.moving) {
        activity[i] += value * point.level[j];
      } else {
        ofMoving[i] += value;
      }
    }
  }
  for (std::size_t i = 0; i < activity.size(); ++i) {
    const double low = form.rowLower[i] - activity[i];
    const double high = form.rowUpper[i] - activity[i];
    if (ofMoving[i] == 0) {
      if (low > kTiny || high < -kTiny) return false;
      continue;
    }
    point.least = std::max(point.least, (ofMoving[i] > 0 ? low : high) / ofMoving[i]);
    point.most = std::min(point.most, (ofMoving[i] > 0 ? high : low) / ofMoving[i]);
  }
  return point.least <= point.most + kTiny;
}

std::size_t movingColumnOf(const lomu::LinearForm& form) {
  std::size_t moving = form.cost.size() - 1;
  for (std::size_t j = 0; j < form.cost.size(); ++j) {
    if (form.isInteger[j] == 0 && form.lower[j] < form.upper[j]) moving = j;
  }
  return moving;
}

}  // namespace

SmallModel randomSmallIntegers(unsigned seed) {
  return RandomRows(seed).model();
}

void forEveryPoint(const lomu::LinearForm& form,
                   const std::function<void(const IntegerPoint&)>& visit) {
  IntegerPoint point{form.lower, movingColumnOf(form), 0, 0};
  for (std::size_t j = 0; j < form.cost.size(); ++j) {
    if (form.lower[j] > form.upper[j]) return;
  }
  for (;;) {
    const bool isLeft = leaves(form, point);
    point.level[point.moving] = point.least;
    if (isLeft) visit(point);
    std::size_t j = 0;
    while (j < form.cost.size() && (j == point.moving || point.level[j] >= form.upper[j])) {
      point.level[j] = form.lower[j];
      ++j;
    }
    if (j == form.cost.size()) return;
    ++point.level[j];
  }
}

double bestOfEveryPoint(const lomu::LinearForm& form) {
  double best = kInf;
  forEveryPoint(form, [&](const IntegerPoint& point) {
    double objective = 0;
    for (std::size_t j = 0; j < point.level.size(); ++j) {
      const bool isHigh = j == point.moving && form.cost[j] < 0;
      if (form.cost[j] != 0) objective += form.cost[j] * (isHigh ? point.most : point.level[j]);
    }
    best = std::min(best, objective);
  });
  return best;
}

}  // namespace ztbtest
