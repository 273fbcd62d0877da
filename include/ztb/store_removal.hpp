// Records taken away from any store as from the tree map. The exported names skip records on the
// vector, and on the trie leave rings and empty branches behind.
//
// Where a store cannot take a record out in place, all others are written anew: time for each of
// them, and on the trie memory that comes back when the symbol ends. Running out of memory then
// loses records.
#ifndef ZTB_STORE_REMOVAL_HPP_
#define ZTB_STORE_REMOVAL_HPP_

#include <ztb/ztb.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>
#include <ztb/store_guard.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client::detail {

// Lets values through as they are stored while it lives.
class PlainSpecialValues {
 public:
  explicit PlainSpecialValues(ztbRec* database) : database_(database) {
    std::array<double, ZTB_SPECIAL_VALUE_COUNT> plain{};
    c__ztbgetuserspecialvalues(database_, user_.data());
    c__ztbgetspecialvalues(database_, plain.data());
    c__ztbsetspecialvalues(database_, plain.data());
  }
  PlainSpecialValues(const PlainSpecialValues&) = delete;
  PlainSpecialValues& operator=(const PlainSpecialValues&) = delete;
  ~PlainSpecialValues() { c__ztbsetspecialvalues(database_, user_.data()); }

 private:
  ztbRec* database_;
  std::array<double, ZTB_SPECIAL_VALUE_COUNT> user_{};
};

// Calls visit with a handle on each record, in order. The symbol must not change meanwhile.
template <class Visit>
void forEachRecord(const SymbolPlace& place, Visit&& visit) {
  const int count = place.recordCount();
  if (count == 0) {
    return;
  }
  const OwnedRecord record = firstRecord(place);
  for (int index = 0;; ++index) {
    visit(static_cast<std::size_t>(index), record.get());
    if (index + 1 == count) {
      return;
    }
    require(c__ztbrecordmovenext(place.database, record.get()), place.database,
            "ztbRecordMoveNext");
  }
}

// Removes all records.
inline void clearRecords(const SymbolPlace& place) {
  require(c__ztbclearsymbol(place.database, place.handle), place.database, "ztbClearSymbol");
  // A scalar on the trie keeps its record, as a zero.
  if (place.dimension == 0 && place.store == ZTB_STORAGE_TRIE && place.recordCount() > 0) {
    require(c__ztbdeleterecord(place.database, firstRecord(place).get()), place.database,
            "ztbDeleteRecord");
  }
}

// The numbers and values of some records of a symbol, as they are stored.
class RecordCopies {
 public:
  // Copies each record whose place in the order is marked in keep.
  RecordCopies(const SymbolPlace& place, const std::vector<bool>& keep) : place_(place) {
    const auto kept = static_cast<std::size_t>(std::ranges::count(keep, true));
    numbers_.reserve(kept * place.positions());
    values_.reserve(kept * place.slotCount());
    const PlainSpecialValues plain(place.database);
    forEachRecord(place, [&](std::size_t index, void* record) {
      if (keep[index]) {
        KeyNumbers numbers{};
        Slots values{};
        require(c__ztbgetrecordraw(place.database, record, place.dimension, numbers.data(),
                                   values.data()),
                place.database, "ztbGetRecordRaw");
        numbers_.insert(numbers_.end(), numbers.data(), numbers.data() + place.positions());
        values_.insert(values_.end(), values.data(), values.data() + place.slotCount());
        ++count_;
      }
    });
  }

  // Makes these the records of the symbol.
  // REQUIRES: at least one position, and not on the tree map.
  void replaceAll() const {
    clearRecords(place_);
    const PlainSpecialValues plain(place_.database);
    const AnySubtype subtype(place_);
    const std::span<const int> numbers(numbers_);
    for (std::size_t index = 0; index < count_; ++index) {
      const auto key = numbers.subspan(index * place_.positions(), place_.positions());
      if (index == 0 && place_.store == ZTB_STORAGE_TRIE) {
        storeFirstInTrie(place_, key, {}, false);
      } else {
        storeDirectly(place_, key, {}, false);
      }
    }
    forEachRecord(place_, [&](std::size_t index, void* record) {
      Slots values{};
      std::copy_n(values_.data() + index * place_.slotCount(), place_.slotCount(), values.data());
      writeContent(place_, record, {.values = values.data()});
    });
  }

 private:
  const SymbolPlace& place_;
  std::size_t count_ = 0;
  std::vector<int> numbers_;
  std::vector<double> values_;
};

// Whether two records share their labels but for the last position.
inline bool areSiblings(const SymbolPlace& place, const KeyNumbers& left, const KeyNumbers& right) {
  return std::equal(left.data(), left.data() + place.dimension - 1, right.data());
}

// Whether the trie can unlink a record and leave neither a ring nor an empty branch: there is one
// before it in its list, or one behind it in a list that does not begin the trie, or it is one of
// two positions and not the first of all.
// REQUIRES: a handle that walks the whole symbol; it stands where it stood afterwards.
inline bool isUnlinkable(const SymbolPlace& place, void* record) {
  if (place.dimension == 0) {
    return true;
  }
  const KeyNumbers here = keysOf(place, record);
  bool unlinkable = false;
  if (c__ztbrecordmoveprev(place.database, record) != 0) {
    unlinkable = place.dimension <= 2 || areSiblings(place, here, keysOf(place, record));
    require(c__ztbrecordmovenext(place.database, record), place.database, "ztbRecordMoveNext");
  }
  if (!unlinkable && place.dimension > 1 && c__ztbrecordmovenext(place.database, record) != 0) {
    unlinkable = areSiblings(place, here, keysOf(place, record));
    require(c__ztbrecordmoveprev(place.database, record), place.database, "ztbRecordMovePrev");
  }
  return unlinkable;
}

// Removes the record under a handle, which is then of no further use on a store other than the tree
// map. What other handles on the symbol stand on is not known afterwards on these.
// REQUIRES: the handle walks the whole symbol.
inline void removeRecord(const SymbolPlace& place, void* record) {
  if (place.store == ZTB_STORAGE_TRIE && !isUnlinkable(place, record)) {
    const KeyNumbers here = keysOf(place, record);
    std::vector<bool> keep(static_cast<std::size_t>(place.recordCount()), true);
    forEachRecord(
        place, [&](std::size_t index, void* other) { keep[index] = keysOf(place, other) != here; });
    RecordCopies(place, keep).replaceAll();
    return;
  }
  require(c__ztbdeleterecord(place.database, record), place.database, "ztbDeleteRecord");
}

// Removes the records whose places in the order are not marked in keep. What handles on the symbol
// stand on is not known afterwards, but on the tree map.
// REQUIRES: keep has a place for each record, at least one.
inline void removeUnmarked(const SymbolPlace& place, const std::vector<bool>& keep) {
  if (!place.onMap() && place.dimension > 0) {
    RecordCopies(place, keep).replaceAll();
    return;
  }
  OwnedRecord record = firstRecord(place);
  for (std::size_t index = 0; index < keep.size(); ++index) {
    if (!keep[index]) {
      require(c__ztbdeleterecord(place.database, record.get()), place.database, "ztbDeleteRecord");
    } else if (index + 1 < keep.size()) {
      require(c__ztbrecordmovenext(place.database, record.get()), place.database,
              "ztbRecordMoveNext");
    }
  }
}

}  // namespace ztb::inline client::detail

#endif  // ZTB_CPP20

#endif  // ZTB_STORE_REMOVAL_HPP_
