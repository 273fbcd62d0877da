// Whether a symbol's positions fit into the 20 strings that the d__ and n__ families pass.
#ifndef ZTB_CORE_EXPORTS_STRING_ROOM_H_
#define ZTB_CORE_EXPORTS_STRING_ROOM_H_

#include "core/exports/short_string.h"
#include "core/frame.h"
#include "core/handles.h"

namespace ztb::exports {

// False, with "Dimension must be greater or equal 0 and smaller or equal %d (saw %d)", for a
// dimension outside 0 to 20.
inline bool isStringRoom(ztbRec* handle, int dim) {
  if (dim == entriesIn(dim)) {
    return true;
  }
  return databaseOf(handle).fail(
             "Dimension must be greater or equal 0 and smaller or equal %d (saw %d)",
             stringArraySize, dim) == success;
}

// The same for a symbol's dimension; a null symbol is left to the operation.
inline bool hasStringRoom(ztbRec* handle, void* sym) {
  return sym == nullptr || isStringRoom(handle, symbolOf(sym)->dim);
}

}  // namespace ztb::exports

#endif  // ZTB_CORE_EXPORTS_STRING_ROOM_H_
