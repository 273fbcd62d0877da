#include "bench/netlib_steps.h"

#include <benchmark/benchmark.h>

#include <ClpSimplex.hpp>
#include <CoinPackedMatrix.hpp>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>
#include <ztb/model.hpp>

#include "bench/contest.h"

namespace bench {

namespace {

constexpr int kSteps = 50;
constexpr double kSpreadOfCosts = 0.1;
constexpr double kSpreadOfSides = 0.02;

// What changes.
struct Data {
  std::vector<double> costs;
  std::vector<double> sides;  // of rows
};

// A problem as Clp reads it, whose rows have one side each.
struct NetlibProblem {
  std::string name;
  ClpSimplex clp;
  std::vector<int> rowTypes;
  Data base;
  std::vector<Data> steps;
};

// Sets the sides of all rows.
void setSides(ClpSimplex& clp, const std::vector<int>& types, const std::vector<double>& sides) {
  const double infinity = COIN_DBL_MAX;
  for (std::size_t i = 0; i < sides.size(); ++i) {
    clp.setRowBounds(static_cast<int>(i), types[i] == ztbRowLessOrEqual ? -infinity : sides[i],
                     types[i] == ztbRowGreaterOrEqual ? infinity : sides[i]);
  }
}

double solvedFresh(const NetlibProblem& problem, const Data& data) {
  ClpSimplex clp(problem.clp);
  clp.chgObjCoefficients(data.costs.data());
  setSides(clp, problem.rowTypes, data.sides);
  clp.allSlackBasis(true);
  clp.dual();
  return clp.status() == 0 ? clp.objectiveValue() : HUGE_VAL;
}

void readRows(NetlibProblem& problem) {
  const ClpSimplex& clp = problem.clp;
  for (int i = 0; i < clp.numberRows(); ++i) {
    const double lower = clp.rowLower()[i];
    const double upper = clp.rowUpper()[i];
    const bool hasLower = lower > -COIN_DBL_MAX;
    const bool hasUpper = upper < COIN_DBL_MAX;
    if (hasLower && hasUpper && lower != upper) {
      throw std::runtime_error(problem.name + " has a row with two sides");
    }
    problem.rowTypes.push_back(hasLower ? hasUpper ? ztbRowEqual : ztbRowGreaterOrEqual
                                        : ztbRowLessOrEqual);
    problem.base.sides.push_back(hasLower ? lower : upper);
  }
}

std::shared_ptr<const NetlibProblem> readProblem(const std::filesystem::path& file) {
  auto problem = std::make_shared<NetlibProblem>();
  problem->name = file.stem().string();
  problem->clp.setLogLevel(0);
  if (problem->clp.readMps(file.c_str()) != 0) {
    throw std::runtime_error("Clp cannot read " + file.string());
  }
  readRows(*problem);
  const double* const costs = problem->clp.objective();
  problem->base.costs.assign(costs, costs + problem->clp.numberColumns());
  std::mt19937 random(3);
  const auto scatter = [&](std::vector<double>& values, double spread) {
    for (double& v : values) v *= 1 + spread * (2.0 * random() / 4294967295.0 - 1);
  };
  for (int tried = 0; problem->steps.size() < kSteps; ++tried) {
    if (tried > 100 * kSteps) throw std::runtime_error(problem->name + " has too few solutions");
    Data data = problem->base;
    scatter(data.costs, kSpreadOfCosts);
    // Where data of all rows leave none, those of every second step stay.
    if (tried % 2 == 0) scatter(data.sides, kSpreadOfSides);
    if (std::isfinite(solvedFresh(*problem, data))) problem->steps.push_back(std::move(data));
  }
  return problem;
}

class TiedNetlib {
 public:
  explicit TiedNetlib(const NetlibProblem& problem)
      : model_(makeModel(problem)),
        database_(vectors()),
        tie_(database_, model_),
        columns_(database_.addSet("columns", {"*"})),
        rows_(database_.addSet("rows", {"*"})),
        cost_(database_.addParameter("cost", {"*"})),
        side_(database_.addParameter("side", {"*"})),
        x_(database_.symbol("x")),
        levels_(problem.base.costs.size()) {
    fill(columns_, "c", problem.base.costs.size());
    fill(rows_, "r", problem.base.sides.size());
  }

  double step(const Data& data) {
    cost_.assignCube({&columns_, 1}, data.costs);
    side_.assignCube({&rows_, 1}, data.sides);
    tie_.update(cost_, ztb::Action::fix, cost_, ztb::Missing::zero);
    tie_.update(side_, ztb::Action::fix, side_, ztb::Missing::zero);
    tie_.solve("clp");
    x_.copyValues(levels_);
    benchmark::DoNotOptimize(std::accumulate(levels_.begin(), levels_.end(), 0.0));
    return model_.objective();
  }

 private:
  static ztb::Database vectors() {
    ztb::Database database;
    database.selectStore(ztb::Store::vector);
    return database;
  }
  void fill(ztb::Symbol& set, const std::string& letter, std::size_t count) {
    for (std::size_t k = 0; k < count; ++k) {
      const int label = *database_.findLabel(letter + std::to_string(k));
      set.putElement({&label, 1}, nullptr);
    }
  }
  static ztb::Model makeModel(const NetlibProblem& problem) {
    ztb::Model model;
    const ClpSimplex& clp = problem.clp;
    model.setObjective("total", false, -clp.objectiveOffset());
    for (std::size_t i = 0; i < problem.rowTypes.size(); ++i) {
      model.addRow("row[r" + std::to_string(i) + "]", problem.rowTypes[i], problem.base.sides[i]);
    }
    const CoinPackedMatrix& matrix = *clp.matrix();
    for (int j = 0; j < clp.numberColumns(); ++j) {
      const double lower = clp.columnLower()[j];
      const double upper = clp.columnUpper()[j];
      const int column = model.addColumn("x[c" + std::to_string(j) + "]",
                                         lower > -COIN_DBL_MAX ? lower : -HUGE_VAL,
                                         upper < COIN_DBL_MAX ? upper : HUGE_VAL);
      model.addTerm(0, column, clp.objective()[j]);
      const CoinBigIndex end = matrix.getVectorStarts()[j] + matrix.getVectorLengths()[j];
      for (CoinBigIndex e = matrix.getVectorStarts()[j]; e < end; ++e) {
        model.addTerm(1 + matrix.getIndices()[e], column, matrix.getElements()[e]);
      }
    }
    model.drive("cost(c) = cost of x");
    model.drive("side(r) = rhs of row");
    return model;
  }

  ztb::Model model_;
  ztb::Database database_;
  ztb::ModelTie tie_;
  ztb::Symbol columns_;
  ztb::Symbol rows_;
  ztb::Symbol cost_;
  ztb::Symbol side_;
  ztb::Symbol x_;
  std::vector<double> levels_;
};

// With all that Clp can keep.
class KeptNetlib {
 public:
  explicit KeptNetlib(const NetlibProblem& problem)
      : clp_(problem.clp), rowTypes_(problem.rowTypes) {}

  double step(const Data& data) {
    constexpr int keepAll = 1 | 2 | 4;
    clp_.chgObjCoefficients(data.costs.data());
    setSides(clp_, rowTypes_, data.sides);
    clp_.dual(0, keepAll);
    const double* const levels = clp_.primalColumnSolution();
    benchmark::DoNotOptimize(std::accumulate(levels, levels + data.costs.size(), 0.0));
    return clp_.objectiveValue();
  }

 private:
  ClpSimplex clp_;
  std::vector<int> rowTypes_;
};

using Problems = std::vector<std::shared_ptr<const NetlibProblem>>;

template <class Loop>
void measure(benchmark::State& state, const Problems& problems) {
  std::vector<std::unique_ptr<Loop>> loops;
  for (const auto& problem : problems) {
    loops.push_back(std::make_unique<Loop>(*problem));
    loops.back()->step(problem->steps.back());
  }
  std::size_t step = 0;
  for ([[maybe_unused]] auto iteration : state) {
    for (std::size_t p = 0; p < problems.size(); ++p) {
      benchmark::DoNotOptimize(loops[p]->step(problems[p]->steps[step % kSteps]));
    }
    ++step;
  }
  // Whoever reaches another objective is not measured.
  for (std::size_t p = 0; p < problems.size(); ++p) {
    for (const Data& data : problems[p]->steps) {
      const double fresh = solvedFresh(*problems[p], data);
      const double gap = std::abs(loops[p]->step(data) - fresh);
      if (!(gap <= 1e-6 * std::max(1.0, std::abs(fresh)))) {
        state.SkipWithError(("objectives differ on " + problems[p]->name).c_str());
      }
    }
  }
  countRecords(state, 1);
}

template <class Loop>
void registerLoop(const std::string& name, const std::string& contestant,
                  const Problems& problems) {
  const std::string title = "netlib: " + name + "/" + contestant + "/1";
  benchmark::RegisterBenchmark(
      title.c_str(), [problems](benchmark::State& state) { measure<Loop>(state, problems); })
      ->Repetitions(5)
      ->MinTime(0.5);
}

void registerBoth(const std::string& name, const Problems& problems) {
  registerLoop<TiedNetlib>(name, ours, problems);
  registerLoop<KeptNetlib>(name, "Clp kept", problems);
}

}  // namespace

void registerNetlibSteps(const std::string& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".mps") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  Problems all;
  for (const std::filesystem::path& file : files) {
    all.push_back(readProblem(file));
    registerBoth(all.back()->name, {all.back()});
  }
  registerBoth("all of them", all);
}

}  // namespace bench
