// The name dictionary of a model: its rows and columns as elements of symbols over labels.
//
// Columns come first, then rows with the objective at their head; labels number from 1 in the order
// in which they first stand in these names, symbols likewise. The elements of a symbol are walked
// in ascending order of their keys. Names and labels differ when ASCII case is folded and fit the
// limits of a database; where a model's own names do not, they are changed and a note tells it:
//   - characters other than letters, digits and underscores in a symbol's name become underscores,
//     and a name that does not begin with a letter gets an "n" in front;
//   - a control character or a double quote in a label becomes an underscore or a single quote;
//   - a name or label that is too long, folds to the same as an earlier one, or names an element of
//     another dimension, or one that is there already, gets a number behind (DistinctNames).
// But for its open searches an object is not changed after its construction.
#ifndef ZTB_PROVIDERS_MODEL_DICTIONARY_H_
#define ZTB_PROVIDERS_MODEL_DICTIONARY_H_

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "providers/model/dictionary_search.h"
#include "providers/model/model_data.h"
#include "providers/model/name_index.h"

namespace lomu {

enum class SymbolType { variable = 5, equation = 6 };

struct DictionarySymbol {
  std::string name;
  std::string text;  // the model's own name, where it had to be changed
  SymbolType type;
  int dimension;
  int userInfo;                   // kind of the variable's bounds, or type of the first row
  std::span<const int> elements;  // row or column numbers, ascending by key; the dictionary's
};

class Dictionary {
 public:
  Dictionary() = default;
  explicit Dictionary(const ModelData& data);
  Dictionary(const Dictionary&) = delete;
  Dictionary& operator=(const Dictionary&) = delete;

  [[nodiscard]] const std::vector<std::string>& labels() const { return labels_; }
  [[nodiscard]] const std::vector<DictionarySymbol>& symbols() const { return symbols_; }
  [[nodiscard]] const std::vector<std::string>& notes() const { return notes_; }

  // The number of a symbol, from 1; 0 if there is none of this name.
  [[nodiscard]] int find(std::string_view name) const;

  // Symbol number, from 1, dimension and keys of a column or row; zeros and null for a number out
  // of range.
  struct Place {
    int symbol;
    int dimension;
    const int* keys;
  };
  [[nodiscard]] Place columnPlace(int column) const { return place(columns_, column); }
  [[nodiscard]] Place rowPlace(int row) const { return place(rows_, row); }

  // Opens a search over a symbol, numbered from 1; null when there is none. The dictionary owns it
  // until it is closed: a caller that fails in the middle may leave it open. Allocates nothing
  // unless one is open: whoever asks could not tell a search that failed from an empty one.
  DictionarySearch* openSearch(int symbol, const int* keys);
  // Null and what is no open search of this dictionary are passed over.
  void closeSearch(const void* search);

 private:
  friend class DictionaryBuilder;

  // Of each row or column: its symbol, and where its keys begin in keys_.
  struct Entry {
    int symbol;
    int dimension;
    std::size_t keys;
  };
  [[nodiscard]] Place place(const std::vector<Entry>& entries, int number) const {
    if (number < 0 || static_cast<std::size_t>(number) >= entries.size()) return {0, 0, nullptr};
    const Entry& entry = entries[static_cast<std::size_t>(number)];
    return {entry.symbol, entry.dimension, keys_.data() + entry.keys};
  }

  std::vector<std::string> labels_;
  std::vector<DictionarySymbol> symbols_;
  NameIndex<FoldedNames> numberOf_;  // places in symbols_
  std::vector<int> elements_;        // of all symbols, one symbol after the other
  std::vector<Entry> columns_;
  std::vector<Entry> rows_;
  std::vector<int> keys_;
  std::vector<std::string> notes_;
  std::vector<std::unique_ptr<DictionarySearch>> searches_;  // open
  std::unique_ptr<DictionarySearch> spare_;                  // for the next one
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_DICTIONARY_H_
