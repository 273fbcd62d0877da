// Symbols: what they are, how their records are found, walked, added and overwritten.
#ifndef ZTB_SYMBOL_HPP_
#define ZTB_SYMBOL_HPP_

#include <ztb/ztb.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>
#include <ztb/cpp20.hpp>
#include <ztb/cube_check.hpp>
#include <ztb/error.hpp>
#include <ztb/handle_age.hpp>
#include <ztb/keys.hpp>
#include <ztb/label_check.hpp>
#include <ztb/record.hpp>
#include <ztb/store_guard.hpp>
#include <ztb/store_removal.hpp>
#include <ztb/text.hpp>
#include <ztb/walk.hpp>
#include <ztb/z_string.hpp>

#ifdef ZTB_CPP20

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
  vector = ZTB_STORAGE_VECTOR,  // least memory; takes new records behind all others only
  trie = ZTB_STORAGE_TRIE       // shared keys; records are added by a lookup in long lists
};

struct Domain;

// A symbol of a database: a plain value of a few words, valid as long as the database.
class Symbol {
 public:
  // Wraps a handle of the C interface. Throws if it is null.
  Symbol(ztbRec* database, void* handle)
      : place_(database, handle), removals_(detail::removalsOf(place_)) {}

  [[nodiscard]] int dimension() const noexcept { return place_.dimension; }
  [[nodiscard]] Type type() const noexcept { return static_cast<Type>(place_.type); }
  // Values of a record: five for variables and equations, one otherwise.
  [[nodiscard]] std::size_t valueCount() const noexcept { return place_.slotCount(); }
  [[nodiscard]] Text name() const { return textInfo(ZTB_SYMBOL_INFO_NAME); }
  [[nodiscard]] Text text() const { return textInfo(ZTB_SYMBOL_INFO_TEXT); }
  // Records of the symbol, which are read now if they were not yet. 0 for an alias.
  [[nodiscard]] int recordCount() const { return place_.recordCount(); }
  // Subtype of a variable or equation, and the caller's own word otherwise.
  [[nodiscard]] int userInfo() const { return place_.info(ZTB_SYMBOL_INFO_USER_INFO); }
  void setUserInfo(int userInfo) {
    require(c__ztbsetuserinfo(database(), handle(), userInfo), "ztbSetUserInfo");
  }
  // Number that the symbol was made with; one in a file counts from 1, any other from 0.
  [[nodiscard]] int number() const { return place_.info(ZTB_SYMBOL_INFO_NUMBER); }
  [[nodiscard]] Store store() const noexcept { return static_cast<Store>(place_.store); }

  // The domain of each position. The universe has none, which is a failure.
  [[nodiscard]] std::vector<Domain> domains() const;

  // Removes all records; those of a file that were not read yet never will be.
  void clear() {
    endHandles();
    detail::clearRecords(place_);
  }

  // Replaces the records by those of a symbol of this or another database, of the same dimension
  // and type; anything can be copied into a set. Labels and texts cross by their strings. An alias
  // gives the records of the set that it stands for. Throws before anything has changed when source
  // is this symbol, itself or through an alias, or cannot be read.
  void copyFrom(const Symbol& source) {
    const Symbol from = source.unaliased();
    if (from.handle() == unaliased().handle()) {
      throw Error("ztbCopySymbol", "Cannot copy symbol " + source.name().str() + " onto " +
                                       (source.handle() == handle() ? "itself" : name().str()) +
                                       ": the copy would empty it first");
    }
    static_cast<void>(from.recordCount());
    endHandles();
    require(c__ztbcopysymbol(database(), handle(), from.handle()), "ztbCopySymbol");
  }

  // What an alias stands for; any other symbol itself.
  [[nodiscard]] Symbol unaliased() const {
    if (type() != Type::alias) {
      return *this;
    }
    void* target = nullptr;
    require(c__ztbfindsymbol(database(), name().c_str(), &target), "ztbFindSymbol");
    return {database(), target};
  }

  // Walks over all records. An alias has none of its own: walk the set that it stands for.
  [[nodiscard]] Records records() const { return Records(first()); }
  [[nodiscard]] Rows rows() const { return {first(), keyCount(), rowValueCount()}; }

  // Walks over a slice: a label or anyLabel for each position, as arguments or, where their number
  // is known at run time only, as a range (see Keys). Labels that the database does not have match
  // nothing, blank ones among them. The records of the whole symbol behind the first match are
  // looked at.
  [[nodiscard]] Records slice(const Keys& keys) const { return Records(firstOf(keys.labels())); }
  [[nodiscard]] Rows sliceRows(const Keys& keys) const {
    return {firstOf(keys.labels()), keyCount(), rowValueCount()};
  }
  template <class... Labels>
  requires(std::convertible_to<const Labels&, ZString>&&...) [[nodiscard]] Records
      slice(const Labels&... labels) const {
    return Records(firstOf(detail::KeyArguments<sizeof...(Labels)>(labels...)));
  }
  template <class... Labels>
  requires(std::convertible_to<const Labels&, ZString>&&...) [[nodiscard]] Rows
      sliceRows(const Labels&... labels) const {
    return {firstOf(detail::KeyArguments<sizeof...(Labels)>(labels...)), keyCount(),
            rowValueCount()};
  }

  // The record with these labels, or nothing. No label is added; a blank one is never found.
  [[nodiscard]] std::optional<Record> find(const Keys& keys) const { return lookUp(keys.labels()); }
  template <class... Labels>
  requires(std::convertible_to<const Labels&, ZString>&&...)
      [[nodiscard]] std::optional<Record> find(const Labels&... labels) const {
    return lookUp(detail::KeyArguments<sizeof...(Labels)>(labels...));
  }

  // The record with this label, or with these labels: price["Milk"], holds[{"Milk", "iron"}].
  // Throws Error of kind notFound if there is none; nothing is added.
  template <std::convertible_to<ZString> Label>
  [[nodiscard]] Record operator[](const Label& label) const {
    return existing(detail::KeyArguments<1>(label));
  }
  [[nodiscard]] Record operator[](const Keys& keys) const { return existing(keys.labels()); }

  // Adds a record with the type's default values, and its labels where they are new. add throws
  // when the record exists, merge finds it with its values. Throws, with no label added, for a
  // label that is refused: too long, blank, empty (unless a file brought it), with a control
  // character or both kinds of quotes; for an alias; for a variable or equation whose subtype
  // has no default values. The vector takes records that come behind all others and
  // throws for those between.
  Record add(const Keys& keys) {
    return make("ztbAddRecord", keys.labels(), detail::Present::refused);
  }
  Record merge(const Keys& keys) {
    return make("ztbMergeRecord", keys.labels(), detail::Present::found);
  }
  template <class... Labels>
  requires(std::convertible_to<const Labels&, ZString>&&...) Record add(const Labels&... labels) {
    return make("ztbAddRecord", detail::KeyArguments<sizeof...(Labels)>(labels...),
                detail::Present::refused);
  }
  template <class... Labels>
  requires(std::convertible_to<const Labels&, ZString>&&...) Record merge(const Labels&... labels) {
    return make("ztbMergeRecord", detail::KeyArguments<sizeof...(Labels)>(labels...),
                detail::Present::found);
  }

  // Adds or overwrites a record of a parameter, variable or equation by label numbers, without a
  // handle. values are level, marginal, lower, upper, scale; a parameter uses the first.
  void put(std::span<const int> numbers, const std::array<double, fieldCount>& values) {
    put(numbers, values, 1);
  }
  void put(std::span<const int> numbers, double value) { put(numbers, {value, 0, 0, 0, 0}, 1); }

  // The same without a look at the numbers, the fastest way to write: each must be a label's. On
  // the vector and the trie store it looks all the same.
  void putUnchecked(std::span<const int> numbers, const std::array<double, fieldCount>& values) {
    put(numbers, values, 0);
  }
  void putUnchecked(std::span<const int> numbers, double value) {
    put(numbers, {value, 0, 0, 0, 0}, 0);
  }

  // Adds or overwrites a record of a set by label numbers, with a text of at most
  // ZTB_MAX_TEXT_LENGTH chars, or null for none (a record that exists then keeps its text).
  void putElement(std::span<const int> numbers, const ZString& text) {
    putElement(numbers, text.c_str(), 1);
  }
  void putElementUnchecked(std::span<const int> numbers, const ZString& text) {
    putElement(numbers, text.c_str(), 0);
  }

  // Removes the record with these labels; false if there is none. On the vector and the trie store
  // this takes time for each record of the symbol, and handles on the symbol throw from then on.
  bool remove(const Keys& keys) { return removeOn(keys.labels()); }
  template <class... Labels>
  requires(std::convertible_to<const Labels&, ZString>&&...) bool remove(const Labels&... labels) {
    return removeOn(detail::KeyArguments<sizeof...(Labels)>(labels...));
  }

  // Removes all records for which chosen(Row) is true, in one pass, and tells how many they were.
  // None is removed if chosen throws. On the vector and the trie store, handles on the symbol throw
  // from then on.
  template <class Choose>
  std::size_t removeIf(Choose&& chosen) {
    std::vector<bool> keep;
    for (const Row row : rows()) {
      keep.push_back(!chosen(row));
    }
    const auto removed = static_cast<std::size_t>(std::ranges::count(keep, false));
    if (removed > 0) {
      endHandles();
      detail::removeUnmarked(place_, keep);
    }
    return removed;
  }

  // One value of each record, in the order of the records: the fastest way to read numbers. cells
  // has recordCount() places, at least one. Sets, scalars and the universe are refused.
  void copyValues(std::span<double> cells, Field field = Field::level) const {
    constexpr const char* operation = "ztbDenseSymbolToDenseArray";
    detail::refuseSet(place_, operation);
    std::vector<int> sizes(std::max<std::size_t>(keyCount(), 1), 1);
    sizes[0] = detail::cellCount(place_, operation, cells.size());
    require(c__ztbdensesymboltodensearray(database(), cells.data(), sizes.data(), handle(),
                                          static_cast<int>(field)),
            operation);
  }

  // Replaces the records of a parameter by one for each cell, zeros included: the fastest way to
  // write. domains holds a one-dimensional set for each position; cube is row-major over their
  // labels, the last position fastest. What is refused changes nothing.
  void assignCube(std::span<const Symbol> domains, std::span<const double> cube) {
    constexpr const char* operation = "ztbDenseArrayToSymbol";
    detail::requireParameter(place_, operation);
    checkCount(domains.size(), operation);
    std::vector<detail::SymbolPlace> places;
    std::vector<void*> handles;
    for (const Symbol& domain : domains) {
      places.push_back(domain.place_);
      handles.push_back(domain.handle());
    }
    const std::vector<int> sizes = detail::cubeSizes(place_, operation, places, cube.size());
    endHandles();
    require(
        c__ztbdensearraytosymbol(database(), handle(), handles.data(), cube.data(), sizes.data()),
        operation);
  }

  // The handles of the C interface.
  [[nodiscard]] void* handle() const noexcept { return place_.handle; }
  [[nodiscard]] ztbRec* database() const noexcept { return place_.database; }

  // Whether both are the same symbol of the same database.
  friend bool operator==(const Symbol& left, const Symbol& right) noexcept {
    return left.handle() == right.handle();
  }

 private:
  friend class Record;

  [[nodiscard]] std::size_t keyCount() const noexcept { return place_.positions(); }
  // The walk over the universe fills no values.
  [[nodiscard]] std::size_t rowValueCount() const {
    return type() == Type::set && number() == -1 ? 0 : valueCount();
  }

  [[nodiscard]] Text textInfo(int key) const {
    Text text;
    int value = 0;
    require(c__ztbsymbolinfo(database(), handle(), key, &value, nullptr, text.buffer()),
            "ztbSymbolInfo");
    return text;
  }

  void require(int result, const char* operation) const {
    detail::require(result, database(), operation);
  }
  void checkCount(std::size_t count, const char* operation) const {
    if (count != keyCount()) [[unlikely]] {
      throw Error(operation, std::to_string(count) + " keys given, symbol " + name().str() +
                                 " has " + std::to_string(dimension()) + " positions");
    }
  }

  // Handles on records that stood in the vector or the trie do not know where they stand now.
  void endHandles() const noexcept {
    if (removals_ != nullptr) {
      ++*removals_;
    }
  }

  using Standing = Record::Standing;
  [[nodiscard]] Record own(void* record, Standing standing = Standing::inSymbol) const noexcept {
    return {place_, record, detail::HandleAge(removals_), standing};
  }
  [[nodiscard]] Record first() const {
    return own(recordCount() > 0 ? detail::firstRecord(place_).release() : nullptr);
  }
  [[nodiscard]] Record firstOf(detail::KeyLabels keys) const {
    constexpr const char* operation = "ztbFindFirstRecordSlice";
    checkCount(keys.size(), operation);
    void* record = nullptr;
    const bool blank = std::ranges::any_of(keys, [](const char* key) {
      return key != nullptr && detail::isBlank(key) && key[1] != '\0';
    });
    if (!blank &&
        c__ztbfindfirstrecordslice(database(), handle(), detail::keyData(keys), &record) == 0) {
      detail::requireNotFound(database(), operation, keys);
    }
    return own(record, Standing::inSlice);
  }

  [[nodiscard]] std::optional<Record> lookUp(detail::KeyLabels keys) const {
    checkCount(keys.size(), "ztbFindRecord");
    detail::OwnedRecord found = detail::findRecord(place_, keys);
    if (!found) {
      return std::nullopt;
    }
    return own(found.release());
  }
  [[nodiscard]] Record existing(detail::KeyLabels keys) const {
    if (std::optional<Record> found = lookUp(keys)) [[likely]] {
      return std::move(*found);
    }
    throw Error("ztbFindRecord",
                "Cannot find record " + detail::keyText(keys) + " in Symbol " + place_.name(),
                ErrorKind::notFound);
  }
  bool removeOn(detail::KeyLabels keys) {
    checkCount(keys.size(), "ztbDeleteRecord");
    detail::OwnedRecord found = detail::findRecord(place_, keys);
    if (!found) {
      return false;
    }
    endHandles();
    detail::removeRecord(place_, found.get());
    return true;
  }
  Record make(const char* operation, detail::KeyLabels keys, detail::Present present) {
    checkCount(keys.size(), operation);
    return own(detail::makeRecord(place_, operation, keys, present).release());
  }
  void put(std::span<const int> numbers, const std::array<double, fieldCount>& values,
           int checkNumbers) {
    constexpr const char* operation = "ztbMergeRecordInt";
    checkCount(numbers.size(), operation);
    detail::requireOwnRecords(place_, operation);
    if (place_.onMap()) {
      require(c__ztbmergerecordint(database(), handle(), numbers.data(), checkNumbers, 0, nullptr,
                                   1, values.data()),
              operation);
    } else {
      detail::putRecord(place_, operation, numbers, {.values = values.data()});
    }
  }
  void putElement(std::span<const int> numbers, const char* text, int checkNumbers) {
    constexpr const char* operation = "ztbMergeSetRecordInt";
    checkCount(numbers.size(), operation);
    detail::requireOwnRecords(place_, operation);
    // What is no set is refused by the library's own call.
    if (place_.onMap() || place_.type != ZTB_SET) {
      require(c__ztbmergesetrecordint(database(), handle(), numbers.data(), checkNumbers, 0,
                                      nullptr, text),
              operation);
    } else {
      detail::putRecord(place_, operation, numbers, {.text = text});
    }
  }

  detail::SymbolPlace place_;
  std::uint64_t* removals_;
};

inline Record::Record(const Symbol& symbol, void* handle) noexcept : Record(symbol.own(handle)) {}

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
  require(c__ztbgetdomain(database(), handle(), dimension(), handles.data(), names.data()),
          "ztbGetDomain");
  for (std::size_t position = 0; position < keyCount(); ++position) {
    if (handles[position] != nullptr) {
      result[position].set = Symbol(database(), handles[position]);
    }
  }
  return result;
}

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_SYMBOL_HPP_
