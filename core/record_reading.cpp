// Reading values, texts and keys of records.

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "core/record_values.h"
#include "core/text.h"

namespace ztb {
namespace {

int readSlot(ztbRec* handle, const char* name, void* rec, int slot, double* value) {
  return operation(handle, name, [&](const ZTB& db) {
    *value = db.mapOut(valueOfSlot(requireRecord(rec), slot));
    return success;
  });
}

// The explanatory text that a level names; empty when it names none.
const char* textOfLevel(const ZTB& db, double level) {
  const bool namesText = level >= 1.0 && level < db.textPool.size();
  return namesText ? db.textPool.at(static_cast<int>(level)) : "";
}

// Runs `use` with a symbol whose values lie one behind the other, if it has records.
template <class Use>
int withValuesInPlace(ZTB& db, void* sym, Use&& use) {
  AbstractZTBSymbol* symbol = symbolOf(sym);
  if (symbol == nullptr) {
    return failNoSymbol(db);
  }
  if (symbol->type != ZTB_PARAMETER || symbol->storageKind() != dmap::StorageKind::dMapVector) {
    return success;
  }
  if (!db.ensureLoaded(*symbol)) {
    return failure;
  }
  if (!symbol->isEmpty()) {
    use(*symbol);
  }
  return success;
}

struct HeldByCaller : ztbHeldValues {
  dmap::HeldMemory* memory = nullptr;
};

// Runs on any thread, also when the database is gone.
void releaseHeld(ztbHeldValues* held) {
  const std::unique_ptr<HeldByCaller> ended(static_cast<HeldByCaller*>(held));
  ended->memory->drop();
}

void requirePosition(const AbstractZTBSymbol& symbol, int position) {
  if (position < 0 || position >= symbol.dim) {
    throw std::logic_error("symbol " + symbol.name + " has no index position " +
                           std::to_string(position + 1));
  }
}

}  // namespace

int ztbGetLevel(ztbRec* handle, void* rec, double* value) {
  return readSlot(handle, "ztbGetLevel", rec, ZTB_LEVEL, value);
}

int ztbGetMarginal(ztbRec* handle, void* rec, double* value) {
  return readSlot(handle, "ztbGetMarginal", rec, ZTB_MARGINAL, value);
}

int ztbGetLower(ztbRec* handle, void* rec, double* value) {
  return readSlot(handle, "ztbGetLower", rec, ZTB_LOWER, value);
}

int ztbGetUpper(ztbRec* handle, void* rec, double* value) {
  return readSlot(handle, "ztbGetUpper", rec, ZTB_UPPER, value);
}

int ztbGetScale(ztbRec* handle, void* rec, double* value) {
  return readSlot(handle, "ztbGetScale", rec, ZTB_SCALE, value);
}

int ztbGetElemText(ztbRec* handle, void* rec, char* text) {
  return operation(handle, "ztbGetElemText", [&](ZTB& db) {
    AbstractZTBSymbolIterator& record = requireRecord(rec);
    if (isUniverse(db, record.symbol())) {
      return db.fail("Cannot get explanatory text for records of the Universe");
    }
    copyText(text, textOfLevel(db, valueOfSlot(record, ZTB_LEVEL)));
    return success;
  });
}

int ztbGetKeys(ztbRec* handle, void* rec, int dim, char** keys) {
  return operation(handle, "ztbGetKeys", [&](ZTB& db) {
    AbstractZTBSymbolIterator* record = recordOf(rec);
    if (record == nullptr) {
      return failNoRecord(db);
    }
    if (record->onUniverse()) {
      copyText(keys[0], db.uels.labelOf(record->universePosition()));
      return success;
    }
    if (dim > 0) {
      requirePosition(*record->symbol(), dim - 1);
    }
    const int* numbers = record->keys();
    for (int d = 0; d < dim; ++d) {
      copyText(keys[d], db.uels.labelOf(numbers[d]));
    }
    return success;
  });
}

int ztbGetKey(ztbRec* handle, void* rec, int index, char* key) {
  return operation(handle, "ztbGetKey", [&](ZTB& db) {
    AbstractZTBSymbolIterator* record = recordOf(rec);
    if (record == nullptr) {
      return failNoRecord(db);
    }
    if (record->onUniverse()) {
      copyText(key, db.uels.labelOf(record->universePosition()));
      return success;
    }
    if (index >= record->dimension()) {
      return db.fail("Index too large");
    }
    requirePosition(*record->symbol(), index);
    copyText(key, db.uels.labelOf(record->keys()[index]));
    return success;
  });
}

int ztbGetRecordRaw(ztbRec* handle, void* rec, int /*dim*/, int* keys, double* values) {
  return operation(handle, {"ztbGetRecordRaw", "ztbGetKeys", "ztbGetRecordRaw"}, [&](ZTB& db) {
    AbstractZTBSymbolIterator* record = recordOf(rec);
    if (record == nullptr) {
      return failNoRecord(db);
    }
    if (record->onUniverse()) {
      keys[0] = record->universePosition();
      return success;
    }
    record->copyRecord(keys, values);
    const int type = record->symbol()->type;
    const int copied = type == ZTB_VARIABLE || type == ZTB_EQUATION ? dmap::maxSlots : 1;
    for (int slot = 0; slot < copied; ++slot) {
      values[slot] = db.mapOut(values[slot]);
    }
    return success;
  });
}

int ztbReadRecords(ztbRec* handle, void* rec, int most, int* const* keys, double* const* values) {
  return operation(handle, "ztbReadRecords", [&](ZTB& db) {
    if (rec == nullptr) {
      return failNoRecord(db);
    }
    if (most < 1) {
      return db.fail("%d records cannot be read", most);
    }
    AbstractZTBSymbolIterator& record = *recordOf(rec);
    const int count = record.copyRecords(most, db.uels.size() - 1, keys, values);
    if (db.specialValueMode != SpecialValueMode::none && !record.onUniverse()) {
      for (int slot = 0; slot < dmap::slotCount(record.symbol()->type); ++slot) {
        if (values[slot] == nullptr) continue;
        std::transform(values[slot], values[slot] + count, values[slot],
                       [&](double value) { return db.mapOut(value); });
      }
    }
    return count;
  });
}

int ztbValuesInPlace(ztbRec* handle, void* sym, const double** values) {
  return operation(handle, "ztbValuesInPlace", [&](ZTB& db) {
    *values = nullptr;
    return withValuesInPlace(
        db, sym, [&](AbstractZTBSymbol& symbol) { *values = symbol.firstRecord()->values(); });
  });
}

int ztbHoldValues(ztbRec* handle, void* sym, ztbHeldValues** held) {
  return operation(handle, "ztbHoldValues", [&](ZTB& db) {
    *held = nullptr;
    return withValuesInPlace(db, sym, [&](AbstractZTBSymbol& symbol) {
      auto made = std::make_unique<HeldByCaller>();
      const dmap::HeldValues values = symbol.holdValues();
      *static_cast<ztbHeldValues*>(made.get()) = {values.values, values.count, releaseHeld};
      made->memory = values.memory;
      *held = made.release();
    });
  });
}

}  // namespace ztb
