// The operations of the model on records.
#include <limits>
#include <utility>

#include "tests/property/model.h"

namespace ztbtest {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr std::array<Slots, 10> variableDefaults{{{0, 0, 0, 0, 1},
                                                  {0, 0, 0, 1, 1},
                                                  {0, 0, 0, 100, 1},
                                                  {0, 0, 0, infinity, 1},
                                                  {0, 0, -infinity, 0, 1},
                                                  {0, 0, -infinity, infinity, 1},
                                                  {0, 0, 0, infinity, 1},
                                                  {0, 0, 0, infinity, 1},
                                                  {0, 0, 1, infinity, 1},
                                                  {0, 0, 1, 100, 1}}};

constexpr std::array<Slots, 7> equationDefaults{{{0, 0, 0, 0, 1},
                                                 {0, 0, 0, infinity, 1},
                                                 {0, 0, -infinity, 0, 1},
                                                 {0, 0, -infinity, infinity, 1},
                                                 {0, 0, 0, 0, 1},
                                                 {0, 0, 0, infinity, 1},
                                                 {0, 0, 0, 0, 1}}};

const char* const getterNames[] = {"ztbGetLevel", "ztbGetMarginal", "ztbGetLower", "ztbGetUpper",
                                   "ztbGetScale"};
const char* const setterNames[] = {"ztbSetLevel", "ztbSetMarginal", "ztbSetLower", "ztbSetUpper",
                                   "ztbSetScale"};

std::string recordText(const std::vector<std::string>& labels) {
  std::string text = "(\"";
  for (size_t i = 0; i < labels.size(); ++i) {
    text += (i > 0 ? ",\"" : "") + labels[i] + "\"";
  }
  return text + ")";
}

std::string position(size_t index) {
  return numberText(static_cast<int>(index) + 1);
}

}  // namespace

std::optional<Slots> Model::defaults(const ModelSymbol& symbol) {
  const auto row = static_cast<size_t>(symbol.userInfo);
  if (symbol.type == 2) {
    return row < variableDefaults.size() ? std::optional(variableDefaults.at(row)) : std::nullopt;
  }
  if (symbol.type == 3) {
    return row < equationDefaults.size() ? std::optional(equationDefaults.at(row)) : std::nullopt;
  }
  return Slots{};
}

std::optional<Key> Model::mergedKey(const ModelSymbol& symbol,
                                    const std::vector<std::string>& given) {
  Key key;
  for (int d = 0; d < symbol.dim; ++d) {
    const std::optional<int> number = mergedNumber(given[static_cast<size_t>(d)]);
    if (!number) {
      return {};
    }
    key.push_back(*number);
  }
  return key;
}

void Model::standOn(size_t symbol, const Key& key, std::optional<Key> mask) {
  cursor = Cursor{symbol, std::move(mask), key};
}

Answer Model::addRecord(size_t index, const std::vector<std::string>& given) {
  ModelSymbol& symbol = symbols[index];
  if (!ensureLoaded(symbol)) {
    return {};
  }
  const std::optional<Key> key = mergedKey(symbol, given);
  if (!key) {
    return {};
  }
  const std::optional<Slots> values = defaults(symbol);
  if (!values) {
    return failUnexpected("ztbAddRecord");
  }
  if (!symbol.records.emplace(*key, *values).second) {
    return fail("Record " + recordText(given) + " exists already for symbol " + symbol.name);
  }
  standOn(index, *key);
  return {1, ""};
}

Answer Model::mergeRecord(size_t index, const std::vector<std::string>& given) {
  ModelSymbol& symbol = symbols[index];
  if (!ensureLoaded(symbol)) {
    return {};
  }
  const std::optional<Key> key = mergedKey(symbol, given);
  if (!key) {
    return {};
  }
  const std::optional<Slots> values = defaults(symbol);
  if (!values) {
    return failUnexpected("ztbMergeRecord");
  }
  store(symbol, *key, *values, false);
  standOn(index, *key);
  return {1, ""};
}

void Model::store(ModelSymbol& symbol, const Key& key, const Slots& values, bool replace) {
  // A record without a key is always written over.
  if (replace || symbol.dim == 0) {
    symbol.records[key] = values;
  } else {
    symbol.records.emplace(key, values);
  }
}

Answer Model::findRecord(size_t index, const std::vector<std::string>& given) {
  ModelSymbol& symbol = symbols[index];
  if (!ensureLoaded(symbol)) {
    return {};
  }
  if (symbol.records.empty()) {
    return fail("Cannot find any record in Symbol " + symbol.name + " (" + symbol.name +
                " is empty)");
  }
  Key key;
  for (size_t d = 0; d < given.size(); ++d) {
    const std::optional<int> number = knownNumber(given[d]);
    if (!number) {
      return {};
    }
    if (*number < 0) {
      return fail("Cannot find element " + given[d] + " (on position " + position(d) +
                  ") in Symbol " + symbol.name);
    }
    key.push_back(*number);
  }
  if (symbol.records.count(key) == 0) {
    return fail("Cannot find record " + recordText(given) + " in Symbol " + symbol.name);
  }
  standOn(index, key);
  return {1, ""};
}

Answer Model::findFirstOrLast(size_t index, bool last) {
  ModelSymbol& symbol = symbols[index];
  if (!ensureLoaded(symbol)) {
    return {};
  }
  if (symbol.records.empty()) {
    return fail("Cannot find a record in Symbol " + symbol.name);
  }
  standOn(index, last ? symbol.records.rbegin()->first : symbol.records.begin()->first);
  return {1, ""};
}

Answer Model::findInSlice(size_t index, const std::vector<std::string>& given, bool last) {
  ModelSymbol& symbol = symbols[index];
  if (!ensureLoaded(symbol)) {
    return {};
  }
  if (symbol.records.empty()) {
    return fail("Cannot find a record in Symbol " + symbol.name);
  }
  Key mask;
  for (size_t d = 0; d < given.size(); ++d) {
    const std::optional<int> number = knownNumber(given[d]);
    if (!number) {
      return {};
    }
    if (*number < 0) {
      return fail("Cannot find slice element " + given[d] + " (on position " + position(d) +
                  ") in Symbol " + symbol.name);
    }
    mask.push_back(*number);
  }
  std::optional<Key> found;
  for (const auto& [key, slots] : symbol.records) {
    bool matches = true;
    for (size_t d = 0; d < mask.size(); ++d) {
      matches = matches && (mask[d] == 0 || mask[d] == key[d]);
    }
    if (matches && (last || !found)) {
      found = key;
    }
  }
  if (!found) {
    return fail("Cannot find a record for slice " + recordText(given) + " in Symbol " +
                symbol.name);
  }
  standOn(index, *found, mask);
  return {1, ""};
}

bool Model::numbersAreKnown(const ModelSymbol& symbol, const Key& key) {
  const std::string start = "Error when adding record to symbol " + symbol.name + ": UEL ";
  const int largest = static_cast<int>(labels.size()) - 1;
  for (const int number : key) {
    if (number < 1) {
      fail(start + "needs to be greater than zero but is " + numberText(number));
      return false;
    }
    if (number > largest) {
      fail(start + numberText(number) + " is unknown. Largest known UEL is " + numberText(largest));
      return false;
    }
  }
  return true;
}

Answer Model::storeByNumber(size_t index, const Key& key, bool check, const Slots* values) {
  ModelSymbol& symbol = symbols[index];
  if (symbol.type == 0 && values != nullptr) {
    return fail("Cannot add set records with values. Use ztbMergeSetRecordInt");
  }
  if (!ensureLoaded(symbol) || (check && !numbersAreKnown(symbol, key))) {
    return {};
  }
  std::optional<Slots> slots = defaults(symbol);
  if (values != nullptr) {
    slots = *values;
    if (symbol.type == 1) {
      slots->front() = mappedIn(slots->front());
    } else if (symbol.type != 4) {
      for (double& slot : *slots) {
        slot = mappedIn(slot);
      }
    }
  }
  if (!slots) {
    return failUnexpected("ztbMergeRecordInt");
  }
  store(symbol, key, *slots, values != nullptr);
  standOn(index, key);
  return {1, ""};
}

Answer Model::storeSetByNumber(size_t index, const Key& key, bool check, const std::string* text) {
  ModelSymbol& symbol = symbols[index];
  if (symbol.type != 0) {
    return fail("ztbMergeSetRecordInt can only be used with set symbols");
  }
  if (!ensureLoaded(symbol) || (check && !numbersAreKnown(symbol, key))) {
    return {};
  }
  Slots slots{};
  if (text != nullptr) {
    slots[0] = textNumber(*text);
  }
  store(symbol, key, slots, text != nullptr);
  standOn(index, key);
  return {1, ""};
}

Slots* Model::currentSlots() {
  return cursor->key ? &current().records.at(*cursor->key) : nullptr;
}

Answer Model::readSlot(int slot) {
  const Slots* slots = currentSlots();
  if (slots == nullptr || slot >= current().slotCount()) {
    return failUnexpected(getterNames[slot]);
  }
  return {1, valueText(mappedOut(slots->at(static_cast<size_t>(slot))))};
}

Answer Model::writeSlot(int slot, double value) {
  Slots* slots = currentSlots();
  if (slots == nullptr || slot >= current().slotCount()) {
    return failUnexpected(setterNames[slot]);
  }
  slots->at(static_cast<size_t>(slot)) = mappedIn(value);
  return {1, ""};
}

Answer Model::readText() {
  const Slots* slots = currentSlots();
  if (slots == nullptr) {
    return failUnexpected("ztbGetElemText");
  }
  const double level = slots->front();
  const bool named = level >= 1 && level < static_cast<double>(texts.size());
  return {1, named ? texts[static_cast<size_t>(level)] : ""};
}

Answer Model::writeText(const std::string& text) {
  if (text.size() > 255) {
    return fail("Explanatory text too long. Max length is 255");
  }
  Slots* slots = currentSlots();
  if (slots == nullptr) {
    return failUnexpected("ztbSetElemText");
  }
  slots->front() = text.empty() ? 0 : textNumber(text);
  return {1, ""};
}

Answer Model::readKey(int index) {
  if (index >= current().dim) {
    return fail("Index too large");
  }
  if (!cursor->key || index < 0) {
    return failUnexpected("ztbGetKey");
  }
  const int number = cursor->key->at(static_cast<size_t>(index));
  if (number < 0 || number >= static_cast<int>(labels.size())) {
    return failUnexpected("ztbGetKey");
  }
  return {1, labels[static_cast<size_t>(number)]};
}

}  // namespace ztbtest
