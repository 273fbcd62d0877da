#include "peers/slot.h"

namespace ztb::peers {

SlotBase::SlotBase(PeerFamily& family, const char* name, const char* symbolName,
                   std::span<const int> codes, AnyFunction stub) noexcept
    : family_(family), name_(name), symbolName_(symbolName), codes_(codes), stub_(stub) {
  family_.add(*this);
}

void SlotBase::reportMissing() const {
  family_.reportMissing(*this);
}

}  // namespace ztb::peers
