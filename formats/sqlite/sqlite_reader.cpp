#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <fstream>
#include <limits>
#include <utility>

#include "formats/file_name.h"
#include "formats/sqlite/sqlite_file.h"
#include "formats/sqlite/sqlite_tables.h"
#include "formats/tables_database.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// What stands behind blanks and comments.
std::string_view beginOf(std::string_view sql) {
  while (true) {
    sql.remove_prefix(std::min(sql.find_first_not_of(" \t\n\r\f"), sql.size()));
    const std::string_view end = sql.starts_with("--") ? "\n" : sql.starts_with("/*") ? "*/" : "";
    if (end.empty()) return sql;
    const std::size_t found = sql.find(end, 2);
    sql.remove_prefix(found == std::string_view::npos ? sql.size() : found + end.size());
  }
}

bool isQuery(std::string_view part) {
  const std::string_view sql = beginOf(part);
  const std::string_view word = sql.substr(0, sql.find_first_of(" \t\n\r\f(*'\"/-"));
  return word.size() < sql.size() &&
         (tool::sameFolded(word, "select") || tool::sameFolded(word, "with") ||
          tool::sameFolded(word, "values"));
}

// Whether a double is not the whole number that it was made from.
bool isRounded(sqlite3_int64 whole, double number) {
  constexpr double beyond = 0x1p63;
  return number >= beyond || static_cast<sqlite3_int64>(number) != whole;
}

// Whether a column was declared to hold anything, as those of values are.
bool isAny(const char* type) {
  return type != nullptr && tool::sameFolded(type, "any");
}

class SqliteReader : public TableReader {
 public:
  SqliteReader(SqliteFile file, const std::string& sql, std::string shown, bool exact)
      : TableReader(std::move(shown)), file_(std::move(file)), exact_(exact) {
    file_.showAs(path_);
    statement_ = file_.prepare(sql);
    if (statement_ == nullptr || sqlite3_stmt_readonly(statement_.get()) == 0) {
      throw tool::Failure(path_ + ": expected a query that only reads", ZTB_ERROR_REFUSED);
    }
    if (const char* name = sqlite3_bind_parameter_name(statement_.get(), 1);
        sqlite3_bind_parameter_count(statement_.get()) > 0) {
      throw tool::Failure(fmt::format("{}: expected a query without parameters, found {}", path_,
                                      name == nullptr ? "?" : name),
                          ZTB_ERROR_REFUSED);
    }
    columns_ = sqlite3_column_count(statement_.get());
  }

  bool next(ProblemList& problems) override {
    (void)problems;
    fields_.clear();
    if (row_ == headerRow) {
      row_ = 0;
      for (int column = 0; column < columns_; ++column) {
        fields_.push_back({.text = sqlite3_column_name(statement_.get(), column), .quoted = true});
      }
      return true;
    }
    const int result = sqlite3_step(statement_.get());
    if (result == SQLITE_DONE) return false;
    if (result != SQLITE_ROW) file_.fail();
    ++row_;
    for (int column = 0; column < columns_; ++column) {
      fields_.push_back(fieldAt(column));
    }
    return true;
  }

  [[nodiscard]] TextPosition position() const override { return {.line = row_, .column = 1}; }
  [[nodiscard]] std::string place(TextPosition at) const override {
    return at.line == 0 ? path_ : fmt::format("{}: row {}", path_, at.line);
  }
  [[nodiscard]] std::string shortPlace(TextPosition at) const override {
    return fmt::format("row {}", at.line);
  }

 private:
  static constexpr std::size_t headerRow = std::numeric_limits<std::size_t>::max();

  TableField fieldAt(int column) {
    sqlite3_stmt* statement = statement_.get();
    TableField field{.text = "",
                     .quoted = false,
                     .at = {.line = row_, .column = static_cast<std::size_t>(column) + 1}};
    bool isRoundedOff = false;
    switch (sqlite3_column_type(statement, column)) {
      case SQLITE_NULL:
        // In a column of values that was written here this is one; other columns have none.
        if (exact_ && isAny(sqlite3_column_decltype(statement, column))) {
          field.text = "na";
          field.isNumber = true;
          field.number = std::numeric_limits<double>::quiet_NaN();
        }
        return field;
      case SQLITE_FLOAT:
        field.isNumber = true;
        field.number = sqlite3_column_double(statement, column);
        return field;
      case SQLITE_INTEGER:
        field.isNumber = true;
        field.number = sqlite3_column_double(statement, column);
        isRoundedOff = isRounded(sqlite3_column_int64(statement, column), field.number);
        break;
      case SQLITE_BLOB:
        field.fault = "is a blob, expected a text or a number";
        return field;
      default:
        break;
    }
    field.quoted = true;
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    if (text == nullptr) throw std::bad_alloc();
    field.text = {text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
    if (isRoundedOff) field.rounded = field.text;
    return field;
  }

  SqliteFile file_;
  bool exact_;
  SqliteStatement statement_;
  int columns_ = 0;
  std::size_t row_ = headerRow;
};

// What the table of symbols, where there is one, tells of the others.
OwnTables ownTables(const std::string& path, const std::vector<std::string>& tables) {
  if (std::ranges::find(tables, std::string_view(symbolsTable)) == tables.end()) return {};
  OwnTables own;
  ProblemList ignored(0);
  ignored.attempt([&] {
    SqliteReader catalogue(SqliteFile::forReading(path),
                           "select * from " + quotedName(symbolsTable), path, true);
    own = OwnTables(catalogue);
  });
  return own;
}

// Tables that no export wrote.
void requireNoOtherTables(const std::string& path) {
  if (!isThere(path)) return;
  std::string others;
  try {
    const SqliteFile file = SqliteFile::forReading(path);
    const std::vector<std::string> tables = file.tables();
    const OwnTables own = ownTables(path, tables);
    const bool hasCatalogue =
        std::ranges::find(tables, std::string_view(symbolsTable)) != tables.end();
    const SqliteStatement marked =
        file.prepare("select instr(sql, ?) from sqlite_schema where name = ?");
    for (const std::string& table : tables) {
      // Where the table of symbols tells what is ours, a mark of before tells nothing.
      bool isOurs = table == symbolsTable || own.has(table);
      if (!hasCatalogue) {
        sqlite3_bind_text(marked.get(), 1, exportMark, -1, SQLITE_STATIC);
        sqlite3_bind_text(marked.get(), 2, table.data(), static_cast<int>(table.size()),
                          SQLITE_STATIC);
        if (sqlite3_step(marked.get()) != SQLITE_ROW) file.fail();
        isOurs = sqlite3_column_int(marked.get(), 0) > 0;
        sqlite3_reset(marked.get());
      }
      if (!isOurs) others += (others.empty() ? "" : ", ") + table;
    }
  } catch (const tool::Failure& failure) {
    // What is no database, or damaged, is replaced like a file of any other format.
    if (failure.kind() == ZTB_ERROR_DAMAGED_FILE) return;
    throw;
  }
  if (others.empty()) return;
  throw tool::Failure(
      fmt::format("{}: has tables that no export wrote and that would be lost: {}; give another "
                  "file, and its tables can be put together in SQL",
                  path, tool::shortened(others)),
      ZTB_ERROR_REFUSED);
}

// Whatever file has the name, SQLite would take the pages in these for its newest or its oldest.
void requireNoLog(const std::string& path) {
  const std::string journal = path + "-journal";
  // One whose transaction has ended begins with zeros.
  const bool isHot = std::ifstream(tool::pathOf(journal), std::ios::binary).get() > 0;
  for (const auto& [log, isLog] :
       {std::pair(path + "-wal", isThere(path + "-wal")), std::pair(journal, isHot)}) {
    if (!isLog) continue;
    throw tool::Failure(
        fmt::format("{}: beside it stands the log {}, which SQLite would apply to the new file; "
                    "let the program that has the file open close it, or remove the log",
                    path, log),
        ZTB_ERROR_REFUSED);
  }
}

}  // namespace

std::unique_ptr<TableReader> openSqlite(const TableSource& source) {
  SqliteFile file = SqliteFile::forReading(source.path);
  std::string table = source.part;
  const std::vector<std::string> tables = file.tables();
  const auto isTable = [&](const std::string& name) { return tool::sameFolded(name, table); };
  if (!source.exact && isQuery(table) && std::ranges::none_of(tables, isTable)) {
    return std::make_unique<SqliteReader>(std::move(file), table,
                                          source.path + '#' + tool::shortened(table), false);
  }
  const OwnTables own = source.exact ? OwnTables() : ownTables(source.path, tables);
  if (table.empty()) table = tables.size() == 1 ? tables.front() : own.only().value_or("");
  const auto found = std::ranges::find_if(tables, isTable);
  if (found == tables.end()) {
    throw tool::Failure(
        fmt::format("{}: {}; its tables are {}", source.path,
                    table.empty() ? "which table is meant? give --from " + source.path + "#TABLE"
                                  : "no table " + tool::inQuotes(table),
                    tool::shortened(fmt::format("{}", fmt::join(tables, ", ")))),
        ZTB_ERROR_NOT_FOUND);
  }
  const bool exact = source.exact || own.has(*found);
  std::string sql = "select * from " + quotedName(*found);
  if (source.exact) sql += " order by rowid";
  return std::make_unique<SqliteReader>(std::move(file), sql, source.path + '#' + *found, exact);
}

void requireReplaceableSqlite(const std::string& path) {
  requireNoOtherTables(path);
  requireNoLog(path);
}

std::unique_ptr<DatabaseReader> openSqliteDatabase(const std::string& path) {
  return openTablesDatabase(
      {.path = path, .tables = SqliteFile::forReading(path).tables(), .open = openSqlite});
}

}  // namespace formats
