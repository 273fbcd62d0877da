// The forty instantiations of the ordered map, one for each dimension from 1 to 20 with one or five
// value slots, and the one place where a run-time dimension and slot count choose among them.
#ifndef ZTB_STORE_MAP_FAMILY_H_
#define ZTB_STORE_MAP_FAMILY_H_

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <map>

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

template <std::size_t slots, class Visitor>
[[gnu::always_inline]] inline decltype(auto) visitDimension(int dim, Visitor& visitor) {
  switch (dim) {
    case 1:
      return visitor(MapMember<1, slots>{});
    case 2:
      return visitor(MapMember<2, slots>{});
    case 3:
      return visitor(MapMember<3, slots>{});
    case 4:
      return visitor(MapMember<4, slots>{});
    case 5:
      return visitor(MapMember<5, slots>{});
    case 6:
      return visitor(MapMember<6, slots>{});
    case 7:
      return visitor(MapMember<7, slots>{});
    case 8:
      return visitor(MapMember<8, slots>{});
    case 9:
      return visitor(MapMember<9, slots>{});
    case 10:
      return visitor(MapMember<10, slots>{});
    case 11:
      return visitor(MapMember<11, slots>{});
    case 12:
      return visitor(MapMember<12, slots>{});
    case 13:
      return visitor(MapMember<13, slots>{});
    case 14:
      return visitor(MapMember<14, slots>{});
    case 15:
      return visitor(MapMember<15, slots>{});
    case 16:
      return visitor(MapMember<16, slots>{});
    case 17:
      return visitor(MapMember<17, slots>{});
    case 18:
      return visitor(MapMember<18, slots>{});
    case 19:
      return visitor(MapMember<19, slots>{});
    default:
      return visitor(MapMember<maxDimension, slots>{});
  }
}

// Calls `visitor(MapMember<dim, slots>{})` and hands its result on. A switch, not a table of
// functions: the compiler sees through it, and where the members' code doesn't differ, as in a step
// from node to node, no choice is left at run time. Always inlined, so that the visitor's captures
// stay in registers.
// REQUIRES: inMapFamily(dim).
template <class Visitor>
[[gnu::always_inline]] inline decltype(auto) visitMapFamily(int dim, int type, Visitor&& visitor) {
  return slotCount(type) == 1 ? visitDimension<1>(dim, visitor)
                              : visitDimension<maxSlots>(dim, visitor);
}

}  // namespace ztb::dmap

#endif  // ZTB_STORE_MAP_FAMILY_H_
