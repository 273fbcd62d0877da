// How a symbol enters a database: its name is free, its number and store, its domains, and of an
// alias the set that it stands for. The operations that add symbols stand in symbol_operations.cpp.

#include <cstring>

#include "core/ztb.h"
#include "store/symbol_factory.h"

namespace ztb {

AbstractZTBSymbol* ZTB::addSymbol(const SymbolDescription& description,
                                  AbstractZTBSymbol* const* domains,
                                  const char* const* domainNames) {
  if (initFrom == Source::none) {
    initFrom = Source::db;
  }
  if (symbols.contains(description.name)) {
    failAs(ZTB_ERROR_EXISTS, "Symbol %s exists already", description.name.c_str());
    return nullptr;
  }
  SymbolDescription numbered = description;
  numbered.number = symbols.size();
  std::unique_ptr<AbstractZTBSymbol> symbol = makeSymbol(recordStorage, this, std::move(numbered));
  if (symbol == nullptr) {
    fail("Cannot make symbol %s on the unknown record storage %d", description.name.c_str(),
         static_cast<int>(recordStorage));
    return nullptr;
  }
  if (!setDomains(*symbol, domains, domainNames)) {
    return nullptr;
  }
  AbstractZTBSymbol* added = symbols.add(description.name, std::move(symbol));
  if (added->type == dmap::typeAlias) {
    markAliasTarget(*added);
  }
  return added;
}

void ZTB::markAliasTarget(AbstractZTBSymbol& alias) {
  const int number = alias.userInfo;
  AbstractZTBSymbol* named =
      number >= 0 && number < symbols.size() ? symbols.atNumber(number) : nullptr;
  const bool namesSet = named != nullptr && named->type == dmap::typeSet;
  alias.aliasTarget = namesSet ? named : universe.get();
}

bool ZTB::setDomains(AbstractZTBSymbol& symbol, AbstractZTBSymbol* const* domains,
                     const char* const* domainNames) {
  for (int d = 0; d < symbol.dim; ++d) {
    symbol.domainSymbols.push_back(nullptr);
    symbol.domainNames.emplace_back();
    AbstractZTBSymbol* domain = domains[d];
    if (domain == nullptr) {
      const char* name = domainNames == nullptr ? nullptr : domainNames[d];
      if (name == nullptr) {
        return failAs(ZTB_ERROR_DOMAIN, "Domain %d of Symbol %s has neither a set nor a name",
                      d + 1, symbol.name.c_str()) == success;
      }
      if (std::strcmp(name, "*") == 0 || std::strcmp(name, " ") == 0) {
        symbol.domainSymbols.back() = universe.get();
      } else {
        symbol.domainNames.back() = name;
      }
      continue;
    }
    if (domain != universe.get()) {
      if (!acceptDomain(*domain)) {
        return false;
      }
      domain->markUsedAsDomain();
    }
    symbol.domainSymbols.back() = domain;
  }
  return true;
}

bool ZTB::acceptDomain(const AbstractZTBSymbol& domain) {
  const char* name = domain.name.c_str();
  if (domain.dim != 1) {
    return failAs(ZTB_ERROR_DOMAIN, "1 <> Dim of Symbol %s", name) == success;
  }
  if (domain.type != dmap::typeSet && domain.type != dmap::typeAlias) {
    return failAs(ZTB_ERROR_DOMAIN, "Symbol %s not a set/alias", name) == success;
  }
  if (domain.database != this) {
    return (domain.name == "*"
                ? failAs(ZTB_ERROR_DOMAIN, "Universe from different database")
                : failAs(ZTB_ERROR_DOMAIN, "Symbol %s not in this database", name)) == success;
  }
  return true;
}

}  // namespace ztb
