#include "transfer/domain_membership.h"

#include "core/handles.h"
#include "transfer/domain_checks.h"

namespace ztb {
namespace {

// Calls `visit` with the deciding set of each position until it gives false.
template <class Visit>
bool forEachDecidingSet(const AbstractZTBSymbol& symbol, Visit&& visit) {
  for (const AbstractZTBSymbol* domain : symbol.domainSymbols) {
    AbstractZTBSymbol* set = decidingSet(domain);
    if (set != nullptr && !visit(*set)) {
      return false;
    }
  }
  return true;
}

bool hasDomain(const ZTB& db, const AbstractZTBSymbol& symbol) {
  for (const AbstractZTBSymbol* domain : symbol.domainSymbols) {
    if (domain != nullptr && !isUniverse(db, domain)) {
      return true;
    }
  }
  return false;
}

}  // namespace

bool prepareMembership(ZTB& db, AbstractZTBSymbol& set) {
  if (set.usedAsDomain && !db.ensureLoaded(set)) {
    return false;
  }
  freeMembership(set);
  return true;
}

void buildMembership(const ZTB& db, AbstractZTBSymbol& set) {
  if (set.usedAsDomain && set.domainMembership.empty()) {
    set.domainMembership = ranksOf(set, db);
  }
}

bool prepareDomains(ZTB& db, const AbstractZTBSymbol& symbol) {
  return forEachDecidingSet(symbol,
                            [&db](AbstractZTBSymbol& set) { return prepareMembership(db, set); });
}

void buildDomains(const ZTB& db, const AbstractZTBSymbol& symbol) {
  forEachDecidingSet(symbol, [&db](AbstractZTBSymbol& set) {
    buildMembership(db, set);
    return true;
  });
}

void freeDomains(const AbstractZTBSymbol& symbol) {
  forEachDecidingSet(symbol, [](AbstractZTBSymbol& set) {
    freeMembership(set);
    return true;
  });
}

bool nextSymbolWithDomain(ZTB& db, const AbstractZTBSymbol* current, AbstractZTBSymbol*& next) {
  const int first = current == nullptr || isUniverse(db, current) ? 0 : current->symbolNumber + 1;
  next = nullptr;
  for (int position = first; position < db.symbols.size(); ++position) {
    AbstractZTBSymbol* symbol = db.symbols.atNumber(position);
    if (symbol == nullptr || symbol->dim == 0 || symbol->type == ZTB_ALIAS ||
        !hasDomain(db, *symbol)) {
      continue;
    }
    if (!db.ensureLoaded(*symbol)) {
      return symbol->unreadable == nullptr;
    }
    if (!symbol->isEmpty()) {
      next = symbol;
      return true;
    }
  }
  return true;
}

}  // namespace ztb
