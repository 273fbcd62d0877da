// The functions of ztb/sweep.h that the command calls, each of which goes on to the library
// ztbsweep: a command that calls none starts without it.
#include <ztb/sweep.h>

#include "tools/files/late_library.h"

namespace {

constexpr tool::LateLibrary sweepLibrary("ztbsweep");

}  // namespace

int ztbSweepCreate(ztbSweep** sweep) {
  return ZTB_LATE(sweepLibrary, ztbSweepCreate)(sweep);
}

void ztbSweepFree(ztbSweep** sweep) {
  ZTB_LATE(sweepLibrary, ztbSweepFree)(sweep);
}

int ztbSweepOption(ztbSweep* sweep, const char* name, const char* value) {
  return ZTB_LATE(sweepLibrary, ztbSweepOption)(sweep, name, value);
}

int ztbSweepOpen(ztbSweep* sweep) {
  return ZTB_LATE(sweepLibrary, ztbSweepOpen)(sweep);
}

int ztbSweepSave(ztbSweep* sweep, const char* folder) {
  return ZTB_LATE(sweepLibrary, ztbSweepSave)(sweep, folder);
}

int ztbSweepLoad(ztbSweep* sweep, const char* folder) {
  return ZTB_LATE(sweepLibrary, ztbSweepLoad)(sweep, folder);
}

const char* ztbSweepMessage(const ztbSweep* sweep) {
  return ZTB_LATE(sweepLibrary, ztbSweepMessage)(sweep);
}

const char* ztbSweepInputs(const ztbSweep* sweep) {
  return ZTB_LATE(sweepLibrary, ztbSweepInputs)(sweep);
}

const char* ztbSweepKey(const ztbSweep* sweep) {
  return ZTB_LATE(sweepLibrary, ztbSweepKey)(sweep);
}

const char* ztbSweepOver(const ztbSweep* sweep) {
  return ZTB_LATE(sweepLibrary, ztbSweepOver)(sweep);
}

int ztbSweepScenarioCount(const ztbSweep* sweep) {
  return ZTB_LATE(sweepLibrary, ztbSweepScenarioCount)(sweep);
}

const char* ztbSweepScenario(const ztbSweep* sweep, int scenario) {
  return ZTB_LATE(sweepLibrary, ztbSweepScenario)(sweep, scenario);
}

int ztbSweepChunkCount(const ztbSweep* sweep) {
  return ZTB_LATE(sweepLibrary, ztbSweepChunkCount)(sweep);
}

int ztbSweepChunk(const ztbSweep* sweep, int chunk, int* first, int* end) {
  return ZTB_LATE(sweepLibrary, ztbSweepChunk)(sweep, chunk, first, end);
}

int ztbSweepSameInputs(ztbSweep* sweep) {
  return ZTB_LATE(sweepLibrary, ztbSweepSameInputs)(sweep);
}

int ztbSweepLock(ztbSweep* sweep, const char* out) {
  return ZTB_LATE(sweepLibrary, ztbSweepLock)(sweep, out);
}

void ztbSweepSetWatch(ztbSweep* sweep,
                      void (*watch)(void* context, int event, int scenario, const char* text),
                      void* context) {
  ZTB_LATE(sweepLibrary, ztbSweepSetWatch)(sweep, watch, context);
}

int ztbSweepPrepare(ztbSweep* sweep, const char* folder) {
  return ZTB_LATE(sweepLibrary, ztbSweepPrepare)(sweep, folder);
}

int ztbSweepSolve(ztbSweep* sweep, const char* folder, int chunk) {
  return ZTB_LATE(sweepLibrary, ztbSweepSolve)(sweep, folder, chunk);
}

int ztbSweepPublish(ztbSweep* sweep, const char* folder) {
  return ZTB_LATE(sweepLibrary, ztbSweepPublish)(sweep, folder);
}

int ztbSweepSkip(ztbSweep* sweep, int scenario, const char* reason) {
  return ZTB_LATE(sweepLibrary, ztbSweepSkip)(sweep, scenario, reason);
}

void ztbSweepStop(ztbSweep* sweep) {
  ZTB_LATE(sweepLibrary, ztbSweepStop)(sweep);
}

int ztbSweepFind(ztbSweep* sweep, const char* folder, const char* result) {
  return ZTB_LATE(sweepLibrary, ztbSweepFind)(sweep, folder, result);
}

int ztbSweepChunkState(const ztbSweep* sweep, int chunk, int* missing, int* failed) {
  return ZTB_LATE(sweepLibrary, ztbSweepChunkState)(sweep, chunk, missing, failed);
}

int ztbSweepOutcome(const ztbSweep* sweep, int scenario, int* status, int* solveStatus,
                    double* objective) {
  return ZTB_LATE(sweepLibrary, ztbSweepOutcome)(sweep, scenario, status, solveStatus, objective);
}

const char* ztbSweepReason(ztbSweep* sweep, int scenario) {
  return ZTB_LATE(sweepLibrary, ztbSweepReason)(sweep, scenario);
}

const char* ztbSweepUnmatched(ztbSweep* sweep) {
  return ZTB_LATE(sweepLibrary, ztbSweepUnmatched)(sweep);
}

const char* ztbSweepForeignPart(ztbSweep* sweep, const char* folder) {
  return ZTB_LATE(sweepLibrary, ztbSweepForeignPart)(sweep, folder);
}

const char* ztbSweepExplain(ztbSweep* sweep, const char* folder, int scenario) {
  return ZTB_LATE(sweepLibrary, ztbSweepExplain)(sweep, folder, scenario);
}

int ztbSweepCollect(ztbSweep* sweep, const char* out) {
  return ZTB_LATE(sweepLibrary, ztbSweepCollect)(sweep, out);
}

int ztbSweepRemove(ztbSweep* sweep, const char* folder, int ofAll) {
  return ZTB_LATE(sweepLibrary, ztbSweepRemove)(sweep, folder, ofAll);
}
