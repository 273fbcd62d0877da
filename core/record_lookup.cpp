// Finding records by label, first and last records, and slices.

#include <cstring>

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "store/symbol_factory.h"

namespace ztb {
namespace {

using RecordHandle = AbstractZTBSymbol::RecordHandle;

int findLabel(ZTB& db, const char* label, void** recPtr) {
  int number = 0;
  if (!db.uels.find(label, &number)) {
    return failure;
  }
  if (number == -1) {
    return db.failAs(ZTB_ERROR_NOT_FOUND, "Cannot find element %s in Universe", label);
  }
  *recPtr = makeUniverseRecord(db.recordStorage, db.universe.get(), number).release();
  return *recPtr == nullptr ? failure : success;
}

int findRecord(ZTB& db, void* sym, const char** keys, void** recPtr) {
  *recPtr = nullptr;
  AbstractZTBSymbol* symbol = symbolOf(sym);
  if (symbol == nullptr) {
    return failNoSymbol(db);
  }
  if (isUniverse(db, symbol)) {
    requireKeys(*symbol, keys);
    return findLabel(db, keys[0], recPtr);
  }
  if (!db.ensureLoaded(*symbol)) {
    return failure;
  }
  const char* name = symbol->name.c_str();
  if (symbol->isEmpty()) {
    return db.failAs(ZTB_ERROR_NOT_FOUND, "Cannot find any record in Symbol %s (%s is empty)", name,
                     name);
  }
  requireKeyRoom(*symbol);
  requireKeys(*symbol, keys);
  KeyBuffer numbers = {};
  for (int d = 0; d < symbol->dim; ++d) {
    int number = 0;
    if (!db.uels.find(keys[d], &number)) {
      return failure;
    }
    if (number == -1) {
      return db.failAs(ZTB_ERROR_NOT_FOUND, "Cannot find element %s (on position %d) in Symbol %s",
                       keys[d], d + 1, name);
    }
    numbers[static_cast<std::size_t>(d)] = number;
  }
  *recPtr = symbol->findRecord(numbers.data()).release();
  if (*recPtr == nullptr) {
    return db.failAs(ZTB_ERROR_NOT_FOUND, "Cannot find record %s in Symbol %s",
                     recordText(keys, symbol->dim).c_str(), name);
  }
  return success;
}

enum class End { first, last };

int findEndRecord(ZTB& db, void* sym, End end, void** recPtr) {
  *recPtr = nullptr;
  AbstractZTBSymbol* symbol = symbolOf(sym);
  if (symbol == nullptr) {
    return failNoSymbol(db);
  }
  if (isUniverse(db, symbol)) {
    const int lastLabel = db.uels.size() - 1;
    if (lastLabel == 0) {
      return db.failAs(ZTB_ERROR_NOT_FOUND, "Cannot find a record in Universe");
    }
    *recPtr =
        makeUniverseRecord(db.recordStorage, symbol, end == End::first ? 1 : lastLabel).release();
    return *recPtr == nullptr ? failure : success;
  }
  if (!db.ensureLoaded(*symbol)) {
    return failure;
  }
  if (symbol->isEmpty()) {
    return db.failAs(ZTB_ERROR_NOT_FOUND, "Cannot find a record in Symbol %s",
                     symbol->name.c_str());
  }
  RecordHandle record = end == End::first ? symbol->firstRecord() : symbol->lastRecord();
  *recPtr = record.release();
  return *recPtr == nullptr ? failure : success;
}

int findEndRecordInSlice(ZTB& db, void* sym, const char** keys, End end, void** recPtr) {
  *recPtr = nullptr;
  AbstractZTBSymbol* symbol = symbolOf(sym);
  if (symbol == nullptr) {
    return failNoSymbol(db);
  }
  if (isUniverse(db, symbol)) {
    return db.fail("Cannot define a slice on the Universe");
  }
  if (!db.ensureLoaded(*symbol)) {
    return failure;
  }
  const char* name = symbol->name.c_str();
  if (symbol->isEmpty()) {
    return db.failAs(ZTB_ERROR_NOT_FOUND, "Cannot find a record in Symbol %s", name);
  }
  requireKeyRoom(*symbol);
  requireKeys(*symbol, keys);
  KeyBuffer mask = {};
  for (int d = 0; d < symbol->dim; ++d) {
    if (keys[d] != nullptr && std::strcmp(keys[d], " ") == 0) {
      continue;
    }
    int number = 0;
    if (!db.uels.find(keys[d], &number)) {
      return failure;
    }
    if (number == -1) {
      return db.failAs(ZTB_ERROR_NOT_FOUND,
                       "Cannot find slice element %s (on position %d) in Symbol %s", keys[d], d + 1,
                       name);
    }
    mask[static_cast<std::size_t>(d)] = number;
  }
  RecordHandle record = end == End::first ? symbol->firstRecordInSlice(mask.data())
                                          : symbol->lastRecordInSlice(mask.data());
  if (record == nullptr) {
    return db.failAs(ZTB_ERROR_NOT_FOUND, "Cannot find a record for slice %s in Symbol %s",
                     recordText(keys, symbol->dim).c_str(), name);
  }
  *recPtr = record.release();
  return success;
}

}  // namespace

int ztbFindRecord(ztbRec* handle, void* sym, const char** keys, void** recPtr) {
  return operation(handle, "ztbFindRecord",
                   [&](ZTB& db) { return findRecord(db, sym, keys, recPtr); });
}

void* ztbFindRecordPy(ztbRec* handle, void* sym, const char** keys, int* status) {
  return handleOperation(handle, {"ztbFindRecordPy", "ztbFindRecord"}, status,
                         [&](ZTB& db, void** result) { return findRecord(db, sym, keys, result); });
}

int ztbFindFirstRecord(ztbRec* handle, void* sym, void** recPtr) {
  return operation(handle, "ztbFindFirstRecord",
                   [&](ZTB& db) { return findEndRecord(db, sym, End::first, recPtr); });
}

void* ztbFindFirstRecordPy(ztbRec* handle, void* sym, int* status) {
  return handleOperation(
      handle, {"ztbFindFirstRecordPy", "ztbFindFirstRecord"}, status,
      [&](ZTB& db, void** result) { return findEndRecord(db, sym, End::first, result); });
}

int ztbFindLastRecord(ztbRec* handle, void* sym, void** recPtr) {
  return operation(handle, "ztbFindLastRecord",
                   [&](ZTB& db) { return findEndRecord(db, sym, End::last, recPtr); });
}

void* ztbFindLastRecordPy(ztbRec* handle, void* sym, int* status) {
  return handleOperation(
      handle, {"ztbFindLastRecordPy", "ztbFindLastRecord"}, status,
      [&](ZTB& db, void** result) { return findEndRecord(db, sym, End::last, result); });
}

int ztbFindFirstRecordSlice(ztbRec* handle, void* sym, const char** keys, void** recPtr) {
  return operation(handle, "ztbFindFirstRecordSlice", [&](ZTB& db) {
    return findEndRecordInSlice(db, sym, keys, End::first, recPtr);
  });
}

void* ztbFindFirstRecordSlicePy(ztbRec* handle, void* sym, const char** keys, int* status) {
  return handleOperation(handle, {"ztbFindFirstRecordSlicePy", "ztbFindFirstRecordSlice"}, status,
                         [&](ZTB& db, void** result) {
                           return findEndRecordInSlice(db, sym, keys, End::first, result);
                         });
}

int ztbFindLastRecordSlice(ztbRec* handle, void* sym, const char** keys, void** recPtr) {
  return operation(handle, "ztbFindLastRecordSlice",
                   [&](ZTB& db) { return findEndRecordInSlice(db, sym, keys, End::last, recPtr); });
}

void* ztbFindLastRecordSlicePy(ztbRec* handle, void* sym, const char** keys, int* status) {
  return handleOperation(handle, {"ztbFindLastRecordSlicePy", "ztbFindLastRecordSlice"}, status,
                         [&](ZTB& db, void** result) {
                           return findEndRecordInSlice(db, sym, keys, End::last, result);
                         });
}

}  // namespace ztb
