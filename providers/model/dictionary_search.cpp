#include "providers/model/dictionary_search.h"

#include <algorithm>

#include "providers/model/dictionary.h"

namespace lomu {

void DictionarySearch::begin(const Dictionary& dictionary, const DictionarySymbol& symbol,
                             const int* keys) {
  dictionary_ = &dictionary;
  symbol_ = &symbol;
  element_ = symbol.elements.data();
  end_ = element_ + symbol.elements.size();
  const auto end = std::copy(keys, keys + symbol.dimension, keys_.begin());
  matchesAll_ = std::all_of(keys_.begin(), end, [](int key) { return key == 0; });
}

bool DictionarySearch::matches(int number) const {
  const int* own = symbol_->type == SymbolType::variable ? dictionary_->columnPlace(number).keys
                                                         : dictionary_->rowPlace(number).keys;
  const int* asked = keys_.data();
  return std::equal(asked, asked + symbol_->dimension, own,
                    [](int key, int its) { return key == 0 || key == its; });
}

}  // namespace lomu
