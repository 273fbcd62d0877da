#include "providers/model/solvers/glpk_program.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "providers/model/at.h"
#include "providers/model/solvers/claim_check.h"
#include "providers/model/solvers/point_check.h"
#include "providers/model/solvers/whole_numbers.h"

namespace lomu {

namespace {

// How often a node of a search is walked over, about, to find its bound.
constexpr int kMostWalks = 2;

// The simplex method of GLPK has no callback; it is stopped after this many iterations, and then
// twice as many, to ask whether it may go on. An iteration over many rows can take long: what is
// asked then, and with it the way to the optimum, depends on the problem alone and never on time.
constexpr int kFirstStretch = 500;
int longestStretch(int rows) {
  constexpr double kRowsByRows = 2e8;
  constexpr double kFewest = 100;
  constexpr double kMost = 1e9;
  return static_cast<int>(std::clamp(kRowsByRows / (1.0 + rows) / (1.0 + rows), kFewest, kMost));
}

// Of a presolved problem GLPK tells how far it is after so many iterations.
constexpr int kLineEvery = 200;

// How far a level may be outside of its bounds and still be inside.
constexpr double kRoom = 1e-9;

// How far from an integer a level may be. By GLPK's own 1e-5 a binary column on a coefficient of
// 1e6 would be 0 and leave room for 10; by 1e-9 what the simplex method leaves of rounding is a
// fraction, and points that are best go unseen.
constexpr double kIntegerTolerance = 1e-8;

// More rows are not presolved for a search: GLPK writes its first line after 5,000 iterations, and
// before it nobody can end the simplex method there.
constexpr int kMostRowsPresolved = 5000;

// How far a row that is said to stand at its side may stand from it.
constexpr double kTold = 1e-7;

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

}  // namespace

GlpkProgram::~GlpkProgram() {
  Job job{this, Task::drop, nullptr, 0, 0, 0, nullptr};
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
    case Task::presolved:
      job.code = program.presolved(job);
      break;
    case Task::proof:
      if (job.result->outcome == Outcome::infeasible) program.rowRay(*job.result);
      if (job.result->outcome == Outcome::unbounded) program.columnRay(*job.result);
      break;
    case Task::simplex:
      job.code = program.simplex(job);
      break;
    case Task::basis:
      job.code = program.setBasis(job);
      break;
    case Task::ranges:
      job.code = program.rangeAll(job);
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
  const bool writesLines =
      job.task == Task::presolved || (job.task == Task::search && presolvesIntegers_);
  if (guardedGlpkCall(&GlpkProgram::perform, &job, reason_,
                      writesLines ? &GlpkProgram::stopsAtLine : nullptr)) {
    return true;
  }
  problem_ = nullptr;
  return false;
}

// A tree is asked by askInSearch, which keeps the best point.
bool GlpkProgram::stopsAtLine(void* context) {
  const Job& job = *static_cast<Job*>(context);
  return !job.inTree && job.watch->mustStop();
}

void GlpkProgram::take(const LinearForm& form) {
  next_ = form;
  const bool keep = std::exchange(keeps_, true) && problem_ != nullptr && isOfThisThread() &&
                    form.sameShape(form_);
  indexes_.resize(at(form.rowCount) + 1);
  values_.resize(indexes_.size());
  presolvesIntegers_ = !keep && form.hasIntegers && form.rowCount <= kMostRowsPresolved &&
                       hasWholeNumbers(form) && integersHaveEnds(form);
  Job job{this, keep ? Task::change : Task::build, nullptr, 0, 0, 0, nullptr};
  call(job);
  form_ = std::move(next_);
}

bool GlpkProgram::buildAgain() {
  next_ = form_;
  Job job{this, Task::build, nullptr, 0, 0, 0, nullptr};
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
  // As GLPK's program has it, so that the same search follows.
  if (presolvesIntegers_) glp_sort_matrix(problem_);
  glp_scale_prob(problem_, GLP_SF_AUTO);
  isFresh_ = true;
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

// GLPK asks nobody while it solves a problem of its presolver, but it writes lines, and a line can
// be answered with an end.
int GlpkProgram::presolved(const Job& job) {
  glp_smcp options;
  glp_init_smcp(&options);
  options.presolve = GLP_ON;
  options.msg_lev = GLP_MSG_ALL;
  options.out_frq = kLineEvery;
  options.it_lim = job.iterationLimit;
  options.tm_lim = milliseconds(job.watch->secondsLeft());
  const int code = glp_simplex(problem_, &options);
  // Without an optimum the presolver leaves no basis to go on from.
  if (code != 0 || glp_get_status(problem_) != GLP_OPT) glp_adv_basis(problem_, 0);
  return code;
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
  const int longest = longestStretch(form_.rowCount);
  for (int stretch = std::min(kFirstStretch, longest);;
       stretch = stretch > longest / 2 ? longest : 2 * stretch) {
    if (watch.mustStop()) return watch.reason();
    const int left = watch.iterationsLeft(iterations_);
    if (left == 0) return Outcome::iterationLimit;
    Job job{this, Task::simplex, &watch, method, std::min(stretch, left), 0, nullptr};
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

// As GLPK's program solves a file. Optimal stands for an optimum, failed for anything else that is
// no limit: without the presolver it is told apart.
Outcome GlpkProgram::runPresolved(Watch& watch) {
  if (watch.mustStop()) return watch.reason();
  const int left = watch.iterationsLeft(iterations_);
  if (left == 0) return Outcome::iterationLimit;
  Job job{this, Task::presolved, &watch, 0, left, 0, nullptr};
  const bool done = call(job);
  if (watch.stopped()) return watch.reason();
  if (!done) return Outcome::failed;
  iterations_ += glp_get_it_cnt(problem_);
  if (job.code == 0 && glp_get_status(problem_) == GLP_OPT) return Outcome::optimal;
  if (job.code == GLP_ETMLIM) return Outcome::timeLimit;
  if (job.code == GLP_EITLIM) return Outcome::iterationLimit;
  return Outcome::failed;
}

// The presolver takes what is below 0.001 for nothing, be it a cost or what a row is broken by.
// Such an answer is a basis to go on from. Whether columns are integers is a matter of the search.
bool GlpkProgram::presolvedHolds(SolverResult& result) const {
  leavePoint(result);
  SolverProblem problem = form_.problem();
  const std::vector<char> noIntegers(form_.isInteger.size());
  problem.isInteger = noIntegers.data();
  for (int i = 0; i < form_.rowCount; ++i) {
    const Position position = result.rowPosition[at(i)];
    if (position != Position::atLower && position != Position::atUpper) continue;
    const double side =
        position == Position::atLower ? form_.rowLower[at(i)] : form_.rowUpper[at(i)];
    const double room = kTold * std::max(1.0, std::abs(side));
    if (std::abs(glp_get_row_prim(problem_, i + 1) - side) > room) return false;
  }
  return endlessColumn(problem, result.rowMarginal) < 0 && optimumDoubt(problem, result).empty() &&
         violation(problem, result.level).empty();
}

Outcome GlpkProgram::runLive(Watch& watch) {
  Outcome outcome = runSimplex(watch, GLP_DUALP);
  // GLPK falls over some bases that a change made singular. Afresh it has another one.
  if (problem_ == nullptr && buildAgain()) outcome = runSimplex(watch, GLP_DUALP);
  // No dual feasible point leaves open whether there is a primal one; the primal method tells.
  const bool open = outcome == Outcome::optimal && glp_get_status(problem_) != GLP_OPT &&
                    glp_get_prim_stat(problem_) != GLP_NOFEAS;
  return open ? runSimplex(watch, GLP_PRIMAL) : outcome;
}

void GlpkProgram::solveLinear(Watch& watch, SolverResult& result) {
  iterations_ = 0;
  result.hasPoint = false;
  result.outcome = Outcome::failed;
  if (problem_ != nullptr && std::exchange(isFresh_, false)) {
    result.outcome = runPresolved(watch);
    const bool isDoubtful = result.outcome == Outcome::optimal && !presolvedHolds(result);
    if (isDoubtful) result.outcome = Outcome::failed;
  }
  if (result.outcome == Outcome::failed && (problem_ != nullptr || buildAgain())) {
    result.outcome = runLive(watch);
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
  const bool claimsNone =
      result.outcome == Outcome::infeasible || result.outcome == Outcome::unbounded;
  if (result.outcome == Outcome::failed) {
    result.reason = reason_;
  } else if (claimsNone) {
    Job job{this, Task::proof, nullptr, 0, 0, 0, &result};
    call(job);
  } else {
    result.hasPoint = problem_ != nullptr && glp_get_prim_stat(problem_) == GLP_FEAS;
  }
  const bool isLimited =
      !claimsNone && result.outcome != Outcome::optimal && result.outcome != Outcome::failed;
  if (result.hasPoint) {
    leavePoint(result);
  } else if (isLimited && problem_ != nullptr) {
    // Of a basis without a point.
    for (int i = 0; i < form_.rowCount; ++i) {
      result.rowMarginal[at(i)] = glp_get_row_dual(problem_, i + 1);
    }
  }
  result.iterations = iterations_;
}

// The weights of the rows with which those of the basic variables in `values_` come out.
bool GlpkProgram::weighRows(SolverResult& result) {
  glp_btran(problem_, values_.data());
  result.rowRay.assign(values_.begin() + 1, values_.end());
  return provesInfeasible(form_.problem(), result.rowRay);
}

// The dual method ends at a row of the tableau that is out of reach, the primal one where the sum
// of what the basic variables miss their bounds by is least.
void GlpkProgram::rowRay(SolverResult& result) {
  if (!glp_bf_exists(problem_) && glp_factorize(problem_) != 0) return;
  const int rows = form_.rowCount;
  values_.assign(at(rows) + 1, 0.0);
  const int blocking = glp_get_unbnd_ray(problem_);
  const int place = blocking == 0      ? 0
                    : blocking <= rows ? glp_get_row_bind(problem_, blocking)
                                       : glp_get_col_bind(problem_, blocking - rows);
  if (place > 0) {
    values_[at(place)] = 1;
    if (weighRows(result)) return;
  }
  values_.assign(values_.size(), 0.0);
  for (int p = 1; p <= rows; ++p) {
    const int k = glp_get_bhead(problem_, p);
    const bool isRow = k <= rows;
    const std::size_t number = at(isRow ? k - 1 : k - rows - 1);
    const double level =
        isRow ? glp_get_row_prim(problem_, k) : glp_get_col_prim(problem_, k - rows);
    const double lower = isRow ? form_.rowLower[number] : form_.lower[number];
    const double upper = isRow ? form_.rowUpper[number] : form_.upper[number];
    const double room = kRoom * std::max(1.0, std::abs(level));
    if (level < lower - room) values_[at(p)] = -1;
    if (level > upper + room) values_[at(p)] = 1;
  }
  if (!weighRows(result)) result.rowRay.clear();
}

void GlpkProgram::columnRay(SolverResult& result) {
  const int rows = form_.rowCount;
  const int moving = glp_get_unbnd_ray(problem_);
  const bool isBasic =
      moving == 0 || (moving <= rows ? glp_get_row_stat(problem_, moving)
                                     : glp_get_col_stat(problem_, moving - rows)) == GLP_BS;
  if (isBasic || (!glp_bf_exists(problem_) && glp_factorize(problem_) != 0)) return;
  indexes_.resize(at(rows) + 1);
  values_.resize(indexes_.size());
  const int count = glp_eval_tab_col(problem_, moving, indexes_.data(), values_.data());
  result.columnRay.assign(result.level.size(), 0.0);
  if (moving > rows) result.columnRay[at(moving - rows - 1)] = 1;
  for (int k = 1; k <= count; ++k) {
    const int basic = indexes_[at(k)];
    if (basic > rows) result.columnRay[at(basic - rows - 1)] = values_[at(k)];
  }
  leavePoint(result);
}

void GlpkProgram::leavePoint(SolverResult& result) const {
  for (int j = 0; j < form_.columnCount; ++j) {
    const double lower = form_.lower[at(j)];
    const double upper = form_.upper[at(j)];
    const double level = glp_get_col_prim(problem_, j + 1);
    // What is no number stays so, for checks to see.
    result.level[at(j)] = level < lower ? lower : level > upper ? upper : level;
    result.position[at(j)] = positionOf(glp_get_col_stat(problem_, j + 1), lower, upper);
  }
  for (int i = 0; i < form_.rowCount; ++i) {
    const Position position =
        positionOf(glp_get_row_stat(problem_, i + 1), form_.rowLower[at(i)], form_.rowUpper[at(i)]);
    result.rowPosition[at(i)] = position;
    result.rowMarginal[at(i)] = position == Position::basic ? 0 : glp_get_row_dual(problem_, i + 1);
  }
}

int GlpkProgram::search(Job& job) {
  glp_iocp options;
  glp_init_iocp(&options);
  options.msg_lev = presolvesIntegers_ ? GLP_MSG_ALL : GLP_MSG_OFF;
  options.presolve = presolvesIntegers_ ? GLP_ON : GLP_OFF;
  options.tm_lim = milliseconds(job.watch->secondsLeft());
  options.mip_gap = job.watch->relativeGap();
  options.tol_int = kIntegerTolerance;
  options.cb_func = &GlpkProgram::askInSearch;
  options.cb_info = &job;
  return glp_intopt(problem_, &options);
}

// Which node has the best bound costs GLPK a walk over all: it is asked when there is a new point,
// and otherwise so often that a node is walked over about twice.
void GlpkProgram::askInSearch(glp_tree* tree, void* context) {
  auto* job = static_cast<Job*>(context);
  glp_prob* const problem = glp_ios_get_prob(tree);
  const int reason = glp_ios_reason(tree);
  job->inTree = true;
  const bool stops = job->watch->mustStop() || glp_get_it_cnt(problem) >= job->iterationLimit;
  if (reason == GLP_ISELECT) ++job->selected;
  int active = 0;
  glp_ios_tree_size(tree, &active, nullptr, nullptr);
  const bool isDue = reason == GLP_ISELECT && kMostWalks * job->selected >= active;
  if (stops || isDue || reason == GLP_IBINGO) {
    job->selected = 0;
    const int best = glp_ios_best_node(tree);
    if (best != 0) job->result->bound = glp_ios_node_bound(tree, best);
    const bool hasPoint = glp_mip_status(problem) == GLP_FEAS;
    job->watch->tell(hasPoint ? glp_mip_obj_val(problem) : HUGE_VAL, job->result->bound);
  }
  if (stops) glp_ios_terminate(tree);
}

void GlpkProgram::searchIntegers(Watch& watch, SolverResult& result) {
  const bool presolves = presolvesIntegers_;
  result.hasPoint = false;
  result.outcome = Outcome::failed;
  // GLPK counts the iterations of its first linear problem for nobody.
  if (presolves && watch.limitsIterations()) {
    presolvesIntegers_ = false;
    return;
  }
  const int before = problem_ == nullptr ? 0 : glp_get_it_cnt(problem_);
  const double most =
      std::min(2147483647.0, static_cast<double>(before) + watch.iterationsLeft(iterations_));
  Job job{this, Task::search, &watch, 0, static_cast<int>(most), 0, &result};
  const bool done = problem_ != nullptr && call(job);
  presolvesIntegers_ = false;
  if (!done) {
    if (watch.stopped()) result.outcome = watch.reason();
    result.reason = reason_;
    return;
  }
  result.iterations += glp_get_it_cnt(problem_) - before;
  const int status = glp_mip_status(problem_);
  result.hasPoint = status == GLP_OPT || status == GLP_FEAS;
  if (job.code == GLP_EMIPGAP && result.hasPoint) {
    // What the search ended with is a proof, newer than the last bound that was asked for.
    const double best = glp_mip_obj_val(problem_);
    result.bound = std::max(result.bound, best - watch.relativeGap() * std::abs(best));
  }
  if (job.code == 0 || job.code == GLP_EMIPGAP) {
    result.outcome = result.hasPoint ? Outcome::optimal : Outcome::infeasible;
    if (job.code == 0) result.bound = -HUGE_VAL;  // the best point tells it
    // Of a tree that was searched to its end; whether the linear problem tells it too is seen next.
    presolvesIntegers_ = presolves && !result.hasPoint;
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
  if (presolves && !violation(form_.problem(), result.level).empty()) {
    result.hasPoint = false;
    if (result.outcome == Outcome::optimal) result.outcome = Outcome::failed;
  }
}

}  // namespace lomu
