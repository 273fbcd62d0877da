// The default store: an ordered map whose nodes hold key and value slots by value and come from
// blocks of the map's own. Correct for any order of insertion; lookup is logarithmic. A
// scalar's one record stands inline. An iterator stays good across insertions and the erasure of
// other records. A dimension outside 0 to 20 gives a store that holds nothing: its operations
// return the null iterator.
#ifndef ZTB_STORE_DMAP_H_
#define ZTB_STORE_DMAP_H_

#include "store/dmap_iterator.h"
#include "store/idmap.h"

namespace ztb::dmap {

class DMap final : public IDMap<DMapIterator> {
 public:
  DMap(int dim, int type);
  ~DMap() override;
  DMap(const DMap&) = delete;
  DMap& operator=(const DMap&) = delete;

  // On a scalar, all four ways in overwrite an earlier record. On a keyed store, `append`, `insert`
  // and `insertHint` keep a record that exists and return it; `insertOrAssign` overwrites all its
  // slots. The hint only steers the search.
  DMapIterator append(const int* keys, const double* values) override {
    return at(stored(end_, keys, values, false));
  }
  // `append` without its result.
  void load(const int* keys, const double* values) { stored(end_, keys, values, false); }
  DMapIterator insert(const int* keys, const double* values) override {
    return append(keys, values);
  }
  DMapIterator insertHint(const int* keys, const double* values,
                          const DMapIterator& hint) override {
    return at(stored(hint.position(), keys, values, false));
  }
  DMapIterator insertOrAssign(const DMapIterator& hint, const int* keys,
                              const double* values) override {
    return at(stored(hint.position(), keys, values, true));
  }
  void erase(const DMapIterator& position) override;
  [[nodiscard]] int size() const override;
  [[nodiscard]] bool empty() const override;
  // Exact. On a scalar with no record `end`, on one with a record the null iterator.
  DMapIterator lowerBound(const int* keys) override;
  DMapIterator find(const int* keys) override { return at(found(keys)); }
  DMapIterator begin() override;
  DMapIterator end() override { return at(end_); }
  void clear() override;
  int indexOf(const DMapIterator& position) override;
  DMapIterator iteratorAt(int index) override;
  // Does nothing.
  void reserve(int records) override;

  // As `clear`, for records of which none of before is to show.
  void startAnew() { clear(); }
  // As `clear`, which gives the memory back.
  void release() { clear(); }

  // The position behind a record.
  [[nodiscard]] static DMapIterator behind(DMapIterator position) {
    position.next();
    return position;
  }
  [[nodiscard]] bool isEnd(const DMapIterator& position) { return end().equals(position); }
  // Whether a key whose lower bound this is sorts behind all records.
  [[nodiscard]] bool isEndBound(const DMapIterator& bound, const int* /*keys*/) {
    return isEnd(bound);
  }
  // Moves on, or back, to the first record of a slice from the position on, itself included; false,
  // with the position as it was, without one. REQUIRES: the position stands on a record.
  bool seekInSlice(DMapIterator& position, const int* mask, bool forward);

 private:
  // An iterator is made where it is wanted, out of the pointer that the search gave: built behind a
  // call and copied, it costs more than a step of the search.
  DMapIterator at(void* position) const {
    return position == nullptr ? DMapIterator() : DMapIterator(dim_, type_, position);
  }
  // Positions for the operations above; null where there is no map and no scalar.
  void* stored(void* hint, const int* keys, const double* values, bool overwrite);
  void* found(const int* keys);
  void* setScalar(const double* values);

  void* map_ = nullptr;
  double scalarValues_[maxSlots] = {};
  bool scalarSet_ = false;
  void* end_ = nullptr;  // a map's end never moves; null where there is no map and no scalar
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_DMAP_H_
