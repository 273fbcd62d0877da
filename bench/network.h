// A sparse transport problem: every target is served by a few sources at a cost, within the
// sources' capacities. What changes from solve to solve is the demand of the targets.
#ifndef ZTB_BENCH_NETWORK_H_
#define ZTB_BENCH_NETWORK_H_

#include <string>
#include <vector>

namespace bench {

struct Arc {
  int source;
  int target;
  double cost;
};

struct Network {
  int sources;
  int targets;
  std::vector<double> capacity;
  std::vector<double> demand;
  std::vector<Arc> arcs;

  // `rows` constraints in all: a fifth are sources, which can deliver `slack` times the demand. The
  // data are the same for the same arguments.
  Network(int rows, double slack);

  // The demands of a step: each off by up to `spread` of itself, the same for the same step.
  [[nodiscard]] std::vector<double> demandOf(int step, double spread) const;
};

}  // namespace bench

#endif  // ZTB_BENCH_NETWORK_H_
