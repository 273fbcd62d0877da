// Symbols: what they are, how their records are found, walked, added and overwritten.
#ifndef ZTB_SYMBOL_HPP_
#define ZTB_SYMBOL_HPP_

#include <ztb/ztb.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>
#include <ztb/error.hpp>
#include <ztb/record.hpp>
#include <ztb/text.hpp>

namespace ztb::inline client {

enum class Type {
  set = ZTB_SET,
  parameter = ZTB_PARAMETER,
  variable = ZTB_VARIABLE,
  equation = ZTB_EQUATION,
  alias = ZTB_ALIAS
};

// What holds the records of a symbol in memory; files do not know of it.
enum class Store {
  map = ZTB_STORAGE_TREE_MAP,   // any order, the default
  vector = ZTB_STORAGE_VECTOR,  // least memory, for records that come in key order
  trie = ZTB_STORAGE_TRIE       // shared keys, for records that come in key order
};

// Any label, as one of the keys of a slice.
inline constexpr const char* anyLabel = " ";

// The keys of a record or slice: one label for each position.
using Keys = std::span<const char* const>;

struct Domain;

// A symbol of a database: a plain value of a few words, valid as long as the database.
class Symbol {
 public:
  // Wraps a handle of the C interface. Throws if it is null.
  Symbol(ztbRec* database, void* handle) : database_(database), handle_(handle) {
    int type = 0;
    detail::require(c__ztbsymboldim(database, handle, &dimension_), database, "ztbSymbolDim");
    detail::require(c__ztbsymboltype(database, handle, &type), database, "ztbSymbolType");
    type_ = static_cast<Type>(type);
  }

  [[nodiscard]] int dimension() const noexcept { return dimension_; }
  [[nodiscard]] Type type() const noexcept { return type_; }
  // Values of a record: five for variables and equations, one otherwise.
  [[nodiscard]] std::size_t valueCount() const noexcept {
    return type_ == Type::variable || type_ == Type::equation ? fieldCount : 1;
  }
  [[nodiscard]] Text name() const { return textInfo(ZTB_SYMBOL_INFO_NAME); }
  [[nodiscard]] Text text() const { return textInfo(ZTB_SYMBOL_INFO_TEXT); }
  // Records of the symbol, which are read now if they were not yet. 0 for an alias.
  [[nodiscard]] int recordCount() const { return info(ZTB_SYMBOL_INFO_RECORD_COUNT); }
  // Subtype of a variable or equation, and the caller's own word otherwise.
  [[nodiscard]] int userInfo() const { return info(ZTB_SYMBOL_INFO_USER_INFO); }
  void setUserInfo(int userInfo) {
    detail::require(c__ztbsetuserinfo(database_, handle_, userInfo), database_, "ztbSetUserInfo");
  }
  // Number that the symbol was made with; one in a file counts from 1, any other from 0.
  [[nodiscard]] int number() const { return info(ZTB_SYMBOL_INFO_NUMBER); }
  [[nodiscard]] Store store() const { return static_cast<Store>(info(ZTB_SYMBOL_INFO_STORAGE)); }

  // The domain of each position. The universe has none, which is a failure.
  [[nodiscard]] std::vector<Domain> domains() const;

  // Removes all records; those of a file that were not read yet never will be.
  void clear() {
    detail::require(c__ztbclearsymbol(database_, handle_), database_, "ztbClearSymbol");
  }

  // Walks over all records. An alias has none of its own: walk the set that it stands for.
  [[nodiscard]] Records records() const { return Records(first()); }
  [[nodiscard]] Rows rows() const { return {first(), keyCount(), rowValueCount()}; }

  // Walks over a slice: a label or anyLabel for each position. Labels that the database does not
  // have match nothing. The records of the whole symbol behind the first match are looked at.
  [[nodiscard]] Records slice(Keys keys) const { return Records(firstOf(keys)); }
  [[nodiscard]] Rows sliceRows(Keys keys) const {
    return {firstOf(keys), keyCount(), rowValueCount()};
  }
  template <class... Labels>
  requires(std::convertible_to<const Labels&, ZString>&&...) [[nodiscard]] Records
      slice(const Labels&... labels) const {
    return slice(Keys(KeyArray<sizeof...(Labels)>(labels...)));
  }
  template <class... Labels>
  requires(std::convertible_to<const Labels&, ZString>&&...) [[nodiscard]] Rows
      sliceRows(const Labels&... labels) const {
    return sliceRows(Keys(KeyArray<sizeof...(Labels)>(labels...)));
  }

  // The record with these labels, or nothing. No label is added.
  [[nodiscard]] std::optional<Record> find(Keys keys) const {
    checkCount(keys.size(), "ztbFindRecord");
    void* handle = nullptr;
    if (c__ztbfindrecord(database_, handle_, keyData(keys), &handle) == 0) {
      requireNotFound(keys, "ztbFindRecord");
      return std::nullopt;
    }
    return Record(database_, handle);
  }
  template <class... Labels>
  requires(std::convertible_to<const Labels&, ZString>&&...)
      [[nodiscard]] std::optional<Record> find(const Labels&... labels) const {
    return find(Keys(KeyArray<sizeof...(Labels)>(labels...)));
  }

  // Adds a record with the type's default values, and its labels where they are new. add throws
  // when the record exists, merge finds it with its values.
  Record add(Keys keys) { return make(c__ztbaddrecord, keys, "ztbAddRecord"); }
  Record merge(Keys keys) { return make(c__ztbmergerecord, keys, "ztbMergeRecord"); }
  template <class... Labels>
  requires(std::convertible_to<const Labels&, ZString>&&...) Record add(const Labels&... labels) {
    return add(Keys(KeyArray<sizeof...(Labels)>(labels...)));
  }
  template <class... Labels>
  requires(std::convertible_to<const Labels&, ZString>&&...) Record merge(const Labels&... labels) {
    return merge(Keys(KeyArray<sizeof...(Labels)>(labels...)));
  }

  // Adds or overwrites a record of a parameter, variable or equation by label numbers, without a
  // handle. values are level, marginal, lower, upper, scale; a parameter uses the first.
  void put(std::span<const int> numbers, const std::array<double, fieldCount>& values) {
    put(numbers, values, 1);
  }
  void put(std::span<const int> numbers, double value) { put(numbers, {value, 0, 0, 0, 0}, 1); }

  // The same without a look at the numbers, the fastest way to write: each must be a label's.
  void putUnchecked(std::span<const int> numbers, const std::array<double, fieldCount>& values) {
    put(numbers, values, 0);
  }
  void putUnchecked(std::span<const int> numbers, double value) {
    put(numbers, {value, 0, 0, 0, 0}, 0);
  }

  // Adds or overwrites a record of a set by label numbers, with a text of at most
  // ZTB_MAX_TEXT_LENGTH chars, or null for none (a record that exists then keeps its text).
  void putElement(std::span<const int> numbers, const char* text) { putElement(numbers, text, 1); }
  void putElementUnchecked(std::span<const int> numbers, const char* text) {
    putElement(numbers, text, 0);
  }

  // One value of each record, in the order of the records: the fastest way to read numbers. cells
  // has recordCount() places, at least one. Sets, scalars and the universe are refused.
  void copyValues(std::span<double> cells, Field field = Field::level) const {
    refuseSet("ztbDenseSymbolToDenseArray");
    std::vector<int> sizes(std::max<std::size_t>(keyCount(), 1), 1);
    sizes[0] = static_cast<int>(cells.size());
    detail::require(c__ztbdensesymboltodensearray(database_, cells.data(), sizes.data(), handle_,
                                                  static_cast<int>(field)),
                    database_, "ztbDenseSymbolToDenseArray");
  }

  // Replaces the records of a parameter by one for each cell, zeros included: the fastest way to
  // write. domains holds a one-dimensional set for each position; cube is row-major over their
  // labels, the last position fastest. A wrong size changes nothing; what the library refuses
  // leaves the parameter empty.
  void assignCube(std::span<const Symbol> domains, std::span<const double> cube) {
    if (type_ != Type::parameter) {
      throw Error("ztbDenseArrayToSymbol", "Symbol " + name().str() + " is no parameter");
    }
    checkCount(domains.size(), "ztbDenseArrayToSymbol");
    std::vector<int> sizes;
    std::vector<void*> handles;
    std::size_t cells = 1;
    for (const Symbol& domain : domains) {
      sizes.push_back(domain.recordCount());
      handles.push_back(domain.handle_);
      cells *= static_cast<std::size_t>(sizes.back());
    }
    if (cells != cube.size()) {
      throw Error(
          "ztbDenseArrayToSymbol",
          std::to_string(cube.size()) + " cells given, the domains span " + std::to_string(cells));
    }
    detail::require(
        c__ztbdensearraytosymbol(database_, handle_, handles.data(), cube.data(), sizes.data()),
        database_, "ztbDenseArrayToSymbol");
  }

  // The handles of the C interface.
  [[nodiscard]] void* handle() const noexcept { return handle_; }
  [[nodiscard]] ztbRec* database() const noexcept { return database_; }

  // Whether both are the same symbol of the same database.
  friend bool operator==(const Symbol& left, const Symbol& right) noexcept {
    return left.handle_ == right.handle_;
  }

 private:
  using Maker = int (*)(ztbRec*, void*, const char**, void**);

  // The labels of a call as an array of pointers; a scalar's has one unused place.
  template <std::size_t count>
  struct KeyArray {
    template <class... Labels>
    explicit KeyArray(const Labels&... labels) noexcept
        : pointers{static_cast<ZString>(labels).c_str()...} {}
    operator Keys() const noexcept { return {pointers.data(), count}; }
    std::array<const char*, std::max<std::size_t>(count, 1)> pointers;
  };

  // The C interface takes arrays of labels without the inner const.
  static const char** keyData(Keys keys) noexcept { return const_cast<const char**>(keys.data()); }

  [[nodiscard]] std::size_t keyCount() const noexcept {
    return static_cast<std::size_t>(dimension_);
  }
  // The walk over the universe fills no values.
  [[nodiscard]] std::size_t rowValueCount() const {
    return type_ == Type::set && info(ZTB_SYMBOL_INFO_NUMBER) == -1 ? 0 : valueCount();
  }

  [[nodiscard]] int info(int key) const {
    int value = 0;
    detail::require(c__ztbsymbolinfo(database_, handle_, key, &value, nullptr, nullptr), database_,
                    "ztbSymbolInfo");
    return value;
  }
  [[nodiscard]] Text textInfo(int key) const {
    Text text;
    int value = 0;
    detail::require(c__ztbsymbolinfo(database_, handle_, key, &value, nullptr, text.buffer()),
                    database_, "ztbSymbolInfo");
    return text;
  }

  void checkCount(std::size_t count, const char* operation) const {
    if (count != keyCount()) [[unlikely]] {
      throw Error(operation, std::to_string(count) + " keys given, symbol " + name().str() +
                                 " has " + std::to_string(dimension_) + " positions");
    }
  }

  // The library fills and reads arrays of whole numbers for a set.
  void refuseSet(const char* operation) const {
    if (type_ == Type::set) {
      throw Error(operation, "Symbol " + name().str() + " is a set, which holds no numbers");
    }
  }

  // Throws unless the lookup that just failed says only that there is no such record.
  void requireNotFound(Keys keys, const char* operation) const {
    for (const char* key : keys) {
      int number = 0;
      if (c__ztbfinduel(database_, key, &number) == 0) {
        detail::failLabel(database_, operation, key);
      }
    }
    if (!detail::nothingFound(database_)) {
      detail::fail(database_, operation);
    }
  }

  [[nodiscard]] Record first() const {
    void* handle = nullptr;
    if (recordCount() > 0) {
      detail::require(c__ztbfindfirstrecord(database_, handle_, &handle), database_,
                      "ztbFindFirstRecord");
    }
    return {database_, handle};
  }
  [[nodiscard]] Record firstOf(Keys keys) const {
    checkCount(keys.size(), "ztbFindFirstRecordSlice");
    void* handle = nullptr;
    if (c__ztbfindfirstrecordslice(database_, handle_, keyData(keys), &handle) == 0) {
      requireNotFound(keys, "ztbFindFirstRecordSlice");
    }
    return {database_, handle};
  }

  Record make(Maker maker, Keys keys, const char* operation) {
    checkCount(keys.size(), operation);
    void* handle = nullptr;
    if (maker(database_, handle_, keyData(keys), &handle) == 0) {
      for (const char* key : keys) {
        int number = 0;
        if (c__ztbfinduel(database_, key, &number) == 0) {
          detail::failLabel(database_, operation, key);
        }
      }
      detail::fail(database_, operation);
    }
    return {database_, handle};
  }
  void put(std::span<const int> numbers, const std::array<double, fieldCount>& values,
           int checkNumbers) {
    checkCount(numbers.size(), "ztbMergeRecordInt");
    detail::require(c__ztbmergerecordint(database_, handle_, numbers.data(), checkNumbers, 0,
                                         nullptr, 1, values.data()),
                    database_, "ztbMergeRecordInt");
  }
  void putElement(std::span<const int> numbers, const char* text, int checkNumbers) {
    checkCount(numbers.size(), "ztbMergeSetRecordInt");
    detail::require(
        c__ztbmergesetrecordint(database_, handle_, numbers.data(), checkNumbers, 0, nullptr, text),
        database_, "ztbMergeSetRecordInt");
  }

  ztbRec* database_;
  void* handle_;
  int dimension_ = 0;
  Type type_ = Type::set;
};

// The domain of one position. set is empty when only the name is known. For a domain given by an
// alias, name is the alias's and set the set that it stands for.
struct Domain {
  Text name;
  std::optional<Symbol> set;
};

inline std::vector<Domain> Symbol::domains() const {
  std::vector<Domain> result(keyCount());
  std::vector<void*> handles(keyCount());
  std::vector<char*> names(keyCount());
  for (std::size_t position = 0; position < keyCount(); ++position) {
    names[position] = result[position].name.buffer();
  }
  detail::require(c__ztbgetdomain(database_, handle_, dimension_, handles.data(), names.data()),
                  database_, "ztbGetDomain");
  for (std::size_t position = 0; position < keyCount(); ++position) {
    if (handles[position] != nullptr) {
      result[position].set = Symbol(database_, handles[position]);
    }
  }
  return result;
}

}  // namespace ztb::inline client

#endif  // ZTB_SYMBOL_HPP_
