// A symbol over one record store, which it holds by value beside an iterator that follows the last
// positioned write: a load in key order finds its place without a search.
#ifndef ZTB_STORE_SYMBOL_H_
#define ZTB_STORE_SYMBOL_H_

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>

#include "store/abstract_symbol.h"
#include "store/symbol_iterator.h"

namespace ztb {

template <class Store, class Iterator>
class ZTBSymbol final : public AbstractZTBSymbol {
 public:
  ZTBSymbol(ZTB* owner, SymbolDescription description)
      : AbstractZTBSymbol(owner, std::move(description)),
        store_(dim, type),
        lastPosition_(store_.end()) {}

  void clearRecords() override {
    endHandles();
    store_.clear();
    lastPosition_ = store_.end();
  }

  bool isEndPosition(const dmap::IDMapIterator& position) override {
    return store_.isEnd(static_cast<const Iterator&>(position));
  }
  bool isEnd(AbstractZTBSymbolIterator& record) override {
    return isEndPosition(record.storeIterator());
  }
  bool isBegin(const dmap::IDMapIterator& position) override {
    return store_.begin().equals(position);
  }
  [[nodiscard]] bool isEmpty() const override { return store_.empty(); }
  [[nodiscard]] int recordCount() const override { return store_.size(); }

  RecordHandle addRecord(const int* keys, const double* variableValues,
                         const double* equationValues) override {
    const Iterator bound = store_.lowerBound(keys);
    if (!store_.isEndBound(bound, keys)) {
      const int* present = dim == 0 ? nullptr : recordAt(bound).keys;
      if (!std::lexicographical_compare(keys, keys + dim, present, present + dim)) {
        return nullptr;
      }
    }
    auto record = handleToCome();
    const Iterator position =
        store_.insertHint(keys, newValues(variableValues, equationValues), bound);
    if (position.isNull()) {
      return nullptr;
    }
    record->standOn(position);
    return record;
  }

  void insertRecord(const int* keys, const double* values) override { store_.insert(keys, values); }
  void appendRecord(const int* keys, const double* values) override { store_.load(keys, values); }
  void appendRecords(const int* keys, const double* values, int count) override {
    const int slots = dmap::slotCount(type);
    for (int record = 0; record < count; ++record) {
      store_.load(keys, values);
      keys += dim;
      values += slots;
    }
  }

  void forEachKey(const std::function<void(const int*)>& visit) override {
    walk([&](const dmap::RecordView& record) {
      visit(record.keys);
      return true;
    });
  }
  void forEachRecord(const std::function<void(const int*, const double*)>& visit) override {
    walk([&](const dmap::RecordView& record) {
      visit(record.keys, record.values);
      return true;
    });
  }
  bool forEachRecordWhile(const std::function<bool(const int*, const double*)>& visit) override {
    return walk([&](const dmap::RecordView& record) { return visit(record.keys, record.values); })
        .first;
  }
  void forEachValue(const std::function<void(const double*)>& visit) override {
    walk([&](const dmap::RecordView& record) {
      visit(record.values);
      return true;
    });
  }

  RecordHandle findRecord(const int* keys) override {
    const Iterator position = store_.find(keys);
    return isEndPosition(position) ? nullptr : handleOn(position);
  }

  RecordHandle firstRecord() override { return handleOn(store_.begin()); }

  RecordHandle lastRecord() override {
    Iterator position = store_.end();
    position.prev();
    return handleOn(position);
  }

  RecordHandle firstRecordInSlice(const int* mask) override {
    return store_.empty() ? nullptr : soughtInSlice(store_.begin(), mask, true);
  }

  RecordHandle lastRecordInSlice(const int* mask) override {
    if (store_.empty()) {
      return nullptr;
    }
    Iterator position = store_.end();
    position.prev();
    return soughtInSlice(position, mask, false);
  }

  std::pair<bool, double*> mergeRecord(const int* keys, const double* variableValues,
                                       const double* equationValues,
                                       RecordHandle* record) override {
    auto merged = record == nullptr ? nullptr : handleToCome();
    if constexpr (requires { store_.ownValues(); }) {
      store_.ownValues();
    }
    insertRecordAtPosition(keys, newValues(variableValues, equationValues));
    if (lastPosition_.isNull()) {
      return {false, nullptr};
    }
    if (merged != nullptr) {
      merged->standOn(lastPosition_);
      *record = std::move(merged);
    }
    return {true, lastPosition_.get().values};
  }

  RecordHandle storeRecord(const int* keys, const double* values, bool overwrite) override {
    auto record = handleToCome();
    if (!putRecord(keys, values, overwrite)) {
      return nullptr;
    }
    record->standOn(lastPosition_);
    return record;
  }

  void insertRecordAtPosition(const int* keys, const double* values) override {
    store_.insertFollowing(keys, values, lastPosition_);
  }

  [[nodiscard]] dmap::StorageKind storageKind() const override { return store_.kind(); }

  std::pair<bool, RecordHandle> firstRejected(
      const std::function<bool(const int*, const double*)>& accept) override {
    const auto [passed, position] =
        walk([&](const dmap::RecordView& record) { return accept(record.keys, record.values); });
    return {passed, handleOn(position)};
  }

  bool toNextDomainViolation(AbstractZTBSymbolIterator& record) override {
    auto& position = static_cast<Iterator&>(record.storeIterator());
    requireRecord(position);
    for (position.next(); !isEndPosition(position); position.next()) {
      if (violatesDomain(recordAt(position).keys)) {
        return true;
      }
    }
    return false;
  }

  void eraseRecord(AbstractZTBSymbolIterator& record) override {
    auto& position = static_cast<Iterator&>(record.storeIterator());
    requireRecord(position);
    const Iterator behind = store_.behind(position);
    if (lastPosition_.equals(position) && position.notEquals(behind)) {
      lastPosition_ = behind;
    }
    store_.erase(position);
    if (position.notEquals(behind)) {
      position = behind;
    }
  }

  void assignRecords(AbstractZTBSymbol& other) override {
    other.forEachRecord(
        [this](const int* keys, const double* values) { appendRecord(keys, values); });
  }

  const double* findValues(const int* keys) override {
    const Iterator position = store_.find(keys);
    return isEndPosition(position) ? nullptr : position.get().values;
  }

  const double* findValuesInTurn(const int* keys) override {
    if constexpr (requires { store_.findInTurn(keys); }) {
      const Iterator position = store_.findInTurn(keys);
      return isEndPosition(position) ? nullptr : position.get().values;
    } else {
      return findValues(keys);
    }
  }

  dmap::HeldValues holdValues() override {
    if constexpr (requires { store_.holdValues(); }) {
      return store_.holdValues();
    } else {
      return {};
    }
  }

  bool seekInSlice(dmap::IDMapIterator& position, const int* mask, bool forward) override {
    return store_.seekInSlice(static_cast<Iterator&>(position), mask, forward);
  }

  bool putRecord(const int* keys, const double* values, bool overwrite) override {
    if (overwrite) {
      lastPosition_ = store_.insertOrAssign(lastPosition_, keys, values);
    } else {
      insertRecordAtPosition(keys, values);
    }
    return !lastPosition_.isNull();
  }

  void insertRecordsAtPosition(const int* keys, const double* values, int count) override {
    if constexpr (requires { &Store::insertAllFollowing; }) {
      store_.insertAllFollowing(keys, values, count, lastPosition_);
    } else {
      const int slots = dmap::slotCount(type);
      for (int record = 0; record < count; ++record) {
        store_.insertFollowing(keys, values, lastPosition_);
        keys += dim;
        values += slots;
      }
    }
  }

  void copySlot(std::size_t slot, double* to) override {
    if constexpr (requires { store_.copySlot(slot, to); }) {
      store_.copySlot(slot, to);
    } else {
      walk([&](const dmap::RecordView& record) {
        *to++ = record.values[slot];
        return true;
      });
    }
  }

  void takeRecords(AbstractZTBSymbol& source) override {
    source.forEachRecord(
        [this](const int* keys, const double* values) { insertRecord(keys, values); });
    lastPosition_ = store_.end();
  }

  void startRecordsAnew() override {
    endHandles();
    store_.startAnew();
    lastPosition_ = store_.end();
  }

  void releaseRecords() override {
    endHandles();
    store_.release();
    lastPosition_ = store_.end();
  }

 private:
  void endHandles() { ++timesEmptied; }

  [[nodiscard]] const double* newValues(const double* variableValues,
                                        const double* equationValues) const {
    static constexpr double zeros[dmap::maxSlots] = {};
    switch (type) {
      case dmap::typeVariable:
        return variableValues;
      case dmap::typeEquation:
        return equationValues;
      default:
        return zeros;
    }
  }

  RecordHandle handleOn(const Iterator& position) {
    return std::make_unique<ZTBSymbolIterator<Iterator>>(this, position);
  }
  RecordHandle handleOn(const Iterator& position, const int* mask) {
    return std::make_unique<ZTBSymbolIterator<Iterator>>(this, position, mask);
  }

  // A handle on the first record of the slice from the position on; null without one.
  RecordHandle soughtInSlice(Iterator position, const int* mask, bool forward) {
    return store_.seekInSlice(position, mask, forward) ? handleOn(position, mask) : nullptr;
  }

  // A handle that is made before its record, so that running out of memory for it changes nothing.
  std::unique_ptr<ZTBSymbolIterator<Iterator>> handleToCome() {
    return std::make_unique<ZTBSymbolIterator<Iterator>>(this, Iterator());
  }

  // The record at a position; throws std::logic_error where the store has none.
  [[nodiscard]] dmap::RecordView recordAt(const Iterator& position) const {
    const dmap::RecordView record = position.get();
    if (record.values == nullptr) {
      throw std::logic_error("the position stands on no record");
    }
    return record;
  }

  void requireRecord(const Iterator& position) {
    if (position.isNull() || isEndPosition(position)) {
      throw std::logic_error("the record handle stands on no record");
    }
  }

  // Visits the records in order until `visit` gives false. True and the end when all were visited,
  // else false and the record that stopped the walk.
  template <class Visit>
  std::pair<bool, Iterator> walk(Visit&& visit) {
    const Iterator last = store_.end();
    if (!store_.empty()) {
      for (Iterator position = store_.begin(); !position.equals(last); position.next()) {
        if (!visit(recordAt(position))) {
          return {false, position};
        }
      }
    }
    return {true, last};
  }

  Store store_;
  Iterator lastPosition_;
};

}  // namespace ztb

#endif  // ZTB_STORE_SYMBOL_H_
