#include "providers/model/dictionary_builder.h"

#include <algorithm>
#include <cstdint>
#include <ztb/case_folding.hpp>
#include <ztb/model_names.hpp>

namespace lomu {

namespace {

std::string acceptableName(const std::string& name) {
  std::string result = name;
  for (char& c : result) {
    if (!ztb::isAsciiLetter(c) && !(c >= '0' && c <= '9')) c = '_';
  }
  if (result.empty() || !ztb::isAsciiLetter(result.front())) result.insert(result.begin(), 'n');
  return result;
}

// A database takes a label with either kind of quote, and none with both.
std::string acceptableLabel(const std::string& label) {
  const bool hasSingle = label.find('\'') != std::string::npos;
  std::string result = label;
  for (char& c : result) {
    if (static_cast<unsigned char>(c) < ' ') c = '_';
    if (c == '"' && hasSingle) c = '\'';
  }
  while (!result.empty() && result.back() == ' ') result.pop_back();
  return result.empty() ? "_" : result;
}

// What may be the name of an element; any other name is that of a symbol without labels.
bool hasLabels(std::string_view name) {
  return std::any_of(name.begin(), name.end(), [](char c) { return c == '[' || c == '('; });
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
  // Each of these is a symbol of its own, of which a large model may have very many.
  const auto withoutLabels = [](const auto& items) {
    return std::count_if(items.begin(), items.end(),
                         [](const auto& item) { return !hasLabels(item.name); });
  };
  const auto most =
      static_cast<std::size_t>(withoutLabels(data.columns) + withoutLabels(data.rows));
  dictionary_.symbols_.reserve(most);
  symbolNames_.reserve(most);
  dictionary_.columns_.reserve(data.columns.size());
  dictionary_.rows_.reserve(data.rows.size());
  // A kind is 1 at least, so 0 is that of a symbol without elements so far.
  for (const ColumnData& column : data.columns) {
    dictionary_.columns_.push_back(add(SymbolType::variable, column.name));
    int& shown = symbol(dictionary_.columns_.back()).userInfo;
    const int kind = boundsKind(column);
    shown = shown == 0 || shown == kind ? kind : 5;
  }
  for (const RowData& row : data.rows) {
    const std::size_t known = dictionary_.symbols_.size();
    dictionary_.rows_.push_back(add(SymbolType::equation, row.name));
    if (dictionary_.symbols_.size() == known) continue;
    symbol(dictionary_.rows_.back()).userInfo = static_cast<int>(row.type);
  }
  dictionary_.numberOf_ = symbolNames_.release();
  listElements();
}

DictionarySymbol& DictionaryBuilder::symbol(const Dictionary::Entry& entry) {
  return dictionary_.symbols_[static_cast<std::size_t>(entry.symbol) - 1];
}

void DictionaryBuilder::listElements() {
  std::vector<std::size_t> next(dictionary_.symbols_.size() + 1);
  for (const auto* entries : {&dictionary_.columns_, &dictionary_.rows_}) {
    for (const auto& entry : *entries) ++next[static_cast<std::size_t>(entry.symbol)];
  }
  for (std::size_t s = 1; s < next.size(); ++s) next[s] += next[s - 1];
  // Now next[s] is the end of symbol s, and next[s - 1] its begin, which moves as it fills.
  std::vector<int>& elements = dictionary_.elements_;
  elements.resize(next.back());
  for (std::size_t s = 1; s < next.size(); ++s) {
    dictionary_.symbols_[s - 1].elements = {elements.data() + next[s - 1],
                                            elements.data() + next[s]};
  }
  for (const auto* entries : {&dictionary_.columns_, &dictionary_.rows_}) {
    int number = 0;
    for (const auto& entry : *entries) {
      elements[next[static_cast<std::size_t>(entry.symbol) - 1]++] = number++;
    }
  }
  for (const DictionarySymbol& symbol : dictionary_.symbols_) {
    const auto begin = static_cast<std::size_t>(symbol.elements.data() - elements.data());
    sortElements(symbol, {elements.data() + begin, symbol.elements.size()});
  }
}

void DictionaryBuilder::sortElements(const DictionarySymbol& symbol, std::span<int> elements) {
  if (elements.size() < 2) return;
  const auto& entries =
      symbol.type == SymbolType::variable ? dictionary_.columns_ : dictionary_.rows_;
  const auto keysOf = [&](int number) {
    return dictionary_.keys_.data() + entries[static_cast<std::size_t>(number)].keys;
  };
  const auto before = [&](int a, int b) {
    const int* left = keysOf(a);
    const int* right = keysOf(b);
    return std::lexicographical_compare(left, left + symbol.dimension, right,
                                        right + symbol.dimension);
  };
  if (!std::is_sorted(elements.begin(), elements.end(), before)) {
    std::sort(elements.begin(), elements.end(), before);
  }
}

Dictionary::Entry DictionaryBuilder::add(SymbolType type, const std::string& modelName) {
  const std::size_t first = dictionary_.keys_.size();
  // Most names of large models have no labels.
  if (!hasLabels(modelName)) {
    return {newSymbol(type, modelName, 0), 0, first};
  }
  const ElementName name = parseElementName(modelName);
  for (const std::string& label : name.labels) dictionary_.keys_.push_back(labelNumber(label));
  return {symbolFor(type, name, first), static_cast<int>(name.labels.size()), first};
}

int DictionaryBuilder::labelNumber(const std::string& label) {
  const auto [place, isNew] = labelOf_.try_emplace(label, 0);
  if (!isNew) return place->second;
  dictionary_.labels_.push_back(labelNames_.take(dictionary_.labels_, acceptableLabel(label)));
  if (dictionary_.labels_.back() != label) {
    dictionary_.notes_.push_back("label \"" + label + "\" is called \"" +
                                 dictionary_.labels_.back() + "\"");
  }
  place->second = static_cast<int>(dictionary_.labels_.size());
  return place->second;
}

int DictionaryBuilder::symbolFor(SymbolType type, const ElementName& name, std::size_t keys) {
  const std::size_t dimension = name.labels.size();
  // A name without labels is no element of anything but its own symbol.
  if (dimension == 0) return newSymbol(type, name.symbol, 0);
  Group& group = groupOf_[std::to_string(static_cast<int>(type)) + " " + std::to_string(dimension) +
                          " " + name.symbol];
  for (const int number : group.symbols) {
    if (taken_.enter(number, keys, dimension)) return number;
  }
  const int number = newSymbol(type, name.symbol, static_cast<int>(dimension));
  group.symbols.push_back(number);
  taken_.enter(number, keys, dimension);
  return number;
}

int DictionaryBuilder::newSymbol(SymbolType type, const std::string& modelName, int dimension) {
  std::string name =
      symbolNames_.take(dictionary_.symbols_, acceptableName(modelName), ztb::parameterSuffix);
  const int number = static_cast<int>(dictionary_.symbols_.size()) + 1;
  std::string text;
  if (name != modelName) {
    text = modelName.substr(0, 255);
    dictionary_.notes_.push_back((type == SymbolType::variable ? "variable \"" : "equation \"") +
                                 modelName + "\" of dimension " + std::to_string(dimension) +
                                 " is called \"" + name + "\"");
  }
  dictionary_.symbols_.push_back({std::move(name), std::move(text), type, dimension, 0, {}});
  return number;
}

const Dictionary::Entry& DictionaryBuilder::Elements::entry(int number) const {
  const auto at = static_cast<std::size_t>(number);
  const std::size_t columns = dictionary_.columns_.size();
  return at < columns ? dictionary_.columns_[at] : dictionary_.rows_[at - columns];
}

std::size_t DictionaryBuilder::Elements::hashOf(int symbol, std::size_t keys,
                                                std::size_t dimension) const {
  std::uint64_t hash = static_cast<std::uint64_t>(symbol);
  for (std::size_t i = 0; i < dimension; ++i) {
    hash = (hash ^ static_cast<std::uint64_t>(dictionary_.keys_[keys + i])) * 0x9E3779B97F4A7C15U;
    hash ^= hash >> 29U;
  }
  return hash;
}

bool DictionaryBuilder::Elements::enter(int symbol, std::size_t keys, std::size_t dimension) {
  if (2 * (count_ + 1) > slots_.size()) grow();
  const int* const own = dictionary_.keys_.data() + keys;
  std::size_t at = hashOf(symbol, keys, dimension) & (slots_.size() - 1);
  for (; slots_[at] != kNone; at = (at + 1) & (slots_.size() - 1)) {
    const Dictionary::Entry& known = entry(slots_[at]);
    if (known.symbol == symbol &&
        std::equal(own, own + dimension, dictionary_.keys_.data() + known.keys)) {
      return false;
    }
  }
  slots_[at] = static_cast<int>(dictionary_.columns_.size() + dictionary_.rows_.size());
  ++count_;
  return true;
}

void DictionaryBuilder::Elements::grow() {
  constexpr std::size_t kSmallest = 64;
  std::vector<int> larger(slots_.empty() ? kSmallest : 2 * slots_.size(), kNone);
  for (const int number : slots_) {
    if (number == kNone) continue;
    const Dictionary::Entry& known = entry(number);
    std::size_t at = hashOf(known.symbol, known.keys, static_cast<std::size_t>(known.dimension)) &
                     (larger.size() - 1);
    while (larger[at] != kNone) at = (at + 1) & (larger.size() - 1);
    larger[at] = number;
  }
  slots_.swap(larger);
}

}  // namespace lomu
