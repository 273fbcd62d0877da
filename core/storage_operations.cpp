// Choosing the record store of new symbols, or of one symbol.

#include <stdexcept>

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "store/symbol_factory.h"

namespace ztb {
namespace {

// Only a symbol that is in the table can be replaced there: not the universe, and not one that was
// replaced already.
void requireInTable(ZTB& db, const AbstractZTBSymbol& symbol) {
  if (!db.symbols.contains(symbol.name) || db.symbols.atName(symbol.name) != &symbol) {
    throw std::logic_error("symbol " + symbol.name + " is not in the symbol table");
  }
}

// Rebuilds a symbol on another store and puts it in the old one's place. An unknown code leaves no
// symbol there.
int convert(ZTB& db, dmap::StorageKind kind, void** symPtr) {
  AbstractZTBSymbol* symbol = symbolOf(*symPtr);
  if (symbol->storageKind() == kind) {
    return success;
  }
  if (!db.requireReadable(*symbol)) {
    return failure;
  }
  requireInTable(db, *symbol);
  std::unique_ptr<AbstractZTBSymbol> converted = convertSymbol(kind, *symbol);
  db.retiredSymbols.reserve(db.retiredSymbols.size() + 1);
  db.symbols.replace(symbol, converted.get());
  ++db.recordChanges;
  db.retiredSymbols.emplace_back(symbol)->releaseRecords();
  *symPtr = converted.release();
  return success;
}

int selectStorage(ZTB& db, void** symPtr, int code) {
  const auto kind = static_cast<dmap::StorageKind>(code);
  if (symPtr == nullptr) {
    db.recordStorage = kind;
    return success;
  }
  if (*symPtr == nullptr) {
    return failNoSymbol(db);
  }
  return convert(db, kind, symPtr);
}

}  // namespace

int ztbSelectRecordStorage(ztbRec* handle, void** symPtr, int code) {
  return operation(handle, "ztbSelectRecordStorage",
                   [&](ZTB& db) { return selectStorage(db, symPtr, code); });
}

void* ztbSelectRecordStoragePy(ztbRec* handle, void* sym, int code, int* status) {
  void* symbol = sym;
  *status = operation(handle, {"ztbSelectRecordStoragePy", "ztbSelectRecordStorage"}, [&](ZTB& db) {
    return selectStorage(db, symbol == nullptr ? nullptr : &symbol, code);
  });
  return *status == success ? symbol : nullptr;
}

}  // namespace ztb
