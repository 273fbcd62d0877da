// Makes a dictionary from the names of a model's rows and columns.
#ifndef ZTB_PROVIDERS_MODEL_DICTIONARY_BUILDER_H_
#define ZTB_PROVIDERS_MODEL_DICTIONARY_BUILDER_H_

#include <cstddef>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "providers/model/dictionary.h"
#include "providers/model/distinct_names.h"
#include "providers/model/element_name.h"

namespace lomu {

class DictionaryBuilder {
 public:
  explicit DictionaryBuilder(Dictionary& dictionary)
      : dictionary_(dictionary), taken_(dictionary) {}

  void build(const ModelData& data);

 private:
  // The symbols that share name, type and dimension in the model; more than one if an element
  // stands twice.
  struct Group {
    std::vector<int> symbols;  // numbers
  };

  // Elements of symbols over labels: columns by their numbers, rows behind them.
  class Elements {
   public:
    explicit Elements(const Dictionary& dictionary) : dictionary_(dictionary) {}
    // Enters the next element, whose keys are the last ones of the dictionary, unless the symbol
    // has it. REQUIRES: it is added to the dictionary then.
    bool enter(int symbol, std::size_t keys, std::size_t dimension);

   private:
    static constexpr int kNone = -1;
    [[nodiscard]] const Dictionary::Entry& entry(int number) const;
    [[nodiscard]] std::size_t hashOf(int symbol, std::size_t keys, std::size_t dimension) const;
    void grow();

    const Dictionary& dictionary_;
    std::vector<int> slots_;  // a power of two, at most half of them taken
    std::size_t count_ = 0;
  };

  Dictionary::Entry add(SymbolType type, const std::string& modelName);
  int labelNumber(const std::string& label);
  int symbolFor(SymbolType type, const ElementName& name, std::size_t keys);
  DictionarySymbol& symbol(const Dictionary::Entry& entry);
  int newSymbol(SymbolType type, const std::string& modelName, int dimension);
  void listElements();
  void sortElements(const DictionarySymbol& symbol, std::span<int> elements);

  Dictionary& dictionary_;
  DistinctNames symbolNames_;
  DistinctNames labelNames_;
  std::unordered_map<std::string, int> labelOf_;    // by the model's spelling
  std::unordered_map<std::string, Group> groupOf_;  // by type, dimension and the model's spelling
  Elements taken_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_DICTIONARY_BUILDER_H_
