#include "store/symbol_factory.h"

#include <utility>

#include "store/dmap.h"
#include "store/symbol.h"

namespace ztb {

std::unique_ptr<AbstractZTBSymbol> makeSymbol(dmap::StorageKind kind, ZTB* owner,
                                              SymbolDescription description) {
  switch (kind) {
    case dmap::StorageKind::dMap:
      return std::make_unique<ZTBSymbol<dmap::DMap, dmap::DMapIterator>>(owner,
                                                                         std::move(description));
  }
  return nullptr;
}

std::unique_ptr<AbstractZTBSymbolIterator> makeUniverseRecord(dmap::StorageKind kind,
                                                              AbstractZTBSymbol* universe,
                                                              int label) {
  switch (kind) {
    case dmap::StorageKind::dMap:
      return std::make_unique<ZTBSymbolIterator<dmap::DMapIterator>>(universe, label);
  }
  return nullptr;
}

std::unique_ptr<AbstractZTBSymbolIterator> copyRecordHandle(dmap::StorageKind kind,
                                                            AbstractZTBSymbolIterator& record) {
  if (record.onUniverse()) {
    return makeUniverseRecord(kind, record.symbol(), record.universePosition());
  }
  switch (kind) {
    case dmap::StorageKind::dMap:
      return std::make_unique<ZTBSymbolIterator<dmap::DMapIterator>>(
          record.symbol(), static_cast<const dmap::DMapIterator&>(record.storeIterator()));
  }
  return nullptr;
}

}  // namespace ztb
