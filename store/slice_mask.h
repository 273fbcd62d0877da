// Slices: which keys a mask takes, and where the next one can stand.
//
// At every position the mask is 0, which takes any element, or the element itself.
#ifndef ZTB_STORE_SLICE_MASK_H_
#define ZTB_STORE_SLICE_MASK_H_

#include <limits>

namespace ztb::dmap {

inline bool matchesMask(const int* mask, const int* keys, int dim) {
  for (int d = 0; d < dim; ++d) {
    if (mask[d] != 0 && mask[d] != keys[d]) {
      return false;
    }
  }
  return true;
}

// What follows in a slice from a key on: the key itself lies in it, one at or behind another key
// may, or none does.
enum class SliceStep { here, further, none };

// Where the first key of the slice from `key` on can stand: for `further` at or above `wanted`.
[[gnu::always_inline]] inline SliceStep nextInSlice(int dim, const int* mask, const int* key,
                                                    int* wanted) {
  constexpr int least = std::numeric_limits<int>::min();
  constexpr int most = std::numeric_limits<int>::max();
  int mismatch = 0;
  while (mismatch < dim && (mask[mismatch] == 0 || mask[mismatch] == key[mismatch])) {
    ++mismatch;
  }
  if (mismatch == dim) {
    return SliceStep::here;
  }
  // The last position that keeps the key's element, or takes the one behind it.
  int kept = mismatch;
  const bool onward = key[mismatch] > mask[mismatch];
  if (onward) {
    do {
      --kept;
    } while (kept >= 0 && (mask[kept] != 0 || key[kept] == most));
    if (kept < 0) {
      return SliceStep::none;
    }
  }
  for (int d = 0; d < dim; ++d) {
    if (d < kept) {
      wanted[d] = key[d];
    } else if (mask[d] != 0) {
      wanted[d] = mask[d];
    } else {
      wanted[d] = d == kept ? key[d] + 1 : least;
    }
  }
  return SliceStep::further;
}

// Where the last key of the slice from `key` back can stand: for `further` at or below `wanted`.
[[gnu::always_inline]] inline SliceStep previousInSlice(int dim, const int* mask, const int* key,
                                                        int* wanted) {
  constexpr int least = std::numeric_limits<int>::min();
  constexpr int most = std::numeric_limits<int>::max();
  int mismatch = 0;
  while (mismatch < dim && (mask[mismatch] == 0 || mask[mismatch] == key[mismatch])) {
    ++mismatch;
  }
  if (mismatch == dim) {
    return SliceStep::here;
  }
  int kept = mismatch;
  const bool back = key[mismatch] < mask[mismatch];
  if (back) {
    do {
      --kept;
    } while (kept >= 0 && (mask[kept] != 0 || key[kept] == least));
    if (kept < 0) {
      return SliceStep::none;
    }
  }
  for (int d = 0; d < dim; ++d) {
    if (d < kept) {
      wanted[d] = key[d];
    } else if (mask[d] != 0) {
      wanted[d] = mask[d];
    } else {
      wanted[d] = d == kept ? key[d] - 1 : most;
    }
  }
  return SliceStep::further;
}

}  // namespace ztb::dmap

#endif  // ZTB_STORE_SLICE_MASK_H_
