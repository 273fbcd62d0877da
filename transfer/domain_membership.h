// The membership tables of domain sets while domains are checked.
#ifndef ZTB_TRANSFER_DOMAIN_MEMBERSHIP_H_
#define ZTB_TRANSFER_DOMAIN_MEMBERSHIP_H_

#include "core/ztb.h"
#include "store/abstract_symbol.h"

namespace ztb {

// The set whose membership decides about a position with this domain: an alias's target, null
// where there is none.
inline AbstractZTBSymbol* decidingSet(const AbstractZTBSymbol* domain) {
  return domain == nullptr ? nullptr : domain->aliasTarget;
}

// Makes way for a set's table: reads the set if it is used as a domain, and drops a table that it
// has. False when the set cannot be read.
bool prepareMembership(ZTB& db, AbstractZTBSymbol& set);

// Drops a set's table and its memory.
inline void freeMembership(AbstractZTBSymbol& set) {
  LabelRanks().swap(set.domainMembership);
}

// Builds a set's table if the set is used as a domain and has none.
void buildMembership(const ZTB& db, AbstractZTBSymbol& set);

// The same three steps for the sets of all positions of a symbol.
bool prepareDomains(ZTB& db, const AbstractZTBSymbol& symbol);
void buildDomains(const ZTB& db, const AbstractZTBSymbol& symbol);
void freeDomains(const AbstractZTBSymbol& symbol);

// The next symbol, behind `current` or from the first, that has records and a position with a
// domain, into `next`; null if there is none or its source fails. False, with null, if it is
// unreadable. The place behind `current` is that of its symbol number plus one: a symbol of a file
// counts from 1, so the one directly behind it is passed over.
bool nextSymbolWithDomain(ZTB& db, const AbstractZTBSymbol* current, AbstractZTBSymbol*& next);

}  // namespace ztb

#endif  // ZTB_TRANSFER_DOMAIN_MEMBERSHIP_H_
