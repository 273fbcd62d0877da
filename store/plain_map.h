// A map of records as `RecordTree`, made of nothing but a standard ordered map. It is slow where
// that one is fast, and in its place in a build of the option ZTB_PLAIN_STORES, beside which the
// tests run the real one.
#ifndef ZTB_STORE_PLAIN_MAP_H_
#define ZTB_STORE_PLAIN_MAP_H_

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <map>

#include "store/idmap.h"
#include "store/slice_mask.h"

namespace ztb::dmap {

template <int dim, int slots>
class PlainMap {
 public:
  using Position = void*;

  static Position next(Position position) { return untyped(std::next(iterator(position))); }
  static Position prev(Position position) { return untyped(std::prev(iterator(position))); }
  static RecordView view(Position position) {
    auto& [key, values] = *iterator(position);
    return {key.data(), values.data()};
  }

  [[nodiscard]] Position begin() { return untyped(map_.begin()); }
  [[nodiscard]] Position end() { return untyped(map_.end()); }
  [[nodiscard]] std::size_t size() const { return map_.size(); }

  Position put(Position hint, const int* key, const double* values, bool overwrite) {
    const auto slotsOfRecord = arrayOf<Values>(values);
    const auto position = map_.insert(iterator(hint), {arrayOf<Key>(key), slotsOfRecord});
    if (overwrite) {
      position->second = slotsOfRecord;
    }
    return untyped(position);
  }
  void erase(Position position) { map_.erase(iterator(position)); }
  void clear() { map_.clear(); }
  Position lowerBound(const int* key) { return untyped(map_.lower_bound(arrayOf<Key>(key))); }
  Position find(const int* key) { return untyped(map_.find(arrayOf<Key>(key))); }

  Position firstInSlice(Position position, const int* mask) {
    auto found = iterator(position);
    while (found != map_.end() && !matches(found->first, mask)) {
      ++found;
    }
    return untyped(found);
  }
  Position lastInSlice(Position position, const int* mask) {
    for (auto found = iterator(position); found != map_.end() && !matches(found->first, mask);) {
      found = found == map_.begin() ? map_.end() : std::prev(found);
      position = untyped(found);
    }
    return position;
  }

 private:
  using Key = std::array<int, dim>;
  using Values = std::array<double, slots>;
  using Iterator = typename std::map<Key, Values>::iterator;
  static_assert(sizeof(Iterator) == sizeof(Position));

  static Iterator iterator(Position position) { return std::bit_cast<Iterator>(position); }
  static Position untyped(Iterator iterator) { return std::bit_cast<Position>(iterator); }
  template <class Array, class Element>
  static Array arrayOf(const Element* elements) {
    Array result;
    std::memcpy(result.data(), elements, sizeof result);
    return result;
  }
  static bool matches(const Key& key, const int* mask) {
    return matchesMask(mask, key.data(), dim);
  }

  std::map<Key, Values> map_;
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_PLAIN_MAP_H_
