#include "providers/model/model_builder.h"

#include <ztb/model.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "providers/model/distinct_members.h"
#include "providers/model/model_error.h"

namespace lomu {

namespace {

constexpr std::size_t kMaxCount = std::numeric_limits<int>::max();

std::string checkedName(const char* name, const std::string& what) {
  if (name == nullptr || *name == '\0') throw ModelError(what + " needs a name");
  return name;
}

void checkFinite(double value, const std::string& what) {
  if (!std::isfinite(value)) throw ModelError(what + " has to be a finite number");
}

void checkBounds(const std::string& name, double lower, double upper) {
  if (std::isnan(lower) || std::isnan(upper) || lower == kInfinity || upper == -kInfinity) {
    throw ModelError("column \"" + name + "\": a bound is no number, or no point is within bounds");
  }
}

std::string inRange(const std::string& what, int number, std::size_t count) {
  return "there is no " + what + " " + std::to_string(number) + ", the model has " +
         std::to_string(count);
}

// Adds a row or column with a name that is free, both or neither: room is made before the name is
// taken, so that nothing can fail behind it. Gives its number.
template <typename Item>
int append(std::vector<Item>& items, Item item, NameIndex<>& names, const std::string& what) {
  if (items.size() >= kMaxCount) throw ModelError("the model has as many " + what + "s as it can");
  if (items.size() == items.capacity()) items.reserve(2 * items.size() + 1);
  const int number = static_cast<int>(items.size());
  if (names.enter(items, item.name, number) != number) {
    throw ModelError(what + " \"" + item.name + "\" stands twice");
  }
  items.push_back(std::move(item));
  return number;
}

template <typename Items>
void enterAll(const Items& items, std::size_t first, NameIndex<>& names, const std::string& what) {
  for (std::size_t i = first; i < items.size(); ++i) {
    const int number = static_cast<int>(i);
    if (names.enter(items, items[i].name, number) == number) continue;
    throw ModelError(what + " \"" + items[i].name + "\" stands twice");
  }
}

}  // namespace

ModelBuilder::ModelBuilder(ModelData data) : data_(std::move(data)) {
  columnNames_.reserve(data_.columns.size());
  rowNames_.reserve(data_.rows.size());
  enterAll(data_.columns, 0, columnNames_, "column");
  enterAll(data_.rows, 1, rowNames_, "row");
  checkFreeRow(data_.rows.front().name);
}

void ModelBuilder::setObjective(const char* name, bool maximize, double constant) {
  requireUndriven();
  std::string wanted = checkedName(name, "the objective");
  checkFinite(constant, "the objective's constant");
  checkFreeRow(wanted);
  data_.rows.front().name = std::move(wanted);
  data_.maximize = maximize;
  data_.objectiveConstant = constant;
}

// Whether no row but the objective has the name.
void ModelBuilder::checkFreeRow(const std::string& name) const {
  if (rowNames_.find(data_.rows, name) == NameIndex<>::kNone) return;
  throw ModelError("row \"" + name + "\" stands twice");
}

int ModelBuilder::addColumn(const char* name, int kind, double lower, double upper) {
  requireUndriven();
  ColumnData column{checkedName(name, "a column"), ColumnKind::continuous, lower, upper};
  if (kind < 0 || kind > ztbColumnSemiInteger) {
    throw ModelError("column \"" + column.name + "\": the kind is from 0 to 4, not " +
                     std::to_string(kind));
  }
  column.semiContinuous = kind == ztbColumnSemiContinuous || kind == ztbColumnSemiInteger;
  column.kind = kind == ztbColumnSemiInteger ? ColumnKind::integer
                : column.semiContinuous      ? ColumnKind::continuous
                                             : static_cast<ColumnKind>(kind);
  checkBounds(column.name, lower, upper);
  if (column.kind == ColumnKind::binary && (lower < 0 || upper > 1)) {
    throw ModelError("column \"" + column.name +
                     "\" is binary but has bounds beyond 0 and 1, expected bounds within them");
  }
  return append(data_.columns, std::move(column), columnNames_, "column");
}

int ModelBuilder::addRow(const char* name, int type, double rhs, double range) {
  requireUndriven();
  RowData row{checkedName(name, "a row"), RowType::free, rhs, range};
  if (type < 0 || type > static_cast<int>(RowType::free)) {
    throw ModelError("row \"" + row.name + "\": the type is 0, 1, 2 or 3, not " +
                     std::to_string(type));
  }
  row.type = static_cast<RowType>(type);
  checkFinite(rhs, "the right-hand side of row \"" + row.name + "\"");
  const bool ranged = row.type == RowType::greaterOrEqual || row.type == RowType::lessOrEqual;
  if (!std::isfinite(range) || (range != 0 && !ranged)) {
    throw ModelError("row \"" + row.name +
                     "\": a range is 0, or any finite number for a >= or <= row");
  }
  if (row.name == data_.rows.front().name) {
    throw ModelError("row \"" + row.name + "\" stands twice");
  }
  return append(data_.rows, std::move(row), rowNames_, "row");
}

void ModelBuilder::addSet(const char* name, int kind, std::span<const int> columns,
                          std::span<const double> weights) {
  requireUndriven();
  OrderedSet set{checkedName(name, "a set"), kind, {}};
  const std::string what = "set \"" + set.name + "\"";
  if (kind != 1 && kind != 2) {
    throw ModelError(what + ": the kind is 1 or 2, not " + std::to_string(kind));
  }
  if (columns.empty()) throw ModelError(what + " has no member, expected one at least");
  DistinctMembers members;
  for (std::size_t k = 0; k < columns.size(); ++k) {
    checkColumn(columns[k]);
    const std::string& column = data_.columns[static_cast<std::size_t>(columns[k])].name;
    if (!std::isfinite(weights[k])) {
      throw ModelError(what + ": the weight of \"" + column + "\" has to be a finite number");
    }
    if (!members.take(columns[k], weights[k])) {
      throw ModelError(what + ": \"" + column + "\" or its weight stands twice");
    }
    set.members.push_back({columns[k], weights[k]});
  }
  data_.sets.push_back(std::move(set));
}

void ModelBuilder::addTerm(int row, int column, double value) {
  requireUndriven();
  checkRow(row);
  checkColumn(column);
  checkFinite(value, "a coefficient");
  if (data_.terms.size() >= kMaxCount) throw ModelError("the model has as many terms as it can");
  data_.terms.push_back({row, column, value});
}

void ModelBuilder::addProduct(int row, int column1, int column2, double value) {
  requireUndriven();
  checkRow(row);
  checkColumn(column1);
  checkColumn(column2);
  checkFinite(value, "a coefficient");
  if (data_.products.size() >= kMaxCount / 2) {
    throw ModelError("the model has as many products as it can");
  }
  data_.products.push_back({row, column1, column2, value});
}

void ModelBuilder::drive(const char* statement) {
  if (statement == nullptr) throw ModelError("a drive needs a statement");
  if (driven_.carrierCount == 0) driving_ = std::make_unique<Driving>(data_);
  driving_->add(data_, driven_, statement);
}

// The dictionary of the driving knows the model as it was.
void ModelBuilder::requireUndriven() const {
  if (driven_.carrierCount > 0) {
    throw ModelError("the model is driven by symbols and cannot be built further");
  }
}

void ModelBuilder::checkRow(int row) const {
  if (row < 0 || static_cast<std::size_t>(row) >= data_.rows.size()) {
    throw ModelError(inRange("row", row, data_.rows.size()));
  }
}

void ModelBuilder::checkColumn(int column) const {
  if (column < 0 || static_cast<std::size_t>(column) >= data_.columns.size()) {
    throw ModelError(inRange("column", column, data_.columns.size()));
  }
}

}  // namespace lomu
