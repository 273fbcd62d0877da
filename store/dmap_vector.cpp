#include "store/dmap_vector.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <stdexcept>

namespace ztb::dmap {
namespace {

// The sign of the first position where the keys differ, positions with a 0 on either side skipped.
int compareKeys(const int* left, const int* right, std::size_t dim) {
  for (std::size_t d = 0; d < dim; ++d) {
    if (left[d] != 0 && right[d] != 0 && left[d] != right[d]) {
      return left[d] < right[d] ? -1 : 1;
    }
  }
  return 0;
}

// Makes an array's capacity hold that many rows: it grows by half of itself, or to what the rows
// need if that is more.
template <class T>
void reserveRows(std::vector<T>& array, std::size_t rows, std::size_t width) {
  if (rows > array.max_size() / std::max<std::size_t>(width, 1)) {
    throw std::length_error("vector too long");
  }
  if (rows * width > array.capacity()) {
    array.reserve(std::max(rows * width, array.capacity() + array.capacity() / 2));
  }
}

[[noreturn]] void throwUnsorted() {
  throw std::logic_error("keys must reach the vector store sorted");
}

}  // namespace

DMapVector::DMapVector(int dim, int type)
    : dim_(dim),
      type_(type),
      width_(static_cast<std::size_t>(std::max(dim, 0))),
      slots_(static_cast<std::size_t>(slotCount(type))) {}

const int* DMapVector::keysAt(int row) const {
  return keyArray_.data() + static_cast<std::size_t>(row) * width_;
}

void DMapVector::makeRoomForRow() {
  if (rowCount_ < rowCapacity_) {
    return;
  }
  if (rowCount_ == std::numeric_limits<int>::max()) {
    throw std::length_error("vector too long");
  }
  // Both arrays get their memory before either changes its length: they never differ in rows.
  const std::size_t rows = static_cast<std::size_t>(rowCount_) + 1;
  reserveRows(keyArray_, rows, width_);
  reserveRows(valueArray_, rows, slots_);
  keyArray_.resize(rows * width_);
  valueArray_.resize(rows * slots_);
  ++rowCapacity_;
}

void DMapVector::write(int row, const int* keys, const double* values) {
  std::copy_n(keys, width_, keyArray_.data() + static_cast<std::size_t>(row) * width_);
  std::copy_n(values, slots_, valueArray_.data() + static_cast<std::size_t>(row) * slots_);
}

VectorIterator DMapVector::setScalar(const double* values) {
  valueArray_.resize(slots_);
  std::copy_n(values, slots_, valueArray_.data());
  return at(0);
}

VectorIterator DMapVector::append(const int* keys, const double* values) {
  if (dim_ == 0) {
    return setScalar(values);
  }
  makeRoomForRow();
  write(rowCount_, keys, values);
  return at(rowCount_++);
}

VectorIterator DMapVector::keepPresent(int row) {
  std::fputs("Warning: Keys already in record map. Skipping.\n", stdout);
  return at(row);
}

VectorIterator DMapVector::insert(const int* keys, const double* values) {
  if (rowCount_ <= 0) {
    return append(keys, values);
  }
  const int last = rowCount_ - 1;
  const int order = compareKeys(keys, keysAt(last), width_);
  if (order == 0) {
    return keepPresent(last);
  }
  if (order > 0) {
    return append(keys, values);
  }
  const VectorIterator bound = lowerBound(keys);
  if (isEnd(bound)) {
    throwUnsorted();
  }
  if (compareKeys(keys, keysAt(bound.row()), width_) == 0) {
    return keepPresent(bound.row());
  }
  if (!fitsBefore(bound.row(), keys)) {
    throwUnsorted();
  }
  return placeBefore(bound.row(), keys, values);
}

bool DMapVector::fitsBefore(int row, const int* keys) const {
  return compareKeys(keys, keysAt(row), width_) <= 0 &&
         (row == 0 || compareKeys(keys, keysAt(row - 1), width_) >= 0);
}

VectorIterator DMapVector::placeBefore(int row, const int* keys, const double* values) {
  makeRoomForRow();
  const auto first = static_cast<std::size_t>(row);
  const auto count = static_cast<std::size_t>(rowCount_);
  std::copy_backward(keyArray_.data() + first * width_, keyArray_.data() + count * width_,
                     keyArray_.data() + (count + 1) * width_);
  std::copy_backward(valueArray_.data() + first * slots_, valueArray_.data() + count * slots_,
                     valueArray_.data() + (count + 1) * slots_);
  write(row, keys, values);
  ++rowCount_;
  return at(row);
}

VectorIterator DMapVector::insertHint(const int* keys, const double* values,
                                      const VectorIterator& hint) {
  const int row = indexOf(hint);
  if (row < 0) {
    return append(keys, values);
  }
  return fitsBefore(row, keys) ? placeBefore(row, keys, values) : insert(keys, values);
}

VectorIterator DMapVector::insertOrAssign(const VectorIterator& /*hint*/, const int* keys,
                                          const double* values) {
  if (dim_ == 0) {
    return insert(keys, values);
  }
  const VectorIterator bound = lowerBound(keys);
  if (isEnd(bound)) {
    return append(keys, values);
  }
  std::copy_n(values, slots_, bound.get().values);
  return bound;
}

void DMapVector::erase(const VectorIterator& position) {
  if (dim_ == 0) {
    valueArray_.clear();
  } else {
    const auto row = static_cast<std::ptrdiff_t>(position.row());
    const auto width = static_cast<std::ptrdiff_t>(width_);
    const auto slots = static_cast<std::ptrdiff_t>(slots_);
    keyArray_.erase(keyArray_.begin() + row * width, keyArray_.begin() + (row + 1) * width);
    valueArray_.erase(valueArray_.begin() + row * slots, valueArray_.begin() + (row + 1) * slots);
  }
  --rowCount_;
  rowCapacity_ = rowCount_;
}

int DMapVector::size() const {
  if (dim_ == 0) {
    return valueArray_.empty() ? 0 : 1;
  }
  return rowCount_;
}

bool DMapVector::empty() const {
  return size() == 0;
}

bool DMapVector::isEnd(const VectorIterator& position) const {
  return position.row() >= size();
}

bool DMapVector::isEndBound(const VectorIterator& bound, const int* keys) const {
  return isEnd(bound) ||
         (rowCount_ == 1 &&
          std::lexicographical_compare(keysAt(0), keysAt(0) + width_, keys, keys + width_));
}

VectorIterator DMapVector::lowerBound(const int* keys) {
  if (empty()) {
    return end();
  }
  int low = 0;
  int high = size();
  int middle = high / 2;
  if (high < 2) {
    return at(middle);
  }
  int order = 0;
  do {
    order = compareKeys(keysAt(middle), keys, width_);
    if (order == 0) {
      return at(middle);
    }
    (order < 0 ? low : high) = middle;
    middle = low + (high - low) / 2;
  } while (high - low > 1);
  return order < 0 ? end() : at(middle);
}

VectorIterator DMapVector::find(const int* keys) {
  const VectorIterator bound = lowerBound(keys);
  if (bound.row() >= rowCount_ || compareKeys(keysAt(bound.row()), keys, width_) != 0) {
    return end();
  }
  return bound;
}

VectorIterator DMapVector::begin() {
  return at(0);
}

VectorIterator DMapVector::end() {
  return at(size());
}

void DMapVector::clear() {
  if (dim_ != 0 && rowCapacity_ == 0) {
    return;
  }
  keyArray_.clear();
  valueArray_.clear();
  rowCount_ = 0;
  rowCapacity_ = 0;
}

void DMapVector::release() {
  std::vector<int>().swap(keyArray_);
  std::vector<double>().swap(valueArray_);
  rowCount_ = 0;
  rowCapacity_ = 0;
}

int DMapVector::indexOf(const VectorIterator& position) {
  return position.row() < rowCount_ ? position.row() : -1;
}

VectorIterator DMapVector::iteratorAt(int index) {
  return at(index);
}

void DMapVector::reserve(int records) {
  if (dim_ == 0) {
    return;
  }
  const auto rows = static_cast<std::size_t>(records);
  reserveRows(keyArray_, rows, width_);
  reserveRows(valueArray_, rows, slots_);
  keyArray_.assign(rows * width_, 0);
  valueArray_.assign(rows * slots_, 0.0);
  rowCapacity_ = records;
}

}  // namespace ztb::dmap
