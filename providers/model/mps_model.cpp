#include "providers/model/mps_model.h"

#include <cmath>

#include "providers/model/lp_tokens.h"

namespace lomu {

int MpsModel::row(std::size_t field) const {
  if (field >= lines.count()) lines.failExpecting(field, "the name of a row");
  const int found = rows.find(data.rows, lines[field]);
  if (found == NameIndex<>::kNone) {
    lines.fail(field, "there is no row " + shown(lines[field]) + ", expected one of ROWS");
  }
  return found;
}

int MpsModel::column(std::size_t field) const {
  if (field >= lines.count()) lines.failExpecting(field, "the name of a column");
  const int found = columns.find(data.columns, lines[field]);
  if (found == NameIndex<>::kNone) {
    lines.fail(field, "there is no column " + shown(lines[field]) + ", expected one of COLUMNS");
  }
  return found;
}

double MpsModel::coefficient(std::size_t field) const {
  if (field >= lines.count()) lines.failExpecting(field, "a number");
  const double value = lines.number(field);
  if (!std::isfinite(value)) {
    lines.fail(field, "the number " + shown(lines[field]) +
                          " is out of range, expected a size below 1e30");
  }
  return value;
}

bool MpsModel::isRow(std::size_t field) const {
  return rows.find(data.rows, lines[field]) != NameIndex<>::kNone;
}

bool MpsModel::isColumn(std::size_t field) const {
  return columns.find(data.columns, lines[field]) != NameIndex<>::kNone;
}

void MpsModel::dropComment(std::size_t from) {
  for (std::size_t field = from; field < lines.count(); ++field) {
    if (!lines[field].starts_with('$') || isRow(field) || isColumn(field)) continue;
    lines.dropFrom(field);
  }
}

void MpsModel::endAt(std::size_t count) const {
  if (lines.count() > count) lines.failExpecting(count, "the end of the line");
}

}  // namespace lomu
