#include "providers/model/solvers/moving_part.h"

#include <algorithm>

namespace lomu {

namespace {

constexpr int kTaken = 0;

}  // namespace

void MovingPart::choose(const LinearForm& form) {
  places_.assign(form.lower.size(), kTaken);
  for (std::size_t j = 0; j < places_.size(); ++j) {
    if (standsStill(form.lower[j], form.upper[j])) places_[j] = leftOut;
  }
  number();
  if (!hasEntries(form)) takeAll();
}

bool MovingPart::hasEntries(const LinearForm& form) const {
  return std::any_of(columns_.begin(), columns_.end(), [&](int column) {
    const auto j = static_cast<std::size_t>(column);
    const auto begin = form.value.begin() + form.start[j];
    const auto end = form.value.begin() + form.start[j + 1];
    return std::any_of(begin, end, [](double value) { return value != 0; });
  });
}

void MovingPart::takeAll() {
  places_.assign(places_.size(), kTaken);
  number();
}

void MovingPart::takeIn(const LinearForm& form) {
  for (std::size_t j = 0; j < places_.size(); ++j) {
    if (!standsStill(form.lower[j], form.upper[j])) places_[j] = kTaken;
  }
  number();
}

void MovingPart::number() {
  columns_.clear();
  others_.clear();
  for (std::size_t j = 0; j < places_.size(); ++j) {
    const bool isLeftOut = places_[j] == leftOut;
    if (!isLeftOut) places_[j] = static_cast<int>(columns_.size());
    (isLeftOut ? others_ : columns_).push_back(static_cast<int>(j));
  }
}

void MovingPart::shiftRows(const LinearForm& form) {
  rowLower_ = form.rowLower;
  rowUpper_ = form.rowUpper;
  if (others_.empty()) return;
  shift_.assign(rowLower_.size(), 0.0);
  for (const int column : others_) {
    const auto j = static_cast<std::size_t>(column);
    for (int e = form.start[j]; e < form.start[j + 1]; ++e) {
      const auto entry = static_cast<std::size_t>(e);
      shift_[static_cast<std::size_t>(form.rowOf[entry])] += form.value[entry] * form.lower[j];
    }
  }
  for (std::size_t i = 0; i < shift_.size(); ++i) {
    rowLower_[i] -= shift_[i];
    rowUpper_[i] -= shift_[i];
  }
}

}  // namespace lomu
