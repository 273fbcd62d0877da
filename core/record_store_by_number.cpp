// Adding and overwriting records by label numbers: the fast way in.

#include <algorithm>
#include <cstring>

#include "core/default_records.h"
#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"

namespace ztb {
namespace {

using RecordHandle = AbstractZTBSymbol::RecordHandle;

// What a record is to hold: values (five, whatever the symbol), a text, or nothing.
struct Content {
  const double* values = nullptr;
  const char* text = nullptr;
};

bool checkNumbers(ZTB& db, const AbstractZTBSymbol& symbol, const int* keys) {
  const int largest = db.uels.size() - 1;
  for (int d = 0; d < symbol.dim; ++d) {
    if (keys[d] < 1) {
      return db.fail(
                 "Error when adding record to symbol %s: UEL needs to be greater than zero "
                 "but is %d",
                 symbol.name.c_str(), keys[d]) == success;
    }
    if (keys[d] > largest) {
      return db.fail(
                 "Error when adding record to symbol %s: UEL %d is unknown. Largest known UEL "
                 "is %d",
                 symbol.name.c_str(), keys[d], largest) == success;
    }
  }
  return true;
}

// Puts a record with its content, or with the default values of its symbol, into the symbol.
// Content overwrites a record that exists; without content such a record stays as it is.
RecordHandle storeByNumbers(ZTB& db, AbstractZTBSymbol& symbol, const int* keys, bool checkUEL,
                            const Content& content) {
  if (!db.ensureLoaded(symbol) || (checkUEL && !checkNumbers(db, symbol, keys))) {
    return nullptr;
  }
  if (content.text != nullptr) {
    const double level = db.textNumber(content.text);
    return symbol.storeRecord(keys, &level, true);
  }
  if (content.values == nullptr) {
    return symbol.storeRecord(keys, defaultRecord(symbol), false);
  }
  double slots[dmap::maxSlots];
  std::copy_n(content.values, dmap::slotCount(symbol.type), slots);
  if (symbol.type != ZTB_ALIAS && db.specialValueMode != SpecialValueMode::none) {
    for (int slot = 0; slot < dmap::slotCount(symbol.type); ++slot) {
      slots[slot] = db.mapIn(slots[slot]);
    }
  }
  return symbol.storeRecord(keys, slots, true);
}

// Stores a record and hands its handle out if the caller wants it.
int storeRecord(ZTB& db, AbstractZTBSymbol& symbol, const int* keys, int checkUEL, int returnSymPtr,
                void** recPtr, const Content& content) {
  RecordHandle record = storeByNumbers(db, symbol, keys, checkUEL != 0, content);
  if (record == nullptr) {
    return failure;
  }
  if (returnSymPtr != 0) {
    *recPtr = record.release();
  }
  markWritten(db, symbol);
  return success;
}

int failNotStorable(ZTB& db, const AbstractZTBSymbol* symbol) {
  return symbol == nullptr ? failNoSymbol(db) : db.fail("Cannot add records to the Universe");
}

bool isStorable(const ZTB& db, const AbstractZTBSymbol* symbol) {
  return symbol != nullptr && !isUniverse(db, symbol);
}

}  // namespace

int ztbMergeRecordInt(ztbRec* handle, void* sym, const int* keys, int checkUEL, int returnSymPtr,
                      void** recPtr, int haveValues, const double* values) {
  return operation(handle, "ztbMergeRecordInt", [&](ZTB& db) {
    AbstractZTBSymbol* symbol = symbolOf(sym);
    if (!isStorable(db, symbol)) {
      return failNotStorable(db, symbol);
    }
    if (symbol->type == ZTB_SET && haveValues != 0) {
      return db.fail("Cannot add set records with values. Use ztbMergeSetRecordInt");
    }
    return storeRecord(db, *symbol, keys, checkUEL, returnSymPtr, recPtr,
                       {haveValues != 0 ? values : nullptr, nullptr});
  });
}

void* ztbMergeRecordIntPy(ztbRec* handle, void* sym, const int* keys, int checkUEL,
                          int returnSymPtr, int haveValues, const double* values, int* status) {
  return handleFromPlain("ztbMergeRecordIntPy", status, [&](void** result) {
    return ztbMergeRecordInt(handle, sym, keys, checkUEL, returnSymPtr, result, haveValues, values);
  });
}

int ztbMergeSetRecordInt(ztbRec* handle, void* sym, const int* keys, int checkUEL, int returnSymPtr,
                         void** recPtr, const char* text) {
  return operation(handle, {"ztbMergeSetRecordInt", "ztbMergeRecordInt"}, [&](ZTB& db) {
    AbstractZTBSymbol* symbol = symbolOf(sym);
    if (!isStorable(db, symbol)) {
      return failNotStorable(db, symbol);
    }
    if (symbol->type != ZTB_SET) {
      return db.fail("ztbMergeSetRecordInt can only be used with set symbols");
    }
    if (text != nullptr && std::strlen(text) > ZTB_MAX_TEXT_LENGTH) {
      return db.fail("Explanatory text too long. Max length is %d", ZTB_MAX_TEXT_LENGTH);
    }
    return storeRecord(db, *symbol, keys, checkUEL, returnSymPtr, recPtr, {nullptr, text});
  });
}

void* ztbMergeSetRecordIntPy(ztbRec* handle, void* sym, const int* keys, int checkUEL,
                             int returnSymPtr, const char* text, int* status) {
  return handleFromPlain("ztbMergeSetRecordIntPy", status, [&](void** result) {
    return ztbMergeSetRecordInt(handle, sym, keys, checkUEL, returnSymPtr, result, text);
  });
}

int ztbAddRecordRaw(ztbRec* handle, void* sym, const int* keys, const double* values,
                    const char* text) {
  traceOperation("ztbAddRecordRaw");
  ZTB& db = databaseOf(handle);
  const AbstractZTBSymbol* symbol = symbolOf(sym);
  if (!isStorable(db, symbol)) {
    return failNotStorable(db, symbol);
  }
  if (symbol->type == ZTB_SET) {
    return ztbMergeSetRecordInt(handle, sym, keys, 1, 0, nullptr, text);
  }
  return ztbMergeRecordInt(handle, sym, keys, 1, 0, nullptr, 1, values);
}

}  // namespace ztb
