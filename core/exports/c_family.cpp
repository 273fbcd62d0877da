// The c__ family: one name for each operation, a bare jump to it. The exported names are defined
// here and not where the work is done: programs that link the core's objects, such as the unit
// tests, may open the library beside them, and a name of theirs would then stand before its own.

#include <ztb/ztb.h>

#include "core/operations.h"

int c__ztbgetlasterror(ztbRec* handle, char* msg) {
  return ztb::ztbGetLastError(handle, msg);
}

int c__ztbsetdebug(ztbRec* handle, int level) {
  return ztb::ztbSetDebug(handle, level);
}

int c__ztbprintlog(ztbRec* handle, const char* msg) {
  return ztb::ztbPrintLog(handle, msg);
}

int c__ztbinfo(ztbRec* handle, int infoKey, int* ival, double* dval, char* sval) {
  return ztb::ztbInfo(handle, infoKey, ival, dval, sval);
}

int c__ztbmergeuel(ztbRec* handle, const char* label, int* uelNr) {
  return ztb::ztbMergeUel(handle, label, uelNr);
}

int c__ztbfinduel(ztbRec* handle, const char* label, int* uelNr) {
  return ztb::ztbFindUel(handle, label, uelNr);
}

int c__ztbgetuelbyindex(ztbRec* handle, int uelNr, char* label) {
  return ztb::ztbGetUelByIndex(handle, uelNr, label);
}

int c__ztbinitfromrxf(ztbRec* handle, const char* fileName) {
  return ztb::ztbInitFromRXF(handle, fileName);
}

int c__ztbcloserxf(ztbRec* handle, int loadRemain) {
  return ztb::ztbCloseRXF(handle, loadRemain);
}

int c__ztbwriterxf(ztbRec* handle, const char* fileName, int noDomainCheck) {
  return ztb::ztbWriteRXF(handle, fileName, noDomainCheck);
}

int c__ztbsetspecialvaluesx(ztbRec* handle, const double* values, int* mode) {
  return ztb::ztbSetSpecialValuesX(handle, values, mode);
}

int c__ztbsetspecialvalues(ztbRec* handle, const double* values) {
  return ztb::ztbSetSpecialValues(handle, values);
}

int c__ztbgetspecialvalues(ztbRec* handle, double* values) {
  return ztb::ztbGetSpecialValues(handle, values);
}

int c__ztbgetuserspecialvalues(ztbRec* handle, double* values) {
  return ztb::ztbGetUserSpecialValues(handle, values);
}

int c__ztbaddsymbol(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                    const char* text, void** symPtr) {
  return ztb::ztbAddSymbol(handle, name, dim, type, userInfo, text, symPtr);
}

void* c__ztbaddsymbolpy(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                        const char* text, int* status) {
  return ztb::ztbAddSymbolPy(handle, name, dim, type, userInfo, text, status);
}

int c__ztbaddsymbolx(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                     const char* text, void** domains, const char** domainNames, void** symPtr) {
  return ztb::ztbAddSymbolX(handle, name, dim, type, userInfo, text, domains, domainNames, symPtr);
}

void* c__ztbaddsymbolxpy(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                         const char* text, void** domains, const char** domainNames, int* status) {
  return ztb::ztbAddSymbolXPy(handle, name, dim, type, userInfo, text, domains, domainNames,
                              status);
}

int c__ztbfindsymbol(ztbRec* handle, const char* name, void** symPtr) {
  return ztb::ztbFindSymbol(handle, name, symPtr);
}

void* c__ztbfindsymbolpy(ztbRec* handle, const char* name, int* status) {
  return ztb::ztbFindSymbolPy(handle, name, status);
}

int c__ztbfindsymbolwithalias(ztbRec* handle, const char* name, void** symPtr) {
  return ztb::ztbFindSymbolWithAlias(handle, name, symPtr);
}

void* c__ztbfindsymbolwithaliaspy(ztbRec* handle, const char* name, int* status) {
  return ztb::ztbFindSymbolWithAliasPy(handle, name, status);
}

int c__ztbgetsymbolbyindex(ztbRec* handle, int index, void** symPtr) {
  return ztb::ztbGetSymbolByIndex(handle, index, symPtr);
}

void* c__ztbgetsymbolbyindexpy(ztbRec* handle, int index, int* status) {
  return ztb::ztbGetSymbolByIndexPy(handle, index, status);
}

int c__ztbgetsymbolbynumber(ztbRec* handle, int number, void** symPtr) {
  return ztb::ztbGetSymbolByNumber(handle, number, symPtr);
}

void* c__ztbgetsymbolbynumberpy(ztbRec* handle, int number, int* status) {
  return ztb::ztbGetSymbolByNumberPy(handle, number, status);
}

int c__ztbclearsymbol(ztbRec* handle, void* sym) {
  return ztb::ztbClearSymbol(handle, sym);
}

int c__ztbsetuserinfo(ztbRec* handle, void* sym, int userInfo) {
  return ztb::ztbSetUserInfo(handle, sym, userInfo);
}

int c__ztbgetdomain(ztbRec* handle, void* sym, int dim, void** domains, char** domainNames) {
  return ztb::ztbGetDomain(handle, sym, dim, domains, domainNames);
}

int c__ztbsymboldim(ztbRec* handle, void* sym, int* dim) {
  return ztb::ztbSymbolDim(handle, sym, dim);
}

int c__ztbsymboltype(ztbRec* handle, void* sym, int* type) {
  return ztb::ztbSymbolType(handle, sym, type);
}

int c__ztbsymbolinfo(ztbRec* handle, void* sym, int infoKey, int* ival, double* dval, char* sval) {
  return ztb::ztbSymbolInfo(handle, sym, infoKey, ival, dval, sval);
}

int c__ztbfindrecord(ztbRec* handle, void* sym, const char** keys, void** recPtr) {
  return ztb::ztbFindRecord(handle, sym, keys, recPtr);
}

void* c__ztbfindrecordpy(ztbRec* handle, void* sym, const char** keys, int* status) {
  return ztb::ztbFindRecordPy(handle, sym, keys, status);
}

int c__ztbfindfirstrecord(ztbRec* handle, void* sym, void** recPtr) {
  return ztb::ztbFindFirstRecord(handle, sym, recPtr);
}

void* c__ztbfindfirstrecordpy(ztbRec* handle, void* sym, int* status) {
  return ztb::ztbFindFirstRecordPy(handle, sym, status);
}

int c__ztbfindfirstrecordslice(ztbRec* handle, void* sym, const char** keys, void** recPtr) {
  return ztb::ztbFindFirstRecordSlice(handle, sym, keys, recPtr);
}

void* c__ztbfindfirstrecordslicepy(ztbRec* handle, void* sym, const char** keys, int* status) {
  return ztb::ztbFindFirstRecordSlicePy(handle, sym, keys, status);
}

int c__ztbfindlastrecord(ztbRec* handle, void* sym, void** recPtr) {
  return ztb::ztbFindLastRecord(handle, sym, recPtr);
}

void* c__ztbfindlastrecordpy(ztbRec* handle, void* sym, int* status) {
  return ztb::ztbFindLastRecordPy(handle, sym, status);
}

int c__ztbfindlastrecordslice(ztbRec* handle, void* sym, const char** keys, void** recPtr) {
  return ztb::ztbFindLastRecordSlice(handle, sym, keys, recPtr);
}

void* c__ztbfindlastrecordslicepy(ztbRec* handle, void* sym, const char** keys, int* status) {
  return ztb::ztbFindLastRecordSlicePy(handle, sym, keys, status);
}

int c__ztbrecordmovenext(ztbRec* handle, void* rec) {
  return ztb::ztbRecordMoveNext(handle, rec);
}

int c__ztbrecordhasnext(ztbRec* handle, void* rec) {
  return ztb::ztbRecordHasNext(handle, rec);
}

int c__ztbrecordmoveprev(ztbRec* handle, void* rec) {
  return ztb::ztbRecordMovePrev(handle, rec);
}

int c__ztbrecordhasprev(ztbRec* handle, void* rec) {
  return ztb::ztbRecordHasPrev(handle, rec);
}

int c__ztbsamerecord(ztbRec* handle, void* rec1, void* rec2) {
  return ztb::ztbSameRecord(handle, rec1, rec2);
}

int c__ztbcopysymboliterator(ztbRec* handle, void* rec, void** recPtr) {
  return ztb::ztbCopySymbolIterator(handle, rec, recPtr);
}

void* c__ztbcopysymboliteratorpy(ztbRec* handle, void* rec, int* status) {
  return ztb::ztbCopySymbolIteratorPy(handle, rec, status);
}

int c__ztbfreesymboliterator(ztbRec* handle, void* rec) {
  return ztb::ztbFreeSymbolIterator(handle, rec);
}

int c__ztbgetlevel(ztbRec* handle, void* rec, double* value) {
  return ztb::ztbGetLevel(handle, rec, value);
}

int c__ztbgetmarginal(ztbRec* handle, void* rec, double* value) {
  return ztb::ztbGetMarginal(handle, rec, value);
}

int c__ztbgetlower(ztbRec* handle, void* rec, double* value) {
  return ztb::ztbGetLower(handle, rec, value);
}

int c__ztbgetupper(ztbRec* handle, void* rec, double* value) {
  return ztb::ztbGetUpper(handle, rec, value);
}

int c__ztbgetscale(ztbRec* handle, void* rec, double* value) {
  return ztb::ztbGetScale(handle, rec, value);
}

int c__ztbgetelemtext(ztbRec* handle, void* rec, char* text) {
  return ztb::ztbGetElemText(handle, rec, text);
}

int c__ztbgetkeys(ztbRec* handle, void* rec, int dim, char** keys) {
  return ztb::ztbGetKeys(handle, rec, dim, keys);
}

int c__ztbgetkey(ztbRec* handle, void* rec, int index, char* key) {
  return ztb::ztbGetKey(handle, rec, index, key);
}

int c__ztbgetrecordraw(ztbRec* handle, void* rec, int dim, int* keys, double* values) {
  return ztb::ztbGetRecordRaw(handle, rec, dim, keys, values);
}

int c__ztbaddrecord(ztbRec* handle, void* sym, const char** keys, void** recPtr) {
  return ztb::ztbAddRecord(handle, sym, keys, recPtr);
}

void* c__ztbaddrecordpy(ztbRec* handle, void* sym, const char** keys, int* status) {
  return ztb::ztbAddRecordPy(handle, sym, keys, status);
}

int c__ztbmergerecord(ztbRec* handle, void* sym, const char** keys, void** recPtr) {
  return ztb::ztbMergeRecord(handle, sym, keys, recPtr);
}

void* c__ztbmergerecordpy(ztbRec* handle, void* sym, const char** keys, int* status) {
  return ztb::ztbMergeRecordPy(handle, sym, keys, status);
}

int c__ztbmergerecordint(ztbRec* handle, void* sym, const int* keys, int checkUEL, int returnSymPtr,
                         void** recPtr, int haveValues, const double* values) {
  return ztb::ztbMergeRecordInt(handle, sym, keys, checkUEL, returnSymPtr, recPtr, haveValues,
                                values);
}

void* c__ztbmergerecordintpy(ztbRec* handle, void* sym, const int* keys, int checkUEL,
                             int returnSymPtr, int haveValues, const double* values, int* status) {
  return ztb::ztbMergeRecordIntPy(handle, sym, keys, checkUEL, returnSymPtr, haveValues, values,
                                  status);
}

int c__ztbmergesetrecordint(ztbRec* handle, void* sym, const int* keys, int checkUEL,
                            int returnSymPtr, void** recPtr, const char* text) {
  return ztb::ztbMergeSetRecordInt(handle, sym, keys, checkUEL, returnSymPtr, recPtr, text);
}

void* c__ztbmergesetrecordintpy(ztbRec* handle, void* sym, const int* keys, int checkUEL,
                                int returnSymPtr, const char* text, int* status) {
  return ztb::ztbMergeSetRecordIntPy(handle, sym, keys, checkUEL, returnSymPtr, text, status);
}

int c__ztbaddrecordraw(ztbRec* handle, void* sym, const int* keys, const double* values,
                       const char* text) {
  return ztb::ztbAddRecordRaw(handle, sym, keys, values, text);
}

int c__ztbdeleterecord(ztbRec* handle, void* rec) {
  return ztb::ztbDeleteRecord(handle, rec);
}

int c__ztbsetlevel(ztbRec* handle, void* rec, double value) {
  return ztb::ztbSetLevel(handle, rec, value);
}

int c__ztbsetmarginal(ztbRec* handle, void* rec, double value) {
  return ztb::ztbSetMarginal(handle, rec, value);
}

int c__ztbsetlower(ztbRec* handle, void* rec, double value) {
  return ztb::ztbSetLower(handle, rec, value);
}

int c__ztbsetupper(ztbRec* handle, void* rec, double value) {
  return ztb::ztbSetUpper(handle, rec, value);
}

int c__ztbsetscale(ztbRec* handle, void* rec, double value) {
  return ztb::ztbSetScale(handle, rec, value);
}

int c__ztbsetelemtext(ztbRec* handle, void* rec, const char* text) {
  return ztb::ztbSetElemText(handle, rec, text);
}

int c__ztbselectrecordstorage(ztbRec* handle, void** sym, int storage) {
  return ztb::ztbSelectRecordStorage(handle, sym, storage);
}

void* c__ztbselectrecordstoragepy(ztbRec* handle, void* sym, int storage, int* status) {
  return ztb::ztbSelectRecordStoragePy(handle, sym, storage, status);
}

int c__ztbinitfromdb(ztbRec* handle, ztbRec* sourceHandle) {
  return ztb::ztbInitFromDB(handle, sourceHandle);
}

int c__ztbinitfromhvex(ztbRec* handle, ztbHostFindSymbol findSymbol,
                       ztbHostDataReadRawStart dataReadRawStart, ztbHostDataReadRaw dataReadRaw,
                       ztbHostDataReadDone dataReadDone, ztbHostGetElemText getElemText,
                       ztbHostLog logCallback, void* userMem) {
  return ztb::ztbInitFromHVEX(handle, findSymbol, dataReadRawStart, dataReadRaw, dataReadDone,
                              getElemText, logCallback, userMem);
}

int c__ztbdensesymboltodensearray(ztbRec* handle, void* cube, const int* vDim, void* sym,
                                  int field) {
  return ztb::ztbDenseSymbolToDenseArray(handle, cube, vDim, sym, field);
}

int c__ztbsparsesymboltodensearray(ztbRec* handle, void* cube, const int* vDim, void* sym,
                                   void** domains, int field, int* nDropped) {
  return ztb::ztbSparseSymbolToDenseArray(handle, cube, vDim, sym, domains, field, nDropped);
}

int c__ztbsparsesymboltosqzdarray(ztbRec* handle, void* cube, const int* vDim, void* sym,
                                  void** squeezeDomains, void** domains, int field, int* nDropped) {
  return ztb::ztbSparseSymbolToSqzdArray(handle, cube, vDim, sym, squeezeDomains, domains, field,
                                         nDropped);
}

int c__ztbdensearraytosymbol(ztbRec* handle, void* sym, void** domains, const void* cube,
                             const int* vDim) {
  return ztb::ztbDenseArrayToSymbol(handle, sym, domains, cube, vDim);
}

int c__ztbdensearrayslicestosymbol(ztbRec* handle, void* sym, void** sliceDomains, void** domains,
                                   const void* cube, const int* vDim) {
  return ztb::ztbDenseArraySlicesToSymbol(handle, sym, sliceDomains, domains, cube, vDim);
}

int c__ztbcopysymbol(ztbRec* handle, void* target, void* source) {
  return ztb::ztbCopySymbol(handle, target, source);
}

int c__ztbgetsymbolsuels(ztbRec* handle, void** symbols, int symbolCount, int* uelCounts,
                         int listSize) {
  return ztb::ztbGetSymbolsUels(handle, symbols, symbolCount, uelCounts, listSize);
}

int c__ztbcheckdbdv(ztbRec* handle, int* hasViolation) {
  return ztb::ztbCheckDBDV(handle, hasViolation);
}

int c__ztbchecksymboldv(ztbRec* handle, void* sym, int* hasViolation) {
  return ztb::ztbCheckSymbolDV(handle, sym, hasViolation);
}

int c__ztbgetfirstdbdv(ztbRec* handle, void** dvHandle) {
  return ztb::ztbGetFirstDBDV(handle, dvHandle);
}

void* c__ztbgetfirstdbdvpy(ztbRec* handle, int* status) {
  return ztb::ztbGetFirstDBDVPy(handle, status);
}

int c__ztbgetfirstdvinsymbol(ztbRec* handle, void* sym, void** dvHandle) {
  return ztb::ztbGetFirstDVInSymbol(handle, sym, dvHandle);
}

void* c__ztbgetfirstdvinsymbolpy(ztbRec* handle, void* sym, int* status) {
  return ztb::ztbGetFirstDVInSymbolPy(handle, sym, status);
}

int c__ztbgetfirstdvinnextsymbol(ztbRec* handle, void* dvHandle, int* found) {
  return ztb::ztbGetFirstDVInNextSymbol(handle, dvHandle, found);
}

int c__ztbmovenextdvinsymbol(ztbRec* handle, void* dvHandle, int* hasNext) {
  return ztb::ztbMoveNextDVInSymbol(handle, dvHandle, hasNext);
}

int c__ztbfreedvhandle(ztbRec* handle, void* dvHandle) {
  return ztb::ztbFreeDVHandle(handle, dvHandle);
}

int c__ztbdomaincheckdone(ztbRec* handle) {
  return ztb::ztbDomainCheckDone(handle);
}

int c__ztbgetdvsymbol(ztbRec* handle, void* dvHandle, void** symPtr) {
  return ztb::ztbGetDVSymbol(handle, dvHandle, symPtr);
}

void* c__ztbgetdvsymbolpy(ztbRec* handle, void* dvHandle, int* status) {
  return ztb::ztbGetDVSymbolPy(handle, dvHandle, status);
}

int c__ztbgetdvsymbolrecord(ztbRec* handle, void* dvHandle, void** recPtr) {
  return ztb::ztbGetDVSymbolRecord(handle, dvHandle, recPtr);
}

void* c__ztbgetdvsymbolrecordpy(ztbRec* handle, void* dvHandle, int* status) {
  return ztb::ztbGetDVSymbolRecordPy(handle, dvHandle, status);
}

int c__ztbgetdvindicator(ztbRec* handle, void* dvHandle, int* indicator) {
  return ztb::ztbGetDVIndicator(handle, dvHandle, indicator);
}

int c__ztbstartwriterecording(ztbRec* handle) {
  return ztb::ztbStartWriteRecording(handle);
}

int c__ztbstopwriterecording(ztbRec* handle) {
  return ztb::ztbStopWriteRecording(handle);
}

int c__ztbregisterpbi(ztbRec* handle, void* pbi) {
  return ztb::ztbRegisterPBI(handle, pbi);
}

int c__ztbinitfromdict(ztbRec* handle, void* pbi) {
  return ztb::ztbInitFromDict(handle, pbi);
}

int c__ztbinitupdate(ztbRec* handle, void* pbi) {
  return ztb::ztbInitUpdate(handle, pbi);
}

int c__ztbupdatemodelsymbol(ztbRec* handle, void* modelSymbol, int actionType, void* dataSymbol,
                            int updateType, int* noMatchCnt) {
  return ztb::ztbUpdateModelSymbol(handle, modelSymbol, actionType, dataSymbol, updateType,
                                   noMatchCnt);
}

int c__ztbcallsolver(ztbRec* handle, const char* solverName) {
  return ztb::ztbCallSolver(handle, solverName);
}

int c__ztbcallsolvertimed(ztbRec* handle, const char* solverName, double* solveTime) {
  return ztb::ztbCallSolverTimed(handle, solverName, solveTime);
}
