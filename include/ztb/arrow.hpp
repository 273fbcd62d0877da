// C++20 wrapper of ztb/arrow.h: symbols as Arrow data. Programs that use it link libztbformats.so.
//
//   ztb::ArrowStream stream = ztb::toArrow(database["price"]);
//   ... stream.get() goes to a reader, which moves it away or reads it ...
//   ztb::fromArrow(other, "price", ztb::toArrow(database["price"]));
//
// What fails is thrown as ztb::Error; a database that is filled then has what it had.
#ifndef ZTB_ARROW_HPP_
#define ZTB_ARROW_HPP_

#include <ztb/arrow.h>

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>
#include <ztb/handle_age.hpp>
#include <ztb/store_guard.hpp>
#include <ztb/symbol.hpp>
#include <ztb/z_string.hpp>
#include <ztb/ztb.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// A stream that releases itself, unless whoever read it has done so.
class ArrowStream {
 public:
  ArrowStream() noexcept = default;
  // Takes a stream of whatever origin over; the other is empty then.
  explicit ArrowStream(ArrowArrayStream& stream) noexcept : stream_(stream) {
    stream.release = nullptr;
  }
  ArrowStream(ArrowStream&& other) noexcept : ArrowStream(other.stream_) {}
  ArrowStream& operator=(ArrowStream&& other) noexcept {
    std::swap(stream_, other.stream_);
    return *this;
  }
  ArrowStream(const ArrowStream&) = delete;
  ArrowStream& operator=(const ArrowStream&) = delete;
  ~ArrowStream() {
    if (stream_.release != nullptr) stream_.release(&stream_);
  }

  [[nodiscard]] ArrowArrayStream* get() noexcept { return &stream_; }

 private:
  ArrowArrayStream stream_{};
};

// How records come in: see ztbArrowImportOptions. Without names of columns these are found.
struct ArrowColumns {
  std::vector<std::string> keys{};
  int nulls = ZTB_ARROW_NULLS_REFUSED;
};

namespace detail {

using ArrowMessage = std::array<char, 512>;

inline void requireArrow(int result, const char* operation, const ArrowMessage& message) {
  if (result == 0) throw Error(operation, message.data());
}

// The options as the C functions take them; runs `use` with them.
template <class Use>
int withArrowOptions(const ArrowColumns& columns, const Use& use) {
  std::vector<const char*> names;
  for (const std::string& name : columns.keys) names.push_back(name.c_str());
  const ztbArrowImportOptions options{names.empty() ? nullptr : names.data(),
                                      static_cast<int>(names.size()), columns.nulls};
  return use(&options);
}

}  // namespace detail

// The records of a symbol as a stream; `flags` are ZTB_ARROW_ codes, added, and `batchRecords` is
// the most of a batch, 0 for 65536. The database lives as long as the stream is read; batches may
// live longer, and stay as they are when records change.
inline ArrowStream toArrow(const Symbol& symbol, int flags = 0, int batchRecords = 0) {
  ztbArrowOptions options{};
  options.flags = flags;
  options.batchRecords = batchRecords;
  detail::ArrowMessage message{};
  ArrowArrayStream stream{};
  detail::requireArrow(ztbArrowExport(symbol.database(), symbol.handle(), &options, &stream,
                                      message.data(), static_cast<int>(message.size())),
                       "ztbArrowExport", message);
  return ArrowStream(stream);
}

// Replaces the records of a symbol by those of a stream, which may be one of another symbol of the
// database.
inline void fillFromArrow(const Symbol& symbol, ArrowStream stream,
                          const ArrowColumns& columns = {}) {
  detail::ArrowMessage message{};
  // Handles of records end, as where records are removed.
  std::uint64_t* const removals =
      detail::removalsOf(detail::SymbolPlace(symbol.database(), symbol.handle()));
  if (removals != nullptr) ++*removals;
  detail::requireArrow(detail::withArrowOptions(columns,
                                                [&](const ztbArrowImportOptions* options) {
                                                  return ztbArrowFill(
                                                      symbol.database(), symbol.handle(),
                                                      stream.get(), options, message.data(),
                                                      static_cast<int>(message.size()));
                                                }),
                       "ztbArrowFill", message);
}

// Makes a symbol from a stream; `type` is ZTB_SET and so on, or -1 to tell it by the columns.
inline Symbol fromArrow(Database& database, const ZString& name, ArrowStream stream,
                        const ArrowColumns& columns = {}, int type = -1) {
  detail::ArrowMessage message{};
  void* symbol = nullptr;
  detail::requireArrow(
      detail::withArrowOptions(columns,
                               [&](const ztbArrowImportOptions* options) {
                                 return ztbArrowMake(database.handle(), name.c_str(), type,
                                                     stream.get(), options, &symbol, message.data(),
                                                     static_cast<int>(message.size()));
                               }),
      "ztbArrowMake", message);
  return {database.handle(), symbol};
}

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_ARROW_HPP_
