#include "tests/stores/store_models.h"

#include <algorithm>
#include <iterator>

namespace ztb::storetest {
namespace {

// No sequence of steps that ends takes more turns between the two ways in.
constexpr int endless = 8;

// Positions with a 0 on either side are skipped.
int compare(const Key& left, const Key& right) {
  for (std::size_t d = 0; d < left.size(); ++d) {
    if (left[d] == 0 || right[d] == 0) {
      continue;
    }
    if (left[d] != right[d]) {
      return left[d] - right[d];
    }
  }
  return 0;
}

bool sharesPrefix(const Key& left, const Key& right, std::size_t length) {
  return std::equal(left.begin(), left.begin() + static_cast<std::ptrdiff_t>(length),
                    right.begin());
}

}  // namespace

int VectorModel::append(const Key& key, double value) {
  rows_.emplace_back(key, value);
  return size() - 1;
}

int VectorModel::lowerBound(const Key& key) const {
  const int count = size();
  int hi = count;
  int lo = 0;
  int mid = count / 2;
  if (count < 2) {
    return count == 0 ? count : mid;
  }
  int last = 0;
  do {
    last = compare(keyAt(mid), key);
    if (last == 0) {
      return mid;
    }
    if (last < 0) {
      lo = mid;
    } else {
      hi = mid;
    }
    mid = lo + (hi - lo) / 2;
  } while (hi - lo > 1);
  return last < 0 ? count : mid;
}

int VectorModel::find(const Key& key) const {
  const int bound = lowerBound(key);
  return bound < size() && compare(keyAt(bound), key) == 0 ? bound : size();
}

std::optional<int> VectorModel::insert(const Key& key, double value, int depth) {
  if (depth >= endless) {
    return std::nullopt;
  }
  if (rows_.empty()) {
    return append(key, value);
  }
  const int order = compare(key, rows_.back().first);
  if (order == 0) {
    ++warnings_;
    return size() - 1;
  }
  if (order > 0) {
    return append(key, value);
  }
  const int bound = lowerBound(key);
  if (bound == size()) {
    return std::nullopt;  // no key to read there
  }
  if (compare(keyAt(bound), key) != 0) {
    return insertHint(key, value, bound, depth + 1);
  }
  ++warnings_;
  return bound;
}

std::optional<int> VectorModel::insertHint(const Key& key, double value, int hint, int depth) {
  if (hint >= size()) {
    return append(key, value);
  }
  if (compare(key, keyAt(hint)) > 0 || (hint > 0 && compare(key, keyAt(hint - 1)) < 0)) {
    return insert(key, value, depth + 1);
  }
  rows_.emplace(rows_.begin() + hint, key, value);
  return hint;
}

int VectorModel::insertOrAssign(const Key& key, double value) {
  const int bound = lowerBound(key);
  if (bound == size()) {
    return append(key, value);
  }
  rows_[static_cast<std::size_t>(bound)].second = value;
  return bound;
}

bool TrieModel::append(const Key& key, double value) {
  if (!records_.empty() && !last_) {
    return false;
  }
  if (records_.empty() || key > *last_) {
    records_[key] = value;
    last_ = key;
  } else if (key == *last_) {
    records_[key] = value;
  } else {
    records_.emplace(key, value);
  }
  return true;
}

void TrieModel::insert(const Key& key, double value) {
  const bool isLast = last_ && key == *last_;
  const bool movesLast = (last_ && key > *last_) || (records_.empty() && !last_ && dim_ == 1);
  if (isLast && records_.empty()) {
    return;  // written to a node that `clear` has forgotten
  }
  if (isLast) {
    records_[key] = value;
  } else {
    records_.emplace(key, value);
  }
  if (movesLast) {
    last_ = key;
  }
}

std::optional<Key> TrieModel::lowerBound(const Key& key) const {
  Key bound;
  for (std::size_t level = 0; level < key.size(); ++level) {
    std::optional<int> least;
    for (const auto& [present, value] : records_) {
      if (sharesPrefix(bound, present, level) && present[level] >= key[level]) {
        least = std::min(least.value_or(present[level]), present[level]);
      }
    }
    if (!least) {
      return std::nullopt;
    }
    bound.push_back(*least);
  }
  return bound;
}

bool TrieModel::insertOrAssign(const Key& key, double value) {
  if (records_.empty()) {
    return append(key, value);
  }
  const std::optional<Key> bound = lowerBound(key);
  if (bound) {
    records_[*bound] = value;
  }
  return bound.has_value();
}

bool TrieModel::mayErase(const Key& key) const {
  const auto sharing = [&](std::size_t length) {
    return std::ranges::count_if(
        records_, [&](const auto& record) { return sharesPrefix(key, record.first, length); });
  };
  if (key[0] == records_.begin()->first[0] && sharing(1) == 1) {
    return false;
  }
  return dim_ < 3 || sharing(key.size() - 1) > 1;
}

void TrieModel::erase(const Key& key) {
  const auto place = records_.find(key);
  if (last_ && key == *last_) {
    last_ = std::prev(place)->first;
  }
  records_.erase(place);
}

}  // namespace ztb::storetest
