#include "providers/model/conflict.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "providers/model/at.h"
#include "providers/model/conflict_trial.h"
#include "providers/model/elastic_problem.h"
#include "providers/model/model_data.h"
#include "providers/model/model_error.h"
#include "providers/model/problem_part.h"
#include "providers/model/solvers/claim_check.h"
#include "providers/model/solvers/linear_form.h"

namespace lomu {

namespace {

using Clock = Trial::Clock;

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
        isFactor_(at(problem.columnCount), 0),
        catalogue_(catalogue),
        limits_(limits),
        end_(Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                std::chrono::duration<double>(std::min(limits.seconds, 1e8)))) {
    plain_.cost = noCost_.data();
    plain_.level = nullptr;
    hasIntegers_ = problem.hasIntegers != 0;
    for (const SolverProduct& product : productsOf(problem)) {
      isFactor_[at(product.column1)] = isFactor_[at(product.column2)] = 1;
    }
  }
  ConflictSearch(const ConflictSearch&) = delete;
  ConflictSearch& operator=(const ConflictSearch&) = delete;

  Conflict run() {
    SolverProblem relaxed = plain_;
    relaxed.isInteger = noInteger_.data();
    relaxed.hasIntegers = 0;
    // Products with data that stand still are coefficients; others the solver refuses.
    LinearForm form;
    std::string reason;
    if (relaxed.productCount > 0 && form.take(relaxed, reason)) relaxed = form.problem();
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
    if (!conflict_.byIntegers && (keep(elasticProof()) || keep(trial_->result().rowRay))) {
      filterByProofs();
    } else {
      filterByHalves();
    }
    if (holds()) return toldOfTheWhole();
    throw ModelError(
        "solvers do not agree on whether there is a point that satisfies all rows and "
        "bounds");
  }

 private:
  // All rows, and all columns whose bounds may be left out.
  [[nodiscard]] std::vector<ConflictMember> allRows() const {
    std::vector<ConflictMember> rows;
    for (int row = 0; row < plain_.rowCount; ++row) addRow(row, rows);
    return rows;
  }
  [[nodiscard]] std::vector<ConflictMember> allBounds() const {
    std::vector<ConflictMember> bounds;
    for (int column = 0; column < plain_.columnCount; ++column) {
      // A search over integers without bounds may come to no end.
      if (conflict_.byIntegers && plain_.isInteger[column] != 0) continue;
      // Data that stand still in a product make it linear.
      if (isFactor_[at(column)] != 0) continue;
      addColumn(column, bounds);
    }
    return bounds;
  }

  void filterByHalves() {
    const std::vector<ConflictMember> rows = allRows();
    filter(rows, 0, rows.size());
    const std::vector<ConflictMember> bounds = allBounds();
    filter(bounds, 0, bounds.size());
  }

  // Weights of the rows that are broken most; empty where the solver came to no end.
  [[nodiscard]] std::vector<double> elasticProof() const {
    const ElasticProblem elastic(trial_->problem());
    Trial trial(elastic.problem(), solver("clp"), limits_, end_);
    trial.solve();
    if (trial.result().outcome != Outcome::optimal) return {};
    return elastic.weights(trial.result().rowMarginal);
  }

  // Makes the problem what a proof rests on; false, with nothing done, for what is none.
  bool keep(const std::vector<double>& proof) {
    std::vector<ConflictMember> members = allRows();
    const std::vector<ConflictMember> bounds = allBounds();
    members.insert(members.end(), bounds.begin(), bounds.end());
    std::vector<char> isIn(members.size(), 1);
    if (!narrow(proof, members, isIn, 0)) return false;
    std::vector<char> rows(at(plain_.rowCount), 0);
    std::vector<char> columns(at(plain_.columnCount), 0);
    for (std::size_t k = 0; k < members.size(); ++k) {
      if (isIn[k] == 0) continue;
      (members[k].part <= ConflictPart::rowUpper ? rows : columns)[at(members[k].number)] = 1;
    }
    part_ = std::make_unique<ProblemPart>(trial_->problem(), rows, columns);
    std::vector<char> factors;
    for (const int column : part_->columns()) factors.push_back(isFactor_[at(column)]);
    isFactor_ = std::move(factors);
    plain_ = part_->problem();
    begin(plain_, "clp");
    return true;
  }

  // Leaves out of the problem what a proof does not rest on. The first `needed` members stay in.
  // False, with nothing done, for what is none.
  bool narrow(const std::vector<double>& proof, const std::vector<ConflictMember>& members,
              std::vector<char>& isIn, std::size_t needed) {
    const std::optional<ProofParts> parts = partsOfProof(trial_->problem(), proof);
    if (!parts) return false;
    std::vector<std::size_t> idle;
    for (std::size_t k = 0; k < members.size(); ++k) {
      if (isIn[k] == 0 || restsOn(*parts, members[k])) continue;
      if (k >= needed) idle.push_back(k);
    }
    for (const std::size_t k : idle) set(members[k], false);
    const bool holds = provesInfeasible(trial_->problem(), proof);
    for (const std::size_t k : idle) {
      if (holds) isIn[k] = 0;
      if (!holds) set(members[k], true);
    }
    return holds;
  }

  static bool restsOn(const ProofParts& parts, const ConflictMember& member) {
    const auto k = at(member.number);
    switch (member.part) {
      case ConflictPart::row:
        return parts.rowLower[k] != 0 || parts.rowUpper[k] != 0;
      case ConflictPart::rowLower:
        return parts.rowLower[k] != 0;
      case ConflictPart::rowUpper:
        return parts.rowUpper[k] != 0;
      case ConflictPart::column:
        return parts.lower[k] != 0 || parts.upper[k] != 0;
      case ConflictPart::columnLower:
        return parts.lower[k] != 0;
      default:
        return parts.upper[k] != 0;
    }
  }

  // Leaves out one member after the other, and with each that is not needed all that the proof
  // without it does not rest on.
  void filterByProofs() {
    std::vector<ConflictMember> members = allRows();
    const std::vector<ConflictMember> bounds = allBounds();
    members.insert(members.end(), bounds.begin(), bounds.end());
    std::vector<char> isIn(members.size(), 1);
    for (std::size_t k = 0; k < members.size(); ++k) {
      if (isIn[k] == 0) continue;
      set(members[k], false);
      bool unknown = Clock::now() >= end_;
      if (!unknown && trial_->infeasible(unknown)) {
        isIn[k] = 0;
        narrow(trial_->result().rowRay, members, isIn, k);
        continue;
      }
      set(members[k], true);
      conflict_.irreducible = conflict_.irreducible && !unknown;
    }
    for (std::size_t k = 0; k < members.size(); ++k) {
      if (isIn[k] != 0) conflict_.members.push_back(members[k]);
    }
  }

  // With the numbers of the problem of the caller.
  [[nodiscard]] Conflict toldOfTheWhole() const {
    Conflict told = conflict_;
    if (part_ == nullptr) return told;
    for (ConflictMember& member : told.members) {
      const bool ofRow = member.part <= ConflictPart::rowUpper;
      member.number = (ofRow ? part_->rows() : part_->columns())[at(member.number)];
    }
    return told;
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

  SolverProblem plain_;  // with the bounds of the caller, or what a proof needs of them
  std::unique_ptr<ProblemPart> part_;  // that is, this part
  std::vector<double> noCost_;
  std::vector<char> noInteger_;
  std::vector<char> isFactor_;  // of a product, a flag a column
  bool hasIntegers_ = false;
  const Catalogue& catalogue_;
  SolverLimits limits_;
  Clock::time_point end_;
  std::unique_ptr<Trial> trial_;  // with the members that are left
  Conflict conflict_;
};

}  // namespace

Conflict findConflict(const SolverProblem& problem, const Catalogue& catalogue,
                      const SolverLimits& limits) {
  return ConflictSearch(problem, catalogue, limits).run();
}

}  // namespace lomu
