// Adding, merging and deleting records, and setting their values and texts.

#include <cstring>

#include "core/default_records.h"
#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "core/record_values.h"

namespace ztb {
namespace {

// The numbers of a record's labels, which enter the universe; false when one is refused.
bool mergeLabels(ZTB& db, const AbstractZTBSymbol& symbol, const char** keys, KeyBuffer& numbers) {
  requireKeyRoom(symbol);
  requireKeys(symbol, keys);
  for (int d = 0; d < symbol.dim; ++d) {
    if (!db.uels.merge(keys[d], &numbers[static_cast<std::size_t>(d)])) {
      return false;
    }
  }
  return true;
}

int addRecord(ZTB& db, void* sym, const char** keys, void** recPtr) {
  *recPtr = nullptr;
  AbstractZTBSymbol* symbol = symbolOf(sym);
  if (symbol == nullptr) {
    return failNoSymbol(db);
  }
  if (isUniverse(db, symbol)) {
    return db.fail("Cannot add records to the Universe");
  }
  KeyBuffer numbers = {};
  if (!db.ensureLoaded(*symbol) || !mergeLabels(db, *symbol, keys, numbers)) {
    return failure;
  }
  const double* defaults = defaultRecord(*symbol);
  *recPtr = symbol->addRecord(numbers.data(), defaults, defaults).release();
  if (*recPtr == nullptr) {
    return db.failAs(ZTB_ERROR_EXISTS, "Record %s exists already for symbol %s",
                     recordText(keys, symbol->dim).c_str(), symbol->name.c_str());
  }
  markWritten(db, *symbol);
  return success;
}

int mergeRecord(ZTB& db, void* sym, const char** keys, void** recPtr) {
  AbstractZTBSymbol* symbol = symbolOf(sym);
  if (symbol == nullptr) {
    return failNoSymbol(db);
  }
  if (isUniverse(db, symbol)) {
    return db.fail("Cannot merge records to the Universe");
  }
  KeyBuffer numbers = {};
  if (!db.ensureLoaded(*symbol) || !mergeLabels(db, *symbol, keys, numbers)) {
    return failure;
  }
  const double* defaults = defaultRecord(*symbol);
  AbstractZTBSymbol::RecordHandle record;
  AbstractZTBSymbol::RecordHandle* wanted = recPtr == nullptr ? nullptr : &record;
  if (!symbol->mergeRecord(numbers.data(), defaults, defaults, wanted).first) {
    return failure;
  }
  if (recPtr != nullptr) {
    *recPtr = record.release();
  }
  markWritten(db, *symbol);
  return success;
}

int writeSlot(ztbRec* handle, const char* name, void* rec, int slot, double value) {
  return operation(handle, name, [&](ZTB& db) {
    AbstractZTBSymbolIterator& record = requireRecord(rec);
    markWritten(db, *record.symbol());
    slotToWrite(record, slot) = db.mapIn(value);
    return success;
  });
}

}  // namespace

int ztbAddRecord(ztbRec* handle, void* sym, const char** keys, void** recPtr) {
  return operation(handle, "ztbAddRecord",
                   [&](ZTB& db) { return addRecord(db, sym, keys, recPtr); });
}

void* ztbAddRecordPy(ztbRec* handle, void* sym, const char** keys, int* status) {
  return handleOperation(handle, {"ztbAddRecordPy", "ztbAddRecord"}, status,
                         [&](ZTB& db, void** result) { return addRecord(db, sym, keys, result); });
}

int ztbMergeRecord(ztbRec* handle, void* sym, const char** keys, void** recPtr) {
  return operation(handle, "ztbMergeRecord",
                   [&](ZTB& db) { return mergeRecord(db, sym, keys, recPtr); });
}

void* ztbMergeRecordPy(ztbRec* handle, void* sym, const char** keys, int* status) {
  return handleOperation(
      handle, {"ztbMergeRecordPy", "ztbMergeRecord"}, status,
      [&](ZTB& db, void** result) { return mergeRecord(db, sym, keys, result); });
}

int ztbDeleteRecord(ztbRec* handle, void* rec) {
  return operation(handle, "ztbDeleteRecord", [&](ZTB& db) {
    AbstractZTBSymbolIterator* record = recordOf(rec);
    if (record == nullptr) {
      return failNoRecord(db);
    }
    AbstractZTBSymbol* symbol = record->symbol();
    if (isUniverse(db, symbol)) {
      return db.fail("Cannot delete the Universe");
    }
    markWritten(db, *symbol);
    symbol->eraseRecord(*record);
    return success;
  });
}

int ztbSetLevel(ztbRec* handle, void* rec, double value) {
  return writeSlot(handle, "ztbSetLevel", rec, ZTB_LEVEL, value);
}

int ztbSetMarginal(ztbRec* handle, void* rec, double value) {
  return writeSlot(handle, "ztbSetMarginal", rec, ZTB_MARGINAL, value);
}

int ztbSetLower(ztbRec* handle, void* rec, double value) {
  return writeSlot(handle, "ztbSetLower", rec, ZTB_LOWER, value);
}

int ztbSetUpper(ztbRec* handle, void* rec, double value) {
  return writeSlot(handle, "ztbSetUpper", rec, ZTB_UPPER, value);
}

int ztbSetScale(ztbRec* handle, void* rec, double value) {
  return writeSlot(handle, "ztbSetScale", rec, ZTB_SCALE, value);
}

int ztbSetElemText(ztbRec* handle, void* rec, const char* text) {
  return operation(handle, "ztbSetElemText", [&](ZTB& db) {
    AbstractZTBSymbolIterator& record = requireRecord(rec);
    if (isUniverse(db, record.symbol())) {
      return db.fail("Cannot set explanatory text for records of the Universe");
    }
    const char* given = text == nullptr ? "" : text;
    if (std::strlen(given) > ZTB_MAX_TEXT_LENGTH) {
      return db.fail("Explanatory text too long. Max length is %d", ZTB_MAX_TEXT_LENGTH);
    }
    double& level = slotToWrite(record, ZTB_LEVEL);
    markWritten(db, *record.symbol());
    level = given[0] == '\0' ? 0.0 : db.textNumber(given);
    return success;
  });
}

}  // namespace ztb
