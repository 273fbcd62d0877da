#include "providers/model/file_bounds.h"

#include <cmath>

namespace lomu {

double fromFile(double number) {
  return std::abs(number) >= kFileInfinity ? std::copysign(kInfinity, number) : number;
}

namespace {

// The range that gives exactly the other side of a row whose right-hand side is `rhs`, which it
// leaves in `direction`; false if there is none.
bool exactRange(double rhs, double other, double direction, double& range) {
  const double near = (other - rhs) * direction;
  for (const double candidate :
       {near, std::nextafter(near, -kInfinity), std::nextafter(near, kInfinity)}) {
    range = candidate;
    if (candidate != 0 && rhs + direction * candidate == other) return true;
  }
  return false;
}

void setBothSides(RowData& row, double lower, double upper) {
  row.type = RowType::lessOrEqual;
  row.rhs = upper;
  if (exactRange(upper, lower, -1, row.range)) return;
  const bool isExactFromBelow = exactRange(lower, upper, 1, row.range);
  if (isExactFromBelow || std::abs(lower) < std::abs(upper)) {
    row.type = RowType::greaterOrEqual;
    row.rhs = lower;
  }
  if (!isExactFromBelow) row.range = upper - lower;
}

}  // namespace

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
  } else if (lower != -kInfinity && upper != kInfinity) {
    setBothSides(row, lower, upper);
  } else if (upper != kInfinity) {
    row.type = RowType::lessOrEqual;
    row.rhs = upper;
  } else if (lower != -kInfinity) {
    row.type = RowType::greaterOrEqual;
    row.rhs = lower;
  }
  return nullptr;
}

}  // namespace lomu
