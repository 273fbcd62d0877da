// Live steps of a model as it stands: data in, solve, levels out; the C++ side of live_steps.py.
//
//   ztb_live_steps MODEL STEPS WAY   prints the seconds of a step and the sum of the objectives
//
// WAY is how levels are read: "records", one after the other, or "cells", all at once.

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <stdexcept>
#include <string_view>
#include <vector>
#include <ztb/model.hpp>

namespace {

double processorSeconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

void run(const char* file, int steps, bool byRecords) {
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
  std::vector<double> cells(model.values("x").size());
  const double begin = processorSeconds();
  for (int step = 0; step < steps; ++step) {
    const double factor = 1 + 0.01 * (step % 20);
    demand.clear();
    for (std::size_t k = 0; k < keys.size(); ++k) demand.put({&keys[k], 1}, factor * base[k]);
    tie.update(columns, ztb::Action::fix, demand, ztb::Missing::base);
    tie.solve("clp");
    double levels = 0;
    if (byRecords) {
      for (const ztb::Record& record : x.records()) levels += record.level();
    } else {
      model.copyValues("x", cells);
      levels += cells.back();
    }
    sum += model.objective() + 0 * levels;
  }
  std::printf("%.9g %.12g\n", (processorSeconds() - begin) / steps, sum);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 4) throw std::invalid_argument("ztb_live_steps MODEL STEPS WAY");
    run(argv[1], std::atoi(argv[2]), std::string_view(argv[3]) == "records");
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
