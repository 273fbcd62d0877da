#include "store/abstract_symbol.h"

namespace ztb {

AbstractZTBSymbol::AbstractZTBSymbol(ZTB* owner, SymbolDescription description)
    : dim(description.dim),
      type(description.type),
      userInfo(description.userInfo),
      symbolNumber(description.number),
      name(std::move(description.name)),
      text(std::move(description.text)),
      database(owner),
      aliasTarget(this) {}

bool AbstractZTBSymbol::violatesDomain(const int* keys) const {
  for (std::size_t d = 0; d < domainSymbols.size(); ++d) {
    const AbstractZTBSymbol* domain = domainSymbols[d];
    if (domain == nullptr || domain->aliasTarget == nullptr) {
      continue;
    }
    const int* membership = domain->aliasTarget->domainMembership;
    if (membership != nullptr && membership[keys[d]] == 0) {
      return true;
    }
  }
  return false;
}

}  // namespace ztb
