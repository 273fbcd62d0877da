#include "formats/sql/module.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>
#include <limits>
#include <new>

#include "formats/sql/plan.h"

namespace formats {

namespace {

// What module and tables share of a connection.
struct ModuleData {
  std::shared_ptr<SqlDatabase> database;
};

SqlVirtualTable& tableOf(sqlite3_vtab* table) {
  return *reinterpret_cast<SqlVirtualTable*>(table);
}
SqlCursor& cursorOf(sqlite3_vtab_cursor* cursor) {
  return *reinterpret_cast<SqlCursor*>(cursor);
}

std::string quotedName(const std::string& name) {
  std::string quoted = "\"";
  for (const char c : name) {
    quoted += c;
    if (c == '"') {
      quoted += c;
    }
  }
  return quoted + '"';
}

template <class Body>
int guarded(sqlite3_vtab* table, Body&& body) {
  return guardedSql(&table->zErrMsg, std::forward<Body>(body));
}

int disconnect(sqlite3_vtab* table) {
  delete &tableOf(table);
  return SQLITE_OK;
}

int bestIndex(sqlite3_vtab* base, sqlite3_index_info* info) {
  return guarded(base, [&] {
    SqlTable& table = tableOf(base).table;
    const SqlPlan plan = planSql(info, table.dimension());
    for (std::size_t i = 0; i < plan.constraints.size(); ++i) {
      auto& usage = info->aConstraintUsage[plan.constraints[i]];
      usage.argvIndex = static_cast<int>(i) + 1;
      usage.omit = plan.checked[i] ? 1 : 0;
    }
    info->idxStr = sqlite3_mprintf("%s", plan.conditions.c_str());
    if (info->idxStr == nullptr) {
      return SQLITE_NOMEM;
    }
    info->needToFreeIdxStr = 1;
    // Of the at most 25 columns those that the query names.
    info->idxNum = static_cast<int>(info->colUsed & std::numeric_limits<int>::max());
    if (std::ranges::find(plan.fixed, false) == plan.fixed.end()) {
      info->idxFlags = SQLITE_INDEX_SCAN_UNIQUE;
    }
    const SqlEffort effort = effortOf(info, table, plan);
    info->estimatedRows = static_cast<sqlite3_int64>(effort.rows + 0.5);
    info->estimatedCost = effort.cost;
    info->orderByConsumed = givesOrder(info, table, plan) ? 1 : 0;
    return SQLITE_OK;
  });
}

int openCursor(sqlite3_vtab* base, sqlite3_vtab_cursor** cursor) {
  return guarded(base, [&] {
    SqlVirtualTable& table = tableOf(base);
    if (table.spare == nullptr) {
      table.spare = std::make_unique<SqlCursor>(table.table);
    }
    *cursor = &table.spare.release()->base;
    return SQLITE_OK;
  });
}

int closeCursor(sqlite3_vtab_cursor* cursor) {
  cursorOf(cursor).walk.end();
  tableOf(cursor->pVtab).spare.reset(&cursorOf(cursor));
  return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor* base, int columns, const char* conditions, int /*count*/,
           sqlite3_value** arguments) {
  return guarded(base->pVtab, [&] {
    SqlWalk& walk = cursorOf(base).walk;
    walk.begin(selectionOf(tableOf(base->pVtab).table, conditions, arguments),
               static_cast<unsigned>(columns));
    return SQLITE_OK;
  });
}

int next(sqlite3_vtab_cursor* base) {
  // Nearly all steps are such.
  if (cursorOf(base).walk.stepped()) return SQLITE_OK;
  try {
    cursorOf(base).walk.next();
    return SQLITE_OK;
  } catch (...) {
    return sqlFailure(&base->pVtab->zErrMsg);
  }
}

int atEnd(sqlite3_vtab_cursor* base) {
  return cursorOf(base).walk.atEnd() ? 1 : 0;
}

// What only few columns need, kept apart, since its buffers would burden each call of column().
[[gnu::noinline]] int giveText(sqlite3_vtab_cursor* base, sqlite3_context* context) {
  return guarded(base->pVtab, [&] {
    const ztb::Text text = cursorOf(base).walk.text();
    sqlite3_result_text(context, text.c_str(), -1, SQLITE_TRANSIENT);
    return SQLITE_OK;
  });
}

[[gnu::noinline]] int show(sqlite3_vtab_cursor* base, int column) {
  return guarded(base->pVtab, [&] {
    cursorOf(base).walk.show(column);
    return SQLITE_OK;
  });
}

// The same of what column() leaves: columns that were not asked for, labels that were never read,
// and texts.
[[gnu::noinline]] int giveOther(sqlite3_vtab_cursor* base, sqlite3_context* context, int column) {
  const SqlCursor& cursor = cursorOf(base);
  if (!cursor.walk.shows(column)) {
    const int result = show(base, column);
    if (result != SQLITE_OK) return result;
  }
  if (column >= cursor.firstValue) {
    sqlite3_result_double(context, cursor.walk.value(column - cursor.firstValue));
    return SQLITE_OK;
  }
  if (column >= cursor.dimension) return giveText(base, context);
  return guarded(base->pVtab, [&] {
    SqlLabels& labels = tableOf(base->pVtab).table.database().labels;
    giveSqlLabel(context, labels.text(cursor.walk.key(column)).data());
    return SQLITE_OK;
  });
}

// Calls nothing that it does not end with but where it gives a result, and so needs to save little.
int column(sqlite3_vtab_cursor* base, sqlite3_context* context, int column) {
  const SqlCursor& cursor = cursorOf(base);
  if (cursor.walk.shows(column)) {
    if (column >= cursor.firstValue) {
      sqlite3_result_double(context, cursor.walk.value(column - cursor.firstValue));
      return SQLITE_OK;
    }
    if (column < cursor.dimension) {
      if (const char* label = cursor.labels->known(cursor.walk.key(column))) {
        giveSqlLabel(context, label);
        return SQLITE_OK;
      }
    }
  }
  return giveOther(base, context, column);
}

int rowNumber(sqlite3_vtab_cursor* base, sqlite3_int64* number) {
  return guarded(base->pVtab, [&] {
    *number = tableOf(base->pVtab).table.rowNumber(cursorOf(base).walk.keys().data());
    return SQLITE_OK;
  });
}

int connect(sqlite3* connection, void* data, int count, const char* const* arguments,
            sqlite3_vtab** table, char** message) {
  return guardedSql(message, [&] {
    constexpr int argument = 3;
    const int position = count > argument ? std::atoi(arguments[argument]) : SqlTable::universe;
    auto made =
        std::make_unique<SqlVirtualTable>(static_cast<ModuleData*>(data)->database, position);
    const int result = declareTable(connection, made->table);
    if (result == SQLITE_OK) {
      *table = &made.release()->base;
    }
    return result;
  });
}

void dropData(void* data) {
  delete static_cast<ModuleData*>(data);
}

}  // namespace

SqlCursor::SqlCursor(SqlTable& table)
    : walk(table),
      labels(&table.database().labels),
      dimension(table.dimension()),
      firstValue(table.isSet() || table.isUniverse() ? std::numeric_limits<int>::max()
                                                     : table.dimension()) {}

int sqlFailure(char** message) noexcept {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return SQLITE_NOMEM;
  } catch (const std::exception& error) {
    sqlite3_free(*message);
    *message = sqlite3_mprintf("%s", error.what());
    return SQLITE_ERROR;
  }
}

int declareTable(sqlite3* connection, const SqlTable& table) {
  std::string text = "create table symbol(";
  for (std::size_t column = 0; column < table.columns().size(); ++column) {
    const bool isKey = column < static_cast<std::size_t>(table.dimension());
    text += column == 0 ? "" : ", ";
    text += quotedName(table.columns()[column]);
    text += isKey ? " text collate nocase" : table.isSet() ? " text" : " real";
  }
  return sqlite3_declare_vtab(connection, (text + ')').c_str());
}

sqlite3_module sqlModule() {
  sqlite3_module module{};
  module.xCreate = connect;
  module.xConnect = connect;
  module.xBestIndex = bestIndex;
  module.xDisconnect = disconnect;
  module.xDestroy = disconnect;
  module.xOpen = openCursor;
  module.xClose = closeCursor;
  module.xFilter = filter;
  module.xNext = next;
  module.xEof = atEnd;
  module.xColumn = column;
  module.xRowid = rowNumber;
  return module;
}

int addSqlModule(sqlite3* connection, const std::string& name,
                 std::shared_ptr<SqlDatabase> database) {
  static const sqlite3_module module = sqlModule();
  return sqlite3_create_module_v2(connection, name.c_str(), &module,
                                  new ModuleData{std::move(database)}, dropData);
}

}  // namespace formats
