// SQLite, as a library that is linked, or, in the loadable extension, as the functions of the
// program that loads it: two copies of SQLite must never meet in one connection.
#ifndef ZTB_FORMATS_SQL_SQLITE_API_H_
#define ZTB_FORMATS_SQL_SQLITE_API_H_

#ifdef ZTB_SQLITE_EXTENSION
#include <sqlite3ext.h>
SQLITE_EXTENSION_INIT3
#else
#include <sqlite3.h>
#endif

#endif  // ZTB_FORMATS_SQL_SQLITE_API_H_
