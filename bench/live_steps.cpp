// Live steps of a model as it stands: data in, solve, levels out; the C++ side of live_steps.py.
//
//   ztb_live_steps MODEL STEPS      prints the seconds of a step and the sum of the objectives

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <vector>
#include <ztb/model.hpp>

namespace {

void run(const char* file, int steps) {
  ztb::Model model = ztb::Model::open(file);
  model.drive("demand(target) = rhs of demand");
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  std::vector<int> keys;
  std::vector<double> base;
  ztb::Symbol columns = database.symbol("demand_var");
  for (ztb::Record& record : columns.records()) {
    keys.push_back(*database.findLabel(record.key(0).view()));
    base.push_back(record.level());
  }
  ztb::Symbol demand = database.addParameter("values", {"*"});
  const ztb::Symbol x = database.symbol("x");
  tie.solve("clp");

  double sum = 0;
  const auto begin = std::chrono::steady_clock::now();
  for (int step = 0; step < steps; ++step) {
    const double factor = 1 + 0.01 * (step % 20);
    demand.clear();
    for (std::size_t k = 0; k < keys.size(); ++k) demand.put({&keys[k], 1}, factor * base[k]);
    tie.update(columns, ztb::Action::fix, demand, ztb::Missing::base);
    tie.solve("clp");
    double levels = 0;
    for (const ztb::Record& record : x.records()) levels += record.level();
    sum += model.objective() + 0 * levels;
  }
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
  std::printf("%.9g %.12g\n", time.count() / steps, sum);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 3) throw std::invalid_argument("ztb_live_steps MODEL STEPS");
    run(argv[1], std::atoi(argv[2]));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
