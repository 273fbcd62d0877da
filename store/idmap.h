// The contract of a record store.
//
// A store holds the records of one symbol: keys of `dim` label numbers (0 to 20 of them) and one or
// five doubles each. Three stores implement it. All walk their records in ascending order of keys,
// compared element by element as signed integers. A store is used by one thread at a time, reports
// a miss by `end` or a null iterator, and lets the standard exceptions of its containers through.
#ifndef ZTB_STORE_IDMAP_H_
#define ZTB_STORE_IDMAP_H_

#include <cstdint>

namespace ztb::dmap {

inline constexpr int maxDimension = 20;
inline constexpr int maxSlots = 5;

// Type codes of symbols.
inline constexpr int typeSet = 0;
inline constexpr int typeParameter = 1;
inline constexpr int typeVariable = 2;
inline constexpr int typeEquation = 3;
inline constexpr int typeAlias = 4;

// Value slots of a record of a symbol of this type.
constexpr int slotCount(int type) {
  return type < typeVariable ? 1 : maxSlots;
}

// Which store; also the code by which a caller chooses one. Callers may give any integer.
enum class StorageKind : std::int32_t { dMap = 0, dMapVector = 1, dMapGTree = 2 };

// A record as an iterator sees it. `keys` is not to be read when `dim` is 0; `values` is null when
// the iterator stands on no record and its store can tell. Both pointers are borrowed from the
// store: a view does not outlive the next change to it. Writing through `values` changes the
// record; where others may hold the values of the store, it is made to own them first. Since no
// store gives a view that owns what it shows, a view has no word for its ownership and no
// destructor: it travels in two registers.
struct RecordView {
  const int* keys = nullptr;
  double* values = nullptr;
};

// What every iterator can do. `isNull` is true for the value that a failed operation returns.
class IDMapIterator {
 public:
  virtual void next() = 0;
  virtual void prev() = 0;
  [[nodiscard]] virtual RecordView get() const = 0;
  [[nodiscard]] virtual bool equals(const IDMapIterator& other) const = 0;
  [[nodiscard]] virtual bool notEquals(const IDMapIterator& other) const = 0;
  [[nodiscard]] virtual bool isNull() const = 0;

 protected:
  IDMapIterator() = default;
  IDMapIterator(const IDMapIterator&) = default;
  IDMapIterator& operator=(const IDMapIterator&) = default;
  ~IDMapIterator() = default;
};

// The fields that the iterators share. Iterators are values and are copied freely.
class BaseDMapIterator : public IDMapIterator {
 public:
  [[nodiscard]] bool notEquals(const IDMapIterator& other) const override { return !equals(other); }

  [[nodiscard]] int dim() const { return dim_; }
  [[nodiscard]] int type() const { return type_; }
  [[nodiscard]] StorageKind kind() const { return kind_; }

 protected:
  BaseDMapIterator(int dim, int type, StorageKind kind)
      : dim_(static_cast<std::uint8_t>(dim)), type_(static_cast<std::uint8_t>(type)), kind_(kind) {}
  BaseDMapIterator(const BaseDMapIterator&) = default;
  BaseDMapIterator& operator=(const BaseDMapIterator&) = default;
  ~BaseDMapIterator() = default;

 private:
  std::uint8_t dim_;
  std::uint8_t type_;
  StorageKind kind_;
};

// The store. `keys` points to `dim` integers, `values` to `slotCount(type)` doubles; both are
// copied. Iterators are results by value. Operations of our own stand behind `reserve`.
template <class Iterator>
class IDMap {
 public:
  IDMap(const IDMap&) = delete;
  IDMap& operator=(const IDMap&) = delete;
  virtual ~IDMap() = default;

  // Adds a record that the caller expects to sort after all others: the cheapest way in.
  virtual Iterator append(const int* keys, const double* values) = 0;
  // Adds a record wherever it belongs; a record with that key stays as it is.
  virtual Iterator insert(const int* keys, const double* values) = 0;
  // As `insert`; the hint says where to look first.
  virtual Iterator insertHint(const int* keys, const double* values, const Iterator& hint) = 0;
  // Adds the record, or overwrites the values of the one found.
  virtual Iterator insertOrAssign(const Iterator& hint, const int* keys, const double* values) = 0;
  // Removes the record at the iterator.
  virtual void erase(const Iterator& position) = 0;
  [[nodiscard]] virtual int size() const = 0;
  [[nodiscard]] virtual bool empty() const = 0;
  // Position at or near the first record not below the keys.
  virtual Iterator lowerBound(const int* keys) = 0;
  // The record with these keys, or `end`.
  virtual Iterator find(const int* keys) = 0;
  virtual Iterator begin() = 0;
  virtual Iterator end() = 0;
  // Removes all records.
  virtual void clear() = 0;
  // The record's place in the order of iteration, from 0; for `end` -1, on the trie the count.
  virtual int indexOf(const Iterator& position) = 0;
  // The record at that place; `end` when the index is the record count.
  virtual Iterator iteratorAt(int index) = 0;
  // Prepares the store for that many records.
  virtual void reserve(int records) = 0;
  // As `insertHint`, whose result takes the place of the hint: for many records in a row.
  virtual void insertFollowing(const int* keys, const double* values, Iterator& hint) {
    hint = insertHint(keys, values, hint);
  }

  [[nodiscard]] StorageKind kind() const { return kind_; }

 protected:
  IDMap(StorageKind kind, int dim, int type) : kind_(kind), dim_(dim), type_(type) {}

  StorageKind kind_;
  int dim_;
  int type_;  // selects one or five value slots
};

}  // namespace ztb::dmap

#endif  // ZTB_STORE_IDMAP_H_
