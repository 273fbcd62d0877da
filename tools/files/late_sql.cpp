// The functions of ztb/sql.h that the command calls, each of which goes on to the library ztbsql:
// a command that calls none starts without it.
#include <ztb/sql.h>

#include "tools/files/late_library.h"

namespace {

constexpr tool::LateLibrary sqlLibrary("ztbsql");

}  // namespace

int ztbSqlOpen(ztbSql** sql, char* message, int messageSize) {
  return ZTB_LATE(sqlLibrary, ztbSqlOpen)(sql, message, messageSize);
}

int ztbSqlAttachFile(ztbSql* sql, const char* schema, const char* path, char* message,
                     int messageSize) {
  return ZTB_LATE(sqlLibrary, ztbSqlAttachFile)(sql, schema, path, message, messageSize);
}

int ztbSqlQuery(ztbSqlRows** rows, ztbSql* sql, const char* query, char* message, int messageSize) {
  return ZTB_LATE(sqlLibrary, ztbSqlQuery)(rows, sql, query, message, messageSize);
}

int ztbSqlParameterCount(const ztbSqlRows* rows) {
  return ZTB_LATE(sqlLibrary, ztbSqlParameterCount)(rows);
}

int ztbSqlNext(ztbSqlRows* rows) {
  return ZTB_LATE(sqlLibrary, ztbSqlNext)(rows);
}

const char* ztbSqlMessage(const ztbSqlRows* rows) {
  return ZTB_LATE(sqlLibrary, ztbSqlMessage)(rows);
}

int ztbSqlColumnCount(const ztbSqlRows* rows) {
  return ZTB_LATE(sqlLibrary, ztbSqlColumnCount)(rows);
}

const char* ztbSqlColumnName(const ztbSqlRows* rows, int column) {
  return ZTB_LATE(sqlLibrary, ztbSqlColumnName)(rows, column);
}

int ztbSqlType(const ztbSqlRows* rows, int column) {
  return ZTB_LATE(sqlLibrary, ztbSqlType)(rows, column);
}

long long ztbSqlInteger(const ztbSqlRows* rows, int column) {
  return ZTB_LATE(sqlLibrary, ztbSqlInteger)(rows, column);
}

double ztbSqlReal(const ztbSqlRows* rows, int column) {
  return ZTB_LATE(sqlLibrary, ztbSqlReal)(rows, column);
}

const char* ztbSqlText(const ztbSqlRows* rows, int column) {
  return ZTB_LATE(sqlLibrary, ztbSqlText)(rows, column);
}

const void* ztbSqlBlob(const ztbSqlRows* rows, int column) {
  return ZTB_LATE(sqlLibrary, ztbSqlBlob)(rows, column);
}

int ztbSqlSize(const ztbSqlRows* rows, int column) {
  return ZTB_LATE(sqlLibrary, ztbSqlSize)(rows, column);
}

void ztbSqlRowsClose(ztbSqlRows** rows) {
  ZTB_LATE(sqlLibrary, ztbSqlRowsClose)(rows);
}

void ztbSqlClose(ztbSql** sql) {
  ZTB_LATE(sqlLibrary, ztbSqlClose)(sql);
}
