#include "core/symbol_table.h"

#include <algorithm>
#include <stdexcept>

namespace ztb::symtable {

TSymbolTable::~TSymbolTable() {
  for (int number = 0; number < size(); ++number) {
    delete atNumber(number);
    atNumber(number) = nullptr;
  }
}

void TSymbolTable::clearAll() {
  forEach([](AbstractZTBSymbol* symbol) {
    symbol->clearRecords();
    symbol->loaded = false;
    symbol->unreadable.reset();
    return true;
  });
}

AbstractZTBSymbol* TSymbolTable::add(const std::string& name,
                                     std::unique_ptr<AbstractZTBSymbol> symbol) {
  if (contains(name)) {
    throw std::logic_error("symbol " + name + " stands in the symbol table already");
  }
  if (symbol == nullptr) {
    throw std::logic_error("there is no record store for symbol " + name);
  }
  const bool isAlias = symbol->type == dmap::typeAlias;
  if (!isAlias) {
    ordered_.push_back(symbol.get());
  }
  try {
    byName_.store(name.c_str(), name.size(), symbol.get());
  } catch (...) {
    if (!isAlias) {
      ordered_.pop_back();
    }
    throw;
  }
  return symbol.release();
}

void TSymbolTable::replace(AbstractZTBSymbol* oldSymbol, AbstractZTBSymbol* newSymbol) {
  AbstractZTBSymbol*& place = atName(oldSymbol->name);
  std::ranges::replace(ordered_, oldSymbol, newSymbol);
  place = newSymbol;
}

bool TSymbolTable::forEachNamed(const NamedVisitor& visit) {
  for (int number = 0; number < size(); ++number) {
    AbstractZTBSymbol* symbol = atNumber(number);
    if (symbol != nullptr && !visit(byName_.textByNumber(number), symbol)) {
      return false;
    }
  }
  return true;
}

bool TSymbolTable::forEach(const Visitor& visit) {
  for (int number = 0; number < size(); ++number) {
    AbstractZTBSymbol* symbol = atNumber(number);
    if (symbol != nullptr && !visit(symbol)) {
      return false;
    }
  }
  return true;
}

AbstractZTBSymbol*& TSymbolTable::atNumber(int number) {
  return byName_.refByNumber(number);
}

AbstractZTBSymbol*& TSymbolTable::atName(const std::string& name) {
  return byName_.refByKey(name.c_str());
}

AbstractZTBSymbol* TSymbolTable::first() {
  return atNumber(0);
}

bool TSymbolTable::contains(const std::string& name) {
  return byName_.contains(name.c_str());
}

int TSymbolTable::size() const {
  return byName_.size();
}

bool TSymbolTable::empty() const {
  return size() == 0;
}

int TSymbolTable::orderedSize() const {
  return static_cast<int>(ordered_.size());
}

AbstractZTBSymbol* TSymbolTable::orderedAt(int index) const {
  return ordered_[static_cast<std::size_t>(index)];
}

}  // namespace ztb::symtable
