// Databases as tables, and one query over them, as the command reads its rows.
#ifndef ZTB_TOOLS_COMMANDS_SQL_QUERY_H_
#define ZTB_TOOLS_COMMANDS_SQL_QUERY_H_

#include <ztb/sql.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/text/progress.h"

namespace tool {

// Databases with their tables, and one query over them, until they are closed.
class Query {
 public:
  // Files, and the query behind them. Throws Failure for what is wrong with one of them.
  Query(const std::vector<std::string>& words, Progress& progress);
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;
  ~Query() { close(); }

  [[nodiscard]] int columnCount() const { return ztbSqlColumnCount(rows_); }
  [[nodiscard]] std::string_view columnName(int column) const {
    return ztbSqlColumnName(rows_, column);
  }
  // The name by which the first file is opened.
  [[nodiscard]] const std::string& firstFile() const { return firstFile_; }

  void close();

  // Visits the rows, `most` of them; gives whether others follow.
  bool walk(std::size_t most, const std::function<void()>& visit);

  // What the present row holds in a column; bytes that are no text count as one.
  [[nodiscard]] int type(int column) const { return ztbSqlType(rows_, column); }
  [[nodiscard]] bool isText(int column) const {
    return type(column) == ZTB_SQL_TEXT || type(column) == ZTB_SQL_BLOB;
  }
  [[nodiscard]] double real(int column) const { return ztbSqlReal(rows_, column); }
  [[nodiscard]] long long integer(int column) const { return ztbSqlInteger(rows_, column); }
  // As text; nothing for a null, and blobs as SQL spells them.
  [[nodiscard]] std::string text(int column, int digits) const;

 private:
  void begin(const std::vector<std::string>& words);

  ztbSql* sql_ = nullptr;
  ztbSqlRows* rows_ = nullptr;
  std::string firstFile_;
  Progress* progress_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_SQL_QUERY_H_
