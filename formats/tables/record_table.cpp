#include "formats/tables/record_table.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <numeric>

namespace formats {

namespace {

std::uint32_t narrowed(std::size_t number) {
  return static_cast<std::uint32_t>(
      std::min<std::size_t>(number, std::numeric_limits<std::uint32_t>::max()));
}

}  // namespace

RecordTable::RecordTable(std::size_t keyCount, std::size_t valueCount)
    : keyCount_(keyCount), valueCount_(valueCount) {
  // A scalar has no keys, but the address of its keys is handed on all the same.
  keys_.reserve(1);
}

void RecordTable::add(std::span<const int> keys, std::span<const double> values,
                      std::string_view text) {
  keys_.insert(keys_.end(), keys.begin(), keys.end());
  values_.insert(values_.end(), values.begin(), values.end());
  texts_ += text;
  texts_ += '\0';
  textEnds_.push_back(texts_.size() - 1);
}

void RecordTable::add(std::span<const int> keys, std::span<const double> values,
                      std::string_view text, const Place& place) {
  add(keys, values, text);
  places_.push_back(narrowed(place.line));
  std::ranges::transform(place.columns, std::back_inserter(places_), narrowed);
}

TextPosition RecordTable::place(std::size_t record, std::size_t position) const {
  const std::uint32_t* place = places_.data() + record * (keyCount_ + 1);
  return {.line = place[0], .column = position < keyCount_ ? place[position + 1] : 1};
}

std::string_view RecordTable::text(std::size_t record) const {
  const std::size_t begin = record == 0 ? 0 : textEnds_[record - 1] + 1;
  return std::string_view(texts_).substr(begin, textEnds_[record] - begin);
}

bool RecordTable::less(std::size_t left, std::size_t right) const {
  return std::ranges::lexicographical_compare(keys(left), keys(right));
}

std::vector<std::size_t> RecordTable::order() const {
  std::vector<std::size_t> order(size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto byKeys = [this](std::size_t left, std::size_t right) { return less(left, right); };
  if (!std::ranges::is_sorted(order, byKeys)) {
    std::ranges::stable_sort(order, byKeys);
  }
  return order;
}

}  // namespace formats
