#include "tests/solvers/cut_cases.h"

#include <ClpSimplex.hpp>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <sstream>

namespace ztbtest {

namespace {

constexpr double kEnd = std::numeric_limits<double>::infinity();
constexpr int kChoices = 2000;  // of integers at most

std::size_t at(int number) {
  return static_cast<std::size_t>(number);
}

// The optimum of a linear problem of dense rows, or false.
bool solveRows(const lomu::LinearForm& form, const std::vector<double>& lower,
               const std::vector<double>& upper, const std::vector<double>& cost,
               const std::vector<lomu::Cut>& cuts, ClpSimplex& clp) {
  clp.setLogLevel(0);
  clp.setPrimalTolerance(1e-9);
  clp.loadProblem(form.columnCount, form.rowCount, form.start.data(), form.rowOf.data(),
                  form.value.data(), lower.data(), upper.data(), cost.data(), form.rowLower.data(),
                  form.rowUpper.data());
  for (const lomu::Cut& cut : cuts) {
    clp.addRow(static_cast<int>(cut.column.size()), cut.column.data(), cut.value.data(),
               -COIN_DBL_MAX, cut.right);
  }
  clp.dual();
  return clp.isProvenOptimal();
}

}  // namespace

CutCase::CutCase(unsigned seed)
    : random_(seed), kind_(seed % kKinds), isFractional_(below(4) == 0) {
  switch (kind_) {
    case 0:
    case 1:
    case 2:
      plain();
      break;
    case 3:
      knapsacks(false);
      break;
    case 4:
      knapsacks(true);
      break;
    case 5:
      fixedCosts();
      break;
    case 6:
      lots();
      break;
    case 7:
      switches();
      break;
    case 8:
      pairs();
      break;
    default:
      fixedCosts();
      anyRows(1, true);
  }
  finish();
}

int CutCase::below(int count) {
  return static_cast<int>(random_() % static_cast<unsigned>(count));
}

double CutCase::coefficient() {
  const int size = below(4) == 0 ? 40 : 9;
  double value = 1 + below(size);
  if (isFractional_) value = value / 7 + below(100) / 100.0;
  return value;
}

int CutCase::column(double lower, double upper, bool integer) {
  form.lower.push_back(lower);
  form.upper.push_back(upper);
  form.isInteger.push_back(integer ? 1 : 0);
  return static_cast<int>(form.lower.size()) - 1;
}

void CutCase::row(std::vector<double> value, double lower, double upper) {
  rows_.push_back({std::move(value), lower, upper});
}

// Rows that hold at some point of integers, and leave it some room or none.
void CutCase::anyRows(int count, bool sides) {
  const std::size_t n = form.lower.size();
  std::vector<double> point(n);
  for (std::size_t j = 0; j < n; ++j) {
    const double low =
        std::isfinite(form.lower[j]) ? form.lower[j] : std::min(form.upper[j], 0.0) - 5;
    const double high = std::isfinite(form.upper[j]) ? form.upper[j] : low + 9;
    point[j] = low + below(static_cast<int>(high - low) + 1);
  }
  for (int i = 0; i < count; ++i) {
    std::vector<double> value(n);
    double sum = 0;
    for (std::size_t j = 0; j < n; ++j) {
      if (below(4) == 0) continue;
      value[j] = sides && below(2) == 0 ? -coefficient() : coefficient();
      sum += value[j] * point[j];
    }
    const double room = isFractional_ ? below(300) / 100.0 : below(4);
    switch (below(4)) {
      case 0:
        row(value, sum, sum);
        break;
      case 1:
        row(value, sum - room, sum + below(8));
        break;
      case 2:
        row(value, sum - room, kEnd);
        break;
      default:
        row(value, -kEnd, sum + room);
    }
  }
}

void CutCase::plain() {
  const int integers = 1 + below(5);
  for (int j = 0; j < integers; ++j) {
    const int low = below(3) == 0 ? -below(6) : 0;
    column(low, low + (below(6) == 0 ? 0 : 1 + below(below(2) == 0 ? 1 : 5)), true);
  }
  const int others = kind_ == 0 ? 0 : below(5);
  for (int j = 0; j < others; ++j) {
    const int low = below(3) == 0 ? -below(9) : 0;
    switch (below(5)) {
      case 0:
        column(-kEnd, kEnd, false);
        break;
      case 1:
        column(low, kEnd, false);
        break;
      case 2:
        column(-kEnd, low, false);
        break;
      case 3:
        column(low, low, false);
        break;
      default:
        column(low, low + 1 + below(20), false);
    }
  }
  anyRows(1 + below(4), true);
}

void CutCase::knapsacks(bool withOthers) {
  const int binary = withOthers ? 4 + below(3) : 6 + below(4);
  for (int j = 0; j < binary; ++j) column(0, 1, true);
  if (withOthers) {
    if (below(2) == 0) column(-below(3), 1 + below(2), true);
    if (below(2) == 0) column(-below(3), 1 + below(9), false);
  }
  const int count = 1 + below(3);
  for (int i = 0; i < count; ++i) {
    std::vector<double> value(form.lower.size());
    double sum = 0;
    const bool sides = below(3) == 0;
    for (double& v : value) {
      v = coefficient();
      if (sides && below(2) == 0) v = -v;
      sum += std::max(0.0, v);
    }
    const double right = std::floor(sum * (2 + below(7)) / 10);
    if (below(5) == 0) {
      row(value, right - below(5), right);
    } else if (below(4) == 0) {
      row(value, right, kEnd);
    } else {
      row(value, -kEnd, right);
    }
  }
}

// Flows in and out of a place, each up to what a binary column opens, and at least some of it.
void CutCase::fixedCosts() {
  const int arcs = 2 + below(3);
  std::vector<int> flow;
  std::vector<int> open;
  for (int k = 0; k < arcs; ++k) {
    flow.push_back(column(below(4) == 0 ? -below(3) : 0, below(2) == 0 ? kEnd : 20, false));
    open.push_back(column(0, below(4) == 0 ? 2 : 1, true));
  }
  const std::size_t n = form.lower.size();
  std::vector<double> balance(n);
  for (int k = 0; k < arcs; ++k) {
    balance[at(flow[at(k)])] = below(3) == 0 ? -1 : 1;
    std::vector<double> value(n);
    value[at(flow[at(k)])] = 1;
    value[at(open[at(k)])] = -2 * coefficient();
    row(value, -kEnd, below(4) == 0 ? below(3) : 0);
    if (below(4) != 0) continue;
    value[at(open[at(k)])] = -1;
    row(value, 0, kEnd);
  }
  const int need = below(12);
  switch (below(3)) {
    case 0:
      row(balance, need, need);
      break;
    case 1:
      row(balance, need, kEnd);
      break;
    default:
      row(balance, -kEnd, need);
  }
}

// Periods with a demand, stock between them, and lots that something must be set up for.
void CutCase::lots() {
  const int periods = 2 + below(3);
  std::vector<int> make;
  std::vector<int> keep;
  std::vector<int> setUp;
  for (int t = 0; t < periods; ++t) {
    make.push_back(column(0, kEnd, false));
    if (t + 1 < periods) keep.push_back(column(0, below(3) == 0 ? 15 : kEnd, false));
    setUp.push_back(column(0, below(5) == 0 ? 3 : 1, true));
  }
  const std::size_t n = form.lower.size();
  for (int t = 0; t < periods; ++t) {
    std::vector<double> value(n);
    value[at(make[at(t)])] = 1;
    if (t > 0) value[at(keep[at(t - 1)])] = 1;
    if (t + 1 < periods) value[at(keep[at(t)])] = -1;
    const double demand = coefficient();
    row(value, demand, below(3) == 0 ? kEnd : demand);
    std::fill(value.begin(), value.end(), 0.0);
    value[at(make[at(t)])] = 1;
    value[at(setUp[at(t)])] = -10 - 4 * coefficient();
    row(value, -kEnd, 0);
  }
}

// Which of two comes first, by a large number.
void CutCase::switches() {
  const double large = 20 + 10 * coefficient();
  for (int j = 0; j < 3; ++j) column(0, below(2) == 0 ? kEnd : 60, false);
  const int which = 1 + below(3);
  for (int k = 0; k < which; ++k) column(0, 1, true);
  const std::size_t n = form.lower.size();
  for (int k = 0; k < which; ++k) {
    const std::size_t a = at(k);
    const std::size_t b = at((k + 1) % 3);
    std::vector<double> value(n);
    value[a] = 1;
    value[b] = -1;
    value[at(3 + k)] = large;
    row(value, coefficient(), kEnd);
    row(value, -kEnd, large - coefficient());
  }
  std::vector<double> all(n);
  for (std::size_t j = 0; j < n; ++j) all[j] = coefficient();
  row(all, -kEnd, 3 * large);
}

// At most, at least or just one of a few.
void CutCase::pairs() {
  const int n = 5 + below(5);
  for (int j = 0; j < n; ++j) column(0, 1, true);
  const int count = 4 + below(8);
  for (int i = 0; i < count; ++i) {
    std::vector<double> value(at(n));
    const int few = 2 + below(2);
    for (int k = 0; k < few; ++k) value[at(below(n))] = below(9) == 0 ? 2 : 1;
    const int sides = below(8);
    row(value, sides == 0 ? 1 : -kEnd, sides == 1 ? kEnd : 1);
  }
  if (below(2) == 0) anyRows(1, false);
}

void CutCase::finish() {
  form.columnCount = static_cast<int>(form.lower.size());
  form.rowCount = static_cast<int>(rows_.size());
  form.cost.assign(at(form.columnCount), 0);
  form.hasIntegers = true;
  for (int j = 0; j < form.columnCount; ++j) {
    form.start.push_back(static_cast<int>(form.value.size()));
    for (int i = 0; i < form.rowCount; ++i) {
      const double value = rows_[at(i)].value[at(j)];
      if (value == 0) continue;
      form.rowOf.push_back(i);
      form.value.push_back(value);
    }
  }
  form.start.push_back(static_cast<int>(form.value.size()));
  for (const Row& each : rows_) {
    form.rowLower.push_back(each.lower);
    form.rowUpper.push_back(each.upper);
  }
}

bool CutCase::nextPoint(std::vector<double>& point) {
  point.resize(at(form.columnCount));
  if (below(4) == 0) {
    for (std::size_t j = 0; j < point.size(); ++j) {
      const double low =
          std::isfinite(form.lower[j]) ? form.lower[j] : std::min(form.upper[j], 9.0) - 18;
      const double high = std::isfinite(form.upper[j]) ? form.upper[j] : low + 18;
      point[j] = low + (high - low) * below(1001) / 1000;
      if (below(3) == 0) point[j] = below(2) == 0 ? low : high;
    }
    return true;
  }
  std::vector<double> cost(point.size());
  for (double& c : cost) c = below(41) - 20;
  // Columns without an end stay where they are bounded by the rows.
  std::vector<double> lower = form.lower;
  std::vector<double> upper = form.upper;
  for (std::size_t j = 0; j < point.size(); ++j) {
    lower[j] = std::max(lower[j], -1000.0);
    upper[j] = std::min(upper[j], 1000.0);
  }
  ClpSimplex clp;
  if (!solveRows(form, lower, upper, cost, given_, clp)) return false;
  std::copy_n(clp.primalColumnSolution(), point.size(), point.begin());
  return true;
}

void CutCase::add(const lomu::Cut& cut) {
  given_.push_back(cut);
}

double CutCase::mostOf(const std::vector<double>& value, const std::vector<double>& lower,
                       const std::vector<double>& upper) const {
  const bool others =
      std::find(form.isInteger.begin(), form.isInteger.end(), 0) != form.isInteger.end();
  if (!others) {
    for (const Row& each : rows_) {
      double sum = 0;
      for (std::size_t j = 0; j < lower.size(); ++j) sum += each.value[j] * lower[j];
      if (sum < each.lower - 1e-9 || sum > each.upper + 1e-9) return -kEnd;
    }
    double sum = 0;
    for (std::size_t j = 0; j < lower.size(); ++j) sum += value[j] * lower[j];
    return sum;
  }
  std::vector<double> cost(value.size());
  for (std::size_t j = 0; j < value.size(); ++j) cost[j] = -value[j];
  ClpSimplex clp;
  if (solveRows(form, lower, upper, cost, {}, clp)) return -clp.objectiveValue();
  return clp.isProvenDualInfeasible() && !clp.isProvenPrimalInfeasible() ? kEnd : -kEnd;
}

double CutCase::excess(const lomu::Cut& cut) {
  std::vector<double> value(at(form.columnCount));
  for (std::size_t k = 0; k < cut.column.size(); ++k) value[at(cut.column[k])] += cut.value[k];
  std::vector<double> lower = form.lower;
  std::vector<double> upper = form.upper;
  double choices = 1;
  for (std::size_t j = 0; j < lower.size(); ++j) {
    if (form.isInteger[j] == 0) continue;
    choices *= upper[j] - lower[j] + 1;
    upper[j] = lower[j];
  }
  if (choices > kChoices) return -kEnd;
  double worst = -kEnd;
  for (;;) {
    const double most = mostOf(value, lower, upper);
    worst = std::max(worst, most - cut.right);
    std::size_t j = 0;
    for (; j < lower.size(); ++j) {
      if (form.isInteger[j] == 0) continue;
      if (lower[j] < form.upper[j]) {
        upper[j] = lower[j] += 1;
        break;
      }
      upper[j] = lower[j] = form.lower[j];
    }
    if (j == lower.size()) return worst;
  }
}

std::string CutCase::text(const lomu::Cut& cut) const {
  std::ostringstream out;
  out.precision(17);
  for (std::size_t j = 0; j < form.lower.size(); ++j) {
    out << "x" << j << " in [" << form.lower[j] << ", " << form.upper[j] << "]"
        << (form.isInteger[j] != 0 ? " integer\n" : "\n");
  }
  for (const Row& each : rows_) {
    out << each.lower << " <=";
    for (std::size_t j = 0; j < each.value.size(); ++j) {
      if (each.value[j] != 0) out << " + " << each.value[j] << " x" << j;
    }
    out << " <= " << each.upper << "\n";
  }
  out << "cut:";
  for (std::size_t k = 0; k < cut.column.size(); ++k) {
    out << " + " << cut.value[k] << " x" << cut.column[k];
  }
  out << " <= " << cut.right << "\n";
  return out.str();
}

}  // namespace ztbtest
