#include "providers/model/solvers/choice_search.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

#include "providers/model/at.h"

namespace lomu {

namespace {

constexpr double kUnknown = std::numeric_limits<double>::infinity();
// As far as the check of a point lets a column be from 0.
constexpr double kZeroRoom = 1e-6;

// A choice that is made: its binary column of this number is 1, or the column keeps from the side.
struct Made {
  std::size_t choice;
  int binary;  // -1: none is 1
};

struct Part {
  std::vector<Made> made;
  double bound;  // no point of it has an objective below
};

class ChoiceSearch {
 public:
  ChoiceSearch(IntegerEngine& engine, const LinearForm& form, Watch& watch)
      : engine_(engine), form_(form), watch_(watch) {}

  void run(SolverResult& result) {
    // With a row for each choice, points of a part break choices in rare cases only.
    const bool partsMislead = std::any_of(form_.choices.begin(), form_.choices.end(),
                                          [](const Choice& choice) { return !choice.hasRow; });
    best_ = result;
    best_.outcome = Outcome::infeasible;
    best_.hasPoint = false;
    parts_.push_back({{}, -kUnknown});
    bool isFirst = true;
    while (!parts_.empty() && !isOver_) {
      const Part part = std::move(parts_.back());
      parts_.pop_back();
      if (isWorse(part.bound)) {
        closedBound_ = std::min(closedBound_, part.bound);
        continue;
      }
      if (partsMislead || !isFirst) watch_.tellOfPart(bestObjective_, openBound());
      isFirst = false;
      solve(part);
    }
    best_.iterations = iterations_;
    if (best_.hasPoint || isOver_)
      best_.bound = std::min({openBound(), closedBound_, bestObjective_});
    if (std::isinf(best_.bound)) best_.bound = -kUnknown;
    result = std::move(best_);
  }

 private:
  // Solves a part, and keeps its point or cuts it in further ones.
  void solve(const Part& part) {
    LinearForm form = form_;
    for (const Made& made : part.made) {
      if (made.binary < 0) {
        keepFromSide(form, form_.choices[made.choice]);
      } else {
        form.lower[at(made.binary)] = 1;
      }
    }
    if (form.boundsCross()) return;
    engine_.take(form);
    SolverResult found;
    found.begin(form.cost.size(), form.rowLower.size());
    found.iterations = iterations_;
    solveWithIntegers(engine_, form, watch_, found);
    iterations_ = found.iterations;
    best_.startTaken = best_.startTaken || found.startTaken;
    const std::size_t broken = found.hasPoint ? brokenChoice(form, found.level) : undecided(part);
    const double bound = std::max(part.bound, found.bound);
    if (found.outcome == Outcome::infeasible) return;
    if (found.outcome == Outcome::optimal && found.hasPoint) {
      if (broken == kNoChoice) return keep(found, bound);
      return cut(part, broken, std::isfinite(bound) ? bound : part.bound);
    }
    if (found.outcome == Outcome::unbounded && broken != kNoChoice)
      return cut(part, broken, -kUnknown);
    // No end, no time, or no answer: that of all of it.
    isOver_ = true;
    if (found.hasPoint && broken == kNoChoice) keep(found, bound);
    closedBound_ = std::min(closedBound_, bound);
    best_.outcome = found.outcome;
    best_.reason = found.reason;
    if (found.outcome == Outcome::unbounded || found.outcome == Outcome::failed) {
      best_.hasPoint = false;
    }
  }

  void keep(SolverResult& found, double bound) {
    closedBound_ = std::min(closedBound_, bound);
    const double objective =
        std::inner_product(form_.cost.begin(), form_.cost.end(), found.level.begin(), 0.0);
    if (objective >= bestObjective_) return;
    bestObjective_ = objective;
    const bool startTaken = best_.startTaken;
    best_ = std::move(found);
    best_.startTaken = startTaken;
  }

  // The part where a binary column is 1 comes first: most points are there.
  void cut(const Part& part, std::size_t choice, double bound) {
    const auto add = [&](int binary) {
      parts_.push_back({part.made, bound});
      parts_.back().made.push_back({choice, binary});
    };
    add(-1);
    for (const int binary : form_.choices[choice].binaries) add(binary);
  }

  [[nodiscard]] std::size_t undecided(const Part& part) const {
    for (std::size_t k = 0; k < form_.choices.size(); ++k) {
      const std::vector<int>& binaries = form_.choices[k].binaries;
      const auto decides = [&](const Made& made) {
        return made.choice == k ||
               std::find(binaries.begin(), binaries.end(), made.binary) != binaries.end();
      };
      if (!form_.choices[k].hasRow && std::none_of(part.made.begin(), part.made.end(), decides)) {
        return k;
      }
    }
    return kNoChoice;
  }

  [[nodiscard]] bool isWorse(double bound) const {
    return bound >= bestObjective_ - watch_.relativeGap() * std::abs(bestObjective_);
  }
  [[nodiscard]] double openBound() const {
    double bound = kUnknown;
    for (const Part& part : parts_) bound = std::min(bound, part.bound);
    return bound;
  }

  IntegerEngine& engine_;
  const LinearForm& form_;
  Watch& watch_;
  std::vector<Part> parts_;
  SolverResult best_;
  double bestObjective_ = kUnknown;
  double closedBound_ = kUnknown;
  double iterations_ = 0;
  bool isOver_ = false;
};

}  // namespace

std::size_t brokenChoice(const LinearForm& form, const std::vector<double>& level) {
  std::size_t worst = kNoChoice;
  double most = kZeroRoom;
  for (std::size_t k = 0; k < form.choices.size(); ++k) {
    const Choice& choice = form.choices[k];
    // One that was made is not made again, whatever rounding leaves.
    const bool isMade =
        choice.isAbove ? form.upper[at(choice.column)] <= 0 : form.lower[at(choice.column)] >= 0;
    const double beyond = (choice.isAbove ? 1 : -1) * level[at(choice.column)];
    const auto isOne = [&](int binary) { return level[at(binary)] > 0.5; };
    if (isMade || beyond <= most ||
        std::any_of(choice.binaries.begin(), choice.binaries.end(), isOne)) {
      continue;
    }
    worst = k;
    most = beyond;
  }
  return worst;
}

void keepFromSide(LinearForm& form, const Choice& choice) {
  double& bound = (choice.isAbove ? form.upper : form.lower)[at(choice.column)];
  bound = choice.isAbove ? std::min(bound, 0.0) : std::max(bound, 0.0);
}

void solveWithChoices(IntegerEngine& engine, const LinearForm& form, Watch& watch,
                      SolverResult& result) {
  if (form.choices.empty()) return solveWithIntegers(engine, form, watch, result);
  ChoiceSearch(engine, form, watch).run(result);
}

}  // namespace lomu
