// The forty instantiations of the ordered map, one for each dimension from 1 to 20 with one or five
// value slots, and the one place where a run-time dimension and slot count choose among them.
#ifndef ZTB_STORE_MAP_FAMILY_H_
#define ZTB_STORE_MAP_FAMILY_H_

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <map>
#include <utility>

#include "store/idmap.h"

namespace ztb::dmap {

template <std::size_t dim>
using Key = std::array<int, dim>;

template <std::size_t slots>
using Slots = std::array<double, slots>;

template <std::size_t dim, std::size_t slots>
using RecordMap = std::map<Key<dim>, Slots<slots>>;

// What a visitor is given: the types of one member of the family and the conversions between its
// iterators and the untyped position that store iterators carry.
template <std::size_t dimension, std::size_t slotsOfRecord>
struct MapMember {
  using Map = RecordMap<dimension, slotsOfRecord>;
  using Position = typename Map::iterator;
  static constexpr std::size_t dim = dimension;
  static constexpr std::size_t slots = slotsOfRecord;
  static_assert(sizeof(Position) == sizeof(void*));

  static Map& map(void* untyped) { return *static_cast<Map*>(untyped); }
  static Position position(void* untyped) { return std::bit_cast<Position>(untyped); }
  static void* untyped(Position position) { return std::bit_cast<void*>(position); }

  static Key<dim> key(const int* keys) {
    Key<dim> result;
    std::memcpy(result.data(), keys, sizeof result);
    return result;
  }
  static Slots<slots> values(const double* values) {
    Slots<slots> result;
    std::memcpy(result.data(), values, sizeof result);
    return result;
  }
};

// Whether the family has a member for this dimension.
constexpr bool inMapFamily(int dim) {
  return dim >= 1 && dim <= maxDimension;
}

// Calls `visitor(MapMember<dim, slots>{})` and hands its result on.
// REQUIRES: inMapFamily(dim).
template <class Visitor>
decltype(auto) visitMapFamily(int dim, int type, Visitor&& visitor) {
  using Result = decltype(visitor(MapMember<1, 1>{}));
  using Call = Result (*)(Visitor&);
  static constexpr auto calls = []<std::size_t... i>(std::index_sequence<i...>) {
    return std::array<Call, sizeof...(i)>{[](Visitor& v) -> Result {
      return v(MapMember < i / 2 + 1, i % 2 == 0 ? 1 : maxSlots > {});
    }...};
  }
  (std::make_index_sequence<std::size_t{2} * maxDimension>{});
  const std::size_t index =
      (static_cast<std::size_t>(dim) - 1) * 2 + (slotCount(type) == 1 ? 0 : 1);
  return calls[index](visitor);
}

}  // namespace ztb::dmap

#endif  // ZTB_STORE_MAP_FAMILY_H_
