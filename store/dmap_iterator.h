// Iterator of `DMap`: a node of the map, or for a scalar a pointer into the inline values.
#ifndef ZTB_STORE_DMAP_ITERATOR_H_
#define ZTB_STORE_DMAP_ITERATOR_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>

#include "store/map_family.h"
#include "store/record_columns.h"

namespace ztb::dmap {

class DMapIterator final : public BaseDMapIterator {
 public:
  // Whether get() is a look at memory and no walk.
  static constexpr bool keysAtHand = true;

  // The null iterator.
  DMapIterator() : BaseDMapIterator(0, 0, StorageKind::dMap) {}
  DMapIterator(int dim, int type, void* position)
      : BaseDMapIterator(dim, type, StorageKind::dMap), position_(position) {}

  // In-order successor; on a scalar one double onward.
  // REQUIRES: the iterator is not null and, but for a scalar, not at the end.
  void next() override {
    position_ =
        dim() == 0 ? static_cast<double*>(position_) + 1 : nextPosition(dim(), type(), position_);
  }
  // In-order predecessor, from the end the last record; on a scalar one double back.
  // REQUIRES: the iterator is not null and, but for a scalar, not at the beginning.
  void prev() override {
    position_ =
        dim() == 0 ? static_cast<double*>(position_) - 1 : prevPosition(dim(), type(), position_);
  }
  // On a scalar `keys` and `values` are both the position.
  // REQUIRES: the iterator stands on a record.
  [[nodiscard]] RecordView get() const override {
    if (dim() == 0) {
      return {static_cast<const int*>(position_), static_cast<double*>(position_)};
    }
    return viewAt(dim(), type(), position_);
  }
  [[nodiscard]] bool equals(const IDMapIterator& other) const override {
    const auto& right = static_cast<const DMapIterator&>(other);
    return dim() == right.dim() && type() == right.type() && position_ == right.position_;
  }
  [[nodiscard]] bool isNull() const override { return position_ == nullptr; }

  // Copies this record and those behind it, `most` at most, up to the last or, with a mask, before
  // one that it does not take, and fewer where that suits; then stands on the last of them. Their
  // number. REQUIRES: stands on a record, which the mask takes.
  int copyRun(int most, const int* mask, const RecordColumns& columns);

  // Whether the iterator stands at the end of its map, where that shows without a look at the map.
  // REQUIRES: not the null iterator.
  [[nodiscard]] std::optional<bool> isAtEnd() const {
#if !defined(ZTB_PLAIN_STORES)
    if (dim() != 0) {
      return static_cast<TreeLink*>(position_)->isHead();
    }
#endif
    return {};
  }

#if !defined(ZTB_PLAIN_STORES)
  // Where the node stands, for callers that step on and read without a call; see record_node.h.
  [[nodiscard]] void** nodeAtHand() {
    return &position_;
  }
#endif

  [[nodiscard]] void* position() const {
    return position_;
  }
  void moveTo(void* position) {
    position_ = position;
  }
  // What stands for the address of a record's values where there is no record, at the end.
  [[nodiscard]] const void* endAddress() const {
    return position_;
  }

 private:
  void* position_ = nullptr;
};

inline int DMapIterator::copyRun(int most, const int* mask, const RecordColumns& columns) {
#if !defined(ZTB_PLAIN_STORES)
  if (dim() != 0) {
    std::array<TreeLink*, recordsOfRun> nodes;
    const int wanted = std::min(most, recordsOfRun);
    int count = 0;
    do {
      auto* node = static_cast<TreeLink*>(position_);
      __builtin_prefetch(reinterpret_cast<const char*>(node) + bytesAhead);
      nodes[static_cast<std::size_t>(count++)] = node;
    } while (count < wanted && stepToRecord(position_, mask, dim()));
    const auto run = std::span(nodes).first(static_cast<std::size_t>(count));
    for (const RecordColumn<int>& column : columns.keys()) {
      std::ranges::transform(run, column.into,
                             [&](TreeLink* node) { return keyOfNode(node)[column.place]; });
    }
    for (const RecordColumn<double>& column : columns.values()) {
      std::ranges::transform(run, column.into, [&, dim = dim()](TreeLink* node) {
        return valuesOfNode(node, dim)[column.place];
      });
    }
    return count;
  }
#else
  static_cast<void>(most);
  static_cast<void>(mask);
#endif
  columns.copyOne(get());
  return 1;
}

}  // namespace ztb::dmap

#endif  // ZTB_STORE_DMAP_ITERATOR_H_
