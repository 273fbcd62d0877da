// Measures the main job - change data, solve again, read the solution back - beside the same loop
// written on the solver's own C++ interface. A step changes every demand; its unit is one solve.

#include <benchmark/benchmark.h>

#include <CLI/CLI.hpp>
#include <ClpSimplex.hpp>
#include <CoinPackedMatrix.hpp>
#include <array>
#include <cmath>
#include <exception>
#include <iostream>
#include <limits>
#include <string>
#include <vector>
#include <ztb/model.hpp>

#include "bench/contest.h"
#include "bench/network.h"
#include "bench/summary.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int cycle = 50;  // different steps

// The model with its demands as a parameter, tied to a database.
class Tied {
 public:
  explicit Tied(const bench::Network& network)
      : model_(makeModel(network)),
        database_(databaseOfVectors()),
        tie_(database_, model_),
        demand_(demandParameter(database_)),
        ship_(database_.symbol("ship")) {
    for (int t = 0; t < network.targets; ++t) {
      targets_.push_back(*database_.findLabel("t" + std::to_string(t)));
    }
  }

  double step(const std::vector<double>& demand) {
    for (std::size_t t = 0; t < demand.size(); ++t) {
      demand_.put({&targets_[t], 1}, demand[t]);
    }
    tie_.update(demand_, ztb::Action::fix, demand_, ztb::Missing::base);
    tie_.solve("clp");
    double sum = 0;
    for (const ztb::Row& row : ship_.rows()) sum += row.values[0];
    return sum;
  }
  [[nodiscard]] double objective() const { return model_.objective(); }

 private:
  // Solutions come in key order and are only read.
  static ztb::Database databaseOfVectors() {
    ztb::Database database;
    database.selectStore(ztb::Store::vector);
    return database;
  }
  // Demands are overwritten, which wants the tree map.
  static ztb::Symbol demandParameter(ztb::Database& database) {
    database.selectStore(ztb::Store::map);
    return database.addParameter("demand", {"*"});
  }
  static ztb::Model makeModel(const bench::Network& network) {
    ztb::Model model;
    for (int s = 0; s < network.sources; ++s) {
      model.addRow("supply[s" + std::to_string(s) + "]", ztbRowLessOrEqual,
                   network.capacity[static_cast<std::size_t>(s)]);
    }
    for (int t = 0; t < network.targets; ++t) {
      const std::string label = "[t" + std::to_string(t) + "]";
      const double amount = network.demand[static_cast<std::size_t>(t)];
      const int row = model.addRow("need" + label, ztbRowGreaterOrEqual, 0);
      model.addTerm(row, model.addColumn("demand_var" + label, amount, amount), -1);
    }
    for (std::size_t a = 0; a < network.arcs.size(); ++a) {
      const bench::Arc& arc = network.arcs[a];
      const int column = model.addColumn("ship[a" + std::to_string(a) + "]", 0, infinity);
      model.addTerm(0, column, arc.cost);
      model.addTerm(1 + arc.source, column, 1);
      model.addTerm(1 + network.sources + arc.target, column, 1);
    }
    return model;
  }

  ztb::Model model_;
  ztb::Database database_;
  ztb::ModelTie tie_;
  ztb::Symbol demand_;
  ztb::Symbol ship_;
  std::vector<int> targets_;
};

// The same on the solver's interface, demands as right-hand sides.
class Direct {
 public:
  explicit Direct(const bench::Network& network) : network_(network) {
    const int rows = network.sources + network.targets;
    std::vector<int> rowOf;
    std::vector<int> columnOf;
    std::vector<double> ones;
    std::vector<double> cost;
    for (std::size_t a = 0; a < network.arcs.size(); ++a) {
      for (const int row : {network.arcs[a].source, network.sources + network.arcs[a].target}) {
        rowOf.push_back(row);
        columnOf.push_back(static_cast<int>(a));
        ones.push_back(1);
      }
      cost.push_back(network.arcs[a].cost);
    }
    const CoinPackedMatrix matrix(true, rowOf.data(), columnOf.data(), ones.data(),
                                  static_cast<int>(ones.size()));
    std::vector<double> lower(static_cast<std::size_t>(rows), -infinity);
    std::vector<double> upper(static_cast<std::size_t>(rows), infinity);
    for (int s = 0; s < network.sources; ++s) {
      upper[static_cast<std::size_t>(s)] = network.capacity[static_cast<std::size_t>(s)];
    }
    const std::vector<double> zeros(network.arcs.size(), 0.0);
    const std::vector<double> none(network.arcs.size(), infinity);
    solver_.setLogLevel(0);
    solver_.loadProblem(matrix, zeros.data(), none.data(), cost.data(), lower.data(), upper.data());
  }

  double step(const std::vector<double>& demand) {
    for (std::size_t t = 0; t < demand.size(); ++t) {
      solver_.setRowLower(network_.sources + static_cast<int>(t), demand[t]);
    }
    solver_.dual();
    const double* levels = solver_.primalColumnSolution();
    double sum = 0;
    for (std::size_t a = 0; a < network_.arcs.size(); ++a) sum += levels[a];
    return sum;
  }
  [[nodiscard]] double objective() const { return solver_.objectiveValue(); }

 private:
  const bench::Network& network_;
  ClpSimplex solver_;
};

// How much the sources have to spare, and by how much demands change from step to step.
struct Kind {
  const char* title;
  double slack;
  double spread;
};

template <class Loop>
void measure(benchmark::State& state, int rows, const Kind& kind) {
  const bench::Network network(rows, kind.slack);
  std::vector<std::vector<double>> demands;
  for (int step = 0; step < cycle; ++step) demands.push_back(network.demandOf(step, kind.spread));
  Loop loop(network);
  loop.step(demands.back());
  std::size_t step = 0;
  for ([[maybe_unused]] auto iteration : state) {
    benchmark::DoNotOptimize(loop.step(demands[step++ % demands.size()]));
  }
  // Whoever reaches another objective is not measured.
  loop.step(demands.front());
  Direct fresh(network);
  fresh.step(demands.front());
  const double gap = std::abs(loop.objective() - fresh.objective());
  if (!(gap <= 1e-8 * std::abs(fresh.objective()))) state.SkipWithError("objectives differ");
  bench::countRecords(state, 1);
}

template <class Loop>
void registerLoop(const char* name, int rows, const Kind& kind) {
  const std::string title = std::string(kind.title) + "/" + name + "/" + std::to_string(rows);
  benchmark::RegisterBenchmark(
      title.c_str(), [rows, kind](benchmark::State& state) { measure<Loop>(state, rows, kind); })
      ->Repetitions(3)
      ->MinTime(1);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app(
      "Update, solve and read back through ZTB beside the same loop on Clp's own interface, on a\n"
      "transport problem of so many rows. A figure is the time of one step.");
  std::vector<int> rows = {1000, 2000, 5000};
  app.add_option("--rows", rows, "Constraint rows")
      ->delimiter(',')
      ->check(CLI::Range(100, 20000))
      ->capture_default_str();
  std::string filter = ".";
  app.add_option("--filter", filter, "Only the loops that match this regular expression")
      ->capture_default_str();
  CLI11_PARSE(app, argc, argv);
  try {
    std::string program = "ztb_solve_bench";
    std::string filterOption = "--benchmark_filter=" + filter;
    std::array<char*, 2> arguments{program.data(), filterOption.data()};
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    for (const Kind& kind : {Kind{"room to spare, demands off by 10 %", 1.8, 0.1},
                             Kind{"room to spare, demands off by 50 %", 1.8, 0.5},
                             Kind{"tight, demands off by 50 %", 1.3, 0.5}}) {
      for (const int r : rows) {
        registerLoop<Tied>(bench::ours, r, kind);
        registerLoop<Direct>("Clp", r, kind);
      }
    }
    bench::SummaryReporter reporter(bench::ours);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
  } catch (const std::exception& e) {
    std::cerr << "ztb_solve_bench: " << e.what() << '\n';
    return 1;
  }
}
