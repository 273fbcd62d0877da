#include "providers/model/file_bounds.h"

#include <cmath>

namespace lomu {

double fromFile(double number) {
  return std::abs(number) >= kFileInfinity ? std::copysign(kInfinity, number) : number;
}

const char* setRowBounds(RowData& row, double lower, double upper) {
  if (std::isnan(lower) || std::isnan(upper) || lower == kInfinity || upper == -kInfinity) {
    return "has an infinite number where no value satisfies it, expected a size below 1e30";
  }
  row.type = RowType::free;
  row.rhs = 0;
  row.range = 0;
  if (lower == upper) {
    row.type = RowType::equal;
    row.rhs = upper;
  } else if (upper != kInfinity) {
    row.type = RowType::lessOrEqual;
    row.rhs = upper;
    if (lower != -kInfinity) row.range = upper - lower;
  } else if (lower != -kInfinity) {
    row.type = RowType::greaterOrEqual;
    row.rhs = lower;
  }
  return nullptr;
}

}  // namespace lomu
