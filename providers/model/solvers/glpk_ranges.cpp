// Bases that solves by GLPK begin with, and the ranges of a solve.
#include <algorithm>
#include <cfloat>
#include <cmath>

#include "providers/model/at.h"
#include "providers/model/solvers/glpk_program.h"

namespace lomu {

namespace {

int glpkStatusOf(std::int32_t position) {
  switch (position) {
    case ztbSolverBasic:
      return GLP_BS;
    case ztbSolverAtUpper:
      return GLP_NU;
    default:
      return GLP_NL;  // which GLPK turns to what the bounds of the column or row have
  }
}

double orInfinite(double value) {
  return std::abs(value) == DBL_MAX ? std::copysign(HUGE_VAL, value) : value;
}

}  // namespace

bool GlpkProgram::begin(const std::int32_t* position, const std::int32_t* rowPosition) {
  if (problem_ == nullptr) return false;
  Job job{this, Task::basis, nullptr, 0, 0, 1, nullptr, position, rowPosition};
  return call(job) && job.code == 0;
}

// 0 when the basis is one.
int GlpkProgram::setBasis(const Job& job) {
  for (int j = 0; j < form_.columnCount; ++j) {
    glp_set_col_stat(problem_, j + 1, glpkStatusOf(job.position[j]));
  }
  for (int i = 0; i < form_.rowCount; ++i) {
    glp_set_row_stat(problem_, i + 1, glpkStatusOf(job.rowPosition[i]));
  }
  const int code = glp_factorize(problem_);
  if (code == 0) {
    isFresh_ = false;
  } else {
    glp_std_basis(problem_);
  }
  return code;
}

bool GlpkProgram::ranges(SolverRanges& ranges) {
  if (problem_ == nullptr || !isOfThisThread()) return false;
  Job job{this, Task::ranges, nullptr, 0, 0, 1, nullptr, nullptr, nullptr, &ranges};
  return call(job) && job.code == 0;
}

int GlpkProgram::rangeAll(const Job& job) {
  if (glp_get_status(problem_) != GLP_OPT) return 1;
  if (!glp_bf_exists(problem_) && glp_factorize(problem_) != 0) return 1;
  for (int j = 0; j < form_.columnCount; ++j) rangeColumn(j, *job.ranges);
  for (int i = 0; i < form_.rowCount; ++i) rangeRow(i, *job.ranges);
  return 0;
}

// A nonbasic column's cost can move as far as its reduced cost lets it.
void GlpkProgram::rangeColumn(int j, SolverRanges& ranges) {
  double& lower = ranges.costLower[j] = -HUGE_VAL;
  double& upper = ranges.costUpper[j] = HUGE_VAL;
  const double cost = form_.cost[at(j)];
  const double end = cost - glp_get_col_dual(problem_, j + 1);
  switch (glp_get_col_stat(problem_, j + 1)) {
    case GLP_BS:
      glp_analyze_coef(problem_, form_.rowCount + j + 1, &lower, nullptr, nullptr, &upper, nullptr,
                       nullptr);
      lower = orInfinite(lower);
      upper = orInfinite(upper);
      break;
    case GLP_NL:
      lower = std::min(cost, end);
      break;
    case GLP_NU:
      upper = std::max(cost, end);
      break;
    case GLP_NF:
      lower = upper = cost;
      break;
    default:
      break;
  }
}

void GlpkProgram::rangeRow(int i, SolverRanges& ranges) {
  double& lower = ranges.rhsLower[i] = glp_get_row_prim(problem_, i + 1);
  double& upper = ranges.rhsUpper[i] = lower;
  const int status = glp_get_row_stat(problem_, i + 1);
  if (status == GLP_BS || status == GLP_NF) return;
  glp_analyze_bound(problem_, i + 1, &lower, nullptr, &upper, nullptr);
  lower = orInfinite(lower);
  upper = orInfinite(upper);
}

}  // namespace lomu
