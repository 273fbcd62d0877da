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

void AbstractZTBSymbol::markUsedAsDomain() {
  usedAsDomain = true;
  if (aliasTarget != nullptr && aliasTarget->symbolNumber != -1) {
    aliasTarget->usedAsDomain = true;
  }
}

bool AbstractZTBSymbol::violatesDomainAt(std::size_t position, int label) const {
  const AbstractZTBSymbol* domain = domainSymbols[position];
  if (domain == nullptr || domain->aliasTarget == nullptr) {
    return false;
  }
  const LabelRanks& membership = domain->aliasTarget->domainMembership;
  return !membership.empty() && rankOf(membership, label) == 0;
}

bool AbstractZTBSymbol::violatesDomain(const int* keys) const {
  for (std::size_t position = 0; position < domainSymbols.size(); ++position) {
    if (violatesDomainAt(position, keys[position])) {
      return true;
    }
  }
  return false;
}

}  // namespace ztb
