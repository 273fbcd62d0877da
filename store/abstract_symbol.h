// One named table of a database: a set, parameter, variable, equation or alias.
//
// The rest of the system holds pointers to this class only; `ZTBSymbol` implements it over each
// record store. `domainMembership` is a table by value, empty where there is none, and not a
// pointer that someone has to free. The records may be missing until the database loads them: every
// user of records applies the database's rule of lazy loading first, and the class has no hook
// beyond `loaded` and `unreadable`.
#ifndef ZTB_STORE_ABSTRACT_SYMBOL_H_
#define ZTB_STORE_ABSTRACT_SYMBOL_H_

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "store/abstract_symbol_iterator.h"
#include "store/held_memory.h"
#include "store/idmap.h"
#include "store/record_node.h"

namespace ztb {

class ZTB;

// By label number: the 1-based rank of the label among the records of a set, 0 if it has none. A
// number beyond the table has none.
using LabelRanks = std::vector<int>;

inline int rankOf(const LabelRanks& ranks, int label) {
  const auto place = static_cast<std::size_t>(label);
  return place < ranks.size() ? ranks[place] : 0;
}

// What a symbol is made from. `number` is its place in the symbol table; -1 for the universe.
struct SymbolDescription {
  std::string name;
  int dim = 0;
  int type = dmap::typeSet;
  int number = 0;
  int userInfo = 0;
  std::string text;
};

class AbstractZTBSymbol {
 public:
  using RecordHandle = std::unique_ptr<AbstractZTBSymbolIterator>;

  AbstractZTBSymbol(const AbstractZTBSymbol&) = delete;
  AbstractZTBSymbol& operator=(const AbstractZTBSymbol&) = delete;
  virtual ~AbstractZTBSymbol() = default;

  // Removes all records. Handles of before end here, and where records start anew or are released:
  // what is asked of them throws std::logic_error.
  virtual void clearRecords() = 0;
  [[nodiscard]] virtual bool isEndPosition(const dmap::IDMapIterator& position) = 0;
  [[nodiscard]] virtual bool isEnd(AbstractZTBSymbolIterator& record) = 0;
  [[nodiscard]] virtual bool isBegin(const dmap::IDMapIterator& position) = 0;
  [[nodiscard]] virtual bool isEmpty() const = 0;
  [[nodiscard]] virtual int recordCount() const = 0;

  // Adds a record that must be new: null when the store's lower bound of the keys does not lie
  // above them. A variable takes `variableValues`, an equation `equationValues` (five doubles
  // each), any other symbol a zero.
  virtual RecordHandle addRecord(const int* keys, const double* variableValues,
                                 const double* equationValues) = 0;
  virtual void insertRecord(const int* keys, const double* values) = 0;
  // Adds a record that sorts after all others.
  virtual void appendRecord(const int* keys, const double* values) = 0;
  // The same for `count` records, the keys of each behind those of the one before, its values
  // likewise; how files are loaded.
  virtual void appendRecords(const int* keys, const double* values, int count) = 0;

  // Walks in the store's order. The pointers are good for the call only.
  virtual void forEachKey(const std::function<void(const int*)>& visit) = 0;
  virtual void forEachRecord(const std::function<void(const int*, const double*)>& visit) = 0;
  // Stops at the first false and returns it.
  virtual bool forEachRecordWhile(const std::function<bool(const int*, const double*)>& visit) = 0;
  virtual void forEachValue(const std::function<void(const double*)>& visit) = 0;

  // The record with these keys, or null.
  virtual RecordHandle findRecord(const int* keys) = 0;
  // REQUIRES: the symbol is not empty. The same holds for `lastRecord`.
  virtual RecordHandle firstRecord() = 0;
  // First record that agrees with the mask (`dim` elements, 0 is free), or null; the handle then
  // walks the slice.
  virtual RecordHandle firstRecordInSlice(const int* mask) = 0;
  // Finds the record or adds it with the values of `addRecord`. True and the record's slots, to be
  // written to; false and null when the store gave nothing. `record`, if not null, receives a
  // handle.
  virtual std::pair<bool, double*> mergeRecord(const int* keys, const double* variableValues,
                                               const double* equationValues,
                                               RecordHandle* record) = 0;
  // Adds a record; one that exists is overwritten with `overwrite`, and kept without. Null when
  // the store gave nothing.
  virtual RecordHandle storeRecord(const int* keys, const double* values, bool overwrite) = 0;
  virtual void insertRecordAtPosition(const int* keys, const double* values) = 0;
  virtual RecordHandle lastRecord() = 0;
  virtual RecordHandle lastRecordInSlice(const int* mask) = 0;
  [[nodiscard]] virtual dmap::StorageKind storageKind() const = 0;
  // The first record for which `accept` is false, with false; else a handle on the end, with true.
  virtual std::pair<bool, RecordHandle> firstRejected(
      const std::function<bool(const int*, const double*)>& accept) = 0;
  // Moves the handle on to the next record that breaks a domain; false at the end.
  virtual bool toNextDomainViolation(AbstractZTBSymbolIterator& record) = 0;
  // Removes the record; the handle then stands on the one behind it. Throws std::logic_error when
  // the handle stands on no record.
  virtual void eraseRecord(AbstractZTBSymbolIterator& record) = 0;
  // Appends all records of another symbol; those that are here stay.
  virtual void assignRecords(AbstractZTBSymbol& other) = 0;

  // Operations of our own.

  // The value slots of the record with these keys, or null; good until the symbol next changes.
  virtual const double* findValues(const int* keys) = 0;
  // The same for whoever asks for many records in the order of their keys.
  virtual const double* findValuesInTurn(const int* keys) = 0;
  // The values of all records for somebody who drops them, where they lie one behind the other;
  // they stay as they are whatever becomes of the symbol. REQUIRES: the symbol is not empty.
  virtual dmap::HeldValues holdValues() = 0;
  // Moves a position on, or back, to the first record of a slice from there on, itself included.
  // False, with the position as it was, without one. REQUIRES: it stands on a record.
  virtual bool seekInSlice(dmap::IDMapIterator& position, const int* mask, bool forward) = 0;
  // `storeRecord` without a handle: whether the store took or had the record.
  virtual bool putRecord(const int* keys, const double* values, bool overwrite) = 0;
  // `insertRecordAtPosition` for `count` records, the keys and the values of each behind those of
  // the one before.
  virtual void insertRecordsAtPosition(const int* keys, const double* values, int count) = 0;
  // One slot of all records, in the store's order. REQUIRES: the records have that slot.
  virtual void copySlot(std::size_t slot, double* to) = 0;
  // Inserts all records of a symbol on another store into this one, which is new.
  virtual void takeRecords(AbstractZTBSymbol& source) = 0;
  // Leaves the symbol without records, for others that take their place: whatever comes next is
  // all that it holds, on every store. `clearRecords` leaves a trie with its last record to compare
  // with, and the record of a scalar there.
  virtual void startRecordsAnew() = 0;
  // Leaves the symbol without records and without memory for them.
  virtual void releaseRecords() = 0;

  // Whether a record breaks a domain, at some position or at one: the position's domain set has a
  // membership table, and the record's label has no rank in it.
  [[nodiscard]] bool violatesDomain(const int* keys) const;
  [[nodiscard]] bool violatesDomainAt(std::size_t position, int label) const;

  // Marks this set as used by another symbol's domain; an alias marks its set, too, since that is
  // what records are checked against. The universe is never marked.
  void markUsedAsDomain();

  int dim;
  int type;
  int userInfo;
  int symbolNumber;
  bool loaded = true;          // the records are in the store
  bool usedAsDomain = false;   // another symbol names this set as a domain
  bool writeRecorded = false;  // written to while write recording was on
  std::string name;
  std::string text;
  LabelRanks domainMembership;  // of a set, while domains are checked; empty otherwise
  ZTB* database;
  AbstractZTBSymbol* aliasTarget;  // the symbol that answers for this one; itself if no alias
  std::vector<AbstractZTBSymbol*> domainSymbols;  // null: known by name only
  std::vector<std::string> domainNames;
  // Why the records could not be read from their file, as every use of them says, until they are
  // given up; null otherwise. The symbol is then loaded and empty.
  struct Unreadable {
    std::string text;
    int kind = 0;
  };
  std::unique_ptr<Unreadable> unreadable;
  unsigned timesEmptied = 0;  // how often all records went at once, by which handles tell that

 protected:
  AbstractZTBSymbol(ZTB* owner, SymbolDescription description);
};

inline bool AbstractZTBSymbolIterator::ended() const {
  return timesEmptied_ != symbol_->timesEmptied;
}

inline bool AbstractZTBSymbolIterator::hasNode() const {
  return node_ != nullptr && *node_ != nullptr && symbol_->dim != 0 && !ended();
}

inline bool AbstractZTBSymbolIterator::moveNextAtHand() {
  return hasNode() && dmap::stepToRecord(*node_, sliceMask_.get(), symbol_->dim);
}

inline double* AbstractZTBSymbolIterator::valuesAtHand() const {
  if (!hasNode()) {
    return nullptr;
  }
  auto* node = static_cast<dmap::TreeLink*>(*node_);
  return node->isHead() ? nullptr : dmap::valuesOfNode(node, symbol_->dim);
}

}  // namespace ztb

#endif  // ZTB_STORE_ABSTRACT_SYMBOL_H_
