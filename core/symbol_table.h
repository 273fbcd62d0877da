// The symbols of one database, which the table owns: all of them by name and in order of creation,
// and beside that the sequence without the aliases. Names fold ASCII case; the first spelling
// stays. The universe is not in the table.
#ifndef ZTB_CORE_SYMBOL_TABLE_H_
#define ZTB_CORE_SYMBOL_TABLE_H_

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/string_hash_list.h"
#include "store/abstract_symbol.h"

namespace ztb::symtable {

class ISymbolTable {
 public:
  using NamedVisitor = std::function<bool(std::string, AbstractZTBSymbol*)>;
  using Visitor = std::function<bool(AbstractZTBSymbol*)>;

  ISymbolTable() = default;
  ISymbolTable(const ISymbolTable&) = delete;
  ISymbolTable& operator=(const ISymbolTable&) = delete;
  virtual ~ISymbolTable() = default;

  // Clears the records of every symbol, aliases included, and marks it as not loaded.
  virtual void clearAll() = 0;
  // Takes a symbol in. Throws std::logic_error when the name is not new or
  // there is no symbol.
  virtual AbstractZTBSymbol* add(const std::string& name,
                                 std::unique_ptr<AbstractZTBSymbol> symbol) = 0;
  // Puts a symbol in the place of another in both sequences; the caller then owns the old one. The
  // new one may be null: the place then holds no symbol, and walks pass it by.
  virtual void replace(AbstractZTBSymbol* oldSymbol, AbstractZTBSymbol* newSymbol) = 0;
  // Visits all symbols in order of creation, aliases included, until a visitor gives false.
  // Returns whether none did.
  virtual bool forEachNamed(const NamedVisitor& visit) = 0;
  virtual bool forEach(const Visitor& visit) = 0;
  // REQUIRES: number is from 0 to size() - 1.
  [[nodiscard]] virtual AbstractZTBSymbol*& atNumber(int number) = 0;
  // Throws std::logic_error when the name is absent.
  [[nodiscard]] virtual AbstractZTBSymbol*& atName(const std::string& name) = 0;
  // REQUIRES: not empty.
  [[nodiscard]] virtual AbstractZTBSymbol* first() = 0;
  [[nodiscard]] virtual bool contains(const std::string& name) = 0;
  [[nodiscard]] virtual int size() const = 0;
  [[nodiscard]] virtual bool empty() const = 0;
  // Symbols that are no aliases.
  [[nodiscard]] virtual int orderedSize() const = 0;
  // REQUIRES: index is from 0 to orderedSize() - 1.
  [[nodiscard]] virtual AbstractZTBSymbol* orderedAt(int index) const = 0;
};

class TSymbolTable final : public ISymbolTable {
 public:
  TSymbolTable() = default;
  ~TSymbolTable() override;

  void clearAll() override;
  AbstractZTBSymbol* add(const std::string& name,
                         std::unique_ptr<AbstractZTBSymbol> symbol) override;
  void replace(AbstractZTBSymbol* oldSymbol, AbstractZTBSymbol* newSymbol) override;
  bool forEachNamed(const NamedVisitor& visit) override;
  bool forEach(const Visitor& visit) override;
  [[nodiscard]] AbstractZTBSymbol*& atNumber(int number) override;
  [[nodiscard]] AbstractZTBSymbol*& atName(const std::string& name) override;
  [[nodiscard]] AbstractZTBSymbol* first() override;
  [[nodiscard]] bool contains(const std::string& name) override;
  [[nodiscard]] int size() const override;
  [[nodiscard]] bool empty() const override;
  [[nodiscard]] int orderedSize() const override;
  [[nodiscard]] AbstractZTBSymbol* orderedAt(int index) const override;

 private:
  rxf::collections::strhash::TXStrHashList<AbstractZTBSymbol*> byName_;
  std::vector<AbstractZTBSymbol*> ordered_;
};

}  // namespace ztb::symtable

#endif  // ZTB_CORE_SYMBOL_TABLE_H_
