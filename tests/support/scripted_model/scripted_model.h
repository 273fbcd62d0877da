/* Control of the scripted model peers: model instance, solver environment, solver catalogue and
 * name dictionary.
 *
 * The peers offer one small model, which is kept in memory, and solvers that only pretend. They
 * write down every call, and can be told to answer something else, to lack an operation or to
 * refuse their version. A test opens the library by its path, finds the functions below in it
 * (scripted_model_client.h does both), says what shall happen, and then lets the library under
 * test use the same file as its peers.
 *
 * All state is one per process. The functions are not safe from two threads at once. Strings that
 * come out stay valid until the next call of the same function. No operation of a peer allocates
 * memory; the functions below do.
 */

#ifndef ZTB_TESTS_SUPPORT_SCRIPTED_MODEL_SCRIPTED_MODEL_H_
#define ZTB_TESTS_SUPPORT_SCRIPTED_MODEL_SCRIPTED_MODEL_H_

#define SCRIPTED_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/* ---- What happened. ---- */

/* One line for each call since the last clearing, each ended by a newline: the object, a blank, the
 * operation, and its arguments that go in, each after a blank. Objects are `model`, `env`, `dict`,
 * and with a number from 1 in order of creation `rgy1`, `alg1`, `search1`, `view1`; `null`, or
 * `stale` for anything else. Strings stand in double quotes, arrays in brackets; of a handle by
 * reference the object that goes in. For example
 *
 *   model pbiSetVarLOne 3 1.5
 *   dict nmtFindFirstRowCol 2 [0 0]
 *   rgy1 rgyAlgFree 1 alg1
 *
 * Calls of the check and of the version entry points aren't written down. */
SCRIPTED_EXPORT const char* scriptedModelLog(void);
SCRIPTED_EXPORT void scriptedModelClearLog(void);
/* Objects of a kind, `rgy`, `alg`, `search` or `view`, that were made and not yet ended. */
SCRIPTED_EXPORT int scriptedModelAlive(const char* kind);

/* ---- What shall happen. ---- */

/* Back to the beginning: no log, no plans, an empty linear model of type 1, no solvers, no live
 * objects. */
SCRIPTED_EXPORT void scriptedModelReset(void);

/* After `afterCalls` further calls of `operation`, one call does nothing but give `answer`: null
 * if it gives a handle. rgyAlgFree then ends its object but leaves the caller's handle on it. Plans
 * add up; each is used once. */
SCRIPTED_EXPORT void scriptedModelAnswer(const char* operation, int afterCalls, double answer);

/* What rgyAlgCreate and snvCallSolver say when they fail. */
SCRIPTED_EXPORT void scriptedModelMessage(const char* text);

/* The check entry point says no to `operation`, with this reason. Only of use before the library
 * under test makes the family ready. */
SCRIPTED_EXPORT void scriptedModelLack(const char* operation, const char* reason);

/* The version entry point of a family, such as "pbi", refuses with this reason. */
SCRIPTED_EXPORT void scriptedModelRefuseVersion(const char* family, const char* reason);

/* ---- The model. ---- */

/* The handle that a client of the library under test gives. */
SCRIPTED_EXPORT void* scriptedModelHandle(void);

SCRIPTED_EXPORT void scriptedModelType(int type);
/* What the environment answers for "NameSysDir". */
SCRIPTED_EXPORT void scriptedModelDirectory(const char* directory);
/* Gives the solver's number in the catalogue, counted from 1. A catalogue knows no solver before
 * its file was read. */
SCRIPTED_EXPORT int scriptedModelAddSolver(const char* name, int inPlace);

/* Each gives the number of what it added, labels and symbols counted from 1. */
SCRIPTED_EXPORT int scriptedModelAddLabel(const char* label);
SCRIPTED_EXPORT int scriptedModelAddSymbol(const char* name, int dim, int type, int userInfo,
                                           const char* text);
/* Adds a column to the symbol added last: its label numbers; level, marginal, lower bound, upper
 * bound, scale. The alternative bounds are the own ones at first. Counted from 0. */
SCRIPTED_EXPORT int scriptedModelAddColumn(const int* keys, const double* values, int status,
                                           int secondStatus);
/* Adds a row likewise: level, marginal, right-hand side, scale, and what pbiEvalGradNLUpdate gives
 * for it. Counted from 0. */
SCRIPTED_EXPORT int scriptedModelAddRow(const int* keys, const double* values, int type, int status,
                                        int secondStatus);

/* A line for each column, `column N LEVEL MARGINAL LOWER UPPER ALTLOWER ALTUPPER STATUS STATUS2`,
 * for each row, `row N LEVEL MARGINAL RHS ALTRHS STATUS STATUS2`, and `switches ALTBOUNDS ALTRHS
 * FORCELINEAR MODELSTATUS SOLVESTATUS`.
 *
 * A solve gives every column its lower bound as level, the alternative one with alternative bounds
 * on, and every row its right-hand side, the alternative one with that on; all marginals become the
 * number of the solve, and both statuses 1. */
SCRIPTED_EXPORT const char* scriptedModelDump(void);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_TESTS_SUPPORT_SCRIPTED_MODEL_SCRIPTED_MODEL_H_ */
