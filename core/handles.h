// From the untyped handles of the boundary to objects, and the checks that operations share.
#ifndef ZTB_CORE_HANDLES_H_
#define ZTB_CORE_HANDLES_H_

#include <array>
#include <stdexcept>
#include <string>

#include "core/ztb.h"
#include "store/abstract_symbol.h"

namespace ztb {

inline AbstractZTBSymbol* symbolOf(void* handle) {
  return static_cast<AbstractZTBSymbol*>(handle);
}
inline AbstractZTBSymbolIterator* recordOf(void* handle) {
  return static_cast<AbstractZTBSymbolIterator*>(handle);
}

// The symbol of a handle for operations that do not test it; throws std::logic_error for null.
inline AbstractZTBSymbol& requireSymbol(void* handle) {
  if (handle == nullptr) {
    throw std::logic_error("the symbol handle is null");
  }
  return *symbolOf(handle);
}
// The record of a handle for operations that do not test it; throws std::logic_error for null.
inline AbstractZTBSymbolIterator& requireRecord(void* handle) {
  if (handle == nullptr) {
    throw std::logic_error("the record handle is null");
  }
  return *recordOf(handle);
}

inline bool isUniverse(const ZTB& db, const AbstractZTBSymbol* symbol) {
  return symbol == db.universe.get();
}

inline int failNoSymbol(ZTB& db) {
  return db.fail("No symbol handle specified");
}
inline int failNoRecord(ZTB& db) {
  return db.fail("No symbol record handle specified");
}

// Counts a write, and sets the mark of write recording while recording is on.
inline void markWritten(ZTB& db, AbstractZTBSymbol& symbol) {
  ++db.recordChanges;
  if (db.writeRecording) {
    symbol.writeRecorded = true;
  }
}

// Room for the label numbers of one record, all zero at first.
using KeyBuffer = std::array<int, dmap::maxDimension>;

// Throws std::logic_error unless a key of the symbol has room in a KeyBuffer: only a symbol made
// with given domains can have more positions, or fewer than none.
inline void requireKeyRoom(const AbstractZTBSymbol& symbol) {
  if (symbol.dim < 0 || symbol.dim > dmap::maxDimension) {
    throw std::logic_error("dimension " + std::to_string(symbol.dim) + " of symbol " + symbol.name +
                           " is outside [0," + std::to_string(dmap::maxDimension) + "]");
  }
}

[[noreturn]] void throwNoKeys(const AbstractZTBSymbol& symbol);

// Throws std::logic_error when the symbol has positions and there is no array of keys for them.
inline void requireKeys(const AbstractZTBSymbol& symbol, const void* keys) {
  if (keys == nullptr && symbol.dim > 0) {
    throwNoKeys(symbol);
  }
}

// A record's labels for messages, as ("a","b"); of dimension 0 as (").
std::string recordText(const char* const* keys, int dim);

}  // namespace ztb

#endif  // ZTB_CORE_HANDLES_H_
