// What Clp is told for a solve, by what it does: its iterations beside those of Clp used by itself,
// and whether it looks at the scale of the coefficients.
#include <gtest/gtest.h>

#include <ClpSimplex.hpp>
#include <ClpSolve.hpp>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "providers/model/solvers/clp_program.h"
#include "tests/solvers/small_model.h"

namespace ztbtest {
namespace {

using lomu::ClpProgram;
using lomu::LinearForm;
using lomu::Outcome;
using lomu::SolverResult;

LinearForm formOf(SmallModel& model) {
  LinearForm form;
  std::string reason;
  EXPECT_TRUE(form.take(model.problem(), reason)) << reason;
  return form;
}

SolverResult solved(ClpProgram& program) {
  lomu::Watch watch{lomu::SolverLimits()};
  SolverResult result;
  result.begin(static_cast<std::size_t>(program.form().columnCount),
               static_cast<std::size_t>(program.form().rowCount));
  program.solve(watch, result);
  EXPECT_EQ(result.outcome, Outcome::optimal) << result.reason;
  return result;
}

// A cover of 400 elements by 800 sets, each of which has every 25th of them.
LinearForm cover(unsigned seed) {
  constexpr int kElements = 400;
  constexpr int kSets = 800;
  std::mt19937 random(seed);
  LinearForm form;
  form.columnCount = kSets;
  form.rowCount = kElements;
  form.start = {0};
  for (int j = 0; j < kSets; ++j) {
    for (int i = 0; i < kElements; ++i) {
      if (random() % 25 == 0) form.rowOf.push_back(i);
    }
    form.start.push_back(static_cast<int>(form.rowOf.size()));
    form.cost.push_back(1 + static_cast<double>(random() % 5));
  }
  form.value.assign(form.rowOf.size(), 1);
  form.lower.assign(kSets, 0);
  form.upper.assign(kSets, 1);
  form.isInteger.assign(kSets, 0);
  form.rowLower.assign(kElements, 1);
  form.rowUpper.assign(kElements, kInf);
  return form;
}

// The iterations of Clp by itself, which takes a matrix of ones for such or not.
double iterationsOfClp(const LinearForm& form, bool seesOnes) {
  ClpSimplex clp;
  clp.setLogLevel(0);
  clp.loadProblem(form.columnCount, form.rowCount, form.start.data(), form.rowOf.data(),
                  form.value.data(), form.lower.data(), form.upper.data(), form.cost.data(),
                  form.rowLower.data(), form.rowUpper.data());
  constexpr int kPerturbWhereUseful = 50;
  constexpr int kMatrixOfOnes = 3;
  constexpr int kPasses = 5;
  clp.setPerturbation(kPerturbWhereUseful);
  clp.defaultFactorizationFrequency();
  ClpSolve choice;
  choice.setSolveType(ClpSolve::automatic);
  choice.setPresolveType(ClpSolve::presolveOn, kPasses);
  choice.setSpecialOption(kMatrixOfOnes, seesOnes ? 0 : 1);
  lomu::leaveInterrupts(choice);
  clp.initialSolve(choice);
  return clp.numberIterations();
}

// With such a matrix Clp adds up in another order, and goes another way through large covers.
TEST(ClpChoice, takesAMatrixOfOnesForSuch) {
  for (const unsigned seed : {1U, 2U}) {
    const LinearForm form = cover(seed);
    const double expected = iterationsOfClp(form, true);
    ASSERT_NE(expected, iterationsOfClp(form, false)) << "the problem tells nothing";
    ClpProgram program;
    program.load(form);
    EXPECT_EQ(solved(program).iterations, expected) << "seed " << seed;
  }
}

// A step leaves the scale alone where coefficients lie between a half and two, and has Clp look at
// it from the one on that brings another.
TEST(ClpChoice, looksAtTheScaleOfCoefficientsThatNeedIt) {
  SmallModel model;
  model.column(1, 0, 9);
  model.column(2, 0, 9);
  model.row({2, 0.5}, 3, kInf);
  model.row({1, -1}, -2, 5);
  ClpProgram program;
  program.load(formOf(model));
  solved(program);
  const auto step = [&](double side, double coefficient) {
    model.rowLower[0] = side;
    model.rows[0][1] = coefficient;
    LinearForm form = formOf(model);
    program.update(form);
    solved(program);
    return program.scales();
  };
  EXPECT_FALSE(step(4, 0.5));
  EXPECT_FALSE(step(5, 0.5));
  EXPECT_TRUE(step(5, 0.25));
  EXPECT_TRUE(step(6, 0.25));
  EXPECT_FALSE(step(6, 1));
  EXPECT_TRUE(step(6, 3));
}

}  // namespace
}  // namespace ztbtest
