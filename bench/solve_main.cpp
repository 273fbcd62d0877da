// Measures the main job - change data, solve again, read the solution back - beside the same loop
// written on the solver's own C++ interface. A step changes every demand; its unit is one solve.

#include <benchmark/benchmark.h>

#include <CLI/CLI.hpp>
#include <ClpSimplex.hpp>
#include <CoinPackedMatrix.hpp>
#include <array>
#include <cmath>
#include <exception>
#include <functional>
#include <iostream>
#include <limits>
#include <numeric>
#include <string>
#include <vector>
#include <ztb/model.hpp>

#include "bench/contest.h"
#include "bench/netlib_steps.h"
#include "bench/problem.h"
#include "bench/summary.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int cycle = 50;  // different steps

// How demands go in and levels come out.
enum class Way { arrays, records };

// The model with its demands as a parameter, tied to a database.
template <Way way>
class Tied {
 public:
  explicit Tied(const bench::Problem& problem)
      : model_(makeModel(problem)),
        database_(databaseOf(way == Way::arrays ? ztb::Store::vector : ztb::Store::map)),
        tie_(database_, model_),
        targets_(database_.addSet("targets", {"*"})),
        demand_(database_.addParameter("demand", {"*"})),
        x_(database_.symbol("x")),
        levels_(problem.columns.size()) {
    for (std::size_t t = 0; t < problem.demand.size(); ++t) {
      labels_.push_back(*database_.findLabel("t" + std::to_string(t)));
      targets_.putElement({&labels_.back(), 1}, nullptr);
    }
  }

  double step(const std::vector<double>& demand) {
    if constexpr (way == Way::arrays) {
      demand_.assignCube({&targets_, 1}, demand);
    } else {
      for (std::size_t t = 0; t < demand.size(); ++t) demand_.put({&labels_[t], 1}, demand[t]);
    }
    tie_.update(demand_, ztb::Action::fix, demand_, ztb::Missing::base);
    tie_.solve("clp");
    if constexpr (way == Way::arrays) {
      x_.copyValues(levels_);
      return std::accumulate(levels_.begin(), levels_.end(), 0.0);
    } else {
      double sum = 0;
      for (const ztb::Row& row : x_.rows()) sum += row.values[0];
      return sum;
    }
  }
  [[nodiscard]] double objective() const { return model_.objective(); }

 private:
  static ztb::Database databaseOf(ztb::Store store) {
    ztb::Database database;
    database.selectStore(store);
    return database;
  }
  static ztb::Model makeModel(const bench::Problem& problem) {
    ztb::Model model;
    const int type = problem.demandIsExact ? ztbRowEqual : ztbRowGreaterOrEqual;
    for (std::size_t t = 0; t < problem.demand.size(); ++t) {
      const std::string label = "[t" + std::to_string(t) + "]";
      const double amount = problem.demand[t];
      const int row = model.addRow("need" + label, type, 0);
      model.addTerm(row, model.addColumn("demand_var" + label, amount, amount), -1);
    }
    for (std::size_t l = 0; l < problem.limits.size(); ++l) {
      model.addRow("limit[l" + std::to_string(l) + "]", ztbRowLessOrEqual, problem.limits[l]);
    }
    std::vector<int> columns;
    for (const bench::Column& column : problem.columns) {
      const std::string name = "x[c" + std::to_string(columns.size()) + "]";
      columns.push_back(model.addColumn(name, column.lower, column.upper));
      model.addTerm(0, columns.back(), column.cost);
    }
    for (const bench::Term& term : problem.terms) {
      // Row 0 is the objective.
      model.addTerm(1 + term.row, columns[static_cast<std::size_t>(term.column)], term.value);
    }
    return model;
  }

  ztb::Model model_;
  ztb::Database database_;
  ztb::ModelTie tie_;
  ztb::Symbol targets_;
  ztb::Symbol demand_;
  ztb::Symbol x_;
  std::vector<int> labels_;
  std::vector<double> levels_;
};

// What Clp keeps from solve to solve: nothing, as it does when it is not told otherwise; or its
// factorization and all arrays whose data did not change.
enum class Keep { nothing = 0, work = 1 | 2 | 4 };

// The same on the solver's interface, demands as right-hand sides.
template <Keep keep>
class Direct {
 public:
  explicit Direct(const bench::Problem& problem) : problem_(problem) {
    std::vector<int> rowOf;
    std::vector<int> columnOf;
    std::vector<double> value;
    for (const bench::Term& term : problem.terms) {
      rowOf.push_back(term.row);
      columnOf.push_back(term.column);
      value.push_back(term.value);
    }
    std::vector<double> cost;
    std::vector<double> lower;
    std::vector<double> upper;
    for (const bench::Column& column : problem.columns) {
      cost.push_back(column.cost);
      lower.push_back(column.lower);
      upper.push_back(column.upper);
    }
    std::vector<double> rowLower(static_cast<std::size_t>(problem.rowCount()), -infinity);
    std::vector<double> rowUpper(problem.demand.size(), infinity);
    rowUpper.insert(rowUpper.end(), problem.limits.begin(), problem.limits.end());
    const CoinPackedMatrix matrix(true, rowOf.data(), columnOf.data(), value.data(),
                                  static_cast<int>(value.size()));
    solver_.setLogLevel(0);
    solver_.loadProblem(matrix, lower.data(), upper.data(), cost.data(), rowLower.data(),
                        rowUpper.data());
  }

  double step(const std::vector<double>& demand) {
    for (std::size_t t = 0; t < demand.size(); ++t) {
      solver_.setRowBounds(static_cast<int>(t), demand[t],
                           problem_.demandIsExact ? demand[t] : infinity);
    }
    solver_.dual(0, static_cast<int>(keep));
    const double* levels = solver_.primalColumnSolution();
    return std::accumulate(levels, levels + problem_.columns.size(), 0.0);
  }
  [[nodiscard]] double objective() const { return solver_.objectiveValue(); }

 private:
  const bench::Problem& problem_;
  ClpSimplex solver_;
};

// A family of problems, and by how much demands change from step to step.
struct Kind {
  std::string title;
  std::function<bench::Problem(int rows)> make;
  double spread;
};

std::vector<Kind> allKinds() {
  const auto withSlack = [](double slack) {
    return [slack](int rows) { return bench::transport(rows, slack); };
  };
  return {{"transport, room to spare, demands off by 10 %", withSlack(1.8), 0.1},
          {"transport, room to spare, demands off by 50 %", withSlack(1.8), 0.5},
          {"transport, tight, demands off by 50 %", withSlack(1.3), 0.5},
          {"planning, demands off by 2 %", bench::planning, 0.02},
          {"planning, demands off by 20 %", bench::planning, 0.2}};
}

template <class Loop>
void measure(benchmark::State& state, int rows, const Kind& kind) {
  const bench::Problem problem = kind.make(rows);
  std::vector<std::vector<double>> demands;
  for (int step = 0; step < cycle; ++step) demands.push_back(problem.demandOf(step, kind.spread));
  Loop loop(problem);
  loop.step(demands.back());
  std::size_t step = 0;
  for ([[maybe_unused]] auto iteration : state) {
    benchmark::DoNotOptimize(loop.step(demands[step++ % demands.size()]));
  }
  // Whoever reaches another objective is not measured.
  loop.step(demands.front());
  Direct<Keep::nothing> fresh(problem);
  fresh.step(demands.front());
  const double gap = std::abs(loop.objective() - fresh.objective());
  if (!(gap <= 1e-8 * std::abs(fresh.objective()))) state.SkipWithError("objectives differ");
  bench::countRecords(state, 1);
}

template <class Loop>
void registerLoop(const char* name, int rows, const Kind& kind) {
  const std::string title = kind.title + "/" + name + "/" + std::to_string(rows);
  benchmark::RegisterBenchmark(
      title.c_str(), [rows, kind](benchmark::State& state) { measure<Loop>(state, rows, kind); })
      ->Repetitions(5)
      ->MinTime(0.5);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app(
      "Update, solve and read back through ZTB beside the same loop on Clp's own interface, on\n"
      "problems of so many rows. A figure is the time of one step. Clp keeps nothing from solve "
      "to\n"
      "solve unless it is told to, which \"Clp kept\" does; \"by records\" changes and reads the\n"
      "data of ZTB one record after the other, on the tree map.");
  std::vector<int> rows = {1000, 2000, 5000};
  app.add_option("--rows", rows, "Constraint rows")
      ->delimiter(',')
      ->check(CLI::Range(100, 20000))
      ->capture_default_str();
  std::string filter = ".";
  app.add_option("--filter", filter, "Only the loops that match this regular expression")
      ->capture_default_str();
  std::string netlib;
  app.add_option("--netlib", netlib, "A folder of problems of the netlib collection, as .mps")
      ->check(CLI::ExistingDirectory);
  CLI11_PARSE(app, argc, argv);
  try {
    std::string program = "ztb_solve_bench";
    std::string filterOption = "--benchmark_filter=" + filter;
    // Repetitions of all loops are mixed, so that a change of the machine's speed meets each.
    std::string mixed = "--benchmark_enable_random_interleaving=true";
    std::array<char*, 3> arguments{program.data(), filterOption.data(), mixed.data()};
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    for (const Kind& kind : allKinds()) {
      for (const int r : rows) {
        registerLoop<Tied<Way::arrays>>(bench::ours, r, kind);
        registerLoop<Direct<Keep::nothing>>("Clp", r, kind);
        registerLoop<Direct<Keep::work>>("Clp kept", r, kind);
        registerLoop<Tied<Way::records>>("by records", r, kind);
      }
    }
    if (!netlib.empty()) bench::registerNetlibSteps(netlib);
    bench::SummaryReporter reporter(bench::ours);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
  } catch (const std::exception& e) {
    std::cerr << "ztb_solve_bench: " << e.what() << '\n';
    return 1;
  }
}
