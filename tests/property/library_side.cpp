#include "tests/property/library_side.h"

#include <array>

#include "tests/support/text_buffer.h"

namespace ztbtest {

namespace {

constexpr std::array getters{&Library::c__ztbgetlevel, &Library::c__ztbgetmarginal,
                             &Library::c__ztbgetlower, &Library::c__ztbgetupper,
                             &Library::c__ztbgetscale};
constexpr std::array setters{&Library::c__ztbsetlevel, &Library::c__ztbsetmarginal,
                             &Library::c__ztbsetlower, &Library::c__ztbsetupper,
                             &Library::c__ztbsetscale};

Answer numberAnswer(int result, int number) {
  return {result, result == 1 ? numberText(number) : std::string()};
}

Answer textAnswer(int result, const TextBuffer& text) {
  return {result, result == 1 ? text.str() : std::string()};
}

}  // namespace

void* LibrarySide::symbolAt(size_t position) const {
  void* symbol = nullptr;
  lib().c__ztbgetsymbolbynumber(*database_, static_cast<int>(position), &symbol);
  return symbol;
}

int LibrarySide::positionOf(void* symbol) const {
  const int count = info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS);
  for (int position = -1; position < count; ++position) {
    void* candidate = nullptr;
    lib().c__ztbgetsymbolbynumber(*database_, position, &candidate);
    if (candidate == symbol) {
      return position;
    }
  }
  return -2;
}

Answer LibrarySide::foundSymbol(int result, void* symbol) const {
  return result == 1 ? Answer{1, numberText(positionOf(symbol))} : Answer{result, ""};
}

Answer LibrarySide::foundRecord(int result, void* record) {
  if (result == 1) {
    cursor_.reset();
    cursor_.emplace(*database_, record);
  }
  return {result, ""};
}

Answer LibrarySide::mergeLabel(const std::string& label) {
  int number = 0;
  const int result = lib().c__ztbmergeuel(*database_, label.c_str(), &number);
  return numberAnswer(result, number);
}

Answer LibrarySide::findLabel(const std::string& label) {
  int number = 0;
  const int result = lib().c__ztbfinduel(*database_, label.c_str(), &number);
  return numberAnswer(result, number);
}

Answer LibrarySide::labelOf(int number) {
  TextBuffer text;
  const int result = lib().c__ztbgetuelbyindex(*database_, number, text);
  return textAnswer(result, text);
}

Answer LibrarySide::addSymbol(const std::string& name, int dim, int type, int userInfo,
                              const std::string& text) {
  void* symbol = nullptr;
  const int result =
      lib().c__ztbaddsymbol(*database_, name.c_str(), dim, type, userInfo, text.c_str(), &symbol);
  return foundSymbol(result, symbol);
}

Answer LibrarySide::findSymbol(const std::string& name, bool resolveAlias) {
  void* symbol = nullptr;
  const auto find = resolveAlias ? lib().c__ztbfindsymbol : lib().c__ztbfindsymbolwithalias;
  const int result = find(*database_, name.c_str(), &symbol);
  return foundSymbol(result, symbol);
}

Answer LibrarySide::symbolByIndex(int index) {
  void* symbol = nullptr;
  const int result = lib().c__ztbgetsymbolbyindex(*database_, index, &symbol);
  return foundSymbol(result, symbol);
}

Answer LibrarySide::symbolByNumber(int number) {
  void* symbol = nullptr;
  const int result = lib().c__ztbgetsymbolbynumber(*database_, number, &symbol);
  return foundSymbol(result, symbol);
}

Answer LibrarySide::countRecords(size_t symbol) {
  int count = -1;
  const int result = lib().c__ztbsymbolinfo(*database_, symbolAt(symbol),
                                            ZTB_SYMBOL_INFO_RECORD_COUNT, &count, nullptr, nullptr);
  return {result, numberText(count)};
}

Answer LibrarySide::clear(size_t symbol) {
  return {lib().c__ztbclearsymbol(*database_, symbolAt(symbol)), ""};
}

void LibrarySide::setUserInfo(size_t symbol, int userInfo) {
  lib().c__ztbsetuserinfo(*database_, symbolAt(symbol), userInfo);
}

std::string LibrarySide::description(size_t position) {
  void* const symbol = symbolAt(position);
  std::string text = database_->symbolText(symbol, ZTB_SYMBOL_INFO_NAME) + "|" +
                     database_->symbolText(symbol, ZTB_SYMBOL_INFO_TEXT);
  for (const int key : {ZTB_SYMBOL_INFO_DIMENSION, ZTB_SYMBOL_INFO_TYPE, ZTB_SYMBOL_INFO_USER_INFO,
                        ZTB_SYMBOL_INFO_NUMBER}) {
    text += "|" + numberText(database_->symbolInfo(symbol, key));
  }
  return text;
}

Answer LibrarySide::addRecord(size_t symbol, const std::vector<std::string>& labels) {
  Keys keys(labels);
  void* record = nullptr;
  const int result = lib().c__ztbaddrecord(*database_, symbolAt(symbol), keys, &record);
  return foundRecord(result, record);
}

Answer LibrarySide::mergeRecord(size_t symbol, const std::vector<std::string>& labels) {
  Keys keys(labels);
  void* record = nullptr;
  const int result = lib().c__ztbmergerecord(*database_, symbolAt(symbol), keys, &record);
  return foundRecord(result, record);
}

Answer LibrarySide::findRecord(size_t symbol, const std::vector<std::string>& labels) {
  Keys keys(labels);
  void* record = nullptr;
  const int result = lib().c__ztbfindrecord(*database_, symbolAt(symbol), keys, &record);
  return foundRecord(result, record);
}

Answer LibrarySide::storeByNumber(size_t symbol, const Key& key, bool check, const Slots* values) {
  void* record = nullptr;
  const int result = lib().c__ztbmergerecordint(
      *database_, symbolAt(symbol), key.data(), check ? 1 : 0, 1, &record,
      values == nullptr ? 0 : 1, values == nullptr ? nullptr : values->data());
  return foundRecord(result, record);
}

Answer LibrarySide::storeSetByNumber(size_t symbol, const Key& key, bool check,
                                     const std::string* text) {
  void* record = nullptr;
  const int result =
      lib().c__ztbmergesetrecordint(*database_, symbolAt(symbol), key.data(), check ? 1 : 0, 1,
                                    &record, text == nullptr ? nullptr : text->c_str());
  return foundRecord(result, record);
}

Answer LibrarySide::findInSlice(size_t symbol, const std::vector<std::string>& labels, bool last) {
  Keys keys(labels);
  void* record = nullptr;
  const auto find = last ? lib().c__ztbfindlastrecordslice : lib().c__ztbfindfirstrecordslice;
  const int result = find(*database_, symbolAt(symbol), keys, &record);
  return foundRecord(result, record);
}

Answer LibrarySide::findFirstOrLast(size_t symbol, bool last) {
  void* record = nullptr;
  const auto find = last ? lib().c__ztbfindlastrecord : lib().c__ztbfindfirstrecord;
  const int result = find(*database_, symbolAt(symbol), &record);
  return foundRecord(result, record);
}

Answer LibrarySide::copyCursor() {
  void* copy = nullptr;
  const int result = lib().c__ztbcopysymboliterator(*database_, *cursor_, &copy);
  return foundRecord(result, copy);
}

Answer LibrarySide::moveNext() {
  return {lib().c__ztbrecordmovenext(*database_, *cursor_), ""};
}

Answer LibrarySide::movePrev() {
  return {lib().c__ztbrecordmoveprev(*database_, *cursor_), ""};
}

Answer LibrarySide::hasNext() {
  return {lib().c__ztbrecordhasnext(*database_, *cursor_), ""};
}

Answer LibrarySide::hasPrev() {
  return {lib().c__ztbrecordhasprev(*database_, *cursor_), ""};
}

Answer LibrarySide::readSlot(int slot) {
  double value = 0;
  const auto get = lib().*getters.at(static_cast<size_t>(slot));
  const int result = get(*database_, *cursor_, &value);
  return {result, result == 1 ? valueText(value) : std::string()};
}

Answer LibrarySide::writeSlot(int slot, double value) {
  const auto set = lib().*setters.at(static_cast<size_t>(slot));
  return {set(*database_, *cursor_, value), ""};
}

Answer LibrarySide::readText() {
  TextBuffer text;
  const int result = lib().c__ztbgetelemtext(*database_, *cursor_, text);
  return textAnswer(result, text);
}

Answer LibrarySide::writeText(const std::string& text) {
  return {lib().c__ztbsetelemtext(*database_, *cursor_, text.c_str()), ""};
}

Answer LibrarySide::readKey(int index) {
  TextBuffer text;
  const int result = lib().c__ztbgetkey(*database_, *cursor_, index, text);
  return textAnswer(result, text);
}

Answer LibrarySide::erase() {
  return {lib().c__ztbdeleterecord(*database_, *cursor_), ""};
}

std::string LibrarySide::rawRecord(int dim) {
  std::array<int, 20> key{};
  Slots values{};
  if (lib().c__ztbgetrecordraw(*database_, *cursor_, dim, key.data(), values.data()) != 1) {
    return "no record: " + lastError();
  }
  std::string text;
  for (int d = 0; d < dim; ++d) {
    text += numberText(key.at(static_cast<size_t>(d))) + ",";
  }
  return text + valueText(values[0]);
}

Answer LibrarySide::closeFile(bool loadRemain) {
  return {lib().c__ztbcloserxf(*database_, loadRemain ? 1 : 0), ""};
}

void LibrarySide::setSpecialValues(const std::array<double, 5>& spelling) {
  lib().c__ztbsetspecialvalues(*database_, spelling.data());
}

Answer LibrarySide::write() {
  const std::string file = folder_.file(numbered("file", ++fileCount_));
  return {lib().c__ztbwriterxf(*database_, file.c_str(), 0), ""};
}

void LibrarySide::reopen() {
  cursor_.reset();
  database_ = std::make_unique<Database>(folder_.file(numbered("file", fileCount_)));
}

}  // namespace ztbtest
