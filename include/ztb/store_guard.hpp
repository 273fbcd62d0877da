// Records on the vector and the trie store, added, changed and removed as on the tree map, or
// refused before anything has changed. Wrappers stand on this; the exported names themselves do on
// these stores what docs/reference/stores.md tells.
//
// On the tree map each function costs a branch more than the library's own call. On the others:
//   vector  a look at the last record, and a lookup for a key that is not behind it. A key between
//           others is refused. Removing moves all records behind up by one.
//   trie    a lookup. Where the trie cannot unlink a record, removing it writes all others anew;
//           the memory of the old ones comes back when the symbol ends, and running out of memory
//           on the way loses records.
//   scalar  a look at its record, on each store.
#ifndef ZTB_STORE_GUARD_HPP_
#define ZTB_STORE_GUARD_HPP_

#include <ztb/ztb.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>
#include <ztb/label_check.hpp>
#include <ztb/text.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client::detail {

inline constexpr std::size_t maxSlots = ZTB_SCALE + 1;
using Slots = std::array<double, maxSlots>;

// A symbol and what decides how its records are handled.
struct SymbolPlace {
  // Throws if symbol is null.
  SymbolPlace(ztbRec* inDatabase, void* symbol) : database(inDatabase), handle(symbol) {
    require(c__ztbsymboldim(database, handle, &dimension), database, "ztbSymbolDim");
    require(c__ztbsymboltype(database, handle, &type), database, "ztbSymbolType");
    store = info(ZTB_SYMBOL_INFO_STORAGE);
  }

  [[nodiscard]] int info(int key) const {
    int value = 0;
    require(c__ztbsymbolinfo(database, handle, key, &value, nullptr, nullptr), database,
            "ztbSymbolInfo");
    return value;
  }
  [[nodiscard]] int recordCount() const { return info(ZTB_SYMBOL_INFO_RECORD_COUNT); }
  [[nodiscard]] std::string name() const {
    Text text;
    require(
        c__ztbsymbolinfo(database, handle, ZTB_SYMBOL_INFO_NAME, nullptr, nullptr, text.buffer()),
        database, "ztbSymbolInfo");
    return text.str();
  }
  [[nodiscard]] std::size_t positions() const noexcept {
    return static_cast<std::size_t>(dimension);
  }
  [[nodiscard]] std::size_t slotCount() const noexcept {
    return type == ZTB_VARIABLE || type == ZTB_EQUATION ? maxSlots : 1;
  }
  [[nodiscard]] bool onMap() const noexcept { return store == ZTB_STORAGE_TREE_MAP; }

  ztbRec* database;
  void* handle;
  int dimension = 0;
  int type = ZTB_SET;
  int store = ZTB_STORAGE_TREE_MAP;
};

// Owns a record handle; may hold none.
class OwnedRecord {
 public:
  OwnedRecord() noexcept = default;
  OwnedRecord(ztbRec* database, void* record) noexcept : database_(database), record_(record) {}
  OwnedRecord(OwnedRecord&& other) noexcept
      : database_(other.database_), record_(std::exchange(other.record_, nullptr)) {}
  OwnedRecord& operator=(OwnedRecord&& other) noexcept {
    std::swap(database_, other.database_);
    std::swap(record_, other.record_);
    return *this;
  }
  OwnedRecord(const OwnedRecord&) = delete;
  OwnedRecord& operator=(const OwnedRecord&) = delete;
  ~OwnedRecord() {
    if (record_ != nullptr) {
      c__ztbfreesymboliterator(database_, record_);
    }
  }

  explicit operator bool() const noexcept { return record_ != nullptr; }
  [[nodiscard]] void* get() const noexcept { return record_; }
  [[nodiscard]] void* release() noexcept { return std::exchange(record_, nullptr); }

 private:
  ztbRec* database_ = nullptr;
  void* record_ = nullptr;
};

// What a record is to hold: values (five, whatever the type), a text, or its type's defaults.
struct Content {
  [[nodiscard]] bool empty() const noexcept { return values == nullptr && text == nullptr; }
  const double* values = nullptr;
  const char* text = nullptr;
};

// The C interface takes arrays of labels without the inner const.
inline const char** keyData(KeyLabels labels) noexcept {
  return const_cast<const char**>(labels.data());
}

// ---- handles and keys ---------------------------------------------------------------------------

// REQUIRES: the symbol has records.
inline OwnedRecord firstRecord(const SymbolPlace& place) {
  void* record = nullptr;
  require(c__ztbfindfirstrecord(place.database, place.handle, &record), place.database,
          "ztbFindFirstRecord");
  return {place.database, record};
}
inline OwnedRecord lastRecord(const SymbolPlace& place) {
  void* record = nullptr;
  require(c__ztbfindlastrecord(place.database, place.handle, &record), place.database,
          "ztbFindLastRecord");
  return {place.database, record};
}

// The answer of a question or step; a failure, which the library tells by its kind alone, throws.
template <class Ask>
bool answer(ztbRec* database, const char* operation, Ask&& ask) {
  const auto failed = [&] {
    const ErrorKind kind = kindOf(database);
    return kind == ErrorKind::internal || kind == ErrorKind::outOfMemory;
  };
  if (ask()) {
    return true;
  }
  if (failed()) {
    // The kind may be that of an older failure: ask again with one of our own there.
    int none = 0;
    c__ztbinfo(database, -1, &none, nullptr, nullptr);
    if (ask()) {
      return true;
    }
    if (failed()) {
      fail(database, operation);
    }
  }
  return false;
}

inline KeyNumbers keysOf(const SymbolPlace& place, void* record) {
  KeyNumbers numbers{};
  Slots values{};
  require(
      c__ztbgetrecordraw(place.database, record, place.dimension, numbers.data(), values.data()),
      place.database, "ztbGetRecordRaw");
  return numbers;
}

// Labels of a key that is given by numbers, in both forms in which they are used.
class LabelsOf {
 public:
  // Throws for a number that no label has.
  LabelsOf(const SymbolPlace& place, std::span<const int> numbers) : count_(numbers.size()) {
    for (std::size_t position = 0; position < count_; ++position) {
      require(c__ztbgetuelbyindex(place.database, numbers[position], texts_[position].buffer()),
              place.database, "ztbGetUelByIndex");
      pointers_[position] = texts_[position].c_str();
    }
  }
  LabelsOf(const LabelsOf&) = delete;
  LabelsOf& operator=(const LabelsOf&) = delete;
  ~LabelsOf() = default;

  operator KeyLabels() const noexcept { return {pointers_.data(), count_}; }

 private:
  std::array<Text, ZTB_MAX_DIMENSION> texts_;
  std::array<const char*, ZTB_MAX_DIMENSION> pointers_{};
  std::size_t count_;
};

// A key in messages, such as ("a","b"), spelled as the library does.
inline std::string keyText(KeyLabels labels) {
  std::string text = "(\"";
  for (std::size_t position = 0; position < labels.size(); ++position) {
    text += position == 0 ? "" : ",\"";
    text += labels[position];
    text += '"';
  }
  return text + ')';
}

// ---- finding ------------------------------------------------------------------------------------

// The record with these labels, or no handle. No label is added; a blank one is never found.
inline OwnedRecord findRecord(const SymbolPlace& place, KeyLabels labels) {
  if (anyBlank(labels)) [[unlikely]] {
    return {};
  }
  // A lookup in the vector does not find the record of a scalar.
  if (place.dimension == 0) {
    return place.recordCount() > 0 ? firstRecord(place) : OwnedRecord();
  }
  void* record = nullptr;
  if (c__ztbfindrecord(place.database, place.handle, keyData(labels), &record) == 0) {
    requireNotFound(place.database, "ztbFindRecord", labels);
  }
  return {place.database, record};
}

// ---- adding -------------------------------------------------------------------------------------

// Throws unless records of this symbol can be handled here: an alias has none of its own.
inline void requireOwnRecords(const SymbolPlace& place, const char* operation) {
  if (place.type == ZTB_ALIAS) {
    throw Error(operation, "Symbol " + place.name() + " is an alias, which has no records");
  }
  if (place.dimension < 0 || place.dimension > ZTB_MAX_DIMENSION) {
    throw Error(operation, "Symbol " + place.name() + " has more positions than a key has room");
  }
}

[[noreturn]] inline void refuseOrder(const SymbolPlace& place, const char* operation,
                                     KeyLabels labels, const KeyNumbers& last) {
  throw Error(operation, "records reach this store in ascending order; " + keyText(labels) +
                             " stands before the last record " +
                             keyText(LabelsOf(place, {last.data(), place.positions()})) +
                             " of symbol " + place.name() +
                             "; the map store takes records in any order");
}

// How a key stands to the last record of the symbol: below 0 before it, 0 on it, above 0 behind it
// or the symbol is empty. The keys of that record go to last.
inline int orderToLast(const SymbolPlace& place, std::span<const int> numbers, int count,
                       KeyNumbers& last) {
  if (count == 0) {
    return 1;
  }
  last = keysOf(place, lastRecord(place).get());
  for (std::size_t position = 0; position < numbers.size(); ++position) {
    if (numbers[position] != last[position]) {
      // New labels get higher numbers than all others.
      return numbers[position] == newLabel || numbers[position] > last[position] ? 1 : -1;
    }
  }
  return 0;
}

// The record in the vector with these labels. No handle when a new one comes behind all others;
// throws when it would not.
inline OwnedRecord findInVector(const SymbolPlace& place, const char* operation, KeyLabels labels,
                                int count) {
  KeyNumbers numbers{};
  for (std::size_t position = 0; position < labels.size(); ++position) {
    numbers[position] = findLabel(place.database, operation, labels[position]);
  }
  KeyNumbers last{};
  const int order = orderToLast(place, {numbers.data(), labels.size()}, count, last);
  if (order > 0) {
    return {};
  }
  OwnedRecord found = order == 0 ? lastRecord(place) : findRecord(place, labels);
  if (!found) {
    refuseOrder(place, operation, labels, last);
  }
  return found;
}

// Stores a record by the library's own call; with wanted, a handle is made.
inline OwnedRecord storeDirectly(const SymbolPlace& place, std::span<const int> numbers,
                                 const Content& content, bool wanted) {
  void* record = nullptr;
  if (place.type == ZTB_SET && content.values == nullptr) {
    require(c__ztbmergesetrecordint(place.database, place.handle, numbers.data(), 1, wanted ? 1 : 0,
                                    &record, content.text),
            place.database, "ztbMergeSetRecordInt");
  } else {
    require(c__ztbmergerecordint(place.database, place.handle, numbers.data(), 1, wanted ? 1 : 0,
                                 &record, content.values == nullptr ? 0 : 1, content.values),
            place.database, "ztbMergeRecordInt");
  }
  return {place.database, record};
}

inline void writeContent(const SymbolPlace& place, void* record, const Content& content) {
  static constexpr std::array setters = {c__ztbsetlevel, c__ztbsetmarginal, c__ztbsetlower,
                                         c__ztbsetupper, c__ztbsetscale};
  if (content.text != nullptr) {
    require(c__ztbsetelemtext(place.database, record, content.text), place.database,
            "ztbSetElemText");
  }
  for (std::size_t slot = 0; content.values != nullptr && slot < place.slotCount(); ++slot) {
    require(setters[slot](place.database, record, content.values[slot]), place.database,
            "ztbSetLevel");
  }
}

// Stores the first record of an empty trie. A cleared trie still remembers its last record and
// would attach others behind that; overwriting makes it forget.
inline OwnedRecord storeFirstInTrie(const SymbolPlace& place, std::span<const int> numbers,
                                    const Content& content, bool wanted) {
  static constexpr Slots zeros{};
  require(c__ztbclearsymbol(place.database, place.handle), place.database, "ztbClearSymbol");
  if (!content.empty()) {
    return storeDirectly(place, numbers, content, wanted);
  }
  if (place.type == ZTB_SET) {
    return storeDirectly(place, numbers, {.text = ""}, wanted);
  }
  OwnedRecord record = storeDirectly(place, numbers, {.values = zeros.data()}, wanted);
  try {
    // The last record stored again without values gets those of its type.
    storeDirectly(place, numbers, {}, false);
  } catch (...) {
    c__ztbclearsymbol(place.database, place.handle);
    throw;
  }
  return record;
}

// Whether a record that exists is refused or handed out.
enum class Present { refused, found };

// Throws where the type has no defaults: those of a variable or equation go by its subtype, which
// may be any number.
inline void requireDefaults(const SymbolPlace& place, const char* operation) {
  static constexpr int lastOfVariables = 9;
  static constexpr int lastOfEquations = 6;
  if (place.type != ZTB_VARIABLE && place.type != ZTB_EQUATION) {
    return;
  }
  const int subtype = place.info(ZTB_SYMBOL_INFO_USER_INFO);
  const int last = place.type == ZTB_VARIABLE ? lastOfVariables : lastOfEquations;
  if (subtype < 0 || subtype > last) {
    throw Error(operation, "subtype " + std::to_string(subtype) + " of symbol " + place.name() +
                               " is outside [0," + std::to_string(last) + "]");
  }
}

// Adds a record with the defaults of its type, and its labels where they are new. Throws before
// anything has changed, labels included.
inline OwnedRecord makeRecord(const SymbolPlace& place, const char* operation, KeyLabels labels,
                              Present present) {
  requireOwnRecords(place, operation);
  requireLabels(place.database, operation, labels);
  requireDefaults(place, operation);
  void* record = nullptr;
  if (place.onMap() && place.dimension > 0) {
    const auto make = present == Present::found ? c__ztbmergerecord : c__ztbaddrecord;
    require(make(place.database, place.handle, keyData(labels), &record), place.database,
            operation);
    return {place.database, record};
  }
  const int count = place.recordCount();
  OwnedRecord found = place.store == ZTB_STORAGE_VECTOR
                          ? findInVector(place, operation, labels, count)
                          : findRecord(place, labels);
  if (found) {
    if (present == Present::refused) {
      throw Error(operation,
                  "Record " + keyText(labels) + " exists already for symbol " + place.name(),
                  ErrorKind::exists);
    }
    return found;
  }
  if (place.store == ZTB_STORAGE_TRIE && place.dimension > 0 && count == 0) {
    KeyNumbers numbers{};
    for (std::size_t position = 0; position < labels.size(); ++position) {
      numbers[position] = mergeLabel(place.database, operation, labels[position]);
    }
    return storeFirstInTrie(place, {numbers.data(), labels.size()}, {}, true);
  }
  require(c__ztbmergerecord(place.database, place.handle, keyData(labels), &record), place.database,
          operation);
  return {place.database, record};
}

// Whether the library stores a record with these numbers and content on any store.
inline bool isStorable(const SymbolPlace& place, std::span<const int> numbers,
                       const Content& content) {
  int labelCount = 0;
  require(c__ztbinfo(place.database, ZTB_INFO_UEL_COUNT, &labelCount, nullptr, nullptr),
          place.database, "ztbInfo");
  const bool labels =
      std::ranges::all_of(numbers, [&](int number) { return number >= 1 && number <= labelCount; });
  const bool fits = content.text == nullptr || std::strlen(content.text) <= ZTB_MAX_TEXT_LENGTH;
  return labels && fits && (place.type == ZTB_SET) == (content.values == nullptr);
}

// Gives a variable or equation a subtype that has default values while it lives: records are stored
// with these before their own values follow.
class AnySubtype {
 public:
  explicit AnySubtype(const SymbolPlace& place)
      : place_(place), subtype_(place.info(ZTB_SYMBOL_INFO_USER_INFO)) {
    set(0);
  }
  AnySubtype(const AnySubtype&) = delete;
  AnySubtype& operator=(const AnySubtype&) = delete;
  ~AnySubtype() { set(subtype_); }

 private:
  void set(int subtype) { c__ztbsetuserinfo(place_.database, place_.handle, subtype); }

  const SymbolPlace& place_;
  int subtype_;
};

// Adds or overwrites a record by label numbers; without content, one that exists stays as it is.
// Not for the tree map, whose own calls do this.
inline void putRecord(const SymbolPlace& place, const char* operation, std::span<const int> numbers,
                      const Content& content) {
  requireOwnRecords(place, operation);
  if (place.dimension == 0 || !isStorable(place, numbers, content)) {
    storeDirectly(place, numbers, content, false);
    return;
  }
  const int count = place.recordCount();
  const bool inVector = place.store == ZTB_STORAGE_VECTOR;
  KeyNumbers last{};
  const int order = inVector ? orderToLast(place, numbers, count, last) : -1;
  if (count == 0 && !inVector) {
    storeFirstInTrie(place, numbers, content, false);
    return;
  }
  bool present = order == 0;
  if (order < 0) {
    const LabelsOf labels(place, numbers);
    present = static_cast<bool>(findRecord(place, labels));
    if (!present && inVector) {
      refuseOrder(place, operation, labels, last);
    }
  }
  if (present) {
    if (!content.empty()) {
      storeDirectly(place, numbers, content, false);
    }
  } else if (inVector && count != 1) {
    storeDirectly(place, numbers, content, false);
  } else {
    // Given with its content, a key behind the only row of a vector would overwrite that row, and
    // one that a trie does not hold another record.
    std::optional<AnySubtype> subtype;
    if (!content.empty()) {
      subtype.emplace(place);
    }
    const OwnedRecord record = storeDirectly(place, numbers, {}, true);
    writeContent(place, record.get(), content);
  }
}

}  // namespace ztb::inline client::detail

#endif  // ZTB_CPP20

#endif  // ZTB_STORE_GUARD_HPP_
