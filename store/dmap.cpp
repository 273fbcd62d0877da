#include "store/dmap.h"

#include <algorithm>

#include "store/map_family.h"

namespace ztb::dmap {
namespace {

// Kept apart from the choice of the member, which is then a plain jump.
template <class Member>
[[gnu::noinline]] void* putInMap(void* map, void* hint, const int* keys, const double* values,
                                 bool overwrite) {
  return Member::map(map).put(Member::position(hint), keys, values, overwrite);
}

}  // namespace

DMap::DMap(int dim, int type) : IDMap(StorageKind::dMap, dim, type) {
  if (dim_ == 0) {
    end_ = scalarValues_ + 1;
  } else if (inMapFamily(dim_)) {
    visitMapFamily(dim_, type_, [this](auto member) {
      auto* map = new typename decltype(member)::Map;
      map_ = map;
      end_ = map->end();
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

void* DMap::stored(void* hint, const int* keys, const double* values, bool overwrite) {
  if (dim_ == 0) {
    return setScalar(values);
  }
  if (map_ == nullptr) {
    return nullptr;
  }
  return visitMapFamily(dim_, type_, [=, this](auto member) {
    return putInMap<decltype(member)>(map_, hint, keys, values, overwrite);
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
  return at(visitMapFamily(
      dim_, type_, [&](auto member) -> void* { return member.map(map_).lowerBound(keys); }));
}

void* DMap::found(const int* keys) {
  if (dim_ == 0) {
    return scalarSet_ ? scalarValues_ : end_;
  }
  if (map_ == nullptr) {
    return nullptr;
  }
  return visitMapFamily(dim_, type_,
                        [&](auto member) -> void* { return member.map(map_).find(keys); });
}

DMapIterator DMap::begin() {
  if (dim_ == 0) {
    return scalarSet_ ? at(scalarValues_) : end();
  }
  if (map_ == nullptr) {
    return {};
  }
  return at(visitMapFamily(dim_, type_,
                           [this](auto member) -> void* { return member.map(map_).begin(); }));
}

void DMap::clear() {
  if (dim_ == 0) {
    scalarSet_ = false;
  } else if (map_ != nullptr) {
    visitMapFamily(dim_, type_, [this](auto member) { member.map(map_).clear(); });
  }
}

bool DMap::seekInSlice(DMapIterator& position, const int* mask, bool forward) {
  if (dim_ == 0) {
    return true;
  }
  if (map_ == nullptr) {
    return false;
  }
  void* found = visitMapFamily(dim_, type_, [&](auto member) -> void* {
    auto& map = member.map(map_);
    const auto here = member.position(position.position());
    return forward ? map.firstInSlice(here, mask) : map.lastInSlice(here, mask);
  });
  if (found == end_) {
    return false;
  }
  position.moveTo(found);
  return true;
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
