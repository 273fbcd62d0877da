#include "formats/sqlite/sqlite_file.h"

#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <utility>

#include "formats/file_name.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

int kindOf(int code) {
  switch (code) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return ZTB_ERROR_DAMAGED_FILE;
    case SQLITE_ERROR:
      return ZTB_ERROR_REFUSED;
    case SQLITE_NOMEM:
      return ZTB_ERROR_OUT_OF_MEMORY;
    default:
      return ZTB_ERROR_IO;
  }
}

// Pages that a program has written last may stand in the log beside the file alone.
bool hasPagesInLog(const std::string& path) {
  std::error_code none;
  const auto size = std::filesystem::file_size(tool::pathOf(path + "-wal"), none);
  return !none && size > 0;
}

// The name of a file that nobody changes.
std::string unchangingUri(const std::string& path) {
  std::string uri = path.starts_with('/') ? "file://" : "file:";
  for (const char c : path) {
    const bool isPlain = c != '%' && c != '?' && c != '#';
    uri += isPlain ? std::string(1, c) : fmt::format("%{:02x}", static_cast<unsigned char>(c));
  }
  return uri + "?immutable=1";
}

}  // namespace

std::string quotedName(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) {
    quoted += c == '"' ? "\"\"" : std::string(1, c);
  }
  return quoted + '"';
}

SqliteFile::SqliteFile(const std::string& path, int flags, std::string shown)
    : shown_(std::move(shown)) {
  sqlite3* file = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &file, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  file_.reset(file);
  if (file == nullptr) throw std::bad_alloc();
  if (result != SQLITE_OK) fail();
}

SqliteFile SqliteFile::forReading(const std::string& path) {
  SqliteFile file(path, SQLITE_OPEN_READONLY, path);
  if (file.keepsLog() && !hasPagesInLog(path)) file = withoutLog(path);
  sqlite3_db_config(file.file_.get(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(file.file_.get(), SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  file.run("pragma cell_size_check = on");
  file.requireWhole(path);
  return file;
}

// Whether programs write to a log beside the file, as the versions in its head tell.
bool SqliteFile::keepsLog() const {
  constexpr int versionsAt = 18;
  constexpr char logged = 2;
  sqlite3_file* file = nullptr;
  std::array<char, 2> versions{};
  return sqlite3_file_control(file_.get(), "main", SQLITE_FCNTL_FILE_POINTER, &file) == SQLITE_OK &&
         file->pMethods != nullptr &&
         file->pMethods->xRead(file, versions.data(), versions.size(), versionsAt) == SQLITE_OK &&
         versions[1] == logged;
}

// A file that keeps a log and has nothing in it. Whoever reads it makes the log and its index anew,
// and removes them behind itself only when it could write, too. Where it cannot, as in a folder of
// someone else, nobody writes to the file.
SqliteFile SqliteFile::withoutLog(const std::string& path) {
  SqliteFile file(path, SQLITE_OPEN_READWRITE, path);
  bool canWrite = sqlite3_db_readonly(file.file_.get(), "main") == 0;
  if (canWrite) {
    constexpr int primary = 0xFF;
    const int result = sqlite3_exec(file.file_.get(), "select 1 from sqlite_schema limit 1",
                                    nullptr, nullptr, nullptr) &
                       primary;
    canWrite = result != SQLITE_READONLY && result != SQLITE_CANTOPEN;
  }
  if (!canWrite) return {unchangingUri(path), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, path};
  file.run("pragma query_only = on");
  return file;
}

SqliteFile SqliteFile::forWriting(const std::string& path, const std::string& shown) {
  SqliteFile file(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, shown);
  // The file takes its name when it is whole; until then nobody misses it.
  file.run("pragma journal_mode = off");
  file.run("pragma synchronous = off");
  file.run("pragma locking_mode = exclusive");
  return file;
}

void SqliteFile::requireWhole(const std::string& path) const {
  if (hasPagesInLog(path)) return;
  const SqliteStatement statement =
      prepare("select page_count * page_size from pragma_page_count, pragma_page_size");
  if (sqlite3_step(statement.get()) != SQLITE_ROW) fail();
  const auto expected = static_cast<std::uintmax_t>(sqlite3_column_int64(statement.get(), 0));
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(tool::pathOf(path), error);
  // What lies behind the end SQLite would take for zeros.
  if (!error && size < expected) {
    throw tool::Failure(
        fmt::format("{}: is cut short: it has {} bytes of {}", path, size, expected),
        ZTB_ERROR_DAMAGED_FILE);
  }
}

void SqliteFile::fail() const {
  throw tool::Failure(fmt::format("{}: SQLite: {}", shown_, sqlite3_errmsg(file_.get())),
                      kindOf(sqlite3_errcode(file_.get())));
}

SqliteStatement SqliteFile::prepare(const std::string& sql) const {
  sqlite3_stmt* statement = nullptr;
  const char* rest = nullptr;
  if (sqlite3_prepare_v2(file_.get(), sql.c_str(), static_cast<int>(sql.size()) + 1, &statement,
                         &rest) != SQLITE_OK) {
    fail();
  }
  SqliteStatement result(statement);
  if (statement == nullptr || sqlite3_stmt_readonly(statement) == 0) return result;
  while (*rest == ' ' || *rest == ';' || *rest == '\n') ++rest;
  if (*rest != '\0') {
    throw tool::Failure(fmt::format("{}: expected one statement, found more behind it", shown_),
                        ZTB_ERROR_REFUSED);
  }
  return result;
}

void SqliteFile::run(const std::string& sql) const {
  if (sqlite3_exec(file_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail();
}

std::vector<std::string> SqliteFile::tables() const {
  const SqliteStatement statement = prepare(
      "select name from sqlite_schema where type in ('table', 'view') and name not like "
      "'sqlite\\_%' escape '\\' order by rowid");
  std::vector<std::string> names;
  int result = 0;
  while ((result = sqlite3_step(statement.get())) == SQLITE_ROW) {
    names.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0)));
  }
  if (result != SQLITE_DONE) fail();
  return names;
}

void SqliteFile::close() {
  file_.reset();
}

}  // namespace formats
