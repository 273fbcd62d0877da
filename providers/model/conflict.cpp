#include "providers/model/conflict.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <memory>
#include <string>

#include "providers/model/at.h"
#include "providers/model/model_data.h"
#include "providers/model/model_error.h"
#include "providers/model/solver_library.h"

namespace lomu {

namespace {

using Clock = std::chrono::steady_clock;

// Bounds alone change between the solves here.
constexpr std::uint64_t kSameCoefficients = std::numeric_limits<std::uint64_t>::max();

// A search over integers that takes longer is given up; what it was to show then stays open.
constexpr double kSecondsOfSearch = 30;

// What is broken by less is within the solvers' tolerance.
constexpr double kBroken = 1e-7;

// A problem of one's own, whose bounds can be changed, and a solver that begins afresh each time.
class Trial {
 public:
  Trial(const SolverProblem& problem, const CatalogueRow& solver, const SolverLimits& limits,
        Clock::time_point end)
      : problem_(problem),
        lower(problem.lower, problem.lower + problem.columnCount),
        upper(problem.upper, problem.upper + problem.columnCount),
        rowLower(problem.rowLower, problem.rowLower + problem.rowCount),
        rowUpper(problem.rowUpper, problem.rowUpper + problem.rowCount),
        solver_(SolverLibrary::makeSolver(solver.library)),
        limits_(limits),
        end_(end) {
    problem_.coefficientsAsOf = kSameCoefficients;
    pointAtBounds();
  }
  Trial(const Trial&) = delete;
  Trial& operator=(const Trial&) = delete;

  void solve() {
    pointAtBounds();
    // Clp may end the process over a column that lost its bounds while the solver lived.
    std::string reason;
    const bool isTaken = solver_->load(problem_, reason);
    if (!isTaken && !wasTaken_) throw ModelError("cannot be explained: " + reason);
    result_.begin(lower.size(), rowLower.size());
    // Without a row that implied the bounds of a column of a set: what is left is not searched.
    if (!isTaken) {
      result_.outcome = Outcome::failed;
      return;
    }
    wasTaken_ = true;
    limits_.seconds = std::chrono::duration<double>(end_ - Clock::now()).count();
    if (problem_.hasIntegers != 0) limits_.seconds = std::min(limits_.seconds, kSecondsOfSearch);
    if (limits_.seconds <= 0) {
      result_.outcome = Outcome::timeLimit;
      return;
    }
    solver_->solve(limits_, result_);
  }

  [[nodiscard]] const SolverResult& result() const { return result_; }
  [[nodiscard]] const SolverProblem& problem() const { return problem_; }
  // Whether there is no point; false where that is not known, which `unknown` then tells.
  bool infeasible(bool& unknown) {
    solve();
    if (result_.outcome == Outcome::infeasible) return true;
    const bool feasible = result_.hasPoint || result_.outcome == Outcome::optimal ||
                          result_.outcome == Outcome::unbounded;
    unknown = unknown || !feasible;
    return false;
  }

 private:
  void pointAtBounds() {
    problem_.lower = lower.data();
    problem_.upper = upper.data();
    problem_.rowLower = rowLower.data();
    problem_.rowUpper = rowUpper.data();
  }

  SolverProblem problem_;

 public:
  std::vector<double> lower, upper, rowLower, rowUpper;

 private:
  std::unique_ptr<Solver> solver_;
  SolverLimits limits_;
  Clock::time_point end_;
  SolverResult result_;
  bool wasTaken_ = false;
};

// The problem with columns that break its rows at a cost of 1, a pair for each row that has sides.
class ElasticProblem {
 public:
  explicit ElasticProblem(const SolverProblem& problem)
      : start_(problem.start, problem.start + problem.columnCount + 1),
        rowOf_(problem.rowOf, problem.rowOf + start_.back()),
        value_(problem.value, problem.value + start_.back()),
        lower_(problem.lower, problem.lower + problem.columnCount),
        upper_(problem.upper, problem.upper + problem.columnCount),
        cost_(at(problem.columnCount), 0.0),
        problem_(problem) {
    for (int row = 0; row < problem.rowCount; ++row) {
      for (const double sign : {1.0, -1.0}) {
        const double side = sign > 0 ? problem.rowLower[row] : problem.rowUpper[row];
        if (std::isinf(side)) continue;
        rowOf_.push_back(row);
        value_.push_back(sign);
        start_.push_back(static_cast<int>(rowOf_.size()));
        lower_.push_back(0);
        upper_.push_back(kInfinity);
        cost_.push_back(1);
      }
    }
    noInteger_.assign(cost_.size(), 0);
    problem_.columnCount = static_cast<int>(cost_.size());
    problem_.cost = cost_.data();
    problem_.lower = lower_.data();
    problem_.upper = upper_.data();
    problem_.isInteger = noInteger_.data();
    problem_.hasIntegers = 0;
    problem_.start = start_.data();
    problem_.rowOf = rowOf_.data();
    problem_.value = value_.data();
    problem_.level = nullptr;
  }
  ElasticProblem(const ElasticProblem&) = delete;
  ElasticProblem& operator=(const ElasticProblem&) = delete;

  [[nodiscard]] const SolverProblem& problem() const { return problem_; }
  // The row that a column beyond those of the model breaks.
  [[nodiscard]] int rowOf(int column) const { return rowOf_[at(start_[at(column)])]; }

 private:
  std::vector<int> start_, rowOf_;
  std::vector<double> value_, lower_, upper_, cost_;
  std::vector<char> noInteger_;
  SolverProblem problem_;
};

// What a search has to look at beside rows and bounds.
std::string conditionOf(const SolverProblem& problem) {
  std::string text;
  const auto add = [&](bool has, const char* what) {
    if (has) text += (text.empty() ? "" : " and ") + std::string(what);
  };
  const char* const end = problem.isInteger + problem.columnCount;
  add(std::any_of(problem.isInteger, end, [](char flag) { return flag != 0; }),
      "columns that have to be integers");
  add(problem.isSemiContinuous != nullptr, "semi-continuous columns");
  add(problem.setCount > 0, "special ordered sets");
  return text;
}

class ConflictSearch {
 public:
  ConflictSearch(const SolverProblem& problem, const Catalogue& catalogue,
                 const SolverLimits& limits)
      : plain_(problem),
        noCost_(at(problem.columnCount), 0.0),
        noInteger_(at(problem.columnCount), 0),
        catalogue_(catalogue),
        limits_(limits),
        end_(Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                std::chrono::duration<double>(std::min(limits.seconds, 1e8)))) {
    plain_.cost = noCost_.data();
    plain_.level = nullptr;
    hasIntegers_ = problem.hasIntegers != 0;
  }
  ConflictSearch(const ConflictSearch&) = delete;
  ConflictSearch& operator=(const ConflictSearch&) = delete;

  Conflict run(int elasticRows) {
    SolverProblem relaxed = plain_;
    relaxed.isInteger = noInteger_.data();
    relaxed.hasIntegers = 0;
    // Columns that may be 0 beside their bounds are none of a linear problem.
    const bool hasRelaxation = plain_.isSemiContinuous == nullptr && plain_.setCount == 0;
    bool unknown = false;
    bool found = false;
    if (hasRelaxation) {
      begin(relaxed, "clp");
      found = trial_->infeasible(unknown);
    }
    if (!found && hasIntegers_ && !unknown) {
      conflict_.byIntegers = true;
      conflict_.condition = conditionOf(plain_);
      begin(plain_, "cbc");
      found = trial_->infeasible(unknown);
    }
    if (!found) {
      throw ModelError(unknown ? "whether there is a point that satisfies all rows and bounds was "
                                 "not found out within the limits"
                               : "there is a point that satisfies all rows and bounds: nothing is "
                                 "to be explained");
    }
    if (!conflict_.byIntegers && plain_.rowCount > elasticRows) filterElastically(relaxed);
    filterAll();
    if (holds()) return conflict_;
    throw ModelError(
        "solvers do not agree on whether there is a point that satisfies all rows and "
        "bounds");
  }

 private:
  void filterAll() {
    std::vector<ConflictMember> rows;
    for (int row = 0; row < plain_.rowCount; ++row) addRow(row, rows);
    filter(rows, 0, rows.size());
    std::vector<ConflictMember> bounds;
    for (int column = 0; column < plain_.columnCount; ++column) {
      // A search over integers without bounds may come to no end.
      if (conflict_.byIntegers && plain_.isInteger[column] != 0) continue;
      // Data that stand still in a product make it linear.
      if (isFactor(column) || needsBounds(column)) continue;
      addColumn(column, bounds);
    }
    filter(bounds, 0, bounds.size());
  }

  // Columns that may be 0 beside their bounds, and those of sets, are searched by their bounds.
  [[nodiscard]] bool needsBounds(int column) const {
    if (plain_.isSemiContinuous != nullptr && plain_.isSemiContinuous[column] != 0) return true;
    for (int s = 0; s < plain_.setCount; ++s) {
      const int* const members = plain_.setColumns + plain_.sets[s].first;
      const int* const end = members + plain_.sets[s].count;
      if (std::find(members, end, column) != end) return true;
    }
    return false;
  }

  // Whether a fresh solver says so too of what is left, or the time is over.
  [[nodiscard]] bool holds() {
    Trial fresh(trial_->problem(), solver(conflict_.byIntegers ? "cbc" : "clp"), limits_, end_);
    bool unknown = false;
    return fresh.infeasible(unknown) || unknown;
  }

  void begin(const SolverProblem& problem, const char* name) {
    trial_ = std::make_unique<Trial>(problem, solver(name), limits_, end_);
  }

  [[nodiscard]] const CatalogueRow& solver(const char* name) const {
    const CatalogueRow* row = catalogue_.row(catalogue_.number(name));
    if (row == nullptr) {
      throw ModelError(std::string("cannot be explained without the solver ") + name +
                       ", which the catalogue does not have");
    }
    return *row;
  }

  [[nodiscard]] bool isFactor(int column) const {
    return std::ranges::any_of(productsOf(plain_), [&](const SolverProduct& product) {
      return product.column1 == column || product.column2 == column;
    });
  }

  void addRow(int row, std::vector<ConflictMember>& members) const {
    const double low = trial_->rowLower[at(row)];
    const double high = trial_->rowUpper[at(row)];
    if (low == high) {
      members.push_back({ConflictPart::row, row});
      return;
    }
    if (!std::isinf(low)) members.push_back({ConflictPart::rowLower, row});
    if (!std::isinf(high)) members.push_back({ConflictPart::rowUpper, row});
  }

  void addColumn(int column, std::vector<ConflictMember>& members) const {
    const double low = trial_->lower[at(column)];
    const double high = trial_->upper[at(column)];
    if (low == high) {
      members.push_back({ConflictPart::column, column});
      return;
    }
    if (!std::isinf(low)) members.push_back({ConflictPart::columnLower, column});
    if (!std::isinf(high)) members.push_back({ConflictPart::columnUpper, column});
  }

  // Takes a member out of the problem, or puts it back.
  void set(const ConflictMember& member, bool in) {
    const auto k = at(member.number);
    const bool ofRow = member.part <= ConflictPart::rowUpper;
    double& low = ofRow ? trial_->rowLower[k] : trial_->lower[k];
    double& high = ofRow ? trial_->rowUpper[k] : trial_->upper[k];
    const bool lowCounts =
        member.part != ConflictPart::rowUpper && member.part != ConflictPart::columnUpper;
    const bool highCounts =
        member.part != ConflictPart::rowLower && member.part != ConflictPart::columnLower;
    if (lowCounts) low = !in ? -kInfinity : ofRow ? plain_.rowLower[k] : plain_.lower[k];
    if (highCounts) high = !in ? kInfinity : ofRow ? plain_.rowUpper[k] : plain_.upper[k];
  }

  // Leaves out of the problem what of members[begin, end) it does without. The problem has no
  // solution before and after.
  void filter(const std::vector<ConflictMember>& members, std::size_t begin, std::size_t end) {
    if (begin == end) return;
    for (std::size_t k = begin; k < end; ++k) set(members[k], false);
    bool unknown = false;
    if (trial_->infeasible(unknown)) return;
    for (std::size_t k = begin; k < end; ++k) set(members[k], true);
    if (end - begin == 1 || Clock::now() >= end_) {
      conflict_.members.insert(conflict_.members.end(),
                               members.begin() + static_cast<std::ptrdiff_t>(begin),
                               members.begin() + static_cast<std::ptrdiff_t>(end));
      conflict_.irreducible = conflict_.irreducible && !unknown && end - begin == 1;
      return;
    }
    const std::size_t middle = begin + (end - begin) / 2;
    filter(members, begin, middle);
    filter(members, middle, end);
  }

  // Leaves out the rows that were in no cheapest point broken. All are kept where the filter comes
  // to no end.
  void filterElastically(const SolverProblem& relaxed) {
    const ElasticProblem elastic(relaxed);
    Trial trial(elastic.problem(), solver("clp"), limits_, end_);
    const int columns = relaxed.columnCount;
    std::vector<char> kept(at(relaxed.rowCount), 0);
    for (;;) {
      trial.solve();
      if (trial.result().outcome == Outcome::infeasible) break;
      if (trial.result().outcome != Outcome::optimal) return;
      bool broken = false;
      for (int column = columns; column < elastic.problem().columnCount; ++column) {
        if (trial.result().level[at(column)] > kBroken) {
          kept[at(elastic.rowOf(column))] = 1;
          broken = true;
        }
      }
      if (!broken) return;
      for (int column = columns; column < elastic.problem().columnCount; ++column) {
        if (kept[at(elastic.rowOf(column))] != 0) trial.upper[at(column)] = 0;
      }
    }
    for (int row = 0; row < relaxed.rowCount; ++row) {
      if (kept[at(row)] == 0) set({ConflictPart::row, row}, false);
    }
    bool unknown = false;
    if (trial_->infeasible(unknown)) return;
    for (int row = 0; row < relaxed.rowCount; ++row) set({ConflictPart::row, row}, true);
  }

  SolverProblem plain_;  // with the bounds of the caller
  std::vector<double> noCost_;
  std::vector<char> noInteger_;
  bool hasIntegers_ = false;
  const Catalogue& catalogue_;
  SolverLimits limits_;
  Clock::time_point end_;
  std::unique_ptr<Trial> trial_;  // with the members that are left
  Conflict conflict_;
};

}  // namespace

Conflict findConflict(const SolverProblem& problem, const Catalogue& catalogue,
                      const SolverLimits& limits, int elasticRows) {
  return ConflictSearch(problem, catalogue, limits).run(elasticRows);
}

}  // namespace lomu
