#include "providers/model/solvers/glpk_program.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lomu {

namespace {

// The simplex method of GLPK has no callback; it is stopped after this many iterations, and then
// twice as many, to ask whether it may go on.
constexpr int kFirstStretch = 500;

// GLPK counts the most time that it can be given in milliseconds.
int milliseconds(double seconds) {
  constexpr double kMost = 2147483647;
  return static_cast<int>(std::min(kMost, std::ceil(seconds * 1000)));
}

int boundType(double lower, double upper) {
  if (lower == upper) return GLP_FX;
  if (std::isinf(lower)) return std::isinf(upper) ? GLP_FR : GLP_UP;
  return std::isinf(upper) ? GLP_LO : GLP_DB;
}

Position positionOf(int status, double lower, double upper) {
  switch (status) {
    case GLP_BS:
      return Position::basic;
    case GLP_NU:
      return lower == upper ? Position::atLower : Position::atUpper;
    case GLP_NF:
      return Position::superbasic;
    default:
      return Position::atLower;
  }
}

std::size_t at(int k) {
  return static_cast<std::size_t>(k);
}

}  // namespace

GlpkProgram::~GlpkProgram() {
  Job job{this, Task::drop, nullptr, 0, 0, 0};
  if (problem_ != nullptr && isOfThisThread()) call(job);
}

void GlpkProgram::perform(void* context) {
  Job& job = *static_cast<Job*>(context);
  GlpkProgram& program = *job.program;
  switch (job.task) {
    case Task::build:
      program.build();
      break;
    case Task::change:
      program.change();
      break;
    case Task::simplex:
      job.code = program.simplex(job);
      break;
    case Task::search:
      job.code = program.search(job);
      break;
    case Task::drop:
      glp_delete_prob(program.problem_);
      program.problem_ = nullptr;
      break;
  }
}

bool GlpkProgram::call(Job& job) {
  if (guardedGlpkCall(&GlpkProgram::perform, &job, reason_)) return true;
  problem_ = nullptr;
  return false;
}

void GlpkProgram::take(const LinearForm& form) {
  next_ = form;
  const bool keep = problem_ != nullptr && isOfThisThread() && form.sameShape(form_);
  indexes_.resize(at(form.rowCount) + 1);
  values_.resize(indexes_.size());
  Job job{this, keep ? Task::change : Task::build, nullptr, 0, 0, 0};
  call(job);
  form_ = std::move(next_);
}

bool GlpkProgram::buildAgain() {
  next_ = form_;
  Job job{this, Task::build, nullptr, 0, 0, 0};
  return call(job);
}

void GlpkProgram::build() {
  if (problem_ != nullptr && isOfThisThread()) glp_delete_prob(problem_);
  problem_ = glp_create_prob();
  thread_ = glpkThread();
  if (next_.rowCount > 0) glp_add_rows(problem_, next_.rowCount);
  if (next_.columnCount > 0) glp_add_cols(problem_, next_.columnCount);
  for (int i = 0; i < next_.rowCount; ++i) setRow(i);
  for (int j = 0; j < next_.columnCount; ++j) {
    setColumn(j);
    setMatrixColumn(j);
    glp_set_col_kind(problem_, j + 1, next_.isInteger[at(j)] != 0 ? GLP_IV : GLP_CV);
  }
  glp_scale_prob(problem_, GLP_SF_AUTO);
  glp_adv_basis(problem_, 0);
}

void GlpkProgram::change() {
  for (int i = 0; i < next_.rowCount; ++i) {
    const bool same = next_.rowLower[at(i)] == form_.rowLower[at(i)] &&
                      next_.rowUpper[at(i)] == form_.rowUpper[at(i)];
    if (!same) setRow(i);
  }
  for (int j = 0; j < next_.columnCount; ++j) {
    const bool same = next_.lower[at(j)] == form_.lower[at(j)] &&
                      next_.upper[at(j)] == form_.upper[at(j)] &&
                      next_.cost[at(j)] == form_.cost[at(j)];
    if (!same) setColumn(j);
    const auto first = next_.value.begin() + next_.start[at(j)];
    const auto last = next_.value.begin() + next_.start[at(j) + 1];
    if (!std::equal(first, last, form_.value.begin() + next_.start[at(j)])) setMatrixColumn(j);
  }
}

void GlpkProgram::setRow(int i) {
  const double lower = next_.rowLower[at(i)];
  const double upper = next_.rowUpper[at(i)];
  glp_set_row_bnds(problem_, i + 1, boundType(lower, upper), lower, upper);
}

void GlpkProgram::setColumn(int j) {
  const double lower = next_.lower[at(j)];
  const double upper = next_.upper[at(j)];
  glp_set_col_bnds(problem_, j + 1, boundType(lower, upper), lower, upper);
  glp_set_obj_coef(problem_, j + 1, next_.cost[at(j)]);
}

// GLPK counts from 1 and stores no zeros.
void GlpkProgram::setMatrixColumn(int j) {
  int count = 0;
  for (int e = next_.start[at(j)]; e < next_.start[at(j) + 1]; ++e) {
    if (next_.value[at(e)] == 0) continue;
    ++count;
    indexes_[at(count)] = next_.rowOf[at(e)] + 1;
    values_[at(count)] = next_.value[at(e)];
  }
  glp_set_mat_col(problem_, j + 1, count, indexes_.data(), values_.data());
}

int GlpkProgram::simplex(const Job& job) {
  glp_smcp options;
  glp_init_smcp(&options);
  options.msg_lev = GLP_MSG_OFF;
  options.meth = job.method;
  options.it_lim = job.iterationLimit;
  options.tm_lim = milliseconds(job.watch->secondsLeft());
  int code = glp_simplex(problem_, &options);
  for (int attempt = 0; attempt < 2; ++attempt) {
    const bool badBasis = code == GLP_EBADB || code == GLP_ESING || code == GLP_ECOND ||
                          code == GLP_EFAIL || code == GLP_EINSTAB;
    if (!badBasis) break;
    if (attempt == 0) {
      glp_adv_basis(problem_, 0);
    } else {
      glp_std_basis(problem_);
    }
    code = glp_simplex(problem_, &options);
  }
  return code;
}

// Runs the simplex method to an end or a limit. Failed when GLPK gave up; otherwise optimal stands
// for "at an end", and GLPK's statuses tell which.
Outcome GlpkProgram::runSimplex(Watch& watch, int method) {
  for (int stretch = kFirstStretch;; stretch = stretch > 1000000000 ? stretch : 2 * stretch) {
    if (watch.mustStop()) return watch.reason();
    const int left = watch.iterationsLeft(iterations_);
    if (left == 0) return Outcome::iterationLimit;
    Job job{this, Task::simplex, &watch, method, std::min(stretch, left), 0};
    const int before = glp_get_it_cnt(problem_);
    if (!call(job)) return Outcome::failed;
    iterations_ += glp_get_it_cnt(problem_) - before;
    if (job.code == 0) return Outcome::optimal;
    if (job.code == GLP_ETMLIM) return Outcome::timeLimit;
    if (job.code != GLP_EITLIM) {
      reason_ = "glpk: the simplex method ended with code " + std::to_string(job.code);
      return Outcome::failed;
    }
  }
}

void GlpkProgram::solveLinear(Watch& watch, SolverResult& result) {
  iterations_ = 0;
  result.hasPoint = false;
  result.outcome = Outcome::failed;
  if (problem_ != nullptr) {
    result.outcome = runSimplex(watch, GLP_DUALP);
    // GLPK falls over some bases that a change made singular. Afresh it has another one.
    if (problem_ == nullptr && buildAgain()) result.outcome = runSimplex(watch, GLP_DUALP);
    // No dual feasible point leaves open whether there is a primal one; the primal method tells.
    const bool open = result.outcome == Outcome::optimal && glp_get_status(problem_) != GLP_OPT &&
                      glp_get_prim_stat(problem_) != GLP_NOFEAS;
    if (open) result.outcome = runSimplex(watch, GLP_PRIMAL);
  }
  if (result.outcome == Outcome::optimal) {
    const int status = glp_get_status(problem_);
    if (glp_get_prim_stat(problem_) == GLP_NOFEAS) {
      result.outcome = Outcome::infeasible;
    } else if (status == GLP_UNBND || (glp_get_prim_stat(problem_) == GLP_FEAS &&
                                       glp_get_dual_stat(problem_) == GLP_NOFEAS)) {
      result.outcome = Outcome::unbounded;
    } else if (status != GLP_OPT) {
      result.outcome = Outcome::failed;
      reason_ = "glpk: the simplex method ended with status " + std::to_string(status);
    }
  }
  if (result.outcome == Outcome::failed) {
    result.reason = reason_;
  } else {
    result.hasPoint = result.outcome != Outcome::infeasible &&
                      result.outcome != Outcome::unbounded &&
                      glp_get_prim_stat(problem_) == GLP_FEAS;
  }
  if (result.hasPoint) leavePoint(result);
  result.iterations = iterations_;
}

void GlpkProgram::leavePoint(SolverResult& result) const {
  for (int j = 0; j < form_.columnCount; ++j) {
    const double lower = form_.lower[at(j)];
    const double upper = form_.upper[at(j)];
    const double level = glp_get_col_prim(problem_, j + 1);
    result.level[at(j)] = std::max(lower, std::min(upper, level));
    result.position[at(j)] = positionOf(glp_get_col_stat(problem_, j + 1), lower, upper);
  }
  for (int i = 0; i < form_.rowCount; ++i) {
    const Position position =
        positionOf(glp_get_row_stat(problem_, i + 1), form_.rowLower[at(i)], form_.rowUpper[at(i)]);
    result.rowPosition[at(i)] = position;
    result.rowMarginal[at(i)] = position == Position::basic ? 0 : glp_get_row_dual(problem_, i + 1);
  }
}

int GlpkProgram::search(const Job& job) {
  glp_iocp options;
  glp_init_iocp(&options);
  options.msg_lev = GLP_MSG_OFF;
  options.tm_lim = milliseconds(job.watch->secondsLeft());
  options.mip_gap = job.watch->relativeGap();
  options.mir_cuts = GLP_ON;
  options.cov_cuts = GLP_ON;
  options.cb_func = &GlpkProgram::askInSearch;
  options.cb_info = const_cast<Job*>(&job);
  return glp_intopt(problem_, &options);
}

void GlpkProgram::askInSearch(glp_tree* tree, void* context) {
  auto* job = static_cast<Job*>(context);
  const int used = glp_get_it_cnt(glp_ios_get_prob(tree));
  if (job->watch->mustStop() || used >= job->iterationLimit) glp_ios_terminate(tree);
}

void GlpkProgram::searchIntegers(Watch& watch, SolverResult& result) {
  const int before = glp_get_it_cnt(problem_);
  const double most =
      std::min(2147483647.0, static_cast<double>(before) + watch.iterationsLeft(iterations_));
  Job job{this, Task::search, &watch, 0, static_cast<int>(most), 0};
  result.hasPoint = false;
  if (!call(job)) {
    result.outcome = Outcome::failed;
    result.reason = reason_;
    return;
  }
  result.iterations += glp_get_it_cnt(problem_) - before;
  const int status = glp_mip_status(problem_);
  result.hasPoint = status == GLP_OPT || status == GLP_FEAS;
  if (job.code == 0 || job.code == GLP_EMIPGAP) {
    result.outcome = result.hasPoint ? Outcome::optimal : Outcome::infeasible;
  } else if (job.code == GLP_ETMLIM) {
    result.outcome = Outcome::timeLimit;
  } else if (job.code == GLP_ESTOP) {
    result.outcome = watch.stopped() ? watch.reason() : Outcome::iterationLimit;
  } else {
    result.outcome = Outcome::failed;
    result.reason = "glpk: the search over integers ended with code " + std::to_string(job.code);
  }
  if (!result.hasPoint) return;
  for (int j = 0; j < form_.columnCount; ++j) {
    result.level[at(j)] = glp_mip_col_val(problem_, j + 1);
  }
}

}  // namespace lomu
