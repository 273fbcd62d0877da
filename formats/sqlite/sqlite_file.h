// An open SQLite file and its statements.
#ifndef ZTB_FORMATS_SQLITE_SQLITE_FILE_H_
#define ZTB_FORMATS_SQLITE_SQLITE_FILE_H_

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace formats {

// A name in double quotes, its own doubled.
std::string quotedName(std::string_view name);

struct FinalizeStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using SqliteStatement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

class SqliteFile {
 public:
  // Opens a file for reading only, with nothing in it trusted and nothing left beside it; or, for
  // writing, an empty one. Throws Failure, as all members do, that names `shown`.
  static SqliteFile forReading(const std::string& path);
  static SqliteFile forWriting(const std::string& path, const std::string& shown);

  SqliteStatement prepare(const std::string& sql) const;
  void run(const std::string& sql) const;
  // The names of tables and views.
  [[nodiscard]] std::vector<std::string> tables() const;
  // Failures name this from now on.
  void showAs(const std::string& shown) { shown_ = shown; }
  // Throws what went wrong last.
  [[noreturn]] void fail() const;
  // Closes the file, which nothing uses any more.
  void close();

 private:
  struct Close {
    void operator()(sqlite3* file) const { sqlite3_close_v2(file); }
  };

  SqliteFile(const std::string& path, int flags, std::string shown);
  static SqliteFile withoutLog(const std::string& path);
  [[nodiscard]] bool keepsLog() const;
  void requireWhole(const std::string& path) const;

  std::string shown_;
  std::unique_ptr<sqlite3, Close> file_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SQLITE_SQLITE_FILE_H_
