#include "store/abstract_symbol_iterator.h"

#include <cstdio>
#include <stdexcept>

#include "store/abstract_symbol.h"

namespace ztb {

AbstractZTBSymbolIterator::AbstractZTBSymbolIterator(AbstractZTBSymbol* symbol)
    : symbol_(symbol), timesEmptied_(symbol == nullptr ? 0 : symbol->timesEmptied) {}

void AbstractZTBSymbolIterator::moveToSymbolOf(const AbstractZTBSymbolIterator& other) {
  if (symbol_->storageKind() != other.symbol_->storageKind()) {
    throw std::logic_error("symbols " + symbol_->name + " and " + other.symbol_->name +
                           " are on different record stores");
  }
  assignPosition(other);
  symbol_ = other.symbol_;
}

bool AbstractZTBSymbolIterator::failMove(const char* text, const char* symbolName) {
  if (errorBuffer_ == nullptr) {
    errorBuffer_ = std::make_unique<char[]>(messageSize);
  }
  std::snprintf(errorBuffer_.get(), messageSize, "%s%s", text, symbolName);
  return false;
}

}  // namespace ztb
