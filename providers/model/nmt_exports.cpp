// The exported functions of the name-dictionary library. Its objects are made by the model library;
// an object made here is an empty dictionary. Numbers out of range give empty texts and zeros.

#include <ztb/peer.h>

#include <algorithm>
#include <iterator>
#include <new>

#include "providers/model/dictionary.h"
#include "providers/model/fixed_text.h"

// With C linkage, a definition that differs from its prototype in ztb/peer.h does not compile.
#define NMT_EXPORT extern "C"

namespace {

using lomu::copyText;
using lomu::Dictionary;
using lomu::DictionarySearch;
using lomu::DictionarySymbol;

constexpr ztbPeerOperation kNmtOperations[] = {ZTB_PEER_NMT_OPERATIONS(ZTB_PEER_ENTRY)};

Dictionary& dictionary(void* nmt) {
  return *static_cast<Dictionary*>(nmt);
}

const DictionarySymbol* symbolOf(void* nmt, int i) {
  const auto& symbols = dictionary(nmt).symbols();
  if (i < 1 || static_cast<std::size_t>(i) > symbols.size()) return nullptr;
  return &symbols[static_cast<std::size_t>(i) - 1];
}

int putPlace(Dictionary::Place place, int* symbol, int* keys, int* dim) {
  *symbol = place.symbol;
  *dim = place.dimension;
  // A loop: most keys are short, and a call would cost more than the copy.
  for (int d = 0; d < place.dimension; ++d) keys[d] = place.keys[d];
  return place.symbol == 0 ? 0 : 1;
}

}  // namespace

NMT_EXPORT void nmtXCreate(void** object) {
  if (object != nullptr) *object = new (std::nothrow) Dictionary;
}

NMT_EXPORT void CnmtXCreateD(void** object, const char* /*directory*/) {
  nmtXCreate(object);
}

// For objects of nmtXCreate; a model's dictionary is freed with the model.
NMT_EXPORT void nmtXFree(void** object) {
  if (object == nullptr) return;
  delete static_cast<Dictionary*>(*object);
  *object = nullptr;
}

NMT_EXPORT int CnmtXCheck(const char* operation, int argCount, const int* codes, char* msg) {
  return ztbPeerCheck("NMT", kNmtOperations, std::size(kNmtOperations), operation, argCount, codes,
                      msg);
}

NMT_EXPORT int CnmtXAPIVersion(int api, char* msg, int* compatibility) {
  return ztbPeerVersion("NMT", ZTB_PEER_NMT_VERSION, api, msg, compatibility);
}

NMT_EXPORT int nmtNUels(void* nmt) {
  return static_cast<int>(dictionary(nmt).labels().size());
}

NMT_EXPORT int CnmtUelLabel(void* nmt, int i, char* quote, char* buffer, int bufferSize) {
  const auto& labels = dictionary(nmt).labels();
  *quote = ' ';
  const bool exists = i >= 1 && static_cast<std::size_t>(i) <= labels.size();
  copyText(exists ? labels[static_cast<std::size_t>(i) - 1] : "", buffer, bufferSize);
  return exists ? 1 : 0;
}

NMT_EXPORT int nmtNLSyms(void* nmt) {
  return static_cast<int>(dictionary(nmt).symbols().size());
}

NMT_EXPORT int CnmtSymName(void* nmt, int i, char* buffer, int bufferSize) {
  const DictionarySymbol* symbol = symbolOf(nmt, i);
  copyText(symbol == nullptr ? "" : symbol->name, buffer, bufferSize);
  return symbol == nullptr ? 0 : 1;
}

NMT_EXPORT int nmtSymType(void* nmt, int i) {
  const DictionarySymbol* symbol = symbolOf(nmt, i);
  return symbol == nullptr ? 0 : static_cast<int>(symbol->type);
}

NMT_EXPORT int nmtSymDim(void* nmt, int i) {
  const DictionarySymbol* symbol = symbolOf(nmt, i);
  return symbol == nullptr ? -1 : symbol->dimension;
}

NMT_EXPORT int CnmtSymText(void* nmt, int i, char* quote, char* buffer, int bufferSize) {
  const DictionarySymbol* symbol = symbolOf(nmt, i);
  *quote = ' ';
  copyText(symbol == nullptr ? "" : symbol->text, buffer, bufferSize);
  return symbol == nullptr ? 0 : 1;
}

NMT_EXPORT int nmtSymUserInfo(void* nmt, int i) {
  const DictionarySymbol* symbol = symbolOf(nmt, i);
  return symbol == nullptr ? 0 : symbol->userInfo;
}

NMT_EXPORT int CnmtSymIndex(void* nmt, const char* name) {
  return name == nullptr ? 0 : dictionary(nmt).find(name);
}

NMT_EXPORT void* nmtFindFirstRowCol(void* nmt, int i, const int* keys, int* rc) {
  *rc = -1;
  try {
    DictionarySearch* search = dictionary(nmt).openSearch(i, keys);
    if (search != nullptr) *rc = search->next();
    return search;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

NMT_EXPORT int nmtFindNextRowCol(void* /*nmt*/, void* search, int* rc) {
  *rc = search == nullptr ? -1 : static_cast<DictionarySearch*>(search)->next();
  return *rc >= 0 ? 1 : 0;
}

NMT_EXPORT void nmtFindClose(void* nmt, void* search) {
  dictionary(nmt).closeSearch(search);
}

NMT_EXPORT int nmtRowUels(void* nmt, int rc, int* symbol, int* keys, int* dim) {
  return putPlace(dictionary(nmt).rowPlace(rc), symbol, keys, dim);
}

NMT_EXPORT int nmtColUels(void* nmt, int rc, int* symbol, int* keys, int* dim) {
  return putPlace(dictionary(nmt).columnPlace(rc), symbol, keys, dim);
}
