// The record handle over one kind of store iterator.
#ifndef ZTB_STORE_SYMBOL_ITERATOR_H_
#define ZTB_STORE_SYMBOL_ITERATOR_H_

#include <algorithm>
#include <memory>
#include <numeric>
#include <optional>
#include <stdexcept>

#include "store/abstract_symbol.h"
#include "store/abstract_symbol_iterator.h"
#include "store/idmap.h"
#include "store/record_columns.h"
#include "store/slice_mask.h"

namespace ztb {

template <class Iterator>
class ZTBSymbolIterator final : public AbstractZTBSymbolIterator {
 public:
  // Walks all records of the symbol.
  ZTBSymbolIterator(AbstractZTBSymbol* symbol, const Iterator& position)
      : AbstractZTBSymbolIterator(symbol), position_(position) {
    showNode();
  }

  // Walks the slice of the mask, `dim` elements, which is copied.
  ZTBSymbolIterator(AbstractZTBSymbol* symbol, const Iterator& position, const int* mask)
      : AbstractZTBSymbolIterator(symbol), position_(position) {
    mode_ = IterationMode::slice;
    maskLength_ = static_cast<std::uint8_t>(symbol->dim);
    sliceMask_ = std::make_unique<int[]>(maskLength_);
    std::copy_n(mask, maskLength_, sliceMask_.get());
    showNode();
  }

  // Walks the labels of the universe.
  ZTBSymbolIterator(AbstractZTBSymbol* universe, int label) : AbstractZTBSymbolIterator(universe) {
    mode_ = IterationMode::universe;
    universePosition_ = label;
  }

  dmap::IDMapIterator& storeIterator() override {
    requireNotEnded();
    return position_;
  }

  void standOn(const Iterator& position) { position_ = position; }

  const double* values() override { return current().values; }
  const int* keys() override { return current().keys; }

  bool moveNext(int lastLabel) override {
    switch (mode_) {
      case IterationMode::universe:
        if (universePosition_ + 1 > lastLabel) {
          return failMove("Last record reached in Universe", "");
        }
        ++universePosition_;
        return true;
      case IterationMode::slice:
        return stepInSlice() || failMove("Last record reached in slice of symbol ", symbolName());
      case IterationMode::symbol:
        break;
    }
    requireNotEnded();
    const Iterator here = position_;
    stepFromRecord();
    if (!atEnd()) {
      return true;
    }
    position_ = here;
    return failMove("Last record reached in symbol ", symbolName());
  }

  bool movePrev() override {
    if (mode_ == IterationMode::universe) {
      if (universePosition_ - 1 > 0) {
        --universePosition_;
        return true;
      }
      universePosition_ = 1;
      return failMove("First record reached in Universe", "");
    }
    requireNotEnded();
    if (atBegin()) {
      return failMove("First record reached in symbol ", symbolName());
    }
    if (mode_ == IterationMode::slice) {
      return stepBackInSlice() ||
             failMove("First record reached in slice of symbol ", symbolName());
    }
    stepBack();
    return true;
  }

  bool hasNext(int lastLabel) override {
    if (mode_ == IterationMode::universe) {
      return lastLabel > universePosition_;
    }
    requireNotEnded();
    const Iterator here = position_;
    bool found = false;
    if (mode_ == IterationMode::slice) {
      found = stepInSlice();
    } else {
      stepFromRecord();
      found = !atEnd();
    }
    position_ = here;
    return found;
  }

  bool sameValues(AbstractZTBSymbolIterator& other) override {
    if (dimension() != other.dimension()) {
      return false;
    }
    const int slots =
        std::min(dmap::slotCount(symbol_->type), dmap::slotCount(other.symbol()->type));
    if (dimension() > slots) {
      throw std::logic_error("records with fewer values than dimensions cannot be compared");
    }
    return dimension() == 0 || std::equal(values(), values() + dimension(), other.values());
  }

  [[nodiscard]] int dimension() const override { return symbol_->dim; }

  bool hasPrev() override {
    if (mode_ == IterationMode::universe) {
      return universePosition_ > 1;
    }
    requireNotEnded();
    if (atBegin()) {
      return false;
    }
    if (mode_ == IterationMode::symbol) {
      return true;
    }
    const Iterator here = position_;
    const bool found = stepBackInSlice();
    position_ = here;
    return found;
  }

  void copyRecord(int* keys, double* values) override {
    const dmap::RecordView record = current();
    std::copy_n(record.keys, dimension(), keys);
    const bool fiveSlots =
        symbol_->type == dmap::typeVariable || symbol_->type == dmap::typeEquation;
    std::copy_n(record.values, fiveSlots ? dmap::maxSlots : 1, values);
  }

  int copyRecords(int most, int lastLabel, int* const* keys, double* const* values) override {
    if (mode_ == IterationMode::universe) {
      const int first = universePosition_;
      universePosition_ = first + std::min(most - 1, std::max(lastLabel - first, 0));
      if (keys[0] != nullptr) {
        std::iota(keys[0], keys[0] + (universePosition_ - first + 1), first);
      }
      return universePosition_ - first + 1;
    }
    static_cast<void>(current());
    dmap::RecordColumns columns(dimension(), dmap::slotCount(symbol_->type), keys, values);
    const int* mask = mode_ == IterationMode::slice ? sliceMask_.get() : nullptr;
    int count = 0;
    do {
      const int run = position_.copyRun(most - count, mask, columns);
      columns.advance(static_cast<std::size_t>(run));
      count += run;
    } while (count < most && stepQuietly());
    return count;
  }

  void assignPosition(const AbstractZTBSymbolIterator& other) override {
    position_ = static_cast<const ZTBSymbolIterator&>(other).position_;
    takeRecordsOf(other);
  }

  double* valuesToWrite() override {
    double* values = current().values;
    if constexpr (requires { position_.ownValues(); }) {
      return position_.ownValues() ? position_.get().values : values;
    }
    return values;
  }

  const void* valuesAddress() override {
    if (mode_ == IterationMode::universe || ended() || position_.isNull()) {
      return nullptr;
    }
    return atEnd() ? position_.endAddress() : position_.get().values;
  }

 private:
  void showNode() {
    if constexpr (requires { position_.nodeAtHand(); }) {
      node_ = position_.nodeAtHand();
    }
  }

  [[nodiscard]] const char* symbolName() const { return symbol_->name.c_str(); }
  [[nodiscard]] bool atEnd() const {
    if constexpr (requires { position_.isAtEnd(); }) {
      if (const std::optional<bool> known = position_.isAtEnd()) {
        return *known;
      }
    }
    return symbol_->isEndPosition(position_);
  }
  [[nodiscard]] bool atBegin() const { return symbol_->isBegin(position_) || symbol_->isEmpty(); }

  [[nodiscard]] dmap::RecordView current() const {
    if (mode_ == IterationMode::universe || ended() || position_.isNull() || atEnd()) {
      throwNoRecord();
    }
    const dmap::RecordView record = position_.get();
    if (record.values == nullptr) {
      throwNoRecord();
    }
    return record;
  }

  [[noreturn]] static void throwNoRecord() {
    throw std::logic_error("the record handle stands on no record");
  }

  void requireNotEnded() const {
    if (ended()) {
      throwNoRecord();
    }
  }

  // A handle stands at the end only after the symbol's last record was deleted through it; there
  // is nowhere to step from there.
  void stepFromRecord() {
    if (!atEnd()) {
      position_.next();
    }
  }

  // Steps on in the symbol or slice; at its last record it stays.
  bool stepQuietly() {
    if (mode_ == IterationMode::slice) {
      return stepInSlice();
    }
    const Iterator here = position_;
    position_.next();
    return atEnd() ? stayOn(here) : true;
  }

  // A store of rows can leave a handle more than one row behind its last record.
  void stepBack() {
    do {
      position_.prev();
    } while (atEnd());
  }

  // Steps on to the next record of the slice; without one the position stays.
  bool stepInSlice() {
    requireNotEnded();
    const Iterator here = position_;
    stepFromRecord();
    return !atEnd() && (liesInSlice() || seek(true)) ? true : stayOn(here);
  }

  // Steps back to the previous record of the slice; without one the position stays.
  // REQUIRES: not at the beginning.
  bool stepBackInSlice() {
    const Iterator here = position_;
    stepBack();
    return liesInSlice() || seek(false) ? true : stayOn(here);
  }

  // Whether the position shows by itself that its record lies in the slice: mostly the neighbour of
  // one that does, and the store need not be asked.
  bool liesInSlice() {
    if constexpr (Iterator::keysAtHand) {
      const int* keys = position_.get().keys;
      return keys != nullptr && dmap::matchesMask(sliceMask_.get(), keys, dimension());
    } else {
      return false;
    }
  }

  bool seek(bool forward) { return symbol_->seekInSlice(position_, sliceMask_.get(), forward); }
  bool stayOn(const Iterator& position) {
    position_ = position;
    return false;
  }

  Iterator position_;
};

}  // namespace ztb

#endif  // ZTB_STORE_SYMBOL_ITERATOR_H_
