// The exported functions: each calls the member of RxfObject of its meaning. No exception passes.

#include <ztb/peer.h>

#include <array>
#include <cstring>
#include <iterator>
#include <mutex>
#include <new>

#include "providers/rxf/rxf_object.h"
#include "providers/rxf/system_calls.h"

// With C linkage, a definition that differs from its prototype in ztb/peer.h does not compile.
#define RXF_OPERATION extern "C"

namespace {

using rxffile::RecordStream;
using rxffile::RxfObject;

constexpr ztbPeerOperation kOperations[] = {ZTB_PEER_RXF_OPERATIONS(ZTB_PEER_ENTRY)};

// The directory of the last rxfSetLoadPath or XCreateD; longer ones than callers' buffers can take
// back are not kept. One for the process, whatever threads its objects are used from.
std::array<char, 256> loadPath{};
std::mutex loadPathMutex;

void keepLoadPath(const char* directory) {
  const std::scoped_lock lock(loadPathMutex);
  const std::size_t length = directory == nullptr ? 0 : std::strlen(directory);
  loadPath[0] = '\0';
  if (length > 0 && length < loadPath.size()) {
    std::memcpy(loadPath.data(), directory, length + 1);
  }
}

// Runs an operation of the object; what it throws goes into the object's log, and the result is 0.
template <typename Body>
int guarded(void* rxf, const Body& body) noexcept {
  if (rxf == nullptr) return 0;
  auto& object = *static_cast<RxfObject*>(rxf);
  try {
    return static_cast<int>(body(object));
  } catch (...) {
    object.takeException();
    return 0;
  }
}

// The same for a step of writing behind which others follow. Where writing was given up, as on a
// full disk, before this step or by it, the error is counted and the result is not 0: who is told
// of a refused step tells of that instead, and takes a refused domain for none.
template <typename Body>
int writingStep(void* rxf, const Body& body) noexcept {
  const int done = guarded(rxf, [&](RxfObject& o) { return o.gaveUpWriting() || body(o); });
  return done != 0 ? done : guarded(rxf, [](RxfObject& o) { return o.gaveUpWriting(); });
}

void create(void** object) noexcept {
  if (object == nullptr) return;
  *object = new (std::nothrow) RxfObject(rxffile::operatingSystem());
}

}  // namespace

RXF_OPERATION void XCreate(void** object) {
  create(object);
}

RXF_OPERATION void XCreateD(void** object, const char* directory) {
  keepLoadPath(directory);
  create(object);
}

RXF_OPERATION void XFree(void** object) {
  if (object == nullptr) return;
  delete static_cast<RxfObject*>(*object);
  *object = nullptr;
}

RXF_OPERATION int C__XCheck(const char* operation, int argCount, const int* codes, char* msg) {
  return ztbPeerCheck("RXF", kOperations, std::size(kOperations), operation, argCount, codes, msg);
}

RXF_OPERATION int C__XAPIVersion(int api, char* msg, int* compatibility) {
  return ztbPeerVersion("RXF", ZTB_PEER_RXF_VERSION, api, msg, compatibility);
}

RXF_OPERATION void C__rxfSetLoadPath(const char* directory) {
  keepLoadPath(directory);
}

RXF_OPERATION void C__rxfGetLoadPath(char* directory) {
  if (directory != nullptr) {
    const std::scoped_lock lock(loadPathMutex);
    std::memcpy(directory, loadPath.data(), std::strlen(loadPath.data()) + 1);
  }
}

RXF_OPERATION int C__rxfOpenRead(void* rxf, const char* fileName, int* errorNumber) {
  int error = static_cast<int>(rxffile::ErrorNumber::internalError);
  guarded(rxf, [&](RxfObject& o) { return error = o.openRead(fileName); });
  if (errorNumber != nullptr) *errorNumber = error;
  return error == 0 ? 1 : 0;
}

RXF_OPERATION int C__rxfOpenWrite(void* rxf, const char* fileName, const char* producer,
                                  int* errorNumber) {
  int error = static_cast<int>(rxffile::ErrorNumber::internalError);
  guarded(rxf, [&](RxfObject& o) { return error = o.openWrite(fileName, producer); });
  if (errorNumber != nullptr) *errorNumber = error;
  return error == 0 ? 1 : 0;
}

RXF_OPERATION int C__rxfClose(void* rxf) {
  return guarded(rxf, [](RxfObject& o) { return o.close(); });
}

RXF_OPERATION int C__rxfErrorStr(void* rxf, int errorNumber, char* text) {
  if (text == nullptr) return 0;
  text[0] = '\0';
  return guarded(rxf, [&](RxfObject& o) {
    o.errorText(errorNumber, text);
    return 1;
  });
}

RXF_OPERATION int C__rxfErrorCount(void* rxf) {
  return guarded(rxf, [](RxfObject& o) { return o.errorCount(); });
}

RXF_OPERATION int C__rxfGetLastError(void* rxf) {
  return guarded(rxf, [](RxfObject& o) { return o.takeLastError(); });
}

RXF_OPERATION int C__rxfGetSpecialValues(void* rxf, double* values) {
  if (values == nullptr) return 0;
  return guarded(rxf, [&](RxfObject& o) {
    o.specialValues(values);
    return 1;
  });
}

RXF_OPERATION int C__rxfSetSpecialValues(void* rxf, const double* values) {
  return guarded(rxf, [&](RxfObject& o) { return o.setSpecialValues(values); });
}

RXF_OPERATION int C__rxfSetReadSpecialValues(void* rxf, const double* values) {
  return guarded(rxf, [&](RxfObject& o) { return o.setReadSpecialValues(values); });
}

RXF_OPERATION int C__rxfSystemInfo(void* rxf, int* symbolCount, int* labelCount) {
  return guarded(rxf, [&](RxfObject& o) { return o.systemInfo(symbolCount, labelCount); });
}

RXF_OPERATION int C__rxfSymbolInfo(void* rxf, int number, char* name, int* dim, int* type) {
  return guarded(rxf, [&](RxfObject& o) { return o.symbolInfo(number, name, dim, type); });
}

RXF_OPERATION int C__rxfSymbolInfoX(void* rxf, int number, int* recordCount, int* userInfo,
                                    char* text) {
  return guarded(rxf,
                 [&](RxfObject& o) { return o.symbolInfoX(number, recordCount, userInfo, text); });
}

RXF_OPERATION int C__rxfSymbolGetDomainX(void* rxf, int number, char** names) {
  return guarded(rxf, [&](RxfObject& o) { return o.symbolDomain(number, names); });
}

RXF_OPERATION int C__rxfFindSymbol(void* rxf, const char* name, int* number) {
  const int found = guarded(rxf, [&](RxfObject& o) { return o.findSymbol(name); });
  if (number != nullptr) *number = found;
  return found != 0 ? 1 : 0;
}

RXF_OPERATION int C__rxfGetElemText(void* rxf, int number, char* text, int* node) {
  if (node != nullptr) *node = 0;
  return guarded(rxf, [&](RxfObject& o) { return o.elementText(number, text); });
}

RXF_OPERATION int C__rxfUMUelInfo(void* rxf, int* labelCount, int* highMap) {
  const int count = guarded(rxf, [](RxfObject& o) { return o.labelCount(); });
  if (labelCount != nullptr) *labelCount = count;
  if (highMap != nullptr) *highMap = 0;
  return 1;
}

RXF_OPERATION int C__rxfUMUelGet(void* rxf, int number, char* label, int* map) {
  if (map != nullptr) *map = 0;
  return guarded(rxf, [&](RxfObject& o) { return o.label(number, label); });
}

namespace {

int startReading(void* rxf, int symbolNumber, int* recordCount, RecordStream::Verify verify) {
  bool started = false;
  int count = RxfObject::kReadFailed;
  guarded(rxf, [&](RxfObject& o) { return count = o.startReading(symbolNumber, started, verify); });
  if (recordCount != nullptr) *recordCount = count;
  return started ? 1 : 0;
}

}  // namespace

RXF_OPERATION int C__rxfDataReadRawStart(void* rxf, int symbolNumber, int* recordCount) {
  return startReading(rxf, symbolNumber, recordCount, RecordStream::Verify::ahead);
}

RXF_OPERATION int C__rxfDataReadRaw(void* rxf, int* keys, double* values, int* firstChanged) {
  if (keys == nullptr || values == nullptr || firstChanged == nullptr) return 0;
  return guarded(rxf, [&](RxfObject& o) { return o.read(keys, values, firstChanged); });
}

RXF_OPERATION int C__rxfDataReadBlockStart(void* rxf, int symbolNumber, int* recordCount) {
  return startReading(rxf, symbolNumber, recordCount, RecordStream::Verify::onTheWay);
}

RXF_OPERATION int C__rxfDataReadBlock(void* rxf, int* keys, double* values, int room) {
  if (keys == nullptr || values == nullptr) return RxfObject::kReadFailed;
  return guarded(rxf, [&](RxfObject& o) { return o.readBlock(keys, values, room); });
}

RXF_OPERATION int C__rxfDataReadDone(void* rxf) {
  return guarded(rxf, [](RxfObject& o) { return o.finishReading(); });
}

RXF_OPERATION void C__rxfStoreDomainSetsSet(void* rxf, int on) {
  guarded(rxf, [&](RxfObject& o) {
    o.storeDomainSets(on != 0);
    return 1;
  });
}

RXF_OPERATION int C__rxfUELRegisterRawStart(void* rxf) {
  return guarded(rxf, [](RxfObject& o) { return o.startLabels(); });
}

RXF_OPERATION int C__rxfUELRegisterRaw(void* rxf, const char* label) {
  return guarded(rxf, [&](RxfObject& o) { return o.addLabel(label); });
}

RXF_OPERATION int C__rxfUELRegisterDone(void* rxf) {
  return guarded(rxf, [](RxfObject& o) { return o.finishLabels(); });
}

RXF_OPERATION int C__rxfAddAlias(void* rxf, const char* aliasName, const char* targetName) {
  return writingStep(rxf, [&](RxfObject& o) { return o.addAlias(aliasName, targetName); });
}

RXF_OPERATION int C__rxfAddSetText(void* rxf, const char* text, int* number) {
  const int added = guarded(rxf, [&](RxfObject& o) { return o.addText(text); });
  if (number != nullptr) *number = added;
  return added != 0 ? 1 : 0;
}

RXF_OPERATION int C__rxfDataWriteRawStart(void* rxf, const char* name, const char* text, int dim,
                                          int type, int userInfo) {
  return writingStep(rxf,
                     [&](RxfObject& o) { return o.startWriting(name, text, dim, type, userInfo); });
}

RXF_OPERATION int C__rxfDataWriteRaw(void* rxf, const int* keys, const double* values) {
  return guarded(rxf, [&](RxfObject& o) { return o.write(keys, values); });
}

RXF_OPERATION int C__rxfDataWriteDone(void* rxf) {
  return guarded(rxf, [](RxfObject& o) { return o.finishWriting(); });
}

RXF_OPERATION int C__rxfSymbolSetDomain(void* rxf, const char** names) {
  return writingStep(rxf, [&](RxfObject& o) { return o.setDomain(names); });
}

RXF_OPERATION int C__rxfSymbolSetDomainX(void* rxf, int number, const char** names) {
  return guarded(rxf, [&](RxfObject& o) { return o.setDomainNames(number, names); });
}
