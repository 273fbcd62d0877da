// Iterator of `DMapGTree`: a path in the tree, or for a scalar a pointer into the inline values.
// Using one as the other throws std::bad_variant_access. The key pointer of every view is one
// buffer of the thread, overwritten by the next `get` of any tree iterator on it.
#ifndef ZTB_STORE_TREE_ITERATOR_H_
#define ZTB_STORE_TREE_ITERATOR_H_

#include <variant>

#include "store/gtree.h"
#include "store/idmap.h"
#include "store/record_columns.h"

namespace ztb::dmap {

class TreeIterator final : public BaseDMapIterator {
 public:
  // Whether get() is a look at memory and no walk.
  static constexpr bool keysAtHand = false;

  // The iterator that a lower bound gives for no result: dimension 0, and yet a path.
  TreeIterator() : BaseDMapIterator(0, 0, StorageKind::dMap), position_(gtree::endPath) {}
  TreeIterator(int dim, int type, gtree::GTree* tree, const gtree::Path& path)
      : BaseDMapIterator(dim, type, StorageKind::dMapGTree), tree_(tree), position_(path) {}
  // On a scalar.
  explicit TreeIterator(double* position)
      : BaseDMapIterator(0, 0, StorageKind::dMapGTree), position_(position) {}
  virtual ~TreeIterator() = default;
  TreeIterator(const TreeIterator&) = default;
  TreeIterator& operator=(const TreeIterator&) = default;

  void next() override;
  void prev() override;
  // Null and null when a node of the path is missing.
  [[nodiscard]] RecordView get() const override;
  [[nodiscard]] bool equals(const IDMapIterator& other) const override;
  [[nodiscard]] bool isNull() const override;

  // Copies this record and those behind it, `most` at most, up to the last with the same keys but
  // one or, with a mask, before one that it does not take, and fewer where that suits; then stands
  // on the last of them. Their number. REQUIRES: stands on a record, which the mask takes.
  int copyRun(int most, const int* mask, const RecordColumns& columns);

  // What stands for the address of a record's values where there is no record, at the end.
  [[nodiscard]] const void* endAddress() const { return get().values; }

  [[nodiscard]] const gtree::Path& path() const;
  [[nodiscard]] double* scalar() const;
  // Whether this is the default iterator.
  [[nodiscard]] bool isDefault() const { return dim() == 0 && holdsPath(); }

 private:
  [[nodiscard]] bool holdsPath() const { return std::holds_alternative<gtree::Path>(position_); }

  gtree::GTree* tree_ = nullptr;
  std::variant<gtree::Path, double*> position_;
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_TREE_ITERATOR_H_
