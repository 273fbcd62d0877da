// A store of two flat arrays, one of keys and one of value slots, with nothing else per record: for
// data that arrives in key order.
//
// The store never sorts. Rows stand as they arrived; `insert` and `insertHint` place a key behind
// the last row, before the first, or between a hint's row and the one before it, and throw
// std::logic_error for a key that would have to go anywhere else. In every comparison a 0 on either
// side matches anything. A dimension outside 0 to 20 gives a store that holds nothing: its ways in
// return the null iterator.
//
// The values may be held outside. What a holder was shown stays as it is: the store takes other
// memory before it changes any of it, and so does `ownValues` for those who write through a view.
#ifndef ZTB_STORE_DMAP_VECTOR_H_
#define ZTB_STORE_DMAP_VECTOR_H_

#include <cstddef>

#include "store/flat_array.h"
#include "store/idmap.h"
#include "store/vector_iterator.h"

namespace ztb::dmap {

class DMapVector final : public IDMap<VectorIterator> {
 public:
  DMapVector(int dim, int type);
  ~DMapVector() override = default;
  DMapVector(const DMapVector&) = delete;
  DMapVector& operator=(const DMapVector&) = delete;

  // A new last row, without any check. On a scalar, overwrites.
  VectorIterator append(const int* keys, const double* values) override {
    const int row = appendRow(keys, values);
    return row < 0 ? VectorIterator() : at(row);
  }
  // `append` without its result.
  void load(const int* keys, const double* values) { appendRow(keys, values); }
  // For a key equal to the last row, or to the row where the lower bound stands: prints
  // "Warning: Keys already in record map. Skipping." and keeps the row.
  VectorIterator insert(const int* keys, const double* values) override;
  // In front of the hint's row if the key lies between it and the row before it, a duplicate of
  // either included; else `insert`, and `append` for a hint on no row.
  VectorIterator insertHint(const int* keys, const double* values,
                            const VectorIterator& hint) override;
  void insertFollowing(const int* keys, const double* values, VectorIterator& hint) override;
  // The same for `count` records, one after the other: where they ascend behind the last row, they
  // are copied together.
  void insertAllFollowing(const int* keys, const double* values, int count, VectorIterator& hint);
  // Overwrites the row where the lower bound stands, whatever its key; appends when that is `end`.
  VectorIterator insertOrAssign(const VectorIterator& hint, const int* keys,
                                const double* values) override;
  // Later rows move down by one.
  void erase(const VectorIterator& position) override;
  [[nodiscard]] int size() const override {
    if (dim_ == 0) {
      return valueArray_.empty() ? 0 : 1;
    }
    return rowCount_;
  }
  [[nodiscard]] bool empty() const override;
  // A binary search of a shape of its own: exact for a key that is present, for one below every
  // row (row 0) and for one above all of two rows or more (`end`). Any other key gives `end` or the
  // row just below it, and a single row is given whatever the key.
  VectorIterator lowerBound(const int* keys) override;
  // Always `end` on a scalar.
  VectorIterator find(const int* keys) override;
  // As `find`, for whoever asks for many keys in their order: the row behind the one that was found
  // last is looked at first, where rows ascend.
  VectorIterator findInTurn(const int* keys);
  VectorIterator begin() override { return at(0); }
  VectorIterator end() override { return at(size()); }
  // Keeps the memory of the arrays, but values that are held.
  void clear() override;
  int indexOf(const VectorIterator& position) override;
  // Unchecked.
  VectorIterator iteratorAt(int index) override;
  // Drops the content of both arrays and sizes them for that many rows; for an empty store only.
  void reserve(int records) override;

  // As `clear`, for records of which none of before is to show.
  void startAnew() { clear(); }
  // As `clear`, and gives the memory back.
  void release();

  // The values of all records of a store with one slot, for somebody who drops them.
  [[nodiscard]] HeldValues holdValues();
  // One slot of all records, in their order.
  void copySlot(std::size_t slot, double* to) const;
  // Comes before any writing through a RecordView.
  void ownValues() { valueArray_.own(); }

  // The position behind a record.
  [[nodiscard]] static VectorIterator behind(VectorIterator position) {
    position.next();
    return position;
  }
  [[nodiscard]] bool isEnd(const VectorIterator& position) const;
  // Whether a key whose lower bound this is sorts behind all records; a single row is the bound of
  // such keys too.
  [[nodiscard]] bool isEndBound(const VectorIterator& bound, const int* keys) const;
  // Moves on, or back, to the first row of a slice from the position on, itself included; false,
  // with the position as it was, without one. Rows that ascend are searched, others looked at.
  // REQUIRES: the position stands on a row.
  bool seekInSlice(VectorIterator& position, const int* mask, bool forward);

 private:
  VectorIterator at(int row) { return {dim_, type_, row, &keyArray_, &valueArray_}; }
  [[nodiscard]] const int* keysAt(int row) const;
  // The row where the record stands; negative where the store holds nothing.
  int appendRow(const int* keys, const double* values);
  int appendWithNewMemory(const int* keys, const double* values);
  void requireMemoryForRow();
  void growMemory(std::size_t rows);
  [[nodiscard]] int noMemory() const;
  void stretchToRow();
  void clearValues();
  void write(int row, const int* keys, const double* values);
  void setScalar(const double* values);
  VectorIterator keepPresent(int row);
  [[nodiscard]] bool fitsBefore(int row, const int* keys) const;
  [[nodiscard]] bool allFollow(const int* keys, int count, const VectorIterator& hint) const;
  template <class Order>
  [[nodiscard]] int boundRow(const Order& order) const;
  [[nodiscard]] bool ascends();
  [[nodiscard]] int firstNotBelow(int row, const int* keys) const;
  [[nodiscard]] int lastNotAbove(int row, const int* keys) const;
  VectorIterator placeBefore(int row, const int* keys, const double* values);

  FlatArray<int> keyArray_;
  FlatArray<double> valueArray_;
  int rowCapacity_ = 0;    // rows for which both arrays are sized
  int rowCount_ = 0;       // rows in use; not maintained on a scalar
  std::size_t width_;      // keys of a row
  std::size_t slots_;      // values of a row
  int ascendingRows_ = 0;  // of the first, how many are known to ascend; a look at more comes later
  int turn_ = 0;           // the row that `findInTurn` looks at first
  int rowsOfMemory_;       // rows for which both arrays have memory; below any count without keys
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_DMAP_VECTOR_H_
