#include "store/dmap_iterator.h"

#include <iterator>

#include "store/map_family.h"

namespace ztb::dmap {

void DMapIterator::next() {
  if (dim() == 0) {
    position_ = static_cast<double*>(position_) + 1;
    return;
  }
  position_ = visitMapFamily(dim(), type(), [this](auto member) {
    return member.untyped(std::next(member.position(position_)));
  });
}

void DMapIterator::prev() {
  if (dim() == 0) {
    position_ = static_cast<double*>(position_) - 1;
    return;
  }
  position_ = visitMapFamily(dim(), type(), [this](auto member) {
    return member.untyped(std::prev(member.position(position_)));
  });
}

RecordView DMapIterator::get() const {
  if (dim() == 0) {
    return {static_cast<const int*>(position_), static_cast<double*>(position_)};
  }
  return visitMapFamily(dim(), type(), [this](auto member) -> RecordView {
    auto& [key, values] = *member.position(position_);
    return {key.data(), values.data()};
  });
}

}  // namespace ztb::dmap
