#include "store/dmap_vector.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
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

constexpr std::size_t mostRows = std::numeric_limits<int>::max();

// Elements of that many rows; a count that no array can hold stays so.
std::size_t elementsOf(std::size_t rows, std::size_t width) {
  constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
  return rows > most / width ? most : rows * width;
}

// Copies the numbers of one row. Most rows are short, and a call would cost more than the copy.
template <class T>
void copyRow(const T* from, std::size_t width, T* to) {
  switch (width) {
    case 1:
      std::memcpy(to, from, sizeof(T));
      return;
    case 2:
      std::memcpy(to, from, 2 * sizeof(T));
      return;
    case 3:
      std::memcpy(to, from, 3 * sizeof(T));
      return;
    case 4:
      std::memcpy(to, from, 4 * sizeof(T));
      return;
    case 5:
      std::memcpy(to, from, 5 * sizeof(T));
      return;
    default:
      std::memcpy(to, from, width * sizeof(T));
  }
}

[[noreturn]] void throwUnsorted() {
  throw std::logic_error("keys must reach the vector store sorted");
}

}  // namespace

DMapVector::DMapVector(int dim, int type)
    : IDMap(StorageKind::dMapVector, dim, type),
      width_(dim >= 1 && dim <= maxDimension ? static_cast<std::size_t>(dim) : 0),
      slots_(static_cast<std::size_t>(slotCount(type))),
      rowsOfMemory_(noMemory()) {}

int DMapVector::noMemory() const {
  return width_ == 0 ? std::numeric_limits<int>::min() : 0;
}

const int* DMapVector::keysAt(int row) const {
  return keyArray_.data() + static_cast<std::size_t>(row) * width_;
}

// Both arrays get their memory before either changes its length: they never differ in rows.
void DMapVector::growMemory(std::size_t rows) {
  keyArray_.reserve(elementsOf(rows, width_));
  valueArray_.reserve(elementsOf(rows, slots_));
  rowsOfMemory_ = static_cast<int>(
      std::min({keyArray_.capacity() / width_, valueArray_.capacity() / slots_, mostRows}));
}

void DMapVector::requireMemoryForRow() {
  if (rowCount_ >= rowsOfMemory_) {
    if (rowCount_ == std::numeric_limits<int>::max()) {
      throw std::length_error("vector too long");
    }
    growMemory(static_cast<std::size_t>(rowCount_) + 1);
  }
}

// Gives both arrays the length of one row more than are in use, where they are not longer.
// REQUIRES: memory for that row.
inline void DMapVector::stretchToRow() {
  if (rowCount_ == rowCapacity_) {
    const auto rows = static_cast<std::size_t>(++rowCapacity_);
    keyArray_.setSize(rows * width_);
    valueArray_.setSize(rows * slots_);
  }
}

inline void DMapVector::write(int row, const int* keys, const double* values) {
  const auto place = static_cast<std::size_t>(row);
  copyRow(keys, width_, keyArray_.data() + place * width_);
  copyRow(values, slots_, valueArray_.data() + place * slots_);
}

int DMapVector::appendRow(const int* keys, const double* values) {
  if (rowCount_ >= rowsOfMemory_) {
    return appendWithNewMemory(keys, values);
  }
  stretchToRow();
  write(rowCount_, keys, values);
  return rowCount_++;
}

int DMapVector::appendWithNewMemory(const int* keys, const double* values) {
  if (dim_ == 0) {
    setScalar(values);
    return 0;
  }
  if (width_ == 0) {
    return -1;
  }
  requireMemoryForRow();
  return appendRow(keys, values);
}

void DMapVector::setScalar(const double* values) {
  valueArray_.reserve(slots_);
  valueArray_.own();
  valueArray_.setSize(slots_);
  std::copy_n(values, slots_, valueArray_.data());
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
  requireMemoryForRow();
  valueArray_.own();
  stretchToRow();
  const auto first = static_cast<std::size_t>(row);
  const auto count = static_cast<std::size_t>(rowCount_);
  std::copy_backward(keyArray_.data() + first * width_, keyArray_.data() + count * width_,
                     keyArray_.data() + (count + 1) * width_);
  std::copy_backward(valueArray_.data() + first * slots_, valueArray_.data() + count * slots_,
                     valueArray_.data() + (count + 1) * slots_);
  write(row, keys, values);
  ++rowCount_;
  ascendingRows_ = std::min(ascendingRows_, row);
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

// A key behind the last row, on which the hint stands, is the common case by far.
void DMapVector::insertFollowing(const int* keys, const double* values, VectorIterator& hint) {
  const int last = rowCount_ - 1;
  if (last >= 0 && hint.row() == last && compareKeys(keys, keysAt(last), width_) > 0) {
    hint.moveTo(appendRow(keys, values));
    return;
  }
  hint = insertHint(keys, values, hint);
}

// Whether `insertFollowing` would append each of these records, of which there are some.
bool DMapVector::allFollow(const int* keys, int count, const VectorIterator& hint) const {
  if (width_ == 0 || count > std::numeric_limits<int>::max() - rowCount_) {
    return false;
  }
  const int last = rowCount_ - 1;
  if (last >= 0 && (hint.row() != last || compareKeys(keys, keysAt(last), width_) <= 0)) {
    return false;
  }
  for (int k = 1; k < count; ++k, keys += width_) {
    if (compareKeys(keys + width_, keys, width_) <= 0) {
      return false;
    }
  }
  return true;
}

void DMapVector::insertAllFollowing(const int* keys, const double* values, int count,
                                    VectorIterator& hint) {
  if (count == 0) {
    return;
  }
  if (!allFollow(keys, count, hint)) {
    for (int k = 0; k < count; ++k) {
      insertFollowing(keys, values, hint);
      keys += width_;
      values += slots_;
    }
    return;
  }
  const int rows = rowCount_ + count;
  if (rows > rowsOfMemory_) {
    growMemory(static_cast<std::size_t>(rows));
  }
  if (rows > rowCapacity_) {
    rowCapacity_ = rows;
    keyArray_.setSize(static_cast<std::size_t>(rows) * width_);
    valueArray_.setSize(static_cast<std::size_t>(rows) * slots_);
  }
  const auto first = static_cast<std::size_t>(rowCount_);
  const auto added = static_cast<std::size_t>(count);
  std::copy_n(keys, added * width_, keyArray_.data() + first * width_);
  std::copy_n(values, added * slots_, valueArray_.data() + first * slots_);
  rowCount_ = rows;
  hint = at(rows - 1);
}

VectorIterator DMapVector::insertOrAssign(const VectorIterator& /*hint*/, const int* keys,
                                          const double* values) {
  if (dim_ == 0) {
    return insert(keys, values);
  }
  VectorIterator bound = lowerBound(keys);
  if (isEnd(bound)) {
    return append(keys, values);
  }
  valueArray_.own();
  std::copy_n(values, slots_, bound.get().values);
  return bound;
}

void DMapVector::erase(const VectorIterator& position) {
  if (dim_ == 0) {
    valueArray_.setSize(0);
  } else {
    const auto row = static_cast<std::size_t>(position.row());
    valueArray_.own();
    keyArray_.erase(row * width_, (row + 1) * width_);
    valueArray_.erase(row * slots_, (row + 1) * slots_);
    ascendingRows_ = std::min(ascendingRows_, position.row());
  }
  --rowCount_;
  rowCapacity_ = rowCount_;
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

// The row where `order`, the sign of a row's keys against those looked for, ends the search.
template <class Order>
int DMapVector::boundRow(const Order& order) const {
  int low = 0;
  int high = size();
  int middle = high / 2;
  if (high < 2) {
    return middle;
  }
  int sign = 0;
  do {
    sign = order(middle);
    if (sign == 0) {
      return middle;
    }
    (sign < 0 ? low : high) = middle;
    middle = low + (high - low) / 2;
  } while (high - low > 1);
  return sign < 0 ? size() : middle;
}

VectorIterator DMapVector::lowerBound(const int* keys) {
  if (empty()) {
    return end();
  }
  if (width_ == 1) {
    const int* rows = keyArray_.data();
    const int key = keys[0];
    return at(boundRow([=](int row) { return compareKeys(rows + row, &key, 1); }));
  }
  return at(boundRow([&](int row) { return compareKeys(keysAt(row), keys, width_); }));
}

VectorIterator DMapVector::find(const int* keys) {
  VectorIterator bound = lowerBound(keys);
  if (bound.row() >= rowCount_ || compareKeys(keysAt(bound.row()), keys, width_) != 0) {
    return end();
  }
  return bound;
}

VectorIterator DMapVector::findInTurn(const int* keys) {
  const bool isTurn =
      turn_ < rowCount_ && std::equal(keys, keys + width_, keysAt(turn_)) && ascends();
  VectorIterator found = isTurn ? at(turn_) : find(keys);
  turn_ = found.row() + 1;
  return found;
}

void DMapVector::clear() {
  if (dim_ != 0 && rowCapacity_ == 0) {
    return;
  }
  keyArray_.setSize(0);
  clearValues();
  rowCount_ = 0;
  rowCapacity_ = 0;
  ascendingRows_ = 0;
}

void DMapVector::release() {
  keyArray_.release();
  valueArray_.release();
  rowCount_ = 0;
  rowCapacity_ = 0;
  ascendingRows_ = 0;
  rowsOfMemory_ = noMemory();
}

void DMapVector::clearValues() {
  valueArray_.clear();
  if (valueArray_.capacity() == 0) {
    rowsOfMemory_ = noMemory();
  }
}

HeldValues DMapVector::holdValues() {
  if (empty() || slots_ != 1) {
    return {};
  }
  HeldMemory* memory = valueArray_.hold();
  return {.values = valueArray_.data(), .count = size(), .memory = memory};
}

int DMapVector::indexOf(const VectorIterator& position) {
  return position.row() < rowCount_ ? position.row() : -1;
}

void DMapVector::copySlot(std::size_t slot, double* to) const {
  const double* values = valueArray_.data() + slot;
  for (int row = 0; row < size(); ++row, values += slots_) {
    to[row] = *values;
  }
}

VectorIterator DMapVector::iteratorAt(int index) {
  return at(index);
}

void DMapVector::reserve(int records) {
  if (width_ == 0) {
    return;
  }
  const auto rows = static_cast<std::size_t>(records);
  growMemory(rows);
  keyArray_.setSize(rows * width_);
  valueArray_.setSize(rows * slots_);
  std::fill_n(keyArray_.data(), rows * width_, 0);
  std::fill_n(valueArray_.data(), rows * slots_, 0.0);
  rowCapacity_ = records;
}

}  // namespace ztb::dmap
