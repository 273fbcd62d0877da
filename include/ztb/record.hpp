// The handle on one record of a symbol.
#ifndef ZTB_RECORD_HPP_
#define ZTB_RECORD_HPP_

#include <ztb/ztb.h>

#include <cstddef>
#include <utility>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>
#include <ztb/handle_age.hpp>
#include <ztb/store_guard.hpp>
#include <ztb/store_removal.hpp>
#include <ztb/text.hpp>
#include <ztb/z_string.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// The value slots of a record. Sets and parameters have the level only.
enum class Field {
  level = ZTB_LEVEL,
  marginal = ZTB_MARGINAL,
  lower = ZTB_LOWER,
  upper = ZTB_UPPER,
  scale = ZTB_SCALE
};

inline constexpr std::size_t fieldCount = 5;

class Symbol;

// Owns a handle on one record. It must not be used after its record was removed by another handle,
// the symbol was cleared, or the database ended; ending it is always allowed before that. On the
// vector and the trie store, any removal from the symbol but its own makes a handle throw.
class Record {
 public:
  // Takes over a handle of the C interface that walks the whole symbol.
  Record(const Symbol& symbol, void* handle) noexcept;
  Record(Record&& other) noexcept
      : place_(other.place_),
        handle_(std::exchange(other.handle_, nullptr)),
        age_(other.age_),
        standing_(other.standing_) {}
  Record& operator=(Record&& other) noexcept {
    std::swap(place_, other.place_);
    std::swap(handle_, other.handle_);
    std::swap(age_, other.age_);
    std::swap(standing_, other.standing_);
    return *this;
  }
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;
  ~Record() {
    if (handle_ != nullptr) {
      c__ztbfreesymboliterator(place_.database, handle_);
    }
  }

  // Another handle on the same record. The copy of a handle on a slice walks the whole symbol.
  [[nodiscard]] Record copy() const;

  // Steps to the next or previous record; false, standing where it stood, when there is none.
  bool moveNext() {
    return age_.counts() ? step(c__ztbrecordmovenext, "ztbRecordMoveNext")
                         : c__ztbrecordmovenext(place_.database, own()) != 0;
  }
  bool movePrevious() {
    return age_.counts() ? stepBack() : c__ztbrecordmoveprev(place_.database, own()) != 0;
  }
  [[nodiscard]] bool hasNext() const {
    return age_.counts() ? step(c__ztbrecordhasnext, "ztbRecordHasNext")
                         : c__ztbrecordhasnext(place_.database, own()) != 0;
  }
  [[nodiscard]] bool hasPrevious() const;

  // Whether both stand on the same record.
  [[nodiscard]] bool sameAs(const Record& other) const {
    return c__ztbsamerecord(place_.database, current("ztbSameRecord"),
                            other.current("ztbSameRecord")) != 0;
  }

  // The label at a position, counted from 0.
  [[nodiscard]] Text key(int position) const {
    Text text;
    require(c__ztbgetkey(place_.database, current("ztbGetKey"), position, text.buffer()),
            "ztbGetKey");
    return text;
  }

  // Label numbers and values, with special values in the caller's spelling. numbers has room for
  // each position of the symbol, values for fieldCount doubles; one is filled for a set or
  // parameter, none for the universe.
  void raw(int* numbers, double* values) const {
    require(c__ztbgetrecordraw(place_.database, current("ztbGetRecordRaw"), 0, numbers, values),
            "ztbGetRecordRaw");
  }

  // Value of a record; for a parameter, its one value. Fields other than the level exist for
  // variables and equations only, which nothing checks.
  [[nodiscard]] double level() const { return get(c__ztbgetlevel, "ztbGetLevel"); }
  [[nodiscard]] double marginal() const { return get(c__ztbgetmarginal, "ztbGetMarginal"); }
  [[nodiscard]] double lower() const { return get(c__ztbgetlower, "ztbGetLower"); }
  [[nodiscard]] double upper() const { return get(c__ztbgetupper, "ztbGetUpper"); }
  [[nodiscard]] double scale() const { return get(c__ztbgetscale, "ztbGetScale"); }
  void setLevel(double value) { set(c__ztbsetlevel, value, "ztbSetLevel"); }
  void setMarginal(double value) { set(c__ztbsetmarginal, value, "ztbSetMarginal"); }
  void setLower(double value) { set(c__ztbsetlower, value, "ztbSetLower"); }
  void setUpper(double value) { set(c__ztbsetupper, value, "ztbSetUpper"); }
  void setScale(double value) { set(c__ztbsetscale, value, "ztbSetScale"); }

  // Explanatory text of a set record; empty when it has none.
  [[nodiscard]] Text text() const {
    Text text;
    require(c__ztbgetelemtext(place_.database, current("ztbGetElemText"), text.buffer()),
            "ztbGetElemText");
    return text;
  }
  // Gives a set record a text of at most ZTB_MAX_TEXT_LENGTH chars; an empty one takes it away.
  void setText(const ZString& text) {
    require(c__ztbsetelemtext(place_.database, current("ztbSetElemText"), text.c_str()),
            "ztbSetElemText");
  }

  // Removes the record; this handle then stands on the record behind it, or behind the last one.
  // On the vector and the trie store this takes time for each record of the symbol, all other
  // handles on the symbol throw from then on, and a handle on a slice is refused; to remove many
  // records take Symbol::removeIf.
  void erase() {
    if (age_.counts()) {
      eraseWithCare();
    } else {
      require(c__ztbdeleterecord(place_.database, own()), "ztbDeleteRecord");
    }
  }

  // The handle of the C interface; stays owned by this object. Null behind the last record of a
  // vector or trie.
  [[nodiscard]] void* handle() const noexcept { return handle_; }

 private:
  friend class Symbol;

  using Getter = int (*)(ztbRec*, void*, double*);
  using Setter = int (*)(ztbRec*, void*, double);
  using Step = int (*)(ztbRec*, void*);

  // What a handle walks. Only in the vector and the trie, where erase() needs a new handle, does it
  // matter here; there, behindLast holds none.
  enum class Standing { inSymbol, inSlice, behindLast };

  Record(const detail::SymbolPlace& place, void* handle, detail::HandleAge age,
         Standing standing = Standing::inSymbol) noexcept
      : place_(place), handle_(handle), age_(age), standing_(standing) {}

  void require(int result, const char* operation) const {
    detail::require(result, place_.database, operation);
  }
  // The handle. Throws if it does not stand on a record any more, as far as that is known.
  [[nodiscard]] void* current(const char* operation) const {
    if (age_.counts()) [[unlikely]] {
      age_.requireCurrent(place_, operation);
      if (standing_ == Standing::behindLast) {
        throw Error(operation, "the record handle stands on no record");
      }
    }
    return own();
  }
  [[nodiscard]] void* own() const {
    return detail::notMoved(handle_, "ztb::Record", "This record handle was");
  }
  double get(Getter getter, const char* operation) const {
    double value = 0;
    require(getter(place_.database, current(operation), &value), operation);
    return value;
  }
  void set(Setter setter, double value, const char* operation) {
    require(setter(place_.database, current(operation), value), operation);
  }

  // The parts for stores other than the tree map.
  bool step(Step take, const char* operation) const;
  bool stepBack();
  void eraseWithCare();

  detail::SymbolPlace place_;
  void* handle_;
  detail::HandleAge age_;
  Standing standing_ = Standing::inSymbol;
};

inline Record Record::copy() const {
  if (age_.counts()) {
    age_.requireCurrent(place_, "ztbCopySymbolIterator");
    if (standing_ == Standing::behindLast) {
      return {place_, nullptr, age_, standing_};
    }
  }
  void* handle = nullptr;
  if (c__ztbcopysymboliterator(place_.database, own(), &handle) == 0) {
    // The library copies handles of the store of new symbols only.
    int chosen = 0;
    require(c__ztbinfo(place_.database, ZTB_INFO_RECORD_STORAGE, &chosen, nullptr, nullptr),
            "ztbInfo");
    c__ztbselectrecordstorage(place_.database, nullptr, place_.store);
    const int result = c__ztbcopysymboliterator(place_.database, own(), &handle);
    c__ztbselectrecordstorage(place_.database, nullptr, chosen);
    require(result, "ztbCopySymbolIterator");
  }
  return {place_, handle, age_};
}

inline bool Record::hasPrevious() const {
  if (!age_.counts()) {
    return c__ztbrecordhasprev(place_.database, own()) != 0;
  }
  if (standing_ == Standing::behindLast) {
    age_.requireCurrent(place_, "ztbRecordHasPrev");
    return place_.recordCount() > 0;
  }
  return step(c__ztbrecordhasprev, "ztbRecordHasPrev");
}

inline bool Record::step(Step take, const char* operation) const {
  age_.requireCurrent(place_, operation);
  return standing_ != Standing::behindLast && detail::answer(place_.database, operation, [&] {
           return take(place_.database, own()) != 0;
         });
}

inline bool Record::stepBack() {
  if (standing_ != Standing::behindLast) {
    return step(c__ztbrecordmoveprev, "ztbRecordMovePrev");
  }
  if (!hasPrevious()) {
    return false;
  }
  handle_ = detail::lastRecord(place_).release();
  standing_ = Standing::inSymbol;
  return true;
}

inline void Record::eraseWithCare() {
  constexpr const char* operation = "ztbDeleteRecord";
  static_cast<void>(current(operation));
  if (standing_ == Standing::inSlice) {
    throw Error(operation,
                "a record of symbol " + place_.name() +
                    " is not removed through a slice on this store; find it by its labels");
  }
  const auto onKeys = [&](const detail::KeyNumbers& numbers) {
    return detail::findRecord(place_,
                              detail::LabelsOf(place_, {numbers.data(), place_.positions()}));
  };
  detail::OwnedRecord record = onKeys(detail::keysOf(place_, handle_));
  const bool isLast = !hasNext();
  detail::OwnedRecord behind;
  if (!isLast) {
    behind = onKeys(detail::keysOf(place_, record.get()));
    require(c__ztbrecordmovenext(place_.database, behind.get()), "ztbRecordMoveNext");
  }
  const detail::KeyNumbers next =
      isLast ? detail::KeyNumbers{} : detail::keysOf(place_, behind.get());
  age_.countRemoval();
  detail::removeRecord(place_, record.get());
  age_.renew();
  c__ztbfreesymboliterator(place_.database, std::exchange(handle_, nullptr));
  standing_ = Standing::behindLast;
  if (!isLast) {
    handle_ = onKeys(next).release();
    standing_ = Standing::inSymbol;
  }
}

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_RECORD_HPP_
