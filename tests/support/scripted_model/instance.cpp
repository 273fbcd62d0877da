// Model instance of the scripted model peers.

#include "tests/support/scripted_model/script.h"
#include "tests/support/scripted_model/scripted_model.h"

using namespace scriptedmodel;

namespace {

// Counts that the library under test must not look at.
constexpr int ignoredResult = 17;

Column& column(int rc) {
  return script().columns.at(static_cast<std::size_t>(rc));
}
Row& row(int rc) {
  return script().rows.at(static_cast<std::size_t>(rc));
}

// One property of all columns or rows.
template <typename Item>
int copyAll(void* pbi, const char* operation, const std::vector<Item>& items,
            double Item::*property, double* values) {
  const Call call(pbi, operation);
  if (call.goesOn()) {
    for (const Item& item : items) *values++ = item.*property;
  }
  return call.answer(ignoredResult);
}

template <typename Item>
int getRecord(void* pbi, const char* operation, int rc, const Item& item, double* level,
              double* marginal, int* status, int* status2) {
  const Call call(pbi, operation, rc);
  if (call.goesOn()) {
    *level = item.level;
    *marginal = item.marginal;
    *status = item.status;
    *status2 = item.secondStatus;
  }
  return call.answer(ignoredResult);
}

template <typename Item>
int setRecord(void* pbi, const char* operation, int rc, Item& item, double level, double marginal,
              int status, int status2) {
  const Call call(pbi, operation, rc, level, marginal, status, status2);
  if (call.goesOn()) {
    item.level = level;
    item.marginal = marginal;
    item.status = status;
    item.secondStatus = status2;
  }
  return call.answer(ignoredResult);
}

template <typename Value>
void set(void* pbi, const char* operation, Value& place, Value value) {
  const Call call(pbi, operation, value);
  if (call.goesOn()) place = value;
}

template <typename Value>
void setOne(void* pbi, const char* operation, int rc, Value& place, Value value) {
  const Call call(pbi, operation, rc, value);
  if (call.goesOn()) place = value;
}

template <typename Value>
Value getOne(void* pbi, const char* operation, int rc, Value value) {
  return Call(pbi, operation, rc).answer(value);
}

}  // namespace

extern "C" {

SCRIPTED_EXPORT void pbiXCreate(void** object) {
  *object = &script().model;
}
SCRIPTED_EXPORT void CpbiXCreateD(void** object, const char* /*directory*/) {
  pbiXCreate(object);
}
SCRIPTED_EXPORT void pbiXFree(void** object) {
  *object = nullptr;
}
SCRIPTED_EXPORT int CpbiXCheck(const char* operation, int argCount, const int* codes, char* msg) {
  constexpr ztbPeerOperation operations[] = {ZTB_PEER_PBI_OPERATIONS(ZTB_PEER_ENTRY)};
  return check(operations, operation, argCount, codes, msg);
}
SCRIPTED_EXPORT int CpbiXAPIVersion(int api, char* msg, int* compatibility) {
  return version("pbi", api, msg, compatibility);
}

SCRIPTED_EXPORT void* pbiDict(void* pbi) {
  return Call(pbi, "pbiDict").answer(static_cast<void*>(&script().dictionary));
}
SCRIPTED_EXPORT void* pbiEnvironment(void* pbi) {
  return Call(pbi, "pbiEnvironment").answer(static_cast<void*>(&script().environment));
}
SCRIPTED_EXPORT void pbiPinfSet(void* pbi, double value) {
  set(pbi, "pbiPinfSet", script().plusInfinity, value);
}
SCRIPTED_EXPORT void pbiMinfSet(void* pbi, double value) {
  set(pbi, "pbiMinfSet", script().minusInfinity, value);
}
SCRIPTED_EXPORT int pbiN(void* pbi) {
  return Call(pbi, "pbiN").answer(static_cast<int>(script().columns.size()));
}
SCRIPTED_EXPORT int pbiM(void* pbi) {
  const int rows = Call(pbi, "pbiM").answer(static_cast<int>(script().rows.size()));
  script().rowsTold = static_cast<std::size_t>(rows);
  return rows;
}
SCRIPTED_EXPORT int pbiModelType(void* pbi) {
  return Call(pbi, "pbiModelType").answer(script().modelType);
}

SCRIPTED_EXPORT int pbiGetVarL(void* pbi, double* values) {
  return copyAll(pbi, "pbiGetVarL", script().columns, &Column::level, values);
}
SCRIPTED_EXPORT int pbiGetVarM(void* pbi, double* values) {
  return copyAll(pbi, "pbiGetVarM", script().columns, &Column::marginal, values);
}
SCRIPTED_EXPORT int pbiGetEquL(void* pbi, double* values) {
  return copyAll(pbi, "pbiGetEquL", script().rows, &Row::level, values);
}
SCRIPTED_EXPORT int pbiGetEquM(void* pbi, double* values) {
  return copyAll(pbi, "pbiGetEquM", script().rows, &Row::marginal, values);
}

SCRIPTED_EXPORT double pbiGetVarLOne(void* pbi, int rc) {
  return getOne(pbi, "pbiGetVarLOne", rc, column(rc).level);
}
SCRIPTED_EXPORT void pbiSetVarLOne(void* pbi, int rc, double value) {
  setOne(pbi, "pbiSetVarLOne", rc, column(rc).level, value);
}
SCRIPTED_EXPORT double pbiGetVarLowerOne(void* pbi, int rc) {
  const Script& s = script();
  const double bound = s.altBounds != 0 ? column(rc).altLower : column(rc).lower;
  return getOne(pbi, "pbiGetVarLowerOne", rc, s.presented(bound));
}
SCRIPTED_EXPORT double pbiGetVarUpperOne(void* pbi, int rc) {
  const Script& s = script();
  const double bound = s.altBounds != 0 ? column(rc).altUpper : column(rc).upper;
  return getOne(pbi, "pbiGetVarUpperOne", rc, s.presented(bound));
}
SCRIPTED_EXPORT double pbiGetVarScaleOne(void* pbi, int rc) {
  return getOne(pbi, "pbiGetVarScaleOne", rc, column(rc).scale);
}
SCRIPTED_EXPORT int pbiGetVarStatOne(void* pbi, int rc) {
  return getOne(pbi, "pbiGetVarStatOne", rc, column(rc).status);
}
SCRIPTED_EXPORT int pbiGetVarCStatOne(void* pbi, int rc) {
  return getOne(pbi, "pbiGetVarCStatOne", rc, column(rc).secondStatus);
}
SCRIPTED_EXPORT void pbiSetAltVarLowerOne(void* pbi, int rc, double value) {
  setOne(pbi, "pbiSetAltVarLowerOne", rc, column(rc).altLower, value);
}
SCRIPTED_EXPORT void pbiSetAltVarUpperOne(void* pbi, int rc, double value) {
  setOne(pbi, "pbiSetAltVarUpperOne", rc, column(rc).altUpper, value);
}

SCRIPTED_EXPORT double pbiGetEquLOne(void* pbi, int rc) {
  return getOne(pbi, "pbiGetEquLOne", rc, row(rc).level);
}
SCRIPTED_EXPORT void pbiSetEquLOne(void* pbi, int rc, double value) {
  setOne(pbi, "pbiSetEquLOne", rc, row(rc).level, value);
}
SCRIPTED_EXPORT int pbiGetEquStatOne(void* pbi, int rc) {
  return getOne(pbi, "pbiGetEquStatOne", rc, row(rc).status);
}
SCRIPTED_EXPORT int pbiGetEquCStatOne(void* pbi, int rc) {
  return getOne(pbi, "pbiGetEquCStatOne", rc, row(rc).secondStatus);
}
SCRIPTED_EXPORT double pbiGetEquScaleOne(void* pbi, int rc) {
  return getOne(pbi, "pbiGetEquScaleOne", rc, row(rc).scale);
}
SCRIPTED_EXPORT int pbiGetEquTypeOne(void* pbi, int rc) {
  return getOne(pbi, "pbiGetEquTypeOne", rc, row(rc).type);
}
SCRIPTED_EXPORT double pbiGetRhsOne(void* pbi, int rc) {
  return getOne(pbi, "pbiGetRhsOne", rc, row(rc).rhs);
}
SCRIPTED_EXPORT void pbiSetAltRHSOne(void* pbi, int rc, double value) {
  setOne(pbi, "pbiSetAltRHSOne", rc, row(rc).altRhs, value);
}

SCRIPTED_EXPORT int pbiGetSolutionVarRec(void* pbi, int rc, double* level, double* marginal,
                                         int* status, int* status2) {
  return getRecord(pbi, "pbiGetSolutionVarRec", rc, column(rc), level, marginal, status, status2);
}
SCRIPTED_EXPORT int pbiSetSolutionVarRec(void* pbi, int rc, double level, double marginal,
                                         int status, int status2) {
  return setRecord(pbi, "pbiSetSolutionVarRec", rc, column(rc), level, marginal, status, status2);
}
SCRIPTED_EXPORT int pbiGetSolutionEquRec(void* pbi, int rc, double* level, double* marginal,
                                         int* status, int* status2) {
  return getRecord(pbi, "pbiGetSolutionEquRec", rc, row(rc), level, marginal, status, status2);
}
SCRIPTED_EXPORT int pbiSetSolutionEquRec(void* pbi, int rc, double level, double marginal,
                                         int status, int status2) {
  return setRecord(pbi, "pbiSetSolutionEquRec", rc, row(rc), level, marginal, status, status2);
}

SCRIPTED_EXPORT void pbiAltBoundsSet(void* pbi, int on) {
  set(pbi, "pbiAltBoundsSet", script().altBounds, on);
}
SCRIPTED_EXPORT void pbiAltRHSSet(void* pbi, int on) {
  set(pbi, "pbiAltRHSSet", script().altRhs, on);
}
SCRIPTED_EXPORT void pbiForceLinearSet(void* pbi, int on) {
  set(pbi, "pbiForceLinearSet", script().forceLinear, on);
}
SCRIPTED_EXPORT void pbiModelStatSet(void* pbi, int status) {
  set(pbi, "pbiModelStatSet", script().modelStatus, status);
}
SCRIPTED_EXPORT void pbiSolveStatSet(void* pbi, int status) {
  set(pbi, "pbiSolveStatSet", script().solveStatus, status);
}

SCRIPTED_EXPORT int pbiEvalGradNLUpdate(void* pbi, double* deltaRhs, int doUpdate,
                                        int* errorCount) {
  const Script& s = script();
  const Call call(pbi, "pbiEvalGradNLUpdate", Array<double>{deltaRhs, s.rowsTold}, doUpdate,
                  *errorCount);
  if (call.goesOn()) {
    for (std::size_t i = 0; i < s.rowsTold; ++i) deltaRhs[i] = s.rows.at(i).delta;
    *errorCount = ignoredResult;
  }
  return call.answer(ignoredResult);
}

SCRIPTED_EXPORT void* pbiViewStore(void* pbi) {
  const Call call(pbi, "pbiViewStore");
  return call.goesOn() ? script().views.make() : nullptr;
}
SCRIPTED_EXPORT void pbiViewRestore(void* pbi, void** view) {
  const Call call(pbi, "pbiViewRestore", *view);
  if (Object* object = script().views.find(*view)) object->number = 0;
  *view = nullptr;
}

}  // extern "C"
