#include "providers/model/dictionary_search.h"

#include <algorithm>

#include "providers/model/dictionary.h"

namespace lomu {

void DictionarySearch::begin(const Dictionary& dictionary, const DictionarySymbol& symbol,
                             const int* keys) {
  dictionary_ = &dictionary;
  symbol_ = &symbol;
  const auto end = std::copy(keys, keys + symbol.dimension, keys_.begin());
  matchesAll_ = std::all_of(keys_.begin(), end, [](int key) { return key == 0; });
  position_ = 0;
}

int DictionarySearch::next() {
  while (position_ < symbol_->elements.size()) {
    const int number = symbol_->elements[position_++];
    if (matchesAll_ || matches(number)) return number;
  }
  return -1;
}

bool DictionarySearch::matches(int number) const {
  const int* own = symbol_->type == SymbolType::variable ? dictionary_->columnPlace(number).keys
                                                         : dictionary_->rowPlace(number).keys;
  const int* asked = keys_.data();
  return std::equal(asked, asked + symbol_->dimension, own,
                    [](int key, int its) { return key == 0 || key == its; });
}

}  // namespace lomu
