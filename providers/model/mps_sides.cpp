#include "providers/model/mps_sides.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <string_view>
#include <utility>

#include "providers/model/lp_tokens.h"

namespace lomu {

namespace {

constexpr double kNoRange = std::numeric_limits<double>::quiet_NaN();

// A range widens the row by its size, to the side that the type leaves open; an = row to the side
// of its sign.
void applyRange(RowData& row, double range) {
  if (std::isnan(range)) return;
  const double size = std::abs(range);
  if (std::isinf(size)) {
    if (row.type == RowType::equal) {
      row.type = range > 0 ? RowType::greaterOrEqual : RowType::lessOrEqual;
    }
    return;
  }
  if (size == 0) {
    row.type = RowType::equal;
    return;
  }
  if (row.type == RowType::equal) {
    row.type = range > 0 ? RowType::greaterOrEqual : RowType::lessOrEqual;
  }
  row.range = size;
}

}  // namespace

// Calls take(row, value, field) for each pair of the line if its vector counts.
template <typename Take>
void MpsSides::readPairs(FirstVector& vector, const Take& take) {
  MpsLines& lines = model_.lines;
  model_.dropComment(1);
  const std::size_t begin = lines.count() % 2;
  const std::string_view name = begin == 1 ? lines[0] : std::string_view();
  if (lines.count() < 2) lines.failExpecting(lines.count(), "a row and a number");
  model_.endAt(4 + begin);
  if (!vector.takes(model_, name, 0)) return;
  for (std::size_t field = begin; field < lines.count(); field += 2) {
    take(model_.row(field), lines.number(field + 1), field + 1);
  }
}

void MpsSides::readRhs() {
  readPairs(rhs_, [&](int row, double value, std::size_t field) {
    RowData& data = model_.data.rows[static_cast<std::size_t>(row)];
    if (row == 0) {
      model_.data.objectiveConstant = 0 - model_.coefficient(field);
      return;
    }
    const bool hasNone = data.type == RowType::equal         ? std::isinf(value)
                         : data.type == RowType::lessOrEqual ? value == -kInfinity
                                                             : value == kInfinity;
    if (hasNone && data.type != RowType::free) {
      model_.lines.fail(field,
                        "row " + shown(data.name) +
                            " has an infinite number where no value satisfies it, expected a "
                            "size below 1e30");
    }
    data.rhs = value;
  });
}

void MpsSides::readRange() {
  readPairs(ranges_, [&](int row, double value, std::size_t field) {
    const RowData& data = model_.data.rows[static_cast<std::size_t>(row)];
    if (data.type == RowType::free || row == 0) {
      constexpr std::string_view kSubject = "range of a free row";
      if (model_.notes.count(kSubject)) return;
      model_.notes.add(kSubject, model_.lines.line(), model_.lines.columnOf(field),
                       "the range of the free row " + shown(data.name) + " is passed over");
      return;
    }
    if (rangeOf_.empty()) rangeOf_.assign(model_.data.rows.size(), kNoRange);
    rangeOf_[static_cast<std::size_t>(row)] = value;
  });
}

void MpsSides::settle() {
  for (std::size_t i = 1; i < rangeOf_.size(); ++i) applyRange(model_.data.rows[i], rangeOf_[i]);
  for (RowData& row : model_.data.rows) {
    if (std::isinf(row.rhs)) row = RowData{std::move(row.name)};
    if (row.type == RowType::free) row.rhs = 0;
  }
}

}  // namespace lomu
