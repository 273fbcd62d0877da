// The plain operations, to which every exported name leads. What they do, and with which texts they
// fail, is told at the exported names in <ztb/ztb.h>; here is what holds for the code.
//
// Each runs in the frame of core/frame.h. `sym` points to an AbstractZTBSymbol, `rec` to an
// AbstractZTBSymbolIterator; a handle that is tested for null is tested first. A failed operation
// leaves a handle it would have made null.
#ifndef ZTB_CORE_OPERATIONS_H_
#define ZTB_CORE_OPERATIONS_H_

#include <ztb/types.h>

#include <limits>

namespace ztb {

int ztbCreate(ztbRec** pztb, char* msg);
int ztbCreateD(ztbRec** pztb, const char* sysDir, char* msg);
int ztbFree(ztbRec** pztb);

int ztbGetLastError(ztbRec* handle, char* msg);
int ztbSetDebug(ztbRec* handle, int level);
int ztbPrintLog(ztbRec* handle, const char* msg);
int ztbInfo(ztbRec* handle, int infoKey, int* ival, double* dval, char* sval);

int ztbMergeUel(ztbRec* handle, const char* label, int* uelNr);
int ztbFindUel(ztbRec* handle, const char* label, int* uelNr);
int ztbGetUelByIndex(ztbRec* handle, int uelNr, char* label);

int ztbSetSpecialValuesX(ztbRec* handle, const double* values, int* mode);
int ztbSetSpecialValues(ztbRec* handle, const double* values);
int ztbGetSpecialValues(ztbRec* handle, double* values);
int ztbGetUserSpecialValues(ztbRec* handle, double* values);

int ztbInitFromRXF(ztbRec* handle, const char* fileName);
int ztbCloseRXF(ztbRec* handle, int loadRemain);
int ztbWriteRXF(ztbRec* handle, const char* fileName, int noDomainCheck);

int ztbAddSymbol(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                 const char* text, void** symPtr);
void* ztbAddSymbolPy(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                     const char* text, int* status);
// `domainNames` has `nameCount` entries at least, of which `dim` are used; there are none behind.
int ztbAddSymbolX(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                  const char* text, void** domains, const char** domainNames, void** symPtr,
                  int nameCount = std::numeric_limits<int>::max());
void* ztbAddSymbolXPy(ztbRec* handle, const char* name, int dim, int type, int userInfo,
                      const char* text, void** domains, const char** domainNames, int* status,
                      int nameCount = std::numeric_limits<int>::max());
int ztbFindSymbol(ztbRec* handle, const char* name, void** symPtr);
void* ztbFindSymbolPy(ztbRec* handle, const char* name, int* status);
int ztbFindSymbolWithAlias(ztbRec* handle, const char* name, void** symPtr);
void* ztbFindSymbolWithAliasPy(ztbRec* handle, const char* name, int* status);
int ztbGetSymbolByIndex(ztbRec* handle, int index, void** symPtr);
void* ztbGetSymbolByIndexPy(ztbRec* handle, int index, int* status);
int ztbGetSymbolByNumber(ztbRec* handle, int number, void** symPtr);
void* ztbGetSymbolByNumberPy(ztbRec* handle, int number, int* status);
int ztbClearSymbol(ztbRec* handle, void* sym);
int ztbSetUserInfo(ztbRec* handle, void* sym, int userInfo);
int ztbGetDomain(ztbRec* handle, void* sym, int dim, void** domains, char** domainNames);
int ztbSymbolDim(ztbRec* handle, void* sym, int* dim);
int ztbSymbolType(ztbRec* handle, void* sym, int* type);
int ztbSymbolInfo(ztbRec* handle, void* sym, int infoKey, int* ival, double* dval, char* sval);

int ztbFindRecord(ztbRec* handle, void* sym, const char** keys, void** recPtr);
void* ztbFindRecordPy(ztbRec* handle, void* sym, const char** keys, int* status);
int ztbFindFirstRecord(ztbRec* handle, void* sym, void** recPtr);
void* ztbFindFirstRecordPy(ztbRec* handle, void* sym, int* status);
int ztbFindLastRecord(ztbRec* handle, void* sym, void** recPtr);
void* ztbFindLastRecordPy(ztbRec* handle, void* sym, int* status);
int ztbFindFirstRecordSlice(ztbRec* handle, void* sym, const char** keys, void** recPtr);
void* ztbFindFirstRecordSlicePy(ztbRec* handle, void* sym, const char** keys, int* status);
int ztbFindLastRecordSlice(ztbRec* handle, void* sym, const char** keys, void** recPtr);
void* ztbFindLastRecordSlicePy(ztbRec* handle, void* sym, const char** keys, int* status);
int ztbRecordMoveNext(ztbRec* handle, void* rec);
int ztbRecordHasNext(ztbRec* handle, void* rec);
int ztbRecordMovePrev(ztbRec* handle, void* rec);
int ztbRecordHasPrev(ztbRec* handle, void* rec);
int ztbSameRecord(ztbRec* handle, void* rec1, void* rec2);
int ztbCopySymbolIterator(ztbRec* handle, void* rec, void** recPtr);
void* ztbCopySymbolIteratorPy(ztbRec* handle, void* rec, int* status);
int ztbFreeSymbolIterator(ztbRec* handle, void* rec);

int ztbGetLevel(ztbRec* handle, void* rec, double* value);
int ztbGetMarginal(ztbRec* handle, void* rec, double* value);
int ztbGetLower(ztbRec* handle, void* rec, double* value);
int ztbGetUpper(ztbRec* handle, void* rec, double* value);
int ztbGetScale(ztbRec* handle, void* rec, double* value);
int ztbGetElemText(ztbRec* handle, void* rec, char* text);
int ztbGetKeys(ztbRec* handle, void* rec, int dim, char** keys);
int ztbGetKey(ztbRec* handle, void* rec, int index, char* key);
// Behind no exported names: every handle leads to these three.
int ztbReadRecords(ztbRec* handle, void* rec, int most, int* const* keys, double* const* values);
int ztbValuesInPlace(ztbRec* handle, void* sym, const double** values);
int ztbHoldValues(ztbRec* handle, void* sym, ztbHeldValues** held);
int ztbGetRecordRaw(ztbRec* handle, void* rec, int dim, int* keys, double* values);

int ztbAddRecord(ztbRec* handle, void* sym, const char** keys, void** recPtr);
void* ztbAddRecordPy(ztbRec* handle, void* sym, const char** keys, int* status);
int ztbMergeRecord(ztbRec* handle, void* sym, const char** keys, void** recPtr);
void* ztbMergeRecordPy(ztbRec* handle, void* sym, const char** keys, int* status);
int ztbMergeRecordInt(ztbRec* handle, void* sym, const int* keys, int checkUEL, int returnSymPtr,
                      void** recPtr, int haveValues, const double* values);
void* ztbMergeRecordIntPy(ztbRec* handle, void* sym, const int* keys, int checkUEL,
                          int returnSymPtr, int haveValues, const double* values, int* status);
int ztbMergeSetRecordInt(ztbRec* handle, void* sym, const int* keys, int checkUEL, int returnSymPtr,
                         void** recPtr, const char* text);
void* ztbMergeSetRecordIntPy(ztbRec* handle, void* sym, const int* keys, int checkUEL,
                             int returnSymPtr, const char* text, int* status);
int ztbAddRecordRaw(ztbRec* handle, void* sym, const int* keys, const double* values,
                    const char* text);
int ztbDeleteRecord(ztbRec* handle, void* rec);
int ztbSetLevel(ztbRec* handle, void* rec, double value);
int ztbSetMarginal(ztbRec* handle, void* rec, double value);
int ztbSetLower(ztbRec* handle, void* rec, double value);
int ztbSetUpper(ztbRec* handle, void* rec, double value);
int ztbSetScale(ztbRec* handle, void* rec, double value);
int ztbSetElemText(ztbRec* handle, void* rec, const char* text);

int ztbSelectRecordStorage(ztbRec* handle, void** symPtr, int code);
void* ztbSelectRecordStoragePy(ztbRec* handle, void* sym, int code, int* status);

int ztbInitFromDB(ztbRec* handle, ztbRec* sourceHandle);
int ztbInitFromHVEX(ztbRec* handle, ztbHostFindSymbol findSymbol,
                    ztbHostDataReadRawStart dataReadRawStart, ztbHostDataReadRaw dataReadRaw,
                    ztbHostDataReadDone dataReadDone, ztbHostGetElemText getElemText,
                    ztbHostLog logCallback, void* userMem);

int ztbDenseSymbolToDenseArray(ztbRec* handle, void* cube, const int* vDim, void* sym, int field);
int ztbSparseSymbolToDenseArray(ztbRec* handle, void* cube, const int* vDim, void* sym,
                                void** domains, int field, int* nDropped);
int ztbSparseSymbolToSqzdArray(ztbRec* handle, void* cube, const int* vDim, void* sym,
                               void** squeezeDomains, void** domains, int field, int* nDropped);
int ztbDenseArrayToSymbol(ztbRec* handle, void* sym, void** domains, const void* cube,
                          const int* vDim);
int ztbDenseArraySlicesToSymbol(ztbRec* handle, void* sym, void** sliceDomains, void** domains,
                                const void* cube, const int* vDim);
int ztbCopySymbol(ztbRec* handle, void* target, void* source);
int ztbGetSymbolsUels(ztbRec* handle, void** symbols, int symbolCount, int* uelCounts,
                      int listSize);

int ztbCheckDBDV(ztbRec* handle, int* hasViolation);
int ztbCheckSymbolDV(ztbRec* handle, void* sym, int* hasViolation);
int ztbGetFirstDBDV(ztbRec* handle, void** dvHandle);
void* ztbGetFirstDBDVPy(ztbRec* handle, int* status);
int ztbGetFirstDVInSymbol(ztbRec* handle, void* sym, void** dvHandle);
void* ztbGetFirstDVInSymbolPy(ztbRec* handle, void* sym, int* status);
int ztbGetFirstDVInNextSymbol(ztbRec* handle, void* dvHandle, int* found);
int ztbMoveNextDVInSymbol(ztbRec* handle, void* dvHandle, int* hasNext);
int ztbFreeDVHandle(ztbRec* handle, void* dvHandle);
int ztbDomainCheckDone(ztbRec* handle);
int ztbGetDVSymbol(ztbRec* handle, void* dvHandle, void** symPtr);
void* ztbGetDVSymbolPy(ztbRec* handle, void* dvHandle, int* status);
int ztbGetDVSymbolRecord(ztbRec* handle, void* dvHandle, void** recPtr);
void* ztbGetDVSymbolRecordPy(ztbRec* handle, void* dvHandle, int* status);
int ztbGetDVIndicator(ztbRec* handle, void* dvHandle, int* indicator);

int ztbStartWriteRecording(ztbRec* handle);
int ztbStopWriteRecording(ztbRec* handle);

int ztbRegisterPBI(ztbRec* handle, void* pbi);
int ztbInitFromDict(ztbRec* handle, void* pbi);
int ztbInitUpdate(ztbRec* handle, void* pbi);
int ztbUpdateModelSymbol(ztbRec* handle, void* modelSymbol, int actionType, void* dataSymbol,
                         int updateType, int* noMatchCnt);
int ztbCallSolver(ztbRec* handle, const char* solverName);
int ztbCallSolverTimed(ztbRec* handle, const char* solverName, double* solveTime);

}  // namespace ztb

#endif  // ZTB_CORE_OPERATIONS_H_
