#include "store/symbol_factory.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <utility>

#include "store/dmap.h"
#include "store/dmap_gtree.h"
#include "store/dmap_vector.h"
#include "store/symbol.h"

namespace ztb {
namespace {

template <class StoreType, class IteratorType>
struct StoreFamily {
  using Store = StoreType;
  using Iterator = IteratorType;
};

// Calls `visitor` with the family of a store and hands its result on; null for a kind that no
// store has.
template <class Visitor>
auto visitStoreFamily(dmap::StorageKind kind, Visitor&& visitor)
    -> decltype(visitor(StoreFamily<dmap::DMap, dmap::DMapIterator>{})) {
  switch (kind) {
    case dmap::StorageKind::dMap:
      return visitor(StoreFamily<dmap::DMap, dmap::DMapIterator>{});
    case dmap::StorageKind::dMapVector:
      return visitor(StoreFamily<dmap::DMapVector, dmap::VectorIterator>{});
    case dmap::StorageKind::dMapGTree:
      return visitor(StoreFamily<dmap::DMapGTree, dmap::TreeIterator>{});
  }
  return nullptr;
}

}  // namespace

std::unique_ptr<AbstractZTBSymbol> makeSymbol(dmap::StorageKind kind, ZTB* owner,
                                              SymbolDescription description) {
  // Iterators keep a type in 8 bits. A store for a type beyond them is made as for the nearest that
  // fits, which has as many slots.
  const int type = description.type;
  description.type = std::clamp<int>(type, 0, std::numeric_limits<std::uint8_t>::max());
  auto symbol = visitStoreFamily(kind, [&](auto family) -> std::unique_ptr<AbstractZTBSymbol> {
    using Family = decltype(family);
    return std::make_unique<ZTBSymbol<typename Family::Store, typename Family::Iterator>>(
        owner, std::move(description));
  });
  if (symbol != nullptr) {
    symbol->type = type;
  }
  return symbol;
}

std::unique_ptr<AbstractZTBSymbol> convertSymbol(dmap::StorageKind kind,
                                                 AbstractZTBSymbol& source) {
  if (source.storageKind() == kind) {
    return nullptr;
  }
  SymbolDescription description;
  description.name = source.name;
  description.dim = source.dim;
  description.type = source.type;
  description.number = source.symbolNumber;
  description.userInfo = source.userInfo;
  description.text = source.text;
  std::unique_ptr<AbstractZTBSymbol> converted =
      makeSymbol(kind, source.database, std::move(description));
  if (converted != nullptr) {
    converted->loaded = source.loaded;
    converted->usedAsDomain = source.usedAsDomain;
    converted->writeRecorded = source.writeRecorded;
    converted->domainMembership = source.domainMembership;
    converted->takeRecords(source);
  }
  return converted;
}

std::unique_ptr<AbstractZTBSymbolIterator> makeUniverseRecord(dmap::StorageKind kind,
                                                              AbstractZTBSymbol* universe,
                                                              int label) {
  return visitStoreFamily(kind, [&](auto family) -> std::unique_ptr<AbstractZTBSymbolIterator> {
    return std::make_unique<ZTBSymbolIterator<typename decltype(family)::Iterator>>(universe,
                                                                                    label);
  });
}

std::unique_ptr<AbstractZTBSymbolIterator> copyRecordHandle(dmap::StorageKind kind,
                                                            AbstractZTBSymbolIterator& record) {
  if (record.onUniverse()) {
    return makeUniverseRecord(kind, record.symbol(), record.universePosition());
  }
  return visitStoreFamily(kind, [&](auto family) -> std::unique_ptr<AbstractZTBSymbolIterator> {
    using Iterator = typename decltype(family)::Iterator;
    if (record.symbol()->storageKind() != kind) {
      throw std::logic_error("symbol " + record.symbol()->name +
                             " is not on the record store of new symbols");
    }
    return std::make_unique<ZTBSymbolIterator<Iterator>>(
        record.symbol(), static_cast<const Iterator&>(record.storeIterator()));
  });
}

}  // namespace ztb
