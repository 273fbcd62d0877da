#include "formats/sql/plan.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>
#include <string_view>

namespace formats {

namespace {

enum class Comparison { folded, exact, other };

Comparison comparisonOf(sqlite3_index_info* info, int constraint) {
  const std::string_view name = sqlite3_vtab_collation(info, constraint);
  return name == "NOCASE"   ? Comparison::folded
         : name == "BINARY" ? Comparison::exact
                            : Comparison::other;
}

// Whether the value is known to be a text; others may be compared as numbers.
bool isText(sqlite3_index_info* info, int constraint) {
  sqlite3_value* value = nullptr;
  return sqlite3_vtab_rhs_value(info, constraint, &value) == SQLITE_OK && value != nullptr &&
         sqlite3_value_type(value) == SQLITE_TEXT;
}

std::optional<SqlCondition> conditionOf(unsigned char operation) {
  switch (operation) {
    case SQLITE_INDEX_CONSTRAINT_EQ:
    case SQLITE_INDEX_CONSTRAINT_IS:
      return SqlCondition::equal;
    case SQLITE_INDEX_CONSTRAINT_GT:
      return SqlCondition::above;
    case SQLITE_INDEX_CONSTRAINT_GE:
      return SqlCondition::from;
    case SQLITE_INDEX_CONSTRAINT_LT:
      return SqlCondition::below;
    case SQLITE_INDEX_CONSTRAINT_LE:
      return SqlCondition::upTo;
    default:
      return std::nullopt;
  }
}

std::string_view textOf(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return {text == nullptr ? "" : text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

bool isNumber(sqlite3_value* value) {
  const int type = sqlite3_value_type(value);
  return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
}

// Adds the labels that may equal a value. SQLite looks at those of numbers again, since the other
// side tells whether they are compared as such.
void addLabelsOf(SqlLabels& labels, sqlite3_value* value, std::vector<int>& all) {
  if (isNumber(value)) {
    std::ranges::copy(labels.near(sqlite3_value_double(value)), std::back_inserter(all));
  }
  if (isNumber(value) || sqlite3_value_type(value) == SQLITE_TEXT) {
    if (const int label = labels.find(textOf(value)); label != 0) all.push_back(label);
  }
}

void sortOnce(std::vector<int>& labels) {
  std::ranges::sort(labels);
  labels.erase(std::unique(labels.begin(), labels.end()), labels.end());
}

std::vector<int> labelsOf(SqlLabels& labels, sqlite3_value* value) {
  std::vector<int> found;
  addLabelsOf(labels, value, found);
  sortOnce(found);
  return found;
}

std::vector<int> labelsAmong(SqlLabels& labels, sqlite3_value* values) {
  std::vector<int> all;
  sqlite3_value* value = nullptr;
  int result = sqlite3_vtab_in_first(values, &value);
  for (; result == SQLITE_OK && value != nullptr; result = sqlite3_vtab_in_next(values, &value)) {
    addLabelsOf(labels, value, all);
  }
  if (result != SQLITE_DONE && result != SQLITE_OK) {
    throw ztb::Error("ztbSqlNext", "The values of an IN cannot be read");
  }
  sortOnce(all);
  return all;
}

// What is chosen for a position: the labels of both lists, where there are two.
void narrow(SqlSelection& selection, std::size_t position, std::vector<int> labels) {
  if (selection.listed && selection.listPosition == position) {
    std::vector<int> both;
    std::ranges::set_intersection(*selection.listed, labels, std::back_inserter(both));
    labels = std::move(both);
  }
  selection.nothing = selection.nothing || labels.empty();
  selection.listPosition = position;
  selection.listed = std::move(labels);
}

// One label at a position; several of them at the first make a list unless another position has
// one, and elsewhere SQLite sees.
void giveLabels(SqlSelection& selection, std::size_t position, std::vector<int> labels) {
  if (labels.empty()) {
    selection.nothing = true;
  } else if (labels.size() == 1) {
    selection.labels[position] = labels.front();
  } else if (position == 0 && !selection.listed) {
    narrow(selection, position, std::move(labels));
  }
}

// What a query gives as constants, told before it runs.
struct KnownValues {
  std::vector<int> prefix;          // labels of the first positions, 0 for what is none
  std::optional<LabelBound> lower;  // of the first position
  std::optional<LabelBound> upper;
};

KnownValues knownValuesOf(sqlite3_index_info* info, SqlLabels& labels, const SqlPlan& plan) {
  KnownValues known;
  std::vector<std::optional<int>> given(plan.given.size());
  for (std::size_t i = 0; i < plan.constraints.size(); ++i) {
    if (!isText(info, plan.constraints[i])) continue;
    sqlite3_value* value = nullptr;
    sqlite3_vtab_rhs_value(info, plan.constraints[i], &value);
    const auto condition = static_cast<SqlCondition>(plan.conditions[2 * i]);
    const LabelBound bound{textOf(value),
                           condition == SqlCondition::from || condition == SqlCondition::upTo};
    if (condition == SqlCondition::equal) {
      given[static_cast<std::size_t>(plan.conditions[2 * i + 1] - 'a')] =
          labels.find(textOf(value));
    } else if (condition == SqlCondition::above || condition == SqlCondition::from) {
      known.lower = bound;
    } else if (condition == SqlCondition::below || condition == SqlCondition::upTo) {
      known.upper = bound;
    }
  }
  for (std::size_t position = 0; position < given.size() && given[position]; ++position) {
    known.prefix.push_back(*given[position]);
  }
  return known;
}

// Labels of an IN, whose list is not told before it is walked over: as many as SQLite takes.
constexpr double labelsOfIn = 25;

// The records of the plan among `count` of a symbol, or labels of the universe.
double rowsOf(SqlTable& table, const SqlPlan& plan, const KnownValues& known, double count) {
  if (plan.listPosition > 0) {
    std::vector<bool> given = plan.given;
    given[static_cast<std::size_t>(plan.listPosition)] = true;
    return std::min(count, labelsOfIn * table.estimates().ofPositions(given));
  }
  const auto isGiven = std::ranges::count(plan.given, true);
  const bool isBound = known.lower.has_value() || known.upper.has_value();
  if (std::ranges::find(known.prefix, 0) != known.prefix.end()) return 0;
  if (isGiven == table.dimension()) return std::min(count, 1.0);
  std::vector<int> firsts;
  if (isBound) firsts = table.database().labels.between(known.lower, known.upper);
  if (table.isUniverse()) {
    return isBound ? static_cast<double>(firsts.size())
                   : (plan.ranged ? std::min(count, labelsOfIn) : count);
  }
  SqlEstimates& estimates = table.estimates();
  if (isGiven > 0 && isGiven == static_cast<std::ptrdiff_t>(known.prefix.size())) {
    return estimates.ofPrefix(known.prefix);
  }
  double rows = isGiven > 0 ? estimates.ofPositions(plan.given) : count;
  if (isBound) {
    rows *= estimates.ofFirsts(firsts) / count;
  } else if (plan.ranged) {
    rows *= std::min(1.0, labelsOfIn / estimates.firstCount());
  }
  return rows;
}

}  // namespace

SqlEffort effortOf(sqlite3_index_info* info, SqlTable& table, const SqlPlan& plan) {
  const double count = table.recordCount();
  if (plan.conditions.empty() || count == 0) return {count, count};
  const KnownValues known = knownValuesOf(info, table.database().labels, plan);
  const double rows = rowsOf(table, plan, known, count);
  double places = 1;
  const auto isGiven = std::ranges::count(plan.given, true);
  if (plan.listPosition > 0) {
    std::vector<bool> given = plan.given;
    given[static_cast<std::size_t>(plan.listPosition)] = true;
    places = labelsOfIn * table.estimates().jumpsTo(given);
  } else if (!table.isUniverse() && isGiven > 0 && isGiven < table.dimension() &&
             isGiven != static_cast<std::ptrdiff_t>(known.prefix.size())) {
    places = table.estimates().jumpsTo(plan.given);
  }
  // Finding a place takes about as long as a few steps.
  constexpr double seek = 4;
  return {rows, rows + std::min(seek * places, count)};
}

SqlPlan planSql(sqlite3_index_info* info, int dimension) {
  SqlPlan plan;
  plan.given.assign(static_cast<std::size_t>(dimension), false);
  plan.fixed = plan.given;
  const auto take = [&](int constraint, SqlCondition condition, int position, bool checked) {
    plan.conditions += {static_cast<char>(condition), static_cast<char>('a' + position)};
    plan.constraints.push_back(constraint);
    plan.checked.push_back(checked);
  };
  const auto isKey = [&](const sqlite3_index_info::sqlite3_index_constraint& constraint) {
    return constraint.usable != 0 && constraint.iColumn >= 0 && constraint.iColumn < dimension;
  };
  int among = -1;
  for (int i = 0; i < info->nConstraint; ++i) {
    const auto& constraint = info->aConstraint[i];
    if (!isKey(constraint) || conditionOf(constraint.op) != SqlCondition::equal) {
      continue;
    }
    const Comparison comparison = comparisonOf(info, i);
    const auto position = static_cast<std::size_t>(constraint.iColumn);
    if (comparison == Comparison::other || plan.given[position]) {
      continue;
    }
    // SQLite would compare labels with numbers that a query gives as texts, if it gave them one by
    // one. It looks at an IN again, since its values do not tell whether numbers count as such.
    if (sqlite3_vtab_in(info, i, -1) != 0) {
      if (among < 0 || constraint.iColumn < info->aConstraint[among].iColumn) among = i;
      continue;
    }
    plan.given[position] = true;
    plan.fixed[position] = isText(info, i);
    take(i, SqlCondition::equal, constraint.iColumn,
         comparison == Comparison::folded && plan.fixed[position]);
  }
  if (dimension == 0) {
    return plan;
  }
  const auto takeList = [&] {
    const int position = info->aConstraint[among].iColumn;
    if (plan.given[static_cast<std::size_t>(position)]) return;
    sqlite3_vtab_in(info, among, 1);
    take(among, SqlCondition::among, position, false);
    plan.ranged = position == 0;
    plan.listPosition = position;
  };
  if (among >= 0 && (plan.given[0] || info->aConstraint[among].iColumn == 0)) takeList();
  if (plan.given[0] || plan.ranged) {
    return plan;
  }
  bool lower = false;
  bool upper = false;
  for (int i = 0; i < info->nConstraint; ++i) {
    const auto& constraint = info->aConstraint[i];
    const std::optional<SqlCondition> condition = conditionOf(constraint.op);
    if (!isKey(constraint) || constraint.iColumn != 0 || !condition ||
        *condition == SqlCondition::equal || comparisonOf(info, i) != Comparison::folded ||
        !isText(info, i)) {
      continue;
    }
    const bool isLower = *condition == SqlCondition::above || *condition == SqlCondition::from;
    bool& taken = isLower ? lower : upper;
    if (!taken) {
      taken = true;
      plan.ranged = true;
      take(i, *condition, 0, true);
    }
  }
  if (among >= 0 && !plan.ranged) takeList();
  return plan;
}

bool givesOrder(sqlite3_index_info* info, SqlTable& table, const SqlPlan& plan) {
  const std::vector<bool>& fixed = plan.fixed;
  // The slices of a list follow each other.
  const auto behind = fixed.begin() + plan.listPosition;
  if (info->nOrderBy == 0 || std::find(fixed.begin(), behind, false) != behind) {
    return false;
  }
  const int dimension = table.dimension();
  const bool groups = sqlite3_vtab_distinct(info) == 1 || sqlite3_vtab_distinct(info) == 2;
  std::vector<int> wanted;
  for (int i = 0; i < info->nOrderBy; ++i) {
    const auto& term = info->aOrderBy[i];
    if (term.iColumn < 0 || term.iColumn >= dimension || (term.desc != 0 && !groups)) {
      return false;
    }
    if (!fixed[static_cast<std::size_t>(term.iColumn)]) {
      wanted.push_back(term.iColumn);
    }
  }
  if (groups) {
    std::ranges::sort(wanted);
    wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
  }
  // The positions that have several labels, in their order.
  int position = 0;
  for (const int column : wanted) {
    while (position < dimension && fixed[static_cast<std::size_t>(position)]) {
      ++position;
    }
    if (column != position || (!groups && !table.ascends(position))) {
      return false;
    }
    ++position;
  }
  return true;
}

SqlSelection selectionOf(SqlTable& table, const char* conditions, sqlite3_value** arguments) {
  SqlSelection selection;
  SqlLabels& labels = table.database().labels;
  std::optional<LabelBound> lower;
  std::optional<LabelBound> upper;
  for (; conditions != nullptr && *conditions != '\0'; conditions += 2, ++arguments) {
    const auto position = static_cast<std::size_t>(conditions[1] - 'a');
    sqlite3_value* value = *arguments;
    switch (static_cast<SqlCondition>(conditions[0])) {
      case SqlCondition::equal:
        // Most values are texts.
        if (sqlite3_value_type(value) == SQLITE_TEXT) {
          selection.labels[position] = labels.find(textOf(value));
          selection.nothing = selection.nothing || selection.labels[position] == 0;
        } else {
          giveLabels(selection, position, labelsOf(labels, value));
        }
        break;
      case SqlCondition::among:
        narrow(selection, position, labelsAmong(labels, value));
        break;
      case SqlCondition::above:
      case SqlCondition::from:
        lower = {textOf(value), conditions[0] == static_cast<char>(SqlCondition::from)};
        break;
      case SqlCondition::below:
      case SqlCondition::upTo:
        upper = {textOf(value), conditions[0] == static_cast<char>(SqlCondition::upTo)};
        break;
    }
  }
  if (lower || upper) {
    narrow(selection, 0, labels.between(lower, upper));
  }
  return selection;
}

}  // namespace formats
