// Solver environment and solver catalogue of the scripted model peers.

#include "tests/support/scripted_model/script.h"
#include "tests/support/scripted_model/scripted_model.h"

using namespace scriptedmodel;

extern "C" {

// ---- Solver environment. ----

SCRIPTED_EXPORT void snvXCreate(void** object) {
  *object = &script().environment;
}
SCRIPTED_EXPORT void CsnvXCreateD(void** object, const char* /*directory*/) {
  snvXCreate(object);
}
SCRIPTED_EXPORT void snvXFree(void** object) {
  *object = nullptr;
}
SCRIPTED_EXPORT int CsnvXCheck(const char* operation, int argCount, const int* codes, char* msg) {
  constexpr ztbPeerOperation operations[] = {ZTB_PEER_SNV_OPERATIONS(ZTB_PEER_ENTRY)};
  return check(operations, operation, argCount, codes, msg);
}
SCRIPTED_EXPORT int CsnvXAPIVersion(int api, char* msg, int* compatibility) {
  return version("snv", api, msg, compatibility);
}

SCRIPTED_EXPORT char* CsnvGetStrOpt(void* snv, const char* key, char* buffer) {
  const Call call(snv, "snvGetStrOpt", key);
  if (call.goesOn()) copyOut(buffer, script().directory, 256);
  return call.answer(buffer);
}

SCRIPTED_EXPORT void CsnvLog(void* snv, const char* text) {
  const Call call(snv, "snvLog", text);
}

SCRIPTED_EXPORT void snvTerminateClear(void* snv) {
  const Call call(snv, "snvTerminateClear");
}

SCRIPTED_EXPORT int CsnvCallSolver(void* snv, void* pbi, const char* text2, const char* solverName,
                                   int number4, int number5, const char* text6, const char* text7,
                                   double number8, int number9, int number10, double number11,
                                   double number12, void** handle13, char* msg) {
  const Call call(snv, "snvCallSolver", pbi, text2, solverName, number4, number5, text6, text7,
                  number8, number9, number10, number11, number12, *handle13);
  if (call.goesOn()) {
    script().solve();
  } else {
    copyOut(msg, script().message, 256);
  }
  return call.answer(0);
}

// ---- Solver catalogue. ----

SCRIPTED_EXPORT void rgyXCreate(void** object) {
  *object = script().catalogues.make();
  const Call call(*object, "rgyXCreate");
}
SCRIPTED_EXPORT void rgyXFree(void** object) {
  const Call call(*object, "rgyXFree");
  if (Object* catalogue = script().catalogues.find(*object)) catalogue->number = 0;
  *object = nullptr;
}
SCRIPTED_EXPORT int CrgyXCheck(const char* operation, int argCount, const int* codes, char* msg) {
  constexpr ztbPeerOperation operations[] = {ZTB_PEER_RGY_OPERATIONS(ZTB_PEER_ENTRY)};
  return check(operations, operation, argCount, codes, msg);
}
SCRIPTED_EXPORT int CrgyXAPIVersion(int api, char* msg, int* compatibility) {
  return version("rgy", api, msg, compatibility);
}

SCRIPTED_EXPORT int CrgyReadConfigVUC(void* rgy, const char* fileName,
                                      const char* systemDirectory) {
  const Call call(rgy, "rgyReadConfigVUC", fileName, systemDirectory);
  Object* const catalogue = script().catalogues.find(rgy);
  if (call.goesOn() && catalogue != nullptr) catalogue->configured = true;
  return call.answer(0);
}

SCRIPTED_EXPORT int CrgyAlgNumber(void* rgy, const char* solverName) {
  const Call call(rgy, "rgyAlgNumber", solverName);
  const Object* const catalogue = script().catalogues.find(rgy);
  int number = 0;
  if (catalogue != nullptr && catalogue->configured) {
    for (int i = 0; const Solver& solver : script().solvers) {
      ++i;
      if (solver.name == solverName) number = i;
    }
  }
  return call.answer(number);
}

SCRIPTED_EXPORT int rgyAlgAllowsModifyProblem(void* rgy, int solver) {
  const Call call(rgy, "rgyAlgAllowsModifyProblem", solver);
  // Any number but 0 is true.
  return call.answer(script().solvers.at(static_cast<std::size_t>(solver) - 1).inPlace ? 4 : 0);
}

SCRIPTED_EXPORT int CrgyAlgCreate(void* rgy, int solver, void** alg, const char* systemDirectory,
                                  char* msg) {
  const Call call(rgy, "rgyAlgCreate", solver, *alg, systemDirectory);
  if (call.goesOn()) {
    *alg = script().solverObjects.make();
  } else {
    copyOut(msg, script().message, 256);
  }
  return call.answer(1);
}

SCRIPTED_EXPORT int rgyAlgReadyAPI(void* rgy, int solver, void* alg, void* pbi) {
  const Call call(rgy, "rgyAlgReadyAPI", solver, alg, pbi);
  return call.answer(0);
}

SCRIPTED_EXPORT int rgyAlgModifyProblem(void* rgy, int solver, void* alg) {
  const Call call(rgy, "rgyAlgModifyProblem", solver, alg);
  return call.answer(script().solverObjects.find(alg) == nullptr ? 1 : 0);
}

SCRIPTED_EXPORT int rgyAlgCallSolver(void* rgy, int solver, void* alg, void* pbi) {
  const Call call(rgy, "rgyAlgCallSolver", solver, alg, pbi);
  if (call.goesOn()) script().solve();
  return call.answer(0);
}

SCRIPTED_EXPORT void rgyAlgFree(void* rgy, int solver, void** alg) {
  const Call call(rgy, "rgyAlgFree", solver, *alg);
  if (Object* object = script().solverObjects.find(*alg)) object->number = 0;
  if (call.goesOn()) *alg = nullptr;
}

}  // extern "C"
