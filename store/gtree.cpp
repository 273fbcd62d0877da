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

GTree::GTree(int dim, int slotCount)
    : dim_(dim),
      slotCount_(slotCount),
      valueSize_(static_cast<std::size_t>(slotCount) * sizeof(double)),
      lastPath_(dim),
      recentPath_(dim) {}

// Makes the nodes of the levels from `level` down, chained to each other and holding the values,
// but not linked into the tree: running out of memory on the way changes nothing. `branch` has a
// place for every level of the tree; those of other levels stay as they are.
void GTree::makeBranch(Node** branch, int level, const int* keys, const double* values) {
  double* slots = newValues(values);
  branch[level] = newNode(keys[level]);
  for (int deeper = level + 1; deeper < dim_; ++deeper) {
    branch[deeper] = newNode(keys[deeper]);
    branch[deeper - 1]->setChild(branch[deeper]);
  }
  branch[dim_ - 1]->setValues(slots);
}

Path GTree::insertFirst(const int* keys, const double* values) {
  Path path(dim_);
  makeBranch(path.node.data(), 0, keys, values);
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
  std::array<Node*, maxDepth> branch;
  makeBranch(branch.data(), level, keys, values);
  Node** last = lastPath_.node.data();
  last[level]->next = branch[static_cast<std::size_t>(level)];
  for (int deeper = level; deeper < dim_; ++deeper) {
    last[deeper] = branch[static_cast<std::size_t>(deeper)];
  }
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
  // A caller's hint may lead into branches that `clear` has forgotten.
  const bool anyHint = startHint != nullptr;
  if (!anyHint && recentPath_.node[0] != nullptr) {
    startHint = &recentPath_;
  }
  const auto [found, present] = findPath(keys, startHint);
  if (!found) {
    return recentPath_ = insertBranch(keys, values);
  }
  if (!anyHint) {
    recentPath_ = present;
  }
  return present;
}

// Walks down to the first level whose list lacks the element; from there on all nodes are new.
Path GTree::insertBranch(const int* keys, const double* values) {
  Path path(dim_);
  Node* parent = nullptr;
  bool onRecentPath = recentPath_.node[0] != nullptr;
  for (int level = 0;; ++level) {
    const auto place = static_cast<std::size_t>(level);
    Node* before = nullptr;
    Node* node = level == 0 ? root_ : parent->child();
    if (onRecentPath) {
      Node* recent = recentPath_.node[place];
      if (recent->key <= keys[level]) {
        node = recent;
      }
      onRecentPath = recent->key == keys[level];
    }
    while (node != nullptr && node->key < keys[level]) {
      before = node;
      node = node->next;
    }
    if (node == nullptr || node->key != keys[level]) {
      makeBranch(path.node.data(), level, keys, values);
      path.node[place]->next = node;
      if (before != nullptr) {
        before->next = path.node[place];
      } else if (level == 0) {
        root_ = path.node[place];
      } else {
        parent->setChild(path.node[place]);
      }
      break;
    }
    path.node[place] = node;
    parent = node;
    if (level + 1 == dim_) {
      // Only a hint into branches that `clear` has forgotten hides a record that is here.
      node->setValues(newValues(values));
      break;
    }
  }
  ++count_;
  return path;
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
  recentPath_ = Path(dim_);
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
  values_.setBlockSize(count * valueSize_);
}

void GTree::clear() {
  count_ = 0;
  root_ = nullptr;
  recentPath_ = Path(dim_);
}

void GTree::release() {
  clear();
  lastPath_ = Path(dim_);
  nodes_.release();
  values_.release();
}

}  // namespace gtree
