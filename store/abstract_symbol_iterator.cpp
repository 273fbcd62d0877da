#include "store/abstract_symbol_iterator.h"

#include <cstdio>

namespace ztb {

bool AbstractZTBSymbolIterator::failMove(const char* text, const char* symbolName) {
  if (errorBuffer_ == nullptr) {
    errorBuffer_ = std::make_unique<char[]>(messageSize);
  }
  std::snprintf(errorBuffer_.get(), messageSize, "%s%s", text, symbolName);
  return false;
}

}  // namespace ztb
