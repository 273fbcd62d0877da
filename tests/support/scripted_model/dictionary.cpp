// Name dictionary of the scripted model peers.

#include <algorithm>
#include <span>
#include <string_view>

#include "tests/support/scripted_model/script.h"
#include "tests/support/scripted_model/scripted_model.h"

using namespace scriptedmodel;

namespace {

const Symbol& symbolAt(int i) {
  return script().symbols.at(static_cast<std::size_t>(i) - 1);
}

const std::vector<int>& keysAt(const Symbol& symbol, int rc) {
  const auto place = static_cast<std::size_t>(rc);
  return symbol.type == variableType ? script().columns.at(place).keys
                                     : script().rows.at(place).keys;
}

// The next place of a walk's symbol whose keys agree; -1 at the end.
int nextPlace(Object& search) {
  const Symbol& symbol = symbolAt(search.symbol);
  while (search.next < symbol.places.size()) {
    const int place = symbol.places[search.next++];
    const std::vector<int>& keys = keysAt(symbol, place);
    if (std::ranges::equal(keys, std::span(search.keys).first(keys.size()),
                           [](int key, int wanted) { return wanted == 0 || wanted == key; })) {
      return place;
    }
  }
  return -1;
}

int uels(int symbolNumber, const std::vector<int>& from, int* symbol, int* keys, int* dim) {
  *symbol = symbolNumber;
  std::ranges::copy(from, keys);
  *dim = static_cast<int>(from.size());
  return 0;
}

}  // namespace

extern "C" {

SCRIPTED_EXPORT void nmtXCreate(void** object) {
  *object = &script().dictionary;
}
SCRIPTED_EXPORT void CnmtXCreateD(void** object, const char* /*directory*/) {
  nmtXCreate(object);
}
SCRIPTED_EXPORT void nmtXFree(void** object) {
  *object = nullptr;
}
SCRIPTED_EXPORT int CnmtXCheck(const char* operation, int argCount, const int* codes, char* msg) {
  constexpr ztbPeerOperation operations[] = {ZTB_PEER_NMT_OPERATIONS(ZTB_PEER_ENTRY)};
  return check(operations, operation, argCount, codes, msg);
}
SCRIPTED_EXPORT int CnmtXAPIVersion(int api, char* msg, int* compatibility) {
  return version("nmt", api, msg, compatibility);
}

SCRIPTED_EXPORT int nmtNUels(void* nmt) {
  const Call call(nmt, "nmtNUels");
  return call.answer(static_cast<int>(script().labels.size()));
}

SCRIPTED_EXPORT int CnmtUelLabel(void* nmt, int i, char* quote, char* buffer, int bufferSize) {
  const Call call(nmt, "nmtUelLabel", i, bufferSize);
  *quote = '"';
  if (call.goesOn()) {
    copyOut(buffer, script().labels.at(static_cast<std::size_t>(i) - 1),
            static_cast<std::size_t>(bufferSize));
  }
  return call.answer(0);
}

SCRIPTED_EXPORT int nmtNLSyms(void* nmt) {
  const Call call(nmt, "nmtNLSyms");
  return call.answer(static_cast<int>(script().symbols.size()));
}

SCRIPTED_EXPORT int CnmtSymName(void* nmt, int i, char* buffer, int bufferSize) {
  const Call call(nmt, "nmtSymName", i, bufferSize);
  if (call.goesOn()) copyOut(buffer, symbolAt(i).name, static_cast<std::size_t>(bufferSize));
  return call.answer(0);
}

SCRIPTED_EXPORT int nmtSymType(void* nmt, int i) {
  const Call call(nmt, "nmtSymType", i);
  return call.answer(symbolAt(i).type);
}

SCRIPTED_EXPORT int nmtSymDim(void* nmt, int i) {
  const Call call(nmt, "nmtSymDim", i);
  return call.answer(symbolAt(i).dim);
}

SCRIPTED_EXPORT int CnmtSymText(void* nmt, int i, char* quote, char* buffer, int bufferSize) {
  const Call call(nmt, "nmtSymText", i, bufferSize);
  *quote = '\'';
  if (call.goesOn()) copyOut(buffer, symbolAt(i).text, static_cast<std::size_t>(bufferSize));
  return call.answer(0);
}

SCRIPTED_EXPORT int nmtSymUserInfo(void* nmt, int i) {
  const Call call(nmt, "nmtSymUserInfo", i);
  return call.answer(symbolAt(i).userInfo);
}

SCRIPTED_EXPORT int CnmtSymIndex(void* nmt, const char* name) {
  const Call call(nmt, "nmtSymIndex", name);
  const auto found = std::ranges::find(script().symbols, std::string_view(name), &Symbol::name);
  return call.answer(found == script().symbols.end()
                         ? -1
                         : static_cast<int>(found - script().symbols.begin()) + 1);
}

SCRIPTED_EXPORT void* nmtFindFirstRowCol(void* nmt, int i, const int* keys, int* rc) {
  const auto dim = static_cast<std::size_t>(symbolAt(i).dim);
  const Call call(nmt, "nmtFindFirstRowCol", i, Array<int>{keys, dim});
  if (!call.goesOn()) return nullptr;
  Object* search = script().searches.make();
  search->symbol = i;
  std::copy_n(keys, dim, search->keys.begin());
  *rc = nextPlace(*search);
  return search;
}

SCRIPTED_EXPORT int nmtFindNextRowCol(void* nmt, void* search, int* rc) {
  const Call call(nmt, "nmtFindNextRowCol", search);
  if (!call.goesOn()) {
    *rc = call.answer(0);
    return 0;
  }
  *rc = nextPlace(*script().searches.find(search));
  return *rc < 0 ? 0 : 1;
}

SCRIPTED_EXPORT void nmtFindClose(void* nmt, void* search) {
  const Call call(nmt, "nmtFindClose", search);
  if (Object* object = script().searches.find(search)) object->number = 0;
}

SCRIPTED_EXPORT int nmtRowUels(void* nmt, int rc, int* symbol, int* keys, int* dim) {
  const Call call(nmt, "nmtRowUels", rc);
  const Row& row = script().rows.at(static_cast<std::size_t>(rc));
  return call.goesOn() ? uels(row.symbol, row.keys, symbol, keys, dim) : call.answer(0);
}

SCRIPTED_EXPORT int nmtColUels(void* nmt, int rc, int* symbol, int* keys, int* dim) {
  const Call call(nmt, "nmtColUels", rc);
  const Column& column = script().columns.at(static_cast<std::size_t>(rc));
  return call.goesOn() ? uels(column.symbol, column.keys, symbol, keys, dim) : call.answer(0);
}

}  // extern "C"
