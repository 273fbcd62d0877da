#include "peers/slot.h"

#include "peers/bounded_text.h"

namespace ztb::peers {

SlotBase::SlotBase(PeerFamily& family, const char* name, std::span<const int> codes,
                   AnyFunction stub) noexcept
    : family_(family), name_(name), codes_(codes), stub_(stub) {
  family_.add(*this);
}

SymbolName SlotBase::symbolName() const noexcept {
  SymbolName symbol{};
  BoundedText text(symbol.data(), symbolNameSize);
  if (family_.table().symbolNaming == SymbolNaming::prefixAll) {
    text.append("C__");
  } else if (passesText(codes_)) {
    text.append("C");
  }
  text.append(name_);
  return symbol;
}

void SlotBase::reportMissing() const {
  family_.reportMissing(*this);
}

}  // namespace ztb::peers
