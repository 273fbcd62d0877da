#include "providers/rxf/label_set.h"

#include <algorithm>

namespace rxffile {

namespace {

// Runs are not worth turning into bits before there are this many.
constexpr std::size_t kFewRuns = 64;

}  // namespace

void LabelBits::set(std::uint32_t label) {
  const std::size_t word = label / 64;
  if (word >= words_.size()) {
    words_.resize(std::max(word + 1, words_.size() + words_.size() / 2), 0);
  }
  words_[word] |= std::uint64_t{1} << (label % 64);
}

void LabelSet::add(const std::int32_t* labels, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) addOne(static_cast<std::uint32_t>(labels[i]));
  if (!asBits_ && runs_.size() > kFewRuns && runs_.size() * sizeof(Run) > runs_.back().last / 8) {
    bits_ = bits();
    asBits_ = true;
    runs_ = {};
  }
}

void LabelSet::addOne(std::uint32_t label) {
  if (asBits_) {
    bits_.set(label);
  } else if (!runs_.empty() && runs_.back().last + 1 == label) {
    runs_.back().last = label;
  } else {
    runs_.push_back({label, label});
  }
}

LabelBits LabelSet::bits() const {
  if (asBits_) return bits_;
  LabelBits all;
  if (!runs_.empty()) all.set(runs_.back().last);
  for (const Run& run : runs_) {
    for (std::uint32_t label = run.first; label <= run.last; ++label) all.set(label);
  }
  return all;
}

}  // namespace rxffile
