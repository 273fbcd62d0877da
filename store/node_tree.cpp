#include "store/node_tree.h"

#include <bit>
#include <utility>

namespace ztb::dmap {
namespace {

TreeLink*& childOf(TreeLink* node, bool left) {
  return left ? node->left : node->right;
}

bool isRed(const TreeLink* node) {
  return node != nullptr && node->isRed();
}

// Makes a tree of the next `count` nodes of a list, `level` levels below the root. The halves of
// every subtree differ by one node at most, so that all levels above `lowest` are full; what stands
// on it is red, all else black.
TreeLink* treeOf(std::size_t count, int level, int lowest, TreeLink*& rest) {
  if (count == 0) {
    return nullptr;
  }
  const std::size_t before = (count - 1) / 2;
  TreeLink* left = treeOf(before, level + 1, lowest, rest);
  TreeLink* node = rest;
  rest = node->right;
  node->becomeNode(node, level == lowest);  // its parent comes to it
  node->left = left;
  if (left != nullptr) {
    left->setParent(node);
  }
  node->right = treeOf(count - 1 - before, level + 1, lowest, rest);
  if (node->right != nullptr) {
    node->right->setParent(node);
  }
  return node;
}

}  // namespace

void NodeTree::makeTree() {
  TreeLink* rest = head_.left;
  // The levels that are full: with none but these, all is black.
  const int full = static_cast<int>(std::bit_width(size_ + 1)) - 1;
  TreeLink* root = treeOf(size_, 0, full, rest);
  root->setParent(&head_);
  head_.setParent(root);
}

void NodeTree::linkBelow(TreeLink* node, TreeLink* parent, bool asLeft) {
  node->left = nullptr;
  node->right = nullptr;
  node->becomeNode(parent, true);
  childOf(parent, asLeft) = node;
  if (asLeft && parent == head_.left) {
    head_.left = node;
  } else if (!asLeft && parent == head_.right) {
    head_.right = node;
  }
  ++size_;
  mendAfterLink(node);
}

// Puts `other`, which may be null, where `node` hangs.
void NodeTree::putInPlace(TreeLink* node, TreeLink* other) {
  TreeLink* parent = node->parent();
  if (parent == &head_) {
    head_.setParent(other != nullptr ? other : &head_);
  } else {
    childOf(parent, node == parent->left) = other;
  }
  if (other != nullptr) {
    other->setParent(parent);
  }
}

// Moves a node down to one side; its child of the other side takes its place.
void NodeTree::rotate(TreeLink* node, bool toLeft) {
  TreeLink* child = childOf(node, !toLeft);
  TreeLink* inner = childOf(child, toLeft);
  childOf(node, !toLeft) = inner;
  if (inner != nullptr) {
    inner->setParent(node);
  }
  putInPlace(node, child);
  childOf(child, toLeft) = node;
  node->setParent(child);
}

void NodeTree::mendAfterLink(TreeLink* node) {
  while (node != root() && node->parent()->isRed()) {
    TreeLink* parent = node->parent();
    TreeLink* grandparent = parent->parent();
    const bool onLeft = parent == grandparent->left;
    TreeLink* uncle = childOf(grandparent, !onLeft);
    if (isRed(uncle)) {
      parent->setRed(false);
      uncle->setRed(false);
      grandparent->setRed(true);
      node = grandparent;
      continue;
    }
    if (node == childOf(parent, !onLeft)) {
      rotate(parent, onLeft);
      std::swap(node, parent);
    }
    parent->setRed(false);
    grandparent->setRed(true);
    rotate(grandparent, !onLeft);
  }
  root()->setRed(false);
}

void NodeTree::unlink(TreeLink* node) {
  --size_;
  if (node->isListed()) {
    // The head counts as the neighbour on either side.
    TreeLink* before = node->left;
    TreeLink* behind = node->right;
    (before == &head_ ? head_.left : before->right) = behind;
    (behind == &head_ ? head_.right : behind->left) = before;
    return;
  }
  if (node == head_.left) {
    head_.left = node->next();
  }
  if (node == head_.right) {
    head_.right = size_ == 0 ? &head_ : node->prev();
  }
  // What goes from its place in the tree, what comes there, and below whom.
  TreeLink* gone = node;
  TreeLink* child = nullptr;
  TreeLink* parent = nullptr;
  bool blackGone = !node->isRed();
  if (node->left == nullptr || node->right == nullptr) {
    child = node->left == nullptr ? node->right : node->left;
    parent = node->parent();
    putInPlace(node, child);
  } else {
    gone = TreeLink::leftmost(node->right);
    blackGone = !gone->isRed();
    child = gone->right;
    parent = gone->parent();
    if (parent == node) {
      parent = gone;
    } else {
      putInPlace(gone, child);
      gone->right = node->right;
      gone->right->setParent(gone);
    }
    putInPlace(node, gone);
    gone->left = node->left;
    gone->left->setParent(gone);
    gone->setRed(node->isRed());
  }
  if (blackGone) {
    mendAfterUnlink(child, parent);
  }
}

// `node`, which may be null, hangs below `parent`, and the paths through it are a black one short.
void NodeTree::mendAfterUnlink(TreeLink* node, TreeLink* parent) {
  while (parent != &head_ && !isRed(node)) {
    const bool onLeft = node == parent->left;
    TreeLink* sibling = childOf(parent, !onLeft);
    if (sibling->isRed()) {
      sibling->setRed(false);
      parent->setRed(true);
      rotate(parent, onLeft);
      sibling = childOf(parent, !onLeft);
    }
    if (!isRed(sibling->left) && !isRed(sibling->right)) {
      sibling->setRed(true);
      node = parent;
      parent = node->parent();
      continue;
    }
    if (!isRed(childOf(sibling, !onLeft))) {
      childOf(sibling, onLeft)->setRed(false);
      sibling->setRed(true);
      rotate(sibling, !onLeft);
      sibling = childOf(parent, !onLeft);
    }
    sibling->setRed(parent->isRed());
    parent->setRed(false);
    childOf(sibling, !onLeft)->setRed(false);
    rotate(parent, onLeft);
    return;
  }
  if (node != nullptr) {
    node->setRed(false);
  }
}

}  // namespace ztb::dmap
