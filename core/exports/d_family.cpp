// The d__ family: the operations that pass strings, for clients whose strings carry a length byte.

#include <ztb/ztb.h>

#include <utility>

#include "core/exports/short_string.h"
#include "core/exports/string_room.h"
#include "core/operations.h"

namespace {

using ztb::exports::hasStringRoom;
using ztb::exports::ShortStringIn;
using ztb::exports::ShortStringOut;
using ztb::exports::ShortStringsIn;
using ztb::exports::ShortStringsOut;
using ztb::exports::stringArraySize;

// Calls `plain(keys)` with as many labels as the symbol has positions; 0 when there is no symbol.
template <class Plain>
int withKeys(ztbRec* handle, void* sym, const char* keys, Plain&& plain) {
  int dim = 0;
  return ztb::ztbSymbolDim(handle, sym, &dim) == 0 ? 0 : plain(ShortStringsIn(keys, dim));
}

// The same for operations that empty `*recPtr` before anything else.
template <class Plain>
int emptiedWithKeys(ztbRec* handle, void* sym, const char* keys, void** recPtr, Plain&& plain) {
  *recPtr = nullptr;
  return withKeys(handle, sym, keys, std::forward<Plain>(plain));
}

// The same for the twins that return their handle: null, with status 0, when there is no symbol.
template <class Plain>
void* handleWithKeys(ztbRec* handle, void* sym, const char* keys, int* status, Plain&& plain) {
  void* result = nullptr;
  *status = 0;
  withKeys(handle, sym, keys, [&](const char** labels) {
    result = plain(labels);
    return *status;
  });
  return result;
}

}  // namespace

int d__ztbgetlasterror(ztbRec* handle, char* msg) {
  return ztb::ztbGetLastError(handle, ShortStringOut(msg));
}

int d__ztbprintlog(ztbRec* handle, const char* msg) {
  return ztb::ztbPrintLog(handle, ShortStringIn(msg));
}

int d__ztbinfo(ztbRec* handle, int infoKey, int* ival, double* dval, char* sval) {
  return ztb::ztbInfo(handle, infoKey, ival, dval, ShortStringOut(sval));
}

int d__ztbmergeuel(ztbRec* handle, const char* label, int* uelNr) {
  return ztb::ztbMergeUel(handle, ShortStringIn(label), uelNr);
}

int d__ztbfinduel(ztbRec* handle, const char* label, int* uelNr) {
  return ztb::ztbFindUel(handle, ShortStringIn(label), uelNr);
}

int d__ztbgetuelbyindex(ztbRec* handle, int uelNr, char* label) {
  return ztb::ztbGetUelByIndex(handle, uelNr, ShortStringOut(label));
}

int d__ztbinitfromrxf(ztbRec* handle, const char* fileName) {
  return ztb::ztbInitFromRXF(handle, ShortStringIn(fileName));
}

int d__ztbwriterxf(ztbRec* handle, const char* fileName, int noDomainCheck) {
  return ztb::ztbWriteRXF(handle, ShortStringIn(fileName), noDomainCheck);
}

int d__ztbaddsymbol(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                    const char* text, void** symPtr) {
  return ztb::ztbAddSymbol(handle, ShortStringIn(name), dim, type, userInfo, ShortStringIn(text),
                           symPtr);
}

void* d__ztbaddsymbolpy(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                        const char* text, int* status) {
  return ztb::ztbAddSymbolPy(handle, ShortStringIn(name), dim, type, userInfo, ShortStringIn(text),
                             status);
}

int d__ztbaddsymbolx(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                     const char* text, void** domains, const char* domainNames, void** symPtr) {
  return ztb::ztbAddSymbolX(handle, ShortStringIn(name), dim, type, userInfo, ShortStringIn(text),
                            domains, ShortStringsIn(domainNames, dim), symPtr, stringArraySize);
}

void* d__ztbaddsymbolxpy(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                         const char* text, void** domains, const char* domainNames, int* status) {
  return ztb::ztbAddSymbolXPy(handle, ShortStringIn(name), dim, type, userInfo, ShortStringIn(text),
                              domains, ShortStringsIn(domainNames, dim), status, stringArraySize);
}

int d__ztbfindsymbol(ztbRec* handle, const char* name, void** symPtr) {
  return ztb::ztbFindSymbol(handle, ShortStringIn(name), symPtr);
}

void* d__ztbfindsymbolpy(ztbRec* handle, const char* name, int* status) {
  return ztb::ztbFindSymbolPy(handle, ShortStringIn(name), status);
}

int d__ztbfindsymbolwithalias(ztbRec* handle, const char* name, void** symPtr) {
  return ztb::ztbFindSymbolWithAlias(handle, ShortStringIn(name), symPtr);
}

void* d__ztbfindsymbolwithaliaspy(ztbRec* handle, const char* name, int* status) {
  return ztb::ztbFindSymbolWithAliasPy(handle, ShortStringIn(name), status);
}

int d__ztbgetdomain(ztbRec* handle, void* sym, int dim, void** domains, char* domainNames) {
  ShortStringsOut names(domainNames, dim);
  if (!hasStringRoom(handle, sym)) {
    return 0;
  }
  return ztb::ztbGetDomain(handle, sym, dim, domains, names);
}

int d__ztbsymbolinfo(ztbRec* handle, void* sym, int infoKey, int* ival, double* dval, char* sval) {
  return ztb::ztbSymbolInfo(handle, sym, infoKey, ival, dval, ShortStringOut(sval));
}

int d__ztbfindrecord(ztbRec* handle, void* sym, const char* keys, void** recPtr) {
  return emptiedWithKeys(handle, sym, keys, recPtr, [&](const char** labels) {
    return ztb::ztbFindRecord(handle, sym, labels, recPtr);
  });
}

void* d__ztbfindrecordpy(ztbRec* handle, void* sym, const char* keys, int* status) {
  return handleWithKeys(handle, sym, keys, status, [&](const char** labels) {
    return ztb::ztbFindRecordPy(handle, sym, labels, status);
  });
}

int d__ztbfindfirstrecordslice(ztbRec* handle, void* sym, const char* keys, void** recPtr) {
  return emptiedWithKeys(handle, sym, keys, recPtr, [&](const char** labels) {
    return ztb::ztbFindFirstRecordSlice(handle, sym, labels, recPtr);
  });
}

void* d__ztbfindfirstrecordslicepy(ztbRec* handle, void* sym, const char* keys, int* status) {
  return handleWithKeys(handle, sym, keys, status, [&](const char** labels) {
    return ztb::ztbFindFirstRecordSlicePy(handle, sym, labels, status);
  });
}

int d__ztbfindlastrecordslice(ztbRec* handle, void* sym, const char* keys, void** recPtr) {
  return emptiedWithKeys(handle, sym, keys, recPtr, [&](const char** labels) {
    return ztb::ztbFindLastRecordSlice(handle, sym, labels, recPtr);
  });
}

void* d__ztbfindlastrecordslicepy(ztbRec* handle, void* sym, const char* keys, int* status) {
  return handleWithKeys(handle, sym, keys, status, [&](const char** labels) {
    return ztb::ztbFindLastRecordSlicePy(handle, sym, labels, status);
  });
}

int d__ztbaddrecord(ztbRec* handle, void* sym, const char* keys, void** recPtr) {
  return emptiedWithKeys(handle, sym, keys, recPtr, [&](const char** labels) {
    return ztb::ztbAddRecord(handle, sym, labels, recPtr);
  });
}

void* d__ztbaddrecordpy(ztbRec* handle, void* sym, const char* keys, int* status) {
  return handleWithKeys(handle, sym, keys, status, [&](const char** labels) {
    return ztb::ztbAddRecordPy(handle, sym, labels, status);
  });
}

int d__ztbmergerecord(ztbRec* handle, void* sym, const char* keys, void** recPtr) {
  return withKeys(handle, sym, keys, [&](const char** labels) {
    return ztb::ztbMergeRecord(handle, sym, labels, recPtr);
  });
}

void* d__ztbmergerecordpy(ztbRec* handle, void* sym, const char* keys, int* status) {
  return handleWithKeys(handle, sym, keys, status, [&](const char** labels) {
    return ztb::ztbMergeRecordPy(handle, sym, labels, status);
  });
}

int d__ztbaddrecordraw(ztbRec* handle, void* sym, const int* keys, const double* values,
                       const char* text) {
  return ztb::ztbAddRecordRaw(handle, sym, keys, values, ShortStringIn(text));
}

int d__ztbmergesetrecordint(ztbRec* handle, void* sym, const int* keys, int checkUEL,
                            int returnSymPtr, void** recPtr, const char* text) {
  return ztb::ztbMergeSetRecordInt(handle, sym, keys, checkUEL, returnSymPtr, recPtr,
                                   ShortStringIn(text));
}

void* d__ztbmergesetrecordintpy(ztbRec* handle, void* sym, const int* keys, int checkUEL,
                                int returnSymPtr, const char* text, int* status) {
  return ztb::ztbMergeSetRecordIntPy(handle, sym, keys, checkUEL, returnSymPtr, ShortStringIn(text),
                                     status);
}

int d__ztbgetelemtext(ztbRec* handle, void* rec, char* text) {
  return ztb::ztbGetElemText(handle, rec, ShortStringOut(text));
}

int d__ztbsetelemtext(ztbRec* handle, void* rec, const char* text) {
  return ztb::ztbSetElemText(handle, rec, ShortStringIn(text));
}

int d__ztbgetkey(ztbRec* handle, void* rec, int index, char* key) {
  return ztb::ztbGetKey(handle, rec, index, ShortStringOut(key));
}

int d__ztbgetkeys(ztbRec* handle, void* rec, int dim, char* keys) {
  return ztb::ztbGetKeys(handle, rec, dim, ShortStringsOut(keys, dim));
}

int d__ztbcallsolver(ztbRec* handle, const char* solverName) {
  return ztb::ztbCallSolver(handle, ShortStringIn(solverName));
}

int d__ztbcallsolvertimed(ztbRec* handle, const char* solverName, double* solveTime) {
  return ztb::ztbCallSolverTimed(handle, ShortStringIn(solverName), solveTime);
}
