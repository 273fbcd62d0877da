// The operations and entry points of the scripted exchange-file peer.

#include "tests/support/scripted_rxf/scripted_rxf.h"

#include <ztb/peer.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/scripted_rxf/script.h"

namespace {

using namespace scripted;

constexpr int noSuchFile = 1;
constexpr std::size_t textSize = 256;

std::string argument(const char* text) {
  return ' ' + quoted(text);
}
std::string argument(int number) {
  return ' ' + std::to_string(number);
}

// Texts of the peer fit into 255 chars; longer ones are cut.
void copyOut(char* target, const std::string& text) {
  const std::size_t length = std::min(text.size(), textSize - 1);
  std::memcpy(target, text.data(), length);
  target[length] = '\0';
}

const Symbol& symbolOf(const Object& object, int number) {
  return object.file.symbols.at(static_cast<std::size_t>(number) - 1);
}

// `values` with those that are bitwise an entry of `from` replaced by the same entry of `to`.
template <typename From, typename To>
std::vector<double> translated(std::vector<double> values, const From& from, const To& to) {
  for (double& value : values) {
    for (std::size_t i = 0; i < from.size() && i < to.size(); ++i) {
      if (std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(from[i])) {
        value = to[i];
        break;
      }
    }
  }
  return values;
}

// First position, from 1, in which two records' keys differ; one past the last if in none.
int firstDifference(const Record& record, const Record& previous) {
  const auto [left, right] = std::ranges::mismatch(record.keys, previous.keys);
  return static_cast<int>(left - record.keys.begin()) + 1;
}

std::vector<std::string> namesOf(const Symbol& symbol, const char** names) {
  return {names, names + symbol.dim};
}

}  // namespace

extern "C" {

SCRIPTED_EXPORT void XCreate(void** object) {
  Script& s = script();
  auto* made = new Object;
  made->number = ++s.objectsMade;
  ++s.objectsAlive;
  *object = made;
  const Call call(made, "XCreate");
}

SCRIPTED_EXPORT void XCreateD(void** object, const char* /*directory*/) {
  XCreate(object);
}

SCRIPTED_EXPORT void XFree(void** object) {
  Call call(*object, "XFree");
  delete &call.object();
  *object = nullptr;
  --script().objectsAlive;
}

SCRIPTED_EXPORT int C__XCheck(const char* operation, int argCount, const int* codes, char* msg) {
  constexpr ztbPeerOperation operations[] = {ZTB_PEER_RXF_OPERATIONS(ZTB_PEER_ENTRY)};
  const auto lacking = script().lacking.find(operation);
  if (lacking == script().lacking.end()) {
    return ztbPeerCheck("scripted", operations, std::size(operations), operation, argCount, codes,
                        msg);
  }
  copyOut(msg, lacking->second);
  return 0;
}

SCRIPTED_EXPORT int C__XAPIVersion(int api, char* msg, int* compatibility) {
  *compatibility = api;
  if (!script().versionRefusal) return 1;
  copyOut(msg, *script().versionRefusal);
  return 0;
}

SCRIPTED_EXPORT void C__rxfSetLoadPath(const char* directory) {
  script().log += "SetLoadPath" + argument(directory) + '\n';
}

SCRIPTED_EXPORT int C__rxfOpenRead(void* rxf, const char* fileName, int* errorNumber) {
  Call call(rxf, "rxfOpenRead", argument(fileName));
  *errorNumber = call.failure().value_or(0);
  if (*errorNumber != 0) return 0;
  const auto found = script().files.find(fileName);
  if (found == script().files.end()) {
    *errorNumber = noSuchFile;
    return 0;
  }
  call.object().file = found->second;
  call.object().mode = Object::Mode::reading;
  return 1;
}

SCRIPTED_EXPORT int C__rxfOpenWrite(void* rxf, const char* fileName, const char* producer,
                                    int* errorNumber) {
  Call call(rxf, "rxfOpenWrite", argument(fileName) + argument(producer));
  *errorNumber = call.failure().value_or(0);
  if (*errorNumber != 0) return 0;
  call.object().file = File();
  call.object().fileName = fileName;
  call.object().mode = Object::Mode::writing;
  return 1;
}

SCRIPTED_EXPORT int C__rxfClose(void* rxf) {
  Call call(rxf, "rxfClose");
  if (call.failure()) return *call.failure();
  Object& object = call.object();
  if (object.mode == Object::Mode::writing) script().files[object.fileName] = object.file;
  object.mode = Object::Mode::closed;
  object.source = nullptr;
  object.file = File();
  return 1;
}

SCRIPTED_EXPORT int C__rxfErrorStr(void* rxf, int errorNumber, char* text) {
  const Call call(rxf, "rxfErrorStr", argument(errorNumber));
  if (call.failure()) return *call.failure();
  const auto found = script().errorTexts.find(errorNumber);
  copyOut(text, found != script().errorTexts.end()
                    ? found->second
                    : "Scripted error " + std::to_string(errorNumber));
  return 1;
}

SCRIPTED_EXPORT int C__rxfErrorCount(void* rxf) {
  Call call(rxf, "rxfErrorCount");
  return call.failure().value_or(call.object().errorCount);
}

SCRIPTED_EXPORT int C__rxfGetLastError(void* rxf) {
  Call call(rxf, "rxfGetLastError");
  if (call.failure()) return *call.failure();
  std::vector<int>& pending = call.object().pendingErrors;
  if (pending.empty()) return 0;
  const int latest = pending.back();
  pending.pop_back();
  return latest;
}

SCRIPTED_EXPORT int C__rxfGetSpecialValues(void* rxf, double* values) {
  const Call call(rxf, "rxfGetSpecialValues");
  if (call.failure()) return *call.failure();
  std::ranges::copy(specialValues, values);
  for (std::size_t i = specialValues.size(); i < tableSize; ++i) {
    values[i] = 1000 + static_cast<double>(i);
  }
  return 1;
}

SCRIPTED_EXPORT int C__rxfSetSpecialValues(void* rxf, const double* values) {
  Call call(rxf, "rxfSetSpecialValues");
  if (call.failure()) return *call.failure();
  call.object().writeSpecialValues.assign(values, values + specialValues.size());
  std::copy_n(values, tableSize, script().latestTable.begin());
  return 1;
}

SCRIPTED_EXPORT int C__rxfSetReadSpecialValues(void* rxf, const double* values) {
  Call call(rxf, "rxfSetReadSpecialValues");
  if (call.failure()) return *call.failure();
  call.object().readSpecialValues.assign(values, values + specialValues.size());
  std::copy_n(values, tableSize, script().latestTable.begin());
  return 1;
}

SCRIPTED_EXPORT int C__rxfSystemInfo(void* rxf, int* symbolCount, int* labelCount) {
  Call call(rxf, "rxfSystemInfo");
  if (call.failure()) return *call.failure();
  *symbolCount = static_cast<int>(call.object().file.symbols.size());
  *labelCount = static_cast<int>(call.object().file.labels.size());
  return 1;
}

SCRIPTED_EXPORT int C__rxfSymbolInfo(void* rxf, int number, char* name, int* dim, int* type) {
  Call call(rxf, "rxfSymbolInfo", argument(number));
  if (call.failure()) return *call.failure();
  const Symbol& symbol = symbolOf(call.object(), number);
  copyOut(name, symbol.name);
  *dim = symbol.dim;
  *type = symbol.type;
  return 1;
}

SCRIPTED_EXPORT int C__rxfSymbolInfoX(void* rxf, int number, int* recordCount, int* userInfo,
                                      char* text) {
  Call call(rxf, "rxfSymbolInfoX", argument(number));
  if (call.failure()) return *call.failure();
  const Symbol& symbol = symbolOf(call.object(), number);
  *recordCount = static_cast<int>(symbol.records.size());
  *userInfo = symbol.userInfo;
  copyOut(text, symbol.text);
  return 1;
}

SCRIPTED_EXPORT int C__rxfSymbolGetDomainX(void* rxf, int number, char** names) {
  Call call(rxf, "rxfSymbolGetDomainX", argument(number));
  if (call.failure()) return *call.failure();
  const Symbol& symbol = symbolOf(call.object(), number);
  for (const std::string& name : symbol.domain) copyOut(*names++, name);
  return symbol.domain.empty() ? 0 : 1;
}

SCRIPTED_EXPORT int C__rxfFindSymbol(void* rxf, const char* name, int* number) {
  Call call(rxf, "rxfFindSymbol", argument(name));
  if (call.failure()) return *call.failure();
  *number = call.object().file.find(name);
  return *number < 0 ? 0 : 1;
}

SCRIPTED_EXPORT int C__rxfGetElemText(void* rxf, int number, char* text, int* node) {
  Call call(rxf, "rxfGetElemText", argument(number));
  if (call.failure()) return *call.failure();
  const std::vector<std::string>& texts = call.object().file.texts;
  if (number < 1 || number > static_cast<int>(texts.size())) return 0;
  copyOut(text, texts[static_cast<std::size_t>(number) - 1]);
  *node = 0;
  return 1;
}

SCRIPTED_EXPORT int C__rxfUMUelInfo(void* rxf, int* labelCount, int* highMap) {
  Call call(rxf, "rxfUMUelInfo");
  if (call.failure()) return *call.failure();
  *labelCount = static_cast<int>(call.object().file.labels.size());
  *highMap = 0;
  return 1;
}

SCRIPTED_EXPORT int C__rxfUMUelGet(void* rxf, int number, char* label, int* map) {
  Call call(rxf, "rxfUMUelGet", argument(number));
  if (call.failure()) return *call.failure();
  copyOut(label, call.object().file.labels.at(static_cast<std::size_t>(number) - 1));
  *map = -1;
  return 1;
}

SCRIPTED_EXPORT int C__rxfDataReadRawStart(void* rxf, int symbolNumber, int* recordCount) {
  Call call(rxf, "rxfDataReadRawStart", argument(symbolNumber));
  *recordCount = std::min(call.failure().value_or(0), 0);
  if (call.failure()) return *call.failure();
  Object& object = call.object();
  if (symbolNumber < 1) return 0;
  object.source = &symbolOf(object, symbolNumber);
  object.nextRecord = 0;
  *recordCount = static_cast<int>(object.source->records.size());
  return 1;
}

SCRIPTED_EXPORT int C__rxfDataReadRaw(void* rxf, int* keys, double* values, int* firstChanged) {
  Call call(rxf, "rxfDataReadRaw");
  if (call.failure()) {
    if (*call.failure() < 0) *firstChanged = *call.failure();
    return *call.failure();
  }
  Object& object = call.object();
  if (object.source == nullptr || object.nextRecord >= object.source->records.size()) return 0;
  const Record& record = object.source->records[object.nextRecord];
  std::ranges::copy(record.keys, keys);
  std::ranges::copy(translated(record.values, specialValues, object.readSpecialValues), values);
  *firstChanged = object.nextRecord == 0
                      ? 1
                      : firstDifference(record, object.source->records[object.nextRecord - 1]);
  ++object.nextRecord;
  return 1;
}

SCRIPTED_EXPORT int C__rxfDataReadDone(void* rxf) {
  Call call(rxf, "rxfDataReadDone");
  if (call.failure()) return *call.failure();
  call.object().source = nullptr;
  return 1;
}

SCRIPTED_EXPORT void C__rxfStoreDomainSetsSet(void* rxf, int on) {
  const Call call(rxf, "rxfStoreDomainSetsSet", argument(on));
}

SCRIPTED_EXPORT int C__rxfUELRegisterRawStart(void* rxf) {
  const Call call(rxf, "rxfUELRegisterRawStart");
  return call.failure().value_or(1);
}

SCRIPTED_EXPORT int C__rxfUELRegisterRaw(void* rxf, const char* label) {
  Call call(rxf, "rxfUELRegisterRaw", argument(label));
  if (call.failure()) return *call.failure();
  call.object().file.labels.emplace_back(label);
  return 1;
}

SCRIPTED_EXPORT int C__rxfUELRegisterDone(void* rxf) {
  const Call call(rxf, "rxfUELRegisterDone");
  return call.failure().value_or(1);
}

SCRIPTED_EXPORT int C__rxfAddAlias(void* rxf, const char* aliasName, const char* targetName) {
  Call call(rxf, "rxfAddAlias", argument(aliasName) + argument(targetName));
  if (call.failure()) return *call.failure();
  File& file = call.object().file;
  const int target = file.find(targetName);
  if (target < 0) return 0;
  Symbol alias;
  alias.name = aliasName;
  alias.dim = target == 0 ? 1 : symbolOf(call.object(), target).dim;
  alias.type = aliasType;
  alias.userInfo = target;
  file.symbols.push_back(alias);
  return 1;
}

SCRIPTED_EXPORT int C__rxfAddSetText(void* rxf, const char* text, int* number) {
  Call call(rxf, "rxfAddSetText", argument(text));
  if (call.failure()) return *call.failure();
  call.object().file.texts.emplace_back(text);
  *number = static_cast<int>(call.object().file.texts.size());
  return 1;
}

SCRIPTED_EXPORT int C__rxfDataWriteRawStart(void* rxf, const char* name, const char* text, int dim,
                                            int type, int userInfo) {
  Call call(rxf, "rxfDataWriteRawStart",
            argument(name) + argument(text) + argument(dim) + argument(type) + argument(userInfo));
  if (call.failure()) return *call.failure();
  Symbol symbol;
  symbol.name = name;
  symbol.dim = dim;
  symbol.type = type;
  symbol.userInfo = userInfo;
  symbol.text = text;
  call.object().file.symbols.push_back(symbol);
  return 1;
}

SCRIPTED_EXPORT int C__rxfDataWriteRaw(void* rxf, const int* keys, const double* values) {
  Object& object = *static_cast<Object*>(rxf);
  Symbol& symbol = object.file.symbols.back();
  const Record record{.keys = {keys, keys + symbol.dim},
                      .values = {values, values + symbol.valueCount()}};
  const Call call(rxf, "rxfDataWriteRaw",
                  ' ' + bracketed(record.keys) + ' ' + bracketed(record.values));
  if (call.failure()) return *call.failure();
  symbol.records.push_back(
      {.keys = record.keys,
       .values = translated(record.values, object.writeSpecialValues, specialValues)});
  return 1;
}

SCRIPTED_EXPORT int C__rxfDataWriteDone(void* rxf) {
  const Call call(rxf, "rxfDataWriteDone");
  return call.failure().value_or(1);
}

SCRIPTED_EXPORT int C__rxfSymbolSetDomain(void* rxf, const char** names) {
  Symbol& symbol = static_cast<Object*>(rxf)->file.symbols.back();
  const std::vector<std::string> domain = namesOf(symbol, names);
  const Call call(rxf, "rxfSymbolSetDomain", ' ' + parenthesised(domain));
  if (call.failure()) return *call.failure();
  symbol.domain = domain;
  return 1;
}

SCRIPTED_EXPORT int C__rxfSymbolSetDomainX(void* rxf, int number, const char** names) {
  Symbol& symbol = static_cast<Object*>(rxf)->file.symbols.at(static_cast<std::size_t>(number) - 1);
  const std::vector<std::string> domain = namesOf(symbol, names);
  const Call call(rxf, "rxfSymbolSetDomainX", argument(number) + ' ' + parenthesised(domain));
  if (call.failure()) return *call.failure();
  symbol.domain = domain;
  symbol.relaxed = true;
  return 1;
}

}  // extern "C"
