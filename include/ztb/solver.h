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
enum { ztbSolverVersion = 6 };

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
  const double* level;  /* where a solver that starts from a point may start; may be null */
  int32_t levelIsStart; /* 1: a search over integers is asked to begin with `level` as a solution */
  int32_t hasIntegers;  /* 0 or 1 */
  /* A basis to begin with, as ztbSolverPosition: an entry a column and a row. Null: none. */
  const int32_t* position;
  const int32_t* rowPosition;
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
  /* The same for shape and values alone. */
  uint64_t matrixAsOf;
} ztbSolverProblem;

typedef struct ztbSolverLimits {
  double seconds;
  int32_t iterations;
  double relativeGap;
  int32_t barrier; /* 1: by an interior point method, where the solver has one */
  /* Whether the solve is to end, asked now and then; may be null. */
  int32_t (*terminated)(void* context);
  /* Tells how far a search is: its best objective and bound, infinite as long as there is none. May
   * be null, and takes the same context. */
  void (*progress)(void* context, double objective, double bound);
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
 * and ztbSolverBasic for each position.
 *
 * A claim of a solver that lives from solve to solve is believed when there is a proof of it, else
 * the problem is loaded and solved once more. That of an optimum are the marginals. That no point
 * exists is proved by a ray of the rows: weights whose sum of the rows is out of reach of the
 * columns. That the objective falls without end, by a point and a ray of the columns: a direction
 * that stays within rows and bounds and lowers the cost. The sign of a ray does not count. */
typedef struct ztbSolverResult {
  int32_t outcome;  /* a ztbSolverOutcome; ztbSolverFailed at first */
  int32_t hasPoint; /* 1: the levels satisfy all rows and bounds; 0 at first */
  double iterations;
  double bound;       /* no objective is below; at first minus infinity */
  int32_t startTaken; /* 1: it began with the point or basis that it was asked to; 0 at first */
  double* level;
  int32_t* position;
  /* The change of the minimized objective per unit of right-hand side. */
  double* rowMarginal;
  int32_t* rowPosition;
  /* A proof; each is there when its flag, 0 at first, is 1. */
  int32_t hasColumnRay;
  int32_t hasRowRay;
  double* columnRay;
  double* rowRay;
  /* Why a solve failed: room for reasonSize bytes, empty at first. */
  char* reason;
  int32_t reasonSize;
} ztbSolverResult;

/* How far costs of columns and right-hand sides of rows can each move, one at a time, while the
 * basis of the last solve stays optimal. The caller gives the arrays; infinities where there is no
 * end. Of a row, the side that it stands at moves; of a basic one, any side, as far as the level of
 * the row. */
typedef struct ztbSolverRanges {
  double* costLower; /* an entry a column */
  double* costUpper;
  double* rhsLower; /* an entry a row */
  double* rhsUpper;
} ztbSolverRanges;

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
   * reason, zero-terminated, in the reasonSize bytes of `reason`. For "column #3" and "row #0" in
   * it, and in that of a solve, the user reads names. */
  int32_t (*load)(void* solver, const ztbSolverProblem* problem, char* reason, int32_t reasonSize);

  /* Takes over what changed in the problem since load or update: bounds, cost, values of the
   * matrix. Its shape did not change. ztbSolverNo when the problem has to be loaded afresh. */
  int32_t (*update)(void* solver, const ztbSolverProblem* problem);

  void (*solve)(void* solver, const ztbSolverLimits* limits, ztbSolverResult* result);

  /* The ranges of the last solve, which found an optimum without integers. ztbSolverNo when there
   * are none. Null for a solver that has no ranges. */
  int32_t (*ranges)(void* solver, ztbSolverRanges* ranges);
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
