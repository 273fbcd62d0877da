// Makes a dictionary from the names of a model's rows and columns.
#ifndef ZTB_PROVIDERS_MODEL_DICTIONARY_BUILDER_H_
#define ZTB_PROVIDERS_MODEL_DICTIONARY_BUILDER_H_

#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "providers/model/dictionary.h"
#include "providers/model/distinct_names.h"
#include "providers/model/element_name.h"

namespace lomu {

class DictionaryBuilder {
 public:
  explicit DictionaryBuilder(Dictionary& dictionary) : dictionary_(dictionary) {}

  void build(const ModelData& data);

 private:
  // The symbols that share one name in the model; more than one if an element stands twice.
  struct Group {
    std::vector<int> symbols;  // numbers
  };

  Dictionary::Entry add(SymbolType type, const std::string& modelName);
  int labelNumber(const std::string& label);
  int symbolFor(SymbolType type, const ElementName& name, const std::vector<int>& keys);
  int newSymbol(SymbolType type, const std::string& modelName, int dimension);
  void sortElements(DictionarySymbol& symbol);

  Dictionary& dictionary_;
  DistinctNames symbolNames_;
  DistinctNames labelNames_;
  std::unordered_map<std::string, int> labelOf_;    // by the model's spelling
  std::unordered_map<std::string, Group> groupOf_;  // by type, dimension and the model's spelling
  std::vector<std::set<std::vector<int>>> keysTaken_;  // of each symbol
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_DICTIONARY_BUILDER_H_
