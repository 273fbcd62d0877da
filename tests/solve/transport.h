// A transport problem as a model: what the tests of repeated solves change and solve again.
//
//   min sum of cost_var(i,j) * ship(i,j), supply(i): at most, need(j): at least demand_var(j)
//
// Costs are columns that stand still at their bounds and multiply the shipments.
#ifndef ZTB_TESTS_SOLVE_TRANSPORT_H_
#define ZTB_TESTS_SOLVE_TRANSPORT_H_

#include <glpk.h>

#include <string>
#include <vector>
#include <ztb/model.hpp>

namespace solvetest {

struct Transport {
  int sources;
  int targets;
  std::vector<double> supply;
  std::vector<double> demand;
  std::vector<double> cost;  // sources * targets, row by row

  // Deterministic data; the supply is half as much again as the demand.
  Transport(int sourceCount, int targetCount);

  [[nodiscard]] double& costOf(int i, int j) { return cost[index(i, j)]; }
  [[nodiscard]] std::size_t index(int i, int j) const {
    return static_cast<std::size_t>(i) * static_cast<std::size_t>(targets) +
           static_cast<std::size_t>(j);
  }
  [[nodiscard]] ztb::Model model() const;

  struct Fresh {
    double objective;
    double iterations;
  };
  // The optimum by GLPK, from scratch.
  [[nodiscard]] Fresh solvedAfresh() const;
};

std::string source(int i);
std::string target(int j);

}  // namespace solvetest

#endif  // ZTB_TESTS_SOLVE_TRANSPORT_H_
