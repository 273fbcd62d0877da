/* Queries in SQL over databases where they are: each symbol is a table, read-only, of which nothing
 * is copied. SQLite runs the queries.
 *
 *   ztbSql* sql;
 *   ztbSqlRows* rows;
 *   char message[512];
 *   if (!ztbSqlOpen(&sql, message, sizeof message) ||
 *       !ztbSqlAttach(sql, "diet", database, message, sizeof message) ||
 *       !ztbSqlQuery(&rows, sql, "select food, value from price where value < 10", message,
 *                    sizeof message)) {
 *     puts(message);
 *   }
 *   while (ztbSqlNext(rows) == 1) {
 *     printf("%s %g\n", ztbSqlText(rows, 0), ztbSqlReal(rows, 1));
 *   }
 *   ztbSqlRowsClose(&rows);
 *   ztbSqlClose(&sql);
 *
 * A table has the columns of ztb/column_names.hpp: keys, named by their domains, then `text` of a
 * set, `value` of a parameter, or `level`, `marginal`, `lower`, `upper` and `scale`. "*" is the
 * table of all labels, and an alias shows its set. Keys are texts that compare with the case of
 * ASCII letters folded. Values are reals: infinities are SQLite's, what is not available or
 * undefined is null, and epsilon is the smallest double, as databases have it.
 *
 * Records are read from their source when a query first plans to read them. A condition on keys
 * that asks for one label finds its records without a look at the others, at any position; so does
 * an IN on one of them, or a range of labels on the first one. Records come in the order of labels'
 * numbers but for such an IN behind the first, unless ORDER BY says otherwise.
 *
 * The functions stand in libztbsql.so. A ztbSql is used by one thread at a time, and so is each
 * database that it was given; it ends before they do. Texts of results stay until the next row.
 */
#ifndef ZTB_SQL_H_
#define ZTB_SQL_H_

#include <ztb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ztbSqlRec ztbSql;
typedef struct ztbSqlRowsRec ztbSqlRows;

/* What a result holds. */
enum {
  ZTB_SQL_NULL = 0,
  ZTB_SQL_INTEGER = 1,
  ZTB_SQL_REAL = 2,
  ZTB_SQL_TEXT = 3,
  ZTB_SQL_BLOB = 4 /* bytes that are no text, as x'41' */
};

/* Begins without any database. 1, or 0 with the reason in `message`, cut to `messageSize` bytes
 * with its final zero, and *sql null. */
int ztbSqlOpen(ztbSql** sql, char* message, int messageSize);

/* Adds the symbols that a database has now as tables, under a schema name that is not taken, and as
 * plain names where no database before has such a one. "main" and "temp" are taken by SQLite. At
 * most ten databases. 1, or 0 with the reason. */
int ztbSqlAttach(ztbSql* sql, const char* schema, ztbRec* database, char* message, int messageSize);

/* The same for an exchange file, which is opened for it. */
int ztbSqlAttachFile(ztbSql* sql, const char* schema, const char* path, char* message,
                     int messageSize);

/* The database of a schema that was attached; null for any other name. */
ztbRec* ztbSqlDatabase(ztbSql* sql, const char* schema);

/* Begins a query, one statement that gives rows and writes nothing, as select, with and values do,
 * whatever comments stand around it. 1, or 0 with the reason and *rows null. */
int ztbSqlQuery(ztbSqlRows** rows, ztbSql* sql, const char* query, char* message, int messageSize);

/* Has `ask` called every few hundred microseconds while queries are planned and read. When it gives
 * another number than 0, ztbSqlNext fails, or ztbSqlQuery. It may not use `sql`; null asks no
 * more. */
void ztbSqlAsk(ztbSql* sql, int (*ask)(void* owner), void* owner);

/* Parameters of the query, as `?`, by number from 1, before the first row; 0 for a number that it
 * does not have. What is not given is null. A text ends with its zero, or has `size` bytes, zeros
 * among them; blobs have `size` bytes. */
int ztbSqlParameterCount(const ztbSqlRows* rows);
int ztbSqlBindText(ztbSqlRows* rows, int number, const char* text);
int ztbSqlBindReal(ztbSqlRows* rows, int number, double value);
int ztbSqlBindInteger(ztbSqlRows* rows, int number, long long value);
int ztbSqlBindNull(ztbSqlRows* rows, int number);
int ztbSqlBindChars(ztbSqlRows* rows, int number, const char* chars, int size);
int ztbSqlBindBlob(ztbSqlRows* rows, int number, const void* bytes, int size);

/* Goes to the next row: 1, or 0 behind the last one. -1 when it fails, then and with every further
 * call: also when records of a database were changed since the first row. */
int ztbSqlNext(ztbSqlRows* rows);
/* Why ztbSqlNext gave -1; empty when it did not. */
const char* ztbSqlMessage(const ztbSqlRows* rows);

/* Columns, from 0, and what the present row holds in one. A null reads as 0 or "". ztbSqlSize tells
 * the bytes of a text or blob, 0 for a null: a text may have zeros among them, and has one behind
 * them. A blob reads as the text of its bytes, too; ztbSqlBlob is null where there are none. */
int ztbSqlColumnCount(const ztbSqlRows* rows);
const char* ztbSqlColumnName(const ztbSqlRows* rows, int column);
int ztbSqlType(const ztbSqlRows* rows, int column);
long long ztbSqlInteger(const ztbSqlRows* rows, int column);
double ztbSqlReal(const ztbSqlRows* rows, int column);
const char* ztbSqlText(const ztbSqlRows* rows, int column);
const void* ztbSqlBlob(const ztbSqlRows* rows, int column);
int ztbSqlSize(const ztbSqlRows* rows, int column);

/* The sqlite3* behind it, for programs that use SQLite too. */
void* ztbSqlConnection(ztbSql* sql);

/* End a query, and everything; set the handle to null. Queries end first. */
void ztbSqlRowsClose(ztbSqlRows** rows);
void ztbSqlClose(ztbSql** sql);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_SQL_H_ */
