#include "tests/transfer/scripted_host.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace ztbtest {

namespace {

ScriptedHost& hostOf(void* userMem) {
  return *static_cast<ScriptedHost*>(userMem);
}

}  // namespace

void ScriptedHost::add(const std::string& name, int number, std::vector<HostRecord> records) {
  symbols_[name] = {number, std::move(records)};
}

void ScriptedHost::attach(ztbRec* database) {
  if (lib().c__ztbinitfromhvex(database, findSymbol, dataReadRawStart, dataReadRaw, dataReadDone,
                               getElemText, log, this) != 1) {
    throw std::runtime_error("cannot attach a database to the scripted host");
  }
}

int ScriptedHost::findSymbol(const char* name, int* number, void* userMem) {
  ScriptedHost& host = hostOf(userMem);
  const std::string text(name + 1, static_cast<unsigned char>(name[0]));
  host.calls.push_back("findSymbol " + text);
  const auto found = host.symbols_.find(text);
  if (found == host.symbols_.end()) {
    return 1;
  }
  *number = found->second.number;
  return 0;
}

int ScriptedHost::dataReadRawStart(int number, int* count, void* userMem) {
  ScriptedHost& host = hostOf(userMem);
  host.calls.push_back(numbered("dataReadRawStart ", number));
  for (const auto& [name, symbol] : host.symbols_) {
    if (symbol.number == number && !host.refuseStart) {
      host.reading_ = &symbol;
      host.record_ = 0;
      *count = static_cast<int>(symbol.records.size());
      return 0;
    }
  }
  return 2;
}

int ScriptedHost::dataReadRaw(int* keys, double* values, int* unused, void* userMem) {
  ScriptedHost& host = hostOf(userMem);
  host.calls.emplace_back("dataReadRaw");
  if (static_cast<int>(host.record_) == host.refuseRecord) {
    return 3;
  }
  const HostRecord& record = host.reading_->records.at(host.record_++);
  std::copy(record.keys.begin(), record.keys.end(), keys);
  std::copy(record.values.begin(), record.values.end(), values);
  *unused = 12345;
  return 0;
}

int ScriptedHost::dataReadDone(void* userMem) {
  ScriptedHost& host = hostOf(userMem);
  host.calls.emplace_back("dataReadDone");
  return host.refuseDone ? 4 : 0;
}

int ScriptedHost::getElemText(int number, char* text, int size, void* userMem) {
  ScriptedHost& host = hostOf(userMem);
  host.calls.push_back(numbered("getElemText ", number) + numbered(" ", size));
  const auto found = host.texts.find(number);
  if (found == host.texts.end()) {
    return 5;
  }
  // Nothing behind the chars that the length byte counts is the text's.
  std::memset(text, '#', static_cast<std::size_t>(size) + 1);
  text[0] = static_cast<char>(found->second.size());
  std::copy(found->second.begin(), found->second.end(), text + 1);
  return 0;
}

void ScriptedHost::log(const char* text, void* userMem) {
  hostOf(userMem).logged.emplace_back(static_cast<unsigned char>(text[0]),
                                      std::string(text + 1, 255));
}

}  // namespace ztbtest
