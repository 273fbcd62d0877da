// Searches of the trie by all elements of a key.
#include <algorithm>
#include <new>

#include "store/gtree.h"

namespace gtree {

namespace {

// Nodes between two fingers, about.
constexpr int fingerDistance = 16;
constexpr std::uint32_t mostFingers = (1U << 24U) - 1;  // lists that a node can tell apart

}  // namespace

// Leaves a finger on a node; false without the memory for it, which nothing but time depends on.
[[gnu::noinline]] bool GTree::keepFinger(Node* parent, std::size_t place, Node* node) const {
  try {
    std::uint32_t number = fingersBelow(parent);
    if (number == 0) {
      if (fingers_.size() == mostFingers) return false;
      fingers_.emplace_back();
      number = static_cast<std::uint32_t>(fingers_.size());
      if (parent == nullptr) {
        rootFingers_ = number;
      } else {
        parent->fingers_ = number & mostFingers;
      }
    }
    Fingers& fingers = fingers_[number - 1];
    fingers.insert(fingers.begin() + static_cast<std::ptrdiff_t>(place), {node->key, node});
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void GTree::dropFingers(const Node* parent) {
  const std::uint32_t number = fingersBelow(parent);
  // Nodes that `clear` has forgotten may have a number that is another's by now.
  if (number > 0 && number <= fingers_.size()) fingers_[number - 1].clear();
}

Node* GTree::reachFromHead(Node* parent, int keyElement) const {
  Node* node = parent == nullptr ? root_ : parent->childOrNull();
  std::size_t place = 0;  // fingers not above the element
  if (const std::uint32_t number = fingersBelow(parent); number > 0) {
    const Fingers& fingers = fingers_[number - 1];
    const auto above = std::ranges::upper_bound(fingers, keyElement, {}, &Finger::key);
    place = static_cast<std::size_t>(above - fingers.begin());
    if (place > 0) node = fingers[place - 1].node;
  }
  for (int steps = 0; node != nullptr && node->key < keyElement; node = node->next) {
    if (++steps <= fingerDistance) continue;
    steps = 1;
    place += keepFinger(parent, place, node) ? 1 : 0;
  }
  return node;
}

std::pair<bool, Path> GTree::findPath(const int* keys, const Path* startHint) const {
  Path path(dim_);
  // A hint may lead into branches that `clear` has forgotten.
  const bool byFingers = startHint == nullptr && !holdsRing_;
  Node* node = root_;
  Node* parent = nullptr;
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
    node = byFingers ? reachFromHead(parent, keys[level]) : reach(node, keys[level]);
    if (node == nullptr || node->key != keys[level]) {
      return {false, path};
    }
    path.node[place] = node;
    parent = node;
    node = node->childOrNull();
  }
  return {true, path};
}

}  // namespace gtree
