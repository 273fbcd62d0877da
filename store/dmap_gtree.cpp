#include "store/dmap_gtree.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "store/slice_mask.h"

namespace ztb::dmap {

DMapGTree::DMapGTree(int dim, int type)
    : IDMap(StorageKind::dMapGTree, dim, type), scalarEnd_(scalarValues_ + 1) {
  if (dim_ >= 1 && dim_ <= maxDimension) {
    tree_ = std::make_unique<gtree::GTree>(dim_, type_);
    treeEnd_ = at(gtree::endPath);
  }
}

TreeIterator DMapGTree::setScalar(const double* values) {
  if (dim_ != 0) {
    return TreeIterator(static_cast<double*>(nullptr));
  }
  std::copy_n(values, slotCount(type_), scalarValues_);
  scalarSet_ = true;
  return TreeIterator(scalarValues_);
}

TreeIterator DMapGTree::insert(const int* keys, const double* values) {
  if (tree_ == nullptr) {
    return setScalar(values);
  }
  return at(tree_->insertAnywhere(keys, values, nullptr));
}

TreeIterator DMapGTree::insertHint(const int* keys, const double* values,
                                   const TreeIterator& /*hint*/) {
  return insert(keys, values);
}

TreeIterator DMapGTree::insertOrAssign(const TreeIterator& /*hint*/, const int* keys,
                                       const double* values) {
  if (tree_ == nullptr) {
    return insert(keys, values);
  }
  if (empty()) {
    // What was erased has left nodes, which are no records.
    tree_->startAnew();
    return append(keys, values);
  }
  const TreeIterator bound = lowerBound(keys);
  if (bound.equals(endHere())) {
    return append(keys, values);
  }
  const RecordView present = bound.get();
  if (present.values == nullptr) {
    throw std::logic_error("the lower bound stands on no record");
  }
  std::copy_n(values, slotCount(type_), present.values);
  return bound;
}

void DMapGTree::erase(const TreeIterator& position) {
  if (tree_ == nullptr) {
    scalarSet_ = false;
    std::fill(std::begin(scalarValues_), std::end(scalarValues_), 0.0);
  } else {
    tree_->erase(position.path());
  }
}

int DMapGTree::size() const {
  if (tree_ == nullptr) {
    return scalarSet_ ? 1 : 0;
  }
  return tree_->count();
}

bool DMapGTree::empty() const {
  return size() == 0;
}

bool DMapGTree::isEnd(const TreeIterator& position) const {
  return endHere().equals(position);
}

bool DMapGTree::isEndBound(const TreeIterator& bound, const int* /*keys*/) const {
  return bound.isDefault() || isEnd(bound);
}

TreeIterator DMapGTree::lowerBound(const int* keys) {
  if (tree_ == nullptr || empty()) {
    return end();
  }
  const auto [found, path] = tree_->lowerBoundPath(keys);
  return found ? at(path) : TreeIterator();
}

TreeIterator DMapGTree::find(const int* keys) {
  if (tree_ == nullptr) {
    return scalarSet_ ? TreeIterator(scalarValues_) : end();
  }
  const auto [found, path] = tree_->findPath(keys, nullptr);
  return found ? at(path) : end();
}

TreeIterator DMapGTree::begin() {
  return tree_ == nullptr ? TreeIterator(scalarValues_) : at(tree_->begin());
}

TreeIterator DMapGTree::end() {
  return endHere();
}

TreeIterator DMapGTree::behind(const TreeIterator& position) {
  if (tree_ == nullptr) {
    TreeIterator result = position;
    result.next();
    return result;
  }
  return at(tree_->nextPathOrEnd(position.path()));
}

void DMapGTree::clear() {
  if (tree_ == nullptr) {
    std::fill(std::begin(scalarValues_), std::end(scalarValues_), 0.0);
  } else {
    tree_->clear();
  }
}

void DMapGTree::release() {
  if (tree_ == nullptr) {
    scalarSet_ = false;
  } else {
    tree_->release();
  }
}

int DMapGTree::indexOf(const TreeIterator& position) {
  return tree_ == nullptr ? static_cast<int>(position.scalar() - scalarValues_)
                          : tree_->pathIndex(position.path());
}

TreeIterator DMapGTree::iteratorAt(int index) {
  return tree_ == nullptr ? TreeIterator(scalarValues_ + index) : at(tree_->pathAt(index));
}

void DMapGTree::reserve(int records) {
  if (tree_ != nullptr) {
    tree_->setBlockCapacity(records);
  }
}

bool DMapGTree::seekInSlice(TreeIterator& position, const int* mask, bool forward) {
  if (dim_ == 0) {
    return true;
  }
  TreeIterator sought = position;
  if (tree_->isIntact()) {
    gtree::Path path = position.path();
    if (!tree_->seekInSlice(path, mask, forward)) {
      return false;
    }
    position = at(path);
    return true;
  }
  const TreeIterator first = begin();
  while (true) {
    const RecordView record = sought.get();
    if (record.values == nullptr) {
      throw std::logic_error("the position stands on no record");
    }
    if (matchesMask(mask, record.keys, dim_)) {
      position = sought;
      return true;
    }
    if (!forward && sought.equals(first)) {
      return false;
    }
    forward ? sought.next() : sought.prev();
    if (isEnd(sought)) {
      return false;
    }
  }
}

}  // namespace ztb::dmap
