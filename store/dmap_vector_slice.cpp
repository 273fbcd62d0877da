// Slices of the store of rows.
#include <algorithm>
#include <stdexcept>

#include "store/dmap_vector.h"
#include "store/slice_mask.h"

namespace ztb::dmap {
namespace {

// The first of the numbers from `low` up to `high` that `isTrue` holds for, from which on it holds
// for all; `high` without one. The search takes fewer steps the nearer the number is to `low`.
template <class Predicate>
int firstFrom(int low, int high, const Predicate& isTrue) {
  int step = 1;
  int last = low;
  while (last < high && !isTrue(last)) {
    low = last + 1;
    last = step < high - low ? low + step : high;
    step = step < high / 2 ? 2 * step : high;
  }
  high = std::min(high, last);
  while (low < high) {
    const int middle = low + (high - low) / 2;
    if (isTrue(middle)) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return low;
}

}  // namespace

// Whether each row stands above the one before it, and none has a 0, which matches any key. Rows
// that were once found to are not looked at again.
bool DMapVector::ascends() {
  while (ascendingRows_ < rowCount_) {
    const int* here = keysAt(ascendingRows_);
    const int* before = here - width_;
    const bool isAbove = ascendingRows_ == 0 ||
                         std::lexicographical_compare(before, before + width_, here, here + width_);
    if (!isAbove || std::find(here, here + width_, 0) != here + width_) {
      return false;
    }
    ++ascendingRows_;
  }
  return true;
}

int DMapVector::firstNotBelow(int row, const int* keys) const {
  return firstFrom(row, rowCount_, [&](int other) {
    const int* here = keysAt(other);
    return !std::lexicographical_compare(here, here + width_, keys, keys + width_);
  });
}

int DMapVector::lastNotAbove(int row, const int* keys) const {
  return row - firstFrom(0, row + 1, [&](int back) {
           const int* here = keysAt(row - back);
           return !std::lexicographical_compare(keys, keys + width_, here, here + width_);
         });
}

bool DMapVector::seekInSlice(VectorIterator& position, const int* mask, bool forward) {
  if (dim_ == 0) {
    return true;
  }
  int row = position.row();
  if (row < 0 || row >= rowCount_) {
    throw std::logic_error("the position stands on no record");
  }
  const bool sorted = ascends();
  while (row >= 0 && row < rowCount_) {
    int wanted[maxDimension];
    const SliceStep step = forward ? nextInSlice(dim_, mask, keysAt(row), wanted)
                                   : previousInSlice(dim_, mask, keysAt(row), wanted);
    if (step == SliceStep::here) {
      position.moveTo(row);
      return true;
    }
    if (!sorted) {
      row += forward ? 1 : -1;
    } else if (step == SliceStep::none) {
      return false;
    } else {
      row = forward ? firstNotBelow(row, wanted) : lastNotAbove(row, wanted);
    }
  }
  return false;
}

}  // namespace ztb::dmap
