// The functions of ztb/rxf.h that the command calls, each of which goes on to the library
// rxfcclib64: a command that calls none starts without it.
#include <ztb/rxf.h>

#include "tools/files/late_library.h"

namespace {

constexpr tool::LateLibrary rxfLibrary("rxfcclib64");

}  // namespace

int ztbRxfOpen(ztbRxfFile** file, const char* path, char* message, int messageSize) {
  return ZTB_LATE(rxfLibrary, ztbRxfOpen)(file, path, message, messageSize);
}

int ztbRxfErrorKind() {
  return ZTB_LATE(rxfLibrary, ztbRxfErrorKind)();
}

void ztbRxfClose(ztbRxfFile** file) {
  ZTB_LATE(rxfLibrary, ztbRxfClose)(file);
}

int ztbRxfLabelCount(const ztbRxfFile* file) {
  return ZTB_LATE(rxfLibrary, ztbRxfLabelCount)(file);
}

const char* ztbRxfLabel(const ztbRxfFile* file, int number) {
  return ZTB_LATE(rxfLibrary, ztbRxfLabel)(file, number);
}

int ztbRxfFindLabel(const ztbRxfFile* file, const char* label) {
  return ZTB_LATE(rxfLibrary, ztbRxfFindLabel)(file, label);
}

int ztbRxfTextCount(const ztbRxfFile* file) {
  return ZTB_LATE(rxfLibrary, ztbRxfTextCount)(file);
}

const char* ztbRxfText(const ztbRxfFile* file, int number) {
  return ZTB_LATE(rxfLibrary, ztbRxfText)(file, number);
}

int ztbRxfSymbolCount(const ztbRxfFile* file) {
  return ZTB_LATE(rxfLibrary, ztbRxfSymbolCount)(file);
}

int ztbRxfFindSymbol(const ztbRxfFile* file, const char* name) {
  return ZTB_LATE(rxfLibrary, ztbRxfFindSymbol)(file, name);
}

int ztbRxfSymbol(const ztbRxfFile* file, int number, ztbRxfSymbolInfo* info) {
  return ZTB_LATE(rxfLibrary, ztbRxfSymbol)(file, number, info);
}

const char* ztbRxfDomain(const ztbRxfFile* file, int symbol, int position) {
  return ZTB_LATE(rxfLibrary, ztbRxfDomain)(file, symbol, position);
}

unsigned long long ztbRxfMemory(const ztbRxfFile* file, int symbol, int store) {
  return ZTB_LATE(rxfLibrary, ztbRxfMemory)(file, symbol, store);
}

unsigned long long ztbRxfMemoryLimit(unsigned long long bytes) {
  return ZTB_LATE(rxfLibrary, ztbRxfMemoryLimit)(bytes);
}

int ztbRxfRecordsOpen(ztbRxfRecords** records, ztbRxfFile* file, int symbol, char* message,
                      int messageSize) {
  return ZTB_LATE(rxfLibrary, ztbRxfRecordsOpen)(records, file, symbol, message, messageSize);
}

void ztbRxfRecordsClose(ztbRxfRecords** records) {
  ZTB_LATE(rxfLibrary, ztbRxfRecordsClose)(records);
}

int ztbRxfNextBlock(ztbRxfRecords* records) {
  return ZTB_LATE(rxfLibrary, ztbRxfNextBlock)(records);
}

int ztbRxfSkipBlocks(ztbRxfRecords* records, int count) {
  return ZTB_LATE(rxfLibrary, ztbRxfSkipBlocks)(records, count);
}

const int* ztbRxfKeys(const ztbRxfRecords* records, int position) {
  return ZTB_LATE(rxfLibrary, ztbRxfKeys)(records, position);
}

const double* ztbRxfValues(const ztbRxfRecords* records, int slot) {
  return ZTB_LATE(rxfLibrary, ztbRxfValues)(records, slot);
}

void ztbRxfRewind(ztbRxfRecords* records) {
  ZTB_LATE(rxfLibrary, ztbRxfRewind)(records);
}

int ztbRxfSkipDamage(ztbRxfRecords* records) {
  return ZTB_LATE(rxfLibrary, ztbRxfSkipDamage)(records);
}

const char* ztbRxfMessage(const ztbRxfRecords* records) {
  return ZTB_LATE(rxfLibrary, ztbRxfMessage)(records);
}

int ztbRxfBlockNumber(const ztbRxfRecords* records) {
  return ZTB_LATE(rxfLibrary, ztbRxfBlockNumber)(records);
}

unsigned long long ztbRxfBlockOffset(const ztbRxfRecords* records) {
  return ZTB_LATE(rxfLibrary, ztbRxfBlockOffset)(records);
}

int ztbRxfCreate(ztbRxfOutput** output, const char* path, const char* producer, char* message,
                 int messageSize) {
  return ZTB_LATE(rxfLibrary, ztbRxfCreate)(output, path, producer, message, messageSize);
}

int ztbRxfAddLabel(ztbRxfOutput* output, const char* label) {
  return ZTB_LATE(rxfLibrary, ztbRxfAddLabel)(output, label);
}

int ztbRxfAddSymbol(ztbRxfOutput* output, const ztbRxfSymbolInfo* info,
                    const char* const* domains) {
  return ZTB_LATE(rxfLibrary, ztbRxfAddSymbol)(output, info, domains);
}

int ztbRxfAddRecords(ztbRxfOutput* output, int count, const int* const* keys,
                     const double* const* values) {
  return ZTB_LATE(rxfLibrary, ztbRxfAddRecords)(output, count, keys, values);
}

int ztbRxfAddText(ztbRxfOutput* output, const char* text) {
  return ZTB_LATE(rxfLibrary, ztbRxfAddText)(output, text);
}

int ztbRxfPublish(ztbRxfOutput** output, char* message, int messageSize) {
  return ZTB_LATE(rxfLibrary, ztbRxfPublish)(output, message, messageSize);
}

void ztbRxfDiscard(ztbRxfOutput** output) {
  ZTB_LATE(rxfLibrary, ztbRxfDiscard)(output);
}
