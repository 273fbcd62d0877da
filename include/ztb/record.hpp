// Records of a symbol: the handle on one record, and walks over many.
#ifndef ZTB_RECORD_HPP_
#define ZTB_RECORD_HPP_

#include <ztb/ztb.h>

#include <array>
#include <cstddef>
#include <iterator>
#include <span>
#include <utility>
#include <ztb/error.hpp>
#include <ztb/text.hpp>

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

// Owns a handle on one record. It must not be used after its record was removed by another handle,
// the symbol was cleared, or the database ended; ending it is always allowed before that.
class Record {
 public:
  // Takes over a handle of the C interface.
  Record(ztbRec* database, void* handle) noexcept : database_(database), handle_(handle) {}
  Record(Record&& other) noexcept
      : database_(other.database_), handle_(std::exchange(other.handle_, nullptr)) {}
  Record& operator=(Record&& other) noexcept {
    std::swap(database_, other.database_);
    std::swap(handle_, other.handle_);
    return *this;
  }
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;
  ~Record() {
    if (handle_ != nullptr) {
      c__ztbfreesymboliterator(database_, handle_);
    }
  }

  // Another handle on the same record. The copy of a handle on a slice walks the whole symbol.
  [[nodiscard]] Record copy() const {
    void* handle = nullptr;
    detail::require(c__ztbcopysymboliterator(database_, handle_, &handle), database_,
                    "ztbCopySymbolIterator");
    return {database_, handle};
  }

  // Steps to the next or previous record; false, standing where it stood, when there is none.
  bool moveNext() { return c__ztbrecordmovenext(database_, handle_) != 0; }
  bool movePrevious() { return c__ztbrecordmoveprev(database_, handle_) != 0; }
  [[nodiscard]] bool hasNext() const { return c__ztbrecordhasnext(database_, handle_) != 0; }
  [[nodiscard]] bool hasPrevious() const { return c__ztbrecordhasprev(database_, handle_) != 0; }

  // Whether both stand on the same record.
  [[nodiscard]] bool sameAs(const Record& other) const {
    return c__ztbsamerecord(database_, handle_, other.handle_) != 0;
  }

  // The label at a position, counted from 0.
  [[nodiscard]] Text key(int position) const {
    Text text;
    detail::require(c__ztbgetkey(database_, handle_, position, text.buffer()), database_,
                    "ztbGetKey");
    return text;
  }

  // Label numbers and values, with special values in the caller's spelling. numbers has room for
  // each position of the symbol, values for fieldCount doubles; one is filled for a set or
  // parameter, none for the universe.
  void raw(int* numbers, double* values) const {
    detail::require(c__ztbgetrecordraw(database_, handle_, 0, numbers, values), database_,
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
    detail::require(c__ztbgetelemtext(database_, handle_, text.buffer()), database_,
                    "ztbGetElemText");
    return text;
  }
  // Gives a set record a text of at most ZTB_MAX_TEXT_LENGTH chars; an empty one takes it away.
  void setText(ZString text) {
    detail::require(c__ztbsetelemtext(database_, handle_, text.c_str()), database_,
                    "ztbSetElemText");
  }

  // Removes the record; this handle then stands on the record behind it, if there is one.
  void erase() {
    detail::require(c__ztbdeleterecord(database_, handle_), database_, "ztbDeleteRecord");
  }

  // The handle of the C interface; stays owned by this object.
  [[nodiscard]] void* handle() const noexcept { return handle_; }

 private:
  using Getter = int (*)(ztbRec*, void*, double*);
  using Setter = int (*)(ztbRec*, void*, double);

  double get(Getter getter, const char* operation) const {
    double value = 0;
    detail::require(getter(database_, handle_, &value), database_, operation);
    return value;
  }
  void set(Setter setter, double value, const char* operation) {
    detail::require(setter(database_, handle_, value), database_, operation);
  }

  ztbRec* database_;
  void* handle_;
};

// One pass over records by handle, in the order of the symbol:
//   for (ztb::Record& record : symbol.records()) { ... record.key(0) ... record.level() ... }
// One handle serves the whole walk. begin() may be called once. The symbol's records may be changed
// on the way through the record, but none may be removed.
class Records {
 public:
  class Iterator {
   public:
    using value_type = Record;
    using difference_type = std::ptrdiff_t;

    explicit Iterator(Records& records) noexcept : records_(&records) {}
    Record& operator*() const noexcept { return records_->record_; }
    Record* operator->() const noexcept { return &records_->record_; }
    Iterator& operator++() {
      records_->atEnd_ = !records_->record_.moveNext();
      return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(std::default_sentinel_t) const noexcept { return records_->atEnd_; }

   private:
    Records* records_;
  };

  // A walk from first on; none at all if first holds no handle.
  explicit Records(Record first) noexcept
      : record_(std::move(first)), atEnd_(record_.handle() == nullptr) {}

  [[nodiscard]] Iterator begin() noexcept { return Iterator(*this); }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

 private:
  Record record_;
  bool atEnd_;
};

// What a walk by numbers shows of a record: label numbers, one for each position, and values: five
// for a variable or equation, one for a parameter, one without meaning for a set, none for the
// universe. Valid until the walk steps on.
struct Row {
  std::span<const int> keys;
  std::span<const double> values;
};

// One pass over records by numbers, the fastest way to read:
//   for (auto [keys, values] : symbol.rows()) { ... values[0] ... }
// Two calls of the library a record, no allocation. begin() may be called once.
class Rows {
 public:
  class Iterator {
   public:
    using value_type = Row;
    using difference_type = std::ptrdiff_t;

    explicit Iterator(Rows& rows) noexcept : rows_(&rows) {}
    Row operator*() const noexcept { return rows_->row(); }
    Iterator& operator++() {
      rows_->step();
      return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(std::default_sentinel_t) const noexcept { return rows_->atEnd_; }

    // The handle under the walk, for what numbers do not tell, such as texts.
    [[nodiscard]] Record& record() const noexcept { return rows_->record_; }

   private:
    Rows* rows_;
  };

  // A walk from first on, over records of keyCount positions and valueCount values.
  Rows(Record first, std::size_t keyCount, std::size_t valueCount)
      : record_(std::move(first)),
        keyCount_(keyCount),
        valueCount_(valueCount),
        atEnd_(record_.handle() == nullptr) {
    read();
  }

  [[nodiscard]] Iterator begin() noexcept { return Iterator(*this); }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

 private:
  [[nodiscard]] Row row() const noexcept {
    return {.keys = {keys_.data(), keyCount_}, .values = {values_.data(), valueCount_}};
  }
  void step() {
    atEnd_ = !record_.moveNext();
    read();
  }
  void read() {
    if (!atEnd_) {
      record_.raw(keys_.data(), values_.data());
    }
  }

  Record record_;
  std::array<int, ZTB_MAX_DIMENSION> keys_{};
  std::array<double, fieldCount> values_{};
  std::size_t keyCount_;
  std::size_t valueCount_;
  bool atEnd_;
};

}  // namespace ztb::inline client

#endif  // ZTB_RECORD_HPP_
