// The functions of ztb/ztb.h that the command calls, each of which goes on to the library
// ztbcclib64: a command that makes no database starts without it, and without what it opens in its
// turn.
#include <ztb/ztb.h>

#include "tools/files/late_library.h"

namespace {

constexpr tool::LateLibrary coreLibrary("ztbcclib64");

}  // namespace

int ztbcreate(ztbRec** ztb, char* msg, int msgLen) {
  return ZTB_LATE(coreLibrary, ztbcreate)(ztb, msg, msgLen);
}

int ztbfree(ztbRec** ztb) {
  return ZTB_LATE(coreLibrary, ztbfree)(ztb);
}

int c__ztbgetlasterror(ztbRec* ztb, char* msg) {
  return ZTB_LATE(coreLibrary, c__ztbgetlasterror)(ztb, msg);
}

int c__ztbinfo(ztbRec* ztb, int infoKey, int* ival, double* dval, char* sval) {
  return ZTB_LATE(coreLibrary, c__ztbinfo)(ztb, infoKey, ival, dval, sval);
}

int c__ztbmergeuel(ztbRec* ztb, const char* label, int* uelNr) {
  return ZTB_LATE(coreLibrary, c__ztbmergeuel)(ztb, label, uelNr);
}

int c__ztbfinduel(ztbRec* ztb, const char* label, int* uelNr) {
  return ZTB_LATE(coreLibrary, c__ztbfinduel)(ztb, label, uelNr);
}

int c__ztbgetuelbyindex(ztbRec* ztb, int uelNr, char* label) {
  return ZTB_LATE(coreLibrary, c__ztbgetuelbyindex)(ztb, uelNr, label);
}

int c__ztbinitfromrxf(ztbRec* ztb, const char* fileName) {
  return ZTB_LATE(coreLibrary, c__ztbinitfromrxf)(ztb, fileName);
}

int c__ztbwriterxf(ztbRec* ztb, const char* fileName, int noDomainCheck) {
  return ZTB_LATE(coreLibrary, c__ztbwriterxf)(ztb, fileName, noDomainCheck);
}

int c__ztbgetspecialvalues(ztbRec* ztb, double* values) {
  return ZTB_LATE(coreLibrary, c__ztbgetspecialvalues)(ztb, values);
}

int c__ztbaddsymbol(ztbRec* ztb, const char* name, int dim, int type, int userInfo,
                    const char* text, void** symPtr) {
  return ZTB_LATE(coreLibrary, c__ztbaddsymbol)(ztb, name, dim, type, userInfo, text, symPtr);
}

int c__ztbaddsymbolx(ztbRec* ztb, const char* name, int dim, int type, int userInfo,
                     const char* text, void** domains, const char** domainNames, void** symPtr) {
  return ZTB_LATE(coreLibrary, c__ztbaddsymbolx)(ztb, name, dim, type, userInfo, text, domains,
                                                 domainNames, symPtr);
}

int c__ztbfindsymbol(ztbRec* ztb, const char* name, void** symPtr) {
  return ZTB_LATE(coreLibrary, c__ztbfindsymbol)(ztb, name, symPtr);
}

int c__ztbfindsymbolwithalias(ztbRec* ztb, const char* name, void** symPtr) {
  return ZTB_LATE(coreLibrary, c__ztbfindsymbolwithalias)(ztb, name, symPtr);
}

int c__ztbgetsymbolbynumber(ztbRec* ztb, int number, void** symPtr) {
  return ZTB_LATE(coreLibrary, c__ztbgetsymbolbynumber)(ztb, number, symPtr);
}

int c__ztbclearsymbol(ztbRec* ztb, void* sym) {
  return ZTB_LATE(coreLibrary, c__ztbclearsymbol)(ztb, sym);
}

int c__ztbgetdomain(ztbRec* ztb, void* sym, int dim, void** domains, char** domainNames) {
  return ZTB_LATE(coreLibrary, c__ztbgetdomain)(ztb, sym, dim, domains, domainNames);
}

int c__ztbsymboldim(ztbRec* ztb, void* sym, int* dim) {
  return ZTB_LATE(coreLibrary, c__ztbsymboldim)(ztb, sym, dim);
}

int c__ztbsymboltype(ztbRec* ztb, void* sym, int* type) {
  return ZTB_LATE(coreLibrary, c__ztbsymboltype)(ztb, sym, type);
}

int c__ztbsymbolinfo(ztbRec* ztb, void* sym, int infoKey, int* ival, double* dval, char* sval) {
  return ZTB_LATE(coreLibrary, c__ztbsymbolinfo)(ztb, sym, infoKey, ival, dval, sval);
}

int c__ztbfindrecord(ztbRec* ztb, void* sym, const char** keys, void** recPtr) {
  return ZTB_LATE(coreLibrary, c__ztbfindrecord)(ztb, sym, keys, recPtr);
}

int c__ztbfindfirstrecord(ztbRec* ztb, void* sym, void** recPtr) {
  return ZTB_LATE(coreLibrary, c__ztbfindfirstrecord)(ztb, sym, recPtr);
}

int c__ztbfindlastrecord(ztbRec* ztb, void* sym, void** recPtr) {
  return ZTB_LATE(coreLibrary, c__ztbfindlastrecord)(ztb, sym, recPtr);
}

int c__ztbrecordmovenext(ztbRec* ztb, void* rec) {
  return ZTB_LATE(coreLibrary, c__ztbrecordmovenext)(ztb, rec);
}

int c__ztbfreesymboliterator(ztbRec* ztb, void* rec) {
  return ZTB_LATE(coreLibrary, c__ztbfreesymboliterator)(ztb, rec);
}

int c__ztbgetlevel(ztbRec* ztb, void* rec, double* value) {
  return ZTB_LATE(coreLibrary, c__ztbgetlevel)(ztb, rec, value);
}

int c__ztbgetmarginal(ztbRec* ztb, void* rec, double* value) {
  return ZTB_LATE(coreLibrary, c__ztbgetmarginal)(ztb, rec, value);
}

int c__ztbgetlower(ztbRec* ztb, void* rec, double* value) {
  return ZTB_LATE(coreLibrary, c__ztbgetlower)(ztb, rec, value);
}

int c__ztbgetupper(ztbRec* ztb, void* rec, double* value) {
  return ZTB_LATE(coreLibrary, c__ztbgetupper)(ztb, rec, value);
}

int c__ztbgetscale(ztbRec* ztb, void* rec, double* value) {
  return ZTB_LATE(coreLibrary, c__ztbgetscale)(ztb, rec, value);
}

int c__ztbgetkey(ztbRec* ztb, void* rec, int index, char* key) {
  return ZTB_LATE(coreLibrary, c__ztbgetkey)(ztb, rec, index, key);
}

int c__ztbgetrecordraw(ztbRec* ztb, void* rec, int dim, int* keys, double* values) {
  return ZTB_LATE(coreLibrary, c__ztbgetrecordraw)(ztb, rec, dim, keys, values);
}

int c__ztbaddrecord(ztbRec* ztb, void* sym, const char** keys, void** recPtr) {
  return ZTB_LATE(coreLibrary, c__ztbaddrecord)(ztb, sym, keys, recPtr);
}

int c__ztbmergerecord(ztbRec* ztb, void* sym, const char** keys, void** recPtr) {
  return ZTB_LATE(coreLibrary, c__ztbmergerecord)(ztb, sym, keys, recPtr);
}

int c__ztbmergerecordint(ztbRec* ztb, void* sym, const int* keys, int checkUEL, int returnSymPtr,
                         void** recPtr, int haveValues, const double* values) {
  return ZTB_LATE(coreLibrary, c__ztbmergerecordint)(ztb, sym, keys, checkUEL, returnSymPtr, recPtr,
                                                     haveValues, values);
}

int c__ztbmergesetrecordint(ztbRec* ztb, void* sym, const int* keys, int checkUEL, int returnSymPtr,
                            void** recPtr, const char* text) {
  return ZTB_LATE(coreLibrary, c__ztbmergesetrecordint)(ztb, sym, keys, checkUEL, returnSymPtr,
                                                        recPtr, text);
}

int c__ztbdeleterecord(ztbRec* ztb, void* rec) {
  return ZTB_LATE(coreLibrary, c__ztbdeleterecord)(ztb, rec);
}

int c__ztbsetlevel(ztbRec* ztb, void* rec, double value) {
  return ZTB_LATE(coreLibrary, c__ztbsetlevel)(ztb, rec, value);
}

int c__ztbinitfromdict(ztbRec* ztb, void* pbi) {
  return ZTB_LATE(coreLibrary, c__ztbinitfromdict)(ztb, pbi);
}

int c__ztbinitupdate(ztbRec* ztb, void* pbi) {
  return ZTB_LATE(coreLibrary, c__ztbinitupdate)(ztb, pbi);
}

int c__ztbupdatemodelsymbol(ztbRec* ztb, void* modelSymbol, int actionType, void* dataSymbol,
                            int updateType, int* noMatchCnt) {
  return ZTB_LATE(coreLibrary, c__ztbupdatemodelsymbol)(ztb, modelSymbol, actionType, dataSymbol,
                                                        updateType, noMatchCnt);
}

int c__ztbcallsolvertimed(ztbRec* ztb, const char* solverName, double* solveTime) {
  return ZTB_LATE(coreLibrary, c__ztbcallsolvertimed)(ztb, solverName, solveTime);
}
