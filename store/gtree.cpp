#include "store/gtree.h"

#include <stdexcept>
#include <variant>

namespace gtree {
namespace {

// Type code of a symbol from which on a record has five slots, and not one.
constexpr int firstTypeOfFiveSlots = 2;

}  // namespace

const Path endPath(1);

void throwMissingNode() {
  throw std::logic_error("the path leads through a missing node of the trie");
}

void throwRing() {
  throw std::logic_error("the labels of the trie run in a ring");
}

void throwOtherContent() {
  throw std::bad_variant_access();
}

GTree::GTree(int dim, int type)
    : dim_(dim),
      type_(type),
      slotCount_(type_ < firstTypeOfFiveSlots ? 1 : 5),
      lastPath_(dim),
      valueSize_(static_cast<std::size_t>(slotCount_) * sizeof(double)),
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
  dropAllFingers();
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
  if (count_ == 0 && dim_ == 1 && root_ != nullptr) {
    startAnew();
  }
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
      node = node->following();
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

std::pair<bool, Path> GTree::lowerBoundPath(const int* keys) const {
  Path path(dim_);
  Node* node = root_;
  for (int level = 0; level < dim_ && node != nullptr; ++level) {
    node = reach(node, keys[level]);
    if (node == nullptr) {
      return {false, path};
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
    while (Node* following = node->following()) {
      node = following;
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

bool GTree::step(Path& path) const {
  requireDepth(path);
  for (int level = dim_ - 1; level >= 0; --level) {
    const Node* here = requireNode(path.node[static_cast<std::size_t>(level)]);
    Node* following = here->next;
    if (following == nullptr) {
      continue;
    }
    if (following->key <= here->key) {
      return false;
    }
    for (int deeper = level; deeper < dim_; ++deeper) {
      path.node[static_cast<std::size_t>(deeper)] = following;
      following = following == nullptr ? nullptr : following->childOrNull();
    }
    return true;
  }
  path = endPath;
  return true;
}

void GTree::next(Path& path) const {
  if (!step(path)) {
    throwRing();
  }
}

Path GTree::nextPath(Path path) const {
  next(path);
  return path;
}

Path GTree::nextPathOrEnd(Path path) const {
  return step(path) ? path : endPath;
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
  std::array<int, maxDepth> keys;
  copyKeys(path, keys.data());
  const auto [found, before] = predecessorPath(keys.data());
  return found ? before : path;
}

void GTree::moveLastPathBack() {
  if (count_ < 2) {
    lastPath_ = endPath;
  } else {
    std::array<int, maxDepth> keys;
    copyKeys(lastPath_, keys.data());
    const auto [found, before] = predecessorPath(keys.data());
    if (found) {
      lastPath_ = before;
    }
  }
}

// Whether taking the record out leaves its first node without anything below it. Branches that
// become empty further down stay.
bool GTree::unlinksFirstLevel(const Path& path) const {
  return dim_ == 1 ||
         (dim_ == 2 && path.node[0]->child() == path.node[1] && path.node[1]->next == nullptr);
}

// The first level's node before this one, where the first node counts as its own; the last node of
// the list when it does not hold this one.
Node* GTree::firstLevelBefore(const Node* node) const {
  Node* before = requireNode(root_);
  while (before->next != node && before->next != nullptr) {
    before = before->following();
  }
  return before;
}

// The node before this one in its list below the first level; null when it is the list's head.
Node* GTree::siblingBefore(const Path& path, std::size_t level) {
  const Node* node = path.node[level];
  Node* before = requireNode(path.node[level - 1]->child());
  if (before == node) {
    return nullptr;
  }
  while (before->next != node) {
    before = requireNode(before->following());
  }
  return before;
}

void GTree::erase(const Path& path) {
  requireDepth(path);
  if (count_ == 0) {
    throwMissingNode();
  }
  for (std::size_t level = 0; level < path.depth; ++level) {
    requireNode(path.node[level]);
  }
  // All that can be missing is looked for before anything changes.
  const auto last = static_cast<std::size_t>(dim_) - 1;
  Node* before = dim_ > 1 ? siblingBefore(path, last) : nullptr;
  Node* firstBefore = unlinksFirstLevel(path) ? firstLevelBefore(path.node[0]) : nullptr;
  if (path == lastPath_) {
    moveLastPathBack();
  }
  recentPath_ = Path(dim_);
  isIntact_ = false;
  dropFingers(nullptr);
  if (dim_ > 1) dropFingers(path.node[last - 1]);
  if (before != nullptr) {
    before->next = path.node[last]->next;
  } else if (dim_ > 1) {
    path.node[last - 1]->setChild(path.node[last]->next);
  }
  if (firstBefore != nullptr) {
    firstBefore->next = path.node[0]->next;
    holdsRing_ = holdsRing_ || firstBefore->closesRing();
  }
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
  dropAllFingers();
  holdsRing_ = false;
  isIntact_ = true;
  recentPath_ = Path(dim_);
}

void GTree::startAnew() {
  clear();
  lastPath_ = endPath;
}

void GTree::release() {
  startAnew();
  nodes_.release();
  values_.release();
}

}  // namespace gtree
