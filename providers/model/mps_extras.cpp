#include "providers/model/mps_extras.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <utility>
#include <ztb/case_folding.hpp>

#include "providers/model/lp_tokens.h"

namespace lomu {

namespace {

bool isNumber(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc{} && end == text.data() + text.size();
}

}  // namespace

void MpsProducts::begin(int row, double diagonal, double beside) {
  row_ = row;
  diagonal_ = diagonal;
  beside_ = beside;
}

void MpsProducts::beginTriangle() {
  begin(model_.lines.count() > 1 ? model_.row(1) : 0, 0.5, 1);
}

void MpsProducts::beginMatrix() {
  begin(model_.lines.count() > 1 ? model_.row(1) : 0, 0.5, 0.5);
}

void MpsProducts::beginMatrixOfRow() {
  begin(model_.row(1), 1, 1);
}

void MpsProducts::read() {
  const std::size_t first = 0;
  const int column1 = model_.column(first);
  const int column2 = model_.column(first + 1);
  const double value = model_.coefficient(first + 2);
  model_.endAt(first + 3);
  const double weight = column1 == column2 ? diagonal_ : beside_;
  model_.data.products.push_back({row_, column1, column2, weight * value});
}

void MpsSets::read() {
  if (beginsSet()) {
    beginSet();
  } else {
    addMember();
  }
}

// A member whose column is called S1 has a number behind it, a set a name.
bool MpsSets::beginsSet() const {
  const MpsLines& lines = model_.lines;
  const bool isType = ztb::sameFolded(lines[0], "S1") || ztb::sameFolded(lines[0], "S2");
  if (!isType) return false;
  const bool isMember = lines.count() == 2 && isNumber(lines[1]) &&
                        model_.columns.find(model_.data.columns, lines[0]) != NameIndex<>::kNone;
  return !isMember;
}

void MpsSets::beginSet() {
  const MpsLines& lines = model_.lines;
  if (lines.count() < 2) lines.failExpecting(1, "the name of the set");
  const bool hasVector = lines.count() > 2 && !isNumber(lines[2]);
  const std::size_t name = hasVector ? 2 : 1;
  if (name + 1 < lines.count()) static_cast<void>(lines.number(name + 1));
  model_.endAt(name + 2);
  OrderedSet set;
  set.kind = lines[0][1] - '0';
  set.name = lines[name];
  model_.data.sets.push_back(std::move(set));
  members_ = {};
}

void MpsSets::addMember() {
  const MpsLines& lines = model_.lines;
  // In fixed format the type comes first, which is empty here.
  const std::size_t begin = lines[0].empty() ? 1 : 0;
  const std::size_t fields = lines.count() - begin;
  const bool hasVector = fields > 2 || (fields == 2 && !isNumber(lines[begin + 1]));
  const std::size_t column = hasVector ? begin + 1 : begin;
  if (model_.data.sets.empty()) lines.failExpecting(begin, "S1 or S2 and the name of a set");
  OrderedSet& set = model_.data.sets.back();
  const int number = model_.column(column);
  const bool hasWeight = column + 1 < lines.count();
  const double weight =
      hasWeight ? model_.coefficient(column + 1) : static_cast<double>(set.members.size() + 1);
  model_.endAt(column + 2);
  if (!members_.take(number, weight)) {
    lines.fail(column, "the column " + shown(lines[column]) +
                           " or its weight stands twice in set " + shown(set.name) +
                           ", expected columns with weights that order them");
  }
  set.members.push_back({number, weight});
}

}  // namespace lomu
