#include "providers/model/dictionary_builder.h"

#include <algorithm>
#include <ztb/case_folding.hpp>
#include <ztb/model_names.hpp>

namespace lomu {

namespace {

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::string acceptableName(const std::string& name) {
  std::string result = name;
  for (char& c : result) {
    if (!isLetter(c) && !(c >= '0' && c <= '9')) c = '_';
  }
  if (result.empty() || !isLetter(result.front())) result.insert(result.begin(), 'n');
  return result;
}

std::string acceptableLabel(const std::string& label) {
  std::string result = label;
  for (char& c : result) {
    if (static_cast<unsigned char>(c) < ' ') c = '_';
    if (c == '"') c = '\'';
  }
  while (!result.empty() && result.back() == ' ') result.pop_back();
  return result.empty() ? "_" : result;
}

// The rows of the defaults that a database keeps for variables: 1 binary, 2 integer, 3 not
// negative, 4 not positive, 5 free.
int boundsKind(const ColumnData& column) {
  if (column.kind == ColumnKind::binary) return 1;
  if (column.kind == ColumnKind::integer) return 2;
  if (column.lower >= 0) return 3;
  return column.upper <= 0 ? 4 : 5;
}

}  // namespace

void DictionaryBuilder::build(const ModelData& data) {
  for (std::size_t j = 0; j < data.columns.size(); ++j) {
    dictionary_.columns_.push_back(add(SymbolType::variable, data.columns[j].name));
    auto& symbol =
        dictionary_.symbols_[static_cast<std::size_t>(dictionary_.columns_[j].symbol) - 1];
    const int kind = boundsKind(data.columns[j]);
    const bool first = symbol.elements.empty();
    symbol.userInfo = first || symbol.userInfo == kind ? kind : 5;
    symbol.elements.push_back(static_cast<int>(j));
  }
  for (std::size_t i = 0; i < data.rows.size(); ++i) {
    dictionary_.rows_.push_back(add(SymbolType::equation, data.rows[i].name));
    auto& symbol = dictionary_.symbols_[static_cast<std::size_t>(dictionary_.rows_[i].symbol) - 1];
    if (symbol.elements.empty()) symbol.userInfo = static_cast<int>(data.rows[i].type);
    symbol.elements.push_back(static_cast<int>(i));
  }
  for (DictionarySymbol& symbol : dictionary_.symbols_) sortElements(symbol);
}

void DictionaryBuilder::sortElements(DictionarySymbol& symbol) {
  const auto& entries =
      symbol.type == SymbolType::variable ? dictionary_.columns_ : dictionary_.rows_;
  const auto keysOf = [&](int number) {
    return dictionary_.keys_.data() + entries[static_cast<std::size_t>(number)].keys;
  };
  std::sort(symbol.elements.begin(), symbol.elements.end(), [&](int a, int b) {
    const int* left = keysOf(a);
    const int* right = keysOf(b);
    return std::lexicographical_compare(left, left + symbol.dimension, right,
                                        right + symbol.dimension);
  });
}

Dictionary::Entry DictionaryBuilder::add(SymbolType type, const std::string& modelName) {
  const ElementName name = parseElementName(modelName);
  std::vector<int> keys;
  for (const std::string& label : name.labels) keys.push_back(labelNumber(label));
  const std::size_t first = dictionary_.keys_.size();
  dictionary_.keys_.insert(dictionary_.keys_.end(), keys.begin(), keys.end());
  return {symbolFor(type, name, keys), static_cast<int>(keys.size()), first};
}

int DictionaryBuilder::labelNumber(const std::string& label) {
  const auto [place, isNew] = labelOf_.try_emplace(label, 0);
  if (!isNew) return place->second;
  dictionary_.labels_.push_back(labelNames_.take(acceptableLabel(label)));
  if (dictionary_.labels_.back() != label) {
    dictionary_.notes_.push_back("label \"" + label + "\" is called \"" +
                                 dictionary_.labels_.back() + "\"");
  }
  place->second = static_cast<int>(dictionary_.labels_.size());
  return place->second;
}

int DictionaryBuilder::symbolFor(SymbolType type, const ElementName& name,
                                 const std::vector<int>& keys) {
  const std::string groupName = std::to_string(static_cast<int>(type)) + " " +
                                std::to_string(keys.size()) + " " + name.symbol;
  Group& group = groupOf_[groupName];
  for (const int number : group.symbols) {
    if (keysTaken_[static_cast<std::size_t>(number) - 1].insert(keys).second) return number;
  }
  const int number = newSymbol(type, name.symbol, static_cast<int>(keys.size()));
  group.symbols.push_back(number);
  keysTaken_.back().insert(keys);
  return number;
}

int DictionaryBuilder::newSymbol(SymbolType type, const std::string& modelName, int dimension) {
  const std::string name = symbolNames_.take(acceptableName(modelName), ztb::parameterSuffix);
  const int number = static_cast<int>(dictionary_.symbols_.size()) + 1;
  DictionarySymbol symbol{name, "", type, dimension, 0, {}};
  if (name != modelName) {
    symbol.text = modelName.substr(0, 255);
    dictionary_.notes_.push_back((type == SymbolType::variable ? "variable \"" : "equation \"") +
                                 modelName + "\" of dimension " + std::to_string(dimension) +
                                 " is called \"" + name + "\"");
  }
  dictionary_.numberOf_.emplace(ztb::folded(name), number);
  dictionary_.symbols_.push_back(std::move(symbol));
  keysTaken_.emplace_back();
  return number;
}

}  // namespace lomu
