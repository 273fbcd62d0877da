// One face for all that holds records in the contests of the stores: our three stores, driven as a
// symbol drives them, and what a program would use without them.
//
// A holder has `append` for a record that sorts last, `find` that gives the first value of a record
// that is there, and `sum` that reads every key element and value in order. `walksSiblings` tells
// that a lookup goes through the labels of a position one by one.
#ifndef ZTB_BENCH_STORE_RIVALS_H_
#define ZTB_BENCH_STORE_RIVALS_H_

#include <absl/container/btree_map.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <type_traits>
#include <utility>
#include <vector>

#include "bench/store_data.h"
#include "store/dmap.h"
#include "store/dmap_gtree.h"
#include "store/dmap_vector.h"

namespace bench {

template <std::size_t dim, std::size_t slots>
double sumOf(const int* keys, const double* values) {
  double sum = 0;
  for (std::size_t d = 0; d < dim; ++d) {
    sum += keys[d];
  }
  for (std::size_t slot = 0; slot < slots; ++slot) {
    sum += values[slot];
  }
  return sum;
}

template <class Store, std::size_t dim, std::size_t slots>
class OurStore {
 public:
  static constexpr bool walksSiblings = std::is_same_v<Store, ztb::dmap::DMapGTree>;

  void append(const int* keys, const double* values) { store_.load(keys, values); }
  double find(const int* keys) { return *store_.find(keys).get().values; }
  double sum() {
    double sum = 0;
    const auto end = store_.end();
    for (auto position = store_.begin(); !position.equals(end); position.next()) {
      const ztb::dmap::RecordView record = position.get();
      sum += sumOf<dim, slots>(record.keys, record.values);
    }
    return sum;
  }

 private:
  static constexpr int type = slots == 1 ? ztb::dmap::typeParameter : ztb::dmap::typeVariable;

  Store store_{static_cast<int>(dim), type};
};

template <std::size_t dim, std::size_t slots>
using TreeMapStore = OurStore<ztb::dmap::DMap, dim, slots>;
template <std::size_t dim, std::size_t slots>
using VectorStore = OurStore<ztb::dmap::DMapVector, dim, slots>;
template <std::size_t dim, std::size_t slots>
using TrieStore = OurStore<ztb::dmap::DMapGTree, dim, slots>;

template <std::size_t dim, std::size_t slots>
std::pair<std::array<int, dim>, std::array<double, slots>> recordOf(const int* keys,
                                                                    const double* values) {
  std::pair<std::array<int, dim>, std::array<double, slots>> record;
  std::copy_n(keys, dim, record.first.begin());
  std::copy_n(values, slots, record.second.begin());
  return record;
}

template <std::size_t dim>
std::array<int, dim> keyOf(const int* keys) {
  std::array<int, dim> key;
  std::copy_n(keys, dim, key.begin());
  return key;
}

template <class Map, std::size_t dim, std::size_t slots>
class MapHolder {
 public:
  static constexpr bool walksSiblings = false;

  void append(const int* keys, const double* values) {
    map_.insert(map_.end(), recordOf<dim, slots>(keys, values));
  }
  double find(const int* keys) { return map_.find(keyOf<dim>(keys))->second[0]; }
  double sum() {
    double sum = 0;
    for (const auto& [key, values] : map_) {
      sum += sumOf<dim, slots>(key.data(), values.data());
    }
    return sum;
  }

 private:
  Map map_;
};

template <std::size_t dim, std::size_t slots>
using StdMapHolder =
    MapHolder<std::map<std::array<int, dim>, std::array<double, slots>>, dim, slots>;
template <std::size_t dim, std::size_t slots>
using BtreeHolder =
    MapHolder<absl::btree_map<std::array<int, dim>, std::array<double, slots>>, dim, slots>;

// A sorted std::vector of records.
template <std::size_t dim, std::size_t slots>
class SortedVector {
 public:
  static constexpr bool walksSiblings = false;

  void append(const int* keys, const double* values) {
    records_.push_back(recordOf<dim, slots>(keys, values));
  }
  double find(const int* keys) {
    return std::ranges::lower_bound(records_, keyOf<dim>(keys), {}, &Record::first)->second[0];
  }
  double sum() {
    double sum = 0;
    for (const auto& [key, values] : records_) {
      sum += sumOf<dim, slots>(key.data(), values.data());
    }
    return sum;
  }

 private:
  using Record = std::pair<std::array<int, dim>, std::array<double, slots>>;

  std::vector<Record> records_;
};

// The arrays of the data themselves: the floor below which no walk can come.
template <std::size_t dim, std::size_t slots>
double sumOfArrays(const StoreData& data) {
  double sum = 0;
  for (std::size_t record = 0; record < data.shape.records; ++record) {
    sum += sumOf<dim, slots>(data.key(record), data.value(record));
  }
  return sum;
}

}  // namespace bench

#endif  // ZTB_BENCH_STORE_RIVALS_H_
