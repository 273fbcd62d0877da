#include "providers/model/mps_bounds.h"

#include <algorithm>
#include <array>
#include <ztb/case_folding.hpp>

#include "providers/model/lp_tokens.h"

namespace lomu {

namespace {

struct BoundType {
  std::string_view name;
  MpsBounds::Value value;
};

constexpr std::array<BoundType, 11> kTypes{{{"UP", MpsBounds::Value::needed},
                                            {"LO", MpsBounds::Value::needed},
                                            {"FX", MpsBounds::Value::needed},
                                            {"FR", MpsBounds::Value::unused},
                                            {"MI", MpsBounds::Value::unused},
                                            {"PL", MpsBounds::Value::unused},
                                            {"BV", MpsBounds::Value::unused},
                                            {"LI", MpsBounds::Value::needed},
                                            {"UI", MpsBounds::Value::needed},
                                            {"SC", MpsBounds::Value::optional},
                                            {"SI", MpsBounds::Value::optional}}};

}  // namespace

MpsBounds::Value MpsBounds::valueOf(std::string_view type) {
  const auto* const found = std::find_if(kTypes.begin(), kTypes.end(), [&](const BoundType& known) {
    return ztb::sameFolded(known.name, type);
  });
  return found == kTypes.end() ? Value::noType : found->value;
}

void MpsBounds::apply(const MpsLines& lines, std::string_view type, int column,
                      std::size_t valueField) {
  const auto is = [&](std::string_view name) { return ztb::sameFolded(type, name); };
  ColumnData& data = columns_[static_cast<std::size_t>(column)];
  if (is("LI") || is("UI") || is("SI")) data.kind = ColumnKind::integer;
  if (is("UP") || is("UI")) {
    setUpper(lines, valueField, column, lines.number(valueField));
  } else if (is("LO") || is("LI")) {
    setLower(lines, valueField, column, lines.number(valueField));
  } else if (is("FX")) {
    setLower(lines, valueField, column, lines.number(valueField));
    setUpper(lines, valueField, column, lines.number(valueField));
  } else if (is("FR")) {
    setLower(lines, valueField, column, -kInfinity);
    setUpper(lines, valueField, column, kInfinity);
  } else if (is("MI")) {
    setLower(lines, valueField, column, -kInfinity);
  } else if (is("PL")) {
    setUpper(lines, valueField, column, kInfinity);
  } else if (is("BV")) {
    data.kind = ColumnKind::binary;
    setLower(lines, valueField, column, 0);
    setUpper(lines, valueField, column, 1);
  } else {
    data.semiContinuous = true;
    const double value = valueField < lines.count() ? lines.number(valueField) : kInfinity;
    setUpper(lines, valueField, column, value == 0 ? kInfinity : value);
  }
}

void MpsBounds::setLower(const MpsLines& lines, std::size_t field, int column, double value) {
  const auto at = static_cast<std::size_t>(column);
  if (value == kInfinity) {
    lines.fail(field, "the lower bound of " + shown(columns_[at].name) +
                          " is infinite on the wrong side, expected a value that can be reached");
  }
  if (given_.size() <= at) given_.resize(columns_.size());
  columns_[at].lower = value;
  given_[at] |= kLower;
}

void MpsBounds::setUpper(const MpsLines& lines, std::size_t field, int column, double value) {
  const auto at = static_cast<std::size_t>(column);
  if (value == -kInfinity) {
    lines.fail(field, "the upper bound of " + shown(columns_[at].name) +
                          " is infinite on the wrong side, expected a value that can be reached");
  }
  if (given_.size() <= at) given_.resize(columns_.size());
  columns_[at].upper = value;
  given_[at] |= kUpper;
  if (value < 0) negativeUppers_.push_back({column, lines.line(), lines.columnOf(field)});
}

void MpsBounds::settle() {
  given_.resize(columns_.size());
  for (const Place& place : negativeUppers_) {
    const auto at = static_cast<std::size_t>(place.column);
    constexpr std::string_view kSubject = "negative upper bound";
    if ((given_[at] & kLower) != 0 || notes_.count(kSubject)) continue;
    notes_.add(kSubject, place.line, place.position,
               "the upper bound of " + shown(columns_[at].name) +
                   " is below 0 and it has no lower one: taken as free below");
  }
  for (std::size_t j = 0; j < columns_.size(); ++j) {
    ColumnData& column = columns_[j];
    if (column.upper < 0 && (given_[j] & kLower) == 0) column.lower = -kInfinity;
    if (column.kind == ColumnKind::continuous) continue;
    if (given_[j] == 0) column.upper = 1;
    const bool isBinary = column.lower == 0 && column.upper == 1 && !column.semiContinuous;
    const bool staysWithin = column.lower >= 0 && column.upper <= 1;
    if (isBinary) column.kind = ColumnKind::binary;
    if (!staysWithin) column.kind = ColumnKind::integer;
  }
}

}  // namespace lomu
