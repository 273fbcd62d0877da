// A walk over the elements of a dictionary symbol, in the order in which the symbol holds them.
#ifndef ZTB_PROVIDERS_MODEL_DICTIONARY_SEARCH_H_
#define ZTB_PROVIDERS_MODEL_DICTIONARY_SEARCH_H_

#include <array>
#include <cstddef>

namespace lomu {

class Dictionary;
struct DictionarySymbol;

class DictionarySearch {
 public:
  // Begins a walk over the elements whose keys match; a key of 0 matches every label. Allocates
  // nothing.
  void begin(const Dictionary& dictionary, const DictionarySymbol& symbol, const int* keys);

  // The row or column number of the next element, -1 behind the last. REQUIRES begin.
  int next() {
    while (element_ != end_) {
      const int number = *element_++;
      if (matchesAll_ || matches(number)) return number;
    }
    return -1;
  }

 private:
  [[nodiscard]] bool matches(int number) const;

  static constexpr std::size_t kMaxDimension = 20;

  const Dictionary* dictionary_ = nullptr;
  const DictionarySymbol* symbol_ = nullptr;
  std::array<int, kMaxDimension> keys_{};
  bool matchesAll_ = false;
  const int* element_ = nullptr;  // the next one
  const int* end_ = nullptr;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_DICTIONARY_SEARCH_H_
