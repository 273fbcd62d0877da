// The name dictionary of a model, as the bridge reads it. Symbols and labels count from 1, rows and
// columns from 0. A model without a dictionary, which is null here, has no symbols.
#ifndef ZTB_BRIDGE_DICTIONARY_H_
#define ZTB_BRIDGE_DICTIONARY_H_

#include <array>
#include <stdexcept>
#include <string>
#include <ztb/model_names.hpp>

#include "core/handles.h"
#include "core/ztb.h"
#include "peers/nmt_family.h"

namespace ztb {

// Symbol types of a dictionary.
inline constexpr int dictionaryVariable = 5;
inline constexpr int dictionaryEquation = 6;

// Room for a symbol name or a label of a dictionary.
inline constexpr int dictionaryNameSize = 64;

inline std::string dictionarySymbolName(void* nmt, int index) {
  std::array<char, dictionaryNameSize> name = {};
  peers::nmtSymName(nmt, index, name.data(), dictionaryNameSize);
  return name.data();
}

inline int dictionarySymbolCount(void* nmt) {
  return nmt == nullptr ? 0 : peers::nmtNLSyms(nmt);
}

// 0 or less for a name that is not in the dictionary.
inline int dictionarySymbolIndex(void* nmt, const std::string& name) {
  return nmt == nullptr ? 0 : peers::nmtSymIndex(nmt, name.c_str());
}

// The dimension of a symbol of the dictionary. Throws std::logic_error unless a key of it has room
// in a KeyBuffer.
inline int requireDictionaryKeyRoom(void* nmt, int index) {
  const int dim = peers::nmtSymDim(nmt, index);
  if (dim < 0 || dim > dmap::maxDimension) {
    throw std::logic_error("dimension " + std::to_string(dim) + " of model symbol number " +
                           std::to_string(index) + " is outside [0," +
                           std::to_string(dmap::maxDimension) + "]");
  }
  return dim;
}

// A walk over the rows or columns of one dictionary symbol. Its end closes the peer's search, also
// when an exception ends it, unless the search was left open.
class RowColWalk {
 public:
  // Over the columns of a variable, else over rows.
  // REQUIRES: index is that of a symbol of the dictionary.
  RowColWalk(void* nmt, int index, bool isVariable) : nmt_(nmt), isVariable_(isVariable) {
    const KeyBuffer anyKey = {};
    search_ = peers::nmtFindFirstRowCol(nmt_, index, anyKey.data(), &current_);
  }
  RowColWalk(const RowColWalk&) = delete;
  RowColWalk& operator=(const RowColWalk&) = delete;
  ~RowColWalk() {
    if (!leftOpen_) {
      peers::nmtFindClose(nmt_, search_);
    }
  }

  // Row or column number, negative at the end.
  [[nodiscard]] int current() const { return current_; }
  [[nodiscard]] bool atEnd() const { return current_ < 0; }
  void next() { peers::nmtFindNextRowCol(nmt_, search_, &current_); }
  void leaveOpen() { leftOpen_ = true; }

  // Label numbers of the present row or column.
  // REQUIRES: the symbol's keys have room in a KeyBuffer.
  [[nodiscard]] KeyBuffer keys() const {
    KeyBuffer keys = {};
    int symbol = 0;
    int dim = 0;
    if (isVariable_) {
      peers::nmtColUels(nmt_, current_, &symbol, keys.data(), &dim);
    } else {
      peers::nmtRowUels(nmt_, current_, &symbol, keys.data(), &dim);
    }
    return keys;
  }

 private:
  void* nmt_;
  bool isVariable_;
  bool leftOpen_ = false;
  void* search_ = nullptr;
  int current_ = -1;
};

}  // namespace ztb

#endif  // ZTB_BRIDGE_DICTIONARY_H_
