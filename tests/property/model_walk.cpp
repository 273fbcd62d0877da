// The operations of the model on its cursor.
#include "tests/property/model.h"

namespace ztbtest {

bool Model::inSlice(const Key& key) const {
  if (!cursor->mask) {
    return true;
  }
  for (size_t d = 0; d < key.size(); ++d) {
    if (cursor->mask->at(d) != 0 && cursor->mask->at(d) != key[d]) {
      return false;
    }
  }
  return true;
}

std::optional<Key> Model::following() {
  if (!cursor->key) {
    return {};
  }
  const auto& records = current().records;
  for (auto next = records.upper_bound(*cursor->key); next != records.end(); ++next) {
    if (inSlice(next->first)) {
      return next->first;
    }
  }
  return {};
}

std::optional<Key> Model::preceding() {
  const auto& records = current().records;
  auto place = cursor->key ? records.find(*cursor->key) : records.end();
  while (place != records.begin()) {
    --place;
    if (inSlice(place->first)) {
      return place->first;
    }
  }
  return {};
}

Answer Model::moveNext() {
  const std::optional<Key> next = following();
  if (!next) {
    return fail((cursor->mask ? "Last record reached in slice of symbol "
                              : "Last record reached in symbol ") +
                current().name);
  }
  cursor->key = next;
  return {1, ""};
}

Answer Model::movePrev() {
  const std::optional<Key> previous = preceding();
  if (!previous) {
    return {0, ""};
  }
  cursor->key = previous;
  return {1, ""};
}

Answer Model::hasNext() {
  return {following() ? 1 : 0, ""};
}

Answer Model::hasPrev() {
  return {preceding() ? 1 : 0, ""};
}

Answer Model::erase() {
  if (!cursor->key) {
    return failUnexpected("ztbDeleteRecord");
  }
  auto& records = current().records;
  const auto next = records.erase(records.find(*cursor->key));
  cursor->key = next == records.end() ? std::nullopt : std::optional(next->first);
  return {1, ""};
}

}  // namespace ztbtest
