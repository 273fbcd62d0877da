// The C functions of ztb/rxf.h. No exception passes them.

#include <ztb/rxf.h>

#include <memory>
#include <string_view>
#include <utility>

#include "providers/rxf/column_reader.h"
#include "providers/rxf/export_guard.h"
#include "providers/rxf/failure.h"
#include "providers/rxf/memory_estimate.h"
#include "providers/rxf/memory_limit.h"
#include "providers/rxf/message_text.h"
#include "providers/rxf/names.h"
#include "providers/rxf/rxf_reader.h"
#include "providers/rxf/system_calls.h"

using rxffile::attempt;
using rxffile::ColumnReader;
using rxffile::copyMessage;
using rxffile::DetailText;
using rxffile::ErrorNumber;
using rxffile::Failure;
using rxffile::MessageText;
using rxffile::RxfReader;
using rxffile::SymbolEntry;

static_assert(ZTB_RXF_BLOCK_RECORDS == rxffile::kBlockRecords);

struct ztbRxfFileRec {
  std::shared_ptr<const RxfReader> reader;
};

struct ztbRxfRecordsRec {
  ztbRxfRecordsRec(std::shared_ptr<const RxfReader> reader, std::uint32_t number)
      : columns(std::move(reader), number) {}
  ColumnReader columns;
  bool present = false;  // whether a block is in the columns
  MessageText message;
};

namespace {

// The entry of a symbol, null for the universe and where there is none.
const SymbolEntry* entryOf(const ztbRxfFile* file, int number) {
  if (file == nullptr || !file->reader->symbols().holds(number)) return nullptr;
  return &file->reader->symbols().at(static_cast<std::uint32_t>(number));
}

bool holds(const ztbRxfFile* file, int number) {
  return file != nullptr && (number == 0 || file->reader->symbols().holds(number));
}

// The symbol that has the records: of an alias its set, otherwise the symbol itself.
int recordsOf(const ztbRxfFile* file, int number) {
  const SymbolEntry* entry = entryOf(file, number);
  return entry != nullptr && entry->isAlias() ? entry->userInfo : number;
}

struct Shape {
  std::uint32_t records = 0;
  int dim = 1;
  int slots = 1;
};

// REQUIRES: the file holds the symbol.
Shape shapeOf(const ztbRxfFile* file, int number) {
  const SymbolEntry* entry = entryOf(file, recordsOf(file, number));
  if (entry == nullptr) return {file->reader->labels().size(), 1, 1};
  return {entry->recordCount, entry->dim, rxffile::slotsOfType(entry->type)};
}

// A text of a numbered list, null where there is none.
template <typename List>
const char* textOf(const List& list, int number) {
  if (number < 1 || static_cast<std::uint32_t>(number) > list.size()) return nullptr;
  return list.at(static_cast<std::uint32_t>(number)).data();
}

std::string_view viewOf(const char* text) {
  return text == nullptr ? std::string_view() : std::string_view(text);
}

}  // namespace

RXF_EXPORT int ztbRxfOpen(ztbRxfFile** file, const char* path, char* message, int messageSize) {
  copyMessage("", message, messageSize);
  return attempt(
      [&] {
        if (file == nullptr) {
          throw Failure(ErrorNumber::callsOutOfOrder, DetailText("there is no place for the file"));
        }
        *file = nullptr;
        if (path == nullptr || *path == '\0') {
          throw Failure(ErrorNumber::fileNameNotAcceptable, DetailText("it is empty"));
        }
        auto opened = std::make_unique<ztbRxfFileRec>();
        opened->reader = std::make_shared<const RxfReader>(rxffile::operatingSystem(), path);
        *file = opened.release();
      },
      [&](const MessageText& text) { copyMessage(text.c_str(), message, messageSize); });
}

RXF_EXPORT int ztbRxfErrorKind() {
  return rxffile::latestErrorKind();
}

RXF_EXPORT void ztbRxfClose(ztbRxfFile** file) {
  if (file == nullptr) return;
  delete *file;
  *file = nullptr;
}

RXF_EXPORT int ztbRxfVersion(const ztbRxfFile* file) {
  return file == nullptr ? 0 : static_cast<int>(rxffile::kFormatVersion);
}

RXF_EXPORT const char* ztbRxfProducer(const ztbRxfFile* file) {
  return file == nullptr ? nullptr : file->reader->producer().c_str();
}

RXF_EXPORT unsigned long long ztbRxfSize(const ztbRxfFile* file) {
  return file == nullptr ? 0 : file->reader->file().size();
}

RXF_EXPORT int ztbRxfLabelCount(const ztbRxfFile* file) {
  return file == nullptr ? 0 : static_cast<int>(file->reader->labels().size());
}

RXF_EXPORT const char* ztbRxfLabel(const ztbRxfFile* file, int number) {
  return file == nullptr ? nullptr : textOf(file->reader->labels(), number);
}

RXF_EXPORT int ztbRxfFindLabel(const ztbRxfFile* file, const char* label) {
  if (file == nullptr || label == nullptr) return 0;
  return static_cast<int>(file->reader->labels().find(label));
}

RXF_EXPORT int ztbRxfTextCount(const ztbRxfFile* file) {
  return file == nullptr ? 0 : static_cast<int>(file->reader->texts().size());
}

RXF_EXPORT const char* ztbRxfText(const ztbRxfFile* file, int number) {
  if (file == nullptr) return nullptr;
  return number == 0 ? "" : textOf(file->reader->texts(), number);
}

RXF_EXPORT int ztbRxfSymbolCount(const ztbRxfFile* file) {
  return file == nullptr ? 0 : static_cast<int>(file->reader->symbols().size());
}

RXF_EXPORT int ztbRxfFindSymbol(const ztbRxfFile* file, const char* name) {
  if (file == nullptr || name == nullptr) return -1;
  if (viewOf(name) == rxffile::kUniverseName) return 0;
  const std::uint32_t number = file->reader->symbols().find(name);
  return number == 0 ? -1 : static_cast<int>(number);
}

RXF_EXPORT int ztbRxfSymbol(const ztbRxfFile* file, int number, ztbRxfSymbolInfo* info) {
  if (info == nullptr) return 0;
  *info = {};
  if (!holds(file, number)) return 0;
  const Shape shape = shapeOf(file, number);
  info->name = "*";
  info->text = "universe";
  info->type = ZTB_SET;
  info->dimension = shape.dim;
  info->valueCount = shape.slots;
  info->recordCount = static_cast<int>(shape.records);
  info->aliasTarget = -1;
  if (const SymbolEntry* entry = entryOf(file, number)) {
    info->name = file->reader->symbols().name(static_cast<std::uint32_t>(number)).data();
    info->text = entry->text.c_str();
    info->type = entry->type;
    info->domainKind = static_cast<int>(entry->domainKind);
    if (entry->isAlias()) {
      info->aliasTarget = entry->userInfo;
    } else {
      info->userInfo =
          entry->userInfo - (entry->type == ZTB_EQUATION ? rxffile::kEquationOffset : 0);
    }
  }
  return 1;
}

RXF_EXPORT const char* ztbRxfDomain(const ztbRxfFile* file, int symbol, int position) {
  if (!holds(file, symbol) || position < 0 || position >= shapeOf(file, symbol).dim) return nullptr;
  const SymbolEntry* entry = entryOf(file, symbol);
  if (entry == nullptr || entry->domains.empty()) return "*";
  return entry->domains[static_cast<std::size_t>(position)].c_str();
}

RXF_EXPORT unsigned long long ztbRxfMemoryLimit(unsigned long long bytes) {
  return rxffile::MemoryLimit::setForThread(bytes);
}

RXF_EXPORT int ztbRxfMemoryLimitTaken() {
  return rxffile::MemoryLimit::takenByThread();
}

RXF_EXPORT unsigned long long ztbRxfMemory(const ztbRxfFile* file, int symbol, int store) {
  if (!holds(file, symbol)) return 0;
  const Shape shape = shapeOf(file, symbol);
  return rxffile::memoryOfRecords(shape.records, shape.dim, shape.slots, store);
}

RXF_EXPORT int ztbRxfRecordsOpen(ztbRxfRecords** records, ztbRxfFile* file, int symbol,
                                 char* message, int messageSize) {
  copyMessage("", message, messageSize);
  return attempt(
      [&] {
        if (records == nullptr || file == nullptr) {
          throw Failure(ErrorNumber::callsOutOfOrder,
                        DetailText(records == nullptr ? "there is no place for the records"
                                                      : "no file is open"));
        }
        *records = nullptr;
        if (!holds(file, symbol)) {
          throw Failure(
              ErrorNumber::noSuchSymbol,
              DetailText("%d in %s, expected 0 to %d", symbol,
                         file->reader->file().shownName().c_str(), ztbRxfSymbolCount(file)));
        }
        *records =
            new ztbRxfRecordsRec(file->reader, static_cast<std::uint32_t>(recordsOf(file, symbol)));
      },
      [&](const MessageText& text) { copyMessage(text.c_str(), message, messageSize); });
}

RXF_EXPORT void ztbRxfRecordsClose(ztbRxfRecords** records) {
  if (records == nullptr) return;
  delete *records;
  *records = nullptr;
}

RXF_EXPORT int ztbRxfNextBlock(ztbRxfRecords* records) {
  if (records == nullptr) return -1;
  int count = -1;
  records->present = false;
  records->message = {};
  attempt(
      [&] {
        count = static_cast<int>(records->columns.next());
        records->present = count > 0;
      },
      [&](const MessageText& text) { records->message = text; });
  return count;
}

RXF_EXPORT int ztbRxfSkipBlocks(ztbRxfRecords* records, int count) {
  if (records == nullptr) return -1;
  int skipped = 0;
  records->present = false;
  records->message = {};
  attempt(
      [&] {
        while (skipped < count && records->columns.skip()) ++skipped;
      },
      [&](const MessageText& text) {
        records->message = text;
        skipped = -1;
      });
  return skipped;
}

RXF_EXPORT const int* ztbRxfKeys(const ztbRxfRecords* records, int position) {
  if (records == nullptr || !records->present || position < 0 ||
      position >= records->columns.dimension()) {
    return nullptr;
  }
  return records->columns.keys(position);
}

RXF_EXPORT const double* ztbRxfValues(const ztbRxfRecords* records, int slot) {
  if (records == nullptr || !records->present || slot < 0 ||
      slot >= records->columns.valueCount()) {
    return nullptr;
  }
  return records->columns.values(slot);
}

RXF_EXPORT void ztbRxfRewind(ztbRxfRecords* records) {
  if (records == nullptr) return;
  records->columns.rewind();
  records->present = false;
  records->message = {};
}

RXF_EXPORT int ztbRxfSkipDamage(ztbRxfRecords* records) {
  if (records == nullptr || !records->columns.skipDamage()) return 0;
  records->message = {};
  return 1;
}

RXF_EXPORT const char* ztbRxfMessage(const ztbRxfRecords* records) {
  return records == nullptr ? "" : records->message.c_str();
}

RXF_EXPORT int ztbRxfBlockNumber(const ztbRxfRecords* records) {
  return records == nullptr ? 0 : static_cast<int>(records->columns.blockNumber());
}

RXF_EXPORT unsigned long long ztbRxfBlockOffset(const ztbRxfRecords* records) {
  return records == nullptr ? 0 : records->columns.blockOffset();
}
