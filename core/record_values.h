// The value slots of a record, guarded against slots that it does not have.
#ifndef ZTB_CORE_RECORD_VALUES_H_
#define ZTB_CORE_RECORD_VALUES_H_

#include <stdexcept>
#include <string>

#include "store/abstract_symbol.h"

namespace ztb {

// Throws std::logic_error unless records under the handle have such a slot.
inline void requireSlot(const AbstractZTBSymbolIterator& record, int slot) {
  const AbstractZTBSymbol& symbol = *record.symbol();
  if (slot >= dmap::slotCount(symbol.type)) {
    throw std::logic_error("records of symbol " + symbol.name + " have no value slot " +
                           std::to_string(slot) + ", only a level");
  }
}

// One slot of the record under a handle. Throws std::logic_error when the handle stands on no
// record or its symbol's records have no such slot.
inline double valueOfSlot(AbstractZTBSymbolIterator& record, int slot) {
  requireSlot(record, slot);
  const double* atHand = record.valuesAtHand();
  return (atHand == nullptr ? record.values() : atHand)[slot];
}

// The same to be written to.
inline double& slotToWrite(AbstractZTBSymbolIterator& record, int slot) {
  requireSlot(record, slot);
  double* atHand = record.valuesAtHand();
  return (atHand == nullptr ? record.valuesToWrite() : atHand)[slot];
}

}  // namespace ztb

#endif  // ZTB_CORE_RECORD_VALUES_H_
