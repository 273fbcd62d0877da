#include "bench/network.h"

#include <cstddef>
#include <numeric>
#include <random>

namespace bench {

namespace {

double uniform(std::mt19937& random, double low, double high) {
  return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
}

}  // namespace

Network::Network(int rows, double slack) : sources(rows / 5), targets(rows - rows / 5) {
  constexpr int arcsOfTarget = 6;
  std::mt19937 random(5);
  for (int t = 0; t < targets; ++t) demand.push_back(uniform(random, 5, 15));
  const double all = std::accumulate(demand.begin(), demand.end(), 0.0);
  capacity.assign(static_cast<std::size_t>(sources), slack * all / sources);
  for (int t = 0; t < targets; ++t) {
    // The first arc goes round the sources, so that each has its share and there is a solution.
    const int first = t % sources;
    for (int a = 0; a < arcsOfTarget; ++a) {
      const int step = a == 0 ? 0 : 1 + static_cast<int>(random() % 17) + 17 * (a - 1);
      arcs.push_back({(first + step) % sources, t, uniform(random, 1, 9)});
    }
  }
}

std::vector<double> Network::demandOf(int step, double spread) const {
  std::mt19937 random(static_cast<unsigned>(step) + 100);
  std::vector<double> changed = demand;
  for (double& amount : changed) amount *= uniform(random, 1 - spread, 1 + spread);
  return changed;
}

}  // namespace bench
