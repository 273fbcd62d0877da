#include "core/handles.h"

namespace ztb {

void throwNoKeys(const AbstractZTBSymbol& symbol) {
  throw std::logic_error("no keys are given for symbol " + symbol.name);
}

std::string recordText(const char* const* keys, int dim) {
  std::string text = "(\"";
  for (int d = 0; d < dim; ++d) {
    if (d > 0) {
      text += ",\"";
    }
    text += keys[d];
    text += '"';
  }
  return text + ')';
}

}  // namespace ztb
