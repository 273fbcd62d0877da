// Makes symbols and universe handles over the store that a code names.
#ifndef ZTB_STORE_SYMBOL_FACTORY_H_
#define ZTB_STORE_SYMBOL_FACTORY_H_

#include <memory>

#include "store/abstract_symbol.h"

namespace ztb {

// A loaded symbol without records, domains or marks that stands for itself; null for a kind that
// no store has. The type may be any number.
std::unique_ptr<AbstractZTBSymbol> makeSymbol(dmap::StorageKind kind, ZTB* owner,
                                              SymbolDescription description);

// The symbol rebuilt on another store, with all records in their order; the source stays as it is.
// Its domains are not taken over and it stands for itself. Null for a kind that no store has, and
// for the kind that the source has already.
std::unique_ptr<AbstractZTBSymbol> convertSymbol(dmap::StorageKind kind, AbstractZTBSymbol& source);

// A handle on a label of the universe; null for a kind that no store has.
std::unique_ptr<AbstractZTBSymbolIterator> makeUniverseRecord(dmap::StorageKind kind,
                                                              AbstractZTBSymbol* universe,
                                                              int label);

// A handle that walks the whole symbol from the place where `record` stands, or the universe from
// its label. Null for a kind that no store has; throws std::logic_error when the symbol's store is
// of another kind.
std::unique_ptr<AbstractZTBSymbolIterator> copyRecordHandle(dmap::StorageKind kind,
                                                            AbstractZTBSymbolIterator& record);

}  // namespace ztb

#endif  // ZTB_STORE_SYMBOL_FACTORY_H_
