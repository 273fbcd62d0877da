// The name dictionary of a model, as the bridge reads it.
#ifndef ZTB_BRIDGE_DICTIONARY_H_
#define ZTB_BRIDGE_DICTIONARY_H_

#include <array>
#include <string>

#include "core/handles.h"
#include "core/ztb.h"
#include "peers/nmt_family.h"

namespace ztb {

// Symbol types of a dictionary.
inline constexpr int dictionaryVariable = 5;
inline constexpr int dictionaryEquation = 6;

// Room for a symbol name or a label of a dictionary.
inline constexpr int dictionaryNameSize = 64;

// What stands behind a parameter's name in the variable that carries the parameter into the model.
inline constexpr const char* parameterSuffix = "_var";

inline std::string dictionarySymbolName(void* nmt, int index) {
  std::array<char, dictionaryNameSize> name = {};
  peers::nmtSymName(nmt, index, name.data(), dictionaryNameSize);
  return name.data();
}

// A walk over the rows or columns of one dictionary symbol. The peer's search is ended by `close`
// only: an update that stops half-way leaves it open.
class RowColWalk {
 public:
  // Over the columns of a variable, else over rows.
  // REQUIRES: index is that of a symbol of the dictionary.
  RowColWalk(void* nmt, int index, bool isVariable) : nmt_(nmt), isVariable_(isVariable) {
    const KeyBuffer anyKey = {};
    search_ = peers::nmtFindFirstRowCol(nmt_, index, anyKey.data(), &current_);
  }

  // Row or column number, negative at the end.
  [[nodiscard]] int current() const { return current_; }
  [[nodiscard]] bool atEnd() const { return current_ < 0; }
  void next() { peers::nmtFindNextRowCol(nmt_, search_, &current_); }
  void close() { peers::nmtFindClose(nmt_, search_); }

  // Label numbers of the present row or column.
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
  void* search_ = nullptr;
  int current_ = -1;
};

}  // namespace ztb

#endif  // ZTB_BRIDGE_DICTIONARY_H_
