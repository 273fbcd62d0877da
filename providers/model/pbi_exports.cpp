// The exported functions of the model instance: a model handle is a pointer to a Model. A row or
// column number out of range gives zeros and changes nothing. A null model has no dictionary, which
// is how a database refuses it.

#include <ztb/peer.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <new>

#include "providers/model/instance.h"
#include "providers/model/model.h"

// With C linkage, a definition that differs from its prototype in ztb/peer.h does not compile.
#define PBI_EXPORT extern "C"

namespace {

using lomu::Instance;
using lomu::Model;
using lomu::SolutionRecord;

constexpr ztbPeerOperation kPbiOperations[] = {ZTB_PEER_PBI_OPERATIONS(ZTB_PEER_ENTRY)};

Instance& instance(void* pbi) {
  return static_cast<Model*>(pbi)->instance;
}

// The record of a column or a row; one of its own, which nobody keeps, for a number out of range.
SolutionRecord& columnRecord(void* pbi, int rc) {
  static thread_local SolutionRecord none;
  if (instance(pbi).hasColumn(rc)) return instance(pbi).column(rc);
  return none = SolutionRecord{0, 0, 0, 0};
}

SolutionRecord& rowRecord(void* pbi, int rc) {
  static thread_local SolutionRecord none;
  if (instance(pbi).hasRow(rc)) return instance(pbi).row(rc);
  return none = SolutionRecord{0, 0, 0, 0};
}

int putRecord(const SolutionRecord& record, double* level, double* marginal, int* status,
              int* status2) {
  *level = record.level;
  *marginal = record.marginal;
  *status = record.status;
  *status2 = record.condition;
  return 0;
}

}  // namespace

// An object made here is a model of no columns; ztb/model.h opens and builds others.
PBI_EXPORT void pbiXCreate(void** object) {
  if (object == nullptr) return;
  try {
    *object = new Model(lomu::ModelData(), std::make_shared<lomu::Environment>());
  } catch (...) {
    *object = nullptr;
  }
}

PBI_EXPORT void CpbiXCreateD(void** object, const char* /*directory*/) {
  pbiXCreate(object);
}

// For objects of pbiXCreate; others are freed with ztbModelFree.
PBI_EXPORT void pbiXFree(void** object) {
  if (object == nullptr) return;
  delete static_cast<Model*>(*object);
  *object = nullptr;
}

PBI_EXPORT int CpbiXCheck(const char* operation, int argCount, const int* codes, char* msg) {
  return ztbPeerCheck("PBI", kPbiOperations, std::size(kPbiOperations), operation, argCount, codes,
                      msg);
}

PBI_EXPORT int CpbiXAPIVersion(int api, char* msg, int* compatibility) {
  return ztbPeerVersion("PBI", ZTB_PEER_PBI_VERSION, api, msg, compatibility);
}

PBI_EXPORT void* pbiDict(void* pbi) {
  return pbi == nullptr ? nullptr : &static_cast<Model*>(pbi)->dictionary;
}

PBI_EXPORT void* pbiEnvironment(void* pbi) {
  return pbi == nullptr ? nullptr : static_cast<Model*>(pbi)->environment.get();
}

PBI_EXPORT void pbiPinfSet(void* pbi, double value) {
  if (pbi != nullptr) instance(pbi).setPlusInfinity(value);
}

PBI_EXPORT void pbiMinfSet(void* pbi, double value) {
  if (pbi != nullptr) instance(pbi).setMinusInfinity(value);
}

PBI_EXPORT int pbiN(void* pbi) {
  return instance(pbi).columnCount();
}

PBI_EXPORT int pbiM(void* pbi) {
  return instance(pbi).rowCount();
}

PBI_EXPORT int pbiModelType(void* pbi) {
  return static_cast<int>(instance(pbi).shownType());
}

PBI_EXPORT int pbiGetVarL(void* pbi, double* values) {
  for (int j = 0; j < pbiN(pbi); ++j) values[j] = instance(pbi).column(j).level;
  return 0;
}

PBI_EXPORT int pbiGetVarM(void* pbi, double* values) {
  for (int j = 0; j < pbiN(pbi); ++j) values[j] = instance(pbi).column(j).marginal;
  return 0;
}

PBI_EXPORT int pbiGetEquL(void* pbi, double* values) {
  for (int i = 0; i < pbiM(pbi); ++i) values[i] = instance(pbi).row(i).level;
  return 0;
}

PBI_EXPORT int pbiGetEquM(void* pbi, double* values) {
  for (int i = 0; i < pbiM(pbi); ++i) values[i] = instance(pbi).row(i).marginal;
  return 0;
}

PBI_EXPORT double pbiGetVarLOne(void* pbi, int rc) {
  return columnRecord(pbi, rc).level;
}

PBI_EXPORT void pbiSetVarLOne(void* pbi, int rc, double value) {
  columnRecord(pbi, rc).level = value;
}

PBI_EXPORT double pbiGetVarLowerOne(void* pbi, int rc) {
  return instance(pbi).hasColumn(rc) ? instance(pbi).lower(rc) : 0;
}

PBI_EXPORT double pbiGetVarUpperOne(void* pbi, int rc) {
  return instance(pbi).hasColumn(rc) ? instance(pbi).upper(rc) : 0;
}

// Nothing is scaled here: solvers scale for themselves.
PBI_EXPORT double pbiGetVarScaleOne(void* /*pbi*/, int /*rc*/) {
  return 1;
}

PBI_EXPORT int pbiGetVarStatOne(void* pbi, int rc) {
  return columnRecord(pbi, rc).status;
}

PBI_EXPORT int pbiGetVarCStatOne(void* pbi, int rc) {
  return columnRecord(pbi, rc).condition;
}

PBI_EXPORT void pbiSetAltVarLowerOne(void* pbi, int rc, double value) {
  if (instance(pbi).hasColumn(rc)) instance(pbi).setAlternativeLower(rc, value);
}

PBI_EXPORT void pbiSetAltVarUpperOne(void* pbi, int rc, double value) {
  if (instance(pbi).hasColumn(rc)) instance(pbi).setAlternativeUpper(rc, value);
}

PBI_EXPORT double pbiGetEquLOne(void* pbi, int rc) {
  return rowRecord(pbi, rc).level;
}

PBI_EXPORT void pbiSetEquLOne(void* pbi, int rc, double value) {
  rowRecord(pbi, rc).level = value;
}

PBI_EXPORT int pbiGetEquStatOne(void* pbi, int rc) {
  return rowRecord(pbi, rc).status;
}

PBI_EXPORT int pbiGetEquCStatOne(void* pbi, int rc) {
  return rowRecord(pbi, rc).condition;
}

PBI_EXPORT double pbiGetEquScaleOne(void* /*pbi*/, int /*rc*/) {
  return 1;
}

PBI_EXPORT int pbiGetEquTypeOne(void* pbi, int rc) {
  return instance(pbi).hasRow(rc) ? static_cast<int>(instance(pbi).rowType(rc)) : 0;
}

PBI_EXPORT double pbiGetRhsOne(void* pbi, int rc) {
  return instance(pbi).hasRow(rc) ? instance(pbi).rhs(rc) : 0;
}

PBI_EXPORT void pbiSetAltRHSOne(void* pbi, int rc, double value) {
  if (instance(pbi).hasRow(rc)) instance(pbi).setAlternativeRhs(rc, value);
}

PBI_EXPORT int pbiGetSolutionVarRec(void* pbi, int rc, double* level, double* marginal, int* status,
                                    int* status2) {
  return putRecord(columnRecord(pbi, rc), level, marginal, status, status2);
}

PBI_EXPORT int pbiSetSolutionVarRec(void* pbi, int rc, double level, double marginal, int status,
                                    int status2) {
  columnRecord(pbi, rc) = SolutionRecord{level, marginal, status, status2};
  return 0;
}

PBI_EXPORT int pbiGetSolutionEquRec(void* pbi, int rc, double* level, double* marginal, int* status,
                                    int* status2) {
  return putRecord(rowRecord(pbi, rc), level, marginal, status, status2);
}

PBI_EXPORT int pbiSetSolutionEquRec(void* pbi, int rc, double level, double marginal, int status,
                                    int status2) {
  rowRecord(pbi, rc) = SolutionRecord{level, marginal, status, status2};
  return 0;
}

PBI_EXPORT void pbiAltBoundsSet(void* pbi, int on) {
  instance(pbi).useAlternativeBounds(on != 0);
}

PBI_EXPORT void pbiAltRHSSet(void* pbi, int on) {
  instance(pbi).useAlternativeRhs(on != 0);
}

PBI_EXPORT void pbiForceLinearSet(void* pbi, int on) {
  instance(pbi).forceLinear(on != 0);
}

PBI_EXPORT void pbiModelStatSet(void* pbi, int status) {
  instance(pbi).setModelStatus(status);
}

PBI_EXPORT void pbiSolveStatSet(void* pbi, int status) {
  instance(pbi).setSolveStatus(status);
}

PBI_EXPORT int pbiEvalGradNLUpdate(void* pbi, double* deltaRhs, int doUpdate, int* errorCount) {
  if (instance(pbi).linearize(deltaRhs, doUpdate != 0)) return 0;
  ++*errorCount;
  return 1;
}

PBI_EXPORT void* pbiViewStore(void* pbi) {
  try {
    return instance(pbi).storeView();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

PBI_EXPORT void pbiViewRestore(void* pbi, void** view) {
  if (view == nullptr) return;
  instance(pbi).restoreView(*view);
  *view = nullptr;
}
