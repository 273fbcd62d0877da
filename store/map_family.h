// The forty instantiations of the map of records, one for each dimension from 1 to 20 with one or
// five value slots, and the one place where a run-time dimension and slot count choose among them.
#ifndef ZTB_STORE_MAP_FAMILY_H_
#define ZTB_STORE_MAP_FAMILY_H_

#include "store/idmap.h"

#if defined(ZTB_PLAIN_STORES)
#include "store/plain_map.h"
#else
#include "store/record_tree.h"
#endif

namespace ztb::dmap {

#if defined(ZTB_PLAIN_STORES)
template <int dim, int slots>
using RecordMap = PlainMap<dim, slots>;
#else
template <int dim, int slots>
using RecordMap = RecordTree<dim, slots>;
#endif

// What a visitor is given: a member of the family, and its positions as the untyped ones that store
// iterators carry.
template <int dim, int slots>
struct MapMember {
  using Map = RecordMap<dim, slots>;
  using Position = typename Map::Position;

  static Map& map(void* untyped) { return *static_cast<Map*>(untyped); }
  static Position position(void* untyped) { return static_cast<Position>(untyped); }
};

// Whether the family has a member for this dimension.
constexpr bool inMapFamily(int dim) {
  return dim >= 1 && dim <= maxDimension;
}

template <int slots, class Visitor>
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
// functions: the compiler sees through it. Always inlined, so that the visitor's captures stay in
// registers.
// REQUIRES: inMapFamily(dim).
template <class Visitor>
[[gnu::always_inline]] inline decltype(auto) visitMapFamily(int dim, int type, Visitor&& visitor) {
  return slotCount(type) == 1 ? visitDimension<1>(dim, visitor)
                              : visitDimension<maxSlots>(dim, visitor);
}

// Steps and views, which a tree of records needs no choice for.
inline void* nextPosition([[maybe_unused]] int dim, [[maybe_unused]] int type, void* position) {
#if defined(ZTB_PLAIN_STORES)
  return visitMapFamily(
      dim, type, [=](auto member) -> void* { return decltype(member)::Map::next(position); });
#else
  return static_cast<TreeLink*>(position)->next();
#endif
}

inline void* prevPosition([[maybe_unused]] int dim, [[maybe_unused]] int type, void* position) {
#if defined(ZTB_PLAIN_STORES)
  return visitMapFamily(
      dim, type, [=](auto member) -> void* { return decltype(member)::Map::prev(position); });
#else
  return static_cast<TreeLink*>(position)->prev();
#endif
}

inline RecordView viewAt(int dim, [[maybe_unused]] int type, void* position) {
#if defined(ZTB_PLAIN_STORES)
  return visitMapFamily(dim, type,
                        [=](auto member) { return decltype(member)::Map::view(position); });
#else
  auto* node = static_cast<TreeLink*>(position);
  return {keyOfNode(node), valuesOfNode(node, dim)};
#endif
}

}  // namespace ztb::dmap

#endif  // ZTB_STORE_MAP_FAMILY_H_
