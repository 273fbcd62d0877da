#include "tests/support/scripted_model/script.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "tests/support/scripted_model/scripted_model.h"

namespace scriptedmodel {

Script& script() {
  static Script theScript;
  return theScript;
}

Object* Pool::make() {
  Object* object = std::ranges::find(objects, 0, &Object::number);
  if (object == objects.end()) std::abort();
  *object = Object();
  object->number = ++made;
  return object;
}

Object* Pool::find(void* handle) {
  for (Object& object : objects) {
    if (&object == handle && object.number != 0) return &object;
  }
  return nullptr;
}

int Pool::alive() const {
  return static_cast<int>(std::ranges::count_if(objects, [](const Object& o) { return o.number; }));
}

double Script::presented(double value) const {
  if (std::isinf(value)) return value > 0 ? plusInfinity : minusInfinity;
  return value;
}

void Script::solve() {
  ++solves;
  for (Column& column : columns) {
    column.level = altBounds != 0 ? column.altLower : column.lower;
    column.marginal = solves;
  }
  for (Row& row : rows) {
    row.level = altRhs != 0 ? row.altRhs : row.rhs;
    row.marginal = solves;
  }
  modelStatus = 1;
  solveStatus = 1;
}

void Call::write(const char* text) {
  Script& s = script();
  const std::size_t length = std::strlen(text);
  if (s.logLength + length >= s.log.size()) std::abort();
  std::memcpy(s.log.data() + s.logLength, text, length + 1);
  s.logLength += length;
}

void Call::writeObject(void* object) {
  Script& s = script();
  if (object == nullptr) return write("null");
  if (object == &s.model) return write("model");
  if (object == &s.environment) return write("env");
  if (object == &s.dictionary) return write("dict");
  for (Pool* pool : {&s.catalogues, &s.solverObjects, &s.searches, &s.views}) {
    if (const Object* found = pool->find(object)) {
      write(pool->kind);
      return writeArgument(found->number);
    }
  }
  write("stale");
}

void Call::writeArgument(int number) {
  char text[16] = {};
  std::to_chars(text, text + sizeof text - 1, number);
  write(text);
}

void Call::writeArgument(double number) {
  char text[64] = {};
  std::to_chars(text, text + sizeof text - 1, number);
  write(text);
}

void Call::writeArgument(const char* text) {
  write("\"");
  write(text);
  write("\"");
}

void Call::findPlan(const char* operation) {
  for (Plan& plan : script().plans) {
    if (plan.used || plan.operation != operation || plan.callsToGo-- > 0) continue;
    plan.used = true;
    planned_ = plan.answer;
  }
}

void copyOut(char* target, const std::string& text, std::size_t size) {
  const std::size_t length = std::min(text.size(), size - 1);
  std::memcpy(target, text.data(), length);
  target[length] = '\0';
}

int check(std::span<const ztbPeerOperation> operations, const char* operation, int argCount,
          const int* codes, char* msg) {
  const auto lacking = script().lacking.find(operation);
  if (lacking == script().lacking.end()) {
    return ztbPeerCheck("scripted", operations.data(), static_cast<int>(operations.size()),
                        operation, argCount, codes, msg);
  }
  copyOut(msg, lacking->second, 256);
  return 0;
}

int version(const char* family, int api, char* msg, int* compatibility) {
  *compatibility = api;
  const auto refused = script().refused.find(family);
  if (refused == script().refused.end()) return 1;
  copyOut(msg, refused->second, 256);
  return 0;
}

}  // namespace scriptedmodel

using scriptedmodel::script;

const char* scriptedModelLog(void) {
  return script().log.data();
}

void scriptedModelClearLog(void) {
  script().logLength = 0;
  script().log[0] = '\0';
}

int scriptedModelAlive(const char* kind) {
  const scriptedmodel::Script& s = script();
  for (const scriptedmodel::Pool* pool : {&s.catalogues, &s.solverObjects, &s.searches, &s.views}) {
    if (std::strcmp(pool->kind, kind) == 0) return pool->alive();
  }
  return -1;
}

void scriptedModelReset(void) {
  script() = scriptedmodel::Script();
}

void scriptedModelAnswer(const char* operation, int afterCalls, double answer) {
  script().plans.push_back({.operation = operation, .callsToGo = afterCalls, .answer = answer});
}

void scriptedModelMessage(const char* text) {
  script().message = text;
}

void scriptedModelLack(const char* operation, const char* reason) {
  script().lacking[operation] = reason;
}

void scriptedModelRefuseVersion(const char* family, const char* reason) {
  script().refused[family] = reason;
}

void* scriptedModelHandle(void) {
  return &script().model;
}

void scriptedModelType(int type) {
  script().modelType = type;
}

void scriptedModelDirectory(const char* directory) {
  script().directory = directory;
}

int scriptedModelAddSolver(const char* name, int inPlace) {
  script().solvers.push_back({.name = name, .inPlace = inPlace != 0});
  return static_cast<int>(script().solvers.size());
}

int scriptedModelAddLabel(const char* label) {
  script().labels.emplace_back(label);
  return static_cast<int>(script().labels.size());
}

int scriptedModelAddSymbol(const char* name, int dim, int type, int userInfo, const char* text) {
  scriptedmodel::Symbol symbol;
  symbol.name = name;
  symbol.dim = dim;
  symbol.type = type;
  symbol.userInfo = userInfo;
  symbol.text = text;
  script().symbols.push_back(symbol);
  return static_cast<int>(script().symbols.size());
}

int scriptedModelAddColumn(const int* keys, const double* values, int status, int secondStatus) {
  scriptedmodel::Script& s = script();
  scriptedmodel::Symbol& symbol = s.symbols.back();
  const int number = static_cast<int>(s.columns.size());
  scriptedmodel::Column column;
  column.symbol = static_cast<int>(s.symbols.size());
  column.keys.assign(keys, keys + symbol.dim);
  column.level = values[0];
  column.marginal = values[1];
  column.lower = column.altLower = values[2];
  column.upper = column.altUpper = values[3];
  column.scale = values[4];
  column.status = status;
  column.secondStatus = secondStatus;
  s.columns.push_back(column);
  symbol.places.push_back(number);
  return number;
}

int scriptedModelAddRow(const int* keys, const double* values, int type, int status,
                        int secondStatus) {
  scriptedmodel::Script& s = script();
  scriptedmodel::Symbol& symbol = s.symbols.back();
  const int number = static_cast<int>(s.rows.size());
  scriptedmodel::Row row;
  row.symbol = static_cast<int>(s.symbols.size());
  row.keys.assign(keys, keys + symbol.dim);
  row.level = values[0];
  row.marginal = values[1];
  row.rhs = row.altRhs = values[2];
  row.scale = values[3];
  row.delta = values[4];
  row.type = type;
  row.status = status;
  row.secondStatus = secondStatus;
  s.rows.push_back(row);
  symbol.places.push_back(number);
  return number;
}

const char* scriptedModelDump(void) {
  static std::string result;
  const scriptedmodel::Script& s = script();
  std::ostringstream out;
  int number = 0;
  for (const scriptedmodel::Column& c : s.columns) {
    out << "column " << number++ << ' ' << c.level << ' ' << c.marginal << ' ' << c.lower << ' '
        << c.upper << ' ' << c.altLower << ' ' << c.altUpper << ' ' << c.status << ' '
        << c.secondStatus << '\n';
  }
  number = 0;
  for (const scriptedmodel::Row& r : s.rows) {
    out << "row " << number++ << ' ' << r.level << ' ' << r.marginal << ' ' << r.rhs << ' '
        << r.altRhs << ' ' << r.status << ' ' << r.secondStatus << '\n';
  }
  out << "switches " << s.altBounds << ' ' << s.altRhs << ' ' << s.forceLinear << ' '
      << s.modelStatus << ' ' << s.solveStatus << '\n';
  result = out.str();
  return result.c_str();
}
