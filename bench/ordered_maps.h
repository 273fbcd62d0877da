// The ordered maps that a C++ program would hold the records in. `StdMap` has the node type of
// our default store and is thus the floor below which that store cannot come.
#ifndef ZTB_BENCH_ORDERED_MAPS_H_
#define ZTB_BENCH_ORDERED_MAPS_H_

#include <absl/container/btree_map.h>

#include <array>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "bench/contest.h"
#include "bench/data.h"

namespace bench {

using Slots = std::array<double, 1>;
using StdMap = std::map<Key, Slots>;
using BtreeMap = absl::btree_map<Key, Slots>;

inline constexpr const char* stdMapName = "std::map";
inline constexpr const char* btreeMapName = "absl::btree_map";

using LabelNumbers = std::unordered_map<std::string, int>;

// A map of all records beside the numbers of their labels.
template <class Map>
struct LabelledMap {
  LabelNumbers numbers;
  Map records;
};

template <class Map>
void addInOrder(Map& map, const Data& data, std::size_t first, std::size_t last) {
  for (std::size_t i = first; i < last; ++i) {
    map.insert(map.end(), {data.keys[i], {data.values[i]}});
  }
}

template <class Map>
LabelledMap<Map>& filledMap(const Data& data) {
  static Shared<LabelledMap<Map>> shared;
  return shared.get(data, [](const Data& wanted) {
    auto filled = std::make_unique<LabelledMap<Map>>();
    for (const std::string& label : wanted.labels) {
      filled->numbers.emplace(label, static_cast<int>(filled->numbers.size()) + 1);
    }
    addInOrder(filled->records, wanted, 0, wanted.size());
    return filled;
  });
}

}  // namespace bench

#endif  // ZTB_BENCH_ORDERED_MAPS_H_
