// C++20 wrapper of ztb/rxf.h: exchange files without a database. Programs that use it link
// librxfcclib64.so and nothing else.
//
//   const ztb::RxfFile file("diet.rxf");
//   ztb::RxfRecords records(file, file.symbol("price"));
//   while (records.next()) {
//     const std::span<const int> food = records.keys(0);
//     const std::span<const double> price = records.values(0);
//     for (std::size_t i = 0; i < records.size(); ++i) {
//       std::cout << file.label(food[i]) << ' ' << price[i] << '\n';
//     }
//   }
//
// What is wrong with a file is thrown as ztb::Error, damage of records as ztb::RxfDamage with its
// place. Views and references stay valid as long as the RxfFile.
#ifndef ZTB_RXF_HPP_
#define ZTB_RXF_HPP_

#include <ztb/rxf.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>
#include <ztb/keys.hpp>
#include <ztb/symbol.hpp>
#include <ztb/z_string.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

namespace detail {

// The kind of the latest failure of the functions of ztb/rxf.h in this thread.
inline ErrorKind rxfErrorKind() noexcept {
  return static_cast<ErrorKind>(ztbRxfErrorKind());
}

}  // namespace detail

// Records of a file that cannot be handed out: what() names file, symbol, block and reason.
class RxfDamage : public Error {
 public:
  RxfDamage(const std::string& text, ErrorKind kind, int block, unsigned long long offset)
      : Error("ztbRxfNextBlock", text, kind), block_(block), offset_(offset) {}

  // The number of the block, from 1, and the offset of its head in the file.
  [[nodiscard]] int block() const noexcept { return block_; }
  [[nodiscard]] unsigned long long offset() const noexcept { return offset_; }

 private:
  int block_;
  unsigned long long offset_;
};

// What a file tells of a symbol.
struct RxfSymbol {
  int number = 0;  // from 1 in the order of the file; 0 is the universe, "*"
  std::string_view name;
  std::string_view text;
  Type type = Type::set;
  int dimension = 0;
  int valueCount = 1;
  int userInfo = 0;
  int recordCount = 0;                    // of an alias that of its set
  int domainKind = 0;                     // ZTB_RXF_DOMAIN_NONE and so on
  int aliasTarget = -1;                   // of an alias the number of its set
  std::vector<std::string_view> domains;  // a name for each position, "*" for the universe

  [[nodiscard]] bool isAlias() const noexcept { return type == Type::alias; }
  [[nodiscard]] bool isUniverse() const noexcept { return number == 0; }
};

// An open file.
class RxfFile {
 public:
  explicit RxfFile(const ZString& path) {
    std::array<char, messageSize> message{};
    if (ztbRxfOpen(&handle_, path.c_str(), message.data(), messageSize) == 0) {
      throw Error("ztbRxfOpen", message.data(), detail::rxfErrorKind());
    }
  }
  RxfFile(RxfFile&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  RxfFile& operator=(RxfFile&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  RxfFile(const RxfFile&) = delete;
  RxfFile& operator=(const RxfFile&) = delete;
  ~RxfFile() { ztbRxfClose(&handle_); }

  [[nodiscard]] int version() const { return ztbRxfVersion(own()); }
  [[nodiscard]] std::string_view producer() const { return ztbRxfProducer(own()); }
  // Length in bytes.
  [[nodiscard]] unsigned long long size() const { return ztbRxfSize(own()); }

  // Labels are numbered from 1.
  [[nodiscard]] int labelCount() const { return ztbRxfLabelCount(own()); }
  [[nodiscard]] std::string_view label(int number) const {
    return existing(ztbRxfLabel(own(), number), "ztbRxfLabel", "label", number);
  }
  // The case of ASCII letters does not matter, here and for names.
  [[nodiscard]] std::optional<int> findLabel(const ZString& label) const {
    const int number = ztbRxfFindLabel(own(), label.c_str());
    return number == 0 ? std::nullopt : std::optional(number);
  }

  // Texts of set elements, from 1; an element's value is the number of its text, 0 for none.
  [[nodiscard]] int textCount() const { return ztbRxfTextCount(own()); }
  [[nodiscard]] std::string_view text(int number) const {
    return existing(ztbRxfText(own(), number), "ztbRxfText", "text", number);
  }

  // Symbols without the universe.
  [[nodiscard]] int symbolCount() const { return ztbRxfSymbolCount(own()); }
  [[nodiscard]] RxfSymbol symbol(int number) const {
    ztbRxfSymbolInfo info;
    if (ztbRxfSymbol(own(), number, &info) == 0) {
      throw Error("ztbRxfSymbol", "No symbol has the number " + std::to_string(number),
                  ErrorKind::notFound);
    }
    RxfSymbol symbol{number,
                     info.name,
                     info.text,
                     static_cast<Type>(info.type),
                     info.dimension,
                     info.valueCount,
                     info.userInfo,
                     info.recordCount,
                     info.domainKind,
                     info.aliasTarget,
                     {}};
    for (int position = 0; position < info.dimension; ++position) {
      symbol.domains.emplace_back(ztbRxfDomain(own(), number, position));
    }
    return symbol;
  }
  [[nodiscard]] std::optional<RxfSymbol> findSymbol(const ZString& name) const {
    const int number = ztbRxfFindSymbol(own(), name.c_str());
    return number < 0 ? std::nullopt : std::optional(symbol(number));
  }
  [[nodiscard]] RxfSymbol operator[](const ZString& name) const { return symbol(name); }
  [[nodiscard]] RxfSymbol symbol(const ZString& name) const {
    if (const std::optional<RxfSymbol> found = findSymbol(name)) return *found;
    throw Error("ztbRxfFindSymbol", "Cannot find symbol " + std::string(name.c_str()),
                ErrorKind::notFound);
  }
  // All, in the order of the file.
  [[nodiscard]] std::vector<RxfSymbol> symbols() const {
    std::vector<RxfSymbol> all;
    for (int number = 1; number <= symbolCount(); ++number) all.push_back(symbol(number));
    return all;
  }

  // Bytes that the records of a symbol take in a database, about.
  [[nodiscard]] unsigned long long memory(const RxfSymbol& symbol, Store store = Store::map) const {
    return ztbRxfMemory(own(), symbol.number, static_cast<int>(store));
  }

  [[nodiscard]] ztbRxfFile* handle() const { return own(); }

 private:
  friend class RxfRecords;
  // Holds every message of the library.
  static constexpr int messageSize = 512;

  [[nodiscard]] ztbRxfFile* own() const {
    return detail::notMoved(handle_, "ztb::RxfFile", "This file was");
  }
  static std::string_view existing(const char* text, const char* operation, const char* what,
                                   int number) {
    if (text == nullptr) {
      throw Error(operation,
                  std::string("No ") + what + " has the number " + std::to_string(number),
                  ErrorKind::notFound);
    }
    return text;
  }

  ztbRxfFile* handle_ = nullptr;
};

// The records of one symbol, block by block. Used by one thread at a time.
class RxfRecords {
 public:
  // Those of an alias are its set's. The file may end before.
  RxfRecords(const RxfFile& file, const RxfSymbol& symbol)
      : dimension_(symbol.dimension), valueCount_(symbol.valueCount) {
    std::array<char, RxfFile::messageSize> message{};
    if (ztbRxfRecordsOpen(&handle_, file.handle(), symbol.number, message.data(),
                          RxfFile::messageSize) == 0) {
      throw Error("ztbRxfRecordsOpen", message.data(), detail::rxfErrorKind());
    }
  }
  RxfRecords(RxfRecords&& other) noexcept
      : dimension_(other.dimension_),
        valueCount_(other.valueCount_),
        size_(std::exchange(other.size_, 0)),
        handle_(std::exchange(other.handle_, nullptr)) {}
  RxfRecords& operator=(RxfRecords&& other) noexcept {
    std::swap(dimension_, other.dimension_);
    std::swap(valueCount_, other.valueCount_);
    std::swap(size_, other.size_);
    std::swap(handle_, other.handle_);
    return *this;
  }
  RxfRecords(const RxfRecords&) = delete;
  RxfRecords& operator=(const RxfRecords&) = delete;
  ~RxfRecords() { ztbRxfRecordsClose(&handle_); }

  // Goes to the next block; false behind the last. Throws RxfDamage, and again with every call,
  // when it cannot be handed out.
  bool next() {
    const int count = ztbRxfNextBlock(own());
    size_ = count < 0 ? 0 : static_cast<std::size_t>(count);
    if (count < 0) {
      throw RxfDamage(ztbRxfMessage(own()), detail::rxfErrorKind(), blockNumber(), blockOffset());
    }
    return count > 0;
  }

  // Goes behind the next `count` blocks, of which only the heads are read, and gives how many there
  // were. Throws as next() does.
  int skip(int count) {
    const int skipped = ztbRxfSkipBlocks(own(), count);
    size_ = 0;
    if (skipped < 0) {
      throw RxfDamage(ztbRxfMessage(own()), detail::rxfErrorKind(), blockNumber(), blockOffset());
    }
    return skipped;
  }

  // The present block: its records, and of these the label numbers at a position and the values of
  // a slot, from 0; none of one that there is not. Valid until next() or rewind().
  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  [[nodiscard]] std::span<const int> keys(int position) const {
    const int* keys = ztbRxfKeys(own(), position);
    return {keys, keys == nullptr ? 0 : size_};
  }
  [[nodiscard]] std::span<const double> values(int slot) const {
    const double* values = ztbRxfValues(own(), slot);
    return {values, values == nullptr ? 0 : size_};
  }
  [[nodiscard]] int dimension() const noexcept { return dimension_; }
  [[nodiscard]] int valueCount() const noexcept { return valueCount_; }

  // Back to the first block.
  void rewind() {
    ztbRxfRewind(own());
    size_ = 0;
  }

  // Goes on behind a damaged block, which is left out; false when nothing behind it can be found.
  bool skipDamage() { return ztbRxfSkipDamage(own()) != 0; }

  // Where the present block is; 0 before the first.
  [[nodiscard]] int blockNumber() const { return ztbRxfBlockNumber(own()); }
  [[nodiscard]] unsigned long long blockOffset() const { return ztbRxfBlockOffset(own()); }

 private:
  [[nodiscard]] ztbRxfRecords* own() const {
    return detail::notMoved(handle_, "ztb::RxfRecords", "These records were");
  }

  int dimension_;
  int valueCount_;
  std::size_t size_ = 0;
  ztbRxfRecords* handle_ = nullptr;
};

// A file that is written: labels, symbols each with its records, texts, in this order. Without
// publish(), and when it throws, nothing is published and what was there stays.
class RxfOutput {
 public:
  explicit RxfOutput(const ZString& path, const ZString& producer = "") {
    std::array<char, messageSize> message{};
    if (ztbRxfCreate(&handle_, path.c_str(), producer.c_str(), message.data(), messageSize) == 0) {
      throw Error("ztbRxfCreate", message.data(), detail::rxfErrorKind());
    }
  }
  RxfOutput(const RxfOutput&) = delete;
  RxfOutput& operator=(const RxfOutput&) = delete;
  ~RxfOutput() { ztbRxfDiscard(&handle_); }

  // Each of these gives false, and a text the number 0, for what is refused; publish() tells why.
  bool addLabel(const ZString& label) { return ztbRxfAddLabel(handle_, label.c_str()) != 0; }
  // See ztbRxfAddSymbol; `domains` has a name for each position, and of an alias its set.
  bool addSymbol(const ztbRxfSymbolInfo& info, const Keys& domains) {
    const detail::KeyLabels given = domains.labels();
    std::vector<const char*> names(given.begin(), given.end());
    // The names that are missing, and one at least: a scalar's address is handed on all the same.
    constexpr std::size_t most = ZTB_MAX_DIMENSION;
    names.resize(std::max(names.size(), most), nullptr);
    return ztbRxfAddSymbol(handle_, &info, names.data()) != 0;
  }
  // Columns of `count` records, at most 2147483647: an array for each position, and for each slot.
  bool addRecords(std::size_t count, const std::vector<const int*>& keys,
                  const std::vector<const double*>& values) {
    constexpr std::size_t most = std::numeric_limits<int>::max();
    const int records = count > most ? -1 : static_cast<int>(count);
    return ztbRxfAddRecords(handle_, records, keys.data(), values.data()) != 0;
  }
  int addText(const ZString& text) { return ztbRxfAddText(handle_, text.c_str()); }

  void publish() {
    std::array<char, messageSize> message{};
    if (ztbRxfPublish(&handle_, message.data(), messageSize) == 0) {
      throw Error("ztbRxfPublish", message.data(), detail::rxfErrorKind());
    }
  }

 private:
  static constexpr int messageSize = 512;

  ztbRxfOutput* handle_ = nullptr;
};

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_RXF_HPP_
