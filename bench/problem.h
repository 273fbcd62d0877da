// Linear problems for the benchmark of repeated solves. What changes from solve to solve is the
// demand.
#ifndef ZTB_BENCH_PROBLEM_H_
#define ZTB_BENCH_PROBLEM_H_

#include <limits>
#include <vector>

namespace bench {

struct Column {
  double cost;
  double lower = 0;
  double upper = std::numeric_limits<double>::infinity();
};

struct Term {
  int row;
  int column;
  double value;
};

// Minimize cost over the columns. The first rows are those of demand, one for each amount of it:
// the terms sum to at least that amount, or to the amount itself. The others sum to at most a
// limit.
struct Problem {
  std::vector<Column> columns;
  std::vector<Term> terms;
  std::vector<double> demand;
  bool demandIsExact = false;
  std::vector<double> limits;

  [[nodiscard]] int rowCount() const { return static_cast<int>(demand.size() + limits.size()); }
  // The demand of a step: each amount off by up to `spread` of itself, the same for the same step.
  [[nodiscard]] std::vector<double> demandOf(int step, double spread) const;
};

// `rows` rows; the data are the same for the same arguments.

// A sparse transport problem: every target is served by six of the sources, a fifth of the rows,
// at a cost. The sources can deliver `slack` times the demand.
Problem transport(int rows, double slack);

// A production plan over 24 periods: items are made on four machines that are short in some
// periods, kept in stock, or bought at a price.
Problem planning(int rows);

}  // namespace bench

#endif  // ZTB_BENCH_PROBLEM_H_
