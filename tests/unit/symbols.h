// What the tests of symbols and their handles share: symbols without a database, and their records
// as plain containers.
#ifndef ZTB_TESTS_UNIT_SYMBOLS_H_
#define ZTB_TESTS_UNIT_SYMBOLS_H_

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "store/abstract_symbol.h"
#include "store/symbol_factory.h"

namespace ztb::unittest {

using Keys = std::vector<int>;
using Records = std::vector<std::pair<Keys, double>>;

inline std::unique_ptr<AbstractZTBSymbol> symbolOf(int dim, int type,
                                                   const std::string& name = "s") {
  SymbolDescription description;
  description.name = name;
  description.dim = dim;
  description.type = type;
  return makeSymbol(dmap::StorageKind::dMap, nullptr, std::move(description));
}

// A parameter with these records.
inline std::unique_ptr<AbstractZTBSymbol> parameterWith(int dim, const Records& records,
                                                        const std::string& name = "p") {
  auto symbol = symbolOf(dim, dmap::typeParameter, name);
  for (const auto& [keys, value] : records) {
    symbol->insertRecord(keys.data(), &value);
  }
  return symbol;
}

// A parameter with these keys; the values count from 1.
inline std::unique_ptr<AbstractZTBSymbol> parameterOver(int dim, const std::vector<Keys>& keys) {
  Records records;
  for (const Keys& key : keys) {
    records.emplace_back(key, static_cast<double>(records.size() + 1));
  }
  return parameterWith(dim, records);
}

// Keys and first slots in the symbol's order.
inline Records recordsOf(AbstractZTBSymbol& symbol) {
  Records result;
  symbol.forEachRecord([&](const int* keys, const double* values) {
    result.emplace_back(symbol.dim == 0 ? Keys() : Keys(keys, keys + symbol.dim), values[0]);
  });
  return result;
}

inline Keys keysOf(AbstractZTBSymbolIterator& record) {
  return {record.keys(), record.keys() + record.dimension()};
}

}  // namespace ztb::unittest

#endif  // ZTB_TESTS_UNIT_SYMBOLS_H_
