#include "formats/sets/groups.h"

#include <algorithm>

namespace formats {

namespace {

constexpr std::size_t fewestPlaces = 1024;

}  // namespace

Groups::Groups(std::size_t keyWords, const std::string& folder, std::size_t most)
    : keyWords_(keyWords),
      most_(most),
      places_(fewestPlaces),
      sorter_(keyWords, keyWords + Amount::words, folder) {}

// Where a group stands in places_, or would stand.
std::size_t Groups::find(const std::uint64_t* key) const {
  std::uint64_t hash = 0;
  for (std::size_t word = 0; word < keyWords_; ++word) {
    // Labels stand in the highest bits of a word, which alone would leave the low ones as they are.
    hash ^= key[word];
    hash = (hash ^ hash >> 32U) * 0x9E3779B97F4A7C15U;
    hash = (hash ^ hash >> 29U) * 0xBF58476D1CE4E5B9U;
    hash ^= hash >> 32U;
  }
  std::size_t place = hash & (places_.size() - 1);
  while (places_[place] != 0 &&
         !std::equal(key, key + keyWords_, keys_.data() + (places_[place] - 1) * keyWords_)) {
    place = (place + 1) & (places_.size() - 1);
  }
  return place;
}

void Groups::add(const std::uint64_t* key, double value) {
  if (latest_ == 0 || !std::equal(key, key + keyWords_, keys_.data() + (latest_ - 1) * keyWords_)) {
    std::size_t place = find(key);
    if (places_[place] == 0) {
      if (amounts_.size() == most_) {
        empty();
        place = find(key);
      } else if (2 * amounts_.size() >= places_.size()) {
        grow();
        place = find(key);
      }
      keys_.insert(keys_.end(), key, key + keyWords_);
      amounts_.emplace_back();
      places_[place] = static_cast<std::uint32_t>(amounts_.size());
    }
    latest_ = places_[place];
  }
  amounts_[latest_ - 1].add(value);
}

void Groups::grow() {
  places_.assign(2 * places_.size(), 0);
  for (std::size_t group = 0; group < amounts_.size(); ++group) {
    places_[find(keys_.data() + group * keyWords_)] = static_cast<std::uint32_t>(group + 1);
  }
}

void Groups::empty() {
  std::vector<std::uint64_t> row(keyWords_ + Amount::words);
  for (std::size_t group = 0; group < amounts_.size(); ++group) {
    std::copy_n(keys_.data() + group * keyWords_, keyWords_, row.begin());
    amounts_[group].store(row.data() + keyWords_);
    sorter_.add(row.data());
  }
  keys_.clear();
  amounts_.clear();
  std::ranges::fill(places_, 0U);
  latest_ = 0;
}

void Groups::walk(
    const std::function<void(const std::uint64_t* key, const Amount& amount)>& visit) {
  empty();
  std::vector<std::uint64_t> key(keyWords_);
  Amount amount;
  bool held = false;
  while (sorter_.next()) {
    const std::uint64_t* row = sorter_.row();
    const Amount part = Amount::stored(row + keyWords_);
    if (held && std::equal(key.begin(), key.end(), row)) {
      amount.add(part);
      continue;
    }
    if (held) visit(key.data(), amount);
    std::copy_n(row, keyWords_, key.begin());
    amount = part;
    held = true;
  }
  if (held) visit(key.data(), amount);
}

}  // namespace formats
