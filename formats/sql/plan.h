// How a query reads a table: what the planner of SQLite is told, and how its choice gets to the
// walk.
#ifndef ZTB_FORMATS_SQL_PLAN_H_
#define ZTB_FORMATS_SQL_PLAN_H_

#include <string>
#include <vector>

#include "formats/sql/sqlite_api.h"
#include "formats/sql/table.h"
#include "formats/sql/walk.h"

namespace formats {

// The conditions that a walk gets as arguments. Each is two chars: what it is, and the letter of
// its position, 'a' for the first.
enum class SqlCondition : char {
  equal = '=',
  among = '#',  // all values of an IN at once
  above = '>',
  from = ']',
  below = '<',
  upTo = '[',
};

struct SqlPlan {
  std::string conditions;        // as above
  std::vector<int> constraints;  // of SQLite, one for each
  std::vector<bool> checked;     // whether SQLite need not look at it again
  std::vector<bool> given;       // positions that a value is given for
  std::vector<bool> fixed;       // those whose value is a text, which is one label at most
  bool ranged = false;           // the first position has a list or range
  int listPosition = 0;          // a list stands at this one, where it is not 0
};

// The plan for a table whose first `dimension` columns are keys.
SqlPlan planSql(sqlite3_index_info* info, int dimension);

// How many records come, and how long that takes, in the time of a step to the next one.
struct SqlEffort {
  double rows = 0;
  double cost = 0;
};
SqlEffort effortOf(sqlite3_index_info* info, SqlTable& table, const SqlPlan& plan);

// Whether records come in the order that the query wants, or, where it wants groups alone, with
// those of a group behind each other.
bool givesOrder(sqlite3_index_info* info, SqlTable& table, const SqlPlan& plan);

// What the arguments of a walk choose.
SqlSelection selectionOf(SqlTable& table, const char* conditions, sqlite3_value** arguments);

}  // namespace formats

#endif  // ZTB_FORMATS_SQL_PLAN_H_
