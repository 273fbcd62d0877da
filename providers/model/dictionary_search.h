// A walk over the elements of a dictionary symbol, in the order in which the symbol holds them.
#ifndef ZTB_PROVIDERS_MODEL_DICTIONARY_SEARCH_H_
#define ZTB_PROVIDERS_MODEL_DICTIONARY_SEARCH_H_

#include <cstddef>
#include <vector>

namespace lomu {

class Dictionary;
struct DictionarySymbol;

class DictionarySearch {
 public:
  // Walks the elements whose keys match; a key of 0 matches every label.
  DictionarySearch(const Dictionary& dictionary, const DictionarySymbol& symbol, const int* keys);

  // The row or column number of the next element, -1 behind the last.
  int next();

 private:
  [[nodiscard]] bool matches(int number) const;

  const Dictionary& dictionary_;
  const DictionarySymbol& symbol_;
  std::vector<int> keys_;
  std::size_t position_ = 0;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_DICTIONARY_SEARCH_H_
