/* What stands between the model library and a solver library, in plain C: a solver library may come
 * from any compiler and language that has C's calls.
 *
 * A solver library is a shared library with one exported function, `ztbSolverLibrary`, which gives
 * a table of functions. It sees a model as arrays that stay the caller's and that hold still from
 * load or update to the end of the next solve. Bounds are IEEE infinities where there are none.
 * Every problem is a minimization: the caller turns the signs of a maximization. Columns count from
 * 0, and so do rows; the objective is no row.
 *
 * No exception leaves a function of either side. A solver is used by one thread at a time, solvers
 * by several.
 */
#ifndef ZTB_SOLVER_H_
#define ZTB_SOLVER_H_

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Grows with every change of this file that a library has to be built anew for. */
enum { ztbSolverVersion = 4 };

/* In the place of a row. */
enum { ztbSolverObjective = -1 };

/* value * column1 * column2 in a row, or in the objective. */
typedef struct ztbSolverProduct {
  int32_t row;
  int32_t column1;
  int32_t column2;
  double value;
} ztbSolverProduct;

/* A special ordered set: of its columns, which stand in their order in the problem's setColumns
 * from `first` on, at most one (kind 1) or two neighbours (kind 2) are not 0. */
typedef struct ztbSolverSet {
  int32_t kind;
  int32_t first;
  int32_t count;
} ztbSolverSet;

typedef struct ztbSolverProblem {
  int32_t columnCount;
  int32_t rowCount;
  const double* cost;
  const double* lower;
  const double* upper;
  const char* isInteger; /* one flag a column */
  const double* rowLower;
  const double* rowUpper;
  /* The matrix by columns: entries start[j] to start[j + 1] - 1 are those of column j. */
  const int32_t* start;
  const int32_t* rowOf;
  const double* value;
  const ztbSolverProduct* products;
  int64_t productCount;
  const double* level; /* where a solver that starts from a point may start; may be null */
  int32_t hasIntegers; /* 0 or 1 */
  /* One flag a column: it is 0, or within its bounds; null when no column is so. A solver that does
   * not know such columns, or sets, refuses a problem that has them. */
  const char* isSemiContinuous;
  const ztbSolverSet* sets;
  int32_t setCount;
  const int32_t* setColumns;
  const double* setWeights; /* of the places of setColumns, ascending within a set */
  /* Shape, cost, values and products are those of any other problem with the same number; 0
   * promises nothing. */
  uint64_t coefficientsAsOf;
} ztbSolverProblem;

typedef struct ztbSolverLimits {
  double seconds;
  int32_t iterations;
  double relativeGap;
  /* Whether the solve is to end, asked now and then; may be null. */
  int32_t (*terminated)(void* context);
  void* context;
} ztbSolverLimits;

typedef enum ztbSolverOutcome {
  ztbSolverOptimal,
  ztbSolverLocallyOptimal,
  ztbSolverInfeasible,
  ztbSolverUnbounded,
  ztbSolverIterationLimit,
  ztbSolverTimeLimit,
  ztbSolverTerminated,
  ztbSolverFailed
} ztbSolverOutcome;

/* Where a column or a row stands. */
typedef enum ztbSolverPosition {
  ztbSolverAtLower,
  ztbSolverAtUpper,
  ztbSolverBasic,
  ztbSolverSuperbasic
} ztbSolverPosition;

/* What a solve leaves. The caller gives the arrays, with an entry a column or a row: zeros in them,
 * and ztbSolverBasic for each position. */
typedef struct ztbSolverResult {
  int32_t outcome;  /* a ztbSolverOutcome; ztbSolverFailed at first */
  int32_t hasPoint; /* 1: the levels satisfy all rows and bounds; 0 at first */
  double iterations;
  double* level;
  int32_t* position;
  /* The change of the minimized objective per unit of right-hand side. */
  double* rowMarginal;
  int32_t* rowPosition;
  /* Why a solve failed: room for reasonSize bytes, empty at first. */
  char* reason;
  int32_t reasonSize;
} ztbSolverResult;

/* What a function of a library gives. */
enum { ztbSolverNo = 0, ztbSolverYes = 1, ztbSolverNoMemory = -1 };

typedef struct ztbSolverFunctions {
  /* ztbSolverVersion as the library was built. Nothing else is looked at when it is another one:
   * this place stays the first for ever. */
  int32_t version;

  /* A new solver; null when there is no memory for one. */
  void* (*make)(void);
  void (*free)(void* solver);

  /* Takes a problem over, as the first or in the place of the one before. ztbSolverNo with the
   * reason, zero-terminated, in the reasonSize bytes of `reason`. */
  int32_t (*load)(void* solver, const ztbSolverProblem* problem, char* reason, int32_t reasonSize);

  /* Takes over what changed in the problem since load or update: bounds, cost, values of the
   * matrix. Its shape did not change. ztbSolverNo when the problem has to be loaded afresh. */
  int32_t (*update)(void* solver, const ztbSolverProblem* problem);

  void (*solve)(void* solver, const ztbSolverLimits* limits, ztbSolverResult* result);
} ztbSolverFunctions;

/* The one function that a solver library exports. The table lives as long as the library is open.
 */
#if defined(__GNUC__)
__attribute__((visibility("default")))
#endif
const ztbSolverFunctions*
ztbSolverLibrary(void);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_SOLVER_H_ */
