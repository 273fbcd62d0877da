#include "store/vector_iterator.h"

#include <cstddef>

namespace ztb::dmap {

RecordView VectorIterator::get() const {
  if (isNull()) {
    return {};
  }
  double* values = values_->empty() ? nullptr : values_->data();
  if (dim() == 0) {
    return {nullptr, values};
  }
  const auto width = static_cast<std::size_t>(dim());
  const auto row = static_cast<std::size_t>(row_);
  if (row_ < 0 || row >= keys_->size() / width) {
    return {};
  }
  const auto slots = static_cast<std::size_t>(slotCount(type()));
  return {keys_->data() + row * width, values == nullptr ? nullptr : values + row * slots};
}

bool VectorIterator::equals(const IDMapIterator& other) const {
  const auto& right = static_cast<const VectorIterator&>(other);
  return dim() == right.dim() && type() == right.type() && row_ == right.row_;
}

}  // namespace ztb::dmap
