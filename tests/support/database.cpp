#include "tests/support/database.h"

#include <stdexcept>

#include "tests/support/text_buffer.h"

namespace ztbtest {

namespace {

constexpr int markKey = -987654;
const char* const markText = "infoKey needs to be between 0 and 5, saw -987654";

}  // namespace

std::string numbered(std::string_view stem, int number) {
  std::string text(stem);
  text += std::to_string(number);
  return text;
}

Database::Database() {
  TextBuffer message;
  if (lib().ztbcreate(&database_, message, ZTB_TEXT_BUFFER_SIZE) != 1) {
    throw std::runtime_error("cannot make a database: " + message.str());
  }
}

Database::Database(const SystemDirectory& directory) {
  TextBuffer message;
  if (lib().ztbcreated(&database_, directory.path.c_str(), message, ZTB_TEXT_BUFFER_SIZE) != 1) {
    throw std::runtime_error("cannot make a database: " + message.str());
  }
}

Database::Database(const std::string& fileName) : Database() {
  if (lib().c__ztbinitfromrxf(database_, fileName.c_str()) != 1) {
    throw std::runtime_error("cannot open " + fileName + ": " + lastError());
  }
}

Database::~Database() {
  lib().ztbfree(&database_);
}

std::string Database::lastError() const {
  TextBuffer text;
  lib().c__ztbgetlasterror(database_, text);
  return text.str();
}

void Database::markError() {
  int ignored = 0;
  lib().c__ztbinfo(database_, markKey, &ignored, nullptr, nullptr);
}

bool Database::errorUntouched() const {
  return lastError() == markText;
}

int Database::info(int key) const {
  int result = -1;
  if (lib().c__ztbinfo(database_, key, &result, nullptr, nullptr) != 1) {
    throw std::runtime_error("info: " + lastError());
  }
  return result;
}

int Database::symbolInfo(void* symbol, int key) const {
  int result = -1;
  if (lib().c__ztbsymbolinfo(database_, symbol, key, &result, nullptr, nullptr) != 1) {
    throw std::runtime_error("symbol info: " + lastError());
  }
  return result;
}

std::string Database::symbolText(void* symbol, int key) const {
  TextBuffer text;
  if (lib().c__ztbsymbolinfo(database_, symbol, key, nullptr, nullptr, text) != 1) {
    throw std::runtime_error("symbol info: " + lastError());
  }
  return text.str();
}

void* Database::add(const char* name, int dim, int type, int userInfo, const char* text) {
  void* symbol = nullptr;
  if (lib().c__ztbaddsymbol(database_, name, dim, type, userInfo, text, &symbol) != 1) {
    throw std::runtime_error("add symbol: " + lastError());
  }
  return symbol;
}

void* Database::addAlias(const char* name, void* set) {
  return add(name, 1, ZTB_ALIAS, symbolInfo(set, ZTB_SYMBOL_INFO_NUMBER));
}

void* Database::addOver(const char* name, int type, std::vector<void*> domains) {
  void* symbol = nullptr;
  lib().c__ztbaddsymbolx(database_, name, static_cast<int>(domains.size()), type, 0, "",
                         domains.data(), nullptr, &symbol);
  if (symbol == nullptr) {
    throw std::runtime_error("add symbol: " + lastError());
  }
  return symbol;
}

void* Database::addOverNames(const char* name, int type, std::vector<const char*> domainNames) {
  std::vector<void*> domains(domainNames.size());
  void* symbol = nullptr;
  lib().c__ztbaddsymbolx(database_, name, static_cast<int>(domains.size()), type, 0, "",
                         domains.data(), domainNames.data(), &symbol);
  if (symbol == nullptr) {
    throw std::runtime_error("add symbol: " + lastError());
  }
  return symbol;
}

void* Database::find(const char* name) {
  void* symbol = nullptr;
  if (lib().c__ztbfindsymbol(database_, name, &symbol) != 1) {
    throw std::runtime_error("find symbol: " + lastError());
  }
  return symbol;
}

void* Database::findWithAlias(const char* name) {
  void* symbol = nullptr;
  if (lib().c__ztbfindsymbolwithalias(database_, name, &symbol) != 1) {
    throw std::runtime_error("find symbol: " + lastError());
  }
  return symbol;
}

int Database::uel(const char* label) {
  int number = -1;
  if (lib().c__ztbmergeuel(database_, label, &number) != 1) {
    throw std::runtime_error("merge label: " + lastError());
  }
  return number;
}

int Database::findUel(const char* label) {
  int number = -2;
  if (lib().c__ztbfinduel(database_, label, &number) != 1) {
    throw std::runtime_error("find label: " + lastError());
  }
  return number;
}

Record Database::put(void* symbol, Keys keys) {
  void* record = nullptr;
  if (lib().c__ztbmergerecord(database_, symbol, keys, &record) != 1) {
    throw std::runtime_error("merge record: " + lastError());
  }
  return {database_, record};
}

Record Database::put(void* symbol, Keys keys, double level) {
  Record record = put(symbol, std::move(keys));
  lib().c__ztbsetlevel(database_, record, level);
  return record;
}

Record Database::record(void* symbol, Keys keys) {
  void* record = nullptr;
  if (lib().c__ztbfindrecord(database_, symbol, keys, &record) != 1) {
    throw std::runtime_error("find record: " + lastError());
  }
  return {database_, record};
}

Record Database::first(void* symbol) {
  void* record = nullptr;
  if (lib().c__ztbfindfirstrecord(database_, symbol, &record) != 1) {
    throw std::runtime_error("first record: " + lastError());
  }
  return {database_, record};
}

Record Database::last(void* symbol) {
  void* record = nullptr;
  if (lib().c__ztbfindlastrecord(database_, symbol, &record) != 1) {
    throw std::runtime_error("last record: " + lastError());
  }
  return {database_, record};
}

double Database::level(void* record) const {
  double value = 0;
  if (lib().c__ztbgetlevel(database_, record, &value) != 1) {
    throw std::runtime_error("level: " + lastError());
  }
  return value;
}

std::string Database::elementText(void* record) const {
  TextBuffer text;
  if (lib().c__ztbgetelemtext(database_, record, text) != 1) {
    throw std::runtime_error("element text: " + lastError());
  }
  return text.str();
}

Labels Database::labels(void* record, int dim) const {
  TextBuffers texts;
  if (lib().c__ztbgetkeys(database_, record, dim, texts) != 1) {
    throw std::runtime_error("keys: " + lastError());
  }
  Labels result;
  for (int d = 0; d < dim; ++d) {
    result.push_back(texts[static_cast<size_t>(d)].str());
  }
  return result;
}

std::vector<Row> Database::rows(void* symbol) {
  std::vector<Row> result;
  if (recordCount(symbol) == 0) {
    return result;
  }
  const int dim = symbolInfo(symbol, ZTB_SYMBOL_INFO_DIMENSION);
  const Record record = first(symbol);
  do {
    result.push_back({labels(record, dim), level(record)});
  } while (lib().c__ztbrecordmovenext(database_, record) == 1);
  return result;
}

}  // namespace ztbtest
