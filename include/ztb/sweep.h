/* Sweeps: a model solved for each scenario of a file, in chunks that any process on any machine can
 * take.
 *
 * A sweep is cut into chunks of neighbouring scenarios. A chunk is a function of the model file,
 * its data, the scenario file, the options and its scenarios: it starts from the basis of the
 * unchanged model and solves its scenarios one after the other on one live model. So its result is
 * the same whoever solves it, in whatever order, and however often. Results stand in part files,
 * which are published whole by a rename and have the names
 *
 *   KEY-FIRST-END.rxf   KEY: 16 digits that stand for all that decides the results
 *                       scenarios FIRST, counted from 0, to before END
 *
 * in a folder that all who take part can see. Nothing here knows who calls it: processes of one
 * machine, the tasks of a batch system, the workers of a cluster.
 *
 *   ztbSweep* sweep;
 *   if (!ztbSweepCreate(&sweep)) return 1;
 *   if (!ztbSweepOption(sweep, "model", "diet.lp") ||
 *       !ztbSweepOption(sweep, "scenarios", "prices.rxf") || !ztbSweepOption(sweep, "over", "s") ||
 *       !ztbSweepOpen(sweep)) {
 *     puts(ztbSweepMessage(sweep));
 *   }
 *   for (int chunk = 0; chunk < ztbSweepChunkCount(sweep); ++chunk) {
 *     if (!ztbSweepSolve(sweep, "parts", chunk) || !ztbSweepPublish(sweep, "parts")) ...
 *   }
 *   if (!ztbSweepFind(sweep, "parts", "") || !ztbSweepCollect(sweep, "sweep.rxf")) ...
 *   ztbSweepFree(&sweep);
 *
 * Functions that can fail give 0 and leave the reason in ztbSweepMessage. A sweep is used by one
 * thread at a time, but for ztbSweepStop. Scenarios and chunks count from 0; a number that does not
 * exist gives 0 or null; places for what is not wanted may be null. The functions stand in
 * libztbsweep.so; link with it, or open it at run time.
 */
#ifndef ZTB_SWEEP_H_
#define ZTB_SWEEP_H_

#include <ztb/errors.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ztbSweepRec ztbSweep;

/* 1, or 0 without memory. */
int ztbSweepCreate(ztbSweep** sweep);
/* Ends the sweep and sets *sweep to null. */
void ztbSweepFree(ztbSweep** sweep);

/* Gives an option, before ztbSweepOpen:
 *   model        model file, as ztbModelOpen takes it
 *   model-data   data file of a .mod
 *   data         exchange file that fills the sets and parameters of a .mod
 *   drive        statement of what a parameter drives, as ztbModelDrive takes it; may be repeated
 *   scenarios    exchange file with the scenarios
 *   over         set of it, or the name of first positions
 *   solver       of the catalogue; default: the standard one for the model
 *   report       variable or equation whose levels and marginals are kept; may be repeated
 *   chunk        scenarios of a chunk, 1 to 1000000; by default a sixty-fourth of all, 1 to 1000
 *   time-limit   seconds that a solve may take */
int ztbSweepOption(ztbSweep* sweep, const char* name, const char* value);

/* Reads what there is to sweep over, and takes the checksums of all files. Refused: a record of a
 * scenario, of a parameter over the set, that holds `na` or `undef`, with which nothing can be
 * solved: "sc.rxf: scenario s2, record price(Milk) holds na, a number is expected; ...". */
int ztbSweepOpen(ztbSweep* sweep);

/* Leaves the options in a folder, which is made where there is none, with the names of files from
 * the root on; and opens the sweep whose options were left in one, in the place of
 * ztbSweepOption and ztbSweepOpen. Refused: files that have changed since, and a folder with the
 * options of several sweeps. */
int ztbSweepSave(ztbSweep* sweep, const char* folder);
int ztbSweepLoad(ztbSweep* sweep, const char* folder);

/* Why the last function failed; empty when it did not. */
const char* ztbSweepMessage(const ztbSweep* sweep);

/* Of an open sweep: checksums of all that decides the results, the digits that stand for them, the
 * set as the scenario file has it, its scenarios, and its chunks with the scenarios from *first to
 * before *end. */
const char* ztbSweepInputs(const ztbSweep* sweep);
const char* ztbSweepKey(const ztbSweep* sweep);
const char* ztbSweepOver(const ztbSweep* sweep);
int ztbSweepScenarioCount(const ztbSweep* sweep);
const char* ztbSweepScenario(const ztbSweep* sweep, int scenario);
int ztbSweepChunkCount(const ztbSweep* sweep);
int ztbSweepChunk(const ztbSweep* sweep, int chunk, int* first, int* end);

/* 1 as long as the files are those that were opened; else 0, and the message says which is not, as
 * in "another model file". They are read again only where one seems to have changed. */
int ztbSweepSameInputs(ztbSweep* sweep);

/* Keeps others from writing this result, a file that need not exist yet, until ztbSweepFree or
 * another call: those that ask for the same lock. It is a file .NAME.lock beside the result, locked
 * by `flock`; who dies holds it no longer. Where it is held it is waited for, for two seconds; then
 * 0, and the message names its holder: "out.rxf: another sweep is writing this result (process
 * 4711)". Two names of one file have one lock. */
int ztbSweepLock(ztbSweep* sweep, const char* out);

/* What is told while a chunk is solved. */
enum {
  ZTB_SWEEP_SOLVED = 1, /* a scenario is through, with or without a solution */
  ZTB_SWEEP_FAILED = 2, /* its solve failed; text is why. ZTB_SWEEP_SOLVED follows */
  ZTB_SWEEP_NOTE = 3    /* text is to be known of the model; when it is opened */
};
/* Has `watch` called by the thread that solves; null: nobody. */
void ztbSweepSetWatch(ztbSweep* sweep,
                      void (*watch)(void* context, int event, int scenario, const char* text),
                      void* context);

/* Solves the unchanged model, unless it was done, and leaves its basis in the folder, from which
 * all chunks start; ztbSweepSolve does so if nobody did. Opens the model when it is first called.
 */
int ztbSweepPrepare(ztbSweep* sweep, const char* folder);

/* Solves a chunk and keeps its results for ztbSweepPublish. Chunks that are kept together are
 * neighbours in ascending order. 1; 2 when ztbSweepStop came before its end, and the results of the
 * scenarios before that are kept; 0 when no scenario can be solved. A solve that fails is no
 * failure. */
int ztbSweepSolve(ztbSweep* sweep, const char* folder, int chunk);
/* Publishes the results that are kept as one part; nothing when there are none. */
int ztbSweepPublish(ztbSweep* sweep, const char* folder);

/* Has a scenario pass as failed for this reason, without being solved: one at which processes
 * died. */
int ztbSweepSkip(ztbSweep* sweep, int scenario, const char* reason);

/* Ends the running solve and chunk, and all that follow; may be called from another thread or a
 * signal handler. */
void ztbSweepStop(ztbSweep* sweep);

/* Looks for what there is: parts of this sweep in the folder, and `result`, unless null or empty, a
 * file that ztbSweepCollect made, which is read as a whole. Refused where a file cannot be read or
 * lacks a scenario that it is to have, and a result of another sweep. */
int ztbSweepFind(ztbSweep* sweep, const char* folder, const char* result);

/* What was found: of a chunk the scenarios without an outcome and those whose solve failed; of a
 * scenario the statuses of ztb/model.h and the objective, 0 where there is no outcome, 1 without
 * and 2 with an objective; why its solve failed; the parameters with records that met no column of
 * the model, with blanks between; and whether there are results beside the result file. */
int ztbSweepChunkState(const ztbSweep* sweep, int chunk, int* missing, int* failed);
int ztbSweepOutcome(const ztbSweep* sweep, int scenario, int* status, int* solveStatus,
                    double* objective);
const char* ztbSweepReason(ztbSweep* sweep, int scenario);
const char* ztbSweepUnmatched(ztbSweep* sweep);

/* A part of another sweep in the folder, and in what that differs, in words; empty when there is
 * none, null when it cannot be read. */
const char* ztbSweepForeignPart(ztbSweep* sweep, const char* folder);

/* Why a scenario that was found infeasible is so: what cannot hold together, and in what it differs
 * from the nearest scenario with a solution. Null with the reason in ztbSweepMessage. */
const char* ztbSweepExplain(ztbSweep* sweep, const char* folder, int scenario);

/* Puts what was found together in one file, the same bytes for the same results. Scenarios without
 * an outcome have failed there. Refused: a file that the sweep is made from. */
int ztbSweepCollect(ztbSweep* sweep, const char* out);

/* Removes the files of this sweep, or of all sweeps, from the folder, and the folder if nothing is
 * left. */
int ztbSweepRemove(ztbSweep* sweep, const char* folder, int ofAll);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_SWEEP_H_ */
