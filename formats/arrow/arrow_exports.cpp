// The C functions of ztb/arrow.h.

#include <ztb/arrow.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <new>
#include <ztb/column_names.hpp>

#include "formats/arrow/arrow_import.h"
#include "formats/arrow/arrow_stream.h"
#include "formats/arrow/database_blocks.h"

#define FORMATS_EXPORT extern "C" [[gnu::visibility("default")]]

namespace {

constexpr int messageRoom = 512;
constexpr int usualBatch = 65536;
// So many texts of the longest kind do not go beyond what 32-bit offsets reach.
constexpr int largestBatch = 1 << 20;

void tell(const char* text, char* message, int size) {
  if (message == nullptr || size < 1) return;
  const std::size_t length = std::min(std::strlen(text), static_cast<std::size_t>(size) - 1);
  std::memcpy(message, text, length);
  message[length] = '\0';
}

template <class Work>
int attempt(char* message, int size, Work&& work) {
  try {
    work();
    return 1;
  } catch (const std::bad_alloc&) {
    tell("out of memory", message, size);
  } catch (const std::exception& error) {
    tell(error.what(), message, size);
  }
  return 0;
}

// The caller's functions around the use of a database.
class Hooks : public formats::ArrowOwner {
 public:
  explicit Hooks(const ztbArrowOptions& options) : options_(options) {}
  ~Hooks() override {
    if (options_.release != nullptr) options_.release(options_.owner);
  }

  void run(const std::function<void()>& work) override {
    std::array<char, messageRoom> message{};
    if (options_.enter != nullptr &&
        options_.enter(options_.owner, message.data(), messageRoom) == 0) {
      throw ztb::Error("ztbArrowExport", message.data(), ztb::ErrorKind::closed);
    }
    const Leaving leaving{options_};
    work();
  }

 private:
  struct Leaving {
    const ztbArrowOptions& options;
    ~Leaving() {
      if (options.leave != nullptr) options.leave(options.owner);
    }
  };

  ztbArrowOptions options_;
};

formats::ArrowColumns columnsOf(const ztb::Symbol& symbol, int flags) {
  std::vector<std::string> domains;
  for (const ztb::Domain& domain : symbol.domains()) domains.push_back(domain.name.str());
  std::array<double, ZTB_SPECIAL_VALUE_COUNT> special{};
  c__ztbgetuserspecialvalues(symbol.database(), special.data());
  return {.keys = ztb::keyColumns(symbol.name().str(), symbol.type(), domains),
          .contents = ztb::contentColumns(symbol.type()),
          .isSet = symbol.type() == ztb::Type::set,
          .naAsNull = (flags & ZTB_ARROW_NA_AS_NULL) != 0 && symbol.type() != ztb::Type::set,
          .na = special[ZTB_NOT_AVAILABLE]};
}

void requireRecords(const ztb::Symbol& symbol) {
  if (symbol.name().view() == "*") {
    throw ztb::Error("ztbArrowExport", "the universe has labels and no records");
  }
}

}  // namespace

FORMATS_EXPORT int ztbArrowExport(ztbRec* database, void* symbol, const ztbArrowOptions* options,
                                  ArrowArrayStream* stream, char* message, int messageSize) {
  const ztbArrowOptions chosen = options == nullptr ? ztbArrowOptions{} : *options;
  return attempt(message, messageSize, [&] {
    auto hooks = std::make_unique<Hooks>(chosen);
    if (chosen.batchRecords < 0 || chosen.batchRecords > largestBatch) {
      throw ztb::Error("ztbArrowExport", "a batch has at most 1048576 records");
    }
    const ztb::Symbol shown = ztb::Symbol(database, symbol).unaliased();
    requireRecords(shown);
    const int most = chosen.batchRecords == 0 ? usualBatch : chosen.batchRecords;
    auto blocks = std::make_unique<formats::DatabaseBlocks>(shown, static_cast<std::size_t>(most));
    formats::makeArrowStream(columnsOf(shown, chosen.flags), std::move(blocks), std::move(hooks),
                             stream);
  });
}

FORMATS_EXPORT int ztbArrowFill(ztbRec* database, void* symbol, ArrowArrayStream* stream,
                                const ztbArrowImportOptions* options, char* message,
                                int messageSize) {
  return attempt(message, messageSize, [&] {
    formats::fillFromArrow({database, symbol}, stream,
                           options == nullptr ? ztbArrowImportOptions{} : *options);
  });
}

FORMATS_EXPORT int ztbArrowMake(ztbRec* database, const char* name, int type,
                                ArrowArrayStream* stream, const ztbArrowImportOptions* options,
                                void** symbol, char* message, int messageSize) {
  return attempt(message, messageSize, [&] {
    *symbol = formats::makeFromArrow(database, name, type, stream,
                                     options == nullptr ? ztbArrowImportOptions{} : *options);
  });
}
