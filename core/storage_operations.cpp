// Choosing the record store of new symbols, or of one symbol.

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "store/symbol_factory.h"

namespace ztb {
namespace {

// Rebuilds a symbol on another store and puts it in the old one's place. An unknown code leaves no
// symbol there.
void convert(ZTB& db, dmap::StorageKind kind, void** symPtr) {
  AbstractZTBSymbol* symbol = symbolOf(*symPtr);
  if (symbol->storageKind() == kind) {
    return;
  }
  std::unique_ptr<AbstractZTBSymbol> converted = convertSymbol(kind, *symbol);
  db.retiredSymbols.reserve(db.retiredSymbols.size() + 1);
  db.symbols.replace(symbol, converted.get());
  db.retiredSymbols.emplace_back(symbol)->clearRecords();
  *symPtr = converted.release();
}

int selectStorage(ZTB& db, void** symPtr, int code) {
  const auto kind = static_cast<dmap::StorageKind>(code);
  if (symPtr == nullptr) {
    db.recordStorage = kind;
  } else {
    convert(db, kind, symPtr);
  }
  return success;
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
  return symbol;
}

}  // namespace ztb
