#include "store/dmap.h"

#include <algorithm>

#include "store/map_family.h"

namespace ztb::dmap {
namespace {

// Adds a record to a map, or overwrites it there if that is wanted. The map's own insert_or_assign
// would look for the place of a new key twice. Kept apart from the choice of the member, which is
// then a plain jump.
template <class Member>
[[gnu::noinline]] void* storeInMap(void* map, void* hint, const int* keys, const double* values,
                                   bool overwrite) {
  const auto slots = Member::values(values);
  const auto position = Member::map(map).insert(Member::position(hint), {Member::key(keys), slots});
  if (overwrite) {
    position->second = slots;
  }
  return Member::untyped(position);
}

}  // namespace

DMap::DMap(int dim, int type) : IDMap(StorageKind::dMap, dim, type) {
  if (dim_ == 0) {
    end_ = scalarValues_ + 1;
  } else if (inMapFamily(dim_)) {
    visitMapFamily(dim_, type_, [this](auto member) {
      auto* map = new typename decltype(member)::Map;
      map_ = map;
      end_ = member.untyped(map->end());
    });
  }
}

DMap::~DMap() {
  if (map_ != nullptr) {
    visitMapFamily(dim_, type_, [this](auto member) { delete &member.map(map_); });
  }
}

void* DMap::setScalar(const double* values) {
  std::copy_n(values, slotCount(type_), scalarValues_);
  scalarSet_ = true;
  return scalarValues_;
}

DMapIterator DMap::insert(const int* keys, const double* values) {
  if (dim_ == 0) {
    return at(setScalar(values));
  }
  if (map_ == nullptr) {
    return {};
  }
  return at(visitMapFamily(dim_, type_, [&](auto member) {
    return member.untyped(member.map(map_).insert({member.key(keys), member.values(values)}).first);
  }));
}

void* DMap::stored(void* hint, const int* keys, const double* values, bool overwrite) {
  if (dim_ == 0) {
    return setScalar(values);
  }
  if (map_ == nullptr) {
    return nullptr;
  }
  return visitMapFamily(dim_, type_, [=, this](auto member) {
    return storeInMap<decltype(member)>(map_, hint, keys, values, overwrite);
  });
}

void DMap::erase(const DMapIterator& position) {
  if (dim_ == 0) {
    scalarSet_ = false;
  } else if (map_ != nullptr) {
    visitMapFamily(dim_, type_, [&](auto member) {
      member.map(map_).erase(member.position(position.position()));
    });
  }
}

int DMap::size() const {
  if (dim_ == 0) {
    return scalarSet_ ? 1 : 0;
  }
  if (map_ == nullptr) {
    return 0;
  }
  return visitMapFamily(dim_, type_,
                        [this](auto member) { return static_cast<int>(member.map(map_).size()); });
}

bool DMap::empty() const {
  return size() == 0;
}

DMapIterator DMap::lowerBound(const int* keys) {
  if (dim_ == 0) {
    return scalarSet_ ? DMapIterator() : end();
  }
  if (map_ == nullptr) {
    return {};
  }
  return at(visitMapFamily(dim_, type_, [&](auto member) {
    return member.untyped(member.map(map_).lower_bound(member.key(keys)));
  }));
}

void* DMap::found(const int* keys) {
  if (dim_ == 0) {
    return scalarSet_ ? scalarValues_ : end_;
  }
  if (map_ == nullptr) {
    return nullptr;
  }
  return visitMapFamily(dim_, type_, [&](auto member) {
    return member.untyped(member.map(map_).find(member.key(keys)));
  });
}

DMapIterator DMap::begin() {
  if (dim_ == 0) {
    return scalarSet_ ? at(scalarValues_) : end();
  }
  if (map_ == nullptr) {
    return {};
  }
  return at(visitMapFamily(
      dim_, type_, [this](auto member) { return member.untyped(member.map(map_).begin()); }));
}

void DMap::clear() {
  if (dim_ == 0) {
    scalarSet_ = false;
  } else if (map_ != nullptr) {
    visitMapFamily(dim_, type_, [this](auto member) { member.map(map_).clear(); });
  }
}

int DMap::indexOf(const DMapIterator& position) {
  const DMapIterator last = end();
  int index = 0;
  for (DMapIterator it = begin(); it.notEquals(last); it.next(), ++index) {
    if (it.equals(position)) {
      return index;
    }
  }
  return -1;
}

DMapIterator DMap::iteratorAt(int index) {
  const DMapIterator last = end();
  DMapIterator it = begin();
  for (int step = 0; step < index && it.notEquals(last); ++step) {
    it.next();
  }
  return it;
}

void DMap::reserve(int /*records*/) {}

}  // namespace ztb::dmap
