// The fields of records, whole symbols at a time.

#include <ztb/types.h>

#include <algorithm>

#include "providers/model/model.h"
#include "providers/model/model_error.h"

namespace lomu {

namespace {

double columnField(const Instance& instance, int column, int field) {
  switch (field) {
    case ZTB_LEVEL:
      return instance.column(column).level;
    case ZTB_MARGINAL:
      return instance.column(column).marginal;
    case ZTB_LOWER:
      return instance.plainLower(column);
    case ZTB_UPPER:
      return instance.plainUpper(column);
    default:
      return 1;
  }
}

// A database takes all rows of a symbol to be of the first one's type.
double rowField(const Instance& instance, int row, RowType type, int field) {
  switch (field) {
    case ZTB_LEVEL:
      return instance.row(row).level;
    case ZTB_MARGINAL:
      return instance.row(row).marginal;
    case ZTB_LOWER:
      return type == RowType::equal || type == RowType::greaterOrEqual ? instance.plainRhs(row)
                                                                       : -kInfinity;
    case ZTB_UPPER:
      return type == RowType::equal || type == RowType::lessOrEqual ? instance.plainRhs(row)
                                                                    : kInfinity;
    default:
      return 1;
  }
}

}  // namespace

int Model::copyField(std::string_view symbol, int field, std::span<double> values) const {
  if (field < ZTB_LEVEL || field > ZTB_SCALE) {
    throw ModelError("there is no field " + std::to_string(field) + ", expected " +
                     std::to_string(ZTB_LEVEL) + " to " + std::to_string(ZTB_SCALE));
  }
  const int number = dictionary.find(symbol);
  if (number == 0) {
    throw ModelError("the model has no variable or equation " + std::string(symbol));
  }
  const DictionarySymbol& found = dictionary.symbols()[static_cast<std::size_t>(number) - 1];
  const std::size_t count = std::min(values.size(), found.elements.size());
  if (found.type == SymbolType::variable) {
    for (std::size_t k = 0; k < count; ++k) {
      values[k] = columnField(instance, found.elements[k], field);
    }
  } else {
    for (std::size_t k = 0; k < count; ++k) {
      values[k] = rowField(instance, found.elements[k], instance.rowType(found.elements[0]), field);
    }
  }
  return static_cast<int>(found.elements.size());
}

}  // namespace lomu
