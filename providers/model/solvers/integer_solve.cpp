#include "providers/model/solvers/integer_solve.h"

#include <algorithm>
#include <cmath>

#include "providers/model/at.h"
#include "providers/model/solvers/choice_search.h"
#include "providers/model/solvers/claim_check.h"

namespace lomu {

namespace {

// A point of rational data that has integers and a direction without end, or none: without a cost,
// the search tells.
void decideUnbounded(IntegerEngine& engine, const LinearForm& form, Watch& watch,
                     SolverResult& result) {
  LinearForm noCost = form;
  std::fill(noCost.cost.begin(), noCost.cost.end(), 0.0);
  engine.take(noCost);
  const double before = result.iterations;
  engine.solveLinear(watch, result);
  result.iterations += before;
  if (result.outcome == Outcome::optimal) engine.searchIntegers(watch, result);
  result.rowRay.clear();
  result.columnRay.clear();
  if (result.outcome == Outcome::optimal) result.outcome = Outcome::unbounded;
  result.hasPoint = false;
}

// Whether the search stopped at a far end of its own making: the linear problem tells.
bool hasNoEnd(IntegerEngine& engine, const LinearForm& form, Watch& watch,
              const SolverResult& result) {
  if (runawayColumn(form.problem(), result.level) < 0) return false;
  SolverResult linear = result;
  engine.solveLinear(watch, linear);
  return linear.outcome == Outcome::unbounded;
}

Position positionOf(double level, double lower, double upper) {
  if (level <= lower) return Position::atLower;
  if (level >= upper) return Position::atUpper;
  return Position::superbasic;
}

void solveFixed(IntegerEngine& engine, const LinearForm& form, SolverResult& result) {
  LinearForm fixed = form;
  for (std::size_t j = 0; j < form.isInteger.size(); ++j) {
    if (form.isInteger[j] == 0) continue;
    const double level = std::max(form.lower[j], std::min(form.upper[j], result.level[j]));
    fixed.lower[j] = fixed.upper[j] = std::round(level);
  }
  for (const Choice& choice : form.choices) {
    const auto isOne = [&](int binary) { return fixed.lower[at(binary)] == 1; };
    if (std::any_of(choice.binaries.begin(), choice.binaries.end(), isOne)) continue;
    keepFromSide(fixed, choice);
  }
  SolverResult linear = result;
  engine.take(fixed);
  // The point is there, whatever the limits say; this only completes it.
  Watch unlimited{SolverLimits{}};
  engine.solveLinear(unlimited, linear);
  result.iterations += linear.iterations;
  const bool solved = linear.outcome == Outcome::optimal;
  if (solved) {
    result.level = linear.level;
    result.position = linear.position;
    result.rowMarginal = linear.rowMarginal;
    result.rowPosition = linear.rowPosition;
  } else {
    std::fill(result.rowMarginal.begin(), result.rowMarginal.end(), 0.0);
    std::fill(result.rowPosition.begin(), result.rowPosition.end(), Position::basic);
  }
  for (std::size_t j = 0; j < form.isInteger.size(); ++j) {
    if (solved && (form.isInteger[j] == 0 || result.position[j] == Position::basic)) continue;
    result.position[j] = positionOf(result.level[j], form.lower[j], form.upper[j]);
  }
}

}  // namespace

void solveWithIntegers(IntegerEngine& engine, const LinearForm& form, Watch& watch,
                       SolverResult& result) {
  if (form.hasIntegers && !engine.needsLinearFirst()) {
    engine.searchIntegers(watch, result);
    if (result.hasPoint && !hasNoEnd(engine, form, watch, result)) {
      if (brokenChoice(form, result.level) != kNoChoice) return;
      solveFixed(engine, form, result);
      return;
    }
    if (result.hasPoint) {
      decideUnbounded(engine, form, watch, result);
      return;
    }
    if (result.outcome != Outcome::infeasible && result.outcome != Outcome::failed) return;
  }
  const Outcome searched = result.outcome;
  const double iterations = result.iterations;
  engine.solveLinear(watch, result);
  result.iterations += iterations;
  if (!form.hasIntegers) return;
  if (result.outcome == Outcome::unbounded) {
    decideUnbounded(engine, form, watch, result);
    return;
  }
  result.hasPoint = false;
  if (result.outcome != Outcome::optimal) return;
  if (!engine.needsLinearFirst()) {
    result.outcome = searched;
    return;
  }
  engine.searchIntegers(watch, result);
  if (result.hasPoint) solveFixed(engine, form, result);
}

}  // namespace lomu
