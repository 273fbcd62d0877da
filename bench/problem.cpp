#include "bench/problem.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <random>

namespace bench {

namespace {

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  double between(double low, double high) {
    return low + (high - low) * static_cast<double>(engine_()) / 4294967296.0;
  }
  int below(int count) { return static_cast<int>(engine_() % static_cast<unsigned>(count)); }

 private:
  std::mt19937 engine_;
};

}  // namespace

std::vector<double> Problem::demandOf(int step, double spread) const {
  Random random(static_cast<unsigned>(step) + 100);
  std::vector<double> changed = demand;
  for (double& amount : changed) amount *= random.between(1 - spread, 1 + spread);
  return changed;
}

Problem transport(int rows, double slack) {
  constexpr int arcsOfTarget = 6;
  Random random(5);
  Problem problem;
  const int sources = rows / 5;
  const int targets = rows - sources;
  for (int t = 0; t < targets; ++t) problem.demand.push_back(random.between(5, 15));
  const double all = std::accumulate(problem.demand.begin(), problem.demand.end(), 0.0);
  problem.limits.assign(static_cast<std::size_t>(sources), slack * all / sources);
  for (int t = 0; t < targets; ++t) {
    // The first arc goes round the sources, so that each has its share and there is a solution.
    const int first = t % sources;
    for (int a = 0; a < arcsOfTarget; ++a) {
      const int step = a == 0 ? 0 : 1 + random.below(17) + 17 * (a - 1);
      const int column = static_cast<int>(problem.columns.size());
      problem.columns.push_back({random.between(1, 9)});
      problem.terms.push_back({t, column, 1});
      problem.terms.push_back({targets + (first + step) % sources, column, 1});
    }
  }
  return problem;
}

Problem planning(int rows) {
  constexpr int periods = 24;
  constexpr int machines = 4;
  Random random(7);
  Problem problem;
  problem.demandIsExact = true;
  const int items = std::max(1, rows / periods - machines);
  std::vector<double> load(static_cast<std::size_t>(machines * periods));
  const auto add = [&](double cost) {
    problem.columns.push_back({cost});
    return static_cast<int>(problem.columns.size()) - 1;
  };
  for (int i = 0; i < items; ++i) {
    const double size = random.between(20, 100);
    const double season = random.between(0.1, 0.6);
    const int peak = random.below(periods);
    const double price = random.between(5, 20);
    std::vector<double> hours(machines);
    for (double& h : hours) h = random.below(2) == 0 ? 0 : random.between(0.2, 2);
    int kept = -1;
    for (int t = 0; t < periods; ++t) {
      const int balance = i * periods + t;
      const double amount = size * (1 + season * std::cos(2 * 3.14159265358979 * (t - peak) / 12));
      problem.demand.push_back(amount);
      if (kept >= 0) problem.terms.push_back({balance, kept, 1});
      const int make = add(price * random.between(0.95, 1.05));
      const int buy = add(price * random.between(1.5, 2));
      kept = add(price * 0.02);
      problem.terms.push_back({balance, make, 1});
      problem.terms.push_back({balance, buy, 1});
      problem.terms.push_back({balance, kept, -1});
      for (int m = 0; m < machines; ++m) {
        const double h = hours[static_cast<std::size_t>(m)];
        if (h == 0) continue;
        problem.terms.push_back({items * periods + m * periods + t, make, h});
        load[static_cast<std::size_t>(m * periods + t)] += h * amount;
      }
    }
  }
  // What a machine can do is what it would have to do on the average.
  for (int m = 0; m < machines; ++m) {
    const auto begin = load.begin() + m * periods;
    const double mean = std::accumulate(begin, begin + periods, 0.0) / periods;
    for (int t = 0; t < periods; ++t) problem.limits.push_back(random.between(0.85, 1.05) * mean);
  }
  return problem;
}

}  // namespace bench
