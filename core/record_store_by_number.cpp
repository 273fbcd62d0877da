// Adding and overwriting records by label numbers: the fast way in.

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>

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

using SlotRoom = std::array<double, dmap::maxSlots>;

// The slots of a record with that content in internal coding, or the default slots of its symbol;
// they stand in `room` where they are not those given.
const double* slotsOf(ZTB& db, const AbstractZTBSymbol& symbol, const Content& content,
                      SlotRoom& room) {
  if (content.text != nullptr) {
    room[ZTB_LEVEL] = db.textNumber(content.text);
    return room.data();
  }
  if (content.values == nullptr) {
    return defaultRecord(symbol);
  }
  if (symbol.type == ZTB_ALIAS || db.specialValueMode == SpecialValueMode::none) {
    return content.values;
  }
  std::transform(content.values, content.values + dmap::slotCount(symbol.type), room.begin(),
                 [&](double value) { return db.mapIn(value); });
  return room.data();
}

// Stores a record and hands its handle out if the caller wants it; without that none is made.
// Always inlined: this is the fast way in, and a call with so many arguments shows there.
[[gnu::always_inline]] inline int storeRecord(ZTB& db, AbstractZTBSymbol& symbol, const int* keys,
                                              int checkUEL, int returnSymPtr, void** recPtr,
                                              const Content& content) {
  if (!db.ensureLoaded(symbol)) {
    return failure;
  }
  requireKeys(symbol, keys);
  if (checkUEL != 0 && !checkNumbers(db, symbol, keys)) {
    return failure;
  }
  SlotRoom room;
  const double* slots = slotsOf(db, symbol, content, room);
  // Without content, a record that exists stays as it is.
  const bool overwrite = content.values != nullptr || content.text != nullptr;
  if (returnSymPtr == 0) {
    if (!symbol.putRecord(keys, slots, overwrite)) {
      return failure;
    }
  } else {
    RecordHandle record = symbol.storeRecord(keys, slots, overwrite);
    if (record == nullptr) {
      return failure;
    }
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
    if (haveValues != 0 && values == nullptr) {
      throw std::logic_error("no values are given for symbol " + symbol->name);
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
