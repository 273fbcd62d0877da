// A record handle: a position in one symbol's store, or a label of the universe.
//
// One class serves three ways of walking: all records of a symbol, the records of a slice, and the
// labels of the universe. A failed move is no exception: it gives false, leaves a message, and the
// handle stands where it stood. A handle does not own its symbol and does not keep it alive.
// Reading through a handle that stands on no record throws std::logic_error, and so does everything
// but `valuesAddress` after all records of the symbol went at once.
#ifndef ZTB_STORE_ABSTRACT_SYMBOL_ITERATOR_H_
#define ZTB_STORE_ABSTRACT_SYMBOL_ITERATOR_H_

#include <cstdint>
#include <memory>

#include "store/idmap.h"

namespace ztb {

class AbstractZTBSymbol;

enum class IterationMode : std::int32_t { symbol = 0, slice = 1, universe = 2 };

class AbstractZTBSymbolIterator {
 public:
  static constexpr std::size_t messageSize = 256;

  AbstractZTBSymbolIterator(const AbstractZTBSymbolIterator&) = delete;
  AbstractZTBSymbolIterator& operator=(const AbstractZTBSymbolIterator&) = delete;
  virtual ~AbstractZTBSymbolIterator() = default;

  virtual dmap::IDMapIterator& storeIterator() = 0;
  // The record's value slots.
  virtual const double* values() = 0;
  // Steps forward. `lastLabel` is the largest label number, the bound of a walk over the universe.
  // On false `message()` is "Last record reached in symbol %s", "... in slice of symbol %s" or
  // "... in Universe".
  virtual bool moveNext(int lastLabel) = 0;
  // Steps back. On false `message()` is the same with "First record".
  virtual bool movePrev() = 0;
  // What `moveNext` would answer; nothing moves and no message is left.
  virtual bool hasNext(int lastLabel) = 0;
  // Whether as many value slots as the symbol has dimensions are equal as doubles. Throws
  // std::logic_error when the records have fewer slots than that.
  virtual bool sameValues(AbstractZTBSymbolIterator& other) = 0;
  [[nodiscard]] virtual int dimension() const = 0;
  // What `movePrev` would answer.
  virtual bool hasPrev() = 0;
  // Copies `dimension()` key elements and the record's slots out.
  virtual void copyRecord(int* keys, double* values) = 0;
  // The record's key, `dimension()` elements.
  virtual const int* keys() = 0;
  // Takes the position of another handle of the same class; mode, mask and label stay.
  virtual void assignPosition(const AbstractZTBSymbolIterator& other) = 0;

  // Operations of our own.

  // The record's value slots, to be written to.
  virtual double* valuesToWrite() = 0;

  // The address of the record's values, by which two handles on one record are told. Where a handle
  // stands on no record, what its store has in place of it: null, or at the end of a map an address
  // of that map.
  virtual const void* valuesAddress() = 0;

  // Copies records by columns, at most `most` from the one that it stands on, and stands on the
  // last of them then; their number. Arrays that are null are left out. Of the universe, whose
  // largest label is given, no values.
  virtual int copyRecords(int most, int lastLabel, int* const* keys, double* const* values) = 0;

  // Steps on, or gives the values, without a virtual call, where the handle stands on a record of a
  // tree and is to stand on one; otherwise false, or null, with nothing changed, and `moveNext` and
  // `values` give the answer.
  [[nodiscard]] inline bool moveNextAtHand();
  [[nodiscard]] inline double* valuesAtHand() const;

  // Takes the symbol and the position of another handle. Throws std::logic_error when its symbol is
  // on another record store.
  void moveToSymbolOf(const AbstractZTBSymbolIterator& other);

  [[nodiscard]] IterationMode mode() const { return mode_; }
  [[nodiscard]] AbstractZTBSymbol* symbol() const { return symbol_; }
  // The label number of a handle on the universe, -1 in every other mode.
  [[nodiscard]] int universePosition() const { return universePosition_; }
  [[nodiscard]] bool onUniverse() const { return universePosition_ != -1; }
  // The text of the latest failed move; empty when none has failed.
  [[nodiscard]] const char* message() const {
    return errorBuffer_ == nullptr ? "" : errorBuffer_.get();
  }

 protected:
  explicit AbstractZTBSymbolIterator(AbstractZTBSymbol* symbol);

  // Whether the records among which this handle stood are no longer there.
  [[nodiscard]] inline bool ended() const;
  // Whether `node_` leads to a node.
  [[nodiscard]] inline bool hasNode() const;
  // Follows the records of another handle.
  void takeRecordsOf(const AbstractZTBSymbolIterator& other) {
    timesEmptied_ = other.timesEmptied_;
  }

  // Leaves a message made of a text and the symbol's name; false.
  bool failMove(const char* text, const char* symbolName);

  // The node of a handle on a tree of records: where its position keeps it, which holds null as
  // long as it stands nowhere. Null for any other handle.
  void** node_ = nullptr;
  IterationMode mode_ = IterationMode::symbol;
  AbstractZTBSymbol* symbol_;
  std::unique_ptr<int[]> sliceMask_;
  int universePosition_ = -1;
  std::unique_ptr<char[]> errorBuffer_;
  std::uint8_t maskLength_ = 0;
  unsigned timesEmptied_;  // of the symbol, when the handle was made
};

}  // namespace ztb

#endif  // ZTB_STORE_ABSTRACT_SYMBOL_ITERATOR_H_
