// The extension that SQLite loads: exchange files in any program that speaks SQL to SQLite.
//
//   .load ztbsqlite
//   create virtual table temp.price using ztb_symbol('diet.rxf', 'price');
//   select * from ztb('diet.rxf', 'price') where dim_1 = 'milk';
//
// The first form has the columns of the symbol. The columns of the second are the same for all
// symbols, since SQLite fixes them before it sees the arguments: dim_1 to dim_4, value (the level
// of a variable or equation) and text, and by name alone dim_5 to dim_20, marginal, lower, upper,
// scale.

#include <algorithm>
#include <array>
#include <cstdint>
#include <ctime>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "formats/sql/module.h"
#include "formats/sql/plan.h"
#include "formats/sql/walk.h"
#include "tools/files/system_files.h"

SQLITE_EXTENSION_INIT1

namespace {

using formats::guardedSql;
using formats::SqlDatabase;
using formats::SqlTable;
using formats::SqlWalk;

// Where a file stood when it was opened; another one of its name is another file.
struct Place {
  std::string path;
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  timespec time{};

  [[nodiscard]] bool isSame(const Place& other) const {
    return device == other.device && number == other.number && time.tv_sec == other.time.tv_sec &&
           time.tv_nsec == other.time.tv_nsec;
  }
};

// The files that the tables of a connection have opened.
class Files {
 public:
  std::shared_ptr<SqlDatabase> open(const std::string& path) {
    posix::FileStatus status{};
    Place place{path};
    if (posix::stat(path.c_str(), &status) == 0) {
      place = {path, status.st_dev, status.st_ino, status.st_mtim};
    }
    const auto found = files_.find(path);
    if (found != files_.end() && found->second.first.isSame(place)) {
      return found->second.second;
    }
    ztb::Database database;
    database.selectStore(ztb::Store::vector);
    database.openFile(path);
    auto opened = std::make_shared<SqlDatabase>(std::move(database));
    files_.insert_or_assign(path, std::pair(place, opened));
    return opened;
  }

 private:
  std::map<std::string, std::pair<Place, std::shared_ptr<SqlDatabase>>> files_;
};

// What a module keeps of its connection.
const std::shared_ptr<Files>& filesOf(void* data) {
  return *static_cast<std::shared_ptr<Files>*>(data);
}
void dropFiles(void* data) {
  delete static_cast<std::shared_ptr<Files>*>(data);
}

int positionOf(const SqlDatabase& database, const std::string& path, const std::string& symbol) {
  if (symbol == "*") {
    return SqlTable::universe;
  }
  void* wanted = nullptr;
  if (c__ztbfindsymbolwithalias(database.handle, symbol.c_str(), &wanted) == 0) {
    throw ztb::Error("ztb", path + ": there is no symbol " + symbol);
  }
  int position = 0;
  for (void* at = nullptr; at != wanted; ++position) {
    ztb::detail::require(c__ztbgetsymbolbynumber(database.handle, position, &at), database.handle,
                         "ztbGetSymbolByNumber");
  }
  return position - 1;
}

// A word of `create virtual table`, out of its quotes.
std::string unquoted(std::string text) {
  if (text.size() < 2 || (text.front() != '\'' && text.front() != '"')) {
    return text;
  }
  const char quote = text.front();
  std::string plain;
  for (std::size_t at = 1; at + 1 < text.size(); ++at) {
    plain += text[at];
    at += text[at] == quote ? 1 : 0;
  }
  return plain;
}

// ---- the function, ztb(file, symbol) ----

constexpr int shownPositions = 4;
enum Column {
  valueColumn = shownPositions,
  textColumn,
  fileColumn,  // arguments are the first hidden columns
  symbolColumn,
  firstHidden,  // dim_5 and on
  firstField = firstHidden + ZTB_MAX_DIMENSION - shownPositions
};

struct FunctionTable {
  sqlite3_vtab base{};
  std::shared_ptr<Files> files;
};

struct FunctionCursor {
  sqlite3_vtab_cursor base{};
  std::shared_ptr<SqlDatabase> database;
  std::unique_ptr<SqlTable> table;
  std::unique_ptr<SqlWalk> walk;
};

FunctionCursor& cursorOf(sqlite3_vtab_cursor* cursor) {
  return *reinterpret_cast<FunctionCursor*>(cursor);
}

// The position that a column shows; -1 for none.
int positionOfColumn(int column) {
  if (column >= 0 && column < shownPositions) {
    return column;
  }
  return column >= firstHidden && column < firstField ? column - firstHidden + shownPositions : -1;
}

int connectFunction(sqlite3* connection, void* data, sqlite3_vtab** table) {
  std::string text = "create table ztb(";
  const auto addKey = [&](int position, const char* type) {
    text += "dim_" + std::to_string(position + 1) + ' ' + type + " collate nocase, ";
  };
  for (int position = 0; position < shownPositions; ++position) addKey(position, "text");
  text += "value real, text text, file text hidden, symbol text hidden, ";
  for (int position = shownPositions; position < ZTB_MAX_DIMENSION; ++position) {
    // Hidden is a part of the type to SQLite, which versions about 3.40 cut out without moving the
    // collation that is stored behind it: they find it in the last six chars of what is left.
    addKey(position, "hidden text nocase");
  }
  text += "marginal real hidden, lower real hidden, upper real hidden, scale real hidden)";
  const int result = sqlite3_declare_vtab(connection, text.c_str());
  if (result == SQLITE_OK) {
    *table = &(new FunctionTable{{}, filesOf(data)})->base;
  }
  return result;
}

int planFunction(sqlite3_vtab* base, sqlite3_index_info* info) {
  return guardedSql(&base->zErrMsg, [&]() -> int {
    std::array<int, ZTB_MAX_DIMENSION> given{};
    given.fill(-1);
    int file = -1;
    int symbol = -1;
    int among = -1;  // an IN of a position, all of whose values are given at once
    for (int i = 0; i < info->nConstraint; ++i) {
      const auto& constraint = info->aConstraint[i];
      const bool isArgument =
          constraint.iColumn == fileColumn || constraint.iColumn == symbolColumn;
      if (constraint.usable == 0) {
        if (isArgument) {
          return SQLITE_CONSTRAINT;
        }
        continue;
      }
      if (constraint.op != SQLITE_INDEX_CONSTRAINT_EQ) {
        continue;
      }
      const std::string_view collation = sqlite3_vtab_collation(info, i);
      const int position = positionOfColumn(constraint.iColumn);
      if (constraint.iColumn == fileColumn) file = i;
      if (constraint.iColumn == symbolColumn) symbol = i;
      if (position < 0 || (collation != "NOCASE" && collation != "BINARY")) {
        continue;
      }
      if (sqlite3_vtab_in(info, i, -1) == 0) {
        given[static_cast<std::size_t>(position)] = i;
      } else if (among < 0) {
        among = i;
      }
    }
    if (file < 0 || symbol < 0) {
      // Each part of an OR is planned without what stands beside the OR, too; such a plan is never
      // the cheapest.
      info->estimatedCost = std::numeric_limits<double>::max();
      return SQLITE_OK;
    }
    int next = 0;
    const auto take = [&](int constraint, bool checked) {
      info->aConstraintUsage[constraint].argvIndex = ++next;
      info->aConstraintUsage[constraint].omit = checked ? 1 : 0;
    };
    take(file, true);
    take(symbol, true);
    std::string conditions;
    // What a symbol has is not known yet.
    double rows = 1e6;
    for (int position = 0; position < ZTB_MAX_DIMENSION; ++position) {
      if (given[static_cast<std::size_t>(position)] >= 0) {
        conditions +=
            {static_cast<char>(formats::SqlCondition::equal), static_cast<char>('a' + position)};
        take(given[static_cast<std::size_t>(position)], false);
        rows = std::max(rows / 100, 1.0);
      }
    }
    if (among >= 0) {
      const int position = positionOfColumn(info->aConstraint[among].iColumn);
      if (given[static_cast<std::size_t>(position)] < 0) {
        sqlite3_vtab_in(info, among, 1);
        conditions +=
            {static_cast<char>(formats::SqlCondition::among), static_cast<char>('a' + position)};
        take(among, false);
        rows = std::max(rows / 4, 1.0);
      }
    }
    info->idxStr = sqlite3_mprintf("%s", conditions.c_str());
    info->needToFreeIdxStr = 1;
    // Texts are read one by one, so that the walk is told; and whether all that is shown is used.
    const std::uint64_t shown = (1U << fileColumn) - 1;
    info->idxNum = static_cast<int>((info->colUsed >> textColumn) & 1) |
                   ((info->colUsed & shown) == shown ? 2 : 0);
    info->estimatedCost = rows;
    info->estimatedRows = static_cast<sqlite3_int64>(rows);
    return info->idxStr == nullptr ? SQLITE_NOMEM : SQLITE_OK;
  });
}

int filterFunction(sqlite3_vtab_cursor* base, int number, const char* conditions,
                   sqlite3_value** arguments) {
  return guardedSql(&base->pVtab->zErrMsg, [&] {
    if (conditions == nullptr) {
      throw ztb::Error("ztb",
                       "ztb() takes a file and the name of a symbol: ztb('diet.rxf', 'price')");
    }
    FunctionCursor& cursor = cursorOf(base);
    const auto text = [](sqlite3_value* value) {
      const auto* chars = reinterpret_cast<const char*>(sqlite3_value_text(value));
      return std::string(chars == nullptr ? "" : chars);
    };
    const std::string path = text(arguments[0]);
    const std::string symbol = text(arguments[1]);
    cursor.walk.reset();
    cursor.table.reset();
    cursor.database = reinterpret_cast<FunctionTable*>(base->pVtab)->files->open(path);
    cursor.table =
        std::make_unique<SqlTable>(*cursor.database, positionOf(*cursor.database, path, symbol));
    if ((number & 2) != 0 && cursor.table->dimension() > shownPositions) {
      throw ztb::Error("ztb", "symbol " + symbol + " has " +
                                  std::to_string(cursor.table->dimension()) +
                                  " positions, of which * shows 4: name dim_5 and on, or create "
                                  "virtual table using ztb_symbol");
    }
    // A condition on a position that the symbol does not have finds null there.
    formats::SqlSelection selection =
        formats::selectionOf(*cursor.table, conditions, arguments + 2);
    for (auto at = static_cast<std::size_t>(cursor.table->dimension()); at < ZTB_MAX_DIMENSION;
         ++at) {
      selection.nothing = selection.nothing || selection.labels[at] != 0 ||
                          (selection.listed && selection.listPosition == at);
    }
    // All columns, but texts only where they are used.
    unsigned columns = ~0U;
    if ((number & 1) == 0 && cursor.table->isSet()) {
      columns &= ~(1U << static_cast<unsigned>(cursor.table->dimension()));
    }
    cursor.walk = std::make_unique<SqlWalk>(*cursor.table);
    cursor.walk->begin(std::move(selection), columns);
    return SQLITE_OK;
  });
}

void giveColumn(const FunctionCursor& cursor, sqlite3_context* context, int column) {
  const SqlTable& table = *cursor.table;
  const int position = positionOfColumn(column);
  if (position >= 0) {
    if (position < table.dimension()) {
      formats::giveSqlLabel(context,
                            cursor.database->labels.text(cursor.walk->key(position)).data());
    }
  } else if (column == textColumn) {
    if (table.isSet() && !table.isUniverse()) {
      sqlite3_result_text(context, cursor.walk->text().c_str(), -1, SQLITE_TRANSIENT);
    }
  } else if ((column == valueColumn || column >= firstField) && !table.isSet()) {
    const int slot = column == valueColumn ? 0 : column - firstField + 1;
    if (slot < static_cast<int>(cursor.table->symbol().valueCount())) {
      sqlite3_result_double(context, cursor.walk->value(slot));
    }
  }
}

sqlite3_module functionModule() {
  sqlite3_module module = formats::sqlModule();
  module.xCreate = nullptr;
  module.xConnect = [](sqlite3* connection, void* data, int, const char* const*,
                       sqlite3_vtab** table, char** message) {
    return guardedSql(message, [&] { return connectFunction(connection, data, table); });
  };
  module.xBestIndex = planFunction;
  module.xDisconnect = [](sqlite3_vtab* table) {
    delete reinterpret_cast<FunctionTable*>(table);
    return SQLITE_OK;
  };
  module.xOpen = [](sqlite3_vtab* table, sqlite3_vtab_cursor** cursor) {
    return guardedSql(&table->zErrMsg, [&] {
      *cursor = &(new FunctionCursor)->base;
      return SQLITE_OK;
    });
  };
  module.xClose = [](sqlite3_vtab_cursor* cursor) {
    delete &cursorOf(cursor);
    return SQLITE_OK;
  };
  module.xFilter = [](sqlite3_vtab_cursor* cursor, int number, const char* conditions, int,
                      sqlite3_value** arguments) {
    return filterFunction(cursor, number, conditions, arguments);
  };
  module.xNext = [](sqlite3_vtab_cursor* cursor) {
    return guardedSql(&cursor->pVtab->zErrMsg, [&] {
      cursorOf(cursor).walk->next();
      return SQLITE_OK;
    });
  };
  module.xEof = [](sqlite3_vtab_cursor* cursor) { return cursorOf(cursor).walk->atEnd() ? 1 : 0; };
  module.xColumn = [](sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
    return guardedSql(&cursor->pVtab->zErrMsg, [&] {
      cursorOf(cursor).walk->requireUnchanged();
      giveColumn(cursorOf(cursor), context, column);
      return SQLITE_OK;
    });
  };
  module.xRowid = [](sqlite3_vtab_cursor* cursor, sqlite3_int64* number) {
    return guardedSql(&cursor->pVtab->zErrMsg, [&] {
      FunctionCursor& at = cursorOf(cursor);
      *number = at.table->rowNumber(at.walk->keys().data());
      return SQLITE_OK;
    });
  };
  return module;
}

// ---- the tables, ztb_symbol(file, symbol) ----

int connectSymbol(sqlite3* connection, void* data, int count, const char* const* arguments,
                  sqlite3_vtab** table, char** message) {
  return guardedSql(message, [&] {
    constexpr int own = 3;
    if (count != own + 2) {
      throw ztb::Error("ztb",
                       "ztb_symbol takes a file and the name of a symbol: "
                       "using ztb_symbol('diet.rxf', 'price')");
    }
    const std::string path = unquoted(arguments[own]);
    std::shared_ptr<SqlDatabase> database = filesOf(data)->open(path);
    const int position = positionOf(*database, path, unquoted(arguments[own + 1]));
    auto made = std::make_unique<formats::SqlVirtualTable>(std::move(database), position);
    const int result = formats::declareTable(connection, made->table);
    if (result == SQLITE_OK) {
      *table = &made.release()->base;
    }
    return result;
  });
}

sqlite3_module symbolModule() {
  sqlite3_module module = formats::sqlModule();
  module.xCreate = connectSymbol;
  module.xConnect = connectSymbol;
  return module;
}

}  // namespace

extern "C" [[gnu::visibility("default")]] int sqlite3_ztbsqlite_init(
    sqlite3* connection, char** message, const sqlite3_api_routines* functions) {
  SQLITE_EXTENSION_INIT2(functions);
  return guardedSql(message, [&] {
    static const sqlite3_module function = functionModule();
    static const sqlite3_module symbol = symbolModule();
    const auto files = std::make_shared<Files>();
    const auto add = [&](const char* name, const sqlite3_module& module) {
      return sqlite3_create_module_v2(connection, name, &module, new std::shared_ptr<Files>(files),
                                      dropFiles);
    };
    int result = add("ztb", function);
    if (result == SQLITE_OK) result = add("ztb_symbol", symbol);
    // It stays when the connection ends: what the process keeps for its symbols would be lost with
    // it, and again with each connection that loads it.
    return result == SQLITE_OK ? SQLITE_OK_LOAD_PERMANENTLY : result;
  });
}
