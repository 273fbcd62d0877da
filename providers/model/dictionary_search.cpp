#include "providers/model/dictionary_search.h"

#include "providers/model/dictionary.h"

namespace lomu {

DictionarySearch::DictionarySearch(const Dictionary& dictionary, const DictionarySymbol& symbol,
                                   const int* keys)
    : dictionary_(dictionary), symbol_(symbol), keys_(keys, keys + symbol.dimension) {}

int DictionarySearch::next() {
  while (position_ < symbol_.elements.size()) {
    const int number = symbol_.elements[position_++];
    if (matches(number)) return number;
  }
  return -1;
}

bool DictionarySearch::matches(int number) const {
  const int* own = symbol_.type == SymbolType::variable ? dictionary_.columnPlace(number).keys
                                                        : dictionary_.rowPlace(number).keys;
  for (std::size_t d = 0; d < keys_.size(); ++d) {
    if (keys_[d] != 0 && keys_[d] != own[d]) return false;
  }
  return true;
}

}  // namespace lomu
