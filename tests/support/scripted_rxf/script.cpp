#include "tests/support/scripted_rxf/script.h"

#include <string>

#include "tests/support/scripted_rxf/scripted_rxf.h"

namespace scripted {

Script& script() {
  static Script theScript;
  return theScript;
}

Call::Call(void* object, const char* operation, const std::string& arguments)
    : object_(static_cast<Object*>(object)) {
  Script& s = script();
  s.log += std::to_string(object_->number) + ' ' + operation + arguments + '\n';
  std::erase_if(s.plans, [&](Plan& plan) {
    if (plan.operation != operation) return false;
    if (plan.callsToGo > 0) {
      --plan.callsToGo;
      return false;
    }
    if (plan.fails) {
      failure_ = plan.number;
    } else {
      ++object_->errorCount;
      object_->pendingErrors.push_back(plan.number);
    }
    return plan.once;
  });
}

}  // namespace scripted

using scripted::script;

const char* scriptedLog(void) {
  static std::string result;
  result = script().log;
  return result.c_str();
}

void scriptedClearLog(void) {
  script().log.clear();
}

int scriptedObjects(void) {
  return script().objectsAlive;
}

void scriptedReset(void) {
  const int alive = script().objectsAlive;
  const int made = alive > 0 ? script().objectsMade : 0;
  script() = scripted::Script();
  script().objectsMade = made;
  script().objectsAlive = alive;
}

void scriptedFail(const char* operation, int afterCalls, int result) {
  script().plans.push_back(
      {.operation = operation, .callsToGo = afterCalls, .fails = true, .number = result});
}

void scriptedFailAlways(const char* operation, int result) {
  script().plans.push_back(
      {.operation = operation, .callsToGo = 0, .fails = true, .number = result, .once = false});
}

void scriptedRaise(const char* operation, int afterCalls, int errorNumber) {
  script().plans.push_back(
      {.operation = operation, .callsToGo = afterCalls, .fails = false, .number = errorNumber});
}

void scriptedErrorText(int errorNumber, const char* text) {
  script().errorTexts[errorNumber] = text;
}

void scriptedLack(const char* operation, const char* reason) {
  script().lacking[operation] = reason;
}

void scriptedRefuseVersion(const char* reason) {
  script().versionRefusal.reset();
  if (reason != nullptr) script().versionRefusal = reason;
}

void scriptedFile(const char* fileName) {
  script().currentFile = fileName;
  script().files[fileName] = scripted::File();
}

int scriptedAddText(const char* text) {
  scripted::File& file = script().files[script().currentFile];
  file.texts.emplace_back(text);
  return static_cast<int>(file.texts.size());
}

int scriptedAddLabel(const char* label) {
  scripted::File& file = script().files[script().currentFile];
  file.labels.emplace_back(label);
  return static_cast<int>(file.labels.size());
}

int scriptedAddSymbol(const char* name, int dim, int type, int userInfo, const char* text) {
  scripted::File& file = script().files[script().currentFile];
  scripted::Symbol symbol;
  symbol.name = name;
  symbol.dim = dim;
  symbol.type = type;
  symbol.userInfo = userInfo;
  symbol.text = text;
  file.symbols.push_back(symbol);
  return static_cast<int>(file.symbols.size());
}

void scriptedAddRecord(const int* keys, const double* values) {
  scripted::Symbol& symbol = script().files[script().currentFile].symbols.back();
  symbol.records.push_back(
      {.keys = {keys, keys + symbol.dim}, .values = {values, values + symbol.valueCount()}});
}

void scriptedSetDomain(const char** names) {
  scripted::Symbol& symbol = script().files[script().currentFile].symbols.back();
  symbol.domain.assign(names, names + symbol.dim);
}

double scriptedSpecialValue(int index) {
  return scripted::specialValues.at(static_cast<std::size_t>(index));
}

double scriptedTableEntry(int index) {
  return script().latestTable.at(static_cast<std::size_t>(index));
}

const char* scriptedDump(const char* fileName) {
  static std::string result;
  const auto found = script().files.find(fileName);
  if (found == script().files.end()) return nullptr;
  result = found->second.dump();
  return result.c_str();
}
