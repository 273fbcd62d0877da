// The trie as a record store, with the scalar record that the trie cannot hold beside it. Made for
// sorted loading; random access walks sibling lists. The two ways in, `append` and `insert`, are
// not to be mixed on a fresh store of two dimensions or more. A dimension outside 0 to 20 gives a
// store that holds nothing: its ways in return the null iterator.
#ifndef ZTB_STORE_DMAP_GTREE_H_
#define ZTB_STORE_DMAP_GTREE_H_

#include <memory>
#include <optional>

#include "store/gtree.h"
#include "store/idmap.h"
#include "store/tree_iterator.h"

namespace ztb::dmap {

class DMapGTree final : public IDMap<TreeIterator> {
 public:
  DMapGTree(int dim, int type);
  ~DMapGTree() override = default;
  DMapGTree(const DMapGTree&) = delete;
  DMapGTree& operator=(const DMapGTree&) = delete;

  // The last record's key again overwrites it; another key that is present keeps its record.
  TreeIterator append(const int* keys, const double* values) override {
    if (tree_ == nullptr) {
      return setScalar(values);
    }
    if (tree_->insertAtEnd(keys, values)) {
      return at(tree_->lastPath());
    }
    return at(tree_->insertAnywhere(keys, values, &tree_->lastPath()));
  }
  // `append` without its result, whose path takes longer to copy than the record to link.
  void load(const int* keys, const double* values) {
    if (tree_ == nullptr) {
      setScalar(values);
    } else if (!tree_->insertAtEnd(keys, values)) {
      tree_->insertAnywhere(keys, values, &tree_->lastPath());
    }
  }
  TreeIterator insert(const int* keys, const double* values) override;
  // The hint is not used, here and in `insertOrAssign`.
  TreeIterator insertHint(const int* keys, const double* values, const TreeIterator& hint) override;
  // Overwrites the record where the lower bound stands, whatever its key. Throws
  // std::bad_variant_access when there is no bound. Without records the store starts anew.
  TreeIterator insertOrAssign(const TreeIterator& hint, const int* keys,
                              const double* values) override;
  void erase(const TreeIterator& position) override;
  [[nodiscard]] int size() const override;
  [[nodiscard]] bool empty() const override;
  // A bound level by level; the default iterator where there is none, `end` of an empty store.
  TreeIterator lowerBound(const int* keys) override;
  TreeIterator find(const int* keys) override;
  // On a scalar the inline values, whether there is a record or not. Of an empty tree of two
  // dimensions or more not equal to `end`.
  TreeIterator begin() override;
  TreeIterator end() override;
  // On a scalar zeroes the values and keeps the record; else forgets the nodes, see GTree::clear.
  void clear() override;
  // The record count for `end`.
  int indexOf(const TreeIterator& position) override;
  TreeIterator iteratorAt(int index) override;
  void reserve(int records) override;

  // Removes all records, a scalar's too, and gives the memory back; no record of before shows in
  // what is added next, by whichever way.
  void startAnew() { release(); }
  void release();

  // The position behind a record; the end where that would lead into a ring.
  [[nodiscard]] TreeIterator behind(const TreeIterator& position);
  [[nodiscard]] bool isEnd(const TreeIterator& position) const;
  // Whether a key whose lower bound this is sorts behind all records of its branch.
  [[nodiscard]] bool isEndBound(const TreeIterator& bound, const int* keys) const;
  // Moves on, or back, to the first record of a slice from the position on, itself included; false,
  // with the position as it was, without one. REQUIRES: the position stands on a record.
  bool seekInSlice(TreeIterator& position, const int* mask, bool forward);

 private:
  TreeIterator at(const gtree::Path& path) { return {dim_, type_, tree_.get(), path}; }
  TreeIterator setScalar(const double* values);
  [[nodiscard]] const TreeIterator& endHere() const { return treeEnd_ ? *treeEnd_ : scalarEnd_; }

  std::unique_ptr<gtree::GTree> tree_;  // null without dimensions
  double scalarValues_[maxSlots] = {};
  bool scalarSet_ = false;
  std::optional<TreeIterator> treeEnd_;  // of a tree
  TreeIterator scalarEnd_;               // of anything else
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_DMAP_GTREE_H_
