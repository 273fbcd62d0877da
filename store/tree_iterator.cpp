#include "store/tree_iterator.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace ztb::dmap {
namespace {

// The buffer of this thread. Finding it is a call, which compilers would make again for every
// element of a key if they saw into this function.
[[gnu::noinline]] int* threadKeys() {
  static constinit thread_local std::array<int, maxDimension> keys{};
  return keys.data();
}

}  // namespace

const gtree::Path& TreeIterator::path() const {
  const auto* path = std::get_if<gtree::Path>(&position_);
  if (path == nullptr) {
    throw std::bad_variant_access();
  }
  return *path;
}

double* TreeIterator::scalar() const {
  double* const* position = std::get_if<double*>(&position_);
  if (position == nullptr) {
    throw std::bad_variant_access();
  }
  return *position;
}

void TreeIterator::next() {
  if (dim() == 0) {
    position_ = scalar() + 1;
  } else {
    tree_->next(std::get<gtree::Path>(position_));
  }
}

void TreeIterator::prev() {
  if (dim() == 0) {
    position_ = scalar() - 1;
  } else {
    position_ = tree_->prev(path());
  }
}

RecordView TreeIterator::get() const {
  if (dim() == 0) {
    return {nullptr, scalar()};
  }
  const gtree::Path& here = path();
  int* const keys = threadKeys();
  for (std::size_t level = 0; level < here.depth; ++level) {
    if (here.node[level] == nullptr) {
      return {};
    }
    keys[level] = here.node[level]->key;
  }
  return {keys, here.node[here.depth - 1U]->values()};
}

int TreeIterator::copyRun(int most, const int* mask, const RecordColumns& columns) {
  if (dim() == 0) {
    columns.copyOne(get());
    return 1;
  }
  auto& here = std::get<gtree::Path>(position_);
  const auto last = static_cast<std::size_t>(here.depth) - 1;
  std::array<gtree::Node*, recordsOfRun> nodes;
  const bool anyLabel = mask == nullptr || mask[last] == 0;
  const int wanted = anyLabel ? std::min(most, recordsOfRun) : 1;
  gtree::Node* node = gtree::requireNode(here.node[last]);
  int count = 0;
  while (true) {
    nodes[static_cast<std::size_t>(count++)] = node;
    if (count == wanted || node->next == nullptr || node->closesRing()) {
      break;
    }
    node = node->next;
  }
  here.node[last] = node;
  const auto run = std::span(nodes).first(static_cast<std::size_t>(count));
  for (const RecordColumn<int>& column : columns.keys()) {
    if (column.place == last) {
      std::ranges::transform(run, column.into, [](const gtree::Node* at) { return at->key; });
    } else {
      std::fill_n(column.into, count, gtree::requireNode(here.node[column.place])->key);
    }
  }
  for (const RecordColumn<double>& column : columns.values()) {
    std::ranges::transform(run, column.into,
                           [&](const gtree::Node* at) { return at->values()[column.place]; });
  }
  return count;
}

bool TreeIterator::equals(const IDMapIterator& other) const {
  const auto& right = static_cast<const TreeIterator&>(other);
  if (dim() == 0) {
    double* here = scalar();
    return right.dim() == 0 && type() == right.type() && here == right.scalar();
  }
  return dim() == right.dim() && type() == right.type() && path() == right.path();
}

bool TreeIterator::isNull() const {
  return dim() == 0 && scalar() == nullptr;
}

}  // namespace ztb::dmap
