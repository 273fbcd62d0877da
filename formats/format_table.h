// The table of formats: which files tables and whole databases come from and go to.
//
// A format is a row: names, endings, and the functions that read and write. A format adds its row
// in format_table.cpp and has its own files beside; what no library is there for keeps its row,
// without functions and with the packages that it needs.
#ifndef ZTB_FORMATS_FORMAT_TABLE_H_
#define ZTB_FORMATS_FORMAT_TABLE_H_

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace formats {

class TableReader;
class TableWriter;
class DatabaseReader;
struct TableSource;
struct TableTarget;
struct DatabaseExport;

struct Format {
  const char* name;
  // Blanks stand between them; an ending is never that of two formats.
  const char* endings;
  // Packages without which it cannot be read or written; empty where nothing is missing.
  const char* missingToRead = "";
  const char* missingToWrite = "";
  // Whether a file is read and written in places, so that a stream has to stand in one meanwhile.
  bool inPlaces = false;
  // Whether a file has parts, which are named behind '#'.
  bool hasParts = false;
  // Opens the rows of one table of a file.
  std::unique_ptr<TableReader> (*openTable)(const TableSource& source) = nullptr;
  // Begins a file of tables, or of one where writeDatabase is not writeTables or there is none.
  std::unique_ptr<TableWriter> (*makeTables)(const TableTarget& target) = nullptr;
  // Writes the table of the one symbol that is chosen, all of it at once.
  void (*writeSymbol)(const DatabaseExport& database) = nullptr;
  // Opens what a whole database was written to.
  std::unique_ptr<DatabaseReader> (*openDatabase)(const std::string& path) = nullptr;
  // Writes a whole database, or symbols of it.
  void (*writeDatabase)(const DatabaseExport& database) = nullptr;
  // Whether one symbol goes into a file as a table, and only several as a database.
  bool oneTableAlone = false;
  // Whether a path is that of a folder which holds a database in this format.
  bool (*ownsFolder)(const std::string& path) = nullptr;
};

// Throws Failure, which names the packages, where a format cannot be read or written.
void requireReadable(const Format& format);
void requireWritable(const Format& format);

// All formats, in the order in which they are listed.
std::span<const Format> formatTable();

// The format of this name, or the one whose ending the name of a file has, the longest ending
// first; letters of either case. Null for none.
const Format* formatNamed(std::string_view name);
const Format* formatOfFile(std::string_view path);

}  // namespace formats

#endif  // ZTB_FORMATS_FORMAT_TABLE_H_
