// The C functions of ztb/sweep.h.

#include <ztb/sweep.h>

#include <exception>
#include <new>
#include <string>

#include "sweep/sweep_job.h"

#define SWEEP_EXPORT extern "C" [[gnu::visibility("default")]]

struct ztbSweepRec {
  sweep::SweepJob job;
  std::string message;
  // Texts that were handed out last, each by its function.
  std::string reason;
  std::string unmatched;
  std::string foreign;
  std::string explanation;
};

namespace {

std::string given(const char* text) {
  return text == nullptr ? "" : text;
}

// What `work` gives; 0 with the reason in the message when it throws, or there is no sweep.
template <class Work>
auto guarded(ztbSweep* sweep, const Work& work) -> decltype(work()) {
  if (sweep == nullptr) return {};
  try {
    sweep->message.clear();
    return work();
  } catch (const std::exception& error) {
    sweep->message = error.what();
  }
  return {};
}

// What is asked for, where somebody asks.
template <class Value>
void put(Value* place, Value value) {
  if (place != nullptr) *place = value;
}

bool hasScenario(const ztbSweep* sweep, int scenario) {
  return sweep != nullptr && sweep->job.isOpen() && scenario >= 0 &&
         scenario < sweep->job.scenarios().count();
}

bool hasChunk(const ztbSweep* sweep, int chunk) {
  return sweep != nullptr && sweep->job.isOpen() && chunk >= 0 &&
         chunk < sweep->job.index().chunkCount();
}

}  // namespace

SWEEP_EXPORT int ztbSweepCreate(ztbSweep** sweep) {
  if (sweep == nullptr) return 0;
  *sweep = new (std::nothrow) ztbSweep();
  return *sweep == nullptr ? 0 : 1;
}

SWEEP_EXPORT void ztbSweepFree(ztbSweep** sweep) {
  if (sweep == nullptr) return;
  delete *sweep;
  *sweep = nullptr;
}

SWEEP_EXPORT int ztbSweepOption(ztbSweep* sweep, const char* name, const char* value) {
  return guarded(sweep, [&] {
    sweep->job.setOption(given(name), given(value));
    return 1;
  });
}

SWEEP_EXPORT int ztbSweepOpen(ztbSweep* sweep) {
  return guarded(sweep, [&] {
    sweep->job.open();
    return 1;
  });
}

SWEEP_EXPORT int ztbSweepSave(ztbSweep* sweep, const char* folder) {
  return guarded(sweep, [&] {
    sweep->job.save(given(folder));
    return 1;
  });
}

SWEEP_EXPORT int ztbSweepLoad(ztbSweep* sweep, const char* folder) {
  return guarded(sweep, [&] {
    sweep->job.load(given(folder));
    return 1;
  });
}

SWEEP_EXPORT const char* ztbSweepMessage(const ztbSweep* sweep) {
  return sweep == nullptr ? "" : sweep->message.c_str();
}

SWEEP_EXPORT const char* ztbSweepInputs(const ztbSweep* sweep) {
  return sweep == nullptr ? "" : sweep->job.inputs().c_str();
}

SWEEP_EXPORT const char* ztbSweepKey(const ztbSweep* sweep) {
  return sweep == nullptr ? "" : sweep->job.key().c_str();
}

SWEEP_EXPORT const char* ztbSweepOver(const ztbSweep* sweep) {
  return hasScenario(sweep, 0) ? sweep->job.scenarios().over().c_str() : "";
}

SWEEP_EXPORT int ztbSweepScenarioCount(const ztbSweep* sweep) {
  return hasScenario(sweep, 0) ? sweep->job.scenarios().count() : 0;
}

SWEEP_EXPORT const char* ztbSweepScenario(const ztbSweep* sweep, int scenario) {
  return hasScenario(sweep, scenario) ? sweep->job.label(scenario) : nullptr;
}

SWEEP_EXPORT int ztbSweepChunkCount(const ztbSweep* sweep) {
  return hasChunk(sweep, 0) ? sweep->job.index().chunkCount() : 0;
}

SWEEP_EXPORT int ztbSweepChunk(const ztbSweep* sweep, int chunk, int* first, int* end) {
  if (!hasChunk(sweep, chunk)) return 0;
  put(first, sweep->job.index().begin(chunk));
  put(end, sweep->job.index().end(chunk));
  return 1;
}

SWEEP_EXPORT int ztbSweepSameInputs(ztbSweep* sweep) {
  return guarded(sweep, [&] {
    sweep->job.requireSameInputs();
    return 1;
  });
}

SWEEP_EXPORT int ztbSweepLock(ztbSweep* sweep, const char* out) {
  return guarded(sweep, [&] {
    sweep->job.lock(given(out));
    return 1;
  });
}

SWEEP_EXPORT void ztbSweepSetWatch(ztbSweep* sweep,
                                   void (*watch)(void* context, int event, int scenario,
                                                 const char* text),
                                   void* context) {
  if (sweep == nullptr) return;
  if (watch == nullptr) {
    sweep->job.setWatch(nullptr);
  } else {
    sweep->job.setWatch([watch, context](int event, int scenario, const char* text) {
      watch(context, event, scenario, text);
    });
  }
}

SWEEP_EXPORT int ztbSweepPrepare(ztbSweep* sweep, const char* folder) {
  return guarded(sweep, [&] {
    sweep->job.prepare(given(folder));
    return 1;
  });
}

SWEEP_EXPORT int ztbSweepSolve(ztbSweep* sweep, const char* folder, int chunk) {
  return guarded(sweep, [&] { return sweep->job.solve(given(folder), chunk) ? 1 : 2; });
}

SWEEP_EXPORT int ztbSweepPublish(ztbSweep* sweep, const char* folder) {
  return guarded(sweep, [&] {
    sweep->job.publish(given(folder));
    return 1;
  });
}

SWEEP_EXPORT int ztbSweepSkip(ztbSweep* sweep, int scenario, const char* reason) {
  return guarded(sweep, [&] {
    sweep->job.skip(scenario, given(reason));
    return 1;
  });
}

SWEEP_EXPORT void ztbSweepStop(ztbSweep* sweep) {
  if (sweep != nullptr) sweep->job.stop();
}

SWEEP_EXPORT int ztbSweepFind(ztbSweep* sweep, const char* folder, const char* result) {
  return guarded(sweep, [&] {
    sweep->job.find(given(folder), given(result));
    return 1;
  });
}

SWEEP_EXPORT int ztbSweepChunkState(const ztbSweep* sweep, int chunk, int* missing, int* failed) {
  if (!hasChunk(sweep, chunk)) return 0;
  put(missing, sweep->job.index().missing(chunk));
  put(failed, sweep->job.index().failed(chunk));
  return 1;
}

SWEEP_EXPORT int ztbSweepOutcome(const ztbSweep* sweep, int scenario, int* status, int* solveStatus,
                                 double* objective) {
  if (!hasScenario(sweep, scenario)) return 0;
  const sweep::Outcome& outcome = sweep->job.index().outcome(scenario);
  put(status, outcome.status);
  put(solveStatus, outcome.solveStatus);
  put(objective, outcome.objective.value_or(0));
  if (!outcome.isThere()) return 0;
  return outcome.objective ? 2 : 1;
}

SWEEP_EXPORT const char* ztbSweepReason(ztbSweep* sweep, int scenario) {
  if (!hasScenario(sweep, scenario)) return nullptr;
  sweep->reason = sweep->job.index().reason(scenario);
  return sweep->reason.c_str();
}

SWEEP_EXPORT const char* ztbSweepUnmatched(ztbSweep* sweep) {
  if (!hasScenario(sweep, 0)) return "";
  sweep->unmatched.clear();
  for (const std::string& name : sweep->job.index().unmatched()) {
    sweep->unmatched += (sweep->unmatched.empty() ? "" : " ") + name;
  }
  return sweep->unmatched.c_str();
}

SWEEP_EXPORT const char* ztbSweepForeignPart(ztbSweep* sweep, const char* folder) {
  return guarded(sweep, [&]() -> const char* {
    sweep->foreign = sweep->job.foreign(given(folder));
    return sweep->foreign.c_str();
  });
}

SWEEP_EXPORT const char* ztbSweepExplain(ztbSweep* sweep, const char* folder, int scenario) {
  if (!hasScenario(sweep, scenario)) return nullptr;
  return guarded(sweep, [&]() -> const char* {
    sweep->explanation = sweep->job.explain(given(folder), scenario);
    return sweep->explanation.c_str();
  });
}

SWEEP_EXPORT int ztbSweepCollect(ztbSweep* sweep, const char* out) {
  return guarded(sweep, [&] {
    sweep->job.collect(given(out));
    return 1;
  });
}

SWEEP_EXPORT int ztbSweepRemove(ztbSweep* sweep, const char* folder, int ofAll) {
  return guarded(sweep, [&] {
    sweep->job.remove(given(folder), ofAll != 0);
    return 1;
  });
}
