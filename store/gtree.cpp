#include "store/gtree.h"

#include <stdexcept>
#include <variant>

namespace gtree {
namespace {

// The keys of a path while its predecessor is looked for.
std::array<int, maxDepth> scratchKeys;

}  // namespace

const Path endPath(1);

void throwMissingNode() {
  throw std::logic_error("the path leads through a missing node of the trie");
}

Node* Node::child() const {
  if (tag_ != Tag::child) {
    throw std::bad_variant_access();
  }
  return content_.child;
}

double* Node::values() const {
  if (tag_ != Tag::values) {
    throw std::bad_variant_access();
  }
  return content_.values;
}

GTree::GTree(int dim, int slotCount) : dim_(dim), slotCount_(slotCount), lastPath_(dim) {}

// Makes the nodes of the levels from `level` down, chained to each other and holding the values,
// but not linked into the tree: running out of memory on the way changes nothing.
void GTree::makeBranch(Path& path, int level, const int* keys, const double* values) {
  double* slots = newValues(values);
  for (int deeper = level; deeper < dim_; ++deeper) {
    const auto place = static_cast<std::size_t>(deeper);
    path.node[place] = newNode(keys[deeper]);
    if (deeper > level) {
      path.node[place - 1]->setChild(path.node[place]);
    }
  }
  path.node[static_cast<std::size_t>(dim_ - 1)]->setValues(slots);
}

Path GTree::insertFirst(const int* keys, const double* values) {
  Path path(dim_);
  makeBranch(path, 0, keys, values);
  root_ = path.node[0];
  count_ = 1;
  return path;
}

void GTree::insertFirstAsLast(const int* keys, const double* values) {
  lastPath_ = insertFirst(keys, values);
}

void GTree::overwriteLast(const double* values) {
  copySlots(values, lastPath_.node[lastPath_.depth - 1U]->values());
}

void GTree::attachWithNewMemory(int level, const int* keys, const double* values) {
  Path path = lastPath_;
  makeBranch(path, level, keys, values);
  const auto place = static_cast<std::size_t>(level);
  lastPath_.node[place]->next = path.node[place];
  lastPath_ = path;
  ++count_;
}

Path GTree::insertSequential(const int* keys, const double* values) {
  return insertAtEnd(keys, values) ? lastPath_ : insertAnywhere(keys, values, &lastPath_);
}

Path GTree::insertAnywhere(const int* keys, const double* values, const Path* startHint) {
  if (lastPath_.node[0] != nullptr) {
    const auto [order, level] = compareWithLast(keys);
    if (order == Order::same) {
      overwriteLast(values);
      return lastPath_;
    }
    if (order == Order::above) {
      if (root_ == nullptr) {
        insertFirstAsLast(keys, values);
      } else {
        attachBehindLast(level, keys, values);
      }
      return lastPath_;
    }
  }
  if (root_ == nullptr) {
    const Path first = insertFirst(keys, values);
    if (lastPath_ == endPath) {
      lastPath_ = first;
    }
    return lastPath_;
  }
  const auto [found, present] = findPath(keys, startHint);
  if (found) {
    return present;
  }
  // Down to the first level whose list lacks the element; from there on all nodes are new.
  Path path(dim_);
  Node* parent = nullptr;
  for (int level = 0;; ++level) {
    const auto place = static_cast<std::size_t>(level);
    Node* before = nullptr;
    Node* node = level == 0 ? root_ : parent->child();
    while (node != nullptr && node->key < keys[level]) {
      before = node;
      node = node->next;
    }
    if (node == nullptr || node->key != keys[level]) {
      makeBranch(path, level, keys, values);
      path.node[place]->next = node;
      if (before != nullptr) {
        before->next = path.node[place];
      } else if (level == 0) {
        root_ = path.node[place];
      } else {
        parent->setChild(path.node[place]);
      }
      ++count_;
      return path;
    }
    path.node[place] = node;
    parent = node;
    if (level + 1 == dim_) {
      // Only a hint into branches that `clear` has forgotten hides a record that is here.
      node->setValues(newValues(values));
      ++count_;
      return path;
    }
  }
}

std::pair<bool, Path> GTree::findPath(const int* keys, const Path* startHint) const {
  Path path(dim_);
  Node* node = root_;
  for (int level = 0; level < dim_; ++level) {
    if (node == nullptr) {
      return {false, path};
    }
    const auto place = static_cast<std::size_t>(level);
    if (startHint != nullptr) {
      Node* hint = requireNode(startHint->node[place]);
      if (keys[level] >= hint->key) {
        node = hint;
      }
      if (keys[level] != hint->key) {
        startHint = nullptr;
      }
    }
    while (node != nullptr && node->key < keys[level]) {
      node = node->next;
    }
    if (node == nullptr || node->key != keys[level]) {
      return {false, path};
    }
    path.node[place] = node;
    node = node->childOrNull();
  }
  return {true, path};
}

std::pair<bool, Path> GTree::lowerBoundPath(const int* keys) const {
  Path path(dim_);
  Node* node = root_;
  for (int level = 0; level < dim_ && node != nullptr; ++level) {
    while (node->key < keys[level]) {
      node = node->next;
      if (node == nullptr) {
        return {false, path};
      }
    }
    path.node[static_cast<std::size_t>(level)] = node;
    node = node->childOrNull();
  }
  return {true, path};
}

Node* GTree::listHead(const Path& path, int level) const {
  return level == 0 ? root_ : path.node[static_cast<std::size_t>(level - 1)]->child();
}

std::pair<bool, Path> GTree::predecessorPath(const int* keys) const {
  auto [found, path] = findPath(keys, nullptr);
  if (!found) {
    return {false, path};
  }
  for (int level = dim_ - 1; level >= 0; --level) {
    Node*& here = path.node[static_cast<std::size_t>(level)];
    Node* before = listHead(path, level);
    if (before == here && level > 0) {
      continue;
    }
    while (before != here && before->next != here) {
      before = before->next;
    }
    here = before;
    fillGreatest(path, level + 1);
    break;
  }
  return {true, path};
}

// Fills the levels from `level` down with the last node of each list.
void GTree::fillGreatest(Path& path, int level) const {
  for (; level < dim_; ++level) {
    Node* node = level == 0 ? root_ : path.node[static_cast<std::size_t>(level - 1)]->childOrNull();
    if (node == nullptr) {
      throw std::logic_error("the trie holds a branch without records");
    }
    while (node->next != nullptr) {
      node = node->next;
    }
    path.node[static_cast<std::size_t>(level)] = node;
  }
}

Path GTree::greatest() const {
  Path path(dim_);
  fillGreatest(path, 0);
  return path;
}

Path GTree::begin() const {
  Path path(dim_);
  if (count_ != 0) {
    Node* node = root_;
    for (int level = 0; level < dim_ && node != nullptr; ++level) {
      path.node[static_cast<std::size_t>(level)] = node;
      node = node->childOrNull();
    }
  }
  return path;
}

void GTree::requireDepth(const Path& path) const {
  if (path.depth != dim_) {
    throw std::logic_error("the path stands on no record of the trie");
  }
}

void GTree::next(Path& path) const {
  requireDepth(path);
  for (int level = dim_ - 1; level >= 0; --level) {
    Node* following = requireNode(path.node[static_cast<std::size_t>(level)])->next;
    if (following == nullptr) {
      continue;
    }
    for (int deeper = level; deeper < dim_; ++deeper) {
      path.node[static_cast<std::size_t>(deeper)] = following;
      following = following == nullptr ? nullptr : following->childOrNull();
    }
    return;
  }
  path = endPath;
}

Path GTree::nextPath(Path path) const {
  next(path);
  return path;
}

void GTree::copyKeys(const Path& path, int* keys) const {
  requireDepth(path);
  for (std::size_t level = 0; level < static_cast<std::size_t>(dim_); ++level) {
    keys[level] = requireNode(path.node[level])->key;
  }
}

Path GTree::prev(const Path& path) const {
  if (path == endPath) {
    return greatest();
  }
  copyKeys(path, scratchKeys.data());
  const auto [found, before] = predecessorPath(scratchKeys.data());
  return found ? before : path;
}

void GTree::moveLastPathBack() {
  if (count_ < 2) {
    lastPath_ = endPath;
  } else {
    copyKeys(lastPath_, scratchKeys.data());
    const auto [found, before] = predecessorPath(scratchKeys.data());
    if (found) {
      lastPath_ = before;
    }
  }
}

void GTree::erase(const Path& path) {
  requireDepth(path);
  for (std::size_t level = 0; level < path.depth; ++level) {
    requireNode(path.node[level]);
  }
  if (path == lastPath_) {
    moveLastPathBack();
  }
  for (int level = dim_ - 1; level >= 1; --level) {
    Node* node = path.node[static_cast<std::size_t>(level)];
    Node* parent = path.node[static_cast<std::size_t>(level - 1)];
    Node* before = requireNode(parent->child());
    if (before == node) {
      parent->setChild(node->next);
    } else {
      while (before->next != node) {
        before = requireNode(before->next);
      }
      before->next = node->next;
    }
    if (before != node || node->next != nullptr || level >= 2) {
      --count_;
      return;
    }
  }
  Node* node = path.node[0];
  Node* before = requireNode(root_);
  while (before->next != node && before->next != nullptr) {
    before = before->next;
  }
  before->next = node->next;
  --count_;
}

Path GTree::pathAt(int index) const {
  if (index == count_) {
    return endPath;
  }
  Path path = begin();
  for (int step = 0; step < index; ++step) {
    next(path);
  }
  return path;
}

int GTree::pathIndex(const Path& path) const {
  if (path == endPath) {
    return count_;
  }
  int index = 0;
  for (Path walked = begin(); !(walked == path); next(walked)) {
    ++index;
  }
  return index;
}

void GTree::setBlockCapacity(int records) {
  const auto count = static_cast<std::size_t>(std::max(records, 1));
  nodes_.setBlockSize(count * sizeof(Node));
  values_.setBlockSize(count * valueSize());
}

void GTree::clear() {
  count_ = 0;
  root_ = nullptr;
}

void GTree::release() {
  clear();
  lastPath_ = Path(dim_);
  nodes_.release();
  values_.release();
}

}  // namespace gtree
