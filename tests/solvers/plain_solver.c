/* A solver library in C: models without rows, where each column goes by itself to the bound that is
 * better for the objective. Built several times, also as what the model library must not take. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <ztb/solver.h>

#ifndef PLAIN_VERSION
#define PLAIN_VERSION ztbSolverVersion
#endif
#ifndef PLAIN_OUTCOME
#define PLAIN_OUTCOME ztbSolverOptimal
#endif

/* What a solve after an update claims, whatever is true. */
#ifndef PLAIN_WARM_OUTCOME
#define PLAIN_WARM_OUTCOME PLAIN_OUTCOME
#endif

typedef struct PlainSolver {
  ztbSolverProblem problem;
  int isUpdated;
} PlainSolver;

static void* makePlain(void) {
  return calloc(1, sizeof(PlainSolver));
}

static int32_t loadPlain(void* solver, const ztbSolverProblem* problem, char* reason,
                         int32_t reasonSize) {
  if (problem->rowCount != 0) {
    snprintf(reason, (size_t)reasonSize, "plain takes no rows, the model has %d",
             (int)problem->rowCount);
    return ztbSolverNo;
  }
  ((PlainSolver*)solver)->problem = *problem;
  ((PlainSolver*)solver)->isUpdated = 0;
  return ztbSolverYes;
}

static int32_t updatePlain(void* solver, const ztbSolverProblem* problem) {
  ((PlainSolver*)solver)->problem = *problem;
  ((PlainSolver*)solver)->isUpdated = 1;
  return ztbSolverYes;
}

static void solvePlain(void* solver, const ztbSolverLimits* limits, ztbSolverResult* result) {
  const ztbSolverProblem* problem = &((PlainSolver*)solver)->problem;
  if (limits->terminated != NULL && limits->terminated(limits->context)) {
    result->outcome = ztbSolverTerminated;
    return;
  }
  for (int32_t j = 0; j < problem->columnCount; ++j) {
    const int down = problem->cost[j] >= 0;
    result->level[j] = down ? problem->lower[j] : problem->upper[j];
    result->position[j] = down ? ztbSolverAtLower : ztbSolverAtUpper;
    if (isinf(result->level[j])) {
      snprintf(result->reason, (size_t)result->reasonSize, "column %d has no end", (int)j);
      return;
    }
  }
  result->outcome = ((PlainSolver*)solver)->isUpdated ? PLAIN_WARM_OUTCOME : PLAIN_OUTCOME;
  result->hasPoint = 1;
  result->iterations = problem->columnCount;
}

static const ztbSolverFunctions plainFunctions = {PLAIN_VERSION, makePlain,  free, loadPlain,
                                                  updatePlain,   solvePlain, NULL};

const ztbSolverFunctions* ztbSolverLibrary(void) {
  return &plainFunctions;
}
